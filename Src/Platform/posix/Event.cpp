#include "Src/Platform/Event.h"

#include "Src/Platform/posix/Futex.h"

namespace General::Ortha::Platform {

void Event::set()
{
    std::uint32_t word = m_word.load(std::memory_order_relaxed);
    while (!m_word.compare_exchange_weak(word, (word | 1) + 2, std::memory_order_release, std::memory_order_relaxed))
    {
    }
    futexWakeAll(&m_word);
}

std::uint32_t Event::reset()
{
    return m_word.fetch_and(~1u, std::memory_order_acquire) & ~1u;
}

void Event::wait(std::uint32_t ticket)
{
    while (m_word.load(std::memory_order_acquire) == ticket)
    {
        futexWait(m_word, ticket);
    }
}

}  // namespace General::Ortha::Platform
