// SHA-1 by the processor's instructions. Compiled for SHA and SSE 4.1.
#include <immintrin.h>

#include "Src/Utils/Sha1Blocks.h"
#include "Src/Utils/x86/Cpu.h"

namespace General::Utils {

namespace {

// Four rounds: the registers a to d in one vector, e in the highest element of another, which takes the words of the message in.
template <int Group>
inline void rounds(__m128i& abcd, __m128i& e, __m128i& nextE, __m128i (&words)[4])
{
    __m128i& now = words[Group % 4];
    if constexpr (Group == 0)
    {
        e = _mm_add_epi32(e, now);
    }
    else
    {
        e = _mm_sha1nexte_epu32(e, now);
    }
    nextE = abcd;
    if constexpr (Group >= 3 && Group < 19)
    {
        words[(Group + 1) % 4] = _mm_sha1msg2_epu32(words[(Group + 1) % 4], now);
    }
    abcd = _mm_sha1rnds4_epu32(abcd, e, Group / 5);
    if constexpr (Group >= 1 && Group < 17)
    {
        words[(Group + 3) % 4] = _mm_sha1msg1_epu32(words[(Group + 3) % 4], now);
    }
    if constexpr (Group >= 2 && Group < 18)
    {
        words[(Group + 2) % 4] = _mm_xor_si128(words[(Group + 2) % 4], now);
    }
}

template <int Group>
inline void allRounds(__m128i& abcd, __m128i& e, __m128i& nextE, __m128i (&words)[4])
{
    if constexpr (Group < 20)
    {
        rounds<Group>(abcd, e, nextE, words);
        allRounds<Group + 1>(abcd, nextE, e, words);
    }
}

void process(Sha1State& state, const unsigned char* data, std::size_t blocks)
{
    const __m128i swap = _mm_set_epi64x(0x0001020304050607ll, 0x08090A0B0C0D0E0Fll);
    __m128i abcd = _mm_shuffle_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(state.words)), 0x1B);
    __m128i e = _mm_set_epi32(static_cast<int>(state.words[4]), 0, 0, 0);
    for (; blocks != 0; --blocks, data += 64)
    {
        __m128i words[4];
        for (int i = 0; i < 4; ++i)
        {
            words[i] = _mm_shuffle_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(data) + i), swap);
        }
        const __m128i abcdBefore = abcd;
        const __m128i eBefore = e;
        __m128i nextE;
        allRounds<0>(abcd, e, nextE, words);
        // After an even number of groups the old a to d, of which e comes, are in e again.
        e = _mm_sha1nexte_epu32(e, eBefore);
        abcd = _mm_add_epi32(abcd, abcdBefore);
    }
    _mm_storeu_si128(reinterpret_cast<__m128i*>(state.words), _mm_shuffle_epi32(abcd, 0x1B));
    state.words[4] = static_cast<std::uint32_t>(_mm_extract_epi32(e, 3));
}

}  // namespace

Sha1Blocks sha1Hardware()
{
    return ExtendedFeatures().sha() && __builtin_cpu_supports("sse4.1") ? process : nullptr;
}

}  // namespace General::Utils
