#include "ortha/Thread.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <memory>
#include <string>

#include "ortha/Mutex.h"
#include "ortha/Semaphore.h"
#include "ortha/Timer.h"

#include "support/LogLines.h"
#include "support/Sync.h"

namespace {

using namespace General::Ortha::Test;

// A mutex as any thread may call it, in any order.
struct Lock : CMutex
{
    using CMutex::CMutex;
    bool enter() ORTHA_NO_THREAD_SAFETY_ANALYSIS { return Enter(); }
    bool tryEnter() ORTHA_NO_THREAD_SAFETY_ANALYSIS { return TryEnter(); }
    bool leave() ORTHA_NO_THREAD_SAFETY_ANALYSIS { return Leave(); }
    bool leftElsewhere() { return std::async(std::launch::async, &Lock::leave, this).get(); }
    bool enteredElsewhere() { return std::async(std::launch::async, &Lock::tryEnter, this).get(); }
};

TEST(OlderMutex, KnowsItsOwnerAndOutlivesItAndIsOneWithItsCopies)
{
    for (const int type : {0, 1, 7})
    {
        auto mutex = std::make_unique<Lock>(static_cast<CMutex::Type>(type));
        EXPECT_TRUE(!mutex->leave() && mutex->enter() && mutex->tryEnter() && mutex->leave() && !mutex->enteredElsewhere());
        EXPECT_TRUE(!mutex->leftElsewhere() && mutex->leave() && !mutex->leave() && mutex->enteredElsewhere()) << "by a thread that ends";
        EXPECT_TRUE((type == 0 ? mutex->enter() : mutex->tryEnter()) && mutex->leave() && !mutex->leave());
        Lock copy(*mutex), other, &same = copy;
        {
            const CGuard guard(copy);
            copy = same, other = copy, mutex.reset();
            EXPECT_FALSE(other.enteredElsewhere());
        }
        EXPECT_TRUE(other.tryEnter() && copy.leave() && !other.leave());
    }
    Lock next;
    EXPECT_TRUE(Lock().enter());  // and gone
    const std::string block(39, 'x');
    EXPECT_TRUE(next.enter() && next.leave() && block == std::string(39, 'x')) << "writes to memory that it gave back";
}

TEST(OlderSemaphore, TellsResultsOfOppositeSense)
{
    CSemaphore ready(1), full(0x7FFFFFFF);
    Blocking waiting([&] { EXPECT_EQ(ready.Pend() + ready.Pend(), 0); });
    EXPECT_TRUE(waiting.asleep() && ready.Post() != 0 && waiting.done() && full.Post() == 0);
}

TEST(OlderThread, StopsByLoopingOrByExitThread)
{
    struct Looper : CThread
    {
        explicit Looper(bool exits) : CThread("Looper", 64, 0, 0), m_exits(exits) {}
        ~Looper() override { destroyThread(); }
        void threadProc() override
        {
            const std::shared_ptr<void> witness(this, [](Looper* looper) { ++looper->ended; });
            for (setCurrentTimeout(1); looping(); General::Ortha::CThread::sleep(1))
            {
                m_exits ? exitThread() : void();
            }
        }
        const bool m_exits;
        std::atomic<int> ended{0};
    } looper(false), exiting(true);
    LogLines lines;
    EXPECT_TRUE(looper.isThreadOver() && !looper.looping() && !looper.cancelThread() && looper.createThread());
    EXPECT_TRUE(eventually([&] { return looper.isTimeout(); }) && looper.ended == 0 && !looper.createThread());
    EXPECT_TRUE(looper.destroyThread() && looper.isThreadOver() && looper.ended == 1 && looper.createThread() && looper.cancelThread());
    EXPECT_TRUE(exiting.createThread() && eventually([&] { return exiting.isThreadOver(); }));
    EXPECT_EQ(exiting.ended == 1, terminationUnwinds);
}

TEST(OlderTimer, StartsWithAFunctionObjectOrAnObjectAndItsOperation)
{
    struct Poller
    {
        void onTimer(unsigned long param) { last = param, ++calls; }
        std::atomic<unsigned long> last{0}, calls{0};
    } poller;
    CTimer timer("Poll");
    EXPECT_TRUE(timer.start(&poller, &Poller::onTimer, 0, 1, 7, 1000) && eventually([&] { return poller.calls >= 3; }) && poller.last == 7);
    EXPECT_TRUE(timer.isStarted() && timer.stopAndWait() && !timer.isStarted() && !timer.isRunning() && !timer.isCalled());
    EXPECT_TRUE(timer.start(TFunction1<void, unsigned long>(&Poller::onTimer, &poller), 100000, 0, 8, 0) && timer.stop(true));
    EXPECT_TRUE(eventually([&] { return poller.last == 8; }) && timer.getName() == std::string("Poll"));
}

}  // namespace
