#include "host.h"

#include <fcntl.h>
#include <io.h>
#include <pthread.h>
#include <sys/stat.h>
#include <windows.h>

#include <bit>
#include <cstdint>
#include <cstdlib>
#include <ctime>

namespace Bench {

namespace {

double secondsOf(const FILETIME& kernel, const FILETIME& user)
{
    const auto ticks = [](const FILETIME& time) { return std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime; };
    return 1e-7 * static_cast<double>(ticks(kernel) + ticks(user));
}

}  // namespace

const char* const memoryDirectory = "";
const char* const nullFile = "NUL";

// The system tells of a thread's processors only when they are set: those of the first group.
std::vector<int> processors()
{
    DWORD_PTR process = 0, system = 0;
    GetProcessAffinityMask(GetCurrentProcess(), &process, &system);
    const DWORD_PTR before = SetThreadAffinityMask(GetCurrentThread(), process);
    if (before != 0)
    {
        SetThreadAffinityMask(GetCurrentThread(), before);
    }
    std::vector<int> numbers;
    for (DWORD_PTR rest = before; rest != 0; rest &= rest - 1)
    {
        numbers.push_back(std::countr_zero(rest));
    }
    return numbers;
}

bool runOn(const std::vector<int>& processors)
{
    DWORD_PTR mask = 0;
    for (const int processor : processors)
    {
        mask |= DWORD_PTR{1} << processor;
    }
    return SetThreadAffinityMask(GetCurrentThread(), mask) != 0;
}

double processorSeconds()
{
    FILETIME ignored, kernel{}, user{};
    GetProcessTimes(GetCurrentProcess(), &ignored, &ignored, &kernel, &user);
    return secondsOf(kernel, user);
}

double processorSeconds(std::thread& thread)
{
    FILETIME ignored, kernel{}, user{};
    GetThreadTimes(pthread_gethandle(thread.native_handle()), &ignored, &ignored, &kernel, &user);
    return secondsOf(kernel, user);
}

void setZone(const char* zone)
{
    _putenv((std::string("TZ=") + zone).c_str());
    _tzset();
}

bool isInMemory(const std::string&)
{
    return false;
}

int redirectOutput(const std::string& file)
{
    constexpr int output = 1;
    const int before = _dup(output),
              to = _open(file.c_str(), _O_WRONLY | _O_CREAT | _O_TRUNC | _O_BINARY | _O_NOINHERIT, _S_IREAD | _S_IWRITE);
    const bool redirected = before >= 0 && to >= 0 && _dup2(to, output) == 0;
    if (to >= 0)
    {
        _close(to);
    }
    if (!redirected && before >= 0)
    {
        _close(before);
    }
    return redirected ? before : -1;
}

void restoreOutput(int before)
{
    _dup2(before, 1);
    _close(before);
}

void* loadFunction(const char* library, const char* name)
{
    const HMODULE loaded = LoadLibraryA(library);
    return loaded ? reinterpret_cast<void*>(GetProcAddress(loaded, name)) : nullptr;
}

}  // namespace Bench
