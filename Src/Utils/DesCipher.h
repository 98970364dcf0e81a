// The DES block cipher (FIPS 46-3).
#pragma once

#include <cstdint>

namespace General::Utils::Des {

/// The keys of the 16 rounds, each cut into its eight groups of six bits: those of the odd S-boxes in one word, of the even ones in the
/// other.
struct Schedule
{
    std::uint32_t keys[16][2];
};

/// A block as two words, the first byte the most significant one of the first.
struct Block
{
    std::uint32_t left;
    std::uint32_t right;
};

// Both write to where the keys are to be: no copy of them stays anywhere else.

void makeSchedule(Schedule& schedule, const unsigned char (&key)[8]);
/// The same keys in the opposite order, which decrypts.
void reverse(Schedule& backward, const Schedule& schedule);

/// Passes with up to three schedules, one after the other.
Block des(Block block, const Schedule* schedules, int count);

}  // namespace General::Utils::Des
