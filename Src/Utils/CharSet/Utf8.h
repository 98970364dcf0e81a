// The UTF-8 table, with sequences of up to 6 bytes.
#pragma once

#include <cstdint>

namespace General::Utils {

struct Utf8Row
{
    std::uint32_t mask;
    std::uint32_t value;
    int shift;
    std::uint32_t largest;
    std::uint32_t smallest;
};

/// One row for each length of a sequence, from 1.
inline constexpr int utf8Rows = 6;
inline constexpr Utf8Row utf8Table[utf8Rows] = {
    {0x80, 0x00, 0, 0x7F, 0},
    {0xE0, 0xC0, 6, 0x7FF, 0x80},
    {0xF0, 0xE0, 12, 0xFFFF, 0x800},
    {0xF8, 0xF0, 18, 0x1FFFFF, 0x10000},
    {0xFC, 0xF8, 24, 0x3FFFFFF, 0x200000},
    {0xFE, 0xFC, 30, 0x7FFFFFFF, 0x4000000},
};

/// The length of the sequence of a value up to 0x7FFFFFFF.
constexpr int utf8Length(std::uint32_t value)
{
    int length = 1;
    while (value > utf8Table[length - 1].largest)
    {
        ++length;
    }
    return length;
}

/// Writes a value as a sequence of that length.
constexpr void writeUtf8(unsigned char* out, std::uint32_t value, int length)
{
    int shift = utf8Table[length - 1].shift;
    *out = static_cast<unsigned char>(utf8Table[length - 1].value | value >> shift);
    while (shift > 0)
    {
        shift -= 6;
        *++out = static_cast<unsigned char>(0x80 | (value >> shift & 0x3F));
    }
}

}  // namespace General::Utils
