#include "ortha/ortha3/FlexString.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <iomanip>
#include <iterator>
#include <list>
#include <random>
#include <sstream>
#include <string>
#include <utility>

#include "support/Host.h"

namespace {

using namespace General::Ortha;
using FlexString = General::Ortha::string;

// Lengths on both sides of every change of mode and of copying method.
constexpr std::size_t lengths[] = {0, 1, 3, 7, 8, 15, 16, 17, 30, 31, 32, 33, 64, 100};

std::string textOf(std::size_t n, char first = 'a')
{
    std::string text(n, first);
    std::generate(text.begin(), text.end(), [&, i = 0]() mutable { return static_cast<char>(first + i++ % 23); });
    return text;
}

template <typename String>
::testing::AssertionResult holds(const String& subject, const std::string& expected)
{
    const bool whole = std::string_view(subject) == expected && subject.size() == expected.size() && subject.capacity() >= subject.size();
    if (whole && std::memcmp(subject.c_str(), expected.c_str(), expected.size() + 1) == 0)
    {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure() << "\"" << std::string_view(subject) << (whole ? "\", unterminated" : "\", not \"" + expected);
}

template <typename T>
class EveryStorage : public ::testing::Test
{
};
using Strings = ::testing::Types<FlexString, mini_string>;
TYPED_TEST_SUITE(EveryStorage, Strings, );  // the comma: C++17 wants an argument for the dots

// What an operation works on: `cut` characters at `pos`, and a text of `n` characters that may be a part of the string itself.
struct Part
{
    std::size_t pos, cut;
    const char* s;
    std::size_t n;
    auto last() const { return std::make_reverse_iterator(s + n); }
    auto first() const { return std::make_reverse_iterator(s); }
};
const auto from = [](auto& x, const Part& p) { return x.begin() + static_cast<std::ptrdiff_t>(p.pos); };
const auto to = [](auto& x, const Part& p) { return from(x, p) + static_cast<std::ptrdiff_t>(std::min(p.cut, x.size() - p.pos)); };

constexpr std::size_t operationCount = 21;
template <typename String>
void (*const operations[operationCount])(String&, const Part&) = {
    [](String& x, const Part& p) { x.append(p.s, p.n); },
    [](String& x, const Part& p) { x.assign(p.s, p.n); },
    [](String& x, const Part& p) { x.insert(p.pos, p.s, p.n); },
    [](String& x, const Part& p) { x.replace(p.pos, p.cut, p.s, p.n); },
    [](String& x, const Part& p) { x.replace(from(x, p), to(x, p), p.s, p.n); },
    [](String& x, const Part& p) { x.insert(from(x, p), p.s, p.s + p.n); },
    [](String& x, const Part& p) { x.erase(p.pos, p.cut); },
    [](String& x, const Part& p) { x.erase(from(x, p), to(x, p)); },
    [](String& x, const Part& p) { x.append(p.n, 'X'); },
    [](String& x, const Part& p) { x.insert(from(x, p), p.n, 'X'); },
    [](String& x, const Part& p) { x.replace(from(x, p), to(x, p), p.n, 'X'); },
    [](String& x, const Part& p) { x.resize(p.n, 'X'); },
    [](String& x, const Part& p) { x.assign(p.n, 'X'); },
    [](String& x, const Part& p) { x.reserve(p.n); },
    [](String& x, const Part& p) { x = String(x, p.pos, p.cut) + String(p.s, p.n); },
    [](String& x, const Part&) { x.push_back('X'); },
    [](String& x, const Part& p) { x = String(p.s, p.n).append(x); },
    [](String& x, const Part&) { x.shrink_to_fit(); },
    [](String& x, const Part& p) { x.insert(from(x, p), p.last(), p.first()); },
    [](String& x, const Part& p) { x.append(p.last(), p.first()); },
    [](String& x, const Part& p) { x = x.substr(p.pos, p.cut) + 'X'; },
};

TYPED_TEST(EveryStorage, FollowsStdStringThroughRandomOperationsWithForeignAndOwnText)
{
    const std::string foreign = textOf(70);
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
        const bool own = below(1) == 0;
        const std::size_t operation = below(operationCount - 1), pos = below(model.size()), cut = below(40);
        const std::size_t start = own ? below(model.size()) : below(35);
        const std::size_t n = own ? below(model.size() - start) : below(35);
        const std::string text = (own ? model : foreign).substr(start, n), before = model;
        operations<std::string>[operation](model, {pos, cut, text.data(), n});
        operations<TypeParam>[operation](subject, {pos, cut, (own ? std::as_const(subject).begin() : foreign.data()) + start, n});
        ASSERT_TRUE(holds(subject, model)) << "round " << round << ", operation " << operation << " on " << before << " at " << pos << ", "
                                           << cut << " with " << (own ? "own " : "") << text;
    }
}

TYPED_TEST(EveryStorage, CopiesMovesSwapsAndTakesItsOwnTerminatorBetweenAllPairsOfLengths)
{
    for (std::size_t n : lengths)
    {
        const std::string a = textOf(n), terminated(a.c_str(), n + 1);
        for (std::size_t m : lengths)
        {
            const std::string b = textOf(m, 'A');
            TypeParam x(a), y(b), copy(x), target(y);
            swap(x, y);
            ASSERT_TRUE(holds(x, b) && holds(y, a)) << n << ", " << m;
            target = copy;
            ASSERT_TRUE(holds(target, a) && holds(copy, a)) << n << ", " << m;
            y = std::move(x);
            ASSERT_TRUE(holds(y, b) && holds(x, "")) << n << ", " << m;
            // A copy's block just holds its text, even where that is shorter than the buffer in the object.
            copy.reserve(100);
            TypeParam tight(copy);
            EXPECT_EQ(tight.capacity(), n);
            tight.resize(m, 'x');
            ASSERT_TRUE(holds(tight, (a + std::string(100, 'x')).substr(0, m))) << n << ", " << m;
            const TypeParam taken(std::move(x.append(a))), &same = y;
            ASSERT_TRUE(holds(taken, a) && holds(x, "")) << n << ", " << m;
            y = same;
            y.reserve(n);
            ASSERT_TRUE(holds(TypeParam(y), b)) << n << ", " << m;
        }
        TypeParam appended(a), assigned(a), replaced(a), ended(a);
        EXPECT_TRUE(holds(appended.append(appended.c_str(), n + 1), a + terminated));
        EXPECT_TRUE(holds(ended.append(ended.c_str() + n, 1), terminated));
        EXPECT_TRUE(holds(assigned.assign(assigned.c_str(), n + 1), terminated));
        EXPECT_TRUE(holds(replaced.replace(0, n, replaced.c_str(), n + 1), terminated));
    }
}

TYPED_TEST(EveryStorage, AnswersSearchAndOrderLikeStdString)
{
    const std::string model = "the cat, the dog and the longer text behind them";
    const TypeParam subject(model);
    for (const char* s : {"", "t", "the", "them", "xyz", "aeiou", " ,", "the cat, the dog and the longer text behind them!"})
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
        EXPECT_EQ(subject.compare(4, 3, needle, 0, 1), model.compare(4, 3, std::string(s), 0, 1));
        EXPECT_TRUE((subject < needle) == (model < s) && (subject >= s) == (model >= s) && (s > subject) == (s > model));
        EXPECT_TRUE((subject == needle) == (model == s) && (s != subject) == (s != model));
        EXPECT_EQ(subject.starts_with(s), model.starts_with(s));
        EXPECT_EQ(subject.ends_with(s), model.ends_with(s));
    }
    EXPECT_EQ(std::hash<TypeParam>()(subject), std::hash<TypeParam>()(TypeParam(model)));
}

TYPED_TEST(EveryStorage, BuildsFromEveryKindOfRangeAndTakesLiteralZeroAsAPosition)
{
    const std::string text = textOf(75);
    std::istringstream stream(text);
    EXPECT_TRUE(holds(TypeParam(std::istreambuf_iterator<char>(stream), {}), text));
    const std::list<char> list(text.begin(), text.end());
    TypeParam s{'x', 'y'};
    s.insert(0, 2, 'a').insert(0, "<").replace(0, 1, "[[").erase(0, 1);
    EXPECT_TRUE(holds('(' + s + ")" + TypeParam(list.begin(), list.end()) + std::as_const(s), "([aaxy)" + text + "[aaxy"));
    EXPECT_EQ(erase(s, 'a'), 2u);
    EXPECT_TRUE(holds(s.erase(0), ""));
}

TYPED_TEST(EveryStorage, StreamsKeepTheirRulesAboutWidthFailureAndExceptions)
{
    std::istringstream in("  " + textOf(50) + " two\nrest of line;tail");
    TypeParam word, two, line, last, unread("kept");
    in >> word >> std::ws >> std::setw(2) >> two;
    getline(in, line);
    EXPECT_TRUE(holds(word, textOf(50)) && holds(two, "tw") && holds(line, "o"));
    getline(in, line, ';');
    in.exceptions(std::ios::eofbit);
    EXPECT_THROW(in >> last, std::ios::failure);
    in.exceptions(std::ios::goodbit);
    EXPECT_FALSE(in >> unread);
    EXPECT_TRUE(holds(line, "rest of line") && holds(last, "tail") && holds(unread, "kept"));
    std::ostringstream out;
    out << std::setw(6) << last;
    EXPECT_EQ(out.str(), "  tail");
}

TEST(FlexString, ChangesModeWhereTheLengthAsksForIt)
{
    const auto capacityAfter = [](std::size_t length, void (*change)(FlexString&)) {
        FlexString s(textOf(length));
        change(s);
        return s.capacity();
    };
    EXPECT_EQ(capacityAfter(30, [](auto& s) { s.push_back('x'); }), 31u);
    EXPECT_EQ(capacityAfter(31, [](auto& s) { s.push_back('x'); }), 32u);
    EXPECT_EQ(capacityAfter(40, [](auto& s) { s.append(3, 'x'); }), 43u);
    EXPECT_EQ(capacityAfter(5, [](auto& s) { s.reserve(10); }), 31u);
    EXPECT_EQ(capacityAfter(5, [](auto& s) { s.reserve(32); }), 32u);
    EXPECT_EQ(capacityAfter(100, [](auto& s) { s.reserve(10); }), 100u);
    EXPECT_EQ(capacityAfter(100, [](auto& s) { s.resize(32); }), 100u);
    EXPECT_EQ(capacityAfter(100, [](auto& s) { s.resize(31); }), 31u);
    EXPECT_EQ(capacityAfter(32, [](auto& s) { s.pop_back(); }), 31u);
}

int liveBlocks = 0;
int allocationsLeft = 1 << 30;

template <typename T>
struct TestAllocator : std::allocator<T>
{
    T* allocate(std::size_t n)
    {
        if (--allocationsLeft < 0)
        {
            throw std::bad_alloc();
        }
        ++liveBlocks;
        return std::allocator<T>::allocate(n);
    }
    void deallocate(T* block, std::size_t n) noexcept
    {
        --liveBlocks;
        std::allocator<T>::deallocate(block, n);
    }
};
using TrackedString = flex_string<char, std::char_traits<char>, TestAllocator<char>>;

TEST(FlexString, HoldsABlockOnlyWhileItIsBigAndMovesIt)
{
    TrackedString s(textOf(31)), big(textOf(100));
    const char* const place = big.data();
    TrackedString moved(std::move(big));
    s = std::move(moved);
    swap(s, big);
    EXPECT_TRUE(big.data() == place && liveBlocks == 1);
    big.resize(10);
    AllocatorStringStorage<char, TestAllocator<char>> storage, copy(storage);
    copy = storage;
    EXPECT_EQ(copy.capacity() + static_cast<std::size_t>(liveBlocks), 0u);
}

TEST(FlexString, IsUnchangedByAnOperationWhoseAllocationFails)
{
    const std::string foreign = textOf(60, 'A');
    for (std::size_t n : lengths)
    {
        const std::string text = textOf(n);
        for (std::size_t choice = 0; choice < operationCount * 8; ++choice)
        {
            const bool own = choice % 2 == 0;
            TrackedString s(text);
            allocationsLeft = static_cast<int>(choice / 2 % 4);
            try
            {
                operations<TrackedString>[choice / 8](s, {n / 2, 1, own ? s.data() : foreign.data(), own ? n : 60});
            }
            catch (const std::bad_alloc&)
            {
                EXPECT_TRUE(holds(s, text)) << n << ", operation " << choice / 8;
            }
            allocationsLeft = 1 << 30;
            s.append("x").clear();
            EXPECT_TRUE(s.empty());
        }
    }
    EXPECT_EQ(liveBlocks, 0);
    EXPECT_THROW(FlexString(FlexString::npos - 8, 'x'), std::bad_alloc);
}

TEST(FlexString, HoldsWideCharactersOnBothSidesOfTheBoundary)
{
    for (std::size_t n : lengths)
    {
        flex_string<wchar_t> s(n, L'\x20ac');
        EXPECT_EQ(std::wstring(s.append(s).insert(n / 2, s).c_str()), std::wstring(4 * n, L'\x20ac'));
    }
}

TEST(MiniString, HasNoBlockWhileItWasNeverFilled)
{
    mini_string empty, copy(empty), assigned;
    assigned = copy;
    assigned.append(copy).assign("").insert(0, copy).resize(0);
    assigned.reserve(0);
    EXPECT_EQ(assigned.begin(), nullptr);
    EXPECT_STREQ(assigned.c_str(), "");
    assigned = "text";
    assigned = empty;
    EXPECT_TRUE(holds(assigned, "") && assigned.capacity() == 4);
}

TEST(FlexStringDeathTest, BrokenPreconditionsAreAssertionsWithTheirCondition)
{
#ifdef NDEBUG
    GTEST_SKIP() << "assertions are compiled out";
#else
    FlexString s("abcdef");
    AllocatorStringStorage<char> block("abc", 3);
    MiniStringStorage<char> mini("abc", 3);
    const char* const text = "foreign";
    const FlexString::const_iterator b = s.begin();
    const std::pair<std::string, std::function<void()>> cases[] = {
        {"0", [&] { (void)s.at(6); }},
        {"0", [&] { s.erase(7); }},
        {"0", [&] { s.replace(7, 0, "x"); }},
        {"0", [&] { s.reserve(s.max_size() + 1); }},
        {"0", [&] { s.append(s.npos, 'x'); }},
        {"n2 >= 0", [&] { s.insert(b, text + 2, text); }},
        {"pos <= size()", [&] { s.insert(b + 7, text, text + 2); }},
        {"i1 <= i2", [&] { s.replace(b + 6, b, text); }},
        {"begin() <= i1 && i1 <= end()", [&] { s.replace(b - 1, b, text); }},
        {"begin() <= i2 && i2 <= end()", [&] { s.replace(b, b + 7, text); }},
        {"n2 >= 0", [&] { s.replace(b, b + 6, text + 2, text); }},
        {"!Small() || maxSmallString >= buf_[maxSmallString]", [&] { std::memset(static_cast<void*>(&s), 33, 32), (void)s.size(); }},
        {"!(le(begin(), &*b) && le(&*b, end()))", [&] { block.append(block.begin(), block.end()); }},
        {"!(le(begin(), &*b) && le(&*b, end()))", [&] { mini.append(mini.begin(), mini.end()); }},
    };
    for (const auto& [condition, act] : cases)
    {
        EXPECT_DEATH(act(), ::testing::HasSubstr(General::Ortha::Test::assertReport(condition))) << condition;
    }
#endif
}

}  // namespace
