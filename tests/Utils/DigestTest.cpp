#include <openssl/evp.h>
#include <zlib.h>

#include "utils/Crc.h"
#include "utils/Md5.h"
#include "utils/Sha1.h"

#include "Support.h"

namespace General::Utils::Test {
namespace {

struct Md5 : CMd5
{
    static constexpr auto reference = EVP_md5;
    void badCalls(unsigned char*) { final(nullptr), hex(nullptr); }
    static constexpr auto badLines = "e digest is NULL\ne hash is NULL\n", ofAbc = "900150983cd24fb0d6963f7d28e17f72";
};
struct Sha1 : CSha1
{
    static constexpr auto reference = EVP_sha1;
    void final(unsigned char* to) { CSha1::final(to, digestSize); }
    void hex(char* to) { CSha1::hex(to, 2 * digestSize); }
    void badCalls(At to) { CSha1::final(nullptr, 0), CSha1::final(to, 19), CSha1::hex(nullptr, 0), CSha1::hex(to, 39); }
    static constexpr auto badLines = "e hash is NULL!\ne len:19 is invalid!\ne str is NULL!\ne len:39 is invalid!\n";
    static constexpr auto ofAbc = "a9993e364706816aba3e25717850c26c9cd0d89d";
};

template <class Object>
struct Digests : ::testing::Test
{
    const std::string before = std::string(Object::digestSize, ' ');
    std::string expected(const std::string& message)
    {
        return room(before, [&](At to) { EVP_Digest(at(message), message.size(), to, nullptr, Object::reference(), nullptr); });
    }
    std::string digestOf(Object& object)
    {
        return room(before, [&](At to) { object.final(to); });
    }
    std::string textOf(Object& object)
    {
        return room(before + before, [&](At to) { object.hex(to); });
    }
};
using Objects = ::testing::Types<Md5, Sha1>;
TYPED_TEST_SUITE(Digests, Objects, );

TYPED_TEST(Digests, EveryLengthInEveryTwoPiecesGivesTheReferencesDigest)
{
    for (std::size_t i = 0; i < 200 * 200; ++i)
    {
        const std::string message = randomBytes(i / 200);
        const std::size_t first = std::min(i % 200, message.size());
        TypeParam object;
        object.update(at(message), first);
        object.update(at(message, first), message.size() - first);
        ASSERT_EQ(this->digestOf(object), this->expected(message)) << message.size() << " bytes, the first piece of " << first;
    }
}

TYPED_TEST(Digests, AFinishedMessageStaysUntilDataBeginsANewOne)
{
    const std::string first = randomBytes(70), second = "abc";
    TypeParam object;
    object.update(at(first), 64);
    EXPECT_EQ(room(first, [&](At to) { EXPECT_EQ(logged([&] { object.badCalls(to); }), TypeParam::badLines); }), first);
    object.update(at(first, 64), 6);  // the message is still open
    const std::string text = this->textOf(object);
    object.update(nullptr, 5);
    object.update(at(second), 0);
    EXPECT_TRUE(this->digestOf(object) == this->expected(first) && this->textOf(object) == text);
    object.update(at(second), 1);
    object.update(at(second, 1), (std::size_t{1} << 32) + 2);  // the low 32 bits count
    EXPECT_EQ(this->textOf(object), TypeParam::ofAbc);
    if constexpr (requires { object.init(); })
    {
        object.update(at(first), 64);
        object.init();
        EXPECT_EQ(this->textOf(object), "d41d8cd98f00b204e9800998ecf8427e");
    }
    else
    {
        EXPECT_EQ(room(std::string(41, ' '), [&](At to) { object.CSha1::hex(to, 41); }), TypeParam::ofAbc + std::string(1, 0));
    }
}

TEST(Crc, EqualsTheDefinitionForEveryLengthStartAndSplit)
{
    const std::string check = "123456789";
    EXPECT_TRUE(crc16(0, at(check), 9) == 0xBB3D && crc16(0xFFFF, at(check), 9) == 0x4B37 && Utils::crc32(at(check), 9) == 0xCBF43926);
    for (std::size_t i = 0; i < 100 * 100; ++i)
    {
        const std::string data = randomBytes(i / 100);
        const auto start = static_cast<unsigned int>(below(0xFFFFFFFF));
        unsigned int crc = start & 0xFFFF;
        for (std::size_t bit = 0; bit < 8 * data.size(); ++bit)
        {
            crc = crc >> 1 ^ (((crc ^ static_cast<unsigned int>(data[bit / 8] >> bit % 8)) & 1) != 0 ? 0xA001u : 0u);
        }
        const std::size_t first = std::min(i % 100, data.size()), rest = data.size() - first;
        ASSERT_EQ(Utils::crc32(Utils::crc32(start, at(data), first), at(data, first), rest), crc32_z(start, at(data), data.size()));
        ASSERT_EQ(crc16(crc16(static_cast<unsigned short>(start), at(data), first), at(data, first), rest), crc) << data.size();
    }
}

}  // namespace
}  // namespace General::Utils::Test
