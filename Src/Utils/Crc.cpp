#include "utils/Crc.h"

#include <array>
#include <cstdint>
#include <utility>

#include "Src/Utils/Bytes.h"
#include "Src/Utils/Crc32Update.h"

namespace General::Utils {

namespace {

// Tables for slicing: entry [k][b] is the effect of byte b with k bytes behind it, so that several bytes are taken in one step. (M.
// Kounavis, F. Berry: A Systematic Approach to Building High Performance Software-based CRC Generators, 2005.)
template <class Word, std::size_t Slices>
constexpr std::array<std::array<Word, 256>, Slices> makeTables(Word polynomial)
{
    std::array<std::array<Word, 256>, Slices> tables{};
    for (unsigned int byte = 0; byte < 256; ++byte)
    {
        auto crc = static_cast<Word>(byte);
        for (int bit = 0; bit < 8; ++bit)
        {
            crc = static_cast<Word>((crc >> 1) ^ ((crc & 1) != 0 ? polynomial : Word{0}));
        }
        tables[0][byte] = crc;
    }
    for (std::size_t slice = 1; slice < Slices; ++slice)
    {
        for (std::size_t byte = 0; byte < 256; ++byte)
        {
            const Word before = tables[slice - 1][byte];
            tables[slice][byte] = static_cast<Word>((before >> 8) ^ tables[0][before & 0xFF]);
        }
    }
    return tables;
}

constexpr std::size_t slices = 16;
constexpr auto tables16 = makeTables<std::uint16_t, slices>(0xA001);
constexpr auto tables32 = makeTables<std::uint32_t, slices>(0xEDB88320);

template <class Word>
using Tables = std::array<std::array<Word, 256>, slices>;

constexpr std::make_index_sequence<8> indexes;

// Eight bytes, of which the last has `Behind` bytes behind it.
template <std::size_t Behind, class Word, std::size_t... Index>
Word takeEight(const Tables<Word>& tables, std::uint64_t bytes, std::index_sequence<Index...>)
{
    return static_cast<Word>((tables[Behind + 7 - Index][bytes >> (8 * Index) & 0xFF] ^ ...));
}

template <class Word>
Word update(const Tables<Word>& tables, Word crc, const unsigned char* data, std::size_t length)
{
    for (; length >= slices; data += slices, length -= slices)
    {
        const std::uint64_t low = loadLittle<std::uint64_t>(data) ^ crc;
        const std::uint64_t high = loadLittle<std::uint64_t>(data + 8);
        crc = static_cast<Word>(takeEight<8>(tables, low, indexes) ^ takeEight<0>(tables, high, indexes));
    }
    for (; length != 0; ++data, --length)
    {
        crc = static_cast<Word>((crc >> 8) ^ tables[0][(crc ^ *data) & 0xFF]);
    }
    return crc;
}

Crc32Update fastestCrc32()
{
    const Crc32Update wide = crc32MultiplyingWide();
    const Crc32Update narrow = crc32Multiplying();
    return wide ? wide : narrow ? narrow : crc32Portable;
}

}  // namespace

std::uint32_t crc32Portable(std::uint32_t crc, const unsigned char* data, std::size_t length)
{
    return update<std::uint32_t>(tables32, crc, data, length);
}

unsigned short crc16(unsigned short crc, const unsigned char* data, std::size_t length)
{
    return update<std::uint16_t>(tables16, crc, data, length);
}

unsigned int crc32(const unsigned char* data, std::size_t length)
{
    return crc32(0, data, length);
}

unsigned int crc32(unsigned int crc, const unsigned char* data, std::size_t length)
{
    constexpr std::size_t shortest = 64;  // for which the others begin
    if (length < shortest)
    {
        return ~crc32Portable(~crc, data, length);
    }
    static const Crc32Update s_update = fastestCrc32();
    return ~s_update(~crc, data, length);
}

}  // namespace General::Utils
