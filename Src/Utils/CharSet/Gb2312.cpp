// Code page 936.
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>

#include "utils/CharSet.h"

namespace General::Utils {

namespace {

constexpr std::size_t firstLead = 0x81;
constexpr std::size_t leadCount = 126;
constexpr std::size_t firstTrail = 0x40;
constexpr std::size_t trailCount = 191;

constexpr std::uint16_t pairs[leadCount][trailCount] = {
#include "Src/Utils/CharSet/Gbk.inc"
};

// From Unicode: a page for each high byte that has pairs, but 0; an entry is the pair, lead byte above, 0 for none.
constexpr std::size_t noPage = 0;

constexpr auto pageOfHigh = [] {
    std::array<std::uint8_t, 256> pages{};
    for (const auto& row : pairs)
    {
        for (const std::uint16_t unit : row)
        {
            pages[unit >> 8] = 1;
        }
    }
    pages[0] = noPage;
    std::uint8_t next = 0;
    for (std::uint8_t& page : pages)
    {
        page = page != 0 ? ++next : static_cast<std::uint8_t>(noPage);
    }
    return pages;
}();

constexpr std::size_t pageCount = *std::max_element(pageOfHigh.begin(), pageOfHigh.end()) + std::size_t{1};

constexpr auto codes = [] {
    std::array<std::array<std::uint16_t, 256>, pageCount> table{};
    for (std::size_t lead = 0; lead < leadCount; ++lead)
    {
        for (std::size_t trail = 0; trail < trailCount; ++trail)
        {
            const std::uint16_t unit = pairs[lead][trail];
            if (const std::size_t page = pageOfHigh[unit >> 8]; page != noPage)
            {
                table[page][unit & 0xFF] = static_cast<std::uint16_t>((lead + firstLead) << 8 | (trail + firstTrail));
            }
        }
    }
    return table;
}();

// The single bytes: 0x80 is the euro sign, all others stand for themselves.
std::uint16_t unitOfByte(unsigned char byte)
{
    return byte == 0x80 ? 0x20AC : byte;
}

bool hasPage(unsigned char lead)
{
    return lead >= firstLead && lead < firstLead + leadCount;
}

std::uint16_t unitOfPair(unsigned char lead, unsigned char trail)
{
    return trail >= firstTrail && trail < firstTrail + trailCount ? pairs[lead - firstLead][trail - firstTrail] : std::uint16_t{0};
}

std::unique_ptr<unsigned short[]> makeUnits(std::size_t count)
{
    return std::unique_ptr<unsigned short[]>(new (std::nothrow) unsigned short[count]());
}

}  // namespace

int uni2char(unsigned short uni, unsigned char* out, int bound)
{
    if (bound < 1)
    {
        return -1;
    }
    const std::size_t page = pageOfHigh[uni >> 8];
    if (page == noPage)
    {
        if (uni == 0 || uni > 0xFF)
        {
            return -1;
        }
        *out = static_cast<unsigned char>(uni);
        return 1;
    }
    const std::uint16_t code = codes[page][uni & 0xFF];
    if (bound < 2)
    {
        return -1;
    }
    out[0] = static_cast<unsigned char>(code >> 8);
    out[1] = static_cast<unsigned char>(code);
    return code != 0 ? 2 : -1;
}

int char2uni(const unsigned char* raw, int bound, unsigned short* uni)
{
    if (bound < 1)
    {
        return -1;
    }
    if (bound > 1 && hasPage(raw[0]) && raw[1] != 0)
    {
        *uni = unitOfPair(raw[0], raw[1]);
        return *uni != 0 ? 2 : -1;
    }
    *uni = unitOfByte(raw[0]);
    return 1;
}

int Gb2312ToUni(char* source, unsigned short* destination, int count)
{
    if (!source || !destination || count < 1)
    {
        return 0;
    }
    std::memset(destination, 0, static_cast<std::size_t>(count) * sizeof(*destination));
    const auto* at = reinterpret_cast<const unsigned char*>(source);
    int written = 0;
    while (*at != 0 && written < count)
    {
        if (*at < 0x80)
        {
            destination[written++] = *at++;
            continue;
        }
        // A text is terminated, so a pair has its second byte, if only the terminator.
        const int read = char2uni(at, 2, destination + written);
        if (read == -1)
        {
            destination[written] = 0xFFFD;
        }
        at += read != -1 ? read : at[1] < 0x80 ? 1 : 2;
        ++written;
    }
    return written;
}

int UniTGb2312(unsigned short* source, int count, char* destination, int size)
{
    if (!source || !destination || size < 0)
    {
        return 0;
    }
    int converted = 0;
    int at = 0;
    bool mapped = true;
    for (; converted < count && source[converted] != 0 && at < size; ++converted)
    {
        const int length = uni2char(source[converted], reinterpret_cast<unsigned char*>(destination) + at, size - at);
        if (length == -1)
        {
            unsigned char bytes[2];
            mapped = uni2char(source[converted], bytes, 2) != -1;  // then there was no room
            break;
        }
        at += length;
    }
    std::memset(destination + at, 0, static_cast<std::size_t>(size - at));
    return mapped ? converted : -1;
}

int Gb2312TUtf8(char* source, unsigned char* destination, int size)
{
    if (!source || !destination || *source == 0 || size < 0)
    {
        return 0;
    }
    const std::size_t length = std::strlen(source);
    const auto units = makeUnits(length + 1);
    if (!units)
    {
        return 0;
    }
    std::memset(destination, 0, static_cast<std::size_t>(size));
    Gb2312ToUni(source, units.get(), static_cast<int>(length + 1));
    return utf8_wcstombs(destination, units.get(), size);
}

int utf8TGb2312(unsigned char* source, char* destination, int sourceSize, int destinationSize)
{
    if (!source || !destination || sourceSize < 1 || *source == 0)
    {
        return 0;
    }
    const auto units = makeUnits(static_cast<std::size_t>(sourceSize));
    if (!units)
    {
        return 0;
    }
    return UniTGb2312(units.get(), utf8_mbstowcs(units.get(), source, sourceSize), destination, destinationSize);
}

}  // namespace General::Utils
