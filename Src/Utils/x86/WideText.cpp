// Base16 and base64 with AVX2, for which this is compiled. (W. Mula, D. Lemire: Faster Base64 Encoding and Decoding Using AVX2
// Instructions, 2018.)
#include "Src/Utils/WideText.h"

#include <immintrin.h>

namespace General::Utils {

namespace {

inline __m256i load(const void* from)
{
    return _mm256_loadu_si256(static_cast<const __m256i*>(from));
}

inline __m256i twice(const void* table)
{
    return _mm256_broadcastsi128_si256(_mm_loadu_si128(static_cast<const __m128i*>(table)));
}

inline __m256i bytes(int value)
{
    return _mm256_set1_epi8(static_cast<char>(value));
}

std::size_t base16Encode(char* text, const unsigned char* from, std::size_t length)
{
    const __m256i digits = twice("0123456789ABCDEF");
    std::size_t done = 0;
    for (; length - done >= 16; done += 16)
    {
        const __m256i wide = _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(from + done)));
        const __m256i high = _mm256_srli_epi16(wide, 4);
        const __m256i low = _mm256_and_si256(_mm256_slli_epi16(wide, 8), _mm256_set1_epi16(0x0F00));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(text + 2 * done), _mm256_shuffle_epi8(digits, _mm256_or_si256(high, low)));
    }
    return done;
}

std::size_t base16Decode(unsigned char* to, const char* text, std::size_t length)
{
    std::size_t done = 0;
    for (; length - done >= 32; done += 32)
    {
        const __m256i characters = load(text + done);
        const __m256i number = _mm256_sub_epi8(characters, bytes('0'));
        const __m256i letter = _mm256_sub_epi8(_mm256_or_si256(characters, bytes(0x20)), bytes('a'));
        const __m256i isNumber = _mm256_cmpeq_epi8(_mm256_min_epu8(number, bytes(9)), number);
        const __m256i isLetter = _mm256_cmpeq_epi8(_mm256_min_epu8(letter, bytes(5)), letter);
        if (_mm256_movemask_epi8(_mm256_or_si256(isNumber, isLetter)) != -1)
        {
            break;
        }
        const __m256i values = _mm256_blendv_epi8(_mm256_add_epi8(letter, bytes(10)), number, isNumber);
        const __m256i pairs = _mm256_maddubs_epi16(values, _mm256_set1_epi16(0x0110));
        const __m256i packed = _mm256_permute4x64_epi64(_mm256_packus_epi16(pairs, pairs), 0x08);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to + done / 2), _mm256_castsi256_si128(packed));
    }
    return done;
}

std::size_t base64Encode(char* text, const unsigned char* from, std::size_t length)
{
    // Three bytes b0 b1 b2 as b1 b0 b2 b1, in which the groups of six bits lie in words of their own.
    const __m256i spread =
        _mm256_setr_epi8(1, 0, 2, 1, 4, 3, 5, 4, 7, 6, 8, 7, 10, 9, 11, 10, 1, 0, 2, 1, 4, 3, 5, 4, 7, 6, 8, 7, 10, 9, 11, 10);
    // What turns a value into its character: by the kind that it is of.
    const __m256i offsets = _mm256_setr_epi8(71, -4, -4, -4, -4, -4, -4, -4, -4, -4, -4, -19, -16, 65, 0, 0, 71, -4, -4, -4, -4, -4, -4, -4,
                                             -4, -4, -4, -19, -16, 65, 0, 0);
    std::size_t done = 0;
    for (; length - done >= 28; done += 24)  // 28 are read
    {
        const __m128i first = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + done));
        const __m128i second = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + done + 12));
        const __m256i in = _mm256_shuffle_epi8(_mm256_set_m128i(second, first), spread);
        const __m256i odd = _mm256_mulhi_epu16(_mm256_and_si256(in, _mm256_set1_epi32(0x0FC0FC00)), _mm256_set1_epi32(0x04000040));
        const __m256i even = _mm256_mullo_epi16(_mm256_and_si256(in, _mm256_set1_epi32(0x003F03F0)), _mm256_set1_epi32(0x01000010));
        const __m256i values = _mm256_or_si256(odd, even);
        const __m256i isCapital = _mm256_cmpgt_epi8(bytes(26), values);
        const __m256i kind = _mm256_or_si256(_mm256_subs_epu8(values, bytes(51)), _mm256_and_si256(isCapital, bytes(13)));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(text + done / 3 * 4), _mm256_add_epi8(values, _mm256_shuffle_epi8(offsets, kind)));
    }
    return done;
}

std::size_t base64Decode(char* to, const char* text, std::size_t length)
{
    // A character is in the alphabet if the entries of its two halves have no bit in common.
    const __m256i ofLow = _mm256_setr_epi8(0x15, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x13, 0x1A, 0x1B, 0x1B, 0x1B, 0x1A,
                                           0x15, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x13, 0x1A, 0x1B, 0x1B, 0x1B, 0x1A);
    const __m256i ofHigh = _mm256_setr_epi8(0x10, 0x10, 0x01, 0x02, 0x04, 0x08, 0x04, 0x08, 0x10, 0x10, 0x10, 0x10, 0x10, 0x10, 0x10, 0x10,
                                            0x10, 0x10, 0x01, 0x02, 0x04, 0x08, 0x04, 0x08, 0x10, 0x10, 0x10, 0x10, 0x10, 0x10, 0x10, 0x10);
    const __m256i offsets = _mm256_setr_epi8(0, 16, 19, 4, -65, -65, -71, -71, 0, 0, 0, 0, 0, 0, 0, 0, 0, 16, 19, 4, -65, -65, -71, -71, 0,
                                             0, 0, 0, 0, 0, 0, 0);
    const __m256i close =
        _mm256_setr_epi8(2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1, 2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1);
    const __m256i slash = bytes(0x2F);
    std::size_t done = 0;
    for (; length - done >= 32; done += 32, to += 24)
    {
        const __m256i in = load(text + done);
        const __m256i high = _mm256_and_si256(_mm256_srli_epi32(in, 4), slash);
        const __m256i low = _mm256_and_si256(in, slash);
        if (_mm256_testz_si256(_mm256_shuffle_epi8(ofLow, low), _mm256_shuffle_epi8(ofHigh, high)) == 0)
        {
            break;
        }
        const __m256i kind = _mm256_add_epi8(_mm256_cmpeq_epi8(in, slash), high);
        const __m256i values = _mm256_add_epi8(in, _mm256_shuffle_epi8(offsets, kind));
        const __m256i pairs = _mm256_maddubs_epi16(values, _mm256_set1_epi32(0x01400140));
        const __m256i triples = _mm256_shuffle_epi8(_mm256_madd_epi16(pairs, _mm256_set1_epi32(0x00011000)), close);
        const __m256i packed = _mm256_permutevar8x32_epi32(triples, _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 7, 7));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm256_castsi256_si128(packed));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(to + 16), _mm256_extracti128_si256(packed, 1));
    }
    return done;
}

}  // namespace

const WideText* wideText()
{
    static constexpr WideText s_wide = {base16Encode, base16Decode, base64Encode, base64Decode};
    return __builtin_cpu_supports("avx2") ? &s_wide : nullptr;
}

}  // namespace General::Utils
