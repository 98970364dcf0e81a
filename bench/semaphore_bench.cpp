// The library's semaphore beside others. Rows are named semaphore/operation/placement/who.
#include <atomic>
#include <semaphore>

#include "ortha/ortha3/Semaphore.h"

#ifdef ORTHA_BENCH_HAS_POCO
#include <Poco/Semaphore.h>
#endif

#include "native.h"
#include "support.h"

namespace {

using Bench::Placement;

class Ours
{
public:
    void post() { m_semaphore.post(); }
    void wait() { m_semaphore.pend(); }
    bool tryTake() { return m_semaphore.tryPend() == 0; }

private:
    General::Ortha::CSemaphore m_semaphore;
};

class StdSemaphore
{
public:
    void post() { m_semaphore.release(); }
    void wait() { m_semaphore.acquire(); }
    bool tryTake() { return m_semaphore.try_acquire(); }

private:
    std::counting_semaphore<> m_semaphore{0};
};

#ifdef ORTHA_BENCH_HAS_POCO
class PocoSemaphore
{
public:
    void post() { m_semaphore.set(); }
    void wait() { m_semaphore.wait(); }
    bool tryTake() { return m_semaphore.tryWait(0); }

private:
    Poco::Semaphore m_semaphore{0, 0x7FFFFFFF};
};
#endif

// There and back: one iteration is two hand-overs.
template <class Semaphore>
void pingPong(benchmark::State& state, Placement placement)
{
    const Bench::PlacedThread placed(placement);
    if (placed.failed())
    {
        state.SkipWithError("cannot tie the threads to one processor");
        return;
    }
    Semaphore ping, pong;
    std::atomic<bool> done{false};
    std::thread partner([&] {
        for (;;)
        {
            ping.wait();
            if (done.load(std::memory_order_relaxed))
            {
                return;
            }
            pong.post();
        }
    });
    for (auto _ : state)
    {
        ping.post();
        pong.wait();
    }
    done.store(true, std::memory_order_relaxed);
    ping.post();
    partner.join();
}

template <class Semaphore>
void postAndTake(benchmark::State& state)
{
    Semaphore semaphore;
    for (auto _ : state)
    {
        semaphore.post();
        bool taken = semaphore.tryTake();
        benchmark::DoNotOptimize(taken);
    }
}

template <class Semaphore>
void compare(const std::string& who)
{
    for (const Placement placement : {Placement::oneProcessor, Placement::anywhere})
    {
        Bench::row(Bench::nameOf({"semaphore/ping-pong", Bench::nameOf(placement), who}), [placement](benchmark::State& state) {
            pingPong<Semaphore>(state, placement);
        })->UseRealTime();
    }
    Bench::row(Bench::nameOf({"semaphore/post-and-try/alone", who}), postAndTake<Semaphore>);
}

}  // namespace

int main(int argc, char** argv)
{
    compare<Ours>("ortha");
    compare<Bench::Native::Semaphore>(Bench::Native::system);
    if (Bench::Native::stdSemaphoreWakes)
    {
        compare<StdSemaphore>("std");
    }
#ifdef ORTHA_BENCH_HAS_POCO
    compare<PocoSemaphore>("poco");
#endif
    return Bench::run(argc, argv);
}
