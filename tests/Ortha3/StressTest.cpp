// Everything at once for three seconds: threads and timers start and stop, signals fire, locks are taken, all of them log.
#include <gtest/gtest.h>

#include <deque>
#include <list>
#include <random>

#include "ortha/ortha3/PrintLog.h"
#include "ortha/ortha3/ReadWriteMutex.h"
#include "ortha/ortha3/SignalTemplate.h"
#include "ortha/ortha3/ThreadManager.h"
#include "ortha/ortha3/Timer.h"
#include "ortha/ortha3/TimerManager.h"

#include "support/Sync.h"

namespace General::Ortha::Test {
namespace {

TEST(Stress, ThreadsTimersSignalsAndLogTogether)
{
    std::atomic<long> lines{0}, timerCalls{0}, bodies{0}, fired{0};
    Callback<const char*> printer([&](const char*) { ++lines; });
    setLogPrinter(printer);
    {
        CReadWriteMutex mutexes[] = {priorityDefault, priorityWriter};
        long guarded[2] = {};
        TSignal1<long> signal(8);
        std::atomic<int> inside[4] = {};
        std::deque<Callback<long>> procs;  // one a worker; a firing may be inside after its detach
        std::deque<Callback<unsigned long>> timerProcs;
        std::deque<CTimer> timers;
        std::deque<TestThread> threads;
        for (std::atomic<int>& count : inside)
        {
            procs.emplace_back([&](long number) { fired += number; });
            timerProcs.emplace_back([&](unsigned long number) {
                EXPECT_EQ(++count, 1);  // calls of one timer never overlap
                ++timerCalls;
                signal(1);
                logInfo("call %lu\n", number);
                --count;
            });
            timers.emplace_back("Stressed");
            threads.emplace_back([&](CThreadLite& self) {
                ++bodies;
                CThread::setCurrentTimeout(1);
                for (int i = 0; i < 20 && self.looping(); ++i)
                {
                    signal(2);
                    CThread::sleep(i % 2);
                }
            });
        }
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(3);
        const auto work = [&](unsigned int seed) {
            std::minstd_rand random(seed);
            const auto below = [&](unsigned int limit) { return static_cast<unsigned int>(random() % limit); };
            const auto lock = [&](unsigned int i) {
                const long seen = (CReadGuard(mutexes[i % 2]), guarded[i % 2]);  // the guard lives to the end of the statement
                const CWriteGuard guard(mutexes[i % 2]);
                EXPECT_GT(++guarded[i % 2], seen);
                logWarn("%s\n", "written");
            };
            const auto look = [&](unsigned int) {
                std::list<CThreadManager::ThreadInfo> infos;
                CThreadManager::instance()->getThreadsInfo(infos);
                CTimerManager::instance()->dumpTimers();
                CTimerManager::instance()->limitIdlePooled(static_cast<int>(below(3)));
                CTimerManager::instance()->setRunningThreadLimit(static_cast<int>(below(3)));
            };
            const std::function<void(unsigned int)> actions[] = {
                [&](unsigned int i) { timers[i].start(timerProcs[i], below(3), below(3), i, 1); },
                [&](unsigned int i) { timers[i].stop(below(2) == 0); },
                [&](unsigned int i) { timers[i].stopAndWait(); },
                [&](unsigned int i) { timers[i].setPeriodTime(below(3)); },
                [&](unsigned int i) { threads[i].createThread(); },
                [&](unsigned int i) { threads[i].destroyThread(); },
                [&](unsigned int i) { threads[i].cancelThread(), threads[i].setThreadName(i < 2 ? "low" : "high"); },
                [&](unsigned int) { signal.attach(procs[seed]), signal(1), signal.detach(procs[seed], true); },
                look,
                lock,
            };
            while (std::chrono::steady_clock::now() < deadline)
            {
                actions[below(std::size(actions))](below(4));
            }
        };
        std::list<Blocking> workers;
        for (unsigned int seed = 0; seed < 4; ++seed)
        {
            workers.emplace_back([&, seed] { work(seed); });
        }
        workers.clear();
        for (CTimer& timer : timers)
        {
            timer.stopAndWait();
            EXPECT_FALSE(timer.isStarted() || timer.isRunning());
        }
    }
    EXPECT_TRUE(timerCalls > 0 && bodies > 0 && fired > 0 && lines > timerCalls);
    setLogPrinter({});
}

}  // namespace
}  // namespace General::Ortha::Test
