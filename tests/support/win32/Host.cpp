#include "support/Host.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <io.h>
#include <malloc.h>
#include <windows.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <vector>

extern "C" WINBASEAPI HRESULT WINAPI GetThreadDescription(HANDLE thread, PWSTR* description);

namespace General::Ortha::Test {

namespace {

struct Thread
{
    explicit Thread(int id) : handle(OpenThread(THREAD_QUERY_LIMITED_INFORMATION, FALSE, static_cast<DWORD>(id))) {}
    ~Thread() { CloseHandle(handle); }
    const HANDLE handle;
};

std::uint64_t processorTime(const Thread& thread)
{
    ULARGE_INTEGER kernel{}, user{};
    FILETIME ignored;
    GetThreadTimes(thread.handle, &ignored, &ignored, reinterpret_cast<FILETIME*>(&kernel), reinterpret_cast<FILETIME*>(&user));
    return kernel.QuadPart + user.QuadPart;
}

}  // namespace

const std::size_t systemNameLength = 31;
const bool terminationUnwinds = false;
const unsigned int ownersPermissions = 0666;  // there are no others
const bool searchesReadAhead = true;
const int fewestDescriptors = 1;       // Wine's opens the file before it looks for a descriptor, and does not close it if there is none
const bool callsLateHandlers = false;  // Wine's does not; those of a DLL the loader has called
const bool zonesHaveRules = false;
const bool hasLinks = false;  // not under Wine
const char* const patternName = "[x]";
const char* const openedDirectory = "errno:13, errmsg:Permission denied\n";
const char* const removedDirectory = openedDirectory;

void setZone(const char* zone)
{
    _putenv((std::string("TZ=") + zone).c_str());
    _tzset();
}

std::int64_t utcSeconds(std::tm& fields)
{
    return _mkgmtime64(&fields);
}

std::string assertReport(const std::string& condition)
{
    return "Assertion failed: " + condition + ",";
}

std::string systemName(int threadId)
{
    PWSTR wide = nullptr;
    if (FAILED(GetThreadDescription(Thread(threadId).handle, &wide)))
    {
        return "";
    }
    const std::wstring name = wide;
    LocalFree(wide);
    return {name.begin(), name.end()};
}

// The system does not tell. Who uses no processor for a while is taken to sleep.
bool isAsleep(int threadId)
{
    const Thread thread(threadId);
    const std::uint64_t before = processorTime(thread);
    Sleep(10);
    return thread.handle && processorTime(thread) == before;
}

std::size_t openDescriptors()
{
    std::size_t count = 0;
    for (int descriptor = 0; descriptor < 512; ++descriptor)
    {
        count += _get_osfhandle(descriptor) != -1;
    }
    return count;
}

void sleepForAnHour()
{
    Sleep(3600000);
}

bool isInherited(int descriptor)
{
    DWORD flags = 0;
    EXPECT_TRUE(GetHandleInformation(reinterpret_cast<HANDLE>(_get_osfhandle(descriptor)), &flags));
    return (flags & HANDLE_FLAG_INHERIT) != 0;
}

std::string inheritedDescriptors()
{
    std::string all;
    for (int descriptor = 3; descriptor < 512; ++descriptor)
    {
        const std::intptr_t handle = _get_osfhandle(descriptor);
        char path[MAX_PATH] = "";
        if (handle != -1 && isInherited(descriptor))
        {
            GetFinalPathNameByHandleA(reinterpret_cast<HANDLE>(handle), path, sizeof(path), 0);
            std::replace(std::begin(path), std::end(path), '\\', '/');
            all += path + std::string("\n");
        }
    }
    return all;
}

struct ScarceDescriptors::Taken
{
    std::vector<int> descriptors;
};

ScarceDescriptors::ScarceDescriptors(int left) : m_taken(new Taken)
{
    for (int next = 0; (next = _open("NUL", _O_RDONLY)) != -1;)
    {
        m_taken->descriptors.push_back(next);
    }
    for (; left > 0; --left)
    {
        _close(m_taken->descriptors.back());
        m_taken->descriptors.pop_back();
    }
}

ScarceDescriptors::~ScarceDescriptors()
{
    for (const int descriptor : m_taken->descriptors)
    {
        _close(descriptor);
    }
    delete m_taken;
}

void hide(const std::string& path)
{
    SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_HIDDEN);
}

std::filesystem::path programFile()
{
    wchar_t path[MAX_PATH];
    return std::wstring(path, GetModuleFileNameW(nullptr, path, MAX_PATH));
}

bool loadLibrary(const std::string& path)
{
    return LoadLibraryA(path.c_str()) != nullptr;
}

std::size_t blockSize(void* memory)
{
    return _msize(memory);
}

bool makeLink(const std::string& target, const std::string& path)
{
    const std::filesystem::path from = std::filesystem::path(path).parent_path() / target;
    const DWORD kind = std::filesystem::is_directory(from) ? SYMBOLIC_LINK_FLAG_DIRECTORY : 0;
    // Wine says that it has made one.
    return CreateSymbolicLinkA(path.c_str(), target.c_str(), kind) && GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

}  // namespace General::Ortha::Test
