#include "Src/Platform/ExitHandler.h"

#include <cstdlib>

#include "Src/Platform/win32/Windows.h"

namespace General::Ortha::Platform {

// atexit() within a library has the handler called when the library is detached. By then the system has ended all other threads, wherever they were, and with
// whatever locks they held. The runtime's own list, the program's, is worked off before.
bool callAtExit(void (*handler)())
{
    using Register = void* (*)(void (*)());
    static const auto s_register = [] {
        HMODULE self = nullptr;  // which the list must find in its place
        GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                           reinterpret_cast<const char*>(&callAtExit), &self);
        const HMODULE runtime = GetModuleHandleA("msvcrt.dll");
        return self && runtime ? reinterpret_cast<Register>(reinterpret_cast<void*>(GetProcAddress(runtime, "_onexit"))) : nullptr;
    }();
    return s_register ? s_register(handler) != nullptr : std::atexit(handler) == 0;
}

}  // namespace General::Ortha::Platform
