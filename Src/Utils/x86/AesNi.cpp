// AES by the processor's instructions. Compiled for AES and SSE 4.1.
#include "Src/Utils/Aes/AesEngine.h"
#include "Src/Utils/x86/AesRounds.h"

namespace General::Utils::AES {

namespace {

constexpr std::size_t lanes = 8;

template <bool Encrypts>
void ecb(const Schedule& schedule, unsigned char* output, const unsigned char* input, std::size_t blocks)
{
    const Keys keys(schedule);
    for (; blocks >= lanes; blocks -= lanes, output += lanes * blockSize, input += lanes * blockSize)
    {
        __m128i block[lanes];
        for (std::size_t lane = 0; lane < lanes; ++lane)
        {
            block[lane] = load(input + lane * blockSize);
        }
        transform<Encrypts>(keys, block);
        for (std::size_t lane = 0; lane < lanes; ++lane)
        {
            store(output + lane * blockSize, block[lane]);
        }
    }
    for (; blocks != 0; --blocks, output += blockSize, input += blockSize)
    {
        __m128i block[1] = {load(input)};
        transform<Encrypts>(keys, block);
        store(output, block[0]);
    }
}

void cbcEncrypt(const Schedule& schedule, unsigned char* iv, unsigned char* output, const unsigned char* input, std::size_t blocks)
{
    const Keys keys(schedule);
    __m128i chain = load(iv);
    for (; blocks != 0; --blocks, output += blockSize, input += blockSize)
    {
        chain = encryptOne(keys, _mm_xor_si128(chain, load(input)));
        store(output, chain);
    }
    store(iv, chain);
}

// Blocks of which each is combined with the input before it: decrypted ones in CBC, the encrypted inputs before them in CFB.
template <bool Cbc, std::size_t Lanes>
__m128i unchain(const Keys& keys, __m128i chain, unsigned char* output, const unsigned char* input)
{
    __m128i taken[Lanes];
    __m128i block[Lanes];
    for (std::size_t lane = 0; lane < Lanes; ++lane)
    {
        taken[lane] = load(input + lane * blockSize);
        block[lane] = Cbc ? taken[lane] : lane == 0 ? chain : taken[lane - 1];
    }
    transform<!Cbc>(keys, block);
    for (std::size_t lane = 0; lane < Lanes; ++lane)
    {
        const __m128i other = !Cbc ? taken[lane] : lane == 0 ? chain : taken[lane - 1];
        store(output + lane * blockSize, _mm_xor_si128(block[lane], other));
    }
    return taken[Lanes - 1];
}

template <bool Cbc>
void unchainAll(const Schedule& schedule, unsigned char* iv, unsigned char* output, const unsigned char* input, std::size_t blocks)
{
    const Keys keys(schedule);
    __m128i chain = load(iv);
    for (; blocks >= lanes; blocks -= lanes, output += lanes * blockSize, input += lanes * blockSize)
    {
        chain = unchain<Cbc, lanes>(keys, chain, output, input);
    }
    for (; blocks != 0; --blocks, output += blockSize, input += blockSize)
    {
        chain = unchain<Cbc, 1>(keys, chain, output, input);
    }
    store(iv, chain);
}

void cfb128Encrypt(const Schedule& schedule, unsigned char* iv, unsigned char* output, const unsigned char* input, std::size_t blocks)
{
    const Keys keys(schedule);
    __m128i chain = load(iv);
    for (; blocks != 0; --blocks, output += blockSize, input += blockSize)
    {
        chain = _mm_xor_si128(encryptOne(keys, chain), load(input));
        store(output, chain);
    }
    store(iv, chain);
}

void cfb8Encrypt(const Schedule& schedule, unsigned char* iv, unsigned char* output, const unsigned char* input, std::size_t bytes)
{
    const Keys keys(schedule);
    __m128i chain = load(iv);
    for (; bytes != 0; --bytes)
    {
        const __m128i given = _mm_xor_si128(encryptOne(keys, chain), _mm_cvtsi32_si128(*input++));
        chain = _mm_or_si128(_mm_srli_si128(chain, 1), _mm_slli_si128(given, 15));
        *output++ = static_cast<unsigned char>(_mm_cvtsi128_si32(given));
    }
    store(iv, chain);
}

// All registers are known before: each is the register before it, moved by a byte of the input.
void cfb8Decrypt(const Schedule& schedule, unsigned char* iv, unsigned char* output, const unsigned char* input, std::size_t bytes)
{
    const Keys keys(schedule);
    unsigned char window[blockSize + lanes];
    store(window, load(iv));
    while (bytes != 0)
    {
        const std::size_t count = bytes < lanes ? bytes : lanes;
        for (std::size_t i = 0; i < count; ++i)
        {
            window[blockSize + i] = input[i];
        }
        __m128i block[lanes];
        for (std::size_t lane = 0; lane < lanes; ++lane)
        {
            block[lane] = load(window + (lane < count ? lane : 0));
        }
        transform<true>(keys, block);
        for (std::size_t i = 0; i < count; ++i)
        {
            output[i] = static_cast<unsigned char>(window[blockSize + i] ^ _mm_cvtsi128_si32(block[i]));
        }
        store(window, load(window + count));
        output += count;
        input += count;
        bytes -= count;
    }
    store(iv, load(window));
}

template <std::size_t Lanes>
void ctrBlocks(const Keys& keys, Counter& counter, unsigned char* output, const unsigned char* input)
{
    __m128i block[Lanes];
    for (std::size_t lane = 0; lane < Lanes; ++lane)
    {
        block[lane] = counter.next();
    }
    transform<true>(keys, block);
    for (std::size_t lane = 0; lane < Lanes; ++lane)
    {
        store(output + lane * blockSize, _mm_xor_si128(block[lane], load(input + lane * blockSize)));
    }
}

void ctr(const Schedule& schedule, unsigned char* iv, unsigned char* output, const unsigned char* input, std::size_t blocks)
{
    const Keys keys(schedule);
    Counter counter(iv);
    for (; blocks >= lanes; blocks -= lanes, output += lanes * blockSize, input += lanes * blockSize)
    {
        ctrBlocks<lanes>(keys, counter, output, input);
    }
    for (; blocks != 0; --blocks, output += blockSize, input += blockSize)
    {
        ctrBlocks<1>(keys, counter, output, input);
    }
    store(iv, counter.next());
}

}  // namespace

const Engine* aesNiEngine()
{
    static constexpr Engine s_engine = {ecb<true>,     ecb<false>,        cbcEncrypt, unchainAll<true>, cfb8Encrypt, cfb8Decrypt,
                                        cfb128Encrypt, unchainAll<false>, ctr};
    return __builtin_cpu_supports("aes") && __builtin_cpu_supports("sse4.1") ? &s_engine : nullptr;
}

}  // namespace General::Utils::AES
