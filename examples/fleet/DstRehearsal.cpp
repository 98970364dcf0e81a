#include "DstRehearsal.h"

#include <ortha/ortha3/Time.h>

#include <cstdlib>
#include <stdexcept>

#include "Log.h"
#include "Stamp.h"

using General::Ortha::CTime;
using General::Ortha::DstConfigInfo;
using General::Ortha::SystemTimeEx;

namespace Fleet {

namespace {

constexpr int hour = 3600;
constexpr int standardOffset = 1 * hour;
constexpr int savingOffset = standardOffset + hour;

void printTime(const CTime& time, int)
{
    logLibName(levelInfo, moduleReport, "The clock would be set to %s.\n", stamp(time).c_str());
}

void printTimeEx(const SystemTimeEx& time, int)
{
    printTime(CTime(time.year, time.month, time.day, time.hour, time.minute, time.second), 0);
}

DstConfigInfo lastSunday(int month, int hourOfDay)
{
    DstConfigInfo rule;
    rule.month = month;
    rule.week = -1;
    rule.day = 0;
    rule.hour = hourOfDay;
    return rule;
}

// A rule's date, for months of 31 days. The manager tells it only once it runs, and has to be told before it does whether the clock is
// ahead.
CTime dateOf(const DstConfigInfo& rule, int year)
{
    const CTime lastDay(year, rule.month, 31, 0, 0, 0);
    return {year, rule.month, 31 - lastDay.wday, rule.hour, rule.minute, 0};
}

void logRow(unsigned long long utc)
{
    unsigned long long local = 0;
    int offset = 0;
    CTime::makeLocal(utc, &local, &offset);
    logLibName(levelInfo, moduleReport, " %-*s  %-*s  %+03d:%02d\n", stampWidth(), stamp(CTime(utc, false)).c_str(), stampWidth(),
               stamp(CTime(local, false)).c_str(), offset / hour, std::abs(offset) % hour / 60);
}

}  // namespace

void rehearseDst()
{
    // Before anything else: all that the library does to the machine's clock goes through these two.
    CTime::attachSetCurrentTimeHook(CTime::SetTimeHook(&printTime));
    CTime::attachSetCurrentTimeHookEx(CTime::SetTimeHookEx(&printTimeEx));

    const DstConfigInfo startRule = lastSunday(3, 2);
    const DstConfigInfo endRule = lastSunday(10, 3);
    const CTime now = CTime::getCurrentTime();
    const bool saving = dateOf(startRule, now.year) <= now && now < dateOf(endRule, now.year);
    logLibName(levelInfo, moduleReport, "Rehearsal of daylight saving, one hour east of UTC: nothing sets the clock.\n");
    logLibName(levelInfo, moduleReport, "The clock shows %s, taken as %s time.\n", stamp(now).c_str(),
               saving ? "daylight-saving" : "standard");

    CTime::setInitDst(saving);
    CTime start;
    CTime end;
    if (!CTime::setTimeZone(standardOffset) || !CTime::setDstConfig(startRule, endRule, true) || !CTime::getDstConfig(now.year, start, end))
    {
        throw std::runtime_error("daylight saving cannot be turned on");
    }
    logLibName(levelInfo, moduleReport, "Daylight saving begins %s and ends %s.\n", stamp(start).c_str(), stamp(end).c_str());
    logLibName(levelInfo, moduleReport, " %-*s  %-*s  offset\n", stampWidth(), "UTC", stampWidth(), "local time");
    const unsigned long long startUTC = CTime::makeUTC(CTime::timeToSeconds(start), &standardOffset);
    const unsigned long long endUTC = CTime::makeUTC(CTime::timeToSeconds(end), &savingOffset);
    for (const unsigned long long utc : {startUTC - 1, startUTC, endUTC - 1, endUTC})
    {
        logRow(utc);
    }
    CTime::setDstConfig(startRule, endRule, false);  // a clock that is ahead goes back by an hour
}

}  // namespace Fleet
