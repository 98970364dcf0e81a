// The block function of SHA-1, in two forms that give the same.
#pragma once

#include <cstddef>
#include <cstdint>

namespace General::Utils {

struct Sha1State
{
    std::uint32_t words[5];
};

/// Takes in blocks of 64 bytes.
using Sha1Blocks = void (*)(Sha1State& state, const unsigned char* data, std::size_t blocks);

void sha1Portable(Sha1State& state, const unsigned char* data, std::size_t blocks);

/// By the processor's own instructions; null if it has none.
Sha1Blocks sha1Hardware();

}  // namespace General::Utils
