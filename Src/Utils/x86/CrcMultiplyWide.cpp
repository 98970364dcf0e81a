// CRC-32 by multiplication of four words at once. Compiled for VPCLMULQDQ, PCLMUL and AVX-512.
#include "Src/Utils/Crc32Update.h"
#include "Src/Utils/x86/CrcFold.h"

namespace General::Utils {

namespace {

constexpr std::size_t blockSize = 64;
constexpr std::size_t lanes = 4;

inline __m512i foldWide(__m512i from, __m512i by, __m512i to)
{
    constexpr int exclusiveOr = 0x96;  // of three
    return _mm512_ternarylogic_epi64(_mm512_clmulepi64_epi128(from, by, 0x00), _mm512_clmulepi64_epi128(from, by, 0x11), to, exclusiveOr);
}

std::uint32_t update(std::uint32_t crc, const unsigned char* data, std::size_t length)
{
    if (length < lanes * blockSize)
    {
        return crc32Multiplying()(crc, data, length);
    }
    __m512i sum[lanes];
    for (std::size_t lane = 0; lane < lanes; ++lane)
    {
        sum[lane] = _mm512_loadu_si512(data + lane * blockSize);
    }
    sum[0] = _mm512_xor_si512(sum[0], _mm512_zextsi128_si512(_mm_cvtsi32_si128(static_cast<int>(crc))));
    data += lanes * blockSize;
    length -= lanes * blockSize;
    const __m512i byAll = _mm512_broadcast_i32x4(foldBy<lanes * 512>());
    for (; length >= lanes * blockSize; data += lanes * blockSize, length -= lanes * blockSize)
    {
        for (std::size_t lane = 0; lane < lanes; ++lane)
        {
            sum[lane] = foldWide(sum[lane], byAll, _mm512_loadu_si512(data + lane * blockSize));
        }
    }
    const __m512i byOne = _mm512_broadcast_i32x4(foldBy<512>());
    for (std::size_t lane = 1; lane < lanes; ++lane)
    {
        sum[0] = foldWide(sum[0], byOne, sum[lane]);
    }
    for (; length >= blockSize; data += blockSize, length -= blockSize)
    {
        sum[0] = foldWide(sum[0], byOne, _mm512_loadu_si512(data));
    }
    const __m128i byPart = foldBy<128>();
    __m128i part = _mm512_castsi512_si128(sum[0]);
    part = fold(part, byPart, _mm512_extracti32x4_epi32(sum[0], 1));
    part = fold(part, byPart, _mm512_extracti32x4_epi32(sum[0], 2));
    part = fold(part, byPart, _mm512_extracti32x4_epi32(sum[0], 3));
    for (; length >= 16; data += 16, length -= 16)
    {
        part = fold(part, byPart, loadBlock(data));
    }
    unsigned char rest[16];
    _mm_storeu_si128(reinterpret_cast<__m128i*>(rest), part);
    return crc32Portable(crc32Portable(0, rest, sizeof(rest)), data, length);
}

}  // namespace

Crc32Update crc32MultiplyingWide()
{
    return crc32Multiplying() && __builtin_cpu_supports("vpclmulqdq") && __builtin_cpu_supports("avx512f") ? update : nullptr;
}

}  // namespace General::Utils
