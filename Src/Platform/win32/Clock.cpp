#include "Src/Platform/Clock.h"

#include <atomic>
#include <ctime>

#include "Src/Platform/win32/Windows.h"

namespace General::Ortha::Platform {

namespace {

constexpr std::int64_t nanosecondsPerSecond = 1000000000;
constexpr std::int64_t nanosecondsPerMilliSecond = 1000000;

std::atomic<ClockSource*> s_source{nullptr};

ClockSource* source()
{
    return s_source.load(std::memory_order_acquire);
}

}  // namespace

void setClockSource(ClockSource* source)
{
    s_source.store(source, std::memory_order_release);
}

bool splitLocal(std::uint64_t seconds, CalendarTime& time)
{
    const auto second = static_cast<__time64_t>(seconds);
    std::tm fields{};
    if (second < 0 || _localtime64_s(&fields, &second) != 0)
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
    return _mktime64(&fields);
}

CalendarTime localTime()
{
    if (ClockSource* const clock = source()) [[unlikely]]
    {
        const std::int64_t nanoseconds = clock->wallNanoseconds();
        CalendarTime time{};
        splitLocal(static_cast<std::uint64_t>(nanoseconds / nanosecondsPerSecond), time);
        time.milliSecond = static_cast<int>(nanoseconds % nanosecondsPerSecond / nanosecondsPerMilliSecond);
        return time;
    }
    SYSTEMTIME now;
    GetLocalTime(&now);
    return {now.wYear, now.wMonth, now.wDay, now.wDayOfWeek, now.wHour, now.wMinute, now.wSecond, now.wMilliseconds};
}

std::int64_t wallNanoseconds()
{
    if (ClockSource* const clock = source()) [[unlikely]]
    {
        return clock->wallNanoseconds();
    }
    constexpr std::int64_t from1601To1970 = 116444736000000000;  // in units of 100 nanoseconds
    FILETIME now;
    GetSystemTimeAsFileTime(&now);
    const std::int64_t units = static_cast<std::int64_t>(now.dwHighDateTime) << 32 | now.dwLowDateTime;
    return (units - from1601To1970) * 100;
}

bool setLocalTime(const CalendarTime& time)
{
    if (ClockSource* const clock = source())
    {
        const std::int64_t second = joinLocal(time);
        return second != -1 && time.milliSecond >= 0 && time.milliSecond <= 999 &&
               clock->setWallNanoseconds(second * nanosecondsPerSecond + time.milliSecond * nanosecondsPerMilliSecond);
    }
    const auto word = [](int value) { return static_cast<WORD>(value); };
    const SYSTEMTIME wanted{word(time.year), word(time.month),  word(time.dayOfWeek), word(time.day),
                            word(time.hour), word(time.minute), word(time.second),    word(time.milliSecond)};
    return SetLocalTime(&wanted) != FALSE;
}

std::int64_t zoneOffset()
{
    static const std::int64_t s_offset = (_tzset(), _timezone);
    return s_offset;
}

std::uint64_t counter()
{
    if (ClockSource* const clock = source()) [[unlikely]]
    {
        return clock->counter();
    }
    LARGE_INTEGER count;
    QueryPerformanceCounter(&count);
    return static_cast<std::uint64_t>(count.QuadPart);
}

std::uint64_t counterFrequency()
{
    if (ClockSource* const clock = source())
    {
        return clock->frequency();
    }
    LARGE_INTEGER frequency;
    QueryPerformanceFrequency(&frequency);
    return static_cast<std::uint64_t>(frequency.QuadPart);
}

}  // namespace General::Ortha::Platform
