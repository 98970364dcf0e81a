// Detail::atomic_count: a 32-bit counter that many threads may change at once, held in the object itself.
//
//     Detail::atomic_count holders(1);
//     ++holders;
//     if (--holders == 0) { /* the last holder: nobody else can see the object any more */ }
//
// Threads: every operation may be called from any thread on one object. Increment and decrement are full barriers; reading is a plain load.
#pragma once

#include <atomic>
#include <cstdint>

namespace General::Ortha::Detail {

class atomic_count
{
public:
    explicit atomic_count(long value) noexcept : m_value(static_cast<std::int32_t>(value)) {}
    atomic_count(const atomic_count&) = delete;
    atomic_count& operator=(const atomic_count&) = delete;

    /// Adds 1; the new value.
    long operator++() noexcept { return ++m_value; }
    /// Subtracts 1; the new value.
    long operator--() noexcept { return --m_value; }
    /// The current value.
    operator long() const noexcept { return m_value.load(std::memory_order_relaxed); }

private:
    std::atomic<std::int32_t> m_value;
};

}  // namespace General::Ortha::Detail
