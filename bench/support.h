// What the benchmark programs share.
#pragma once

#include <benchmark/benchmark.h>

#include <condition_variable>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <initializer_list>
#include <mutex>
#include <random>
#include <string>
#include <string_view>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "host.h"

namespace Bench {

/// A second thread that sleeps through the run: in a process of one thread the allocator, the locks and the shared pointers of the C and
/// C++ runtimes leave their atomic operations out, and look cheaper than any program that uses this library will see them.
class SleepingThread
{
public:
    SleepingThread() : m_thread([this] { sleep(); }) {}
    ~SleepingThread()
    {
        {
            const std::lock_guard<std::mutex> guard(m_mutex);
            m_done = true;
        }
        m_wake.notify_one();
        m_thread.join();
    }
    SleepingThread(const SleepingThread&) = delete;
    SleepingThread& operator=(const SleepingThread&) = delete;

private:
    void sleep()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_wake.wait(lock, [this] { return m_done; });
    }

    std::mutex m_mutex;
    std::condition_variable m_wake;
    bool m_done = false;
    std::thread m_thread;
};

/// Where the threads of a row run. Waking a thread on another processor of a virtual machine costs tens of microseconds, whoever does it,
/// and hides what the primitive costs: rows that hand something over are measured on one processor, and once as the system places the
/// threads. Rows that fight for something need a processor for each thread.
enum class Placement
{
    oneProcessor,
    apart,
    anywhere
};

inline const char* nameOf(Placement placement)
{
    return placement == Placement::oneProcessor ? "one-processor" : placement == Placement::apart ? "apart" : "anywhere";
}

/// Ties the calling thread to a processor for as long as this lives. `number` tells the threads of a row apart: from 0.
class PlacedThread
{
public:
    explicit PlacedThread(Placement placement, int number = 0)
    {
        if (placement == Placement::anywhere)
        {
            return;
        }
        m_before = processors();
        const std::size_t skipped = placement == Placement::apart ? static_cast<std::size_t>(number) : 0;
        m_moved = skipped < m_before.size() && runOn({m_before[m_before.size() - 1 - skipped]});
        m_failed = !m_moved;
    }
    ~PlacedThread()
    {
        if (m_moved)
        {
            runOn(m_before);
        }
    }
    PlacedThread(const PlacedThread&) = delete;
    PlacedThread& operator=(const PlacedThread&) = delete;

    /// True if the system refused or has no such processor: the row must not be reported as measured there.
    [[nodiscard]] bool failed() const { return m_failed; }

private:
    std::vector<int> m_before;
    bool m_moved = false;
    bool m_failed = false;
};

/// Numbers that look random and are the same in every run, so that ours and the peers get the same work. Taking one costs a load.
template <class T>
class Draw
{
public:
    Draw(T lowest, T highest)
    {
        std::mt19937_64 random(20240229);
        std::uniform_int_distribution<T> distribution(lowest, highest);
        for (T& value : m_values)
        {
            value = distribution(random);
        }
    }

    T operator()() { return m_values[m_next++ % count]; }

private:
    static constexpr std::size_t count = 1 << 16;
    std::vector<T> m_values = std::vector<T>(count);
    std::size_t m_next = 0;
};

/// A directory for the files that rows write, removed with all that is in it.
class Scratch
{
public:
    explicit Scratch(const std::filesystem::path& where = std::filesystem::temp_directory_path())
    {
        const std::filesystem::path directory = where / ("ortha_bench." + std::to_string(std::random_device()()));
        std::error_code ignored;
        if (!where.empty() && std::filesystem::create_directory(directory, ignored))
        {
            m_directory = directory;
        }
    }
    ~Scratch()
    {
        std::error_code ignored;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(m_directory, ignored))
        {
            // Not every system removes what is read-only.
            std::filesystem::permissions(entry, std::filesystem::perms::owner_write, std::filesystem::perm_options::add, ignored);
        }
        std::filesystem::remove_all(m_directory, ignored);
    }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;

    /// False if there is none to be had.
    [[nodiscard]] bool made() const { return !m_directory.empty(); }
    [[nodiscard]] std::string file(std::string_view name) const { return (m_directory / name).generic_string(); }

private:
    std::filesystem::path m_directory;
};

/// The parts of a row's name with slashes between.
inline std::string nameOf(std::initializer_list<std::string_view> parts)
{
    std::string name;
    for (const std::string_view part : parts)
    {
        name.append(name.empty() ? "" : "/").append(part);
    }
    return name;
}

/// Adds a row, "area/operation/arguments/who".
template <class Function>
benchmark::internal::Benchmark* row(const std::string& name, Function&& function)
{
    return benchmark::RegisterBenchmark(name.c_str(), std::forward<Function>(function));
}

/// The body of every program's main: runs the rows that were added.
inline int run(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
    {
        return 1;
    }
    const SleepingThread sleeping;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

}  // namespace Bench
