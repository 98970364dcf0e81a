// Published vectors: a few that stand here, and the files of the standards' validation suites where they are installed.
#include <openssl/evp.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <regex>
#include <sstream>

#include "utils/Aes.h"
#include "utils/Md5.h"
#include "utils/Sha1.h"
#include "utils/TripleDes.h"

#include "Support.h"

namespace General::Utils::Test {
namespace {

using Record = std::map<std::string, std::string>;

std::string bytesOf(const std::string& digits)
{
    std::string bytes;
    for (std::size_t i = 0; i < digits.size(); i += 2)
    {
        bytes += static_cast<char>(std::stoi(digits.substr(i, 2), nullptr, 16));
    }
    return bytes;
}

/// Calls `body` with every record of the files of that set, and reports how many there were. A record is lines "name = value" up to an
/// empty one; COUNT, from 0 in every section, tells that none is lost.
template <class Body>
void ofFiles(const std::string& folder, const std::string& pattern, const Body& body)
{
    std::size_t vectors = 0;
    for (const auto& entry : std::filesystem::directory_iterator(ORTHA_TEST_VECTORS + folder))
    {
        const bool isOfSet = std::regex_match(entry.path().filename().string(), std::regex(pattern));
        const std::size_t before = vectors;
        std::ifstream stream(entry.path());
        std::size_t count = 0;
        Record record;
        for (std::string line, name, sign, value; isOfSet && stream; line.clear())
        {
            std::getline(stream, line);
            if (line.find_first_of("#[") == std::string::npos && std::istringstream(line) >> name >> sign >> value)
            {
                record[name] = value;
                EXPECT_TRUE(name != "COUNT" || value == std::to_string(count++)) << entry.path() << ": " << value;
            }
            else if (!record.empty())
            {
                body(record);
                ASSERT_FALSE(::testing::Test::HasFailure()) << entry.path() << ", " << count;
                record.clear();
                ++vectors;
            }
            count = line.starts_with('[') ? 0 : count;
        }
        EXPECT_TRUE(!isOfSet || vectors > before) << entry.path();
    }
    EXPECT_NE(vectors, 0u) << folder << pattern;
    ::testing::Test::RecordProperty(pattern, std::to_string(vectors));
}

/// Pieces of 1, 3, 5, ... times the first one's length.
template <class Body>
void inPieces(std::size_t size, std::size_t first, Body body)
{
    for (std::size_t from = 0, length = first; from < size; from += length, length += 2 * first)
    {
        body(from, std::min(length, size - from));
    }
}

/// Both directions, in place and not, whole and in pieces.
template <class Make>
void check(const Make& make, const std::string& plain, const std::string& cipher, std::size_t unit)
{
    for (int i = 0; i < 8; ++i)
    {
        const bool encrypts = i % 2 == 0, inPlace = i / 2 % 2 == 0;
        const std::string &input = encrypts ? plain : cipher, blank(input.size(), ' ');
        auto object = make();
        const auto crypt = [&](At to) {
            inPieces(input.size(), i < 4 ? input.size() : unit, [&](std::size_t from, std::size_t length) {
                const At output{to.to + from}, source = inPlace ? output : at(input, from);
                EXPECT_TRUE(encrypts ? object.encrypt(output, source, length) : object.decrypt(output, source, length));
            });
        };
        EXPECT_EQ(room(inPlace ? input : blank, crypt), encrypts ? cipher : plain) << i;
    }
}

CAes makeAes(int mode, const std::string& key, const std::string& iv)
{
    return {static_cast<CAes::EncMode>(mode), at(key), static_cast<CAes::KeyBits>(8 * key.size()), at(iv)};
}

void checkAes(int mode, const std::string& key, const std::string& iv, const std::string& plain, const std::string& cipher)
{
    check([&] { return makeAes(mode, key, iv); }, plain, cipher, mode < 2 ? 16 : 1);
}

/// With three keys, and where they are equal with two and one. A chained message is handled in one call.
void checkTripleDes(const std::string& keys, const std::string& iv, const std::string& plain, const std::string& cipher)
{
    const std::string one = keys.substr(0, 8);
    for (const unsigned size : {24u, keys.ends_with(one) ? 16u : 24u, keys == one + one + one ? 8u : 24u})
    {
        const auto make = [&] { return CTripleDes(at(keys), size, CTripleDes::blockType8, iv.empty() ? At{} : at(iv)); };
        check(make, plain, cipher, iv.empty() ? 8 : plain.size());
    }
}

struct Sha1 : CSha1
{
    void final(unsigned char* to) { CSha1::final(to, digestSize); }
};

template <class Object>
std::string digestOf(const std::string& message, std::size_t first)
{
    Object object;
    inPieces(message.size(), first, [&](std::size_t from, std::size_t length) { object.update(at(message, from), length); });
    return room(std::string(Object::digestSize, ' '), [&](At to) { object.final(to); });
}

TEST(AesAndTripleDes, AndSha1GiveWhatThePublicationsPrint)
{
    // NIST SP 800-38A, F.1 to F.5, with the key of 256 bits, and FIPS 197, C, with all three lengths.
    const std::string text = bytesOf("6bc1bee22e409f96e93d7e117393172aae2d8a571e03ac9c9eb76fac45af8e51"
                                     "30c81c46a35ce411e5fbc1191a0a52eff69f2445df4f9b17ad2b417be66c3710");
    const std::string expected[] = {
        "f3eed1bdb5d2a03c064b5a7e3db181f8591ccb10d410ed26dc5ba74a31362870b6ed21b99ca6f4f9f153e7b1beafed1d23304b7a39f9f3ff067d8d8f9e24ecc7",
        "f58c4c04d6e5f1ba779eabfb5f7bfbd69cfc4e967edb808d679f777bc6702c7d39f23369a9d9bacfa530e26304231461b2eb05e2c39be9fcda6c19078c6a9d1b",
        "dc1f1a8520a64db55fcc8ac554844e889700",
        "dc7e84bfda79164b7ecd8486985d386039ffed143b28b1c832113c6331e5407bdf10132415e54b92a13ed0a8267ae2f975a385741ab9cef82031623d55b1e471",
        "601ec313775789a5b7a7f504bbf3d228f443e3ca4d62b59aca84e990cacaf5c52b0930daa23de94ce87017ba2d84988ddfc9c58db67aada613c2dd08457941a6",
    };
    const std::string key = bytesOf("603deb1015ca71be2b73aef0857d77811f352c073b6108d72d9810a30914dff4");
    const std::string counting = bytesOf("000102030405060708090a0b0c0d0e0f101112131415161718191a1b1c1d1e1f");
    for (int mode = 0; mode < 5; ++mode)
    {
        const std::string cipher = bytesOf(expected[mode]), iv = mode < 4 ? counting : bytesOf("f0f1f2f3f4f5f6f7f8f9fafbfcfdfeff");
        checkAes(mode, key, iv, text.substr(0, cipher.size()), cipher);
    }
    const std::string block = bytesOf("00112233445566778899aabbccddeeff");
    checkAes(CAes::encModeECB, counting.substr(0, 16), "", block, bytesOf("69c4e0d86a7b0430d8cdb78070b4c55a"));
    checkAes(CAes::encModeECB, counting.substr(0, 24), "", block, bytesOf("dda97ca4864cdfe06eaf70a0ec0d7191"));
    checkAes(CAes::encModeECB, counting, "", block, bytesOf("8ea2b7ca516745bfeafc49904b496089"));
    // NIST SP 800-67, B.1, and FIPS 81, B and C.
    const std::string one = bytesOf("0123456789abcdef"), now = "Now is the time for all ";
    const std::string fox = bytesOf("a826fd8ce53b855fcce21c8112256fe668d5c05dd9b6b900");
    checkTripleDes(one + bytesOf("23456789abcdef01456789abcdef0123"), "", "The qufck brown fox jump", fox);
    checkTripleDes(one + one + one, "", now, bytesOf("3fa40e8a984d48156a271787ab8883f9893d51ec4b563b53"));
    checkTripleDes(one + one + one, bytesOf("1234567890abcdef"), now, bytesOf("e5c7cdde872bf27c43e934008c389c0f683788499a7c05f6"));
    // FIPS 180, A.3.
    EXPECT_EQ(digestOf<Sha1>(std::string(1000000, 'a'), 1), bytesOf("34aa973cd4c4daa4f61eeb2bdbad27316534016f"));
}

TEST(AesAndTripleDes, AndDigestsPassTheValidationSuites)
{
    if (!std::filesystem::exists(ORTHA_TEST_VECTORS))
    {
        GTEST_SKIP() << "python3-cryptography-vectors is not installed, or came after the tests were configured";
    }
    int mode = 0;
    for (const std::string name : {"ECB/ECB", "CBC/CBC", "CFB/CFB8", "CFB/CFB128", "CTR/aes-"})
    {
        ofFiles("/ciphers/AES/" + name.substr(0, 3), name.substr(4) + (mode == CAes::encModeCTR ? ".*" : "[A-Z].*"), [&](Record& of) {
            checkAes(mode, bytesOf(of.at("KEY")), bytesOf(of["IV"]), bytesOf(of.at("PLAINTEXT")), bytesOf(of.at("CIPHERTEXT")));
        });
        ++mode;
    }
    for (const std::string chaining : {"ECB", "CBC"})
    {
        // Not the files of interleaved chaining, which have an I more.
        ofFiles("/ciphers/3DES/" + chaining, "T" + chaining + "([a-z].*|MMT.*)", [](Record& of) {
            const std::string all = of["KEYs"], keys = bytesOf(all + all + all + of["KEY1"] + of["KEY2"] + of["KEY3"]);
            checkTripleDes(keys, bytesOf(of["IV"]), bytesOf(of.at("PLAINTEXT")), bytesOf(of.at("CIPHERTEXT")));
        });
    }
    const auto digests = [](const std::string& folder, const std::string& pattern, auto digest) {
        ofFiles("/hashes/" + folder, pattern, [&](Record& of) {
            const std::string message = bytesOf(of.at("Msg")).substr(0, std::stoul(of.at("Len")) / 8), expected = bytesOf(of.at("MD"));
            EXPECT_TRUE(digest(message, message.size()) == expected && digest(message, 1) == expected);
        });
    };
    digests("MD5", "rfc-1321.txt", digestOf<CMd5>);
    digests("SHA1", "SHA1(Short|Long)Msg.rsp", digestOf<Sha1>);
    std::string digest;
    ofFiles("/hashes/SHA1", "SHA1Monte.rsp", [&](Record& of) {
        digest = of.contains("Seed") ? bytesOf(of["Seed"]) : digest;
        std::string three = digest + digest + digest;
        for (int i = 0; i < 1000 && of.contains("MD"); ++i)
        {
            digest = digestOf<Sha1>(three, i % 2 == 0 ? 60 : 7);
            three = three.substr(20) + digest;
        }
        EXPECT_TRUE(of.contains("Seed") || digest == bytesOf(of.at("MD")));
    });
}

/// The Monte Carlo test of a cipher, beside the reference: an output is an input later on, and the last ones change vector and key.
template <class Make>
void monteCarlo(const std::string& name, bool encrypts, std::string key, std::string iv, std::string input, const Make& make)
{
    const std::unique_ptr<EVP_CIPHER_CTX, void (*)(EVP_CIPHER_CTX*)> reference(EVP_CIPHER_CTX_new(), EVP_CIPHER_CTX_free);
    const std::size_t unit = input.size();
    for (int i = 0; i < 100; ++i)
    {
        auto cipher = make(key, iv);
        ASSERT_EQ(EVP_CipherInit_ex(reference.get(), EVP_get_cipherbyname(name.c_str()), nullptr, at(key), at(iv), encrypts), 1) << name;
        EVP_CIPHER_CTX_set_padding(reference.get(), 0);
        std::string fed = iv;
        for (std::size_t j = 0; j < 1000; ++j)
        {
            std::string expected = input;
            int length = static_cast<int>(unit);
            ASSERT_EQ(EVP_CipherUpdate(reference.get(), at(expected), &length, at(expected), length), 1);
            ASSERT_TRUE(encrypts ? cipher.encrypt(at(input), at(input), unit) : cipher.decrypt(at(input), at(input), unit));
            ASSERT_EQ(input, expected) << name;
            fed += input;
            input = fed.substr(j * unit, unit);
        }
        iv = fed.substr(fed.size() - iv.size());
        for (std::size_t b = 0; b < key.size(); ++b)
        {
            key[b] ^= fed[fed.size() - (unit == 8 ? b / 8 * 8 + 8 - b % 8 : key.size() - b)];
        }
    }
}

TEST(AesAndTripleDes, GiveWhatTheReferenceGivesInTheMonteCarloTests)
{
    const std::string names[] = {"-ECB", "-CBC", "-CFB8", "-CFB"};
    for (int i = 0; i < 24; ++i)
    {
        const int mode = i / 6, bits = 128 + i % 3 * 64;
        const std::string key = randomBytes(static_cast<std::size_t>(bits / 8)), iv = randomBytes(mode == 0 ? 0 : 16);
        monteCarlo("AES-" + std::to_string(bits) + names[mode], i / 3 % 2 == 0, key, iv, randomBytes(mode == CAes::encModeCFB8 ? 1 : 16),
                   [&](auto& from, auto& start) { return makeAes(mode, from, start); });
    }
    for (std::size_t i = 0; i < 4; ++i)
    {
        const std::string key = randomBytes(16 + i / 2 * 8);
        monteCarlo(i < 2 ? "DES-EDE" : "DES-EDE3", i % 2 == 0, key, "", randomBytes(8),
                   [](auto& from, auto&) { return CTripleDes(at(from), from.size(), CTripleDes::blockType8, nullptr); });
    }
}

}  // namespace
}  // namespace General::Utils::Test
