#include "ortha/ortha3/Function.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <thread>
#include <type_traits>

namespace {

using namespace General::Ortha;

struct Left
{
    virtual ~Left() = default;
    virtual int name(int) { return 'L'; }
};

struct Right
{
    int read(int plus) const { return right + plus; }
    int right = 2;
};

struct Both : Left, Right
{
    int name(int) override { return 'B'; }
    int tag(int) { return static_cast<int>(getCurrentFunctionReuse()); }
};

int twice(int value)
{
    return 2 * value;
}

using Function = TFunction1<int, int>;

TEST(Function, CallsWhatItHoldsOnTheObjectsOwnPart)
{
    const Both constant;
    Both both;
    EXPECT_EQ(Function(twice)(4), 8);
    EXPECT_EQ(Function(&Right::read, &constant)(4), 6);
    EXPECT_EQ(Function(&Left::name, &both)(0), 'B');
    std::string text = "b";
    const TFunction2<void, std::unique_ptr<int>, std::string&> moves(
        +[](std::unique_ptr<int> a, std::string& b) { b += std::to_string(*a); });
    moves(std::make_unique<int>(7), text);
    EXPECT_EQ(text, "b7") << "a reference is passed on as one";
    static_assert(std::is_trivially_copyable_v<Function>);
}

TEST(Function, ComparesKindFunctionObjectAndTag)
{
    Both one, other;
    const auto bind = [&](unsigned int tag) { return Function(&Both::tag, &one, tag); };
    const Function empty, none(static_cast<int (*)(int)>(nullptr)), free(twice), member(&Both::tag, &one);
    const struct
    {
        Function a, b;
        bool equal;
    } cases[] = {
        {empty, none, true},
        {empty, free, false},
        {free, Function(twice), true},
        {free, Function(+[](int) { return 0; }), false},
        {member, Function(&Both::tag, &one), true},
        {member, Function(&Both::tag, &other), false},
        {member, Function(&Both::name, &one), false},
        {Function(&Right::read, &one), Function(&Right::read, static_cast<Right*>(&one)), true},
        {member, bind(20), false},
        {member, bind(typeAny), false},
        {bind(20), bind(21), false},
        {bind(16), bind(typeAny), true},
        {bind(0xFFFFFFFEu), bind(typeAny), true},
        {bind(typeAny), Function(&Both::tag, &other, 20), false},
        {bind(typeAny), Function(&Both::name, &one, 20), false},
    };
    for (const auto& c : cases)
    {
        EXPECT_TRUE((c.a == c.b) == c.equal && (c.b == c.a) == c.equal && (c.a != c.b) != c.equal) << &c - cases;
    }
    EXPECT_TRUE(empty.empty() && none.empty() && !free.empty() && !member.empty() && !bind(20).empty());
}

TEST(Function, ATaggedCallSetsTheThreadsTagAndNothingResetsIt)
{
    Both both;
    const auto call = [&](unsigned int tag) { return static_cast<unsigned int>(Function(&Both::tag, &both, tag)(0)); };
    EXPECT_EQ(getCurrentFunctionReuse(), 0u);
    EXPECT_EQ(call(20), 20u);
    EXPECT_EQ(Function(&Both::tag, &both)(0), 20) << "a call without a tag leaves the older one";
    EXPECT_EQ(call(0xFFFFFFFEu), 0xFFFFFFFEu);
    std::thread([&] {
        EXPECT_EQ(getCurrentFunctionReuse(), 0u);
        EXPECT_EQ(call(16), 16u);
    }).join();
    EXPECT_EQ(getCurrentFunctionReuse(), 0xFFFFFFFEu);
}

}  // namespace
