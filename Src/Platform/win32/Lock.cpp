#include "Src/Platform/Lock.h"

#include <new>

#include "Src/Platform/win32/Windows.h"

namespace General::Ortha::Platform {

namespace {

CRITICAL_SECTION* native(unsigned char (&bytes)[sizeof(CRITICAL_SECTION)])
{
    return std::launder(reinterpret_cast<CRITICAL_SECTION*>(bytes));
}

}  // namespace

CriticalSection::CriticalSection()
{
    static_assert(alignof(CRITICAL_SECTION) <= alignof(void*));
    InitializeCriticalSection(new (m_native) CRITICAL_SECTION);
}

CriticalSection::~CriticalSection()
{
    DeleteCriticalSection(native(m_native));
}

void CriticalSection::enter()
{
    EnterCriticalSection(native(m_native));
}

bool CriticalSection::tryEnter()
{
    return TryEnterCriticalSection(native(m_native)) != FALSE;
}

void CriticalSection::leave()
{
    LeaveCriticalSection(native(m_native));
}

namespace {

// Also if its owner has ended without giving it up.
bool isOwned(DWORD waited)
{
    return waited == WAIT_OBJECT_0 || waited == WAIT_ABANDONED;
}

}  // namespace

KernelMutex::KernelMutex() : m_handle(CreateMutexA(nullptr, FALSE, nullptr)) {}

KernelMutex::~KernelMutex()
{
    if (m_handle)
    {
        CloseHandle(m_handle);
    }
}

bool KernelMutex::enter()
{
    return isOwned(WaitForSingleObject(m_handle, INFINITE));
}

bool KernelMutex::tryEnter()
{
    return isOwned(WaitForSingleObject(m_handle, 0));
}

bool KernelMutex::leave()
{
    return ReleaseMutex(m_handle) != FALSE;
}

}  // namespace General::Ortha::Platform
