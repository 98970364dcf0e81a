#include "Src/Platform/Lock.h"

#include "Src/Platform/posix/Futex.h"

namespace General::Ortha::Platform {

namespace {

constexpr std::uint32_t wordFree = 0;
constexpr std::uint32_t wordOwned = 1;
constexpr std::uint32_t wordContended = 2;
constexpr int spinRounds = 100;

// Its address marks the thread: cheaper than an id, and right in a forked child without further care.
constinit thread_local char t_mark = 0;

void relax()
{
#if defined(__x86_64__) || defined(__i386__)
    __builtin_ia32_pause();
#endif
}

}  // namespace

void CriticalSection::enter()
{
    const void* self = &t_mark;
    if (m_owner.load(std::memory_order_relaxed) == self)
    {
        ++m_nested;
        return;
    }
    std::uint32_t expected = wordFree;
    if (!m_word.compare_exchange_strong(expected, wordOwned, std::memory_order_acquire, std::memory_order_relaxed))
    {
        enterContended();
    }
    m_owner.store(self, std::memory_order_relaxed);
}

bool CriticalSection::tryEnter()
{
    const void* self = &t_mark;
    if (m_owner.load(std::memory_order_relaxed) == self)
    {
        ++m_nested;
        return true;
    }
    std::uint32_t expected = wordFree;
    if (!m_word.compare_exchange_strong(expected, wordOwned, std::memory_order_acquire, std::memory_order_relaxed))
    {
        return false;
    }
    m_owner.store(self, std::memory_order_relaxed);
    return true;
}

void CriticalSection::leave()
{
    if (m_nested != 0)
    {
        --m_nested;
        return;
    }
    m_owner.store(nullptr, std::memory_order_relaxed);
    if (m_word.exchange(wordFree, std::memory_order_release) == wordContended)
    {
        futexWake(&m_word, 1);
    }
}

void CriticalSection::enterContended()
{
    for (int round = 0; round < spinRounds; ++round)
    {
        std::uint32_t expected = wordFree;
        if (m_word.load(std::memory_order_relaxed) == wordFree &&
            m_word.compare_exchange_weak(expected, wordOwned, std::memory_order_acquire, std::memory_order_relaxed))
        {
            return;
        }
        relax();
    }
    // Whoever has slept cannot know whether others still do, so it takes the lock as contended.
    while (m_word.exchange(wordContended, std::memory_order_acquire) != wordFree)
    {
        futexWait(m_word, wordContended);
    }
}

}  // namespace General::Ortha::Platform
