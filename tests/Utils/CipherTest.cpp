#include <openssl/evp.h>

#include <memory>

#include "utils/Aes.h"
#include "utils/TripleDes.h"

#include "Support.h"

namespace General::Utils::Test {
namespace {

std::string reference(const std::string& name, const std::string& key, const std::string& iv, bool encrypts, const std::string& input)
{
    const std::unique_ptr<EVP_CIPHER_CTX, void (*)(EVP_CIPHER_CTX*)> context(EVP_CIPHER_CTX_new(), EVP_CIPHER_CTX_free);
    int length = static_cast<int>(input.size());
    EXPECT_EQ(EVP_CipherInit_ex(context.get(), EVP_get_cipherbyname(name.c_str()), nullptr, at(key), at(iv), encrypts), 1);
    EVP_CIPHER_CTX_set_padding(context.get(), 0);
    return room(input, [&](At to) { EXPECT_EQ(EVP_CipherUpdate(context.get(), to, &length, at(input), length), 1); });
}

const std::string names[] = {"ECB", "CBC", "CFB8", "CFB128", "CTR", ""};

std::string nameOf(int mode, const std::string& key)
{
    return "AES-" + std::to_string(key.size() * 8) + "-" + (mode == CAes::encModeCFB128 ? "CFB" : names[mode]);
}

CAes makeAes(int mode, const std::string& key, const unsigned char* iv)
{
    return {static_cast<CAes::EncMode>(mode), at(key), static_cast<CAes::KeyBits>(key.size() * 8), iv};
}

/// What a cipher gives, in place or not.
template <class Cipher>
std::string run(Cipher& cipher, bool encrypts, const std::string& input, bool result = true)
{
    return room(input, [&](At to) {
        const At from = below(2) == 0 ? to : at(input);
        EXPECT_EQ(encrypts ? cipher.encrypt(to, from, input.size()) : cipher.decrypt(to, from, input.size()), result);
    });
}

TEST(Aes, AMessageInPiecesIsWhatTheReferenceGivesOfTheWhole)
{
    for (int i = 0; i < 3000; ++i)
    {
        const int mode = i % 5;
        const std::string key = randomBytes(16 + 8 * below(3)), zeros(16, 0);
        const std::string iv =
            i % 3 ? randomBytes(static_cast<std::size_t>(i % 4 * 4)) + std::string(static_cast<std::size_t>(16 - i % 4 * 4), '\xFF')
                  : zeros;  // counters that carry and wrap
        const std::size_t unit = mode < 2 ? 16 : 1;
        const std::string input = randomBytes(unit * below(200));
        CAes aes = makeAes(mode, key, iv == zeros ? At{} : at(iv));
        std::string output;
        while (output.size() < input.size())
        {
            output += run(aes, i % 2 == 0, input.substr(output.size(), unit * below(below(2) ? 5 : 50)));
        }
        ASSERT_EQ(output, reference(nameOf(mode, key), key, iv, i % 2 == 0, input)) << nameOf(mode, key);
    }
}

TEST(Aes, BothDirectionsAndAllCopiesGoOnFromOneState)
{
    for (int i = 0; i < 10; ++i)
    {
        const bool encrypts = i % 2 == 0;
        const std::string key = randomBytes(32), iv = randomBytes(16), first = randomBytes(i < 4 ? 32 : 37), second = randomBytes(32);
        auto object = std::make_unique<CAes>(makeAes(i / 2, key, at(iv)));
        const std::string begun = run(*object, encrypts, first), name = nameOf(i / 2, key);
        CAes copy(*object), assigned = makeAes(CAes::encModeCBC, iv, nullptr);
        assigned = *&(assigned = copy);
        object.reset();
        // Going on the other way is what the reference does that has taken the first output as its input.
        const std::string there = reference(name, key, iv, !encrypts, begun + second);
        EXPECT_EQ(run(copy, !encrypts, second), there.substr(first.size())) << name;
        EXPECT_EQ(run(assigned, encrypts, second), reference(name, key, iv, encrypts, there + second).substr(there.size())) << name;
    }
}

TEST(Aes, WhatIsNotUsableRefusesAndWritesNothing)
{
    const std::string key = randomBytes(32), block = randomBytes(16), refused = "e aes init failed.\n";
    for (int i = 0; i < 12; ++i)  // no key, or 64 bits
    {
        const auto useless = [&] {
            CAes aes(static_cast<CAes::EncMode>(i / 2), i % 2 ? at(key) : At{}, static_cast<CAes::KeyBits>(i % 2 ? 64 : 128), nullptr);
            EXPECT_EQ(run(aes, true, block, false) + run(aes, false, "any length", false), block + "any length");
        };
        EXPECT_EQ(logged(useless), (i < 10 && i % 2 == 0 ? "e Aes" + names[i / 2] + " key is NULL\n" : "") + refused + refused) << i;
        CAes aes = makeAes(i % 2, key, at(block));
        for (const std::size_t length : {0u, 1u, 15u, 17u, 40u})
        {
            const std::string input(length, 'x');
            EXPECT_EQ(logged([&] { EXPECT_EQ(run(aes, i < 6, input, input.empty()), input); }), "");
        }
        EXPECT_EQ(run(aes, true, block), reference(nameOf(i % 2, key), key, block, true, block)) << i;  // the vector has not moved
    }
}

/// A block by its definition. Of 16 bytes it is two, which exchange their inner words between the passes.
std::string blockOf(const std::string& key, bool encrypts, std::string block)
{
    for (std::size_t pass = 0; pass < 3; ++pass)
    {
        const std::string one = key.substr(8 * (encrypts ? pass : 2 - pass), 8);
        block = reference("DES-EDE3-ECB", one + one + one, "", encrypts == (pass != 1), block);
        const bool swaps = pass < 2 && block.size() == 16;
        block = swaps ? block.substr(0, 4) + block.substr(8, 4) + block.substr(4, 4) + block.substr(12) : block;
    }
    return block;
}

TEST(TripleDes, EveryFormIsItsDefinitionByTheReference)
{
    for (int i = 0; i < 2000; ++i)
    {
        const std::string given = randomBytes(1 + below(30)), iv = randomBytes(16), input = randomBytes(16 * below(10));
        const std::string padded = given + std::string(24, 0), first = padded.substr(0, 8);
        const std::string key = given.size() > 16 ? padded : first + (given.size() > 8 ? padded.substr(8, 8) : first) + first;
        const std::size_t type = below(3), size = type == 1 && given.size() > 8 ? 16 : 8;
        const bool chained = i % 2 == 0, encrypts = below(2) == 0;
        std::string expected, chain = iv;
        for (std::size_t from = 0; from < input.size(); from += size)
        {
            const std::string taken = input.substr(from, size);
            const auto mix = [&](std::string block) {
                std::transform(block.begin(), block.end(), chain.begin(), block.begin(), std::bit_xor());
                return block;
            };
            const std::string block = !chained   ? blockOf(key, encrypts, taken)
                                      : encrypts ? blockOf(key, true, mix(taken))
                                                 : mix(blockOf(key, false, taken));
            chain = encrypts ? block : taken;
            expected += block;
        }
        CTripleDes des(at(given), given.size(), static_cast<CTripleDes::BlockType>(type), chained ? at(iv) : At{});
        ASSERT_TRUE(run(des, encrypts, input) == expected && run(des, encrypts, input) == expected) << given.size();  // no state is kept
    }
}

TEST(TripleDes, BadSizesKeysAndBuffersAreLogged)
{
    const std::string key = randomBytes(24), input = randomBytes(20), source = "e en_de_crypt(): src is NULL!!\n";
    const std::string sizes = "crypt(): size is not the multiple of the 'BlockSize'!!! size:20, real_size:16\n";
    CTripleDes des(at(key), 24, CTripleDes::blockType16, nullptr), none(at(key), 0, CTripleDes::blockType8, nullptr);
    for (const bool encrypts : {true, false})
    {
        const std::string whole = run(des, encrypts, input.substr(0, 16)),
                          size = (encrypts ? "e CTripleDes::en" : "e CTripleDes::de") + sizes;
        EXPECT_EQ(logged([&] { EXPECT_EQ(run(des, encrypts, input, false), whole + input.substr(16)); }), size);
        EXPECT_EQ(logged([&] { EXPECT_EQ(run(none, encrypts, input, false), input); }), "e key_length is 0,is unvalid!\n");
        const auto call = encrypts ? &CTripleDes::encrypt : &CTripleDes::decrypt;
        EXPECT_EQ(logged([&] { EXPECT_TRUE((des.*call)(at(key), nullptr, 16) && (des.*call)(nullptr, nullptr, 0)); }), source + source);
        EXPECT_EQ(logged([&] { EXPECT_FALSE((des.*call)(nullptr, at(key), 20)); }), size + "e en_de_crypt(): dst is NULL!!\n");
    }
}

}  // namespace
}  // namespace General::Utils::Test
