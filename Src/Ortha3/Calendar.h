// Calendar arithmetic: dates, days, seconds and fields, in the Gregorian calendar of 1970 to 2106.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

#include "ortha/ortha3/Time.h"

// The calls in here are qualified: an unqualified one would also find functions beside the record.
namespace General::Ortha::Calendar {

constexpr int firstYear = 1970;
constexpr int lastYear = 2106;
constexpr int secondsPerDay = 86400;

constexpr bool isLeap(int year)
{
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

constexpr int monthDays(int year, int month)
{
    constexpr std::uint8_t days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return days[month - 1] + (month == 2 && isLeap(year) ? 1 : 0);
}

/// Days from 1970-01-01 to the first of March, by years since 1969. A year that begins in March has its leap day at the end, so no date
/// needs a test for it.
inline constexpr auto yearStarts = [] {
    std::array<std::int32_t, lastYear - firstYear + 2> starts{31 + 28 - 365};
    for (int year = firstYear; year <= lastYear; ++year)
    {
        const auto i = static_cast<std::size_t>(year - firstYear);
        starts[i + 1] = starts[i] + (isLeap(year) ? 366 : 365);
    }
    return starts;
}();

/// Days from the first of March to the first of a month, by month.
inline constexpr std::int16_t monthStarts[] = {0, 306, 337, 0, 31, 61, 92, 122, 153, 184, 214, 245, 275};

/// Days since 1970-01-01 of a date that exists.
constexpr int daysOf(int year, int month, int day)
{
    return yearStarts[static_cast<std::size_t>(year - firstYear + (month > 2 ? 1 : 0))] + monthStarts[month] + day - 1;
}

constexpr std::int64_t lastSecond = std::int64_t{daysOf(lastYear, 12, 31) + 1} * secondsPerDay - 1;

constexpr int weekday(int days)
{
    return (days + 4) % 7;  // 1970-01-01 was a Thursday
}

/// Holds a date to the calendar. February 29 stands in a leap year; a later day of any February becomes the 28th.
template <class Time>
constexpr void clampDate(Time& time)
{
    time.year = std::clamp<std::int32_t>(time.year, firstYear, lastYear);
    time.month = std::clamp<std::int32_t>(time.month, 1, 12);
    const bool leapDay = time.month == 2 && time.day == 29 && isLeap(time.year);
    time.day = leapDay ? 29 : std::clamp<std::int32_t>(time.day, 1, monthDays(2001, time.month));
}

/// Holds a time of day to the day.
template <class Time>
constexpr void clampTime(Time& time)
{
    if (time.hour > 23)
    {
        time.hour = 23;
        time.minute = time.second = 59;
    }
    time.hour = std::max<std::int32_t>(time.hour, 0);
    time.minute = std::clamp<std::int32_t>(time.minute, 0, 59);
    time.second = std::clamp<std::int32_t>(time.second, 0, 59);
}

/// Whether a time is certainly one that exists; February 29 is not looked into.
template <class Time>
constexpr bool isPlain(const Time& time)
{
    constexpr std::uint8_t lastDays[16] = {0, 31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const auto within = [](std::int32_t value, std::uint32_t first, std::uint32_t last) {
        return static_cast<std::uint32_t>(value) - first <= last - first ? 1u : 0u;
    };
    // One condition and not six: what a caller's times fail by cannot be foreseen.
    return (within(time.year, firstYear, lastYear) & within(time.month, 1, 12) & within(time.day, 1, lastDays[time.month & 15]) &
            within(time.hour, 0, 23) & within(time.minute, 0, 59) & within(time.second, 0, 59)) != 0;
}

template <class Time>
constexpr std::int64_t secondsOf(const Time& time)
{
    return std::int64_t{daysOf(time.year, time.month, time.day)} * secondsPerDay + time.hour * 3600 + time.minute * 60 + time.second;
}

/// Seconds of the fields, which are held to what there is, since 1970-01-01 00:00:00.
template <class Time>
constexpr std::int64_t toSeconds(const Time& time)
{
    if (Calendar::isPlain(time))
    {
        return Calendar::secondsOf(time);
    }
    Time held = time;
    Calendar::clampDate(held);
    Calendar::clampTime(held);
    return Calendar::secondsOf(held);
}

/// Fills date, time of day and weekday from seconds since 1970-01-01 00:00:00, held to the calendar.
template <class Time>
constexpr void split(std::int64_t seconds, Time& time)
{
    const auto held = static_cast<std::uint64_t>(std::clamp<std::int64_t>(seconds, 0, lastSecond));
    const auto days = static_cast<std::uint32_t>(held / secondsPerDay);
    const auto rest = static_cast<std::uint32_t>(held - std::uint64_t{days} * secondsPerDay);

    // Neri and Schneider, "Euclidean affine functions and their application to calendar algorithms", 2022: the year begins in March, a
    // century on a multiple of 100. 719468 days lie between 0000-03-01 and 1970-01-01.
    const std::uint32_t n1 = 4 * (days + 719468) + 3;
    const std::uint32_t century = n1 / 146097;
    const std::uint32_t n2 = n1 % 146097 | 3;
    const std::uint64_t p2 = std::uint64_t{2939745} * n2;
    const std::uint32_t dayOfYear = static_cast<std::uint32_t>(p2) / 2939745 / 4;
    const std::uint32_t n3 = 2141 * dayOfYear + 197913;
    const bool nextYear = dayOfYear >= 306;
    time.year = static_cast<std::int32_t>(100 * century + static_cast<std::uint32_t>(p2 >> 32) + (nextYear ? 1 : 0));
    time.month = static_cast<std::int32_t>((n3 >> 16) - (nextYear ? 12 : 0));
    time.day = static_cast<std::int32_t>((n3 & 0xFFFF) / 2141 + 1);
    time.wday = weekday(static_cast<int>(days));
    time.hour = static_cast<std::int32_t>(rest / 3600);
    time.minute = static_cast<std::int32_t>(rest / 60 % 60);
    time.second = static_cast<std::int32_t>(rest % 60);
}

/// Holds the fields to what there is, and fills in the weekday.
template <class Time>
constexpr void normalise(Time& time)
{
    Calendar::clampDate(time);
    time.wday = weekday(daysOf(time.year, time.month, time.day));
    Calendar::clampTime(time);
}

/// The time so many milliseconds later, of the same `dst`.
constexpr SystemTimeEx addMilliSeconds(const SystemTimeEx& time, std::int64_t milliSeconds)
{
    const std::int64_t sum =
        std::clamp<std::int64_t>(Calendar::toSeconds(time) * 1000 + time.milliSecond + milliSeconds, 0, lastSecond * 1000 + 999);
    SystemTimeEx later;
    Calendar::split(sum / 1000, later);
    later.milliSecond = static_cast<std::int32_t>(sum % 1000);
    later.dst = time.dst;
    return later;
}

/// Date and time of day alone.
inline CTime timeOf(const SystemTimeEx& time)
{
    return {time.year, time.month, time.day, time.hour, time.minute, time.second};
}

}  // namespace General::Ortha::Calendar
