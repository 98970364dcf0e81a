#include <openssl/evp.h>

#include "utils/Base16.h"
#include "utils/Base64.h"

#include "Support.h"

namespace General::Utils::Test {
namespace {

const std::string noRoom = "w dst space is not enough or NULL\n", wrong = "w The source data length is wrong\n";

std::string encoded(const std::string& bytes, std::size_t size, std::size_t result)
{
    return room(std::string(size, 'x'), [&](At to) { EXPECT_EQ(base16Encode(at(bytes), bytes.size(), to, size), result); });
}

std::string decoded(const std::string& digits, std::size_t size, std::size_t result)
{
    return room(std::string(size, 'x'), [&](At to) { EXPECT_EQ(base16Decode(digits.data(), digits.size(), to, size), result); });
}

TEST(Base16, GoesThereAndBackInJustEnoughRoomAndRefusesLess)
{
    for (std::size_t length = 1; length <= 200; ++length)
    {
        const std::string bytes = randomBytes(length), zeros(2, 0);
        std::string digits, lower;
        for (const char byte : bytes)
        {
            digits += {"0123456789ABCDEF"[byte >> 4 & 15], "0123456789ABCDEF"[byte & 15]};
            lower += {"0123456789abcdef"[byte >> 4 & 15], "0123456789ABCDEF"[byte & 15]};
        }
        EXPECT_EQ(encoded(bytes, 2 * length + 1, 2 * length + 1) + encoded(bytes, 2 * length + 2, 2 * length + 1),
                  digits + '\0' + digits + zeros);
        EXPECT_EQ(decoded(digits, length, length) + decoded(lower, length + 2, length), bytes + bytes + zeros);
        EXPECT_EQ(logged([&] { EXPECT_EQ(encoded(bytes, 2 * length, 0), std::string(2 * length, 'x')); }), noRoom);
        EXPECT_EQ(logged([&] { EXPECT_EQ(decoded(digits, length - 1, 0), std::string(length - 1, 'x')); }), noRoom);
        EXPECT_EQ(logged([&] { EXPECT_EQ(decoded(digits.substr(1), length, 0), std::string(length, 'x')); }), wrong);
    }
    EXPECT_EQ(logged([] { EXPECT_EQ(encoded("", 4, 0), "xxxx"); }) + logged([] { EXPECT_EQ(decoded("", 4, 0), "xxxx"); }), noRoom + wrong);
    EXPECT_EQ(logged([] { EXPECT_EQ(base16Encode(at("a"), 1, nullptr, 9) + base16Decode("00", 2, nullptr, 9), 0u); }), noRoom + noRoom);
    const std::string isNull = "w The source data is NULL\n";
    EXPECT_EQ(logged([] { EXPECT_EQ(base16Encode(nullptr, 0, nullptr, 0) + base16Decode(nullptr, 0, nullptr, 0), 0u); }), isNull + isNull);
}

TEST(Base16, ABadCharacterAnywhereLeavesZerosAlone)
{
    for (std::size_t i = 0; i < 8 * 256; ++i)
    {
        std::string digits = "01abCD9f";
        digits[i % 8] = static_cast<char>(i / 8);
        const bool good = std::isxdigit(static_cast<int>(i / 8));
        const std::string lines = logged([&] { EXPECT_EQ(decoded(digits, 6, good ? 4 : 0) == std::string(6, 0), !good); });
        EXPECT_EQ(lines, good ? "" : "w The source data is not base16 encoding\nw base16 decode failed\n");
    }
}

TEST(Base64, AllGenerationsGoThereAndBackUpToTheFirstCharacterOutsideTheAlphabet)
{
    for (std::size_t length = 0; length <= 200; ++length)
    {
        const std::string bytes = randomBytes(length), before(base64EncodeLenEx(length), 'x');
        const int count = static_cast<int>(length);
        const std::string text = room(before, [&](At to) { EVP_EncodeBlock(to, at(bytes), count); });
        EXPECT_TRUE(before.size() == (length + 2) / 3 * 4 + 1 && base64EncodeLen(count) == static_cast<int>(before.size()));
        EXPECT_EQ(room(before, [&](At to) { EXPECT_EQ(base64EncodeEx(to, bytes.data(), length), before.size()); }),
                  text.c_str() + std::string(1, 0));
        EXPECT_EQ(room(before, [&](At to) { EXPECT_EQ(base64Encode(to, bytes.data(), count), count ? base64EncodeLen(count) : 0); }),
                  length ? text : before);
        for (std::size_t cut = 0; cut < text.size(); ++cut)
        {
            std::string part = text;
            part[cut] = "=\n-_ .\x80\xFF"[cut % 8];
            const std::size_t chars = std::min(part.find_first_of("=\n-_ .\x80\xFF"), cut), size = (chars + 3) / 4 * 3 + 1;
            const std::string expected = (bytes.substr(0, chars * 3 / 4) + '\0' + std::string(size, 'x')).substr(0, size);
            const auto check = [&](auto decode) {
                ASSERT_EQ(room(std::string(size, 'x'), [&](At to) { EXPECT_EQ(static_cast<std::size_t>(decode(to)), chars * 3 / 4); }),
                          expected)
                    << part;
            };
            check([&](At to) { return base64Decode(to, part.c_str()); });
            check([&](At to) { return base64DecodeEx(to, part.c_str()); });
            check([&](At to) { return base64DecodeEx2(to, part.c_str(), 1000); });
            check([&](At to) { return base64DecodeEx2(to, std::vector<char>(text.begin(), text.end()).data(), chars); });
            EXPECT_TRUE(base64DecodeLenEx(part.c_str()) == size && base64DecodeLen(part.c_str()) == static_cast<int>(size) &&
                        base64DecodeLenEx2(text.c_str(), chars) == size);
        }
    }
}

}  // namespace
}  // namespace General::Utils::Test
