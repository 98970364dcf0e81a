# What every target of this project has in common.

function(ortha_target target)
    target_compile_features(${target} PRIVATE cxx_std_20)
    set_target_properties(${target} PROPERTIES CXX_EXTENSIONS OFF)
    if(MSVC)
        target_compile_options(${target} PRIVATE /W4 $<$<BOOL:${ORTHA_WERROR}>:/WX>)
        return()
    endif()
    if(MINGW)
        # The lowest version of Windows, and formats as the C standard has them, instead of those of the system's C runtime.
        target_compile_definitions(${target} PRIVATE _WIN32_WINNT=0x0A00 NTDDI_VERSION=0x0A000006 __USE_MINGW_ANSI_STDIO=1)
    endif()
    # Functions that pass a format on are marked with ORTHA_PRINTF, so their callers are checked; within them the format is never a literal.
    target_compile_options(${target} PRIVATE
        -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual -Wformat=2 -Wno-format-nonliteral
        $<$<CXX_COMPILER_ID:Clang,AppleClang>:-Wthread-safety>
        $<$<BOOL:${ORTHA_WERROR}>:-Werror>)
endfunction()
