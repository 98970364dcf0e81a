# What every target of this project has in common.

function(ortha_target target)
    target_compile_features(${target} PRIVATE cxx_std_20)
    set_target_properties(${target} PROPERTIES CXX_EXTENSIONS OFF)
    if(MSVC)
        target_compile_options(${target} PRIVATE /W4 $<$<BOOL:${ORTHA_WERROR}>:/WX>)
        return()
    endif()
    # Functions that pass a format on are marked with ORTHA_PRINTF, so their callers are checked; within them the format is never a literal.
    target_compile_options(${target} PRIVATE
        -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual -Wformat=2 -Wno-format-nonliteral
        $<$<CXX_COMPILER_ID:Clang,AppleClang>:-Wthread-safety>
        $<$<BOOL:${ORTHA_WERROR}>:-Werror>)
endfunction()
