// CTime of the older interface: a calendar time that the C runtime converts, in its zone, and display preferences of its own.
//
//     CTime deadline = CTime::getCurrentTime() + 90 * 60;
//     char text[32];
//     deadline.format(text, "yyyy-MM-dd HH:mm:ss");
//
// General::Ortha::CTime differs: it holds impossible fields to the nearest possible time, where this class lets them roll over into the
// next unit; it adds and compares fields without a zone, where this class counts seconds in the runtime's zone; and its display preferences
// are others. docs/older-interface.md has the whole table.
//
// Threads: objects one thread at a time. Display preferences are settings for the whole process: start-up.
#pragma once

#include <string>

#include "ortha/ortha3/Export.h"
#include "ortha/ortha3/Time.h"

using SystemTime = General::Ortha::SystemTime;

class ORTHA_API CTime : public SystemTime
{
public:
    /// 2000-01-01 00:00:00 and 2038-01-01 00:00:00.
    static const CTime minTime;
    static const CTime maxTime;

    /// The zero time.
    constexpr CTime() noexcept = default;
    /// As breakTime().
    CTime(unsigned long long time);
    /// Fields beyond their range roll over: 2023-13-01 gives 2024-01-01. Before 1970 UTC: 1970-01-01 00:00:00 UTC.
    CTime(int year, int month, int day, int hour, int minute, int second);
    /// A copy of the fields as they are.
    constexpr CTime(const SystemTime& time) noexcept : SystemTime(time) {}

    /// Seconds since 1970-01-01 00:00:00 UTC, the fields being local time of the C runtime's zone and its daylight saving; 0 instead of
    /// less.
    [[nodiscard]] unsigned long long makeTime() const;
    /// Fills all fields but `isdst`; none if the runtime cannot convert `time`.
    void breakTime(unsigned long long time);

    /// Seconds later and earlier, as makeTime() counts them; not before 1970-01-01 00:00:00 UTC.
    [[nodiscard]] CTime operator+(long long seconds) const;
    [[nodiscard]] CTime operator-(long long seconds) const;
    [[nodiscard]] long long operator-(const CTime& time) const;
    CTime& operator+=(long long seconds);
    CTime& operator-=(long long seconds);

    // By makeTime(), whatever the fields.
    [[nodiscard]] bool operator==(const CTime& time) const { return makeTime() == time.makeTime(); }
    [[nodiscard]] bool operator!=(const CTime& time) const { return makeTime() != time.makeTime(); }
    [[nodiscard]] bool operator<(const CTime& time) const { return makeTime() < time.makeTime(); }
    [[nodiscard]] bool operator<=(const CTime& time) const { return makeTime() <= time.makeTime(); }
    [[nodiscard]] bool operator>(const CTime& time) const { return makeTime() > time.makeTime(); }
    [[nodiscard]] bool operator>=(const CTime& time) const { return makeTime() >= time.makeTime(); }

    /// Writes the time as General::Ortha::CTime::format() does without options, by the preferences below. Nothing, with an error line, if a
    /// pointer is null.
    void format(char* buf, const char* format) const;

    static CTime getCurrentTime();
    /// As General::Ortha::CTime::setCurrentTime().
    static void setCurrentTime(const CTime& time, int tolerance);
    static unsigned long long getCurrentMilliSecond();
    static unsigned long long getCurrentMicroSecond();
    static void sleep(int ms);

    /// Sets the preferences by a template, as General::Ortha::CTime::setFormatString() does for its own.
    static void setFormat(std::string format);
    /// Sets them by numbers; getFormat() stays as it is. `dateFormat`: 0 year month day, 1 month day year, else day month year.
    /// `dateSeparator`: 0 ".", 1 "-",
    /// 2 "/". `timeFormat`: 0 for 24 hours, 1 for 12. Other values of the last two change nothing.
    static void setFormat(int dateFormat, int dateSeparator, int timeFormat);
    static const std::string getFormat();
    static int getDateFormat();
    static bool get12Hour();
    static char getSpliter();
    static int getTimeFormat();
    static int getDateSeparator();
};
