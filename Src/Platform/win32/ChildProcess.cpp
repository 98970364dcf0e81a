#include "Src/Platform/ChildProcess.h"

#include <string>

#include "Src/Platform/win32/Windows.h"

namespace General::Ortha::Platform {

bool runChildProcess(const char* commandLine)
{
    std::string line = commandLine;  // the call writes into it
    STARTUPINFOA startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION child;
    if (!CreateProcessA(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &child))
    {
        return false;
    }
    WaitForSingleObject(child.hProcess, INFINITE);
    CloseHandle(child.hProcess);
    CloseHandle(child.hThread);
    return true;
}

std::uint64_t currentProcessId()
{
    return GetCurrentProcessId();
}

}  // namespace General::Ortha::Platform
