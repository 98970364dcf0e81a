// A manual-reset event.
#pragma once

#include <atomic>
#include <cstdint>

namespace General::Ortha::Platform {

/// A gate: closed at first, opened for all by set, closed by reset. A waiter that took its ticket before a set passes, even if the gate has been closed
/// again since: no wake-up is lost between giving up a lock and beginning to wait.
class Event
{
public:
    constexpr Event() = default;
    Event(const Event&) = delete;
    Event& operator=(const Event&) = delete;

    /// Opens the gate and wakes every waiter.
    void set();
    /// Closes the gate. The ticket to wait with.
    std::uint32_t reset();
    /// Waits, without limit, for a set that came after the ticket was taken.
    void wait(std::uint32_t ticket);

private:
    std::atomic<std::uint32_t> m_word{0};  // lowest bit: open; the rest counts the sets
};

}  // namespace General::Ortha::Platform
