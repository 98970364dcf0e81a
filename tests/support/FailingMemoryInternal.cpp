#include "support/FailingMemory.h"

#include <cstddef>

#include "Src/Platform/NativeThread.h"

using Failing = General::Ortha::Test::FailingMemory;

void Failing::begin(int number, bool andAllAfter)
{
    thread = General::Ortha::Platform::currentThreadId();
    andAfter = andAllAfter;
    failed = false;
    countdown = number;
}

// The linker leads every call of malloc and free in this program here.
extern "C" {
void* __real_malloc(std::size_t size);
void __real_free(void* memory);

void* __wrap_malloc(std::size_t size)
{
    bool fails = false;
    if (Failing::countdown != 0 && Failing::thread == General::Ortha::Platform::currentThreadId())
    {
        fails = Failing::countdown == 1;
        Failing::countdown -= fails && Failing::andAfter ? 0 : 1;
        Failing::failed = Failing::failed || fails;
    }
    void* const memory = fails ? nullptr : __real_malloc(size);
    Failing::blocks += memory ? 1 : 0;
    return memory;
}

void __wrap_free(void* memory)
{
    Failing::blocks -= memory ? 1 : 0;
    __real_free(memory);
}
}
