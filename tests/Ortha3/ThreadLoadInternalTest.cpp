#include <gtest/gtest.h>

#include <set>

#include "Src/Ortha3/ThreadLoadingController.h"
#include "support/LogLines.h"
#include "support/Sync.h"

namespace General::Ortha::Test {
namespace {

TEST(ThreadLoad, CountersStepInTheRatioOfTheirSharesFromTheFirstEntryToTheLast)
{
    CThreadLoadingController& controller = *CThreadLoadingController::instance();
    using States = std::set<std::pair<int, int>>;
    const std::pair<std::pair<unsigned int, unsigned int>, States> cases[] = {
        {{3, 1}, {{0, 0}, {0, 1}, {1, 1}, {2, 1}}}, {{1, 1}, {{0, 0}, {0, 1}}}, {{2, 3}, {{0, 0}, {0, 1}, {1, 1}, {1, 2}, {2, 2}}}};
    for (const auto& [shares, expected] : cases)
    {
        const States& states = expected;  // clang's lambdas take no binding
        EXPECT_TRUE(controller.isThreadOver());
        controller.setThreadLoad(1, shares.first, shares.second);
        EXPECT_TRUE(eventually([&] { return controller.getThreadID() != -1; }));
        const int thread = controller.getThreadID();
        controller.setThreadLoad(2, 1000000, 1);
        States seen;
        EXPECT_TRUE(eventually([&] {
            const auto load = controller.getThreadLoad(1);
            seen.emplace(load.m_countA, load.m_countB);
            return controller.getThreadLoad(2).m_countA > 20 && seen.size() >= states.size();
        }));
        EXPECT_EQ(seen, states);
        EXPECT_EQ(controller.getThreadID(), thread);
        controller.clearThreadLoad(2);
        EXPECT_FALSE(controller.isThreadOver());
        controller.clearThreadLoad(1);
    }
    EXPECT_TRUE(controller.isThreadOver());
    LogLines lines;
    for (const int percent : {1, 100, 0, 101})
    {
        CThread::load(percent);
    }
    EXPECT_EQ(lines.bare(), "thread load percent:0 is invalid!\nthread load percent:101 is invalid!\n");
}

}  // namespace
}  // namespace General::Ortha::Test
