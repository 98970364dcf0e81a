// CRC-32 by multiplication. Compiled for PCLMUL and SSE 4.1.
#include "Src/Utils/Crc32Update.h"
#include "Src/Utils/x86/CrcFold.h"

namespace General::Utils {

namespace {

constexpr std::size_t blockSize = 16;
constexpr std::size_t lanes = 4;

std::uint32_t update(std::uint32_t crc, const unsigned char* data, std::size_t length)
{
    if (length < lanes * blockSize)
    {
        return crc32Portable(crc, data, length);
    }
    __m128i sum[lanes];
    for (std::size_t lane = 0; lane < lanes; ++lane)
    {
        sum[lane] = loadBlock(data + lane * blockSize);
    }
    sum[0] = _mm_xor_si128(sum[0], _mm_cvtsi32_si128(static_cast<int>(crc)));
    data += lanes * blockSize;
    length -= lanes * blockSize;
    const __m128i byAll = foldBy<lanes * 128>();
    for (; length >= lanes * blockSize; data += lanes * blockSize, length -= lanes * blockSize)
    {
        for (std::size_t lane = 0; lane < lanes; ++lane)
        {
            sum[lane] = fold(sum[lane], byAll, loadBlock(data + lane * blockSize));
        }
    }
    const __m128i byOne = foldBy<128>();
    for (std::size_t lane = 1; lane < lanes; ++lane)
    {
        sum[0] = fold(sum[0], byOne, sum[lane]);
    }
    for (; length >= blockSize; data += blockSize, length -= blockSize)
    {
        sum[0] = fold(sum[0], byOne, loadBlock(data));
    }
    unsigned char rest[blockSize];
    _mm_storeu_si128(reinterpret_cast<__m128i*>(rest), sum[0]);
    return crc32Portable(crc32Portable(0, rest, blockSize), data, length);
}

}  // namespace

Crc32Update crc32Multiplying()
{
    return __builtin_cpu_supports("pclmul") && __builtin_cpu_supports("sse4.1") ? update : nullptr;
}

}  // namespace General::Utils
