// The library's timers beside event loops' timers. Rows are named timer/operation/started timers/who.
//
// The loops' timers belong to one thread; ours may be started and stopped by any.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <deque>

#include "ortha/ortha3/Timer.h"

#ifdef ORTHA_BENCH_HAS_LIBUV
#include <uv.h>
#endif
#ifdef ORTHA_BENCH_HAS_ASIO
#define ASIO_STANDALONE
#include <asio/executor_work_guard.hpp>
#include <asio/io_context.hpp>
#include <asio/steady_timer.hpp>
#endif

#include "support.h"

namespace {

constexpr unsigned int shortestDelay = 3600 * 1000;
constexpr unsigned int longestDelay = 2 * shortestDelay;
constexpr std::chrono::seconds idleTime(2);

// No timer of these rows may fire.
[[noreturn]] void fired()
{
    std::abort();
}

// Each of these holds a number of timers; start and stop take a timer's number.

class OurTimers
{
public:
    explicit OurTimers(std::size_t count)
    {
        for (std::size_t i = 0; i < count; ++i)
        {
            m_timers.emplace_back("Bench");
        }
    }
    void start(std::size_t i, unsigned int delay)
    {
        m_timers[i].start(General::Ortha::TFunction1<void, unsigned long>(&OurTimers::onTimer, this), delay, 0, 0, 0);
    }
    void stop(std::size_t i) { m_timers[i].stop(false); }

    // The processor time that the manager takes while nothing is due. The process does nothing else meanwhile.
    double processorTimeOfIdling()
    {
        if (m_timers.empty())
        {
            m_timers.emplace_back("Bench");  // the first timer starts the manager
        }
        const double before = Bench::processorSeconds();
        std::this_thread::sleep_for(idleTime);
        return Bench::processorSeconds() - before;
    }

private:
    void onTimer(unsigned long) { fired(); }

    std::deque<General::Ortha::CTimer> m_timers;
};

// Runs `loop` on a thread of its own and tells what processor time it takes while nothing is due.
template <class Loop, class End>
double processorTimeOf(Loop loop, End end)
{
    std::thread thread(loop);
    std::this_thread::sleep_for(std::chrono::milliseconds(100));  // it has begun to wait
    const double before = Bench::processorSeconds(thread);
    std::this_thread::sleep_for(idleTime);
    const double used = Bench::processorSeconds(thread) - before;
    end();
    thread.join();
    return used;
}

// What waking every 10 milliseconds costs, as our manager does, with nothing to manage.
class Ticks
{
public:
    explicit Ticks(std::size_t) {}
    void start(std::size_t, unsigned int) {}
    double processorTimeOfIdling()
    {
        return processorTimeOf(
            [this] {
                while (!m_done.load(std::memory_order_relaxed))
                {
                    std::this_thread::sleep_for(std::chrono::milliseconds(10));
                }
            },
            [this] { m_done.store(true, std::memory_order_relaxed); });
    }

private:
    std::atomic<bool> m_done{false};
};

#ifdef ORTHA_BENCH_HAS_LIBUV
class UvTimers
{
public:
    explicit UvTimers(std::size_t count) : m_timers(count)
    {
        uv_loop_init(&m_loop);
        uv_async_init(&m_loop, &m_end, [](uv_async_t* handle) { uv_stop(handle->loop); });
        for (uv_timer_t& timer : m_timers)
        {
            uv_timer_init(&m_loop, &timer);
        }
    }
    ~UvTimers()
    {
        for (uv_timer_t& timer : m_timers)
        {
            uv_close(reinterpret_cast<uv_handle_t*>(&timer), nullptr);
        }
        uv_close(reinterpret_cast<uv_handle_t*>(&m_end), nullptr);
        uv_run(&m_loop, UV_RUN_DEFAULT);
        uv_loop_close(&m_loop);
    }
    UvTimers(const UvTimers&) = delete;
    UvTimers& operator=(const UvTimers&) = delete;

    void start(std::size_t i, unsigned int delay)
    {
        uv_timer_start(
            &m_timers[i], [](uv_timer_t*) { fired(); }, delay, 0);
    }
    void stop(std::size_t i) { uv_timer_stop(&m_timers[i]); }
    double processorTimeOfIdling()
    {
        return processorTimeOf([this] { uv_run(&m_loop, UV_RUN_DEFAULT); }, [this] { uv_async_send(&m_end); });
    }

private:
    uv_loop_t m_loop;
    uv_async_t m_end;
    std::vector<uv_timer_t> m_timers;
};
#endif

#ifdef ORTHA_BENCH_HAS_ASIO
class AsioTimers
{
public:
    explicit AsioTimers(std::size_t count)
    {
        for (std::size_t i = 0; i < count; ++i)
        {
            m_timers.emplace_back(m_context);
        }
    }
    void start(std::size_t i, unsigned int delay)
    {
        m_timers[i].expires_after(std::chrono::milliseconds(delay));
        m_timers[i].async_wait([](const asio::error_code& error) {
            if (!error)
            {
                fired();
            }
        });
    }
    // A cancelled wait ends in a call of its handler, which the loop makes: let it, a batch at a time.
    void stop(std::size_t i)
    {
        m_timers[i].cancel();
        if (++m_cancelled % 64 == 0)
        {
            m_context.poll();
        }
    }
    double processorTimeOfIdling()
    {
        return processorTimeOf([this] { m_context.run(); }, [this] { m_context.stop(); });
    }

private:
    asio::io_context m_context{1};
    asio::executor_work_guard<asio::io_context::executor_type> m_work{m_context.get_executor()};
    std::deque<asio::steady_timer> m_timers;
    unsigned int m_cancelled = 0;
};
#endif

// `count` timers that are started.
template <class Timers>
void startAll(Timers& timers, std::size_t count, Bench::Draw<unsigned int>& delays)
{
    for (std::size_t i = 0; i < count; ++i)
    {
        timers.start(i, delays());
    }
}

// One more timer comes and goes.
template <class Timers>
void startAndStop(benchmark::State& state, std::size_t count)
{
    Bench::Draw<unsigned int> delays(shortestDelay, longestDelay);
    Timers timers(count + 1);
    startAll(timers, count, delays);
    for (auto _ : state)
    {
        timers.start(count, delays());
        timers.stop(count);
    }
}

// Any one of the started timers is stopped and started again with another delay.
template <class Timers>
void restart(benchmark::State& state, std::size_t count)
{
    Bench::Draw<unsigned int> delays(shortestDelay, longestDelay);
    Bench::Draw<std::size_t> which(0, count - 1);
    Timers timers(count);
    startAll(timers, count, delays);
    for (auto _ : state)
    {
        const std::size_t i = which();
        timers.stop(i);
        timers.start(i, delays());
    }
}

// Manual time: the processor time taken in one second of wall time, at least the clock's resolution: a loop that sleeps through takes none,
// and a ratio needs a number.
template <class Timers>
void idle(benchmark::State& state, std::size_t count)
{
    Bench::Draw<unsigned int> delays(shortestDelay, longestDelay);
    Timers timers(count);
    startAll(timers, count, delays);
    for (auto _ : state)
    {
        state.SetIterationTime(std::max(timers.processorTimeOfIdling() / static_cast<double>(idleTime.count()), 1e-9));
    }
}

template <class Timers>
void compareIdle(const std::string& who)
{
    for (const std::size_t count : {0u, 1000u, 100000u})
    {
        Bench::row(Bench::nameOf({"timer/processor-time-of-an-idle-second", std::to_string(count) + "-started", who}),
                   [count](benchmark::State& state) { idle<Timers>(state, count); })
            ->Iterations(1)
            ->UseManualTime();
    }
}

template <class Timers>
void compare(const std::string& who)
{
    for (const std::size_t count : {10u, 1000u, 100000u})
    {
        const std::string started = std::to_string(count) + "-started";
        Bench::row(Bench::nameOf({"timer/start-and-stop", started, who}),
                   [count](benchmark::State& state) { startAndStop<Timers>(state, count); });
        Bench::row(Bench::nameOf({"timer/restart-any", started, who}), [count](benchmark::State& state) { restart<Timers>(state, count); });
    }
    compareIdle<Timers>(who);
}

}  // namespace

int main(int argc, char** argv)
{
    compare<OurTimers>("ortha");
    compareIdle<Ticks>("ticks");
#ifdef ORTHA_BENCH_HAS_LIBUV
    compare<UvTimers>("libuv");
#endif
#ifdef ORTHA_BENCH_HAS_ASIO
    compare<AsioTimers>("asio");
#endif
    return Bench::run(argc, argv);
}
