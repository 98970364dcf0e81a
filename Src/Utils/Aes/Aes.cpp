#include "utils/Aes.h"

#include <atomic>
#include <cstdint>
#include <cstring>
#include <new>
#include <utility>

#include "ortha/ortha3/PrintLog.h"

#include "Src/Utils/Aes/AesCipher.h"
#include "Src/Utils/Bytes.h"

namespace General::Utils {

// A key in a mode of operation, with what it keeps between calls.
class AesInternal
{
public:
    AesInternal() = default;
    AesInternal(const AesInternal&) = delete;
    AesInternal& operator=(const AesInternal&) = delete;
    virtual ~AesInternal() = default;
    virtual bool encrypt(unsigned char* output, const unsigned char* input, std::size_t length) = 0;
    virtual bool decrypt(unsigned char* output, const unsigned char* input, std::size_t length) = 0;

    std::atomic<int> holders{1};  // CAes objects that share this
};

namespace AES {

namespace {

void takeIv(unsigned char (&to)[blockSize], const unsigned char* iv)
{
    iv ? std::memcpy(to, iv, blockSize) : std::memset(to, 0, blockSize);
}

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

void increment(unsigned char (&counter)[blockSize])
{
    for (std::size_t i = blockSize; i-- != 0 && ++counter[i] == 0;)
    {
    }
}

// What the modes share: the schedule for encrypting, and the tests before the work.
class Mode : public AesInternal
{
public:
    Mode(const char* nullKey, const unsigned char* key, int bits)
    {
        if (!key)
        {
            ::logError("%s", nullKey);
            return;
        }
        ready = makeEncryptSchedule(encrypting, key, bits);
    }
    ~Mode() override { wipe(&encrypting, sizeof(encrypting)); }

    bool encrypt(unsigned char* output, const unsigned char* input, std::size_t length) override
    {
        return isFor(length) && (run(true, output, input, length), true);
    }
    bool decrypt(unsigned char* output, const unsigned char* input, std::size_t length) override
    {
        return isFor(length) && (run(false, output, input, length), true);
    }

protected:
    virtual bool takes(std::size_t) const { return true; }
    virtual void run(bool encrypts, unsigned char* output, const unsigned char* input, std::size_t length) = 0;

    bool ready = false;
    Schedule encrypting;

private:
    bool isFor(std::size_t length) const
    {
        if (!ready)
        {
            ::logError("aes init failed.\n");
        }
        return ready && takes(length);
    }
};

// Modes of whole blocks, which need the schedule for decrypting too.
class BlockMode : public Mode
{
public:
    BlockMode(const char* nullKey, const unsigned char* key, int bits) : Mode(nullKey, key, bits)
    {
        if (ready)
        {
            makeDecryptSchedule(decrypting, encrypting);
        }
    }
    ~BlockMode() override { wipe(&decrypting, sizeof(decrypting)); }

protected:
    bool takes(std::size_t length) const override { return length % blockSize == 0; }

    Schedule decrypting;
};

class CAesECB : public BlockMode
{
public:
    CAesECB(const unsigned char* key, int bits) : BlockMode("AesECB key is NULL\n", key, bits) {}

protected:
    void run(bool encrypts, unsigned char* output, const unsigned char* input, std::size_t length) override
    {
        for (; length != 0; length -= blockSize, output += blockSize, input += blockSize)
        {
            encrypts ? encryptBlock(encrypting, output, input) : decryptBlock(decrypting, output, input);
        }
    }
};

class CAesCBC : public BlockMode
{
public:
    CAesCBC(const unsigned char* key, int bits, const unsigned char* start) : BlockMode("AesCBC key is NULL\n", key, bits)
    {
        takeIv(iv, start);
    }

protected:
    void run(bool encrypts, unsigned char* output, const unsigned char* input, std::size_t length) override
    {
        for (; length != 0; length -= blockSize, output += blockSize, input += blockSize)
        {
            unsigned char block[blockSize];
            if (encrypts)
            {
                exclusiveOr(block, input, iv);
                encryptBlock(encrypting, iv, block);
                std::memcpy(output, iv, blockSize);
            }
            else
            {
                std::memcpy(block, input, blockSize);  // the output may take its place
                decryptBlock(decrypting, output, block);
                exclusiveOr(output, output, iv);
                std::memcpy(iv, block, blockSize);
            }
        }
    }

private:
    unsigned char iv[blockSize];
};

class CAesCFB8 : public Mode
{
public:
    CAesCFB8(const unsigned char* key, int bits, const unsigned char* start) : Mode("AesCFB8 key is NULL\n", key, bits)
    {
        takeIv(iv, start);
    }

protected:
    void run(bool encrypts, unsigned char* output, const unsigned char* input, std::size_t length) override
    {
        for (; length != 0; --length)
        {
            unsigned char block[blockSize];
            encryptBlock(encrypting, block, iv);
            const unsigned char taken = *input++;
            const auto given = static_cast<unsigned char>(taken ^ block[0]);
            *output++ = given;
            std::memmove(iv, iv + 1, blockSize - 1);
            iv[blockSize - 1] = encrypts ? given : taken;
        }
    }

private:
    unsigned char iv[blockSize];
};

class CAesCFB128 : public Mode
{
public:
    CAesCFB128(const unsigned char* key, int bits, const unsigned char* start) : Mode("AesCFB128 key is NULL\n", key, bits)
    {
        takeIv(iv, start);
    }

protected:
    void run(bool encrypts, unsigned char* output, const unsigned char* input, std::size_t length) override
    {
        while (length != 0)
        {
            if (ivOffset == 0)
            {
                encryptBlock(encrypting, iv, iv);
            }
            if (ivOffset == 0 && length >= blockSize)
            {
                unsigned char block[blockSize];
                std::memcpy(block, input, blockSize);
                exclusiveOr(output, block, iv);
                std::memcpy(iv, encrypts ? output : block, blockSize);
                output += blockSize;
                input += blockSize;
                length -= blockSize;
                continue;
            }
            const unsigned char taken = *input++;
            const auto given = static_cast<unsigned char>(taken ^ iv[ivOffset]);
            *output++ = given;
            iv[ivOffset] = encrypts ? given : taken;
            ivOffset = (ivOffset + 1) % blockSize;
            --length;
        }
    }

private:
    std::size_t ivOffset = 0;
    unsigned char iv[blockSize];
};

class CAesCTR : public Mode
{
public:
    CAesCTR(const unsigned char* key, int bits, const unsigned char* start) : Mode("AesCTR key is NULL\n", key, bits)
    {
        takeIv(counter, start);
    }
    ~CAesCTR() override { wipe(streamBlock, sizeof(streamBlock)); }

protected:
    void run(bool, unsigned char* output, const unsigned char* input, std::size_t length) override
    {
        while (length != 0)
        {
            if (counterOffset == 0)
            {
                encryptBlock(encrypting, streamBlock, counter);
                increment(counter);
            }
            if (counterOffset == 0 && length >= blockSize)
            {
                exclusiveOr(output, input, streamBlock);
                output += blockSize;
                input += blockSize;
                length -= blockSize;
                continue;
            }
            *output++ = static_cast<unsigned char>(*input++ ^ streamBlock[counterOffset]);
            counterOffset = (counterOffset + 1) % blockSize;
            --length;
        }
    }

private:
    std::size_t counterOffset = 0;
    unsigned char counter[blockSize];
    unsigned char streamBlock[blockSize] = {};
};

AesInternal* makeMode(CAes::EncMode mode, const unsigned char* key, int bits, const unsigned char* iv)
{
    switch (mode)
    {
    case CAes::encModeECB:
        return new (std::nothrow) CAesECB(key, bits);
    case CAes::encModeCBC:
        return new (std::nothrow) CAesCBC(key, bits, iv);
    case CAes::encModeCFB8:
        return new (std::nothrow) CAesCFB8(key, bits, iv);
    case CAes::encModeCFB128:
        return new (std::nothrow) CAesCFB128(key, bits, iv);
    case CAes::encModeCTR:
        return new (std::nothrow) CAesCTR(key, bits, iv);
    }
    return nullptr;
}

AesInternal* share(AesInternal* internal)
{
    if (internal)
    {
        ++internal->holders;
    }
    return internal;
}

void drop(AesInternal* internal)
{
    if (internal && --internal->holders == 0)
    {
        delete internal;
    }
}

bool isThere(const AesInternal* internal)
{
    if (!internal)
    {
        ::logError("aes init failed.\n");
    }
    return internal != nullptr;
}

}  // namespace

}  // namespace AES

CAes::CAes(EncMode mode, const unsigned char* key, KeyBits bits, const unsigned char* iv) : m_internal(AES::makeMode(mode, key, bits, iv))
{
}

CAes::~CAes()
{
    AES::drop(m_internal);
}

CAes::CAes(const CAes& other) : m_internal(AES::share(other.m_internal)) {}

CAes& CAes::operator=(const CAes& other)
{
    AesInternal* const shared = AES::share(other.m_internal);
    AES::drop(std::exchange(m_internal, shared));
    return *this;
}

bool CAes::encrypt(unsigned char* output, const unsigned char* input, std::size_t length)
{
    return AES::isThere(m_internal) && m_internal->encrypt(output, input, length);
}

bool CAes::decrypt(unsigned char* output, const unsigned char* input, std::size_t length)
{
    return AES::isThere(m_internal) && m_internal->decrypt(output, input, length);
}

}  // namespace General::Utils
