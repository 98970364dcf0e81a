#include "ortha/ortha3/ThreadManager.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <list>
#include <string>

#include "support/LogLines.h"
#include "support/Sync.h"

namespace General::Ortha::Test {
namespace {

struct ThreadManager : ::testing::Test
{
    // The thread table from behind its head, which is checked.
    std::string rows()
    {
        log.take();
        manager.dumpThreads();
        std::string text;
        for (const std::string& line : log.take())
        {
            text += line.substr(line.find(']') + 1);
        }
        const std::string head = "Threads:\n               Name            TID  Prior State\n" + std::string(55, '_') + "\n";
        EXPECT_EQ(text.substr(0, head.size()), head);
        return text.substr(std::min(text.size(), head.size()));
    }
    static std::string row(const char* name, int id, int priority, const char* state)
    {
        char text[128];
        std::snprintf(text, sizeof(text), "%24s   %8d  %3d  %s\n", name, id, priority, state);
        return text;
    }

    CThreadManager& manager = *CThreadManager::instance();
    LogLines log;
    string names{"earlier content"};
    std::list<CThreadManager::ThreadInfo> infos;
};

TEST_F(ThreadManager, WithoutThreadsThereIsOnlyTheMainRowAndNothingIsTouched)
{
    const int self = CThread::getCurrentThreadID();
    EXPECT_EQ(rows(), row("Main", -1, 64, "Normal") + "\n");
    manager.registerMainThread();
    EXPECT_EQ(rows(), row("Main", self, 64, "Normal") + "\n");
    EXPECT_FALSE(manager.getThreadsInfo(infos));
    EXPECT_TRUE(infos.empty());
    EXPECT_FALSE(manager.hasThread(self));
    EXPECT_FALSE(manager.getThreadNameByID(self, names));
    EXPECT_EQ(names, "earlier content");
    EXPECT_FALSE(manager.getTimeOutThreads(names));
    EXPECT_TRUE(names.empty());
    setPrintLogLevel(3);
    log.take();
    manager.dumpThreads();
    EXPECT_EQ(log.text(), "");
}

TEST_F(ThreadManager, RunningThreadsAreListedNewestFirstAndLeaveTheListWithTheirBody)
{
    constexpr const char* longName = "a-name-of-thirty-one-characters";
    TestThread first(untilStopped, longName, 127, 0, 1 << 20);
    TestThread second(untilStopped, "second", 130, 1);
    TestThread third(untilStopped, "third", 1, 2);
    for (TestThread* thread : {&first, &second, &third})
    {
        EXPECT_TRUE(thread->createThread());
        EXPECT_TRUE(eventually([&] { return manager.hasThread(thread->getThreadID()); }));
    }
    third.setTimeout(60000);
    EXPECT_FALSE(manager.getTimeOutThreads(names));
    EXPECT_TRUE(names.empty());
    first.setTimeout(1);
    second.setTimeout(1);
    EXPECT_TRUE(eventually([&] { return first.isTimeout() && second.isTimeout(); }));
    const std::string timedOut =
        "second(" + std::to_string(second.getThreadID()) + ")" + longName + "(" + std::to_string(first.getThreadID()) + ")";
    EXPECT_TRUE(manager.getTimeOutThreads(names) && manager.getTimeOutThreads(names));
    EXPECT_EQ(names.c_str(), timedOut);
    EXPECT_EQ(rows(), row("Main", -1, 64, "Normal") + row("third", third.getThreadID(), 1, "Normal") +
                          row("second", second.getThreadID(), 2, "Timeout") + row(longName, first.getThreadID(), 127, "Timeout") + "\n");
    EXPECT_TRUE(manager.getThreadNameByID(first.getThreadID(), names));
    EXPECT_EQ(names, longName);

    EXPECT_TRUE(manager.getThreadsInfo(infos));
    EXPECT_TRUE(second.destroyThread());
    EXPECT_TRUE(manager.getThreadsInfo(infos));  // adds to the list
    std::string got;
    for (const CThreadManager::ThreadInfo& info : infos)
    {
        char text[96];
        std::snprintf(text, sizeof(text), "%s %d %u %u %d\n", info.name, info.stackSize, +info.priority, +info.policy, +info.isTimeout);
        got += text;
    }
    const std::string firstInfo = longName + std::string(" 1048576 127 0 1\n");
    EXPECT_EQ(got, "third 0 1 0 0\nsecond 0 2 1 1\n" + firstInfo + "third 0 1 0 0\n" + firstInfo);
    EXPECT_FALSE(manager.hasThread(second.getThreadID()));
}

}  // namespace
}  // namespace General::Ortha::Test
