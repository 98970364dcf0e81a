#include "ortha/ortha3/Timer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <list>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "ortha/ortha3/ThreadManager.h"
#include "ortha/ortha3/TimerManager.h"

#include "support/LogLines.h"
#include "support/Sync.h"

namespace General::Ortha::Test {
namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;

constexpr unsigned int never = 3600000;

using State = std::tuple<bool, bool, bool>;  // isStarted, isRunning, isCalled
constexpr State idle{false, false, false};
constexpr State armed{true, false, false};
constexpr State armedAndRunning{true, true, false};
constexpr State runningPeriodic{false, true, false};
constexpr State runningOneShot{false, true, true};
constexpr State done{false, false, true};

// A timer whose calls end when they are let go.
struct HeldTimer
{
    ~HeldTimer() { mayEnd = 1 << 30; }
    bool start(unsigned int delay, unsigned int period) { return timer->start(proc, delay, period, nullptr, 1); }
    State state() { return {timer->isStarted(), timer->isRunning(), timer->isCalled()}; }
    std::pair<bool, State> after(bool answer) { return {answer, state()}; }
    bool reaches(State wanted)
    {
        return eventually([&] { return state() == wanted; });
    }
    bool begins(int call)
    {
        return eventually([&] { return begun >= call; });
    }

    std::atomic<int> begun{0}, mayEnd{0}, inside{0};
    Callback<void*> proc{[this](void*) {
        EXPECT_EQ(++inside, 1);
        const int call = ++begun;
        EXPECT_TRUE(eventually([&] { return mayEnd >= call; }));
        --inside;
    }};
    std::unique_ptr<CTimer> timer = std::make_unique<CTimer>("Held");
};

TEST(Timer, AOneShotTimerGoesThroughItsStates)
{
    HeldTimer held;
    EXPECT_EQ(held.state(), idle);
    EXPECT_FALSE(held.timer->stop(true));
    EXPECT_EQ(held.after(held.start(0, 0)), std::pair(true, runningOneShot));
    EXPECT_FALSE(held.timer->stop(true));
    held.mayEnd = 1;
    EXPECT_TRUE(held.reaches(done));

    EXPECT_EQ(held.after(held.start(never, 0)), std::pair(true, armed));
    EXPECT_EQ(held.after(held.timer->stop(false)), std::pair(true, idle));
    EXPECT_TRUE(held.start(never, 0));
    EXPECT_EQ(held.after(held.timer->stop(true)), std::pair(true, runningOneShot));
    EXPECT_TRUE(held.begins(2));

    // Started again while its call runs, it has no second one.
    EXPECT_TRUE(held.start(20, 0));
    EXPECT_TRUE(held.reaches(runningOneShot));
    EXPECT_EQ(held.after(held.start(0, 0)), std::pair(false, runningOneShot));
    EXPECT_EQ(held.after(held.start(never, 0)), std::pair(true, armedAndRunning));
    EXPECT_EQ(held.after(held.timer->stop(true)), std::pair(false, runningOneShot));
    held.mayEnd = 2;
    EXPECT_TRUE(held.reaches(done));
    EXPECT_EQ(held.begun, 2);
}

TEST(Timer, APeriodicTimerGoesThroughItsStates)
{
    HeldTimer held;
    EXPECT_EQ(held.after(held.start(0, 30)), std::pair(true, armedAndRunning));
    EXPECT_EQ(held.after(held.start(0, 30)), std::pair(false, armedAndRunning));
    EXPECT_EQ(held.after(held.timer->stop(true)), std::pair(true, runningPeriodic));
    held.mayEnd = 1;
    EXPECT_TRUE(held.reaches(idle));
    EXPECT_EQ(held.begun, 1);

    EXPECT_TRUE(held.start(20, 30));
    EXPECT_TRUE(held.begins(2));
    EXPECT_TRUE(held.start(never, never));
    held.mayEnd = 1 << 30;
    EXPECT_TRUE(held.reaches(armed));
    EXPECT_EQ(held.after(held.timer->stop(true)), std::pair(true, idle));
    EXPECT_FALSE(held.timer->stop(false));

    const int before = held.begun;
    EXPECT_TRUE(held.start(1, 1));
    EXPECT_TRUE(held.begins(before + 5));
    EXPECT_TRUE(held.timer->stopAndWait());
    EXPECT_EQ(held.state(), idle);
}

TEST(Timer, TheLastStartDecidesWhichOverloadIsCalledAndWithWhat)
{
    std::string calls;
    Callback<unsigned long> byNumber([&](unsigned long number) { calls += std::to_string(number) + " "; });
    Callback<void*> byPointer([&](void* pointer) { calls += pointer == &calls ? "pointer " : "another pointer "; });
    CTimer timer("Overloads");
    const auto finished = [&] { return eventually([&] { return timer.isCalled() && !timer.isRunning(); }); };
    timer.start(byPointer, never, 0, &calls, 0);
    timer.start(byNumber, 0, 0, static_cast<unsigned long>(0x1234567890ABCDEF), 0);
    EXPECT_TRUE(finished());
    timer.start(byPointer, 0, 0, &calls, 0);
    EXPECT_TRUE(finished());
    EXPECT_EQ(calls, "2427178479 pointer ");
}

TEST(Timer, ACallbackMayStopItsOwnTimerAndDoesNotWaitForItself)
{
    for (bool wait : {false, true})
    {
        CTimer timer("Own");
        std::atomic<int> calls{0};
        Callback<void*> proc([&](void*) {
            EXPECT_TRUE(wait ? timer.stopAndWait() : timer.stop(false));
            EXPECT_TRUE(!timer.isStarted() && timer.isRunning());
            ++calls;
        });
        EXPECT_TRUE(timer.start(proc, 0, 1, nullptr, 0));
        EXPECT_TRUE(eventually([&] { return calls == 1 && !timer.isRunning(); }));
        EXPECT_FALSE(timer.isCalled());
        EXPECT_EQ(calls, 1);
    }
}

TEST(Timer, StopAndWaitAndTheDestructorReturnWhenTheCallHasEnded)
{
    LogLines log;
    const auto words = AllOf(HasSubstr(" info "), EndsWith(" CTimer::Stop Timer:Held wait callback exit!\n"));
    for (bool destroy : {false, true})
    {
        HeldTimer held;
        EXPECT_TRUE(held.start(0, 10));
        EXPECT_TRUE(held.begins(1));
        log.take();
        {
            Blocking stopping([&] {
                destroy ? held.timer.reset() : static_cast<void>(held.timer->stopAndWait());
                EXPECT_EQ(held.inside, 0);
            });
            EXPECT_FALSE(stopping.done(aMoment));
            held.mayEnd = 1;
        }
        EXPECT_THAT(log.take(), ElementsAre(words));
    }
}

TEST(Timer, TheCallersThreadCarriesTheTimersNameAndDeadline)
{
    const std::string longName = "forty-characters-of-name-is-too-many-for";
    CThreadManager& manager = *CThreadManager::instance();
    std::list<CThreadManager::ThreadInfo> infos;
    HeldTimer held;
    held.timer->setName(longName.c_str());
    EXPECT_EQ(held.timer->getName(), longName.substr(0, 31));
    EXPECT_TRUE(held.start(0, 0));
    // The manager's thread may have begun before the pooled one or after it.
    auto caller = infos.end();
    ASSERT_TRUE(eventually([&] {
        infos.clear();
        manager.getThreadsInfo(infos);
        caller = std::find_if(infos.begin(), infos.end(), [](const auto& info) { return info.isTimeout; });
        return infos.size() == 2 && caller != infos.end();
    }));
    EXPECT_EQ(caller->name, longName.substr(0, 31));
    EXPECT_EQ(systemName(caller->id), longName.substr(0, systemNameLength));
    held.mayEnd = 1;
    EXPECT_TRUE(held.reaches(done));
    string names;
    EXPECT_FALSE(manager.getTimeOutThreads(names));
    EXPECT_EQ(systemName(caller->id), "[Pooled]");
}

TEST(TimerManager, ThePoolKeepsTheMostThreadsEverBusyUnlessItsIdleThreadsAreLimited)
{
    CTimerManager& manager = *CTimerManager::instance();
    std::deque<HeldTimer> timers(5);
    const auto idleAfter = [&](std::size_t together) {
        for (std::size_t i = 0; i < together; ++i)
        {
            EXPECT_TRUE(timers[i].start(0, 0));
            EXPECT_TRUE(timers[i].begins(timers[i].mayEnd + 1));
        }
        for (std::size_t i = 0; i < together; ++i)
        {
            ++timers[i].mayEnd;
            EXPECT_TRUE(timers[i].reaches(done));
        }
        std::list<CThreadManager::ThreadInfo> infos;
        CThreadManager::instance()->getThreadsInfo(infos);
        return std::count_if(infos.begin(), infos.end(), [](const auto& info) { return std::string(info.name) == "[Pooled]"; });
    };
    for (const auto& [limit, together, kept] : {std::tuple(-1, 5u, 5), {-1, 1u, 5}, {0, 1u, 5}, {2, 0u, 5}, {2, 1u, 2}, {2, 4u, 2}})
    {
        EXPECT_TRUE(manager.limitIdlePooled(limit));
        const auto wanted = kept;
        idleAfter(together);
        EXPECT_TRUE(eventually([&] { return idleAfter(0) == wanted; })) << "limit " << limit << " after " << together;
    }
}

TEST(TimerManager, TheRunningLimitHoldsBackTheHeadAndThoseBehindItButNotForcedOrOverrunTimers)
{
    EXPECT_TRUE(CTimerManager::instance()->setRunningThreadLimit(1));
    HeldTimer busy, forced, head, behind;
    EXPECT_TRUE(busy.start(0, 20));
    EXPECT_TRUE(busy.begins(1));
    EXPECT_FALSE(head.start(0, 0));
    EXPECT_EQ(head.state(), armed);
    EXPECT_TRUE(behind.start(1, 0));
    EXPECT_TRUE(forced.start(never, 0));
    EXPECT_TRUE(forced.timer->stop(true));
    EXPECT_TRUE(forced.begins(1));
    forced.mayEnd = 1;
    EXPECT_TRUE(forced.reaches(done));
    EXPECT_EQ(head.state(), armed);
    EXPECT_EQ(behind.state(), armed);
    EXPECT_TRUE(busy.timer->stop(false));
    busy.mayEnd = 1;
    EXPECT_TRUE(head.begins(1));
    EXPECT_EQ(behind.state(), armed);
    head.mayEnd = 1;
    EXPECT_TRUE(behind.begins(1));
}

}  // namespace
}  // namespace General::Ortha::Test
