#include "ortha/ortha3/FlexString.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <iterator>
#include <list>
#include <random>
#include <sstream>
#include <string>
#include <unordered_set>
#include <vector>

namespace {

using General::Ortha::AllocatorStringStorage;
using General::Ortha::flex_string;
using General::Ortha::mini_string;
using General::Ortha::MiniStringStorage;
using General::Ortha::SmallStringOpt;
using FlexString = General::Ortha::string;

// Lengths on both sides of every change of mode and of copying method.
constexpr std::size_t lengths[] = {0, 1, 2, 3, 7, 8, 15, 16, 17, 30, 31, 32, 33, 47, 64, 100};

std::string textOf(std::size_t n, char first = 'a')
{
    std::string text(n, ' ');
    for (std::size_t i = 0; i < n; ++i)
    {
        text[i] = static_cast<char>(first + static_cast<char>(i % 23));
    }
    return text;
}

template <typename String>
::testing::AssertionResult holds(const String& subject, const std::string& expected)
{
    if (std::string_view(subject) != expected || subject.size() != expected.size() || subject.capacity() < subject.size())
    {
        return ::testing::AssertionFailure() << "\"" << std::string_view(subject) << "\", not \"" << expected << "\"";
    }
    if (std::memcmp(subject.c_str(), expected.c_str(), expected.size() + 1) != 0 || subject[subject.size()] != '\0')
    {
        return ::testing::AssertionFailure() << "not terminated after " << expected.size() << " characters";
    }
    return ::testing::AssertionSuccess();
}

template <typename T>
class EveryStorage : public ::testing::Test
{
};
using Strings = ::testing::Types<FlexString, mini_string>;
TYPED_TEST_SUITE(EveryStorage, Strings, );  // the comma: C++17 wants an argument for the dots

// One step of the comparison with std::string: `s` is `n` characters, some of them a part of `subject` itself.
template <typename String>
void step(unsigned operation, String& subject, std::size_t pos, std::size_t cut, const char* s, std::size_t n)
{
    const char c = static_cast<char>('A' + n % 26);
    const auto place = [&] { return subject.begin() + static_cast<std::ptrdiff_t>(pos); };
    const auto placeEnd = [&] { return place() + static_cast<std::ptrdiff_t>(std::min(cut, subject.size() - pos)); };
    // clang-format off: a table
    switch (operation)
    {
    case 0:
        subject.append(s, n);
        break;
    case 1:
        subject.assign(s, n);
        break;
    case 2:
        subject.insert(pos, s, n);
        break;
    case 3:
        subject.replace(pos, cut, s, n);
        break;
    case 4:
        subject.replace(place(), placeEnd(), s, n);
        break;
    case 5:
        subject.insert(place(), s, s + n);
        break;
    case 6:
        subject.erase(pos, cut);
        break;
    case 7:
        subject.erase(place(), placeEnd());
        break;
    case 8:
        subject.append(n, c);
        break;
    case 9:
        subject.insert(place(), n, c);
        break;
    case 10:
        subject.replace(place(), placeEnd(), n, c);
        break;
    case 11:
        subject.resize(n, c);
        break;
    case 12:
        subject.assign(n, c);
        break;
    case 13:
        subject.reserve(n);
        break;
    case 14:
        subject = String(subject, pos, cut) + String(s, n);
        break;
    case 15:
        subject.push_back(c);
        break;
    case 16:
        subject = String(s, n).append(subject);
        break;
    case 17:
        subject.shrink_to_fit();
        break;
    case 18:
        subject.insert(place(), std::make_reverse_iterator(s + n), std::make_reverse_iterator(s));
        break;
    case 19:
        subject.append(std::make_reverse_iterator(s + n), std::make_reverse_iterator(s));
        break;
    case 20:
        String(s, n).swap(subject);
        break;
    case 21:
        subject = String(subject);
        break;
    default:
        subject = subject.substr(pos, cut) + c;
        break;
    }
    // clang-format on
}

TYPED_TEST(EveryStorage, FollowsStdStringThroughRandomOperationsWithForeignAndOwnText)
{
    const std::string foreign = textOf(70, 'a');
    std::mt19937 random(20240731);
    const auto below = [&](std::size_t n) { return std::uniform_int_distribution<std::size_t>(0, n)(random); };
    TypeParam subject;
    std::string model;
    for (int round = 0; round < 60000; ++round)
    {
        if (model.size() > 150)
        {
            model.resize(below(60));
            subject.resize(model.size());
        }
        const auto operation = static_cast<unsigned>(below(22));
        const std::size_t pos = below(model.size());
        const std::size_t cut = below(40);
        const bool own = below(1) == 0;
        const std::size_t from = own ? below(model.size()) : below(35);
        const std::size_t n = own ? below(model.size() - from) : below(35);
        const std::string text = (own ? model : foreign).substr(from, n);
        const std::string before = model;
        step(operation, model, pos, cut, text.data(), n);
        step(operation, subject, pos, cut, (own ? std::as_const(subject).begin() : foreign.data()) + from, n);
        ASSERT_TRUE(holds(subject, model)) << "round " << round << ", operation " << operation << " on " << before << " at " << pos << ", "
                                           << cut << " with " << (own ? "own " : "") << text;
    }
}

TYPED_TEST(EveryStorage, TakesItsOwnTerminatorAsAPartOfItself)
{
    for (std::size_t n : lengths)
    {
        const std::string text = textOf(n);
        const std::string terminated(text.c_str(), n + 1);
        TypeParam appended(text), assigned(text), inserted(text), replaced(text);
        EXPECT_TRUE(holds(appended.append(appended.c_str(), n + 1), text + terminated));
        EXPECT_TRUE(holds(assigned.assign(assigned.c_str(), n + 1), terminated));
        EXPECT_TRUE(holds(inserted.insert(0, inserted.c_str(), n + 1), terminated + text));
        EXPECT_TRUE(holds(replaced.replace(0, n, replaced.c_str(), n + 1), terminated));
    }
}

TYPED_TEST(EveryStorage, CopiesMovesAndSwapsBetweenAllPairsOfLengths)
{
    for (std::size_t n : lengths)
    {
        for (std::size_t m : lengths)
        {
            const std::string a = textOf(n, 'a'), b = textOf(m, 'A');
            TypeParam x(a), y(b), copy(x), target(y);
            swap(x, y);
            ASSERT_TRUE(holds(x, b) && holds(y, a)) << n << ", " << m;
            target = copy;
            ASSERT_TRUE(holds(target, a) && holds(copy, a)) << n << ", " << m;
            y = std::move(x);
            ASSERT_TRUE(holds(y, b) && holds(x, "")) << n << ", " << m;
            x.append(a);
            TypeParam taken(std::move(x));
            ASSERT_TRUE(holds(taken, a) && holds(x, "")) << n << ", " << m;
            TypeParam& same = taken;
            taken = same;
            ASSERT_TRUE(holds(taken, a)) << n;
            taken.reserve(m);
            EXPECT_TRUE(holds(TypeParam(taken), a)) << n << ", " << m;
        }
    }
}

TYPED_TEST(EveryStorage, AnswersSearchAndOrderLikeStdString)
{
    const std::string model = "the cat, the dog and the longer text behind them";
    const TypeParam subject(model);
    const char* const needles[] = {
        "", "t", "the", "them", "dog", "xyz", "aeiou", " ,", "the cat, the dog and the longer text behind them!"};
    for (const char* s : needles)
    {
        const TypeParam needle(s);
        for (std::size_t pos : {std::size_t(0), std::size_t(9), model.size(), model.size() + 5, std::string::npos})
        {
            EXPECT_EQ(subject.find(s, pos), model.find(s, pos));
            EXPECT_EQ(subject.rfind(needle, pos), model.rfind(s, pos));
            EXPECT_EQ(subject.find_first_of(s, pos), model.find_first_of(s, pos));
            EXPECT_EQ(subject.find_last_of(needle, pos), model.find_last_of(s, pos));
            EXPECT_EQ(subject.find_first_not_of(std::string(s), pos), model.find_first_not_of(s, pos));
            EXPECT_EQ(subject.find_last_not_of(s, pos), model.find_last_not_of(s, pos));
        }
        EXPECT_EQ(subject.compare(4, 3, s) < 0, model.compare(4, 3, s) < 0);
        EXPECT_EQ(subject.compare(4, 3, needle, 0, 1), model.compare(4, 3, std::string(s), 0, 1));
        EXPECT_EQ(subject < needle, model < s);
        EXPECT_EQ(subject >= s, model >= s);
        EXPECT_EQ(s > subject, s > model);
        EXPECT_EQ(subject == needle, model == s);
        EXPECT_EQ(s != subject, s != model);
        EXPECT_EQ(subject.starts_with(s), model.compare(0, std::strlen(s), s) == 0);
    }
    EXPECT_TRUE(subject.ends_with("them") && !subject.ends_with("the") && subject.ends_with('m'));
    EXPECT_EQ(std::unordered_set<TypeParam>({subject}).count(TypeParam(model)), 1u);
}

TYPED_TEST(EveryStorage, BuildsFromEveryKindOfRangeAndTakesLiteralZeroAsAPosition)
{
    const std::string text = textOf(75);
    const std::list<char> list(text.begin(), text.end());
    std::istringstream stream(text);
    EXPECT_TRUE(holds(TypeParam(list.begin(), list.end()), text));
    EXPECT_TRUE(holds(TypeParam(std::istreambuf_iterator<char>(stream), {}), text));
    EXPECT_TRUE(holds(TypeParam(text, 3, 40), text.substr(3, 40)));
    TypeParam s{'x', 'y'};
    s.insert(0, 2, 'a').insert(0, "<").replace(0, 1, "[[").erase(0, 1);
    s.insert(s.cend(), {']', '!'});
    EXPECT_TRUE(holds(s, "[aaxy]!"));
    EXPECT_TRUE(holds('(' + s + ")" + TypeParam(text) + std::as_const(s), "([aaxy]!)" + text + "[aaxy]!"));
    EXPECT_EQ(erase(s, 'a'), 2u);
    s.erase(0);
    EXPECT_TRUE(s.empty());
}

TYPED_TEST(EveryStorage, StreamsKeepTheirRulesAboutWidthFailureAndExceptions)
{
    std::istringstream in("  " + textOf(50) + " two\nrest of line;tail");
    TypeParam word, line, last, unread("kept");
    in >> word >> std::ws;
    in.width(2);
    in >> line;
    EXPECT_TRUE(holds(word, textOf(50)) && holds(line, "tw"));
    getline(in, line);
    EXPECT_TRUE(holds(line, "o"));
    getline(in, line, ';');
    EXPECT_TRUE(holds(line, "rest of line"));
    in.exceptions(std::ios::eofbit);
    EXPECT_THROW(in >> last, std::ios::failure);
    EXPECT_TRUE(holds(last, "tail"));
    in.exceptions(std::ios::goodbit);
    EXPECT_FALSE(in >> unread);
    EXPECT_TRUE(holds(unread, "kept"));
    std::ostringstream out;
    out.width(6);
    out << last;
    EXPECT_EQ(out.str(), "  tail");
}

TEST(FlexString, ChangesModeWhereTheLengthAsksForIt)
{
    const auto after = [](std::size_t n, const std::function<void(FlexString&)>& change) {
        FlexString s(textOf(n));
        change(s);
        return s.capacity();
    };
    EXPECT_EQ(after(0, [](auto&) {}), 31u);
    EXPECT_EQ(after(31, [](auto&) {}), 31u);
    EXPECT_EQ(after(31, [](auto& s) { s.push_back('x'); }), 32u);
    EXPECT_EQ(after(40, [](auto& s) { s.append(3, 'x'); }), 43u);
    EXPECT_EQ(after(5, [](auto& s) { s.reserve(10); }), 31u);
    EXPECT_EQ(after(5, [](auto& s) { s.reserve(32); }), 32u);
    EXPECT_EQ(after(5, [](auto& s) { s.resize(60); }), 60u);
    EXPECT_EQ(after(100, [](auto& s) { s.reserve(10); }), 100u);
    EXPECT_EQ(after(100, [](auto& s) { s.resize(50); }), 100u);
    EXPECT_EQ(after(100, [](auto& s) { s.resize(32); }), 100u);
    EXPECT_EQ(after(100, [](auto& s) { s.resize(31); }), 31u);
    EXPECT_EQ(after(100, [](auto& s) { s.resize(10); }), 31u);
    EXPECT_EQ(after(100, [](auto& s) { s.erase(3, 80); }), 31u);
    EXPECT_EQ(after(100, [](auto& s) { s.assign("short"); }), 31u);
    EXPECT_EQ(after(32, [](auto& s) { s.pop_back(); }), 31u);
    EXPECT_EQ(after(20, [](auto& s) { s = s + "a text that makes it long"; }), 45u);
}

// A copy owns a block that just holds its text, even where that is shorter than the buffer in the object.
TEST(FlexString, ACopyOfAShortTextInABigStringCanBeResizedToAnyLength)
{
    for (std::size_t n : {0u, 5u, 31u})
    {
        for (std::size_t length : lengths)
        {
            FlexString roomy(textOf(n));
            roomy.reserve(100);
            FlexString copy(roomy);
            EXPECT_EQ(copy.capacity(), n);
            copy.resize(length, 'x');
            std::string expected = textOf(n);
            expected.resize(length, 'x');
            EXPECT_TRUE(holds(copy, expected)) << n << " to " << length;
        }
    }
}

TEST(FlexString, HoldsWideCharactersOnBothSidesOfTheBoundary)
{
    for (std::size_t n : lengths)
    {
        const std::wstring text(n, L'\x20ac');
        flex_string<wchar_t> s(text);
        EXPECT_EQ(std::wstring_view(s.append(s).insert(n / 2, s)), std::wstring(4 * n, L'\x20ac'));
        s.resize(n);
        EXPECT_EQ(std::wstring(s.c_str()), text);
    }
}

int liveBlocks = 0;
int allocationsLeft = 1 << 30;

template <typename T>
struct TestAllocator
{
    using value_type = T;
    TestAllocator() = default;
    template <typename U>
    TestAllocator(const TestAllocator<U>&) noexcept
    {
    }
    T* allocate(std::size_t n)
    {
        if (--allocationsLeft < 0)
        {
            throw std::bad_alloc();
        }
        ++liveBlocks;
        return std::allocator<T>().allocate(n);
    }
    void deallocate(T* block, std::size_t n) noexcept
    {
        --liveBlocks;
        std::allocator<T>().deallocate(block, n);
    }
    friend bool operator==(const TestAllocator&, const TestAllocator&) { return true; }
    friend bool operator!=(const TestAllocator&, const TestAllocator&) { return false; }
};
using TrackedString = flex_string<char, std::char_traits<char>, TestAllocator<char>>;

TEST(FlexString, HoldsABlockOnlyWhileItIsBigAndMovesIt)
{
    ASSERT_EQ(liveBlocks, 0);
    {
        TrackedString s(textOf(31)), big(textOf(100));
        EXPECT_EQ(liveBlocks, 1);
        const char* const place = big.data();
        TrackedString moved(std::move(big));
        s = std::move(moved);
        EXPECT_EQ(s.data(), place);
        swap(s, moved);
        EXPECT_EQ(moved.data(), place);
        EXPECT_EQ(liveBlocks, 1);
        moved.resize(10);
        EXPECT_EQ(liveBlocks, 0);
        AllocatorStringStorage<char, TestAllocator<char>> storage, copy(storage);
        copy = storage;
        EXPECT_EQ(copy.capacity() + static_cast<std::size_t>(liveBlocks), 0u);
    }
    EXPECT_EQ(liveBlocks, 0);
}

TEST(FlexString, IsUnchangedByAnOperationWhoseAllocationFails)
{
    const std::string foreign = textOf(60, 'A');
    for (std::size_t n : lengths)
    {
        const std::string text = textOf(n);
        for (unsigned operation = 0; operation < 23; ++operation)
        {
            for (bool own : {false, true})
            {
                for (int failing = 0; failing < 4; ++failing)
                {
                    TrackedString s(text);
                    allocationsLeft = failing;
                    try
                    {
                        step(operation, s, n / 2, 1, own ? s.data() : foreign.data(), own ? n : 60);
                    }
                    catch (const std::bad_alloc&)
                    {
                        EXPECT_TRUE(holds(s, text)) << n << ", operation " << operation;
                    }
                    allocationsLeft = 1 << 30;
                    s.append("x").clear();
                    EXPECT_TRUE(s.empty());
                }
            }
        }
    }
    EXPECT_EQ(liveBlocks, 0);
}

TEST(FlexString, RefusesALengthThatNoBlockCanHave)
{
    EXPECT_THROW(FlexString(FlexString::npos, 'x'), std::bad_alloc);
    EXPECT_THROW(FlexString(FlexString::npos - 8, 'x'), std::bad_alloc);
}

TEST(MiniString, HasNoBlockWhileItWasNeverFilled)
{
    mini_string empty, copy(empty), assigned;
    assigned = copy;
    assigned.append(copy).assign("").insert(0, copy).resize(0);
    assigned.reserve(0);
    void* block = &block;
    std::memcpy(&block, static_cast<const void*>(&assigned), sizeof(block));
    EXPECT_EQ(block, nullptr);
    EXPECT_EQ(assigned.begin(), nullptr);
    EXPECT_EQ(assigned.capacity(), 0u);
    EXPECT_STREQ(assigned.c_str(), "");
    assigned = "text";
    EXPECT_EQ(assigned.capacity(), 4u);
    assigned += "more";
    EXPECT_EQ(assigned.capacity(), 8u);
    assigned = empty;
    EXPECT_TRUE(holds(assigned, ""));
    EXPECT_EQ(assigned.capacity(), 8u);
}

TEST(FlexStringDeathTest, BrokenPreconditionsAreAssertionsWithTheirCondition)
{
#ifdef NDEBUG
    GTEST_SKIP() << "assertions are compiled out";
#else
    FlexString s("abcdef");
    const char* const text = "foreign";
    const FlexString::const_iterator b = s.begin(), e = s.end();
    const std::pair<std::string, std::function<void()>> cases[] = {
        {"0", [&] { (void)s.at(6); }},
        {"0", [&] { (void)s.substr(7); }},
        {"0", [&] { s.erase(7); }},
        {"0", [&] { s.insert(7, "x"); }},
        {"0", [&] { s.replace(7, 0, "x"); }},
        {"0", [&] { (void)s.compare(7, 1, "x"); }},
        {"0", [&] { s.reserve(s.max_size() + 1); }},
        {"0", [&] { s.append(s.npos, 'x'); }},
        {"n2 >= 0", [&] { s.insert(b, text + 2, text); }},
        {"pos <= size()", [&] { s.insert(e + 1, text, text + 2); }},
        {"i1 <= i2", [&] { s.replace(e, b, text); }},
        {"begin() <= i1 && i1 <= end()", [&] { s.replace(b - 1, b, text); }},
        {"begin() <= i2 && i2 <= end()", [&] { s.replace(b, e + 1, text); }},
        {"n2 >= 0", [&] { s.replace(b, e, text + 2, text); }},
        {"!Small() || maxSmallString >= buf_[maxSmallString]", [&] { std::memset(static_cast<void*>(&s), 33, 32), (void)s.size(); }},
        {"!(le(begin(), &*b) && le(&*b, end()))",
         [] {
             AllocatorStringStorage<char> storage("abc", 3);
             storage.append(storage.begin(), storage.end());
         }},
        {"!(le(begin(), &*b) && le(&*b, end()))",
         [] {
             MiniStringStorage<char> storage("abc", 3);
             storage.append(storage.begin(), storage.end());
         }},
    };
    for (const auto& [condition, act] : cases)
    {
        std::string expression = "Assertion .";  // what a regular expression takes for its own stands for any character
        for (char c : condition)
        {
            expression += std::strchr("()[]*|&!", c) ? std::string(".") : std::string(1, c);
        }
        EXPECT_DEATH(act(), expression + ". failed") << condition;
    }
#endif
}

}  // namespace
