#include "Src/Utils/Aes/AesEngine.h"

#include <cstdint>
#include <cstring>

namespace General::Utils::AES {

namespace {

void exclusiveOr(unsigned char* output, const unsigned char* a, const unsigned char* b)
{
    std::uint64_t left[2];
    std::uint64_t right[2];
    std::memcpy(left, a, blockSize);
    std::memcpy(right, b, blockSize);
    left[0] ^= right[0];
    left[1] ^= right[1];
    std::memcpy(output, left, blockSize);
}

void increment(unsigned char* counter)
{
    for (std::size_t i = blockSize; i-- != 0 && ++counter[i] == 0;)
    {
    }
}

void encrypt(const Schedule& schedule, unsigned char* output, const unsigned char* input, std::size_t blocks)
{
    for (; blocks != 0; --blocks, output += blockSize, input += blockSize)
    {
        encryptBlock(schedule, output, input);
    }
}

void decrypt(const Schedule& schedule, unsigned char* output, const unsigned char* input, std::size_t blocks)
{
    for (; blocks != 0; --blocks, output += blockSize, input += blockSize)
    {
        decryptBlock(schedule, output, input);
    }
}

void cbcDecrypt(const Schedule& schedule, unsigned char* iv, unsigned char* output, const unsigned char* input, std::size_t blocks)
{
    for (; blocks != 0; --blocks, output += blockSize, input += blockSize)
    {
        unsigned char block[blockSize];
        std::memcpy(block, input, blockSize);  // the output may take its place
        decryptBlock(schedule, output, block);
        exclusiveOr(output, output, iv);
        std::memcpy(iv, block, blockSize);
    }
}

template <bool Encrypts>
void cfb8(const Schedule& schedule, unsigned char* iv, unsigned char* output, const unsigned char* input, std::size_t bytes)
{
    for (; bytes != 0; --bytes)
    {
        unsigned char block[blockSize];
        encryptBlock(schedule, block, iv);
        const unsigned char taken = *input++;
        const auto given = static_cast<unsigned char>(taken ^ block[0]);
        *output++ = given;
        std::memmove(iv, iv + 1, blockSize - 1);
        iv[blockSize - 1] = Encrypts ? given : taken;
    }
}

template <bool Encrypts>
void cfb128(const Schedule& schedule, unsigned char* iv, unsigned char* output, const unsigned char* input, std::size_t blocks)
{
    for (; blocks != 0; --blocks, output += blockSize, input += blockSize)
    {
        unsigned char block[blockSize];
        encryptBlock(schedule, block, iv);
        std::memcpy(iv, input, blockSize);
        exclusiveOr(output, iv, block);
        if (Encrypts)
        {
            std::memcpy(iv, output, blockSize);
        }
    }
}

void ctr(const Schedule& schedule, unsigned char* counter, unsigned char* output, const unsigned char* input, std::size_t blocks)
{
    for (; blocks != 0; --blocks, output += blockSize, input += blockSize)
    {
        unsigned char block[blockSize];
        encryptBlock(schedule, block, counter);
        increment(counter);
        exclusiveOr(output, input, block);
    }
}

const Engine& choose()
{
    if (const Engine* const vaes = vaesEngine())
    {
        return *vaes;
    }
    const Engine* const aesNi = aesNiEngine();
    return aesNi ? *aesNi : portableEngine;
}

}  // namespace

const Engine portableEngine = {encrypt, decrypt, encryptChained, cbcDecrypt, cfb8<true>, cfb8<false>, cfb128<true>, cfb128<false>, ctr};

const Engine& engine()
{
    static const Engine& s_engine = choose();
    return s_engine;
}

}  // namespace General::Utils::AES
