// The library's locks and thread slots beside others. Rows are named lock/operation/arguments/who.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <shared_mutex>

#include "ortha/ortha3/Mutex.h"
#include "ortha/ortha3/ReadWriteMutex.h"
#include "ortha/ortha3/ThreadSpecific.h"

#ifdef ORTHA_BENCH_HAS_ABSL
#include <absl/synchronization/mutex.h>
#endif
#ifdef ORTHA_BENCH_HAS_POCO
#include <Poco/Mutex.h>
#include <Poco/RWLock.h>
#endif

#include "native.h"
#include "support.h"

namespace {

using Bench::Placement;
using Clock = std::chrono::steady_clock;

// CMutex and CRecursiveMutex.
template <class Mutex>
class Ours
{
public:
    void enter() ORTHA_NO_THREAD_SAFETY_ANALYSIS { m_mutex.enter(); }
    void leave() ORTHA_NO_THREAD_SAFETY_ANALYSIS { m_mutex.leave(); }

private:
    Mutex m_mutex;
};

// Whatever has lock() and unlock().
template <class Mutex>
class Lockable
{
public:
    void enter() ORTHA_NO_THREAD_SAFETY_ANALYSIS { m_mutex.lock(); }
    void leave() ORTHA_NO_THREAD_SAFETY_ANALYSIS { m_mutex.unlock(); }

private:
    Mutex m_mutex;
};

template <General::Ortha::RWPriority priority>
class OursForReading
{
public:
    void enter() { m_mutex.enterReading(); }
    void leave() { m_mutex.leave(); }

private:
    General::Ortha::CReadWriteMutex m_mutex{priority};
};

class StdForReading
{
public:
    void enter() { m_mutex.lock_shared(); }
    void leave() { m_mutex.unlock_shared(); }

private:
    std::shared_mutex m_mutex;
};

#ifdef ORTHA_BENCH_HAS_ABSL
class AbslMutex
{
public:
    void enter() ORTHA_NO_THREAD_SAFETY_ANALYSIS { m_mutex.Lock(); }
    void leave() ORTHA_NO_THREAD_SAFETY_ANALYSIS { m_mutex.Unlock(); }

private:
    absl::Mutex m_mutex;
};

class AbslForReading
{
public:
    void enter() ORTHA_NO_THREAD_SAFETY_ANALYSIS { m_mutex.ReaderLock(); }
    void leave() ORTHA_NO_THREAD_SAFETY_ANALYSIS { m_mutex.ReaderUnlock(); }

private:
    absl::Mutex m_mutex;
};
#endif

#ifdef ORTHA_BENCH_HAS_POCO
class PocoForReading
{
public:
    void enter() { m_lock.readLock(); }
    void leave() { m_lock.unlock(); }

private:
    Poco::RWLock m_lock;
};
#endif

template <class Lock>
void enterAndLeave(benchmark::State& state)
{
    Lock lock;
    for (auto _ : state)
    {
        lock.enter();
        benchmark::ClobberMemory();
        lock.leave();
    }
}

template <class Lock>
void enterAndLeaveInside(benchmark::State& state)
{
    Lock lock;
    lock.enter();
    for (auto _ : state)
    {
        lock.enter();
        benchmark::ClobberMemory();
        lock.leave();
    }
    lock.leave();
}

// Some nanoseconds of a thread's own work.
void workBetween(int rounds)
{
    for (int i = 0; i < rounds; ++i)
    {
        benchmark::DoNotOptimize(i);
    }
}

// Two threads take one lock for a fixed time and count. The time of the row is that of one turn; the counter min_share is what part of the
// turns the thread that came off worse had, 0.5 at best.
template <class Lock>
void contend(benchmark::State& state, Placement placement, int roundsBetween)
{
    struct alignas(64) Shared
    {
        Lock lock;
        alignas(64) std::uint64_t words[4] = {};
    } shared;
    struct alignas(64) Turns
    {
        std::uint64_t count = 0;
    } turns[2];
    std::atomic<int> ready{0};
    std::atomic<bool> begin{false}, done{false}, misplaced{false};

    const auto takeTurns = [&](int number) {
        const Bench::PlacedThread placed(placement, number);
        if (placed.failed())
        {
            misplaced = true;
        }
        ready.fetch_add(1);
        while (!begin.load(std::memory_order_acquire))
        {
            std::this_thread::yield();
        }
        std::uint64_t count = 0;
        while (!done.load(std::memory_order_relaxed))
        {
            shared.lock.enter();
            for (std::uint64_t& word : shared.words)
            {
                ++word;
            }
            shared.lock.leave();
            ++count;
            workBetween(roundsBetween);
        }
        turns[number].count = count;
    };

    std::uint64_t total = 0, least = 0;
    for (auto _ : state)
    {
        ready = 0;
        begin = false;
        done = false;
        std::thread first(takeTurns, 0), second(takeTurns, 1);
        while (ready.load() != 2)
        {
            std::this_thread::yield();
        }
        const Clock::time_point start = Clock::now();
        begin.store(true, std::memory_order_release);
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        done.store(true, std::memory_order_relaxed);
        const std::chrono::duration<double> elapsed = Clock::now() - start;
        first.join();
        second.join();
        const std::uint64_t count = turns[0].count + turns[1].count;
        total += count;
        least += std::min(turns[0].count, turns[1].count);
        state.SetIterationTime(elapsed.count() / static_cast<double>(count));
    }
    if (shared.words[0] != total || shared.words[3] != total)
    {
        state.SkipWithError("the lock let two threads in");
    }
    if (misplaced)
    {
        state.SkipWithError("cannot tie the threads to their processors");
    }
    state.counters["min_share"] = static_cast<double>(least) / static_cast<double>(total);
}

template <class Lock>
void compareMutex(const std::string& who)
{
    Bench::row(Bench::nameOf({"lock/mutex/uncontended", who}), enterAndLeave<Lock>);
    for (const Placement placement : {Placement::oneProcessor, Placement::apart})
    {
        for (const int rounds : {0, 200})
        {
            const char* turns = rounds == 0 ? "back-to-back" : "work-between";
            Bench::row(Bench::nameOf({"lock/contended", turns, Bench::nameOf(placement), who}),
                       [placement, rounds](benchmark::State& state) { contend<Lock>(state, placement, rounds); })
                ->Iterations(1)
                ->UseManualTime();
        }
    }
}

template <class Lock>
void compareNested(const std::string& who)
{
    Bench::row(Bench::nameOf({"lock/mutex/nested", who}), enterAndLeaveInside<Lock>);
}

template <class Lock>
void compareReading(const std::string& who)
{
    Bench::row(Bench::nameOf({"lock/reading/uncontended", who}), enterAndLeave<Lock>);
}

template <class Set>
void setSlot(benchmark::State& state, Set set)
{
    int value = 0;
    void* pointer = &value;
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(pointer);
        set(pointer);
        benchmark::ClobberMemory();
    }
}

template <class Get>
void getSlot(benchmark::State& state, Get get)
{
    for (auto _ : state)
    {
        benchmark::ClobberMemory();
        void* pointer = get();
        benchmark::DoNotOptimize(pointer);
    }
}

void compareSlots()
{
    static General::Ortha::CThreadSpecific s_ours;
    static Bench::Native::Slot s_native;
    const std::string native = Bench::Native::system;
    Bench::row("lock/slot/set/ortha", [](benchmark::State& state) { setSlot(state, [](void* value) { s_ours.setValue(value); }); });
    Bench::row("lock/slot/set/" + native, [](benchmark::State& state) { setSlot(state, [](void* value) { s_native.set(value); }); });
    Bench::row("lock/slot/get/ortha", [](benchmark::State& state) {
        getSlot(state, [] {
            void* value = nullptr;
            s_ours.getValue(&value);
            return value;
        });
    });
    Bench::row("lock/slot/get/" + native, [](benchmark::State& state) { getSlot(state, [] { return s_native.get(); }); });
}

}  // namespace

int main(int argc, char** argv)
{
    using namespace General::Ortha;

    compareMutex<Ours<CMutex>>("ortha");
    compareMutex<Ours<CRecursiveMutex>>("ortha-recursive");
    compareMutex<Lockable<std::mutex>>("std");
    compareMutex<Lockable<std::recursive_mutex>>("std-recursive");
    compareNested<Ours<CRecursiveMutex>>("ortha");
    compareNested<Ours<CMutex>>("ortha-plain");
    compareNested<Lockable<std::recursive_mutex>>("std");
    compareReading<OursForReading<priorityDefault>>("ortha");
    compareReading<OursForReading<priorityWriter>>("ortha-writer-first");
    compareReading<StdForReading>("std");
#ifdef ORTHA_BENCH_HAS_ABSL
    compareMutex<AbslMutex>("absl");
    compareReading<AbslForReading>("absl");
#endif
#ifdef ORTHA_BENCH_HAS_POCO
    compareMutex<Lockable<Poco::FastMutex>>("poco");
    compareMutex<Lockable<Poco::Mutex>>("poco-recursive");
    compareNested<Lockable<Poco::Mutex>>("poco");
    compareReading<PocoForReading>("poco");
#endif
    compareSlots();
    return Bench::run(argc, argv);
}
