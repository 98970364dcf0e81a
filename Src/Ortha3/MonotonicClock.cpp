#include <algorithm>
#include <atomic>
#include <cstdint>

#include "ortha/ortha3/Time.h"

#include "Src/Ortha3/Log.h"
#include "Src/Platform/Clock.h"

namespace General::Ortha {

namespace {

// The frequency is stored last: who finds it finds the base too.
std::atomic<std::uint64_t> m_frequency{0};
std::atomic<std::uint64_t> m_baseCount{0};
constinit thread_local std::uint64_t m_lastCount = 0;

void initPerformanceQueryCount()
{
    std::uint64_t unset = 0;
    m_baseCount.compare_exchange_strong(unset, Platform::counter());
    m_lastCount = 0;
    unset = 0;
    const std::uint64_t frequency = Platform::counterFrequency();
    if (m_frequency.compare_exchange_strong(unset, frequency))
    {
        ORTHA_LOG(levelInfo, "init freq: %llu, base time: %llu\n", static_cast<unsigned long long>(frequency),
                  static_cast<unsigned long long>(m_baseCount.load()));
    }
}

// In units of which a second has `unitsPerSecond`.
template <unsigned int unitsPerSecond>
unsigned long long sinceBase()
{
    std::uint64_t frequency = m_frequency.load(std::memory_order_acquire);
    if (frequency == 0)
    {
        initPerformanceQueryCount();
        frequency = m_frequency.load(std::memory_order_acquire);
    }
    // Two processors' counters may disagree: a thread never sees its own clock fall.
    const std::uint64_t count = std::max(Platform::counter(), m_lastCount);
    m_lastCount = count;
    const std::uint64_t base = m_baseCount.load(std::memory_order_relaxed);
    const std::uint64_t ticks = count > base ? count - base : 0;
    constexpr std::uint64_t nanoseconds = 1000000000;
    if (frequency == nanoseconds)  // as on most systems; a division of integers by a constant is a third of the time
    {
        return ticks / (nanoseconds / unitsPerSecond);
    }
    return static_cast<unsigned long long>(static_cast<double>(ticks) / (static_cast<double>(frequency) / unitsPerSecond));
}

}  // namespace

unsigned long long CTime::getCurrentMilliSecond()
{
    return sinceBase<1000>();
}

unsigned long long CTime::getCurrentMicroSecond()
{
    return sinceBase<1000000>();
}

}  // namespace General::Ortha
