// What tests of concurrent code share: waiting for something that must happen, callbacks made of lambdas.
#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "ortha/ortha3/Function.h"
#include "ortha/ortha3/Thread.h"

#include "support/Host.h"

namespace General::Ortha::Test {

/// How long something may take that a sound library does at once: only a failing test waits that long.
constexpr std::chrono::seconds generous{10};
/// How long a thread is watched that must not come on.
constexpr std::chrono::milliseconds aMoment{50};

/// Looks every millisecond until the condition holds. False if it does not in time.
template <class Condition>
bool eventually(Condition condition, std::chrono::milliseconds limit = generous)
{
    const auto end = std::chrono::steady_clock::now() + limit;
    bool holds = condition();
    while (!holds && std::chrono::steady_clock::now() < end)
    {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
        holds = condition();
    }
    return holds;
}

constexpr int threadCount = 4;

/// Runs `body` in that many threads, which begin together, and waits for their end. It gets 0, 1 and so on.
inline void inThreads(const std::function<void(int)>& body)
{
    std::atomic<int> ready{0};
    std::vector<std::jthread> threads;
    for (int i = 0; i < threadCount; ++i)
    {
        threads.emplace_back([&, i] {
            for (++ready; ready < threadCount;)
            {
                std::this_thread::yield();
            }
            body(i);
        });
    }
}

/// Closed at first; once open it stays open.
class Gate
{
public:
    void open() { m_open = true; }
    bool wait(std::chrono::milliseconds limit = generous) const
    {
        return eventually([this] { return m_open.load(); }, limit);
    }

private:
    std::atomic<bool> m_open{false};
};

/// A procedure for the library's function objects; it must outlive their use.
template <class... Args>
class Callback
{
public:
    Callback(std::function<void(Args...)> body) : m_body(std::move(body)) {}
    Callback(const Callback&) = delete;

    operator TFunctionN<void, Args...>() { return tagged(typeMember); }
    TFunctionN<void, Args...> tagged(unsigned int tag) { return {&Callback::run, this, tag}; }

private:
    void run(Args... args) { m_body(args...); }

    const std::function<void(Args...)> m_body;
};

/// A thread of the library that runs a lambda.
class TestThread : private Callback<CThreadLite&>, public CThreadLite
{
public:
    explicit TestThread(std::function<void(CThreadLite&)> body, const char* name = "Test", int priority = 64, int policy = 0, int stack = 0)
        : Callback(std::move(body)), CThreadLite(*this, name, priority, policy, stack)
    {
    }
    ~TestThread() override
    {
        if (!isThreadOver())
        {
            destroyThread();
        }
    }
};

/// The body of a thread that runs until it is stopped.
inline void untilStopped(CThreadLite& self)
{
    while (self.looping())
    {
        CThread::sleep(1);
    }
}

/// A foreign thread whose procedure is about to block. Its end is waited for.
class Blocking
{
public:
    explicit Blocking(std::function<void()> procedure)
        : m_thread([this, procedure = std::move(procedure)] {
              m_id = CThread::getCurrentThreadID();
              procedure();
              m_done.open();
          })
    {
    }

    /// Waits until the system has seen the thread sleep at several looks in a row.
    bool asleep(int looks = 5)
    {
        int seen = 0;
        return eventually([&] { return (seen = isAsleep(m_id) ? seen + 1 : 0) == looks; });
    }
    bool done(std::chrono::milliseconds limit = generous) { return m_done.wait(limit); }

private:
    std::atomic<int> m_id{0};
    Gate m_done;
    std::jthread m_thread;  // the last member: it joins before the others go
};

}  // namespace General::Ortha::Test
