// CTime: a calendar time in whole seconds, and, as its static members, the library's clocks, zones and daylight saving.
//
//     CTime now = CTime::getCurrentTime();                                   // local time
//     CTime deadline = now + 90 * 60;
//     char text[32];
//     deadline.format(text, "yyyy-MM-dd HH:mm:ss", CTime::formatAsWritten);
//
// Time is counted in three ways, all from 1970-01-01 00:00:00:
//   seconds of the fields as they stand, without any zone    timeToSeconds(), +, -, CTime(seconds, false)
//   seconds with the C runtime's zone applied                makeTime(), breakTime(), CTime(seconds)
//   milliseconds of a SystemTimeEx                           where the clock is set
// Intervals and deadlines belong to neither: they are counted by getCurrentMilliSecond(), which setting the machine's clock does not move.
//
// Conversions and arithmetic are exact for the Gregorian calendar from 1970-01-01 to 2106-12-31; a result beyond either end is that end.
//
// Daylight saving: local time is UTC plus the zone of setTimeZone(), plus one hour while getDst() is 1, and it is the library that moves
// the machine's clock by that hour, by the rules given to setDstConfig().
//
// Threads: objects one thread at a time. Reading clocks: any thread, at any moment, from static initialisation on, without a lock of the
// library. Zone, formats and hooks are settings for the whole process: start-up. What else holds is told with the operations.
#pragma once

#include <cstdint>

#include "ortha/ortha3/Export.h"
#include "ortha/ortha3/FlexString.h"
#include "ortha/ortha3/Function.h"

namespace General::Ortha {

/// A broken-down time.
struct SystemTime
{
    std::int32_t year = 0;    ///< in full, 2024
    std::int32_t month = 0;   ///< 1 to 12
    std::int32_t day = 0;     ///< 1 to 31
    std::int32_t wday = 0;    ///< day of the week, 0 is Sunday
    std::int32_t hour = 0;    ///< 0 to 23
    std::int32_t minute = 0;  ///< 0 to 59
    std::int32_t second = 0;  ///< 0 to 59
    std::int32_t isdst = -1;  ///< not read by any operation
};

/// A broken-down time to the millisecond.
struct SystemTimeEx
{
    std::int32_t year = 0;
    std::int32_t month = 0;
    std::int32_t day = 0;
    std::int32_t wday = 0;
    std::int32_t hour = 0;
    std::int32_t minute = 0;
    std::int32_t second = 0;
    std::int32_t milliSecond = 0;  ///< 0 to 999
    std::int32_t dst = 0;          ///< 1 in daylight-saving time
    std::int32_t reserved[3] = {};
};

/// When daylight saving begins, or ends, in every year.
struct DstConfigInfo
{
    std::int32_t month = 0;   ///< 1 to 12
    std::int32_t day = 0;     ///< with `week` 0 the day of the month, 1 to 31; else the day of the week, 0 (Sunday) to 6
    std::int32_t week = 0;    ///< 0: a fixed date; 1 to 4: the first to fourth such weekday of the month; -1: its last
    std::int32_t hour = 0;    ///< 0 to 23, in local time as it is shown until then
    std::int32_t minute = 0;  ///< 0 to 59
    std::int32_t reserved[3] = {};
};

/// Who is changing the time.
struct ModifyTimeClientInfo
{
    const char* name;
    const char* address;
    const char* type;
};

class ORTHA_API CTime : public SystemTime
{
public:
    /// 2000-01-01 00:00:00 and 2038-01-01 00:00:00: what the library accepts as a setting of the clock. They do not bound conversions.
    static const CTime minTime;
    static const CTime maxTime;

    // Calendar.

    /// The zero time, which stands for an unset one.
    CTime() noexcept = default;
    /// As breakTime().
    CTime(unsigned long long time) noexcept;
    /// `local`: as breakTime(). Otherwise the fields of that many seconds, without a zone.
    CTime(unsigned long long time, bool local) noexcept;
    /// The nearest possible time: year, month and day are each held to what there is (a year from 1970 to 2106), as are hour, minute and
    /// second; an hour above 23 gives 23:59:59. 2023-02-30 25:00:00 gives 2023-02-28 23:59:59.
    CTime(int year, int month, int day, int hour, int minute, int second) noexcept;

    /// timeToSeconds() plus the C runtime's zone offset (getTimeZone()); 0 instead of less.
    [[nodiscard]] unsigned long long makeTime() const noexcept;
    /// Fills all fields but `isdst` with `time` less the C runtime's zone offset; with 1970-01-01 00:00:00 if that is before it.
    void breakTime(unsigned long long time) noexcept;
    /// Seconds of the fields since 1970-01-01 00:00:00, no zone. Impossible fields count as the constructor would hold them.
    [[nodiscard]] static unsigned long long timeToSeconds(const SystemTime& time) noexcept;

    [[nodiscard]] CTime operator+(long long seconds) const noexcept;
    [[nodiscard]] CTime operator-(long long seconds) const noexcept;
    /// Seconds from `time` to this one.
    [[nodiscard]] long long operator-(const CTime& time) const noexcept;
    CTime& operator+=(long long seconds) noexcept;
    CTime& operator-=(long long seconds) noexcept;

    /// Date and time of day are equal, whatever `wday` and `isdst`.
    [[nodiscard]] bool operator==(const CTime& time) const noexcept;
    [[nodiscard]] bool operator!=(const CTime& time) const noexcept { return !(*this == time); }
    /// The order of the fields as they stand, from the year down to the second.
    [[nodiscard]] bool operator<(const CTime& time) const noexcept;
    [[nodiscard]] bool operator>(const CTime& time) const noexcept { return time < *this; }
    [[nodiscard]] bool operator<=(const CTime& time) const noexcept { return !(time < *this); }
    [[nodiscard]] bool operator>=(const CTime& time) const noexcept { return !(*this < time); }

    // Text.

    enum DateFormat : int
    {
        dateFormatYMD = 0,
        dateFormatMDY = 1,
        dateFormatDMY = 2
    };

    /// Options of format(), which may be combined: what is taken from the template and not from setFormatString().
    enum FormatOption : int
    {
        formatKeepSeparator = 1,  ///< "-", "." and "/" stand for themselves
        formatDateOrder = 2,      ///< year, month and day stand in the template's order
        formatHourStyle = 4,      ///< 12-hour display if and only if the template holds an "h"
        formatAsWritten = 7       ///< all three
    };

    /// Writes the time, as the template tells, and a terminating zero into `buf`, which must have room for them: twice the template's
    /// length, and the zero, is enough for every possible time. Allocates nothing.
    ///
    ///   y M d    a run stands for the next date field in the order set: "yyyy" 2024, "yy" 24, "MM" 03, "M" 3. Which letter a run has does not matter for
    ///            its place, only how often each letter is in the template
    ///   H h      the hour, "HH" 07, "H" 7; "h" may be mixed in
    ///   m s      minute and second in the same way
    ///   t        a run stands for AM or PM with 12-hour display; without, it takes the blanks before it away
    ///   - . /    the separator set
    ///   others   stand for themselves
    ///
    /// With formatDateOrder a template without one of the three orders, and one without a date, leaves an error line and counts as year,
    /// month, day. Missing letters count as coming last.
    void format(char* buf, const char* format, int options) const;
    /// Reads six numbers, whatever stands between them: a date in the order of y, M and d in the template, then hour, minute, second. With
    /// an "h" in the template the text must hold "AM" or "PM", and the hour be below 13. Impossible fields are held to the nearest possible
    /// ones. False, with an error line and the six fields 0, if there are not six or the hour is not clear. `options` has no effect.
    bool parse(const char* buf, const char* format, int options);

    /// Sets the template that getFormat() gives, and by it what format() uses without its options: the separator (the first of ".", "/",
    /// "-" that is in it at all), the order of y, M and d, and 12-hour display if there is an "h". What cannot be found leaves an error
    /// line and is "-", or year, month, day. Null counts as empty. Start-up.
    static void setFormatString(const char* format);
    static void setFormat(const string& format);
    static const string getFormat();
    static DateFormat getDateFormat();
    static char getSeparator();
    static bool get12Hour();

    /// Reads "2024-05-01T20:00:00+08:00", or "...Z" for UTC, into seconds since 1970 in UTC: six numbers, or eight if there is a "+" or "-"
    /// anywhere between them, of which the last is the sign of the offset. False, with an error line and `*utcSec` 0, for another count, an
    /// offset outside -12:00 to +14:00, or a null pointer.
    static bool convertTZtoUTC(const char* buf, unsigned long long* utcSec);
    /// Writes "2024-05-01T12:00:00Z" into `buf`, whose `len` must be at least 21; writes nothing, with an error line, if it is less, `buf`
    /// is null, or `addOffset` is set, which there is no support for.
    static void convertUTCtoTZ(unsigned long long utcSec, char* buf, int len, bool addOffset);

    // Clocks. All but the first two follow a setting of the machine's clock.

    /// Milliseconds since the first reading of this clock in the process. Setting the machine's clock does not move it. Within a thread
    /// the value never falls; between threads no order is promised.
    static unsigned long long getCurrentMilliSecond();
    /// The same in microseconds.
    static unsigned long long getCurrentMicroSecond();
    /// The local time.
    static CTime getCurrentTime();
    static CTime getCurTimeForPrint();
    /// The local time to the millisecond; `dst` is 0.
    static SystemTimeEx getCurrentTimeEx();
    static SystemTimeEx getCurTimeExForPrint(unsigned long long);
    /// Seconds since 1970-01-01 00:00:00 UTC.
    static unsigned long long getCurrentUTCtime();
    /// Milliseconds since 1970-01-01 00:00:00 UTC.
    static unsigned long long getCurrentUTCMilliSecond();
    static unsigned long long getCurrentRealUTC();

    // Zones.

    /// Sets the zone, in seconds east of UTC without daylight saving. False, and nothing changes, outside -43200 to 50400. Start-up.
    static bool setTimeZone(int seconds);
    /// The zone set. False, and `*seconds` untouched, while there is none.
    static bool getTimeZone(int* seconds);
    /// The C runtime's zone, in seconds west of UTC without daylight saving: not the one of setTimeZone(). 0 after disableTimezone().
    static long getTimeZone();
    /// Seconds east of UTC in row `index`, 0 to 39, of the library's table of zones: 0 is UTC, 1 to 19 go east, 20 to 32 west, 33 to 39 are
    /// zones with a fraction of an hour, and +14:00. 0, with an error line, outside. The rows stand in docs/time.md.
    static int getTimeZonefromTable(int index);
    /// From now on makeTime() and breakTime() apply no zone. There is no way back. 0. Start-up.
    static int disableTimezone();
    /// The daylight-saving flag: 1, 0, or -1 while unset.
    static int getDst();
    /// The UTC of a local time in seconds: less `*offset`; or, with null, less the zone set and the hour of the daylight-saving flag, as
    /// far as they are set. 0, with an error line, if that is before 1970.
    static unsigned long long makeUTC(unsigned long long local, const int* offset);

    /// A UTC with the zone and the flag it was derived by.
    struct UTCTimeDef
    {
        std::uint64_t utc;  ///< seconds since 1970
        std::int32_t timeZone;
        std::int32_t dst;
    };
    /// The present local time brought to UTC by zone and flag. False, and `time` untouched, while one of them is unset.
    static bool getUTCForEmbed(UTCTimeDef& time);

    /// Tells who is changing the time on this thread; the texts are copied, null counts as empty. Of the calling thread alone, to whose end
    /// it lasts.
    static void setModifyTimeClientInfo(const ModifyTimeClientInfo& info);
    /// What this thread set. The texts are valid until it sets others; empty, with an error line, if it set none.
    static ModifyTimeClientInfo getModifyTimeClientInfo();

    // Setting the machine's clock. Needs the privilege to do so.

    using SetTimeHook = TFunction2<void, const CTime&, int>;
    using SetTimeHookEx = TFunction2<void, const SystemTimeEx&, int>;
    using ModifyProc = TFunction1<bool, SystemTime>;
    using VerifyHook = TFunction0<bool>;

    /// Sets the local time, held to minTime and maxTime. A present time within `tolerance` seconds of it stays, and nothing is told to
    /// anybody; 0 always sets. The verify hook can forbid it, which leaves an error line. Then the observers are called, on this thread,
    /// without a lock.
    static void setCurrentTime(const CTime& time, int tolerance);
    /// The same. False if it was forbidden, or if this thread's last error is 0x1000000E (the clock was not set) or 0x1000000F (nor the
    /// real-time clock). The last error is not cleared first.
    static bool setCurrentTimeEx(const CTime& time, int tolerance);
    /// The same to the millisecond.
    static bool setCurrentTime(const SystemTimeEx& time, int tolerance);

    /// Adds an observer, to be called with each new local time; its result is not used. It stays to the end of the process. A procedure may
    /// set the clock and attach others, which are called from the next time on. Always true. Any thread.
    static bool attachModifyProc(ModifyProc proc);
    /// Replaces what sets the clock, and gives the former one; an empty function brings the library's own back. A hook tells a failure by
    /// setLastError(0x1000000E) or (0x1000000F). With `notify` the observers are called after it, as after the library's own. Start-up.
    static SetTimeHook attachSetCurrentTimeHook(SetTimeHook hook);
    static SetTimeHook attachSetCurrentTimeHook(SetTimeHook hook, bool notify);
    static SetTimeHookEx attachSetCurrentTimeHookEx(SetTimeHookEx hook);
    static SetTimeHookEx attachSetCurrentTimeHookEx(SetTimeHookEx hook, bool notify);
    /// Sets who is asked before each setting; false forbids it. Empty: nobody. Start-up.
    static void attachModifyTimeVerifyHook(VerifyHook hook);

    // Daylight saving.

    using ConvertDstProc = TFunction1<void, bool>;
    using ModifyRealUTCProc = TFunction2<void, unsigned long long, unsigned long long>;
    using SetRealUTCHook = TFunction2<bool, unsigned long long, int>;

    /// Sets the flag by hand; the clock stays. The conversion callback is called if the flag changes. Always true.
    static bool setDst(bool dst);
    /// Says, before setDstConfig() turns daylight saving on, whether the clock shows daylight-saving time now; without it the manager takes
    /// "no", and would move a clock that has been moved already. False, with an error line, while daylight saving is on.
    static bool setInitDst(bool dst);
    /// Turns daylight saving on, or replaces its rules: at `start` the clock goes forward by an hour and the flag becomes 1, at `end` it
    /// goes back and the flag becomes 0. `end` may lie before `start` in the year (the southern half of the world), but not within an hour
    /// after it. A clock that is moved by others is looked at once a second and put right. False, with an error line, if a rule is
    /// impossible. With `enable` false turns it off; a clock in daylight-saving time goes back by an hour. Waits for a check that is
    /// running, at most 1.2 seconds. One thread at a time.
    static bool setDstConfig(const DstConfigInfo& start, const DstConfigInfo& end, bool enable);
    /// The two dates of the rules in `year`, `start` in standard time and `end` in daylight-saving time. False while daylight saving is
    /// off. Any thread; can wait as setDstConfig() does.
    static bool getDstConfig(int year, CTime& start, CTime& end);
    /// Sets who is called with each new value of the flag, under a recursive lock of its own, on the thread that changes it. Empty: nobody.
    /// Any thread.
    static void attachConvertDstCallback(ConvertDstProc proc);
    /// The local time of a UTC in seconds, and what was added: the zone set, and an hour if daylight saving is in force then. The result is
    /// held to minTime and maxTime, with a warning; the offset is not. Before 1970: an error line, and `*local` is `utc`. Any thread; can
    /// wait as setDstConfig() does.
    static void makeLocal(unsigned long long utc, unsigned long long* local, int* offset);
    /// Sets the clock, and the flag, from a UTC in milliseconds, with the tolerance of setCurrentTime(). The daylight-saving check pauses
    /// meanwhile. False if it was forbidden or failed as in setCurrentTimeEx(), or the local time would be before 1970. With a hook: asks
    /// the verify hook, calls it, and is true. One thread at a time; without a hook not from an observer or the conversion callback: it
    /// waits for the check that may be calling them.
    static bool setCurrentRealUTC(unsigned long long utc, int tolerance);
    /// Adds an observer of setCurrentRealUTC() with a hook: old and new UTC in milliseconds. Always true. Any thread.
    static bool attachModifyRealUTCProc(ModifyRealUTCProc proc);
    /// Sets what setCurrentRealUTC() calls instead of setting the clock itself; with `notify` the observers are called if it gives true.
    /// Start-up.
    static void attachSetCurrentRealUTCHook(SetRealUTCHook hook, bool notify);

private:
    constexpr explicit CTime(const SystemTime& time) noexcept : SystemTime(time) {}
};

}  // namespace General::Ortha
