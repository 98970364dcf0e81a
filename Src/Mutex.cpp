#include "ortha/Mutex.h"

#include <atomic>
#include <utility>

#include "ortha/ortha3/Assert.h"

#include "Src/Platform/Lock.h"

namespace {

using General::Ortha::Platform::KernelMutex;

}

struct CMutex::Internal
{
    KernelMutex mutex;
    KernelMutex* m_handle = mutex.valid() ? &mutex : nullptr;
    std::atomic<int> holders{1};
};

CMutex::CMutex(Type) : m_internal(new Internal)
{
    ORTHA_ASSERT(m_internal->m_handle);
}

CMutex::CMutex(const CMutex& other) : m_internal(other.m_internal)
{
    m_internal->holders.fetch_add(1, std::memory_order_relaxed);
}

CMutex& CMutex::operator=(const CMutex& other)
{
    CMutex copy(other);
    std::swap(m_internal, copy.m_internal);
    return *this;
}

CMutex::~CMutex()
{
    ORTHA_ASSERT(m_internal->m_handle);
    if (m_internal->holders.fetch_sub(1, std::memory_order_acq_rel) == 1)
    {
        delete m_internal;
    }
}

bool CMutex::Enter()
{
    ORTHA_ASSERT(m_internal->m_handle);
    return m_internal->m_handle->enter();
}

bool CMutex::TryEnter()
{
    ORTHA_ASSERT(m_internal->m_handle);
    return m_internal->m_handle->tryEnter();
}

bool CMutex::Leave()
{
    ORTHA_ASSERT(m_internal->m_handle);
    return m_internal->m_handle->leave();
}

CGuard::CGuard(CMutex& mutex) : m_mutex(mutex)
{
    m_mutex.Enter();
}

CGuard::~CGuard()
{
    m_mutex.Leave();
}
