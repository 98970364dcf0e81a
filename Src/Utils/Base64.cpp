#include "utils/Base64.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

#include "Src/Utils/WideText.h"

namespace General::Utils {

namespace {

constexpr char alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// Two characters at a time.
constexpr auto pairs = [] {
    std::array<std::array<char, 2>, 4096> table{};
    for (std::size_t bits = 0; bits < table.size(); ++bits)
    {
        table[bits] = {alphabet[bits >> 6], alphabet[bits & 63]};
    }
    return table;
}();

constexpr std::uint8_t noValue = 0xFF;

constexpr auto values = [] {
    std::array<std::uint8_t, 256> table{};
    table.fill(noValue);
    for (std::uint8_t value = 0; value < 64; ++value)
    {
        table[static_cast<unsigned char>(alphabet[value])] = value;
    }
    return table;
}();

std::uint32_t valueOf(char character)
{
    return values[static_cast<unsigned char>(character)];
}

// How many characters of the alphabet a text of `length` characters begins with.
std::size_t countOf(const char* source, std::size_t length)
{
    std::size_t count = 0;
    while (count < length && valueOf(source[count]) != noValue)
    {
        ++count;
    }
    return count;
}

// Of a text that may end before `limit` with a terminator, behind which nothing may be read.
std::size_t lengthOf(const char* source, std::size_t limit)
{
    const void* const end = limit != 0 ? std::memchr(source, 0, limit) : nullptr;
    return end ? static_cast<std::size_t>(static_cast<const char*>(end) - source) : limit;
}

std::size_t spaceFor(std::size_t count)
{
    return (count + 3) / 4 * 3 + 1;
}

// The bytes of the characters of the alphabet that a text begins with, and a zero byte behind them.
std::size_t decode(char* destination, const char* source, std::size_t length)
{
    char* at = destination;
    if (const WideText* const wide = wideText())
    {
        const std::size_t done = wide->base64Decode(at, source, length);
        at += done / 4 * 3;
        source += done;
        length -= done;
    }
    for (; length >= 4; length -= 4, source += 4)
    {
        const std::uint32_t first = valueOf(source[0]);
        const std::uint32_t second = valueOf(source[1]);
        const std::uint32_t third = valueOf(source[2]);
        const std::uint32_t fourth = valueOf(source[3]);
        if ((first | second | third | fourth) == noValue)
        {
            break;
        }
        const std::uint32_t bits = first << 18 | second << 12 | third << 6 | fourth;
        *at++ = static_cast<char>(bits >> 16);
        *at++ = static_cast<char>(bits >> 8);
        *at++ = static_cast<char>(bits);
    }
    const std::size_t count = countOf(source, std::min<std::size_t>(length, 4));
    if (count >= 2)
    {
        *at++ = static_cast<char>(valueOf(source[0]) << 2 | valueOf(source[1]) >> 4);
    }
    if (count >= 3)
    {
        *at++ = static_cast<char>(valueOf(source[1]) << 4 | valueOf(source[2]) >> 2);
    }
    *at = 0;
    return static_cast<std::size_t>(at - destination);
}

}  // namespace

int base64EncodeLen(int length)
{
    return static_cast<int>((static_cast<std::int64_t>(length) + 2) / 3 * 4 + 1);
}

int base64Encode(char* destination, const char* source, int length)
{
    return length < 1 ? 0 : static_cast<int>(base64EncodeEx(destination, source, static_cast<std::size_t>(length)));
}

int base64DecodeLen(const char* source)
{
    return static_cast<int>(base64DecodeLenEx(source));
}

int base64Decode(char* destination, const char* source)
{
    return static_cast<int>(base64DecodeEx(destination, source));
}

std::size_t base64EncodeLenEx(std::size_t length)
{
    return (length + 2) / 3 * 4 + 1;
}

std::size_t base64EncodeEx(char* destination, const char* source, std::size_t length)
{
    const auto* from = reinterpret_cast<const unsigned char*>(source);
    char* at = destination;
    if (const WideText* const wide = wideText())
    {
        const std::size_t done = wide->base64Encode(at, from, length);
        at += done / 3 * 4;
        from += done;
        length -= done;
    }
    for (; length >= 3; length -= 3, from += 3)
    {
        const std::uint32_t bits = static_cast<std::uint32_t>(from[0] << 16 | from[1] << 8 | from[2]);
        at = std::copy_n(pairs[bits >> 12].data(), 2, at);
        at = std::copy_n(pairs[bits & 4095].data(), 2, at);
    }
    if (length != 0)
    {
        const std::uint32_t bits = static_cast<std::uint32_t>(from[0] << 16 | (length == 2 ? from[1] << 8 : 0));
        *at++ = alphabet[bits >> 18];
        *at++ = alphabet[bits >> 12 & 63];
        *at++ = length == 2 ? alphabet[bits >> 6 & 63] : '=';
        *at++ = '=';
    }
    *at++ = 0;
    return static_cast<std::size_t>(at - destination);
}

std::size_t base64DecodeLenEx(const char* source)
{
    return spaceFor(countOf(source, std::strlen(source)));
}

std::size_t base64DecodeEx(char* destination, const char* source)
{
    return decode(destination, source, std::strlen(source));
}

std::size_t base64DecodeLenEx2(const char* source, std::size_t length)
{
    return spaceFor(countOf(source, length));
}

std::size_t base64DecodeEx2(char* destination, const char* source, std::size_t length)
{
    return decode(destination, source, lengthOf(source, length));
}

}  // namespace General::Utils
