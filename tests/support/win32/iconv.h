// Conversion between character sets as the building system's C runtime has it: by tables that charsets.py has made of it. The calls that
// tests make.
#pragma once

#include <cstddef>

struct IconvConverter;
using iconv_t = IconvConverter*;

/// Between "UTF-8", "UTF-16LE" and the sets of the tables.
iconv_t iconv_open(const char* to, const char* from);
/// A whole text; -1 if a character is not in the other set, or the text ends within one.
std::size_t iconv(iconv_t converter, char** in, std::size_t* inLeft, char** out, std::size_t* outLeft);
