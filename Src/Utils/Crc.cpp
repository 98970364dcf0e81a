#include "utils/Crc.h"

#include <array>
#include <cstdint>

#include "Src/Utils/Bytes.h"

namespace General::Utils {

namespace {

// Tables for slicing: entry [k][b] is the effect of byte b with k bytes behind it, so that several bytes are taken in one step. (M. Kounavis, F. Berry: A
// Systematic Approach to Building High Performance Software-based CRC Generators, 2005.)
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
Word update(const std::array<std::array<Word, 256>, slices>& tables, Word crc, const unsigned char* data, std::size_t length)
{
    for (; length >= slices; data += slices, length -= slices)
    {
        std::uint64_t low = loadLittle<std::uint64_t>(data) ^ crc;
        std::uint64_t high = loadLittle<std::uint64_t>(data + 8);
        Word next = 0;
        for (std::size_t i = 0; i < 8; ++i, low >>= 8, high >>= 8)
        {
            next = static_cast<Word>(next ^ tables[slices - 1 - i][low & 0xFF] ^ tables[slices - 9 - i][high & 0xFF]);
        }
        crc = next;
    }
    for (; length != 0; ++data, --length)
    {
        crc = static_cast<Word>((crc >> 8) ^ tables[0][(crc ^ *data) & 0xFF]);
    }
    return crc;
}

}  // namespace

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
    return ~update<std::uint32_t>(tables32, ~crc, data, length);
}

}  // namespace General::Utils
