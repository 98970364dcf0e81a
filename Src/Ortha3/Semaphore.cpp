#include "ortha/ortha3/Semaphore.h"

#include <memory>
#include <new>

#include "ortha/ortha3/Assert.h"

#include "Src/Platform/CountingSemaphore.h"

namespace General::Ortha {

namespace {

constexpr int maximumCount = 0x7FFFFFFF;

}

struct CSemaphore::Internal
{
    Platform::CountingSemaphore* m_handle;  // null if the system refused

    static Platform::CountingSemaphore* make(int initialCount)
    {
        using Semaphore = Platform::CountingSemaphore;
        auto semaphore = std::unique_ptr<Semaphore>(
            initialCount < 0 ? nullptr : new (std::nothrow) Semaphore(static_cast<std::uint32_t>(initialCount), maximumCount));
        return semaphore && semaphore->valid() ? semaphore.release() : nullptr;
    }
    [[nodiscard]] int wait(std::uint32_t milliseconds) const { return m_handle->wait(milliseconds) ? 0 : -1; }
};

CSemaphore::CSemaphore(int initialCount) : m_internal(new Internal{Internal::make(initialCount)})
{
    ORTHA_ASSERT(m_internal->m_handle);
}

CSemaphore::~CSemaphore()
{
    delete m_internal->m_handle;
    delete m_internal;
}

int CSemaphore::pend()
{
    ORTHA_ASSERT(m_internal->m_handle);
    return m_internal->wait(Platform::CountingSemaphore::forever);
}

int CSemaphore::pend(unsigned int timeout)
{
    ORTHA_ASSERT(m_internal->m_handle);
    return m_internal->wait(timeout);
}

int CSemaphore::tryPend()
{
    ORTHA_ASSERT(m_internal->m_handle);
    return m_internal->wait(0);
}

int CSemaphore::post()
{
    return m_internal->m_handle && m_internal->m_handle->post() ? 0 : -1;
}

}  // namespace General::Ortha
