// What the engines on the processor's AES instructions share. Included by files that are compiled for these instructions, and by nothing
// else; it uses no function of the standard library, which could stay in the program for others to call.
#pragma once

#include <immintrin.h>

#include "Src/Utils/Aes/AesCipher.h"

namespace General::Utils::AES {

namespace {

// Round keys where the schedule has them: copying them would cost more than a block.
struct Keys
{
    explicit Keys(const Schedule& schedule) : key(reinterpret_cast<const __m128i*>(schedule.bytes)), rounds(schedule.rounds) {}

    const __m128i* const key;
    const int rounds;
};

inline __m128i load(const unsigned char* bytes)
{
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
}

inline void store(unsigned char* bytes, __m128i block)
{
    _mm_storeu_si128(reinterpret_cast<__m128i*>(bytes), block);
}

// Blocks side by side: an instruction takes several cycles, but one or two begin in each.
template <bool Encrypts, std::size_t Lanes>
inline void transform(const Keys& keys, __m128i (&block)[Lanes])
{
    for (std::size_t lane = 0; lane < Lanes; ++lane)
    {
        block[lane] = _mm_xor_si128(block[lane], keys.key[0]);
    }
    for (int round = 1; round < keys.rounds; ++round)
    {
        for (std::size_t lane = 0; lane < Lanes; ++lane)
        {
            block[lane] = Encrypts ? _mm_aesenc_si128(block[lane], keys.key[round]) : _mm_aesdec_si128(block[lane], keys.key[round]);
        }
    }
    for (std::size_t lane = 0; lane < Lanes; ++lane)
    {
        block[lane] =
            Encrypts ? _mm_aesenclast_si128(block[lane], keys.key[keys.rounds]) : _mm_aesdeclast_si128(block[lane], keys.key[keys.rounds]);
    }
}

inline __m128i encryptOne(const Keys& keys, __m128i block)
{
    __m128i one[1] = {block};
    transform<true>(keys, one);
    return one[0];
}

// The counter is a big-endian number; these have it as two words of the machine.
struct Counter
{
    explicit Counter(const unsigned char* bytes)
        : high(__builtin_bswap64(static_cast<unsigned long long>(_mm_cvtsi128_si64(load(bytes))))),
          low(__builtin_bswap64(static_cast<unsigned long long>(_mm_extract_epi64(load(bytes), 1))))
    {
    }

    __m128i next()
    {
        const __m128i block =
            _mm_set_epi64x(static_cast<long long>(__builtin_bswap64(low)), static_cast<long long>(__builtin_bswap64(high)));
        high += ++low == 0;
        return block;
    }

    unsigned long long high;
    unsigned long long low;
};

}  // namespace

}  // namespace General::Utils::AES
