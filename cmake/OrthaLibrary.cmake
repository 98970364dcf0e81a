# The library: its objects, which the internal tests link as they are, and the library made of them.

find_package(Threads REQUIRED)

if(WIN32)
    set(ortha_platform Src/Platform/win32)
    enable_language(RC)
else()
    set(ortha_platform Src/Platform/posix)
endif()
# Globbed, here and for tests, benchmarks and examples: whatever lies in a folder belongs to it, and no list repeats the folder.
file(GLOB ortha_sources CONFIGURE_DEPENDS
    ${ortha_platform}/*.cpp Src/*.cpp Src/Ortha3/*.cpp Src/Memory/*.cpp Src/Component/*.cpp Src/Utils/*.cpp Src/Utils/*/*.cpp)
# The processor's own instructions: chosen at run time, each file compiled for those that it uses.
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64)$" AND NOT MSVC AND NOT ORTHA_PORTABLE_UTILS)
    list(FILTER ortha_sources EXCLUDE REGEX "/Src/Utils/portable/")
    set(ortha_AesNi -maes -msse4.1)
    set(ortha_Vaes ${ortha_AesNi} -mvaes -mavx512f -mavx512bw)
    set(ortha_Sha1Ni -msha -msse4.1)
    set(ortha_CrcMultiply -mpclmul -msse4.1)
    set(ortha_CrcMultiplyWide ${ortha_CrcMultiply} -mvpclmulqdq -mavx512f)
    set(ortha_WideText -mavx2)
    set(ortha_WideUtf8 -mavx512f -mavx512bw -mavx512vl -mavx512vbmi2 -mbmi2 -mpopcnt)
    # g++ takes the stack there for aligned to more than the 16 bytes that it is.
    set(ortha_vector_moves $<$<BOOL:${MINGW}>:-Wa,-muse-unaligned-vector-move>)
    foreach(name AesNi Vaes Sha1Ni CrcMultiply CrcMultiplyWide WideText WideUtf8)
        # g++ 12 takes its own intrinsics for uninitialised.
        set_source_files_properties(${PROJECT_SOURCE_DIR}/Src/Utils/x86/${name}.cpp PROPERTIES COMPILE_OPTIONS
            "${ortha_${name}};-O3;$<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>;${ortha_vector_moves}")
    endforeach()
else()
    list(FILTER ortha_sources EXCLUDE REGEX "/Src/Utils/x86/")
endif()

# g++ would gather the four words of a block in vector registers, which takes longer than the cipher's round.
set_source_files_properties(${PROJECT_SOURCE_DIR}/Src/Utils/Aes/AesCipher.cpp PROPERTIES COMPILE_OPTIONS
    "$<$<CXX_COMPILER_ID:GNU>:-fno-tree-vectorize>")

# Definitions that headers read: the same for the library, its objects and its users.
set(ortha_definitions $<$<NOT:$<BOOL:${BUILD_SHARED_LIBS}>>:ORTHA_STATIC>
                      $<$<BOOL:${ORTHA_INCLUDE_VERSION_CHECK}>:ORTHA_INCLUDE_VERSION_CHECK>)

# ortha_object_library(NAME SOURCE...): sources of the library, compiled as in the library.
function(ortha_object_library name)
    add_library(${name} OBJECT ${ARGN})
    ortha_target(${name})
    set_target_properties(${name} PROPERTIES
        POSITION_INDEPENDENT_CODE ON CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
    target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/include)
    target_compile_definitions(${name} PRIVATE ORTHA_BUILDING INTERFACE ORTHA_STATIC)
    # The library's few thread-local words are read in every lock and log call: with the default model each reading is a call.
    target_compile_options(${name} PRIVATE $<$<NOT:$<CXX_COMPILER_ID:MSVC>>:-ftls-model=initial-exec>)
    # Nobody puts functions of their own in the place of exported ones; without this g++ calls these through a table even within one file.
    target_compile_options(${name} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-fno-semantic-interposition>)
    target_link_libraries(${name} PUBLIC Threads::Threads)
    target_compile_definitions(${name} PUBLIC ${ortha_definitions})
endfunction()

ortha_object_library(ortha_objects ${ortha_sources})
if(ORTHA_BUILD_BENCHMARKS)
    # The utilities as ORTHA_PORTABLE_UTILS makes them, to be measured beside the others.
    file(GLOB portable_utils CONFIGURE_DEPENDS Src/Utils/*.cpp Src/Utils/*/*.cpp)
    list(FILTER portable_utils EXCLUDE REGEX "/Src/Utils/x86/")
    ortha_object_library(ortha_portable_utils ${portable_utils})
endif()

add_library(ortha $<TARGET_OBJECTS:ortha_objects>)
add_library(Ortha::ortha ALIAS ortha)
target_compile_features(ortha PUBLIC cxx_std_17)
target_include_directories(ortha PUBLIC
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
target_link_libraries(ortha PRIVATE Threads::Threads)
set_target_properties(ortha PROPERTIES
    VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR} LINKER_LANGUAGE CXX)

target_compile_definitions(ortha PUBLIC ${ortha_definitions})

if(BUILD_SHARED_LIBS AND WIN32)
    configure_file(cmake/ortha.rc.in ortha.rc @ONLY)
    target_sources(ortha PRIVATE ${PROJECT_BINARY_DIR}/ortha.rc)
    set_target_properties(ortha PROPERTIES PREFIX "")
endif()
if(BUILD_SHARED_LIBS AND CMAKE_SYSTEM_NAME STREQUAL "Linux")
    set(ortha_map ${PROJECT_SOURCE_DIR}/cmake/ortha.map)
    target_link_options(ortha PRIVATE LINKER:--version-script=${ortha_map})
    set_target_properties(ortha PROPERTIES LINK_DEPENDS ${ortha_map})
endif()
