#include "Src/Ortha3/ThreadInternal.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "ortha/ortha3/Time.h"

#include "Src/Ortha3/SharedName.h"
#include "support/ManualClock.h"
#include "support/Sync.h"

namespace General::Ortha::Test {
namespace {

TEST(ThreadRecord, PrioritiesAreRoundedOntoThePlatformsSeven)
{
    const int cases[][3] = {{INT_MIN, 0, 15}, {5, 0, 15},   {6, 0, 2},         {59, 0, 2},   {60, 0, 1},
                            {63, 0, 1},       {64, 0, 0},   {68, 0, 0},        {69, 0, -1},  {72, 0, -1},
                            {73, 0, -2},      {126, 0, -2}, {INT_MAX, 0, -15}, {127, 1, 15}, {64, 2, 0}};
    for (const auto& [priority, policy, platform] : cases)
    {
        TestThread thread(untilStopped, "Priority", priority, policy);
        EXPECT_EQ(ThreadInternal::of(thread).platformPriority(), platform) << "priority " << priority << ", policy " << policy;
    }
}

TEST(ThreadRecord, ADeadlineHasPassedOneMillisecondAfterItsTime)
{
    static ManualClock& clock = *new ManualClock;  // other threads may read it to the end
    ASSERT_EQ(CTime::getCurrentMilliSecond(), 0u);
    TestThread thread(untilStopped);
    thread.setTimeout(100, 0);
    clock.advance(100);
    EXPECT_FALSE(thread.isTimeout());
    clock.advance(1);
    EXPECT_TRUE(thread.isTimeout());
    thread.setTimeout(-1, 50);
    EXPECT_TRUE(thread.isTimeout());
}

TEST(SharedName, LongNamesAreCutAndReadersAlwaysFindATerminatedText)
{
    const std::string tooLong(40, 'x');
    SharedName name(tooLong.c_str());
    EXPECT_EQ(name.text(), tooLong.substr(0, 31));
    Blocking writer([&] {
        for (int i = 0; i < 100000; ++i)
        {
            name.set(i % 2 == 0 ? "" : tooLong.c_str());
        }
    });
    for (int i = 0; i < 100000; ++i)
    {
        const std::string text(name.copy().text, sizeof(SharedName::Copy));
        const std::size_t end = text.find_first_not_of('x');
        ASSERT_TRUE(end != std::string::npos && text[end] == '\0');
    }
}

}  // namespace
}  // namespace General::Ortha::Test
