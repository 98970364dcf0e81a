#include <gtest/gtest.h>
#include <sys/resource.h>

#include <utility>

#include "support/Sync.h"

namespace General::Ortha::Test {
namespace {

TEST(Thread, PriorityBecomesTheSystemsAsFarAsPrivilegesGo)
{
    const int own = getpriority(PRIO_PROCESS, 0);
    for (const auto& [priority, nice] : {std::pair(5, -15), {63, -5}, {64, 0}, {72, 5}, {126, 10}, {127, 19}})
    {
        int got = 0;
        TestThread thread([&](CThreadLite&) { got = getpriority(PRIO_PROCESS, 0); }, "Nice", priority);
        EXPECT_TRUE(thread.createThread());
        EXPECT_TRUE(eventually([&] { return thread.isThreadOver(); }));
        EXPECT_TRUE(got == nice || (nice < own && got == own)) << "priority " << priority << ": nice " << got;
    }
}

}  // namespace
}  // namespace General::Ortha::Test
