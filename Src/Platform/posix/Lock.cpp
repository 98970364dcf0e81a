#include "Src/Platform/Lock.h"

#include <pthread.h>

#include <cerrno>
#include <memory>
#include <new>

#include "Src/Platform/NativeThread.h"
#include "Src/Platform/posix/Futex.h"

namespace General::Ortha::Platform {

namespace {

// Set in the word of a lock for which somebody may sleep: the owner wakes one when it leaves. Thread ids stay below it.
constexpr std::uint32_t contended = 0x80000000u;

pthread_mutex_t* makeMutex()
{
    auto mutex = std::unique_ptr<pthread_mutex_t>(new (std::nothrow) pthread_mutex_t);
    pthread_mutexattr_t attributes;
    if (!mutex || pthread_mutexattr_init(&attributes) != 0)
    {
        return nullptr;
    }
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    pthread_mutexattr_setrobust(&attributes, PTHREAD_MUTEX_ROBUST);
    const int error = pthread_mutex_init(mutex.get(), &attributes);
    pthread_mutexattr_destroy(&attributes);
    return error == 0 ? mutex.release() : nullptr;
}

// Whether the calling thread owns the mutex now. One that its owner took to its end goes on as if nothing had happened.
bool owned(pthread_mutex_t* mutex, int result)
{
    return result == 0 || (result == EOWNERDEAD && pthread_mutex_consistent(mutex) == 0);
}

pthread_mutex_t* mutexOf(void* handle)
{
    return static_cast<pthread_mutex_t*>(handle);
}

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

KernelMutex::KernelMutex() : m_handle(makeMutex()) {}

KernelMutex::~KernelMutex()
{
    if (m_handle)
    {
        pthread_mutex_destroy(mutexOf(m_handle));
        delete mutexOf(m_handle);
    }
}

bool KernelMutex::enter()
{
    return owned(mutexOf(m_handle), pthread_mutex_lock(mutexOf(m_handle)));
}

bool KernelMutex::tryEnter()
{
    return owned(mutexOf(m_handle), pthread_mutex_trylock(mutexOf(m_handle)));
}

bool KernelMutex::leave()
{
    return pthread_mutex_unlock(mutexOf(m_handle)) == 0;
}

}  // namespace General::Ortha::Platform
