#include "Src/Platform/ThreadSlot.h"

#include <pthread.h>

namespace General::Ortha::Platform {

static_assert(sizeof(pthread_key_t) == sizeof(std::uint32_t));

std::uint32_t allocateThreadSlot()
{
    pthread_key_t key;
    return pthread_key_create(&key, nullptr) == 0 ? key : noThreadSlot;
}

void freeThreadSlot(std::uint32_t slot)
{
    pthread_key_delete(slot);
}

bool setThreadSlot(std::uint32_t slot, const void* value)
{
    return pthread_setspecific(slot, value) == 0;
}

void* threadSlot(std::uint32_t slot)
{
    return pthread_getspecific(slot);
}

}  // namespace General::Ortha::Platform
