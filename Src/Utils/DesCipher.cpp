#include "Src/Utils/DesCipher.h"

#include <array>
#include <bit>
#include <cstddef>
#include <utility>

#include "Src/Utils/Bytes.h"

namespace General::Utils::Des {

namespace {

// FIPS 46-3. Bits are numbered from 1, the most significant one.

constexpr std::uint8_t boxes[8][64] = {
    {14, 4, 13, 1, 2,  15, 11, 8,  3,  10, 6, 12, 5, 9,  0, 7, 0,  15, 7, 4, 14, 2, 13, 1, 10, 6,  12, 11, 9,  5, 3, 8,
     4,  1, 14, 8, 13, 6,  2,  11, 15, 12, 9, 7,  3, 10, 5, 0, 15, 12, 8, 2, 4,  9, 1,  7, 5,  11, 3,  14, 10, 0, 6, 13},
    {15, 1,  8, 14, 6,  11, 3,  4, 9, 7, 2,  13, 12, 0, 5, 10, 3,  13, 4,  7, 15, 2,  8, 14, 12, 0, 1, 10, 6, 9, 11, 5,
     0,  14, 7, 11, 10, 4,  13, 1, 5, 8, 12, 6,  9,  3, 2, 15, 13, 8,  10, 1, 3,  15, 4, 2,  11, 6, 7, 12, 0, 5, 14, 9},
    {10, 0, 9, 14, 6, 3,  15, 5, 1,  13, 12, 7,  11, 4,  2,  8, 13, 7,  0,  9, 3, 4, 6, 10, 2, 8,  5,  14, 12, 11, 15, 1,
     13, 6, 4, 9,  8, 15, 3,  0, 11, 1,  2,  12, 5,  10, 14, 7, 1,  10, 13, 0, 6, 9, 8, 7,  4, 15, 14, 3,  11, 5,  2,  12},
    {7,  13, 14, 3, 0,  6,  9, 10, 1,  2, 8, 5,  11, 12, 4, 15, 13, 8,  11, 5, 6,  15, 0,  3, 4, 7, 2, 12, 1,  10, 14, 9,
     10, 6,  9,  0, 12, 11, 7, 13, 15, 1, 3, 14, 5,  2,  8, 4,  3,  15, 0,  6, 10, 1,  13, 8, 9, 4, 5, 11, 12, 7,  2,  14},
    {2, 12, 4, 1,  7,  10, 11, 6, 8,  5, 3,  15, 13, 0, 14, 9,  14, 11, 2,  12, 4, 7,  13, 1,  5, 0,  15, 10, 3,  9, 8, 6,
     4, 2,  1, 11, 10, 13, 7,  8, 15, 9, 12, 5,  6,  3, 0,  14, 11, 8,  12, 7,  1, 14, 2,  13, 6, 15, 0,  9,  10, 4, 5, 3},
    {12, 1,  10, 15, 9, 2, 6,  8, 0, 13, 3, 4,  14, 7,  5,  11, 10, 15, 4, 2,  7, 12, 9,  5,  6,  1,  13, 14, 0, 11, 3, 8,
     9,  14, 15, 5,  2, 8, 12, 3, 7, 0,  4, 10, 1,  13, 11, 6,  4,  3,  2, 12, 9, 5,  15, 10, 11, 14, 1,  7,  6, 0,  8, 13},
    {4, 11, 2,  14, 15, 0, 8, 13, 3,  12, 9, 7, 5, 10, 6, 1, 13, 0,  11, 7, 4, 9, 1,  10, 14, 3, 5, 12, 2,  15, 8, 6,
     1, 4,  11, 13, 12, 3, 7, 14, 10, 15, 6, 8, 0, 5,  9, 2, 6,  11, 13, 8, 1, 4, 10, 7,  9,  5, 0, 15, 14, 2,  3, 12},
    {13, 2,  8, 4, 6, 15, 11, 1, 10, 9, 3,  14, 5,  0, 12, 7, 1, 15, 13, 8, 10, 3,  7, 4,  12, 5,  6, 11, 0, 14, 9, 2,
     7,  11, 4, 1, 9, 12, 14, 2, 0,  6, 10, 13, 15, 3, 5,  8, 2, 1,  14, 7, 4,  10, 8, 13, 15, 12, 9, 0,  3, 5,  6, 11}};

constexpr std::uint8_t permutation[32] = {16, 7, 20, 21, 29, 12, 28, 17, 1,  15, 23, 26, 5,  18, 31, 10,
                                          2,  8, 24, 14, 32, 27, 3,  9,  19, 13, 30, 6,  22, 11, 4,  25};

constexpr std::uint8_t keyChoice1[56] = {57, 49, 41, 33, 25, 17, 9,  1,  58, 50, 42, 34, 26, 18, 10, 2,  59, 51, 43,
                                         35, 27, 19, 11, 3,  60, 52, 44, 36, 63, 55, 47, 39, 31, 23, 15, 7,  62, 54,
                                         46, 38, 30, 22, 14, 6,  61, 53, 45, 37, 29, 21, 13, 5,  28, 20, 12, 4};

constexpr std::uint8_t keyChoice2[48] = {14, 17, 11, 24, 1,  5,  3,  28, 15, 6,  21, 10, 23, 19, 12, 4,  26, 8,  16, 7,  27, 20, 13, 2,
                                         41, 52, 31, 37, 47, 55, 30, 40, 51, 45, 33, 48, 44, 49, 39, 56, 34, 53, 46, 42, 50, 36, 29, 32};

constexpr int keyShifts[16] = {1, 1, 2, 2, 2, 2, 2, 2, 1, 2, 2, 2, 2, 2, 2, 1};

// A box and the permutation behind it in one step.
constexpr auto substitution = [] {
    std::array<std::array<std::uint32_t, 64>, 8> tables{};
    for (std::size_t box = 0; box < 8; ++box)
    {
        for (std::size_t input = 0; input < 64; ++input)
        {
            const std::size_t row = (input >> 4 & 2) | (input & 1);
            const std::size_t column = input >> 1 & 15;
            const std::uint32_t word = std::uint32_t{boxes[box][16 * row + column]} << (28 - 4 * box);
            for (std::size_t bit = 0; bit < 32; ++bit)
            {
                tables[box][input] |= (word >> (32 - permutation[bit]) & 1) << (31 - bit);
            }
        }
    }
    return tables;
}();

// Exchanges the bits of a under the mask, moved up by the shift, with those of b.
void exchange(std::uint32_t& a, std::uint32_t& b, int shift, std::uint32_t mask)
{
    const std::uint32_t difference = (a >> shift ^ b) & mask;
    b ^= difference;
    a ^= difference << shift;
}

void initialPermutation(std::uint32_t& left, std::uint32_t& right)
{
    exchange(left, right, 4, 0x0F0F0F0F);
    exchange(left, right, 16, 0x0000FFFF);
    exchange(right, left, 2, 0x33333333);
    exchange(right, left, 8, 0x00FF00FF);
    exchange(left, right, 1, 0x55555555);
}

void finalPermutation(std::uint32_t& left, std::uint32_t& right)
{
    exchange(left, right, 1, 0x55555555);
    exchange(right, left, 8, 0x00FF00FF);
    exchange(right, left, 2, 0x33333333);
    exchange(left, right, 16, 0x0000FFFF);
    exchange(left, right, 4, 0x0F0F0F0F);
}

// The expansion to 48 bits is two rotations: in each, four groups of six bits lie apart.
std::uint32_t mixed(std::uint32_t half, const std::uint32_t (&key)[2])
{
    const std::uint32_t odd = std::rotr(half, 1) ^ key[0];
    const std::uint32_t even = std::rotl(half, 3) ^ key[1];
    return substitution[0][odd >> 26] ^ substitution[2][odd >> 18 & 63] ^ substitution[4][odd >> 10 & 63] ^ substitution[6][odd >> 2 & 63] ^
           substitution[1][even >> 26] ^ substitution[3][even >> 18 & 63] ^ substitution[5][even >> 10 & 63] ^
           substitution[7][even >> 2 & 63];
}

}  // namespace

void makeSchedule(Schedule& schedule, const unsigned char (&key)[8])
{
    const auto bits = loadBig<std::uint64_t>(key);
    std::uint32_t halves[2] = {};  // of 28 bits
    for (std::size_t i = 0; i < 56; ++i)
    {
        halves[i / 28] = halves[i / 28] << 1 | static_cast<std::uint32_t>(bits >> (64 - keyChoice1[i]) & 1);
    }
    schedule = {};
    for (std::size_t round = 0; round < 16; ++round)
    {
        for (std::uint32_t& half : halves)
        {
            half = (half << keyShifts[round] | half >> (28 - keyShifts[round])) & 0x0FFFFFFF;
        }
        const std::uint64_t both = std::uint64_t{halves[0]} << 28 | halves[1];
        for (std::size_t i = 0; i < 48; ++i)
        {
            const std::size_t box = i / 6;
            const auto bit = static_cast<std::uint32_t>(both >> (56 - keyChoice2[i]) & 1);
            schedule.keys[round][box % 2] |= bit << (31 - 8 * (box / 2) - i % 6);
        }
    }
}

void reverse(Schedule& backward, const Schedule& schedule)
{
    for (std::size_t round = 0; round < 16; ++round)
    {
        backward.keys[round][0] = schedule.keys[15 - round][0];
        backward.keys[round][1] = schedule.keys[15 - round][1];
    }
}

Block des(Block block, const Schedule* schedules, int count)
{
    auto [left, right] = block;
    initialPermutation(left, right);
    for (; count != 0; --count, ++schedules)
    {
        for (std::size_t round = 0; round < 16; round += 2)
        {
            left ^= mixed(right, schedules->keys[round]);
            right ^= mixed(left, schedules->keys[round + 1]);
        }
        std::swap(left, right);  // the permutations between two passes cancel each other
    }
    finalPermutation(left, right);
    return {left, right};
}

}  // namespace General::Utils::Des
