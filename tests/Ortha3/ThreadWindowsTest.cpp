#include <gtest/gtest.h>
#include <windows.h>

#include <utility>

#include "support/Sync.h"

namespace General::Ortha::Test {
namespace {

TEST(Thread, PriorityBecomesTheSystemsAsFarAsPrivilegesGo)
{
    for (const auto& [priority, level] : {std::pair(5, 15), {6, 2}, {63, 1}, {64, 0}, {72, -1}, {126, -2}, {127, -15}})
    {
        int got = 0;
        TestThread thread([&](CThreadLite&) { got = GetThreadPriority(GetCurrentThread()); }, "Level", priority);
        EXPECT_TRUE(thread.createThread());
        EXPECT_TRUE(eventually([&] { return thread.isThreadOver(); }));
        EXPECT_EQ(got, level) << "priority " << priority;
    }
}

}  // namespace
}  // namespace General::Ortha::Test
