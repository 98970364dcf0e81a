// The system's own calls, which rows show beside the library. Everything stands in this header, for a call more would be measured too.
#pragma once

#include <time.h>
#include <windows.h>

#include <climits>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace Bench::Native {

/// Whose calls these are, in the names of rows; and what makes and frees memory.
constexpr const char* system = "win32";
constexpr const char* allocator = "msvcrt";

/// Whether who waits at a std::counting_semaphore is always woken. That of g++ 12 has left two threads waiting for each other under Wine.
constexpr bool stdSemaphoreWakes = false;

class Semaphore
{
public:
    Semaphore() = default;
    ~Semaphore() { CloseHandle(m_semaphore); }
    Semaphore(const Semaphore&) = delete;
    Semaphore& operator=(const Semaphore&) = delete;
    void post() { ReleaseSemaphore(m_semaphore, 1, nullptr); }
    void wait() { WaitForSingleObject(m_semaphore, INFINITE); }
    bool tryTake() { return WaitForSingleObject(m_semaphore, 0) == WAIT_OBJECT_0; }

private:
    const HANDLE m_semaphore = CreateSemaphoreA(nullptr, 0, LONG_MAX, nullptr);
};

/// What each thread keeps for itself, for as long as the process runs.
class Slot
{
public:
    void set(void* value) { TlsSetValue(m_index, value); }
    [[nodiscard]] void* get() const { return TlsGetValue(m_index); }

private:
    const DWORD m_index = TlsAlloc();
};

constexpr const char* searchedBy = "find-first-file";

/// Tells `seen` the name, whether it is a directory, whether it is read-only, and the size of each entry but the dots.
template <class Seen>
void searchDirectory(const std::string& directory, Seen seen)
{
    WIN32_FIND_DATAA entry;
    const HANDLE search = FindFirstFileA((directory + "/*").c_str(), &entry);
    for (BOOL found = search != INVALID_HANDLE_VALUE; found; found = FindNextFileA(search, &entry))
    {
        if (std::strcmp(entry.cFileName, ".") != 0 && std::strcmp(entry.cFileName, "..") != 0)
        {
            seen(entry.cFileName, (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0,
                 (entry.dwFileAttributes & FILE_ATTRIBUTE_READONLY) != 0, std::uint64_t{entry.nFileSizeHigh} << 32 | entry.nFileSizeLow);
        }
    }
    FindClose(search);
}

/// The C runtime's calendar.
inline tm split(time_t seconds)
{
    tm time;
    _gmtime64_s(&time, &seconds);
    return time;
}

inline time_t join(tm& time)
{
    return _mkgmtime64(&time);
}

constexpr bool parses = false;  // there is no call for it
inline time_t parse(const std::string&, const char*)
{
    return -1;
}

inline auto monotonicTime(timespec& now)
{
    return clock_gettime(CLOCK_MONOTONIC, &now);
}

inline auto localTime(timespec& now, tm& local)
{
    now.tv_sec = _time64(nullptr);
    return _localtime64_s(&local, &now.tv_sec);
}

constexpr const char* convertedBy = "win32";

/// Between character sets: "UTF-8", "UTF-16LE", "GBK" and "CP1251".
class Converter
{
public:
    Converter(const char* to, const char* from) : m_to(pageOf(to)), m_from(pageOf(from)) {}

    /// Into a text that has room. Empty if a character has no place in the other set.
    std::string_view operator()(std::string_view from, std::string& to)
    {
        const auto* units = reinterpret_cast<const wchar_t*>(from.data());
        int count = static_cast<int>(from.size() / 2);
        if (m_from != units16)
        {
            const bool ends = m_to == units16;
            m_units.resize(ends ? 0 : from.size());
            auto* const into = ends ? reinterpret_cast<wchar_t*>(to.data()) : m_units.data();
            const std::size_t room = ends ? to.size() / 2 : m_units.size();
            count =
                MultiByteToWideChar(m_from, MB_ERR_INVALID_CHARS, from.data(), static_cast<int>(from.size()), into, static_cast<int>(room));
            units = into;
            if (ends)
            {
                return std::string_view(to.data(), 2 * static_cast<std::size_t>(count));
            }
        }
        BOOL replaced = FALSE;
        const int size = WideCharToMultiByte(m_to, 0, units, count, to.data(), static_cast<int>(to.size()), nullptr,
                                             m_to == CP_UTF8 ? nullptr : &replaced);
        return std::string_view(to.data(), replaced ? 0 : static_cast<std::size_t>(size));
    }

private:
    static constexpr UINT units16 = 1200;

    static UINT pageOf(std::string_view set) { return set == "UTF-8" ? CP_UTF8 : set == "GBK" ? 936 : set == "CP1251" ? 1251 : units16; }

    const UINT m_to, m_from;
    std::wstring m_units;
};

}  // namespace Bench::Native
