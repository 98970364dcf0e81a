#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <random>
#include <vector>

#include "utils/CharSet.h"

#include "Src/Utils/Aes/AesEngine.h"
#include "Src/Utils/CharSet/WideUtf8.h"
#include "Src/Utils/Crc32Update.h"
#include "Src/Utils/Sha1Blocks.h"

namespace General::Utils {
namespace {

using Bytes = std::vector<unsigned char>;

// What the processor's own instructions give is what the portable form gives.
struct Hardware : testing::Test
{
    Bytes bytes(std::size_t count)
    {
        Bytes made(count);
        std::generate(made.begin(), made.end(), [this] { return static_cast<unsigned char>(random()); });
        return made;
    }

    std::mt19937 random{20240229};
};

TEST_F(Hardware, EncryptsAndDecryptsInEveryMode)
{
    using AES::Engine, AES::Schedule;
    constexpr Engine::Chained Engine::*chained[] = {&Engine::cbcEncrypt,  &Engine::cbcDecrypt,    &Engine::cfb8Encrypt,
                                                    &Engine::cfb8Decrypt, &Engine::cfb128Encrypt, &Engine::cfb128Decrypt,
                                                    &Engine::ctr};
    for (const Engine* const engine : {AES::aesNiEngine(), AES::vaesEngine()})
    {
        for (std::size_t count = 0; engine && count < 300; ++count)
        {
            const std::size_t blocks = count % 50;
            const Bytes key = bytes(32);
            Schedule encrypting;
            Schedule decrypting;
            ASSERT_TRUE(AES::makeEncryptSchedule(encrypting, key.data(), 128 + 64 * static_cast<int>(count % 3)));
            AES::makeDecryptSchedule(decrypting, encrypting);
            Bytes iv = bytes(16);
            // Counters that are about to carry, into the high word and beyond it.
            std::fill(iv.begin() + (count % 2 == 0 ? 8 : 0), iv.end() - 1, static_cast<unsigned char>(0xFF));
            const Bytes input = bytes(16 * blocks);
            for (const bool encrypts : {true, false})
            {
                Bytes expected(input.size());
                Bytes given = input;  // in place
                const Schedule& schedule = encrypts ? encrypting : decrypting;
                (encrypts ? AES::portableEngine.encrypt : AES::portableEngine.decrypt)(schedule, expected.data(), input.data(), blocks);
                (encrypts ? engine->encrypt : engine->decrypt)(schedule, given.data(), given.data(), blocks);
                ASSERT_EQ(given, expected) << blocks;
            }
            for (const auto mode : chained)
            {
                const bool ofBytes = mode == &Engine::cfb8Encrypt || mode == &Engine::cfb8Decrypt;
                const std::size_t length = ofBytes ? input.size() - (blocks == 0 ? 0 : count % 16) : blocks;
                const Schedule& schedule = mode == &Engine::cbcDecrypt ? decrypting : encrypting;
                Bytes expected = input;
                Bytes given = input;
                Bytes ivExpected = iv;
                Bytes ivGiven = iv;
                (AES::portableEngine.*mode)(schedule, ivExpected.data(), expected.data(), input.data(), length);
                (engine->*mode)(schedule, ivGiven.data(), given.data(), given.data(), length);
                ASSERT_TRUE(given == expected && ivGiven == ivExpected) << blocks << " blocks, mode " << &mode - std::begin(chained);
            }
        }
    }
}

TEST_F(Hardware, GivesTheSameDigestsAndChecksums)
{
    const Bytes data = bytes(8192);
    for (std::size_t i = 0; i < 2000; ++i)
    {
        const std::size_t at = random() % 64;
        const std::size_t length = i < 1200 ? i : random() % 8000;
        const auto crc = static_cast<std::uint32_t>(random());
        for (const Crc32Update update : {crc32Multiplying(), crc32MultiplyingWide()})
        {
            ASSERT_TRUE(!update || update(crc, data.data() + at, length) == crc32Portable(crc, data.data() + at, length)) << length;
        }
        Sha1State expected{{crc, 1, 0xFFFFFFFF, ~crc, crc >> 3}};
        Sha1State given = expected;
        const std::size_t blocks = i % 8;
        sha1Portable(expected, data.data() + at, blocks);
        if (const Sha1Blocks process = sha1Hardware())
        {
            process(given, data.data() + at, blocks);
            ASSERT_TRUE(std::equal(std::begin(given.words), std::end(given.words), expected.words)) << blocks;
        }
    }
}

TEST_F(Hardware, ReadsTheSameUtf8)
{
    const WideUtf8 wide = wideUtf8();
    std::size_t reached = 0;
    for (int i = 0; wide && i < 20000; ++i)
    {
        // Words of one length of sequence, here and there a byte too many or too few.
        Bytes text;
        while (text.size() < 34 + random() % 100)
        {
            const int length = static_cast<int>(random() % 3) + 1 + (random() % 50 == 0 ? 1 : 0);
            for (std::size_t letters = random() % 9; letters != 0; --letters)
            {
                unsigned char sequence[4] = {};
                sequence[0] =
                    static_cast<unsigned char>(length == 1 ? random() % 0x80 : (0xF00 >> length & 0xFF) | random() % (0x80 >> length));
                std::generate(sequence + 1, sequence + 4, [this] { return static_cast<unsigned char>(0x80 + random() % 64); });
                text.insert(text.end(), sequence, sequence + length - (random() % 200 == 0 ? 1 : 0));
            }
        }
        text.shrink_to_fit();
        std::vector<unsigned short> given(text.size());
        unsigned short* out = given.data();
        const auto used = static_cast<std::size_t>(wide(out, text.data(), text.data() + text.size()) - text.data());
        std::size_t at = 0;
        for (const unsigned short* unit = given.data(); unit != out; ++unit)
        {
            unsigned short expected = 0;
            const int read = utf8_mbtowc(&expected, text.data() + at, static_cast<int>(text.size() - at));
            ASSERT_TRUE(read > 0 && *unit == expected) << at;
            at += static_cast<std::size_t>(read);
        }
        ASSERT_EQ(at, used);
        reached += used;
    }
    EXPECT_GT(reached, wide ? 400000 : 0);
}

}  // namespace
}  // namespace General::Utils
