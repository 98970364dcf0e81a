// Folding of a CRC: bits that are D places ahead are multiplied by x^D modulo the polynomial, and added to those there. (V. Gopal and
// others: Fast CRC Computation for Generic Polynomials Using PCLMULQDQ Instruction, 2009.)
#pragma once

#include <immintrin.h>

#include <cstdint>

namespace General::Utils {

namespace {

// x^power modulo the polynomial of CRC-32, reflected, and moved up by the place that a reflected product lacks.
constexpr long long powerOfX(int power)
{
    std::uint32_t value = 1;
    for (; power != 0; --power)
    {
        value = value << 1 ^ ((value & 0x80000000) != 0 ? 0x04C11DB7 : 0);
    }
    long long reflected = 0;
    for (int bit = 0; bit < 32; ++bit)
    {
        reflected |= static_cast<long long>(value >> bit & 1) << (32 - bit);
    }
    return reflected;
}

static_assert(powerOfX(512 + 32) == 0x154442bd4 && powerOfX(512 - 32) == 0x1c6e41596);

// For a distance in bits.
template <int Distance>
inline __m128i foldBy()
{
    constexpr long long high = powerOfX(Distance - 32);
    constexpr long long low = powerOfX(Distance + 32);
    return _mm_set_epi64x(high, low);
}

inline __m128i fold(__m128i from, __m128i by, __m128i to)
{
    return _mm_xor_si128(_mm_xor_si128(_mm_clmulepi64_si128(from, by, 0x00), _mm_clmulepi64_si128(from, by, 0x11)), to);
}

inline __m128i loadBlock(const unsigned char* data)
{
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(data));
}

}  // namespace

}  // namespace General::Utils
