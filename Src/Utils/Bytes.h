// Words in bytes, and wiping.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace General::Utils {

/// A word whose bytes are in the machine's order, from one whose bytes are in `order`, or the other way round.
template <std::endian order, class Word>
Word reordered(Word word)
{
    if constexpr (order == std::endian::native || sizeof(Word) == 1)
    {
        return word;
    }
    else if constexpr (sizeof(Word) == 2)
    {
        return __builtin_bswap16(word);
    }
    else if constexpr (sizeof(Word) == 4)
    {
        return __builtin_bswap32(word);
    }
    else
    {
        return __builtin_bswap64(word);
    }
}

template <class Word, std::endian order>
Word load(const unsigned char* bytes)
{
    Word word;
    std::memcpy(&word, bytes, sizeof(word));
    return reordered<order>(word);
}

template <class Word>
Word loadLittle(const unsigned char* bytes)
{
    return load<Word, std::endian::little>(bytes);
}

template <class Word>
Word loadBig(const unsigned char* bytes)
{
    return load<Word, std::endian::big>(bytes);
}

template <class Word>
void storeLittle(unsigned char* bytes, Word word)
{
    word = reordered<std::endian::little>(word);
    std::memcpy(bytes, &word, sizeof(word));
}

template <class Word>
void storeBig(unsigned char* bytes, Word word)
{
    word = reordered<std::endian::big>(word);
    std::memcpy(bytes, &word, sizeof(word));
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
