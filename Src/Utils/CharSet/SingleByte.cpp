// The sets of one byte, and code page 1252.
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <iterator>

#include "utils/CharSet.h"

#include "Src/Utils/CharSet/Utf8.h"

namespace General::Utils {

namespace {

using Table = std::uint16_t[256];

constexpr Table tables[] = {
#include "Src/Utils/CharSet/SingleByte.inc"
};

constexpr std::ptrdiff_t longest = 3;

// A byte as the sequence that it becomes, of length 0 if it is not mapped.
struct Sequence
{
    unsigned char bytes[longest];
    std::uint8_t length;
};

constexpr auto sequences = [] {
    std::array<std::array<Sequence, 256>, std::size(tables)> all{};
    for (std::size_t set = 0; set < std::size(tables); ++set)
    {
        for (std::size_t byte = 0; byte < 256; ++byte)
        {
            const std::uint16_t unit = tables[set][byte];
            Sequence& sequence = all[set][byte];
            sequence.length = unit == 0 ? std::uint8_t{0} : static_cast<std::uint8_t>(utf8Length(unit));
            if (sequence.length != 0)
            {
                writeUtf8(sequence.bytes, unit, sequence.length);
            }
        }
    }
    return all;
}();

int toUtf8(std::size_t set, unsigned char* out, int& outLength, const unsigned char* in, int& inLength)
{
    if (!out || !in || inLength < 1 || outLength < inLength)
    {
        return -1;
    }
    const std::array<Sequence, 256>& table = sequences[set];
    const unsigned char* const outEnd = out + outLength;
    const unsigned char* const inEnd = in + inLength;
    unsigned char* to = out;
    const unsigned char* from = in;
    // With room for the longest all of its bytes are written, and what is too much written over: no jump depends on the length.
    for (; from != inEnd && outEnd - to >= longest; ++from)
    {
        const Sequence& sequence = table[*from];
        std::memcpy(to, sequence.bytes, longest);
        to += sequence.length;
    }
    for (; from != inEnd && table[*from].length <= outEnd - to; ++from)
    {
        const Sequence& sequence = table[*from];
        to = std::copy_n(sequence.bytes, sequence.length, to);
    }
    inLength = static_cast<int>(from - in);
    outLength = static_cast<int>(to - out);
    return 0;
}

// What code page 1252 has in place of the control characters 0x80 to 0x9F; those that are undefined stand for themselves.
constexpr std::uint32_t special[32] = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
                                       0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
                                       0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

std::uint32_t valueOf(unsigned char byte)
{
    return byte >= 0x80 && byte < 0xA0 ? special[byte - 0x80] : byte;
}

bool isUndefined(unsigned char byte)
{
    return byte >= 0x80 && byte < 0xA0 && special[byte - 0x80] == byte;
}

// The byte for a value, -1 if there is none.
int byteOf(std::uint32_t value)
{
    if (value < 0x80 || (value >= 0xA0 && value <= 0xFF))
    {
        return static_cast<int>(value);
    }
    const auto* const found = std::find(std::begin(special), std::end(special), value);
    return found == std::end(special) ? -1 : static_cast<int>(found - special) + 0x80;
}

}  // namespace

int cp862_to_utf8(unsigned char* out, int& outLength, const unsigned char* in, int& inLength)
{
    return toUtf8(0, out, outLength, in, inLength);
}

int cp874_to_utf8(unsigned char* out, int& outLength, const unsigned char* in, int& inLength)
{
    return toUtf8(1, out, outLength, in, inLength);
}

int cp1250_to_utf8(unsigned char* out, int& outLength, const unsigned char* in, int& inLength)
{
    return toUtf8(2, out, outLength, in, inLength);
}

int cp1251_to_utf8(unsigned char* out, int& outLength, const unsigned char* in, int& inLength)
{
    return toUtf8(3, out, outLength, in, inLength);
}

int iso8859_1_to_utf8(unsigned char* out, int& outLength, const unsigned char* in, int& inLength)
{
    return toUtf8(4, out, outLength, in, inLength);
}

int iso8859_2_to_utf8(unsigned char* out, int& outLength, const unsigned char* in, int& inLength)
{
    return toUtf8(5, out, outLength, in, inLength);
}

int iso8859_3_to_utf8(unsigned char* out, int& outLength, const unsigned char* in, int& inLength)
{
    return toUtf8(6, out, outLength, in, inLength);
}

int iso8859_4_to_utf8(unsigned char* out, int& outLength, const unsigned char* in, int& inLength)
{
    return toUtf8(7, out, outLength, in, inLength);
}

int iso8859_5_to_utf8(unsigned char* out, int& outLength, const unsigned char* in, int& inLength)
{
    return toUtf8(8, out, outLength, in, inLength);
}

int iso8859_6_to_utf8(unsigned char* out, int& outLength, const unsigned char* in, int& inLength)
{
    return toUtf8(9, out, outLength, in, inLength);
}

int iso8859_7_to_utf8(unsigned char* out, int& outLength, const unsigned char* in, int& inLength)
{
    return toUtf8(10, out, outLength, in, inLength);
}

int iso8859_8_to_utf8(unsigned char* out, int& outLength, const unsigned char* in, int& inLength)
{
    return toUtf8(11, out, outLength, in, inLength);
}

int iso8859_9_to_utf8(unsigned char* out, int& outLength, const unsigned char* in, int& inLength)
{
    return toUtf8(12, out, outLength, in, inLength);
}

int iso8859_10_to_utf8(unsigned char* out, int& outLength, const unsigned char* in, int& inLength)
{
    return toUtf8(13, out, outLength, in, inLength);
}

int iso8859_13_to_utf8(unsigned char* out, int& outLength, const unsigned char* in, int& inLength)
{
    return toUtf8(14, out, outLength, in, inLength);
}

int iso8859_14_to_utf8(unsigned char* out, int& outLength, const unsigned char* in, int& inLength)
{
    return toUtf8(15, out, outLength, in, inLength);
}

int iso8859_15_to_utf8(unsigned char* out, int& outLength, const unsigned char* in, int& inLength)
{
    return toUtf8(16, out, outLength, in, inLength);
}

int iso8859_16_to_utf8(unsigned char* out, int& outLength, const unsigned char* in, int& inLength)
{
    return toUtf8(17, out, outLength, in, inLength);
}

int cp1252_to_utf8(unsigned char* out, int outSize, const unsigned char* in, int inLength)
{
    if (!in || inLength < 1)
    {
        return -1;
    }
    const unsigned char* const end = in + inLength;
    const unsigned char* const defined = std::find_if(in, end, isUndefined);
    std::int64_t needed = end - defined;
    for (const unsigned char* at = in; at != defined; ++at)
    {
        needed += utf8Length(valueOf(*at));
    }
    if (!out || needed > outSize)
    {
        return static_cast<int>(needed);
    }
    for (const unsigned char* at = in; at != defined; ++at)
    {
        const int length = utf8Length(valueOf(*at));
        writeUtf8(out, valueOf(*at), length);
        out += length;
    }
    std::fill(out, out + (end - defined), static_cast<unsigned char>(0));
    return 0;
}

int utf8_to_cp1252(const unsigned char* in, int inLength, unsigned char* out, int outSize)
{
    int written = 0;
    for (int at = 0; in && out && at < inLength && written < outSize;)
    {
        const unsigned char lead = in[at];
        int row = 0;
        while (row < utf8Rows && (lead & utf8Table[row].mask) != utf8Table[row].value)
        {
            ++row;
        }
        if (row == utf8Rows || row >= inLength - at)
        {
            break;
        }
        std::uint32_t value = lead;
        bool broken = false;
        for (int i = 1; i <= row; ++i)
        {
            broken = broken || (in[at + i] & 0xC0) != 0x80;
            value = value << 6 | (in[at + i] & 0x3Fu);
        }
        if (broken)
        {
            break;
        }
        if (const int byte = byteOf(value & utf8Table[row].largest); byte != -1)
        {
            out[written++] = static_cast<unsigned char>(byte);
        }
        at += row + 1;
    }
    return written;
}

}  // namespace General::Utils
