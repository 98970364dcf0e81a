#include "ortha/ortha3/Timer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <deque>
#include <list>
#include <random>
#include <string>
#include <vector>

#include "ortha/ortha3/ThreadManager.h"
#include "ortha/ortha3/Time.h"
#include "ortha/ortha3/TimerManager.h"

#include "Src/Ortha3/TimerManagerInternal.h"
#include "Src/Ortha3/TimerQueue.h"
#include "support/LogLines.h"
#include "support/ManualClock.h"
#include "support/Sync.h"

namespace General::Ortha::Test {
namespace {

TEST(TimerQueue, KeepsTheOrderOfASortedListUnderRandomInsertsAndRemoves)
{
    std::mt19937_64 random(4711);
    std::deque<TimerInternal> timers;
    while (timers.size() < 60)
    {
        timers.emplace_back("Queued");
    }
    for (std::uint64_t span : {std::uint64_t{1}, std::uint64_t{8}, ~std::uint64_t{0}})
    {
        TimerQueue queue;
        std::vector<TimerInternal*> list;
        for (int step = 0; step < 5000; ++step)
        {
            // Now and then the queue is emptied from the front, as the tick does.
            TimerInternal* timer = step % 1000 > 900 && !list.empty() ? list.front() : &timers[random() % timers.size()];
            if (std::erase(list, timer) != 0)
            {
                queue.remove(*timer);
            }
            else
            {
                timer->m_nextTime = random() % span;
                queue.insert(*timer);
                const auto notBefore = [&](const TimerInternal* other) { return other->m_nextTime >= timer->m_nextTime; };
                list.insert(std::find_if(list.begin(), list.end(), notBefore), timer);
            }
            ASSERT_EQ(queue.head(), list.empty() ? nullptr : list.front());
            ASSERT_EQ(queue.sorted(), list);
        }
    }
}

// Timers under a clock that is moved by hand.
struct HandClockedTimers : ::testing::Test
{
    HandClockedTimers()
    {
        CTime::getCurrentMilliSecond();
        CTimerManager::instance();
        moveTo(1000);
    }

    // The timer table, without what is before its texts.
    std::string table()
    {
        log.take();
        CTimerManager::instance()->dumpTimers();
        std::string text;
        for (const std::string& line : log.take())
        {
            text += line.substr(line.find(']') + 1);
        }
        return text;
    }
    bool tableHas(const std::string& text)
    {
        return eventually([&] { return table().find(text) != std::string::npos; });
    }
    // Sets the time and waits until the manager has served a tick at it.
    void moveTo(std::uint64_t milliSeconds)
    {
        clock.setCounter(milliSeconds * 1000000);
        EXPECT_TRUE(tableHas("Timers: ( " + std::to_string(milliSeconds) + " Milli-Seconds Elapsed )\n"));
    }
    static std::string row(const char* name, int next, int run, int period, int used, int timeout, const char* state)
    {
        char text[160];
        std::snprintf(text, sizeof(text), "\n%24s %11d %11d %6d %6d/%6d %s\n", name, next, run, period, used, timeout, state);
        return text;
    }
    // Starts a timer whose calls are noted.
    void start(CTimer& timer, unsigned int delay, unsigned int period) { EXPECT_TRUE(timer.start(noting, delay, period, &timer, 0)); }
    bool called(const std::string& wanted)
    {
        return eventually([&] {
            std::lock_guard guard(mutex);
            return calls == wanted;
        });
    }

    static inline ManualClock& clock = *new ManualClock;  // the manager reads it to the end
    LogLines log;
    std::mutex mutex;
    std::string calls;
    Callback<void*> noting{[this](void* timer) {
        std::lock_guard guard(mutex);
        calls += static_cast<CTimer*>(timer)->getName();
    }};
    // Calls that last until they are let go.
    std::atomic<int> begun{0}, mayEnd{0};
    Callback<void*> held{[this](void*) {
        const int call = ++begun;
        EXPECT_TRUE(eventually([&] { return mayEnd >= call; }));
    }};
    CTimer a{"a"}, b{"b"}, c{"c"};
};

TEST_F(HandClockedTimers, ATimerIsDueWhenTheClockHasPassedItsTimeAndAmongEqualTimesTheOneStartedLastComesFirst)
{
    CTimerManager::instance()->setRunningThreadLimit(1);
    start(a, 100, 0);
    start(b, 100, 1000);
    start(c, 99, 1000);
    start(a, 100, 0);
    const auto restAfter = [&](const char* wanted) {
        return called(wanted) && eventually([&] { return !a.isRunning() && !b.isRunning() && !c.isRunning(); });
    };
    moveTo(1099);
    moveTo(1100);
    EXPECT_TRUE(restAfter("c"));
    EXPECT_TRUE(a.isStarted());
    moveTo(1101);
    EXPECT_TRUE(restAfter("ca"));
    moveTo(1102);
    EXPECT_TRUE(restAfter("cab"));
    EXPECT_TRUE(tableHas(row("b", 2100, 0, 1000, 0, 0, "Idle")));
}

TEST_F(HandClockedTimers, PeriodsThatPassDuringACallAreSkippedThePhaseIsKeptAndTheRunTimeCounted)
{
    EXPECT_TRUE(a.start(held, 1000, 1000, nullptr, 700));
    a.enableStat(true);
    moveTo(2001);
    EXPECT_TRUE(eventually([&] { return begun == 1; }));
    // With the limit reached it moves on all the same, as its own call is the one that runs.
    CTimerManager::instance()->setRunningThreadLimit(1);
    start(b, 3450, 0);
    for (const auto& [now, next] : {std::pair(3001, 4000), {4001, 5000}, {5001, 6000}, {5501, 6000}})
    {
        moveTo(static_cast<std::uint64_t>(now));
        EXPECT_TRUE(tableHas(row("a", next, 0, 1000, now - 2001, 700, "Running")));
    }
    EXPECT_TRUE(b.isStarted());
    mayEnd = 1;
    EXPECT_TRUE(tableHas(row("a", 6000, 3500, 1000, 0, 700, "Idle")));
    moveTo(5990);
    EXPECT_TRUE(called("b"));
    EXPECT_EQ(begun, 1);
    moveTo(9500);  // several periods at once give one call
    EXPECT_TRUE(eventually([&] { return begun == 2; }));
    moveTo(9700);
    mayEnd = 2;
    EXPECT_TRUE(tableHas(row("a", 10000, 3700, 1000, 0, 700, "Idle")));
}

TEST_F(HandClockedTimers, ChangingThePeriodMovesThePendingDueTimeByTheDifference)
{
    start(a, 4000, 1000);
    for (const auto& [period, next] : {std::pair(1500, 5500), {200, 4200}, {0, 4000}})
    {
        a.setPeriodTime(static_cast<unsigned int>(period));
        EXPECT_TRUE(tableHas(row("a", next, 0, period, 0, 0, "Idle")));
    }
    moveTo(4001);
    EXPECT_TRUE(called("a"));
    // Below 0 it is due at once.
    start(a, 100, 60000);
    a.setPeriodTime(1000);
    moveTo(4002);
    EXPECT_TRUE(called("aa"));
}

TEST_F(HandClockedTimers, TheTableShowsTheStartedTimersInTheirOrder)
{
    const std::string columns = "            Name            NextTime RunningTime Period   Used/Timeout State\n" + std::string(76, '_');
    EXPECT_EQ(table(), "Timers: ( 1000 Milli-Seconds Elapsed )\n" + columns + "\n\n");
    CTimer longName("a-name-of-thirty-one-characters");
    start(b, 5000, 0);
    EXPECT_TRUE(longName.start(held, 0, 1000, nullptr, 250));
    EXPECT_TRUE(c.start(held, 0, 0, nullptr, 0));
    EXPECT_TRUE(eventually([&] { return begun == 2; }));
    moveTo(1300);
    EXPECT_EQ(table(), "Timers: ( 1300 Milli-Seconds Elapsed )\n" + columns +
                           row("a-name-of-thirty-one-characters", 2000, 0, 1000, 300, 250, "Running") +
                           row("b", 6000, 0, 0, 0, 0, "Idle").substr(1) + "\n");
    mayEnd = 2;
}

TEST_F(HandClockedTimers, ATickThatStallsTenSecondsShowsInTheThreadTable)
{
    const auto timedOut = [] {
        std::list<CThreadManager::ThreadInfo> infos;
        CThreadManager::instance()->getThreadsInfo(infos);
        return std::string(infos.back().name) == "TimerManager" && infos.back().isTimeout == 1;
    };
    TimerState::get().mutex.enter();
    clock.advance(10000);
    EXPECT_FALSE(timedOut());
    clock.advance(1);
    EXPECT_TRUE(timedOut());
    TimerState::get().mutex.leave();
    EXPECT_TRUE(eventually([&] { return !timedOut(); }));
}

}  // namespace
}  // namespace General::Ortha::Test
