// What the two layers of the log share.
#pragma once

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstddef>

#include "ortha/ortha3/CPrintLog.h"
#include "ortha/ortha3/Error.h"
#include "ortha/ortha3/PrintLog.h"

namespace General::Ortha::Detail {

inline constexpr int lineBufferSize = 8192;

enum FilterMode : int
{
    filterNone = 0,      // all logging is off
    filterByModule = 1,  // the module filter decides
    filterAll = 2        // every module passes
};

// Settings and the state of the open line, process-wide. Plain words to those who use them: a change is seen in its own time.
extern std::atomic<int> logLevel;
extern std::atomic<int> filterMode;
extern std::atomic<bool> lineComplete;  // the last text ended a line, so the next one gets a header

inline bool levelPasses(int level)
{
    return level <= logLevel.load(std::memory_order_relaxed) && filterMode.load(std::memory_order_relaxed) != filterNone;
}

/// What stands behind the last backslash, or the whole text.
const char* behindLastBackslash(const char* file);

/// The switches of the base layer are those before `reserved`, one byte each in the order of PrintOptions.
inline constexpr std::size_t optionCount = offsetof(PrintOptions, reserved);

/// Where a switch stands in PrintOptions.
inline std::size_t optionIndex(unsigned char PrintOptions::*field)
{
    static constexpr PrintOptions layout{};
    return static_cast<std::size_t>(&(layout.*field) - reinterpret_cast<const unsigned char*>(&layout));
}

/// Header and message into `buffer`, always terminated, and whether the line is complete now. The length that the line would have without a
/// limit.
int formatLine(char (&buffer)[lineBufferSize], int level, const char* module, const char* file, const char* function, int line,
               const char* version, LogTime* time, const char* format, va_list args) ORTHA_PRINTF(9, 0);

/// Puts `errno` back as it was.
class ErrnoKeeper
{
public:
    ErrnoKeeper() : m_errno(errno) {}
    ~ErrnoKeeper() { errno = m_errno; }
    ErrnoKeeper(const ErrnoKeeper&) = delete;
    ErrnoKeeper& operator=(const ErrnoKeeper&) = delete;

private:
    const int m_errno;
};

/// Puts the thread's last error back as it was: what callers' code does to it, in outlets and file systems, stays inside.
class LastErrorKeeper
{
public:
    LastErrorKeeper() : m_code(getLastError()) {}
    ~LastErrorKeeper() { setLastError(m_code); }
    LastErrorKeeper(const LastErrorKeeper&) = delete;
    LastErrorKeeper& operator=(const LastErrorKeeper&) = delete;

private:
    const int m_code;
};

}  // namespace General::Ortha::Detail
