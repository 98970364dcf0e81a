// A manual-reset event.
#pragma once

#include <atomic>
#include <cstdint>

#ifdef _WIN32
#include "Src/Platform/Lock.h"
#endif

namespace General::Ortha::Platform {

/// A gate: closed at first, opened for all by set, closed by reset. A waiter that took its ticket before a set passes, even if the gate has
/// been closed again since: no wake-up is lost between giving up a lock and beginning to wait.
class Event
{
public:
    Event();
    ~Event();
    Event(const Event&) = delete;
    Event& operator=(const Event&) = delete;

    /// False if the system refused the event, which then must not be used.
    [[nodiscard]] bool valid() const;
    /// Opens the gate and wakes every waiter.
    void set();
    /// Closes the gate. The ticket to wait with.
    std::uint32_t reset();
    /// Waits, without limit, for a set that came after the ticket was taken.
    void wait(std::uint32_t ticket);

private:
#ifdef _WIN32
    void closeUnlessPassing();

    CriticalSection m_lock;  // guards the words; not held during a wait
    void* const m_event;
    std::uint32_t m_word = 0;     // lowest bit: open; the rest counts the sets
    std::uint32_t m_waiting = 0;  // threads that wait for the next set
    std::uint32_t m_passing = 0;  // threads whose set has come, and which have not seen it yet
#else
    std::atomic<std::uint32_t> m_word{0};  // lowest bit: open; the rest counts the sets
#endif
};

#ifndef _WIN32
inline Event::Event() = default;
inline Event::~Event() = default;
inline bool Event::valid() const
{
    return true;
}
#endif

}  // namespace General::Ortha::Platform
