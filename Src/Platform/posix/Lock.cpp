#include "Src/Platform/Lock.h"

#include "Src/Platform/NativeThread.h"
#include "Src/Platform/posix/Futex.h"

namespace General::Ortha::Platform {

namespace {

// Set in the word of a lock for which somebody may sleep: the owner wakes one when it leaves. Thread ids stay below it.
constexpr std::uint32_t contended = 0x80000000u;

}  // namespace

void CriticalSection::enter()
{
    // The free lock first: reading the word ahead of the exchange would cost the common case a tenth.
    const auto self = static_cast<std::uint32_t>(currentThreadId());
    std::uint32_t word = 0;
    if (m_word.compare_exchange_strong(word, self, std::memory_order_acquire, std::memory_order_relaxed))
    {
        return;
    }
    if ((word & ~contended) == self)
    {
        ++m_nested;
        return;
    }
    enterContended(self);
}

bool CriticalSection::tryEnter()
{
    const auto self = static_cast<std::uint32_t>(currentThreadId());
    std::uint32_t word = 0;
    if (m_word.compare_exchange_strong(word, self, std::memory_order_acquire, std::memory_order_relaxed))
    {
        return true;
    }
    if ((word & ~contended) == self)
    {
        ++m_nested;
        return true;
    }
    return false;
}

void CriticalSection::leave()
{
    // The count stands in the same line: with a waiter about, reading it would fetch the line once more than writing the word does.
    __builtin_prefetch(&m_word, 1);
    if (m_nested != 0)
    {
        --m_nested;
        return;
    }
    if ((m_word.exchange(0, std::memory_order_release) & contended) != 0)
    {
        futexWake(&m_word, 1);
    }
}

void CriticalSection::enterContended(std::uint32_t self)
{
    // One exchange marks an owned lock, or takes a free one. Whoever has slept cannot know whether others still do, so the mark stays.
    while (const std::uint32_t word = m_word.fetch_or(contended, std::memory_order_acquire))
    {
        futexWait(m_word, word | contended);
    }
    m_word.store(self | contended, std::memory_order_relaxed);
}

}  // namespace General::Ortha::Platform
