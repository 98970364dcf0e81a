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

// The system's mutex, with its owner and the number of its enters: the system tells neither.
struct OwnedMutex
{
    pthread_mutex_t mutex;
    std::atomic<int> owner{0};
    unsigned int count = 0;

    // `result` is what locking gave. A mutex that its owner took to its end goes on as if it had been free.
    bool entered(int result)
    {
        if (result == EOWNERDEAD && pthread_mutex_consistent(&mutex) == 0)
        {
            count = 0;
            result = 0;
        }
        if (result != 0)
        {
            return false;
        }
        owner.store(currentThreadId(), std::memory_order_relaxed);
        ++count;
        return true;
    }
};

OwnedMutex* makeMutex()
{
    auto mutex = std::unique_ptr<OwnedMutex>(new (std::nothrow) OwnedMutex);
    pthread_mutexattr_t attributes;
    if (!mutex || pthread_mutexattr_init(&attributes) != 0)
    {
        return nullptr;
    }
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    pthread_mutexattr_setrobust(&attributes, PTHREAD_MUTEX_ROBUST);
    const int error = pthread_mutex_init(&mutex->mutex, &attributes);
    pthread_mutexattr_destroy(&attributes);
    return error == 0 ? mutex.release() : nullptr;
}

OwnedMutex& mutexOf(void* handle)
{
    return *static_cast<OwnedMutex*>(handle);
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
    // One that another thread owns stays: the system goes through the mutexes of a thread when it ends.
    if (!m_handle || !tryEnter())
    {
        return;
    }
    while (leave())
    {
    }
    pthread_mutex_destroy(&mutexOf(m_handle).mutex);
    delete &mutexOf(m_handle);
}

bool KernelMutex::enter()
{
    OwnedMutex& own = mutexOf(m_handle);
    return own.entered(pthread_mutex_lock(&own.mutex));
}

bool KernelMutex::tryEnter()
{
    OwnedMutex& own = mutexOf(m_handle);
    return own.entered(pthread_mutex_trylock(&own.mutex));
}

bool KernelMutex::leave()
{
    OwnedMutex& own = mutexOf(m_handle);
    if (own.owner.load(std::memory_order_relaxed) != currentThreadId())
    {
        return false;
    }
    if (--own.count == 0)
    {
        own.owner.store(0, std::memory_order_relaxed);
    }
    return pthread_mutex_unlock(&own.mutex) == 0;
}

}  // namespace General::Ortha::Platform
