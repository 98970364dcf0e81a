// Reading UTF-8 with AVX-512 VBMI2, for which this is compiled: it uses no function of the standard library, which could stay in the
// program for others to call. (R. Clausecker, D. Lemire: Transcoding Unicode Characters with AVX-512 Instructions, 2023.)
#include "Src/Utils/CharSet/WideUtf8.h"

#include <immintrin.h>

#include <cstdint>

namespace General::Utils {

namespace {

constexpr int atOnce = 32;

// 32 bytes as words.
inline __m512i words(const unsigned char* bytes)
{
    return _mm512_cvtepu8_epi16(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(bytes)));
}

inline __m512i all(short word)
{
    return _mm512_set1_epi16(word);
}

const unsigned char* read(unsigned short*& out, const unsigned char* in, const unsigned char* end)
{
    // The bytes in front that the last sequence of the 32 before took. Known so late that stepping over them would have each round wait for
    // the one before.
    std::uint32_t taken = 0;
    for (; end - in >= atOnce + 2; in += atOnce)
    {
        // Each byte as if it were the first of a sequence, with the two behind it.
        const __m512i first = words(in);
        const __mmask32 ascii = _mm512_cmplt_epu16_mask(first, all(0x80));
        if (ascii == ~__mmask32{0} && taken == 0)
        {
            _mm512_storeu_si512(out, first);
            out += atOnce;
            continue;
        }
        const __m512i second = _mm512_and_si512(words(in + 1), all(0x3F));
        const __m512i third = _mm512_and_si512(words(in + 2), all(0x3F));
        const __mmask32 continues = ~ascii & _mm512_cmplt_epu16_mask(first, all(0xC0));
        const __mmask32 three = _mm512_cmpge_epu16_mask(first, all(0xE0));
        const __mmask32 two = ~(ascii | continues | three);
        const __m512i ofTwo = _mm512_or_si512(_mm512_slli_epi16(_mm512_and_si512(first, all(0x1F)), 6), second);
        const __m512i ofThree = _mm512_or_si512(_mm512_or_si512(_mm512_slli_epi16(first, 12), _mm512_slli_epi16(second, 6)), third);
        const __m512i units = _mm512_mask_mov_epi16(_mm512_mask_mov_epi16(first, two, ofTwo), three, ofThree);

        const std::uint64_t follow = static_cast<std::uint64_t>(two | three) << 1 | static_cast<std::uint64_t>(three) << 2;
        const auto beyond = static_cast<std::uint32_t>(follow >> atOnce);
        const std::uint32_t there = ((in[32] & 0xC0) == 0x80 ? 1U : 0U) | ((in[33] & 0xC0) == 0x80 ? 2U : 0U);
        const __mmask32 tooLong =
            _mm512_mask_cmplt_epu16_mask(two, units, all(0x80)) | _mm512_mask_cmplt_epu16_mask(three, units, all(0x800));
        const __mmask32 longer = _mm512_cmpge_epu16_mask(first, all(0xF0));
        if ((tooLong | longer) != 0 || (static_cast<std::uint32_t>(follow) | taken) != continues || (there & beyond) != beyond)
        {
            break;
        }
        const __mmask32 starts = ~continues;
        const auto count = static_cast<unsigned int>(__builtin_popcount(starts));
        _mm512_mask_storeu_epi16(out, _bzhi_u32(~0U, count), _mm512_maskz_compress_epi16(starts, units));
        out += count;
        taken = beyond;
    }
    return in + __builtin_popcount(taken);
}

}  // namespace

WideUtf8 wideUtf8()
{
    return __builtin_cpu_supports("avx512vbmi2") && __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512vl") &&
                   __builtin_cpu_supports("bmi2")
               ? &read
               : nullptr;
}

}  // namespace General::Utils
