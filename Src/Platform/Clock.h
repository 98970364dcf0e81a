// The system's clocks.
#pragma once

#include <cstdint>

namespace General::Ortha::Platform {

struct CalendarTime
{
    int year;
    int month;  // 1 to 12
    int day;
    int dayOfWeek;  // 0 is Sunday
    int hour;
    int minute;
    int second;
    int milliSecond;
};

/// The readings that everything else is made from. A test replaces it to move the time by hand.
class ClockSource
{
public:
    virtual ~ClockSource() = default;
    /// Nanoseconds of the wall clock since 1970-01-01 00:00:00 UTC.
    virtual std::int64_t wallNanoseconds() = 0;
    /// Sets the wall clock. False if the system refuses.
    virtual bool setWallNanoseconds(std::int64_t nanoseconds) = 0;
    /// A free-running counter that is not moved when the wall clock is set.
    virtual std::uint64_t counter() = 0;
    /// Ticks of the counter in a second.
    virtual std::uint64_t frequency() = 0;
};

/// Replaces the system's clocks, or brings them back with null. The source must stay until then. Start-up.
void setClockSource(ClockSource* source);

/// The wall clock in the system's time zone. Reads the clock once. Where the zone is the one that the C runtime has read, and it reads
/// another one (tzset), that is seen within a second.
CalendarTime localTime();
/// Splits seconds since 1970-01-01 00:00:00 UTC in the system's time zone. False, and nothing is written, if the system cannot.
bool splitLocal(std::uint64_t seconds, CalendarTime& time);
/// Seconds since 1970-01-01 00:00:00 UTC of a time in the system's zone, whose fields may be beyond their ranges and whose `dayOfWeek` and
/// `milliSecond` are not read. Negative before then, -1 also if the system cannot tell.
std::int64_t joinLocal(const CalendarTime& time);
/// The wall clock: nanoseconds since 1970-01-01 00:00:00 UTC.
std::int64_t wallNanoseconds();
/// Sets the wall clock to a time in the system's zone, whose `dayOfWeek` is not read. False if there is no such time, or the system
/// refuses.
bool setLocalTime(const CalendarTime& time);
/// Seconds that the zone's standard time lies behind UTC, negative to the east, as the C runtime has it.
std::int64_t zoneOffset();
std::uint64_t counter();
std::uint64_t counterFrequency();

}  // namespace General::Ortha::Platform
