#include "ortha/Semaphore.h"

#include "ortha/ortha3/Semaphore.h"

// The newer class has the kernel's semaphore with the same bounds and the same assertion.
struct CSemaphore::Internal
{
    General::Ortha::CSemaphore m_handle;
};

CSemaphore::CSemaphore(int initialCount) : m_internal(new Internal{General::Ortha::CSemaphore(initialCount)}) {}

CSemaphore::~CSemaphore()
{
    delete m_internal;
}

int CSemaphore::Pend()
{
    return m_internal->m_handle.pend();
}

int CSemaphore::Post()
{
    return m_internal->m_handle.post() == 0 ? 1 : 0;
}
