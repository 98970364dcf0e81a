# 64-bit Windows, cross-built with Debian's g++-mingw-w64-x86-64-posix; programs run under Wine.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)
# The compiler's own libraries go into each program: nothing has to lie beside it but our library.
foreach(kind EXE SHARED MODULE)
    set(CMAKE_${kind}_LINKER_FLAGS_INIT -static)
endforeach()

set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
foreach(kind LIBRARY INCLUDE PACKAGE)
    set(CMAKE_FIND_ROOT_PATH_MODE_${kind} ONLY)
endforeach()

cmake_path(GET CMAKE_CURRENT_LIST_DIR PARENT_PATH ortha_root)
set(CMAKE_CROSSCOMPILING_EMULATOR ${ortha_root}/scripts/wine)
