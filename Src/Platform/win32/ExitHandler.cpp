#include "Src/Platform/ExitHandler.h"

#include <new>
#include <vector>

#include "Src/Platform/Lock.h"
#include "Src/Platform/win32/Windows.h"

namespace General::Ortha::Platform {

namespace {

using Handler = void (*)();

// The handlers that have not been called yet. Never destroyed.
struct Handlers
{
    CriticalSection lock;
    std::vector<Handler> waiting;
};

Handlers& handlers()
{
    static Handlers& handlers = *new Handlers;
    return handlers;
}

// Calls the last ones, until no more than `left` wait. One that a handler registers is called behind it.
void callDownTo(std::size_t left)
{
    Handlers& all = handlers();
    for (;;)
    {
        all.lock.enter();
        Handler last = nullptr;
        if (all.waiting.size() > left)
        {
            last = all.waiting.back();
            all.waiting.pop_back();
        }
        all.lock.leave();
        if (!last)
        {
            return;
        }
        last();
    }
}

void callLast()
{
    handlers().lock.enter();
    const std::size_t count = handlers().waiting.size();
    handlers().lock.leave();
    callDownTo(count == 0 ? 0 : count - 1);
}

// The loader calls this of a program and of a library alike, when the runtime's list has been worked off.
void NTAPI atDetach(void*, DWORD reason, void*)
{
    if (reason == DLL_PROCESS_DETACH)
    {
        callDownTo(0);
    }
}

using Register = void* (*)(Handler);

// Of the C runtime's list, the program's; null if there is none.
Register runtimesRegister()
{
    HMODULE self = nullptr;  // which the list must find in its place
    GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN, reinterpret_cast<const char*>(&callLast),
                       &self);
    const HMODULE runtime = GetModuleHandleA("msvcrt.dll");
    return self && runtime ? reinterpret_cast<Register>(reinterpret_cast<void*>(GetProcAddress(runtime, "_onexit"))) : nullptr;
}

}  // namespace

extern "C" [[gnu::section(".CRT$XLY"), gnu::used]] const PIMAGE_TLS_CALLBACK orthaAtDetach = &atDetach;

// atexit() in a library has the handler called when the library is detached. By then the system has ended all other threads, wherever they
// were, and with whatever locks they held. The runtime's list is worked off before. It may lose what is registered while that goes on: this
// is called with whatever comes next, at the latest when the library is detached.
bool callAtExit(void (*handler)())
try
{
    static const Register s_register = runtimesRegister();
    handlers().lock.enter();
    handlers().waiting.push_back(handler);
    handlers().lock.leave();
    return !s_register || s_register(&callLast);
}
catch (const std::bad_alloc&)
{
    handlers().lock.leave();
    return false;
}

}  // namespace General::Ortha::Platform
