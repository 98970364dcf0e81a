# The library: its objects, which the internal tests link as they are, and the library made of them.

find_package(Threads REQUIRED)

if(WIN32)
    set(ortha_platform Src/Platform/win32)
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
    foreach(name AesNi Vaes Sha1Ni CrcMultiply CrcMultiplyWide WideText)
        # g++ 12 takes its own intrinsics for uninitialised.
        set_source_files_properties(${PROJECT_SOURCE_DIR}/Src/Utils/x86/${name}.cpp PROPERTIES COMPILE_OPTIONS
            "${ortha_${name}};-O3;$<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>")
    endforeach()
else()
    list(FILTER ortha_sources EXCLUDE REGEX "/Src/Utils/x86/")
endif()

add_library(ortha_objects OBJECT ${ortha_sources})
ortha_target(ortha_objects)
set_target_properties(ortha_objects PROPERTIES
    POSITION_INDEPENDENT_CODE ON CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
target_include_directories(ortha_objects PUBLIC ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/include)
target_compile_definitions(ortha_objects PRIVATE ORTHA_BUILDING)
# The library's few thread-local words are read in every lock and log call: with the default model each reading is a call.
target_compile_options(ortha_objects PRIVATE $<$<NOT:$<CXX_COMPILER_ID:MSVC>>:-ftls-model=initial-exec>)
# Nobody puts functions of their own in the place of exported ones; without this g++ calls these through a table even within one file.
target_compile_options(ortha_objects PRIVATE $<$<CXX_COMPILER_ID:GNU>:-fno-semantic-interposition>)
target_link_libraries(ortha_objects PUBLIC Threads::Threads)

add_library(ortha $<TARGET_OBJECTS:ortha_objects>)
add_library(Ortha::ortha ALIAS ortha)
target_compile_features(ortha PUBLIC cxx_std_17)
target_include_directories(ortha PUBLIC
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
target_link_libraries(ortha PRIVATE Threads::Threads)
set_target_properties(ortha PROPERTIES
    VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR} LINKER_LANGUAGE CXX)

# Definitions that headers read: the same for the library, its objects and its users.
foreach(definition IN ITEMS $<$<NOT:$<BOOL:${BUILD_SHARED_LIBS}>>:ORTHA_STATIC>
                            $<$<BOOL:${ORTHA_INCLUDE_VERSION_CHECK}>:ORTHA_INCLUDE_VERSION_CHECK>)
    target_compile_definitions(ortha PUBLIC ${definition})
    target_compile_definitions(ortha_objects PUBLIC ${definition})
endforeach()

if(BUILD_SHARED_LIBS AND CMAKE_SYSTEM_NAME STREQUAL "Linux")
    set(ortha_map ${PROJECT_SOURCE_DIR}/cmake/ortha.map)
    target_link_options(ortha PRIVATE LINKER:--version-script=${ortha_map})
    set_target_properties(ortha PROPERTIES LINK_DEPENDS ${ortha_map})
endif()
