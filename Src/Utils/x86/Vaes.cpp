// AES by instructions for four blocks at once. Compiled for AES, VAES and AVX-512. What cannot be done side by side is that of AesNi.cpp.
#include "Src/Utils/Aes/AesEngine.h"
#include "Src/Utils/x86/AesRounds.h"
#include "Src/Utils/x86/Cpu.h"

namespace General::Utils::AES {

namespace {

constexpr std::size_t lanes = 4;
constexpr std::size_t vectorSize = 64;
constexpr std::size_t blocksAtOnce = lanes * 4;

// Each round key four times.
struct WideKeys
{
    explicit WideKeys(const Schedule& schedule) : rounds(schedule.rounds)
    {
        for (int i = 0; i <= rounds; ++i)
        {
            key[i] = _mm512_broadcast_i32x4(_mm_load_si128(reinterpret_cast<const __m128i*>(schedule.bytes) + i));
        }
    }

    WideKeys(const WideKeys&) = delete;
    WideKeys& operator=(const WideKeys&) = delete;
    ~WideKeys()
    {
        for (int i = 0; i <= rounds; ++i)
        {
            key[i] = _mm512_setzero_si512();
        }
        asm volatile("" : : "r"(key) : "memory");  // the stores stay
    }

    __m512i key[15];
    const int rounds;
};

inline __m512i loadWide(const unsigned char* bytes)
{
    return _mm512_loadu_si512(bytes);
}

template <bool Encrypts>
inline void transform(const WideKeys& keys, __m512i (&block)[lanes])
{
    for (std::size_t lane = 0; lane < lanes; ++lane)
    {
        block[lane] = _mm512_xor_si512(block[lane], keys.key[0]);
    }
    for (int round = 1; round < keys.rounds; ++round)
    {
        for (std::size_t lane = 0; lane < lanes; ++lane)
        {
            block[lane] =
                Encrypts ? _mm512_aesenc_epi128(block[lane], keys.key[round]) : _mm512_aesdec_epi128(block[lane], keys.key[round]);
        }
    }
    for (std::size_t lane = 0; lane < lanes; ++lane)
    {
        block[lane] = Encrypts ? _mm512_aesenclast_epi128(block[lane], keys.key[keys.rounds])
                               : _mm512_aesdeclast_epi128(block[lane], keys.key[keys.rounds]);
    }
}

template <bool Encrypts>
void ecb(const Schedule& schedule, unsigned char* output, const unsigned char* input, std::size_t blocks)
{
    if (blocks >= blocksAtOnce)
    {
        const WideKeys keys(schedule);
        for (; blocks >= blocksAtOnce; blocks -= blocksAtOnce, output += lanes * vectorSize, input += lanes * vectorSize)
        {
            __m512i block[lanes];
            for (std::size_t lane = 0; lane < lanes; ++lane)
            {
                block[lane] = loadWide(input + lane * vectorSize);
            }
            transform<Encrypts>(keys, block);
            for (std::size_t lane = 0; lane < lanes; ++lane)
            {
                _mm512_storeu_si512(output + lane * vectorSize, block[lane]);
            }
        }
    }
    (Encrypts ? aesNiEngine()->encrypt : aesNiEngine()->decrypt)(schedule, output, input, blocks);
}

// As in AesNi.cpp: the inputs before those taken are the same text, one block further to the front.
template <bool Cbc>
void unchainAll(const Schedule& schedule, unsigned char* iv, unsigned char* output, const unsigned char* input, std::size_t blocks)
{
    if (blocks >= blocksAtOnce)
    {
        const WideKeys keys(schedule);
        __m128i chain = load(iv);
        for (; blocks >= blocksAtOnce; blocks -= blocksAtOnce, output += lanes * vectorSize, input += lanes * vectorSize)
        {
            __m512i taken[lanes];
            __m512i before[lanes];
            __m512i block[lanes];
            __m512i last = _mm512_broadcast_i32x4(chain);
            for (std::size_t lane = 0; lane < lanes; ++lane)
            {
                taken[lane] = loadWide(input + lane * vectorSize);
                before[lane] = _mm512_alignr_epi64(taken[lane], last, 6);
                last = taken[lane];
                block[lane] = Cbc ? taken[lane] : before[lane];
            }
            chain = _mm512_extracti32x4_epi32(last, 3);
            transform<!Cbc>(keys, block);
            for (std::size_t lane = 0; lane < lanes; ++lane)
            {
                _mm512_storeu_si512(output + lane * vectorSize, _mm512_xor_si512(block[lane], Cbc ? before[lane] : taken[lane]));
            }
        }
        store(iv, chain);
    }
    (Cbc ? aesNiEngine()->cbcDecrypt : aesNiEngine()->cfb128Decrypt)(schedule, iv, output, input, blocks);
}

void ctr(const Schedule& schedule, unsigned char* iv, unsigned char* output, const unsigned char* input, std::size_t blocks)
{
    if (blocks >= blocksAtOnce)
    {
        const WideKeys keys(schedule);
        Counter counter(iv);
        const __m512i swap = _mm512_broadcast_i32x4(_mm_set_epi8(8, 9, 10, 11, 12, 13, 14, 15, 0, 1, 2, 3, 4, 5, 6, 7));
        for (; blocks >= blocksAtOnce; blocks -= blocksAtOnce, output += lanes * vectorSize, input += lanes * vectorSize)
        {
            __m512i block[lanes];
            if (counter.low <= ~0ull - blocksAtOnce)
            {
                // The low words count without a carry: four blocks are one addition.
                const __m512i first =
                    _mm512_broadcast_i32x4(_mm_set_epi64x(static_cast<long long>(counter.low), static_cast<long long>(counter.high)));
                for (std::size_t lane = 0; lane < lanes; ++lane)
                {
                    const auto from = static_cast<long long>(4 * lane);
                    block[lane] = _mm512_shuffle_epi8(
                        _mm512_add_epi64(first, _mm512_set_epi64(from + 3, 0, from + 2, 0, from + 1, 0, from, 0)), swap);
                }
                counter.low += blocksAtOnce;
            }
            else
            {
                for (std::size_t lane = 0; lane < lanes; ++lane)
                {
                    __m512i wide = _mm512_castsi128_si512(counter.next());
                    wide = _mm512_inserti32x4(wide, counter.next(), 1);
                    wide = _mm512_inserti32x4(wide, counter.next(), 2);
                    block[lane] = _mm512_inserti32x4(wide, counter.next(), 3);
                }
            }
            transform<true>(keys, block);
            for (std::size_t lane = 0; lane < lanes; ++lane)
            {
                _mm512_storeu_si512(output + lane * vectorSize, _mm512_xor_si512(block[lane], loadWide(input + lane * vectorSize)));
            }
        }
        store(iv, counter.next());
    }
    aesNiEngine()->ctr(schedule, iv, output, input, blocks);
}

}  // namespace

const Engine* vaesEngine()
{
    if (!aesNiEngine() || !ExtendedFeatures().vaes() || !__builtin_cpu_supports("avx512f") || !__builtin_cpu_supports("avx512bw"))
    {
        return nullptr;
    }
    static const Engine s_engine = {ecb<true>,
                                    ecb<false>,
                                    aesNiEngine()->cbcEncrypt,
                                    unchainAll<true>,
                                    aesNiEngine()->cfb8Encrypt,
                                    aesNiEngine()->cfb8Decrypt,
                                    aesNiEngine()->cfb128Encrypt,
                                    unchainAll<false>,
                                    ctr};
    return &s_engine;
}

}  // namespace General::Utils::AES
