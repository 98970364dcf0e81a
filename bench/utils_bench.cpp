// The library's digests, checksums, ciphers, encoders, character sets and interval set beside others. Rows are named
// utils/operation/size/who.
#include <iterator>

#include "native.h"
#include "utils_rows.h"

#ifdef ORTHA_BENCH_HAS_OPENSSL
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
#include <boost/icl/interval_set.hpp>
#endif
#ifdef ORTHA_BENCH_HAS_ABSL
#include <absl/container/btree_map.h>
#endif
#ifdef ORTHA_BENCH_HAS_ICU
#include <unicode/ucnv.h>
#include <unicode/ustring.h>
#endif

const std::string_view UtilsRows::area = "utils";

namespace {

using namespace UtilsRows;
using Bench::Native::Converter;

void addDigests(std::size_t size)
{
    ownDigests(size);
    ownChecksums(size);
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
    boostChecksum<boost::crc_32_type>("crc32", size);
    boostChecksum<boost::crc_16_type>("crc16", size);
#endif
}

void addCiphers(std::size_t size, bool encrypts)
{
    const auto add = [size, encrypts](const Text& mode, CAes::EncMode number, [[maybe_unused]] const char* evpName) {
        ownAes(mode, number, size, encrypts);
#ifdef ORTHA_BENCH_HAS_OPENSSL
        opensslCipher(cipherName("aes-" + mode, encrypts), evpName, size, encrypts);
#endif
    };
    add("ecb", CAes::encModeECB, "AES-128-ECB");
    add("cbc", CAes::encModeCBC, "AES-128-CBC");
    add("cfb128", CAes::encModeCFB128, "AES-128-CFB");
    add("ctr", CAes::encModeCTR, "AES-128-CTR");
    if (size <= sizes[2])
    {
        add("cfb8", CAes::encModeCFB8, "AES-128-CFB8");
    }
    addTripleDes(size, encrypts);
}

// Words of the scripts that are told by their first letters and how many they have, as UTF-8.
Text drawText(const std::vector<std::pair<unsigned int, unsigned int>>& scripts)
{
    Bench::Draw<unsigned int> draw(0, 1 << 20);
    Converter encode("UTF-8", "UTF-16LE");
    Text text, word(64, 0);
    while (text.size() < textSize)
    {
        const auto& script = scripts[draw() % scripts.size()];
        std::u16string letters(draw() % 8 + 2, u' ');
        std::generate(letters.begin(), letters.end() - 1, [&] { return char16_t(script.first + draw() % script.second); });
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
        return Text(Converter(to, from)(text, room));
    };
    const auto addNative = [](const Text& name, const char* from, const char* to, const Text& input) {
        const auto make = [from, to] { return Converter(to, from); };
        row(name, textSize, Bench::Native::convertedBy, make,
            [input](Converter& converter, Text& output) { return converter(input, output); });
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
    addNative("gbk-to-units", "GBK", "UTF-16LE", gbk);
    addNative("gbk-from-units", "UTF-16LE", "GBK", gbkUnits);
    addNative("cp1251-to-utf8", "CP1251", "UTF-8", cp1251);
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
        addNative(there, "UTF-8", "UTF-16LE", text);
        addNative(back, "UTF-16LE", "UTF-8", units);
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
    for (const std::size_t count : {10U, 100U, 1000U, 10000U})
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
