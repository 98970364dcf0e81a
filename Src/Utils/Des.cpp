#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>

#include "ortha/ortha3/Assert.h"
#include "ortha/ortha3/PrintLog.h"
#include "utils/TripleDes.h"

#include "Src/Utils/Bytes.h"
#include "Src/Utils/DesCipher.h"

namespace General::Utils {

using Des::Block;
using Des::Schedule;

namespace {

constexpr std::size_t keySize = 8;
constexpr std::size_t maxKeys = 3;

Block load(const unsigned char* bytes)
{
    return {loadBig<std::uint32_t>(bytes), loadBig<std::uint32_t>(bytes + 4)};
}

void store(unsigned char* bytes, const Block& block)
{
    storeBig(bytes, block.left);
    storeBig(bytes + 4, block.right);
}

// Two DES blocks, which exchange a word before and after the second pass.
void doubleBlockDes(unsigned char* output, const unsigned char* input, const Schedule* schedules)
{
    Block first = load(input);
    Block second = load(input + 8);
    for (std::size_t pass = 0; pass < maxKeys; ++pass)
    {
        first = Des::des(first, schedules + pass, 1);
        second = Des::des(second, schedules + pass, 1);
        if (pass != maxKeys - 1)
        {
            std::swap(first.right, second.left);
        }
    }
    store(output, first);
    store(output + 8, second);
}

}  // namespace

struct CTripleDes::Internal
{
    ~Internal() { wipe(this, sizeof(*this)); }

    // `output` may be `input`.
    void process(unsigned char* output, const unsigned char* input, bool encrypts) const
    {
        const Schedule* const schedules = encrypts ? encrypting : decrypting;
        blockSize == 8 ? store(output, Des::des(load(input), schedules, passes)) : doubleBlockDes(output, input, schedules);
    }

    // Whole blocks, chained if there is a vector.
    void run(unsigned char* output, const unsigned char* input, std::size_t size, bool encrypts) const
    {
        unsigned char chain[16];
        std::memcpy(chain, iv, sizeof(chain));
        for (; size != 0; size -= blockSize, output += blockSize, input += blockSize)
        {
            unsigned char block[16];
            std::memcpy(block, input, blockSize);
            if (!hasIv)
            {
                process(output, block, encrypts);
                continue;
            }
            for (std::size_t i = 0; encrypts && i < blockSize; ++i)
            {
                block[i] ^= chain[i];
            }
            process(output, block, encrypts);
            for (std::size_t i = 0; !encrypts && i < blockSize; ++i)
            {
                output[i] ^= chain[i];
            }
            std::memcpy(chain, encrypts ? output : block, blockSize);
        }
    }

    Schedule encrypting[maxKeys];
    Schedule decrypting[maxKeys];
    int passes = 1;
    std::size_t keyLength = 0;
    std::size_t blockSize = 8;
    unsigned char iv[16] = {};
    bool hasIv = false;
};

CTripleDes::CTripleDes(const unsigned char* key, std::size_t length, BlockType type, const unsigned char* iv) : m_internal(new Internal)
{
    Internal& own = *m_internal;
    own.keyLength = std::min(length, maxKeys * keySize);
    unsigned char bytes[maxKeys][keySize] = {};
    std::memcpy(bytes, key, own.keyLength);
    if (own.keyLength <= 2 * keySize)
    {
        std::memcpy(bytes[2], bytes[0], keySize);  // the third pass is as the first
    }
    Schedule keys[maxKeys];
    for (std::size_t i = 0; i < maxKeys; ++i)
    {
        Des::makeSchedule(keys[i], bytes[i]);
    }
    own.encrypting[0] = keys[0];
    Des::reverse(own.encrypting[1], keys[1]);
    own.encrypting[2] = keys[2];
    Des::reverse(own.decrypting[0], own.keyLength <= keySize ? keys[0] : keys[2]);
    own.decrypting[1] = keys[1];
    Des::reverse(own.decrypting[2], keys[0]);
    own.passes = own.keyLength <= keySize ? 1 : 3;
    own.blockSize = own.keyLength > keySize && type == blockType16 ? 16 : 8;
    own.hasIv = iv != nullptr;
    if (iv)
    {
        std::memcpy(own.iv, iv, own.blockSize);
    }
    wipe(bytes, sizeof(bytes));
    wipe(keys, sizeof(keys));
}

CTripleDes::~CTripleDes()
{
    delete m_internal;
}

namespace {

// The start of both directions: the size of the whole blocks.
std::size_t wholeBlocks(const void* self, const char* operation, std::size_t size, std::size_t blockSize)
{
    const std::size_t realSize = size - size % blockSize;
    if (realSize != size)
    {
        ::logError("this:%p CTripleDes::%s(): size is not the multiple of the 'BlockSize'!!! size:%zu, real_size:%zu\n", self, operation,
                   size, realSize);
    }
    return realSize;
}

bool isKey(const void* self, std::size_t length)
{
    if (length == 0)
    {
        ::logError("this:%p key_length is %u,is unvalid!\n", self, static_cast<unsigned int>(length));
    }
    return length != 0;
}

bool areBuffers(const unsigned char* source, const unsigned char* destination)
{
    if (!source)
    {
        ::logError("en_de_crypt(): src is NULL!!\n");
        return false;
    }
    if (!destination)
    {
        ::logError("en_de_crypt(): dst is NULL!!\n");
    }
    return destination != nullptr;
}

}  // namespace

bool CTripleDes::encrypt(unsigned char* output, const unsigned char* input, std::size_t size)
{
    ORTHA_ASSERT(m_internal);
    if (!isKey(this, m_internal->keyLength))
    {
        return false;
    }
    const std::size_t realSize = wholeBlocks(this, "encrypt", size, m_internal->blockSize);
    if (areBuffers(input, output))
    {
        m_internal->run(output, input, realSize, true);
    }
    return realSize == size;
}

bool CTripleDes::decrypt(unsigned char* output, const unsigned char* input, std::size_t size)
{
    ORTHA_ASSERT(m_internal);
    if (!isKey(this, m_internal->keyLength))
    {
        return false;
    }
    const std::size_t realSize = wholeBlocks(this, "decrypt", size, m_internal->blockSize);
    if (areBuffers(input, output))
    {
        m_internal->run(output, input, realSize, false);
    }
    return realSize == size;
}

}  // namespace General::Utils
