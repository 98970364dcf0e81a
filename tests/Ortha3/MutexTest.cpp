#include "ortha/ortha3/Mutex.h"

#include <gtest/gtest.h>

#include <atomic>
#include <limits>
#include <list>
#include <thread>

#include "ortha/ortha3/AtomicCount.h"
#include "ortha/ortha3/Error.h"
#include "ortha/ortha3/PrintLog.h"
#include "ortha/ortha3/Semaphore.h"
#include "ortha/ortha3/ThreadSpecific.h"

#include "support/LogLines.h"
#include "support/Sync.h"

#if defined(__clang__)
// The locks are entered again here on purpose.
#pragma clang diagnostic ignored "-Wthread-safety-analysis"
#endif

namespace {

using namespace General::Ortha;
using namespace General::Ortha::Test;
using std::chrono::milliseconds;

constexpr int rounds = 20000;

template <class Mutex, class Guard>
void expectTheOwnerEntersAgainAndOthersWaitForAsManyLeaves()
{
    Mutex mutex;
    EXPECT_TRUE(mutex.enter() && mutex.enter() && mutex.enter());
    Blocking other([&] {
        Guard guard(mutex);
        Guard again(mutex);
    });
    for (int leaves = 0; leaves < 3; ++leaves)
    {
        EXPECT_TRUE(other.asleep()) << leaves;
        EXPECT_TRUE(mutex.leave());
    }
    EXPECT_TRUE(other.done());
}

TEST(Mutex, ItsOwnerEntersAgainAndOthersWaitForAsManyLeaves)
{
    expectTheOwnerEntersAgainAndOthersWaitForAsManyLeaves<CMutex, CGuard>();
    expectTheOwnerEntersAgainAndOthersWaitForAsManyLeaves<CRecursiveMutex, CRecursiveGuard>();
    CMutex mutex;
    EXPECT_TRUE(mutex.tryEnter() && mutex.tryEnter());
    for (const bool left : {false, false, true})
    {
        std::thread([&] { EXPECT_EQ(mutex.tryEnter() && mutex.leave(), left); }).join();
        EXPECT_TRUE(left || mutex.leave());
    }
}

TEST(ThreadSpecific, EachThreadSeesWhatItStored)
{
    CThreadSpecific slot;
    ASSERT_TRUE(slot.valid() && slot.setValue(&slot));
    void* value = nullptr;
    inThreads([&](int mine) {
        void* own = &mine;
        EXPECT_TRUE(slot.getValue(&own) && own == nullptr);
        EXPECT_TRUE(slot.setValue(&mine) && slot.getValue(&own) && own == &mine);
    });
    EXPECT_TRUE(slot.getValue(&value) && value == &slot);
}

std::size_t takeEverySlot(std::list<CThreadSpecific>& slots)
{
    while (slots.emplace_back().valid())
    {
    }
    slots.pop_back();
    return slots.size();
}

TEST(ThreadSpecific, TheLastHolderGivesASharedSlotBackAndTheLibraryNeedsNone)
{
    std::list<CThreadSpecific> slots;
    const std::size_t all = takeEverySlot(slots);
    int mark = 0;
    void* value = &mark;
    CThreadSpecific none;
    EXPECT_FALSE(none.valid() || none.setValue(&mark) || none.getValue(&value));
    EXPECT_EQ(value, &mark) << "left as it was";
    {
        CThreadSpecific copy(slots.front());
        const CThreadSpecific& alias = copy;
        copy = alias;
        EXPECT_TRUE(slots.front().setValue(&mark));
        slots.clear();
        EXPECT_EQ(takeEverySlot(slots), all - 1) << "the copy still holds one";
        slots.front() = copy;
        EXPECT_TRUE(slots.emplace_back().valid()) << "assignment gave up the older slot";
        slots.clear();
        value = nullptr;
        EXPECT_TRUE(copy.getValue(&value) && value == &mark);
    }
    EXPECT_EQ(takeEverySlot(slots), all);

    // The library has its own by then.
    LogLines lines;
    setLastError(-3);
    Detail::setCurrentFunctionReuse(20);
    EXPECT_GT(::logInfo("still\n"), 0);
    EXPECT_EQ(getLastError() + static_cast<int>(getCurrentFunctionReuse()), 17);
    EXPECT_EQ(lines.take().size(), 1u);
}

TEST(AtomicCount, CountsIn32BitsAndNoThreadsCountIsLost)
{
    constexpr long highest = std::numeric_limits<std::int32_t>::max();
    Detail::atomic_count edge(highest), count(-rounds);
    EXPECT_EQ(++edge, -highest - 1);
    EXPECT_EQ(--edge, highest);
    CMutex mutex;
    std::atomic<int> zeros{0};
    int guarded = 0;
    inThreads([&](int) {
        for (int i = 0; i < rounds; ++i)
        {
            zeros += ++count == 0 ? 1 : 0;
            CGuard guard(mutex);
            ++guarded;
        }
    });
    EXPECT_EQ(count, (threadCount - 1) * rounds);
    EXPECT_EQ(zeros, 1) << "one thread alone sees each value";
    EXPECT_EQ(guarded, threadCount * rounds);
}

TEST(Semaphore, GivesWhatWasPostedAndNoMoreAndNotTooLate)
{
    CSemaphore semaphore, full(0x7FFFFFFF);
    EXPECT_TRUE(semaphore.tryPend() == -1 && semaphore.pend(0) == -1);
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(semaphore.pend(60), -1);
    const auto spent = std::chrono::steady_clock::now() - begin;
    EXPECT_TRUE(spent >= milliseconds(60) && spent < generous);
    EXPECT_EQ(semaphore.post() + semaphore.post() + semaphore.post() + semaphore.post(), 0);
    EXPECT_EQ(semaphore.tryPend() + semaphore.pend(0) + semaphore.pend(60000) + semaphore.pend(), 0);
    EXPECT_EQ(semaphore.tryPend(), -1);
    EXPECT_EQ(full.post(), -1);
    EXPECT_EQ(full.tryPend() + full.post(), 0);
    EXPECT_EQ(full.post(), -1);
}

TEST(Semaphore, APostWakesAWaiterOfEveryKindAndIsNeverLostToATimeOut)
{
    CSemaphore semaphore;
    for (const unsigned int timeout : {0u, 60000u, 0xFFFFFFFFu})  // 0 stands for the form without a limit
    {
        Blocking waiter([&] { EXPECT_EQ(timeout == 0 ? semaphore.pend() : semaphore.pend(timeout), 0); });
        EXPECT_TRUE(waiter.asleep());
        EXPECT_EQ(semaphore.post(), 0);
        EXPECT_TRUE(waiter.done());
    }

    constexpr int posts = 3000;
    std::atomic<int> taken{0};
    std::atomic<bool> done{false};
    inThreads([&](int i) {
        for (int post = 0; i == 0 && post < posts; ++post)
        {
            EXPECT_EQ(semaphore.post(), 0);
            std::this_thread::sleep_for(std::chrono::microseconds(post % 10 == 0 ? 300 : 0));  // some waiters' time runs out
        }
        done = done || i == 0;
        bool got = false;
        do
        {
            got = semaphore.pend(1) == 0;
            taken += got ? 1 : 0;
        } while (got || !done);
    });
    EXPECT_EQ(taken, posts);
}

TEST(SemaphoreDeathTest, ANegativeCountIsAnAssertion)
{
    EXPECT_DEATH(CSemaphore(-1),
                 R"(\*\*\*\*\* Internal Program Error - assertion \(m_internal->m_handle\) failed in .*CSemaphore.*\(int\): )"
                 R"(Src\\Ortha3\\Semaphore\([0-9]+\))");
}

}  // namespace
