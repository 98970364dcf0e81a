#include "utils/Aes.h"

#include <atomic>
#include <cstdint>
#include <cstring>
#include <new>
#include <utility>

#include "ortha/ortha3/PrintLog.h"

#include "Src/Utils/Aes/AesEngine.h"
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
        encrypts ? engine().encrypt(encrypting, output, input, length / blockSize)
                 : engine().decrypt(decrypting, output, input, length / blockSize);
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
        encrypts ? engine().cbcEncrypt(encrypting, iv, output, input, length / blockSize)
                 : engine().cbcDecrypt(decrypting, iv, output, input, length / blockSize);
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
        (encrypts ? engine().cfb8Encrypt : engine().cfb8Decrypt)(encrypting, iv, output, input, length);
    }

private:
    unsigned char iv[blockSize];
};

// Streams: the rest of a block that was begun, whole blocks, and the beginning of another.
class StreamMode : public Mode
{
public:
    using Mode::Mode;

protected:
    void run(bool encrypts, unsigned char* output, const unsigned char* input, std::size_t length) override
    {
        while (length != 0)
        {
            if (const std::size_t blocks = offset == 0 ? length / blockSize : 0)
            {
                whole(encrypts, output, input, blocks);
                output += blocks * blockSize;
                input += blocks * blockSize;
                length -= blocks * blockSize;
                continue;
            }
            if (offset == 0)
            {
                begin();
            }
            *output++ = byte(encrypts, *input++);
            offset = (offset + 1) % blockSize;
            --length;
        }
    }

    virtual void whole(bool encrypts, unsigned char* output, const unsigned char* input, std::size_t blocks) = 0;
    virtual void begin() = 0;
    virtual unsigned char byte(bool encrypts, unsigned char taken) = 0;

    std::size_t offset = 0;
};

class CAesCFB128 : public StreamMode
{
public:
    CAesCFB128(const unsigned char* key, int bits, const unsigned char* start) : StreamMode("AesCFB128 key is NULL\n", key, bits)
    {
        takeIv(iv, start);
    }

protected:
    void whole(bool encrypts, unsigned char* output, const unsigned char* input, std::size_t blocks) override
    {
        (encrypts ? engine().cfb128Encrypt : engine().cfb128Decrypt)(encrypting, iv, output, input, blocks);
    }
    void begin() override { engine().encrypt(encrypting, iv, iv, 1); }
    unsigned char byte(bool encrypts, unsigned char taken) override
    {
        const auto given = static_cast<unsigned char>(taken ^ iv[offset]);
        iv[offset] = encrypts ? given : taken;
        return given;
    }

private:
    unsigned char iv[blockSize];
};

class CAesCTR : public StreamMode
{
public:
    CAesCTR(const unsigned char* key, int bits, const unsigned char* start) : StreamMode("AesCTR key is NULL\n", key, bits)
    {
        takeIv(counter, start);
    }
    ~CAesCTR() override { wipe(streamBlock, sizeof(streamBlock)); }

protected:
    void whole(bool, unsigned char* output, const unsigned char* input, std::size_t blocks) override
    {
        engine().ctr(encrypting, counter, output, input, blocks);
    }
    void begin() override
    {
        std::memset(streamBlock, 0, blockSize);
        engine().ctr(encrypting, counter, streamBlock, streamBlock, 1);
    }
    unsigned char byte(bool, unsigned char taken) override { return static_cast<unsigned char>(taken ^ streamBlock[offset]); }

private:
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
