// Programs that leave while the library is busy. Each is a child process: it ends with its own code, in time and without complaint.
#include <gtest/gtest.h>

#include <cstdlib>
#include <deque>
#include <thread>

#include "ortha/ortha3/PrintLog.h"
#include "ortha/ortha3/Semaphore.h"
#include "ortha/ortha3/ThreadManager.h"
#include "ortha/ortha3/Timer.h"
#include "ortha/ortha3/TimerManager.h"

#include "support/Capture.h"
#include "support/Sync.h"

namespace General::Ortha::Test {
namespace {

constexpr int code = 7;

// What the children share. All of it outlives every exit handler.
CSemaphore& begun = *new CSemaphore;
std::deque<CTimer>& forgotten = *new std::deque<CTimer>;
CTimer* s_timer = nullptr;
CThread* s_thread = nullptr;

const TFunction1<void, unsigned long> workProc([](unsigned long milliSeconds) {
    begun.post();
    CThread::sleep(static_cast<int>(milliSeconds));
});

void pend(int count)
{
    while (count-- > 0)
    {
        begun.pend();
    }
}

// Starts a timer that nobody destroys, and waits for its first call.
void startForgotten(unsigned long callMilliSeconds)
{
    forgotten.emplace_back("Forgotten").start(workProc, 0, 1, callMilliSeconds, 0);
    begun.pend();
}

void timersBusy()
{
    static std::deque<CTimer> timers;
    for (unsigned int i = 0; i < 8; ++i)
    {
        timers.emplace_back("Busy").start(workProc, 0, 1 + i, i * 20, 5);
    }
    pend(30);
}

void callsThatTakeLongerThanTheExit()
{
    for (int i = 0; i < 4; ++i)
    {
        startForgotten(3600000);
    }
}

void threadsLogging()
{
    const auto logInLoop = [](CThreadLite& self) {
        for (begun.post(); self.looping();)
        {
            logInfo("still here\n");
        }
    };
    static TestThread first(logInLoop), second(logInLoop);
    first.createThread();
    second.createThread();
    std::thread([] {
        for (begun.post();;)
        {
            logInfo("nor am I gone\n");
        }
    }).detach();
    pend(3);
}

void staticTimerStarted()
{
    static CTimer timer("Static");
    timer.start(workProc, 0, 1, 1, 0);
    pend(1);
}

void exitInTimerCallback()
{
    static CTimer timer("Leaving");
    timer.start(TFunction1<void, unsigned long>([](unsigned long) { std::exit(code); }), 1, 1, 0, 0);
    pend(1);  // in vain
}

void exitInThreadBody()
{
    static TestThread thread([](CThreadLite&) { std::exit(code); });
    thread.createThread();
    pend(1);  // in vain
}

// The timers' manager is gone when this handler runs: it was registered before.
void timersOutliveTheManager()
{
    std::atexit([] {
        s_timer->start(workProc, 1, 1, 0, 0);
        s_timer->setPeriodTime(5);
        s_timer->stop(false);
        s_timer->stopAndWait();
        delete s_timer;
        s_thread->destroyThread();
        delete s_thread;
    });
    s_timer = new CTimer("Outliving");
    s_timer->start(workProc, 0, 1, 1, 0);
    s_thread = new TestThread(untilStopped);
    s_thread->createThread();
    pend(1);
}

void timersBornInExitHandlers()
{
    const auto handler = [] {
        CTimer timer("Born");
        timer.start(workProc, 0, 5, 0, 0);
        pend(1);
        CTimerManager::instance()->dumpTimers();
        CThreadManager::instance()->dumpThreads();
        startForgotten(3600000);
    };
    std::atexit(handler);
    startForgotten(0);
    std::atexit(handler);
}

constexpr std::pair<const char*, void (*)()> leavings[] = {
    {"timers busy", timersBusy},
    {"calls that take longer than the exit", callsThatTakeLongerThanTheExit},
    {"threads logging", threadsLogging},
    {"static timer started", staticTimerStarted},
    {"exit in a timer callback", exitInTimerCallback},
    {"exit in a thread body", exitInThreadBody},
    {"timers outlive the manager", timersOutliveTheManager},
    {"timers born in exit handlers", timersBornInExitHandlers},
};

TEST(Exit, EndsWithItsCodeInTimeHoweverBusyTheLibraryIs)
{
    for (const auto& leaving : leavings)
    {
        SCOPED_TRACE(leaving.first);
        const auto leave = [&] {
            leaving.second();
            std::exit(code);
        };
        const ChildResult result = runInChild(leave, std::chrono::seconds(5));
        EXPECT_EQ(result.code, code);
        EXPECT_EQ(result.errors, "");
    }
}

}  // namespace
}  // namespace General::Ortha::Test
