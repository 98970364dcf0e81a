// What the programs that measure the utilities share: their rows, and what both measure.
//
// Objects are made before the measuring and used again for each message, as all peers allow. A row that no peer confirms is not measured.
#pragma once

#include <algorithm>
#include <map>
#include <memory>

#include "utils/Utils.h"

#ifdef ORTHA_BENCH_HAS_OPENSSL
#define OPENSSL_SUPPRESS_DEPRECATED  // its functions below EVP
#include <openssl/evp.h>
#endif
#ifdef ORTHA_BENCH_HAS_ABSL
#include <absl/strings/ascii.h>
#include <absl/strings/escaping.h>
#endif
#ifdef ORTHA_BENCH_HAS_BOOST
#include <boost/crc.hpp>
#endif

#include "support.h"

namespace UtilsRows {

namespace Utils = General::Utils;
using Utils::CAes;
using Text = std::string;
using View = std::string_view;

/// With what the names of a program's rows begin.
extern const View area;

constexpr std::size_t sizes[] = {16, 1 << 10, 64 << 10, 1 << 20};
constexpr std::size_t textSize = 4 << 10;

template <class To = unsigned char>
const To* in(View text)
{
    return reinterpret_cast<const To*>(text.data());
}

template <class To = unsigned char>
To* out(Text& text)
{
    return reinterpret_cast<To*>(text.data());
}

inline Text drawBytes(std::size_t size)
{
    Bench::Draw<unsigned int> draw(0, 255);
    Text bytes(size, 0);
    std::generate(bytes.begin(), bytes.end(), [&draw] { return static_cast<char>(draw()); });
    return bytes;
}

inline const Text message = drawBytes(sizes[3]);
inline const Text key = message.substr(100, 24), vector = message.substr(200, 16);

/// By operation, then by who.
inline std::map<Text, std::map<Text, Text>> results;

/// `make` gives a function that works into a text that has room. `result` is what all who do this operation must agree in.
template <class Make>
void row(const Text& operation, std::size_t size, const Text& who, Make make, const Text& result)
{
    const Text name = Bench::nameOf({operation, std::to_string(size)});
    results[name][who] = result;
    const auto measure = [name, size, make, result](benchmark::State& state) {
        const auto& all = results[name];
        const auto agrees = [&result](const auto& other) { return other.second == result; };
        if (result.empty() || all.size() < 2 || !std::all_of(all.begin(), all.end(), agrees))
        {
            return state.SkipWithError(result.empty() ? "no result" : all.size() < 2 ? "no peer to compare with" : "different results");
        }
        Text output(size * 4 + 64, 0);
        auto function = make();
        for (auto _ : state)
        {
            auto done = function(output);
            benchmark::DoNotOptimize(done);
            benchmark::ClobberMemory();
        }
    };
    Bench::row(Bench::nameOf({area, name, who}), measure)->MinTime(0.05);
}

/// `function` takes the object that `make` gives, and the text to write into, and gives what it wrote.
template <class Make, class Function>
void row(const Text& operation, std::size_t size, const Text& who, Make make, Function function)
{
    const auto join = [make, function] { return [object = make(), function](Text& to) mutable { return function(object, to); }; };
    Text output(size * 4 + 64, 0);
    row(operation, size, who, join, Text(join()(output)));
}

/// For what keeps nothing between messages.
template <class Function>
void row(const Text& operation, std::size_t size, const Text& who, Function function)
{
    row(
        operation, size, who, [] { return 0; }, [function](int, Text& to) mutable { return function(to); });
}

template <class Digest, class Final>
void ownDigest(const Text& name, std::size_t size, Final final)
{
    row(name, size, "ortha", &std::make_shared<Digest>, [size, final](auto& digest, Text& to) {
        digest->update(in(message), size);
        final(*digest, out(to));
        return View(to.data(), Digest::digestSize);
    });
}

inline void ownDigests(std::size_t size)
{
    ownDigest<Utils::CMd5>("md5", size, [](Utils::CMd5& md5, unsigned char* to) { md5.final(to); });
    ownDigest<Utils::CSha1>("sha1", size, [](Utils::CSha1& sha1, unsigned char* to) { sha1.final(to, Utils::CSha1::digestSize); });
}

template <class Function>
void checksum(const Text& name, std::size_t size, const Text& who, Function function)
{
    const auto make = [size, function] { return [size, function](Text&) mutable { return function(in(message), size); }; };
    row(name, size, who, make, std::to_string(Function(function)(in(message), size)));
}

inline void ownChecksums(std::size_t size)
{
    checksum("crc32", size, "ortha", [](const unsigned char* data, std::size_t length) { return Utils::crc32(data, length); });
    checksum("crc16", size, "ortha", [](const unsigned char* data, std::size_t length) { return Utils::crc16(0, data, length); });
}

/// Any bytes can be decrypted.
template <class Make>
void ownCipher(const Text& name, std::size_t size, bool encrypts, Make make)
{
    row(name, size, "ortha", make, [size, encrypts](auto& cipher, Text& to) {
        const bool done = encrypts ? cipher->encrypt(out(to), in(message), size) : cipher->decrypt(out(to), in(message), size);
        return View(to.data(), done ? size : 0);
    });
}

inline Text cipherName(const Text& mode, bool encrypts)
{
    return mode + (encrypts ? "-encrypt" : "-decrypt");
}

inline void ownAes(const Text& mode, CAes::EncMode number, std::size_t size, bool encrypts)
{
    const auto make = [number] { return std::make_shared<CAes>(number, in(key), CAes::keyBits128, in(vector)); };
    ownCipher(cipherName("aes-" + mode, encrypts), size, encrypts, make);
}

#ifdef ORTHA_BENCH_HAS_OPENSSL
template <class Context, auto init, auto update, auto final>
void opensslDigest(const Text& name, std::size_t size)
{
    const auto make = [name] {
        const std::shared_ptr<EVP_MD_CTX> context(EVP_MD_CTX_new(), &EVP_MD_CTX_free);
        EVP_DigestInit_ex(context.get(), EVP_get_digestbyname(name.c_str()), nullptr);
        return context;
    };
    row(name, size, "openssl", make, [size](auto& context, Text& to) {
        unsigned int length = 0;
        EVP_DigestInit_ex(context.get(), nullptr, nullptr);
        EVP_DigestUpdate(context.get(), message.data(), size);
        EVP_DigestFinal_ex(context.get(), out(to), &length);
        return View(to.data(), length);
    });
    row(name, size, "openssl-low", [size, length = EVP_MD_CTX_size(make().get())](Text& to) {
        Context context;
        init(&context);
        update(&context, message.data(), size);
        final(out(to), &context);
        return View(to.data(), std::size_t(length));
    });
}

inline void opensslCipher(const Text& name, const char* evpName, std::size_t size, bool encrypts)
{
    const auto make = [evpName, encrypts] {
        const std::shared_ptr<EVP_CIPHER_CTX> context(EVP_CIPHER_CTX_new(), &EVP_CIPHER_CTX_free);
        EVP_CipherInit_ex(context.get(), EVP_get_cipherbyname(evpName), nullptr, in(key), in(vector), encrypts);
        EVP_CIPHER_CTX_set_padding(context.get(), 0);
        return context;
    };
    row(name, size, "openssl", make, [size](auto& context, Text& to) {
        int length = 0;
        EVP_CipherUpdate(context.get(), out(to), &length, in(message), int(size));
        return View(to.data(), std::size_t(length));
    });
}
#endif

#ifdef ORTHA_BENCH_HAS_BOOST
template <class Crc>
void boostChecksum(const Text& name, std::size_t size)
{
    checksum(name, size, "boost",
             [crc = Crc()](const void* data, std::size_t n) mutable { return crc.reset(), crc.process_bytes(data, n), crc.checksum(); });
}
#endif

inline void addTripleDes(std::size_t size, bool encrypts)
{
    const auto make = [] { return std::make_shared<Utils::CTripleDes>(in(key), 24, Utils::CTripleDes::blockType8, in(vector)); };
    ownCipher(cipherName("3des-cbc", encrypts), size, encrypts, make);
#ifdef ORTHA_BENCH_HAS_OPENSSL
    opensslCipher(cipherName("3des-cbc", encrypts), "DES-EDE3-CBC", size, encrypts);
#endif
}

inline void addEncoders()
{
    static const Text bytes = message.substr(0, textSize);
    static Text hex(2 * textSize + 1, 0), base64(Utils::base64EncodeLenEx(textSize), 0);
    Utils::base16Encode(in(bytes), bytes.size(), hex.data(), hex.size());
    Utils::base64EncodeEx(base64.data(), bytes.data(), bytes.size());
    hex.pop_back();
    base64.pop_back();
    const auto add = [](const Text& name, const Text& who, auto function) { row(name, textSize, who, function); };
    add("base16-encode", "ortha",
        [](Text& to) { return View(to.data(), Utils::base16Encode(in(bytes), textSize, to.data(), hex.size() + 1) - 1); });
    add("base16-decode", "ortha", [](Text& to) { return View(to.data(), Utils::base16Decode(hex.data(), hex.size(), out(to), textSize)); });
    add("base64-encode", "ortha", [](Text& to) { return View(to.data(), Utils::base64EncodeEx(to.data(), bytes.data(), textSize) - 1); });
    add("base64-decode", "ortha",
        [](Text& to) { return View(to.data(), Utils::base64DecodeEx2(to.data(), base64.data(), base64.size())); });
#ifdef ORTHA_BENCH_HAS_ABSL
    const auto lowerCase = [] { return [](Text& to) { return View(to = absl::BytesToHexString(bytes)); }; };
    row("base16-encode", textSize, "absl", lowerCase, absl::AsciiStrToUpper(absl::BytesToHexString(bytes)));
    add("base16-decode", "absl", [](Text& to) { return View(to = absl::HexStringToBytes(hex)); });
    add("base64-encode", "absl", [](Text& to) { return absl::Base64Escape(bytes, &to), View(to); });
    add("base64-decode", "absl", [](Text& to) { return absl::Base64Unescape(base64, &to) ? View(to) : View(); });
#endif
#ifdef ORTHA_BENCH_HAS_OPENSSL
    const auto encode = [](Text& to) { return View(to.data(), std::size_t(EVP_EncodeBlock(out(to), in(bytes), int(textSize)))); };
    add("base64-encode", "openssl", encode);
    add("base64-decode", "openssl", [](Text& to) {
        const int padded = EVP_DecodeBlock(out(to), in(base64), int(base64.size()));
        return View(to.data(), std::size_t(padded - std::count(base64.end() - 2, base64.end(), '=')));
    });
#endif
}

}  // namespace UtilsRows
