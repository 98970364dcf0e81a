// A counting semaphore.
#pragma once

#include <atomic>
#include <cstdint>

namespace General::Ortha::Platform {

/// A count from 0 to a maximum. A thread that takes one may destroy the semaphore at once, also while the post that gave it is on its way
/// out.
class CountingSemaphore
{
public:
    static constexpr std::uint32_t forever = 0xFFFFFFFFu;

    /// `initial` is at most `maximum`; `maximum` is 1 to 0x7FFFFFFF.
    CountingSemaphore(std::uint32_t initial, std::uint32_t maximum);
    ~CountingSemaphore();
    CountingSemaphore(const CountingSemaphore&) = delete;
    CountingSemaphore& operator=(const CountingSemaphore&) = delete;

    /// False if the system refused the semaphore, which then must not be used.
    [[nodiscard]] bool valid() const;
    /// Takes one from the count, waiting at most `milliseconds`, or without limit with `forever`. False if the time ran out, the count
    /// unchanged.
    bool wait(std::uint32_t milliseconds);
    /// Adds one and wakes a waiter. False, the count unchanged, at the maximum.
    bool post();

private:
#ifdef _WIN32
    void* const m_handle;
#else
    bool tryTake();

    std::atomic<std::uint64_t>
        m_value;  // low half: the count; high half: threads that wait. One word, so that post touches nothing after its update
    const std::uint32_t m_maximum;
#endif
};

#ifndef _WIN32
inline CountingSemaphore::CountingSemaphore(std::uint32_t initial, std::uint32_t maximum) : m_value(initial), m_maximum(maximum) {}
inline CountingSemaphore::~CountingSemaphore() = default;
inline bool CountingSemaphore::valid() const
{
    return true;
}
#endif

}  // namespace General::Ortha::Platform
