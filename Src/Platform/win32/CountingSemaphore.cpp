#include "Src/Platform/CountingSemaphore.h"

#include "Src/Platform/win32/Windows.h"

namespace General::Ortha::Platform {

static_assert(CountingSemaphore::forever == INFINITE);

CountingSemaphore::CountingSemaphore(std::uint32_t initial, std::uint32_t maximum)
    : m_handle(CreateSemaphoreA(nullptr, static_cast<LONG>(initial), static_cast<LONG>(maximum), nullptr))
{
}

CountingSemaphore::~CountingSemaphore()
{
    if (m_handle)
    {
        CloseHandle(m_handle);
    }
}

bool CountingSemaphore::valid() const
{
    return m_handle != nullptr;
}

bool CountingSemaphore::wait(std::uint32_t milliseconds)
{
    return WaitForSingleObject(m_handle, milliseconds) == WAIT_OBJECT_0;
}

bool CountingSemaphore::post()
{
    return ReleaseSemaphore(m_handle, 1, nullptr) != FALSE;
}

}  // namespace General::Ortha::Platform
