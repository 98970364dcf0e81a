#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "utils/Aes.h"
#include "utils/Md5.h"
#include "utils/Sha1.h"
#include "utils/TripleDes.h"

#include "Src/Utils/Aes/AesCipher.h"
#include "Src/Utils/DesCipher.h"
#include "support/Host.h"

static thread_local void* s_watched = nullptr;
static thread_local std::string s_left;  // what was in it when it went

// The linker leads every operator delete of this program here.
extern "C" {
void __real__ZdlPvm(void* memory, std::size_t size);
void __wrap__ZdlPvm(void* memory, std::size_t size)
{
    if (memory && memory == s_watched)
    {
        s_watched = nullptr;
        s_left.assign(static_cast<const char*>(memory), General::Ortha::Test::blockSize(memory));
    }
    __real__ZdlPvm(memory, size);
}
void __wrap__ZdlPv(void* memory)
{
    __wrap__ZdlPvm(memory, 0);
}
}

namespace General::Utils {
namespace {

using Secrets = std::vector<std::string>;  // parts of 16 bytes

Secrets operator+(Secrets parts, const std::string& bytes)
{
    for (std::size_t from = 0; from < bytes.size(); from += 16)
    {
        parts.push_back(bytes.substr(from, 16));
    }
    return parts;
}

std::string bytesOf(const void* memory, std::size_t size)
{
    return {static_cast<const char*>(memory), size};
}

/// All secrets are in the object's record, and none is left in it when the end of the object gives it back.
template <class Object>
void checkWiped(std::unique_ptr<Object> object, const Secrets& secrets)
{
    std::memcpy(&s_watched, object.get(), sizeof(s_watched));
    const std::string before = bytesOf(s_watched, General::Ortha::Test::blockSize(s_watched));
    s_left.clear();
    object.reset();
    ASSERT_EQ(s_left.size(), before.size());
    for (const std::string& part : secrets)
    {
        EXPECT_NE(before.find(part), std::string::npos);
        EXPECT_EQ(s_left.find(part), std::string::npos);
    }
}

TEST(AesAndTripleDes, AndDigestsLeaveNoSecretsInTheirRecords)
{
    unsigned char key[] = "32 bytes that nobody else sees..", stream[16] = {}, sent[5] = {};
    for (const int mode : {0, 1, 2, 3, 4})
    {
        AES::Schedule encrypting, decrypting;
        ASSERT_TRUE(AES::makeEncryptSchedule(encrypting, key, 256));
        AES::makeDecryptSchedule(decrypting, encrypting);
        Secrets secrets = Secrets() + bytesOf(encrypting.keys, 240) + bytesOf(encrypting.bytes, 240);
        secrets = mode > CAes::encModeCBC ? secrets : secrets + bytesOf(decrypting.keys, 240) + bytesOf(decrypting.bytes, 240);
        const auto make = [&] { return CAes(static_cast<CAes::EncMode>(mode), key, CAes::keyBits256, nullptr); };
        auto aes = std::make_unique<CAes>(make());
        if (mode == CAes::encModeCTR)
        {
            ASSERT_TRUE(make().encrypt(stream, stream, sizeof(stream)) && aes->encrypt(sent, sent, sizeof(sent)));
            secrets = secrets + bytesOf(stream, sizeof(stream));
        }
        SCOPED_TRACE(mode);
        checkWiped(std::move(aes), secrets);
    }
    Secrets secrets;
    for (std::size_t from = 0; from < 24; from += 8)
    {
        unsigned char part[8];
        std::memcpy(part, key + from, sizeof(part));
        Des::Schedule schedule, backward;
        Des::makeSchedule(schedule, part);
        Des::reverse(backward, schedule);
        secrets = secrets + bytesOf(&schedule, sizeof(schedule)) + bytesOf(&backward, sizeof(backward));
    }
    checkWiped(std::make_unique<CTripleDes>(key, 24, CTripleDes::blockType8, nullptr), secrets);
    auto sha1 = std::make_unique<CSha1>();
    auto md5 = std::make_unique<CMd5>();
    sha1->update(key, 32);
    md5->update(key, 32);
    checkWiped(std::move(sha1), Secrets() + bytesOf(key, 32));
    checkWiped(std::move(md5), Secrets() + bytesOf(key, 32));
}

}  // namespace
}  // namespace General::Utils
