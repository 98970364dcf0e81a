// The library's digests, checksums, ciphers, encoders, character sets and interval set beside others. Rows are named utils/operation/size/who.
//
// Objects are made before the measuring and used again for each message, as all peers allow. A row that no peer confirms is not measured.
#include <iconv.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <memory>

#include "utils/Utils.h"

#ifdef ORTHA_BENCH_HAS_OPENSSL
#define OPENSSL_SUPPRESS_DEPRECATED  // its functions below EVP
#include <openssl/evp.h>
#include <openssl/md5.h>
#include <openssl/sha.h>
#endif
#ifdef ORTHA_BENCH_HAS_ZLIB
#include <zlib.h>
#endif
#ifdef ORTHA_BENCH_HAS_ISAL
#include <isa-l/crc.h>
#endif
#ifdef ORTHA_BENCH_HAS_BOOST
#include <boost/crc.hpp>
#include <boost/icl/interval_set.hpp>
#endif
#ifdef ORTHA_BENCH_HAS_ABSL
#include <absl/container/btree_map.h>
#include <absl/strings/ascii.h>
#include <absl/strings/escaping.h>
#endif
#ifdef ORTHA_BENCH_HAS_ICU
#include <unicode/ucnv.h>
#include <unicode/ustring.h>
#endif

#include "support.h"

namespace {

namespace Utils = General::Utils;
using Utils::CAes;
using Text = std::string;
using View = std::string_view;

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

Text drawBytes(std::size_t size)
{
    Bench::Draw<unsigned int> draw(0, 255);
    Text bytes(size, 0);
    std::generate(bytes.begin(), bytes.end(), [&draw] { return static_cast<char>(draw()); });
    return bytes;
}

const Text message = drawBytes(sizes[3]);
const Text key = message.substr(100, 24), vector = message.substr(200, 16);

// By operation, then by who.
std::map<Text, std::map<Text, Text>> results;

// `make` gives a function that works into a text that has room. `result` is what all who do this operation must agree in.
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
    Bench::row(Bench::nameOf({"utils", name, who}), measure)->MinTime(0.05);
}

// `function` takes the object that `make` gives, and the text to write into, and gives what it wrote.
template <class Make, class Function>
void row(const Text& operation, std::size_t size, const Text& who, Make make, Function function)
{
    const auto join = [make, function] { return [object = make(), function](Text& to) mutable { return function(object, to); }; };
    Text output(size * 4 + 64, 0);
    row(operation, size, who, join, Text(join()(output)));
}

// For what keeps nothing between messages.
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

template <class Function>
void checksum(const Text& name, std::size_t size, const Text& who, Function function)
{
    const auto make = [size, function] { return [size, function](Text&) mutable { return function(in(message), size); }; };
    row(name, size, who, make, std::to_string(Function(function)(in(message), size)));
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
#endif

void addDigests(std::size_t size)
{
    ownDigest<Utils::CMd5>("md5", size, [](Utils::CMd5& md5, unsigned char* to) { md5.final(to); });
    ownDigest<Utils::CSha1>("sha1", size, [](Utils::CSha1& sha1, unsigned char* to) { sha1.final(to, Utils::CSha1::digestSize); });
    checksum("crc32", size, "ortha", [](const unsigned char* data, std::size_t length) { return Utils::crc32(data, length); });
    checksum("crc16", size, "ortha", [](const unsigned char* data, std::size_t length) { return Utils::crc16(0, data, length); });
#ifdef ORTHA_BENCH_HAS_OPENSSL
    opensslDigest<MD5_CTX, MD5_Init, MD5_Update, MD5_Final>("md5", size);
    opensslDigest<SHA_CTX, SHA1_Init, SHA1_Update, SHA1_Final>("sha1", size);
#endif
#ifdef ORTHA_BENCH_HAS_ZLIB
    checksum("crc32", size, "zlib", [](const unsigned char* data, std::size_t length) { return ::crc32_z(0, data, length); });
#endif
#ifdef ORTHA_BENCH_HAS_ISAL
    checksum("crc32", size, "isal", [](const unsigned char* data, std::size_t length) { return ::crc32_gzip_refl(0, data, length); });
#endif
#ifdef ORTHA_BENCH_HAS_BOOST
    const auto boostSum = [](auto crc) {
        return [crc](const void* data, std::size_t n) mutable { return crc.reset(), crc.process_bytes(data, n), crc.checksum(); };
    };
    checksum("crc32", size, "boost", boostSum(boost::crc_32_type()));
    checksum("crc16", size, "boost", boostSum(boost::crc_16_type()));
#endif
}

// Any bytes can be decrypted.
template <class Make>
void cipher(const Text& name, std::size_t size, bool encrypts, [[maybe_unused]] const char* evpName, Make make)
{
    row(name, size, "ortha", make, [size, encrypts](auto& cipher, Text& to) {
        const bool done = encrypts ? cipher->encrypt(out(to), in(message), size) : cipher->decrypt(out(to), in(message), size);
        return View(to.data(), done ? size : 0);
    });
#ifdef ORTHA_BENCH_HAS_OPENSSL
    const auto makeEvp = [evpName, encrypts] {
        const std::shared_ptr<EVP_CIPHER_CTX> context(EVP_CIPHER_CTX_new(), &EVP_CIPHER_CTX_free);
        EVP_CipherInit_ex(context.get(), EVP_get_cipherbyname(evpName), nullptr, in(key), in(vector), encrypts);
        EVP_CIPHER_CTX_set_padding(context.get(), 0);
        return context;
    };
    row(name, size, "openssl", makeEvp, [size](auto& context, Text& to) {
        int length = 0;
        EVP_CipherUpdate(context.get(), out(to), &length, in(message), int(size));
        return View(to.data(), std::size_t(length));
    });
#endif
}

void addCiphers(std::size_t size, bool encrypts)
{
    const auto add = [size, encrypts](const Text& mode, CAes::EncMode number, const char* evpName) {
        const auto make = [number] { return std::make_shared<CAes>(number, in(key), CAes::keyBits128, in(vector)); };
        cipher("aes-" + mode + (encrypts ? "-encrypt" : "-decrypt"), size, encrypts, evpName, make);
    };
    add("ecb", CAes::encModeECB, "AES-128-ECB");
    add("cbc", CAes::encModeCBC, "AES-128-CBC");
    add("cfb128", CAes::encModeCFB128, "AES-128-CFB");
    add("ctr", CAes::encModeCTR, "AES-128-CTR");
    if (size <= sizes[2])
    {
        add("cfb8", CAes::encModeCFB8, "AES-128-CFB8");
    }
    const auto make = [] { return std::make_shared<Utils::CTripleDes>(in(key), 24, Utils::CTripleDes::blockType8, in(vector)); };
    cipher(encrypts ? "3des-cbc-encrypt" : "3des-cbc-decrypt", size, encrypts, "DES-EDE3-CBC", make);
}

void addEncoders()
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

class Iconv
{
public:
    Iconv(const char* to, const char* from) : m_state(iconv_open(to, from), &iconv_close) {}

    View operator()(View from, Text& to)
    {
        char *next = const_cast<char*>(from.data()), *end = to.data();
        std::size_t left = from.size(), room = to.size();
        iconv(m_state.get(), &next, &left, &end, &room);
        return View(to.data(), left == 0 ? to.size() - room : 0);
    }

private:
    std::shared_ptr<void> m_state;
};

// Words of the scripts that are told by their first letters and how many they have, as UTF-8.
Text drawText(const std::vector<std::pair<unsigned int, unsigned int>>& scripts)
{
    Bench::Draw<unsigned int> draw(0, 1 << 20);
    Iconv encode("UTF-8", "UTF-16LE");
    Text text, word(64, 0);
    while (text.size() < textSize)
    {
        const auto [first, count] = scripts[draw() % scripts.size()];
        std::u16string letters(draw() % 8 + 2, u' ');
        std::generate(letters.begin(), letters.end() - 1, [&] { return char16_t(first + draw() % count); });
        text += encode(View(reinterpret_cast<char*>(letters.data()), 2 * letters.size()), word);
    }
    return text;
}

void addTexts()
{
    using Units = unsigned short;
    const auto add = [](const Text& name, const Text& who, const Text& input, auto function) {
        const auto call = [input = Text(input), function](Text& to) mutable {
            return View(to.data(), std::size_t(function(input, int(input.size()), to)));
        };
        row(name, textSize, who, call);
    };
    const auto convert = [](const char* from, const char* to, const Text& text) {
        Text room(4 * text.size(), 0);
        return Text(Iconv(to, from)(text, room));
    };
    const auto addIconv = [](const Text& name, const char* from, const char* to, const Text& input) {
        const auto make = [from, to] { return Iconv(to, from); };
        row(name, textSize, "iconv", make, [input](Iconv& iconv, Text& output) { return iconv(input, output); });
    };
    const Text chinese = drawText({{'a', 26}, {0x4E00, 0x5000}}), cyrillic = drawText({{'a', 26}, {0x430, 32}});
    const Text gbk = convert("UTF-8", "GBK", chinese), gbkUnits = convert("UTF-8", "UTF-16LE", chinese);
    const Text cp1251 = convert("UTF-8", "CP1251", cyrillic);
    add("gbk-to-units", "ortha", gbk, [count = int(gbkUnits.size() / 2)](Text& text, int, Text& to) {
        return 2 * Utils::Gb2312ToUni(text.data(), out<Units>(to), count);
    });
    add("gbk-from-units", "ortha", gbkUnits, [size = int(gbk.size())](Text& text, int bytes, Text& to) {
        return Utils::UniTGb2312(out<Units>(text), bytes / 2, to.data(), size) == bytes / 2 ? size : 0;
    });
    add("cp1251-to-utf8", "ortha", cp1251, [](Text& text, int size, Text& to) {
        int length = int(to.size());
        return Utils::cp1251_to_utf8(out(to), length, in(text), size) == 0 ? length : 0;
    });
    addIconv("gbk-to-units", "GBK", "UTF-16LE", gbk);
    addIconv("gbk-from-units", "UTF-16LE", "GBK", gbkUnits);
    addIconv("cp1251-to-utf8", "CP1251", "UTF-8", cp1251);
#ifdef ORTHA_BENCH_HAS_ICU
    static UErrorCode code = U_ZERO_ERROR;
    static UConverter *const gbkSet = ucnv_open("GBK", &code), *const cp1251Set = ucnv_open("windows-1251", &code);
    add("gbk-to-units", "icu", gbk, [](Text& text, int size, Text& to) {
        return 2 * ucnv_toUChars(gbkSet, out<UChar>(to), int(to.size() / 2), text.data(), size, &code);
    });
    add("gbk-from-units", "icu", gbkUnits, [](Text& text, int size, Text& to) {
        return ucnv_fromUChars(gbkSet, to.data(), int(to.size()), in<UChar>(text), size / 2, &code);
    });
    add("cp1251-to-utf8", "icu", cp1251, [](Text& text, int size, Text& to) {
        return ucnv_toAlgorithmic(UCNV_UTF8, cp1251Set, to.data(), int(to.size()), text.data(), size, &code);
    });
#endif
    for (const auto& [name, text] : {std::pair<Text, Text>("utf8-ascii", drawText({{'a', 26}, {'A', 26}, {'0', 10}})),
                                     {"utf8-mixed", drawText({{'a', 26}, {0x430, 32}, {0x4E00, 0x5000}})}})
    {
        const Text units = convert("UTF-8", "UTF-16LE", text), there = name + "-to-units", back = name + "-from-units";
        add(there, "ortha", text, [](Text& utf8, int size, Text& to) { return 2 * Utils::utf8_mbstowcs(out<Units>(to), in(utf8), size); });
        add(back, "ortha", units + Text(2, 0),
            [](Text& utf16, int, Text& to) { return Utils::utf8_wcstombs(out(to), in<Units>(utf16), int(to.size())); });
        addIconv(there, "UTF-8", "UTF-16LE", text);
        addIconv(back, "UTF-16LE", "UTF-8", units);
#ifdef ORTHA_BENCH_HAS_ICU
        add(there, "icu", text, [](Text& utf8, int size, Text& to) {
            int count = 0;
            u_strFromUTF8(out<UChar>(to), int(to.size() / 2), &count, utf8.data(), size, &code);
            return 2 * count;
        });
        add(back, "icu", units, [](Text& utf16, int size, Text& to) {
            int count = 0;
            u_strToUTF8(to.data(), int(to.size()), &count, in<UChar>(utf16), size / 2, &code);
            return count;
        });
#endif
    }
}

struct OwnRanges : Utils::CIntervalSet
{
    void add(int first, int last) { insert({first, last}); }
    void remove(int first, int last) { erase({first, last}); }
    // Where the first range begins that does not end before `value`.
    [[nodiscard]] int from(int value) const { return get(find(value)).first; }
};

template <class Map>
struct MapRanges : Map
{
    void add(int first, int last)
    {
        auto at = this->upper_bound(first);
        if (at != this->begin() && std::prev(at)->second >= first)
        {
            first = (--at)->first;
        }
        while (at != this->end() && at->first <= last)
        {
            last = std::max(last, at->second);
            at = this->erase(at);
        }
        this->emplace_hint(at, first, last);
    }
    void remove(int first, int last)
    {
        auto at = this->upper_bound(first);
        if (at != this->begin() && std::prev(at)->second > first)
        {
            --at;
        }
        while (at != this->end() && at->first < last)
        {
            const auto [begin, end] = *at;
            at = this->erase(at);
            at = begin < first ? std::next(this->emplace_hint(at, begin, first)) : at;
            at = last < end ? this->emplace_hint(at, last, end) : at;
        }
    }
    [[nodiscard]] int from(int value) const
    {
        const auto at = this->upper_bound(value);
        return at != this->begin() && std::prev(at)->second >= value ? std::prev(at)->first : at->first;
    }
};

#ifdef ORTHA_BENCH_HAS_BOOST
using BoostRange = boost::icl::right_open_interval<int>;
struct BoostRanges : boost::icl::interval_set<int, std::less, BoostRange>
{
    void add(int first, int last) { insert(BoostRange(first, last)); }
    void remove(int first, int last) { erase(BoostRange(first, last)); }
    [[nodiscard]] int from(int value) const { return lower_bound(BoostRange(value - 1, value))->lower(); }
};
#endif

template <class Ranges>
void addRanges(const Text& who, std::size_t count)
{
    const auto make = [count] {
        Ranges ranges;
        for (int i = 0; i <= int(count); ++i)
        {
            ranges.add(100 * i, 100 * i + 50);
        }
        return ranges;
    };
    const int highest = 100 * int(count);
    Bench::Draw<int> draw(0, highest - 1);
    Ranges tried = make();
    Text result;
    for (int i = 0; i < 1000; ++i)
    {
        const int value = draw();
        i % 2 != 0 ? tried.add(value, std::min(value + 170, highest)) : tried.remove(value, std::min(value + 120, highest));
        result += std::to_string(tried.from(draw())) + " ";
    }
    const auto change = [make, draw] {
        return [ranges = make(), draw](Text&) mutable {
            const int value = draw() / 100 * 100 + 60;
            return ranges.add(value, value + 20), ranges.remove(value, value + 20), value;
        };
    };
    const auto find = [make, draw] { return [ranges = make(), draw](Text&) mutable { return ranges.from(draw()); }; };
    row("ranges-insert-erase", count, who, change, result);
    row("ranges-find", count, who, find, result);
}

}  // namespace

int main(int argc, char** argv)
{
    for (const std::size_t size : sizes)
    {
        addDigests(size);
        addCiphers(size, true);
        addCiphers(size, false);
    }
    addEncoders();
    addTexts();
    for (const std::size_t count : {10, 100, 1000, 10000})
    {
        addRanges<OwnRanges>("ortha", count);
        addRanges<MapRanges<std::map<int, int>>>("std", count);
#ifdef ORTHA_BENCH_HAS_ABSL
        addRanges<MapRanges<absl::btree_map<int, int>>>("absl", count);
#endif
#ifdef ORTHA_BENCH_HAS_BOOST
        addRanges<BoostRanges>("boost", count);
#endif
    }
    return Bench::run(argc, argv);
}
