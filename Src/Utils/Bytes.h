// Words in bytes, and wiping.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace General::Utils {

template <class Word>
Word loadLittle(const unsigned char* bytes)
{
    Word word = 0;
    for (std::size_t i = 0; i < sizeof(Word); ++i)
    {
        word = static_cast<Word>(word | static_cast<Word>(Word{bytes[i]} << (8 * i)));
    }
    return word;
}

template <class Word>
Word loadBig(const unsigned char* bytes)
{
    Word word = 0;
    for (std::size_t i = 0; i < sizeof(Word); ++i)
    {
        word = static_cast<Word>(word | static_cast<Word>(Word{bytes[i]} << (8 * (sizeof(Word) - 1 - i))));
    }
    return word;
}

template <class Word>
void storeLittle(unsigned char* bytes, Word word)
{
    for (std::size_t i = 0; i < sizeof(Word); ++i)
    {
        bytes[i] = static_cast<unsigned char>(word >> (8 * i));
    }
}

template <class Word>
void storeBig(unsigned char* bytes, Word word)
{
    for (std::size_t i = 0; i < sizeof(Word); ++i)
    {
        bytes[i] = static_cast<unsigned char>(word >> (8 * (sizeof(Word) - 1 - i)));
    }
}

/// Zeroes memory that nobody reads again, in a way that the compiler keeps.
inline void wipe(void* memory, std::size_t size)
{
    std::memset(memory, 0, size);
    asm volatile("" : : "r"(memory) : "memory");
}

/// Writes bytes as lower-case hexadecimal digits, without a terminator.
inline void writeHex(char* text, const unsigned char* bytes, std::size_t count)
{
    constexpr char digits[] = "0123456789abcdef";
    for (std::size_t i = 0; i < count; ++i)
    {
        text[2 * i] = digits[bytes[i] >> 4];
        text[2 * i + 1] = digits[bytes[i] & 15];
    }
}

}  // namespace General::Utils
