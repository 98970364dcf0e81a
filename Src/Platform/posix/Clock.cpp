#include "Src/Platform/Clock.h"

#include <atomic>
#include <climits>
#include <ctime>

namespace General::Ortha::Platform {

namespace {

constexpr std::int64_t nanosecondsPerSecond = 1000000000;

std::atomic<ClockSource*> s_source{nullptr};

constexpr std::int64_t nanosecondsPerMilliSecond = 1000000;

std::int64_t read(clockid_t clock)
{
    timespec time;
    clock_gettime(clock, &time);
    return static_cast<std::int64_t>(time.tv_sec) * nanosecondsPerSecond + time.tv_nsec;
}

bool set(std::int64_t nanoseconds)
{
    const timespec time{static_cast<std::time_t>(nanoseconds / nanosecondsPerSecond),
                        static_cast<long>(nanoseconds % nanosecondsPerSecond)};
    return clock_settime(CLOCK_REALTIME, &time) == 0;
}

}  // namespace

void setClockSource(ClockSource* source)
{
    s_source.store(source, std::memory_order_release);
}

CalendarTime localTime()
{
    const std::int64_t now = wallNanoseconds();
    const std::time_t second = now / nanosecondsPerSecond;

    // The runtime's conversion takes the zone's lock; one conversion serves a thread for the whole second.
    struct Split
    {
        std::time_t second = -1;
        CalendarTime time{};
    };
    static constinit thread_local Split split;
    if (split.second != second)
    {
        splitLocal(static_cast<std::uint64_t>(second), split.time);
        split.second = second;
    }
    CalendarTime time = split.time;
    time.milliSecond = static_cast<int>(now % nanosecondsPerSecond / nanosecondsPerMilliSecond);
    return time;
}

bool splitLocal(std::uint64_t seconds, CalendarTime& time)
{
    const auto second = static_cast<std::time_t>(seconds);
    std::tm fields;
    if (second < 0 || !localtime_r(&second, &fields) || fields.tm_year > INT_MAX - 1900)
    {
        return false;
    }
    time = {fields.tm_year + 1900, fields.tm_mon + 1, fields.tm_mday, fields.tm_wday, fields.tm_hour, fields.tm_min, fields.tm_sec, 0};
    return true;
}

std::int64_t joinLocal(const CalendarTime& time)
{
    // Fields that somebody else filled: what does not fit wraps.
    const auto less = [](int value, unsigned int by) { return static_cast<int>(static_cast<unsigned int>(value) - by); };
    std::tm fields{};
    fields.tm_year = less(time.year, 1900);
    fields.tm_mon = less(time.month, 1);
    fields.tm_mday = time.day;
    fields.tm_hour = time.hour;
    fields.tm_min = time.minute;
    fields.tm_sec = time.second;
    fields.tm_isdst = -1;
    return std::mktime(&fields);
}

std::int64_t wallNanoseconds()
{
    ClockSource* source = s_source.load(std::memory_order_acquire);
    return source ? source->wallNanoseconds() : read(CLOCK_REALTIME);
}

bool setLocalTime(const CalendarTime& time)
{
    const std::int64_t second = joinLocal(time);
    if (second == -1 || time.milliSecond < 0 || time.milliSecond > 999)
    {
        return false;
    }
    const std::int64_t now = second * nanosecondsPerSecond + time.milliSecond * nanosecondsPerMilliSecond;
    ClockSource* source = s_source.load(std::memory_order_acquire);
    return source ? source->setWallNanoseconds(now) : set(now);
}

std::int64_t zoneOffset()
{
    static const std::int64_t s_offset = (tzset(), timezone);
    return s_offset;
}

std::uint64_t counter()
{
    ClockSource* source = s_source.load(std::memory_order_acquire);
    if (source) [[unlikely]]
    {
        return source->counter();
    }
    return static_cast<std::uint64_t>(read(CLOCK_MONOTONIC));
}

std::uint64_t counterFrequency()
{
    ClockSource* source = s_source.load(std::memory_order_acquire);
    return source ? source->frequency() : static_cast<std::uint64_t>(nanosecondsPerSecond);
}

}  // namespace General::Ortha::Platform
