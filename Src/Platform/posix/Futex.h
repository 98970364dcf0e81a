// Sleeping on a word of memory, the kernel's way.
#pragma once

#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <ctime>

namespace General::Ortha::Platform {

static_assert(sizeof(std::atomic<std::uint32_t>) == sizeof(std::uint32_t));

/// The moment on the monotonic clock that lies `milliseconds` ahead.
inline timespec deadlineIn(std::uint32_t milliseconds)
{
    timespec time;
    clock_gettime(CLOCK_MONOTONIC, &time);
    time.tv_sec += milliseconds / 1000;
    time.tv_nsec += static_cast<long>(milliseconds % 1000) * 1000000;
    if (time.tv_nsec >= 1000000000)
    {
        time.tv_nsec -= 1000000000;
        ++time.tv_sec;
    }
    return time;
}

/// Sleeps while `word` is `expected`, until a wake or the deadline (null: none). May also return for no reason: the caller tests again.
/// False if the deadline has passed.
inline bool futexWait(const std::uint32_t* word, std::uint32_t expected, const timespec* deadline = nullptr)
{
    const int savedErrno = errno;
    const long result = syscall(SYS_futex, word, FUTEX_WAIT_BITSET_PRIVATE, expected, deadline, nullptr, FUTEX_BITSET_MATCH_ANY);
    const bool timedOut = result != 0 && errno == ETIMEDOUT;
    errno = savedErrno;
    return !timedOut;
}

inline bool futexWait(const std::atomic<std::uint32_t>& word, std::uint32_t expected, const timespec* deadline = nullptr)
{
    return futexWait(reinterpret_cast<const std::uint32_t*>(&word), expected, deadline);
}

inline void futexWake(const void* word, int count)
{
    const int savedErrno = errno;
    syscall(SYS_futex, word, FUTEX_WAKE_PRIVATE, count, nullptr, nullptr, 0);
    errno = savedErrno;
}

inline void futexWakeAll(const void* word)
{
    futexWake(word, INT_MAX);
}

}  // namespace General::Ortha::Platform
