#include "utils/CharSet.h"

#include <iconv.h>

#include <map>

#include "Support.h"

namespace General::Utils::Test {
namespace {

/// A text in another set; "" if it has none there.
std::string converted(const std::string& to, const std::string& from, std::string text)
{
    static auto& converters = *new std::map<std::string, iconv_t>;  // stays to the end
    iconv_t& converter = converters[to + " " + from];
    converter = converter ? converter : iconv_open(to.c_str(), from.c_str());
    std::string out(4 * text.size() + 8, 0);
    char *in = text.data(), *end = out.data();
    std::size_t inLeft = text.size(), outLeft = out.size();
    iconv(converter, nullptr, nullptr, nullptr, nullptr);
    return iconv(converter, &in, &inLeft, &end, &outLeft) == 0 ? out.substr(0, out.size() - outLeft) : "";
}

/// Whether `call(destination)` gives `result` and leaves the bytes with 'x' behind, of `size` in all.
template <class Call>
void check(int result, std::string bytes, std::size_t size, Call call)
{
    bytes.resize(size, 'x');
    ASSERT_EQ(room(std::string(size, 'x'), [&](At to) { EXPECT_EQ(call(to), result); }), bytes);
}

TEST(CharSet, EveryUnitAndEveryPairOfBytesIsWhatTheReferenceHas)
{
    int pairs = 0;
    for (unsigned int value = 0; value < 0x10000 && !HasFailure(); ++value)
    {
        const auto unit = static_cast<unsigned short>(value);
        const std::string low(1, static_cast<char>(value)), high(1, static_cast<char>(value >> 8));
        const std::string code = value < 0x100 ? low.substr(value == 0) : value == 0x20AC ? "" : converted("CP936", "UTF-16LE", low + high);
        const std::string utf8 = converted("UTF-8", "UTF-16LE", low + high);  // of surrogates there is none
        for (std::size_t bound = 0; bound <= 4; ++bound)
        {
            const int room = static_cast<int>(bound), size = utf8.size() <= bound ? static_cast<int>(utf8.size()) : -1;
            const int length = code.empty() || bound < code.size() ? -1 : static_cast<int>(code.size());
            unsigned char out[2] = {};
            EXPECT_TRUE(uni2char(unit, out, room) == length && (length < 0 || code == std::string(out, out + length))) << value;
            unsigned short back = 0;
            utf8.empty() ? void() : check(size, size < 0 ? "" : utf8, bound, [&](At to) { return utf8_wctomb(to, unit, room); });
            EXPECT_TRUE(utf8.empty() || (utf8_mbtowc(&back, at(utf8), room) == size && back == (size < 0 ? 0 : unit))) << value;
        }
        const bool single = value < 0x8100 || value >= 0xFF00 || value % 0x100 == 0;
        const std::string two = single ? high + '\0' : converted("UTF-16LE", "CP936", high + low);
        const std::string wanted = value >> 8 == 0x80 ? "\xAC\x20" : two.size() == 2 ? two : std::string(2, 0);
        const int length = single ? 1 : two.size() == 2 ? 2 : -1;
        check(length, wanted, 2, [&](At to) { return char2uni(at(high + low), 2, to); });
        pairs += length == 2;
    }
    EXPECT_EQ(pairs, 21791);
}

TEST(CharSet, EverySetOfOneByteIsThePublishedOne)
{
    constexpr decltype(&cp862_to_utf8) sets[] = {
        cp862_to_utf8,     cp874_to_utf8,      cp1250_to_utf8,     cp1251_to_utf8,     iso8859_1_to_utf8,  iso8859_2_to_utf8,
        iso8859_3_to_utf8, iso8859_4_to_utf8,  iso8859_5_to_utf8,  iso8859_6_to_utf8,  iso8859_7_to_utf8,  iso8859_8_to_utf8,
        iso8859_9_to_utf8, iso8859_10_to_utf8, iso8859_13_to_utf8, iso8859_14_to_utf8, iso8859_15_to_utf8, iso8859_16_to_utf8};
    const char* const names[] = {"CP862", "CP874", "CP1250", "CP1251", "1",  "2",  "3",  "4",  "5",
                                 "6",     "7",     "8",      "9",      "10", "13", "14", "15", "16"};
    std::map<std::string, std::string> different = {{"CP874\x80", ""}, {"7\xA1", "\u02BD"}, {"7\xA2", "\u02BC"},
                                                    {"7\xA4", ""},     {"7\xA5", ""},       {"7\xAA", ""}};
    for (std::size_t set = 0; set < std::size(sets); ++set)
    {
        std::string text, expected;
        for (int byte = 0; byte < 256; ++byte)
        {
            text += static_cast<char>(byte);
            const auto found = different.find(names[set] + text.substr(text.size() - 1));
            const bool digit = set == 9 && byte >= '0' && byte <= '9';
            expected += digit                      ? std::string("\xD9") + static_cast<char>(byte + 0x70)
                        : found != different.end() ? found->second
                        : byte ? converted("UTF-8", (set < 4 ? "" : "ISO8859-") + std::string(names[set]), text.substr(text.size() - 1))
                               : "";
        }
        for (const int extra : {-1, 0, 1})
        {
            int in = 256, out = static_cast<int>(expected.size()) + extra;
            const std::string space(static_cast<std::size_t>(out), 'x');
            const std::string got = room(space, [&](At to) { EXPECT_EQ(sets[set](to, out, at(text), in), 0); });
            EXPECT_TRUE(got.substr(0, static_cast<std::size_t>(out)) == expected.substr(0, static_cast<std::size_t>(out)) &&
                        (extra < 0 ? in < 256 : in == 256 && static_cast<std::size_t>(out) == expected.size()))
                << names[set];
        }
        int one = 1, two = 2;
        check(-1, "", 2, [&](At to) { return sets[set](to, one, at(text), two); });
        EXPECT_EQ(sets[set](nullptr, two, at(text), one) + sets[set](at(text), two, nullptr, one), -2);
    }
}

TEST(CharSet, CodePage1252GoesBothWaysAndBadSequencesEndIt)
{
    for (int byte = 1; byte < 256; ++byte)
    {
        const std::string text = std::string(1, static_cast<char>(byte)) + "a", utf8 = converted("UTF-8", "CP1252", text),
                          back = utf8.empty() ? "\xC2" + text : utf8;
        const std::string all = utf8.empty() ? std::string(2, 0) : utf8;
        const int size = static_cast<int>(all.size());
        check(0, all, all.size(), [&](At to) { return cp1252_to_utf8(to, size, at(text), 2); });
        check(size, "", all.size(), [&](At to) { return cp1252_to_utf8(to, size - 1, at(text), 2); });
        check(2, text, 2, [&](At to) { return utf8_to_cp1252(at(back), static_cast<int>(back.size()), to, 2); });
        check(1, text.substr(0, 1), 2, [&](At to) { return utf8_to_cp1252(at(back), static_cast<int>(back.size()), to, 1); });
    }
    for (const std::string bad : {"\x80z", "\xE2\x82z", "\xE2\x82", "\xFEz"})
    {
        const std::string text = "a\u0100\U0001F600" + bad;
        check(1, "a", 4, [&](At to) { return utf8_to_cp1252(at(text), static_cast<int>(text.size()), to, 4); });
    }
}

TEST(CharSet, SequencesAreToldByEachInItsWay)
{
    const struct
    {
        std::string in;
        int length, unit, got, read;
    } cases[] = {{"\xC0\x80", -1, 0, 0, 2},
                 {"\xE0\x9F\xBF", -1, 0, 0x7FF, 3},
                 {"\xF0\x8F\xBF\xBF", -1, 0, 0, 0},
                 {"\xF0\x9F\x98\x80", 4, 0xF600, 0, 0},
                 {"\xFD\xBF\xBF\xBF\xBF\xBE", 6, 0xFFFE, 0, 0},
                 {"\xFE\xBF\xBF\xBF\xBF\xBF", -1, 0, 0, 0},
                 {"\x80\x80", -1, 0, 0, 0},
                 {"\xE4\xBD", -1, 0, 0, 3},
                 {"\xE4\xBDx", -1, 0, 0x13D, 3},
                 {"\xE4\xC3\x80", -1, 0, 4, 3},
                 {"a", 1, 'a', 'a', 1}};
    for (const auto& [in, length, unit, got, read] : cases)
    {
        unsigned short out[8] = {};
        int told = 7;
        EXPECT_TRUE(utf8_mbtowc(out, at(in), static_cast<int>(in.size())) == length && *out == unit) << testing::PrintToString(in);
        EXPECT_TRUE(GetUnicodeFromUtf8(in.c_str(), &told) == got && told == read) << testing::PrintToString(in);
        EXPECT_EQ(utf8_mbstowcs(out, at("(\xC3(" + in), 3) + out[1], 2 + '(');
    }
}

TEST(CharSet, TextsFillWhatRoomThereIs)
{
    const std::string gbk = "\xB0\xA1"
                            "b\xC4\xE3",
                      utf8 = converted("UTF-8", "CP936", gbk), units = converted("UTF-16LE", "CP936", gbk), zeros(2, 0);
    check(3, units + zeros, 10, [&](At to) { return Gb2312ToUni(at(gbk), to, 4); });
    check(2, units.substr(0, 4), 8, [&](At to) { return Gb2312ToUni(at(gbk), to, 2); });
    check(3, gbk + '\0', 7, [&](At to) { return UniTGb2312(at(units), 3, to, 6); });
    check(2, gbk.substr(0, 3) + '\0', 6, [&](At to) { return UniTGb2312(at(units), 3, to, 4); });
    check(7, utf8 + '\0', 9, [&](At to) { return Gb2312TUtf8(at(gbk), to, 8); });
    check(4, utf8.substr(0, 4) + zeros, 8, [&](At to) { return Gb2312TUtf8(at(gbk), to, 6); });
    check(3, gbk, 6, [&](At to) { return utf8TGb2312(at(utf8), to, 7, 5); });
    check(3, units, 8, [&](At to) { return utf8_mbstowcs(to, at(utf8), 7); });
    check(-1, "b" + std::string(4, 0), 6, [&](At to) { return utf8TGb2312(at("b\u20AC"), to, 4, 5); });
    EXPECT_EQ(Gb2312ToUni(nullptr, at(units), 1) + Gb2312TUtf8(at(zeros), at(zeros), 2) + utf8TGb2312(at(zeros), at(zeros), 2, 2), 0);
}

TEST(CharSet, Ucs4GoesThereAndBackAsFarAsThereIsRoom)
{
    const std::u32string values = {0x7F, 0x80, 0x7FF, 0x800, 0xFFFF, 0x10000, 0x80000000, 0x200000, 0x4000000, 0x7FFFFFFF};
    const std::string from(reinterpret_cast<const char*>(values.data()), 40),
        utf8 = "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF\xF0\x90\x80\x80\xF8\x88\x80\x80\x80\xFC\x84\x80\x80\x80\x80\xFD\xBF\xBF\xBF"
               "\xBF\xBF";
    check(32, utf8, 33, [&](At to) { return UCS4ToUtf8(at(from), 40, to, 32); });
    check(20, from.substr(0, 20), 24, [&](At to) { return utf8ToUCS4(at(utf8), 11, to, 20); });
    const auto poor = [&] {
        check(26, utf8.substr(0, 26), 33, [&](At to) { return UCS4ToUtf8(at(from), 40, to, 31); });
        check(16, from.substr(0, 16), 24, [&](At to) { return utf8ToUCS4(at(utf8), 11, to, 19); });
        check(16, from.substr(0, 16), 24, [&](At to) { return utf8ToUCS4(at(utf8), 10, to, 20); });
        EXPECT_EQ(UCS4ToUtf8(nullptr, 3, at(from), 4) + UCS4ToUtf8(at(from), 3, nullptr, 4), 0);
        EXPECT_EQ(utf8ToUCS4(nullptr, 1, at(from), 4) + utf8ToUCS4(at(from), 1, nullptr, 4), 0);
    };
    EXPECT_EQ(logged(poor), "w UCS4ToUtf8 utf8Size error\nw ucs4Len too short, suggest set:44 bytesutf8 read overflow, need utf8Len:11"
                            "ucs4 is invalid\nw utf8 is invalid\nw utf8 is invalid\nw UCS4 is invalid\n");
}

}  // namespace
}  // namespace General::Utils::Test
