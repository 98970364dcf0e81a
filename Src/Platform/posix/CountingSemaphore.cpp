#include "Src/Platform/CountingSemaphore.h"

#include <bit>

#include "Src/Platform/posix/Futex.h"

namespace General::Ortha::Platform {

namespace {

constexpr std::uint64_t countMask = 0xFFFFFFFFu;
constexpr std::uint64_t oneWaiter = 1ull << 32;

// The kernel sleeps on the half that holds the count.
const std::uint32_t* countWord(const std::atomic<std::uint64_t>& value)
{
    return reinterpret_cast<const std::uint32_t*>(&value) + (std::endian::native == std::endian::big ? 1 : 0);
}

}  // namespace

bool CountingSemaphore::tryTake()
{
    std::uint64_t value = m_value.load(std::memory_order_relaxed);
    while ((value & countMask) != 0)
    {
        if (m_value.compare_exchange_weak(value, value - 1, std::memory_order_acquire, std::memory_order_relaxed))
        {
            return true;
        }
    }
    return false;
}

bool CountingSemaphore::wait(std::uint32_t milliseconds)
{
    if (tryTake())
    {
        return true;
    }
    if (milliseconds == 0)
    {
        return false;
    }
    const bool limited = milliseconds != forever;
    const timespec deadline = limited ? deadlineIn(milliseconds) : timespec{};
    std::uint64_t value = m_value.fetch_add(oneWaiter, std::memory_order_relaxed) + oneWaiter;
    bool inTime = true;
    for (;;)
    {
        while ((value & countMask) != 0)
        {
            if (m_value.compare_exchange_weak(value, value - 1 - oneWaiter, std::memory_order_acquire, std::memory_order_relaxed))
            {
                return true;
            }
        }
        if (!inTime)
        {
            // Only a waiter may still take what was posted meanwhile: leave the waiters only while the count is seen to be 0.
            if (m_value.compare_exchange_weak(value, value - oneWaiter, std::memory_order_relaxed))
            {
                return false;
            }
            continue;
        }
        inTime = futexWait(countWord(m_value), 0, limited ? &deadline : nullptr);
        value = m_value.load(std::memory_order_relaxed);
    }
}

bool CountingSemaphore::post()
{
    std::uint64_t value = m_value.load(std::memory_order_relaxed);
    do
    {
        if ((value & countMask) >= m_maximum)
        {
            return false;
        }
    } while (!m_value.compare_exchange_weak(value, value + 1, std::memory_order_release, std::memory_order_relaxed));
    if (value >= oneWaiter)
    {
        futexWake(countWord(m_value), 1);
    }
    return true;
}

}  // namespace General::Ortha::Platform
