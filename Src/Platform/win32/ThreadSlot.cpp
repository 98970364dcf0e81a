#include "Src/Platform/ThreadSlot.h"

#include "Src/Platform/win32/Windows.h"

namespace General::Ortha::Platform {

static_assert(noThreadSlot == TLS_OUT_OF_INDEXES);

std::uint32_t allocateThreadSlot()
{
    return TlsAlloc();
}

void freeThreadSlot(std::uint32_t slot)
{
    TlsFree(slot);
}

bool setThreadSlot(std::uint32_t slot, const void* value)
{
    return TlsSetValue(slot, const_cast<void*>(value)) != FALSE;
}

void* threadSlot(std::uint32_t slot)
{
    return TlsGetValue(slot);
}

}  // namespace General::Ortha::Platform
