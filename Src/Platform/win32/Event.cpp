#include "Src/Platform/Event.h"

#include <mutex>

#include "Src/Platform/win32/Windows.h"

namespace General::Ortha::Platform {

namespace {

// For the guards of the standard library.
struct Lockable
{
    CriticalSection& section;
    void lock() { section.enter(); }
    void unlock() { section.leave(); }
};

}  // namespace

// The system's event forgets a set that a reset follows before its waiters have run. So the sets are counted, and the system's event stays
// open, whatever the gate says, until all have passed who waited for one: meanwhile a later waiter finds it open, looks at the count, and
// comes back.
Event::Event() : m_event(CreateEventA(nullptr, TRUE, FALSE, nullptr)) {}

Event::~Event()
{
    if (m_event)
    {
        CloseHandle(m_event);
    }
}

bool Event::valid() const
{
    return m_event != nullptr;
}

void Event::set()
{
    Lockable lock{m_lock};
    const std::lock_guard guard(lock);
    m_word = (m_word | 1) + 2;
    m_passing += m_waiting;
    m_waiting = 0;
    SetEvent(m_event);
}

std::uint32_t Event::reset()
{
    Lockable lock{m_lock};
    const std::lock_guard guard(lock);
    m_word &= ~1u;
    closeUnlessPassing();
    return m_word;
}

void Event::closeUnlessPassing()
{
    if (m_passing == 0 && (m_word & 1) == 0)
    {
        ResetEvent(m_event);
    }
}

void Event::wait(std::uint32_t ticket)
{
    Lockable lock{m_lock};
    std::unique_lock guard(lock);
    if (m_word != ticket)
    {
        return;
    }
    ++m_waiting;
    for (;;)
    {
        guard.unlock();
        WaitForSingleObject(m_event, INFINITE);
        guard.lock();
        if (m_word != ticket)
        {
            break;
        }
        guard.unlock();
        Sleep(0);
        guard.lock();
    }
    --m_passing;
    closeUnlessPassing();
}

}  // namespace General::Ortha::Platform
