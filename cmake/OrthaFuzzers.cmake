# fuzz/NAME.cpp is one libFuzzer program, fuzz_NAME, on the public headers; its seeds are in fuzz/seeds/NAME. Builds with tests replay the seeds.

if(NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    message(FATAL_ERROR "ORTHA_BUILD_FUZZERS needs clang++; use the preset fuzz.")
endif()

file(GLOB fuzzers CONFIGURE_DEPENDS fuzz/*.cpp)
list(FILTER fuzzers EXCLUDE REGEX "/replay\\.cpp$")
foreach(source IN LISTS fuzzers)
    cmake_path(GET source STEM name)
    add_executable(fuzz_${name} ${source})
    ortha_target(fuzz_${name})
    target_link_libraries(fuzz_${name} PRIVATE Ortha::ortha)
    target_link_options(fuzz_${name} PRIVATE -fsanitize=fuzzer)
endforeach()
