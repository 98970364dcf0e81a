#include "utils/Base16.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

#include "ortha/ortha3/PrintLog.h"

#include "Src/Utils/WideText.h"

namespace General::Utils {

namespace {

constexpr char digits[] = "0123456789ABCDEF";

constexpr auto pairs = [] {
    std::array<std::array<char, 2>, 256> table{};
    for (std::size_t byte = 0; byte < 256; ++byte)
    {
        table[byte] = {digits[byte >> 4], digits[byte & 15]};
    }
    return table;
}();

constexpr std::uint16_t noDigit = 0x100;

// What a digit is worth as the first of a byte's two, and as the second.
struct Values
{
    std::array<std::uint16_t, 256> high;
    std::array<std::uint16_t, 256> low;
};

constexpr Values values = [] {
    Values table{};
    table.high.fill(noDigit);
    table.low.fill(noDigit);
    for (std::uint16_t value = 0; value < 16; ++value)
    {
        const auto digit = static_cast<std::size_t>(digits[value]);
        for (const std::size_t character : {digit, digit | 0x20})  // lower case too; the decimal digits stay what they are
        {
            table.high[character] = static_cast<std::uint16_t>(value << 4);
            table.low[character] = value;
        }
    }
    return table;
}();

// Whether all are digits; else some of `destination` may be written.
bool decode(const char* source, std::size_t count, unsigned char* destination)
{
    if (const WideText* const wide = wideText())
    {
        const std::size_t done = wide->base16Decode(destination, source, 2 * count) / 2;
        source += 2 * done;
        destination += done;
        count -= done;
    }
    for (; count != 0; --count, source += 2, ++destination)
    {
        const unsigned int byte = values.high[static_cast<unsigned char>(source[0])] | values.low[static_cast<unsigned char>(source[1])];
        if (byte >= noDigit)
        {
            return false;
        }
        *destination = static_cast<unsigned char>(byte);
    }
    return true;
}

}  // namespace

std::size_t base16Encode(const unsigned char* source, std::size_t sourceLength, char* destination, std::size_t destinationLength)
{
    if (!source)
    {
        ::logWarn("The source data is NULL\n");
        return 0;
    }
    if (!destination || sourceLength == 0 || destinationLength == 0 || (destinationLength - 1) / 2 < sourceLength)
    {
        ::logWarn("dst space is not enough or NULL\n");
        return 0;
    }
    const WideText* const wide = wideText();
    for (std::size_t i = wide ? wide->base16Encode(destination, source, sourceLength) : 0; i < sourceLength; ++i)
    {
        std::memcpy(destination + 2 * i, pairs[source[i]].data(), 2);
    }
    std::memset(destination + 2 * sourceLength, 0, destinationLength - 2 * sourceLength);
    return static_cast<std::size_t>(static_cast<std::int32_t>(static_cast<std::uint32_t>(2 * sourceLength + 1)));
}

std::size_t base16Decode(const char* source, std::size_t sourceLength, unsigned char* destination, std::size_t destinationLength)
{
    if (!source)
    {
        ::logWarn("The source data is NULL\n");
        return 0;
    }
    if (sourceLength == 0 || sourceLength % 2 != 0)
    {
        ::logWarn("The source data length is wrong\n");
        return 0;
    }
    const std::size_t count = sourceLength / 2;
    if (!destination || destinationLength < count)
    {
        ::logWarn("dst space is not enough or NULL\n");
        return 0;
    }
    if (!decode(source, count, destination))
    {
        ::logWarn("The source data is not base16 encoding\n");
        std::memset(destination, 0, destinationLength);
        ::logWarn("base16 decode failed\n");
        return 0;
    }
    std::memset(destination + count, 0, destinationLength - count);
    return count;
}

}  // namespace General::Utils
