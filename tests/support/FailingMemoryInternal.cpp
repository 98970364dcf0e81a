#include "support/FailingMemory.h"

#include <cstddef>

using Failing = General::Ortha::Test::FailingMemory;

// The linker leads every call of malloc and free in this program here.
extern "C" {
void* __real_malloc(std::size_t size);
void __real_free(void* memory);

void* __wrap_malloc(std::size_t size)
{
    const bool fails = Failing::countdown == 1;
    Failing::countdown -= Failing::countdown == 0 || (fails && Failing::andAfter) ? 0 : 1;
    Failing::failed = Failing::failed || fails;
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
