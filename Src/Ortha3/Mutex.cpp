#include "ortha/ortha3/Mutex.h"

#include <atomic>
#include <cstdint>

#include "Src/Platform/Lock.h"
#include "Src/Platform/NativeThread.h"

namespace General::Ortha {

CMutex::CMutex() : m_internal(new Platform::CriticalSection) {}

CMutex::~CMutex()
{
    delete m_internal;
    m_internal = nullptr;
}

bool CMutex::enter()
{
    m_internal->enter();
    return true;
}

bool CMutex::tryEnter()
{
    return m_internal->tryEnter();
}

bool CMutex::leave()
{
    m_internal->leave();
    return true;
}

struct CRecursiveMutex::Internal
{
    Platform::CriticalSection lock;       // entered once for each outermost enter
    std::int32_t depth = 0;               // the owner's alone
    std::atomic<std::uint32_t> owner{0};  // thread id; a thread finds its own here only if it put it there
};

CRecursiveMutex::CRecursiveMutex() : m_internal(new Internal) {}

CRecursiveMutex::~CRecursiveMutex()
{
    delete m_internal;
}

bool CRecursiveMutex::enter()
{
    const auto self = static_cast<std::uint32_t>(Platform::currentThreadId());
    if (m_internal->owner.load(std::memory_order_relaxed) == self)
    {
        ++m_internal->depth;
        return true;
    }
    m_internal->lock.enter();
    m_internal->owner.store(self, std::memory_order_relaxed);
    m_internal->depth = 1;
    return true;
}

bool CRecursiveMutex::leave()
{
    if (--m_internal->depth != 0)
    {
        return true;
    }
    // Before the lock is given up, so that the next owner's mark is not overwritten.
    m_internal->owner.store(0, std::memory_order_relaxed);
    m_internal->lock.leave();
    return true;
}

}  // namespace General::Ortha
