#include <gtest/gtest.h>
#include <stdlib.h>

#include <climits>
#include <ctime>
#include <regex>
#include <string>
#include <thread>
#include <tuple>
#include <utility>

#include "ortha/ortha3/Error.h"
#include "ortha/ortha3/PrintLog.h"
#include "ortha/ortha3/Time.h"

#include "support/Host.h"
#include "support/LogLines.h"
#include "support/ManualClock.h"

namespace {

using namespace General::Ortha;
using namespace General::Ortha::Test;

std::string text(const SystemTime& t)
{
    char buf[100];
    std::snprintf(buf, sizeof(buf), "%d-%d-%d %d:%d:%d/%d ", t.year, t.month, t.day, t.hour, t.minute, t.second, t.wday);
    return buf;
}
const std::string earlyText = text(CTime::minTime) + text(CTime::maxTime);  // before main

// What happened since the last call: the calls of hooks and observers, then the lines.
std::string trail;
std::string told(LogLines& lines)
{
    return std::exchange(trail, "") + std::regex_replace(lines.text(), std::regex(R"(\[\S* (\w+) [^\]]*\])"), "$1: ");
}

TEST(TimeZones, TheTableHoldsTheZonesOfItsNames)
{
    const char* const names[] = {"+00:00", "+01:00", "+02:00", "+03:00", "+03:30", "+04:00", "+04:30", "+05:00", "+05:30", "+05:45",
                                 "+06:00", "+06:30", "+07:00", "+08:00", "+09:00", "+09:30", "+10:00", "+11:00", "+12:00", "+13:00",
                                 "-01:00", "-02:00", "-03:00", "-03:30", "-04:00", "-05:00", "-06:00", "-07:00", "-08:00", "-09:00",
                                 "-10:00", "-11:00", "-12:00", "-04:30", "+10:30", "+14:00", "-09:30", "+08:30", "+08:45", "+12:45"};
    for (int i = 0; i < 40; ++i)
    {
        const int seconds = std::atoi(names[i] + 1) * 3600 + std::atoi(names[i] + 4) * 60;
        EXPECT_EQ(CTime::getTimeZonefromTable(i), names[i][0] == '-' ? -seconds : seconds) << i;
    }
    LogLines lines;
    EXPECT_TRUE(CTime::getTimeZonefromTable(-1) == 0 && CTime::getTimeZonefromTable(40) == 0);
    EXPECT_EQ(told(lines),
              "error: CTime::getTimeZonefromTable, zoneIndex error:-1\nerror: CTime::getTimeZonefromTable, zoneIndex error:40\n");
}

TEST(TimeZones, ZoneAndFlagBringALocalTimeToUTCAsFarAsTheyAreSet)
{
    static ManualClock& clock = *new ManualClock;  // the timers' thread, which setDst() starts, reads it to the end
    setZone("WST3");
    clock.setWall(1714564800999);
    LogLines lines;
    setPrintLogLevel(6);
    const std::string invalid = "0 error: invalid local time!\n", noDst = "debug: the dst manager is not set.\n";
    const auto utc = [&](unsigned long long local, const int* offset = nullptr) {
        lines.take();
        const unsigned long long result = CTime::makeUTC(local, offset);
        return std::to_string(result) + " " + told(lines);
    };
    int zone = 7;
    const int east = 100, west = -100;
    CTime::UTCTimeDef embed{7, 7, 7};
    EXPECT_TRUE(!CTime::setTimeZone(50401) && !CTime::setTimeZone(-43201) && !CTime::getTimeZone(&zone) && zone == 7);
    EXPECT_EQ(utc(100), "100 debug: the time zone is not set.\n" + noDst);
    EXPECT_TRUE(CTime::setTimeZone(-43200) && CTime::setTimeZone(50400) && CTime::setTimeZone(28800) && !CTime::setTimeZone(50401));
    EXPECT_TRUE(CTime::getTimeZone(&zone) && zone == 28800 && !CTime::getUTCForEmbed(embed) && embed.utc == 7);
    EXPECT_EQ(utc(28800) + utc(28799), "0 " + noDst + invalid);
    setPrintLogLevel(4);  // threads that start from here on tell of it
    for (const int dst : {1, 0})
    {
        CTime::setDst(dst == 1);
        EXPECT_EQ(utc(32401), dst == 1 ? "1 " : "3601 ");
        EXPECT_TRUE(CTime::getUTCForEmbed(embed) && embed.timeZone == 28800 && embed.dst == dst);
        EXPECT_EQ(embed.utc, 1714564800u - 10800 - 28800 - (dst == 1 ? 3600 : 0));
    }
    EXPECT_EQ(utc(99, &west) + utc(100, &east) + utc(99, &east) + utc(ULLONG_MAX, &east), "199 0 " + invalid + invalid);
    EXPECT_EQ(utc(LLONG_MAX, &west) + utc(1ull << 63, &east), invalid + "9223372036854775708 ");
}

TEST(ClientInfo, IsEachThreadsOwnCopy)
{
    LogLines lines;
    const auto info = [&] {
        const ModifyTimeClientInfo set = CTime::getModifyTimeClientInfo();
        return std::string(set.name) + "," + set.address + "," + set.type + told(lines);
    };
    std::string name = "Web";
    CTime::setModifyTimeClientInfo({name.c_str(), "10.0.0.1", nullptr});
    name = "gone";
    std::thread([&] {
        EXPECT_EQ(info(), ",,error: get thread specific failed!\n");
        CTime::setModifyTimeClientInfo({"other, and long enough to need memory of its own", "", "local"});
    }).join();
    CTime::setModifyTimeClientInfo(CTime::getModifyTimeClientInfo());
    EXPECT_EQ(info(), "Web,10.0.0.1,");
}

TEST(Clocks, FollowTheWallClockAndTheSystemsZone)
{
    ManualClock clock;
    const unsigned long long interval = CTime::getCurrentMilliSecond();
    for (const auto& [zone, now] : {std::pair("UTC0", "2024-5-10 12:34:56/5 "), std::pair("AHD-12:30", "2024-5-11 1:4:56/6 ")})
    {
        setZone(zone);
        clock.setWall(0);
        EXPECT_EQ(CTime::getCurrentTime().year, 1970);
        clock.setWall(1715344496789);
        EXPECT_EQ(text(CTime::getCurrentTime()) + text(CTime::getCurTimeForPrint()), now + std::string(now));
        for (const SystemTimeEx& t : {CTime::getCurrentTimeEx(), CTime::getCurTimeExForPrint(5)})
        {
            EXPECT_EQ(text({t.year, t.month, t.day, t.wday, t.hour, t.minute, t.second}), now);
            EXPECT_TRUE(t.milliSecond == 789 && t.dst == 0);
        }
        EXPECT_TRUE(CTime::getCurrentUTCtime() == 1715344496 && CTime::getCurrentUTCMilliSecond() == 1715344496789);
        EXPECT_TRUE(CTime::getCurrentRealUTC() == 1715344496789 && CTime::getCurrentMilliSecond() == interval);
    }
}

struct SettingTime : ::testing::Test
{
    SettingTime() { setZone("WST5WDT,M3.2.0,M11.1.0"), clock.setWall(july * 1000 + 900); }
    static bool observe(SystemTime time) { return trail += "observer " + text(time), false; }
    static SystemTimeEx record(const CTime& t) { return {t.year, t.month, t.day, 9, t.hour, t.minute, t.second, 7, 1}; }
    long long wall() { return clock.wallNanoseconds() / 1000000; }

    static constexpr long long july = 1720000000;
    const CTime now{2024, 7, 3, 5, 46, 40};  // the same
    ManualClock clock;
    LogLines lines;
};

TEST_F(SettingTime, TheDefaultHooksSetTheLocalClockWithinItsLimitsBeyondTheTolerance)
{
    EXPECT_EQ(earlyText, "2000-1-1 0:0:0/6 2038-1-1 0:0:0/5 ");
    CTime odd;
    odd.year = 2023, odd.month = 2, odd.day = 30, odd.hour = 25;
    const std::tuple<CTime, const char*, long long> cases[] = {{CTime(2024, 1, 2, 3, 4, 5), "2024-1-2 3:4:5/2 ", 1704182645},
                                                               {odd, "2023-2-28 23:59:59/2 ", 1677646799},
                                                               {CTime(1999, 12, 31, 23, 59, 59), "2000-1-1 0:0:0/6 ", 946702800},
                                                               {CTime(2040, 1, 1, 0, 0, 1), "2038-1-1 0:0:0/5 ", 2145934800}};
    const std::string alone = "info: CTime::setCurrentTime() success without callback function\n";
    for (const auto& [time, expected, utc] : cases)
    {
        EXPECT_TRUE(CTime::setCurrentTimeEx(time, 5) && wall() == utc * 1000) << expected << wall();
        EXPECT_TRUE(CTime::setCurrentTime(record(time), 0) && wall() == utc * 1000 + 7) << expected << wall();
        EXPECT_EQ(text(CTime::getCurrentTime()) + told(lines), expected + alone + alone);
    }
    for (const int seconds : {5, -5, 6, -6})
    {
        const bool moves = seconds == 6 || seconds == -6;
        clock.setWall(july * 1000 + 900);
        EXPECT_TRUE(CTime::setCurrentTimeEx(now + seconds, 5) && wall() == july * 1000 + (moves ? seconds * 1000 : 900));
        clock.setWall(july * 1000 + 900);
        EXPECT_TRUE(CTime::setCurrentTime(record(now + seconds), 5) && wall() == july * 1000 + (moves ? seconds * 1000 + 7 : 900));
        EXPECT_EQ(told(lines), moves ? alone + alone : "");
    }
}

TEST_F(SettingTime, AFailureOrAVetoLeavesClockAndObserversAlone)
{
    CTime::attachModifyProc(&observe);
    clock.refuse(true);
    EXPECT_TRUE(!CTime::setCurrentTimeEx(now, 0) && getLastError() == 0x1000000E);
    setLastError(5);
    EXPECT_TRUE(!CTime::setCurrentTime(record(now), 0) && getLastError() == 0x1000000E && told(lines).empty());
    clock.refuse(false);
    for (const int older : {0x1000000E, 0x1000000F, 5})
    {
        setLastError(older);
        EXPECT_TRUE(CTime::setCurrentTimeEx(now, 0) == (older == 5) && CTime::setCurrentTime(record(now), 0) == (older == 5));
        EXPECT_EQ(told(lines), "observer 2024-7-3 5:46:40/3 observer 2024-7-3 5:46:40/3 ");
    }
    CTime::attachModifyTimeVerifyHook(+[] { return trail += "asked ", false; });
    CTime::setCurrentTime(now + 9, 0);
    EXPECT_TRUE(!CTime::setCurrentTimeEx(now + 9, 0) && !CTime::setCurrentTime(record(now + 9), 0) && getLastError() == 5);
    const std::string veto = "error: verification failed when modifying time!\n";
    EXPECT_EQ(told(lines), "asked asked asked " + veto + veto + veto);
    CTime::attachModifyTimeVerifyHook(+[] { return true; });
    EXPECT_TRUE(wall() == july * 1000 + 7 && CTime::setCurrentTimeEx(now + 9, 0) && wall() == july * 1000 + 9000);
}

TEST_F(SettingTime, ObserversAreCalledInOrderAndMayAttachOthersAndSetTheClock)
{
    CTime::attachModifyProc(+[](SystemTime time) {
        trail += "first ";
        return time.second == 40 && CTime::attachModifyProc(&observe) && CTime::setCurrentTimeEx(CTime(2024, 7, 3, 5, 46, 41), 0);
    });
    CTime::attachModifyProc(+[](SystemTime time) { return trail += "second " + text(time), false; });
    CTime::setCurrentTime(now, 0);
    EXPECT_EQ(told(lines), "first first second 2024-7-3 5:46:41/3 observer 2024-7-3 5:46:41/3 second 2024-7-3 5:46:40/3 ");
}

TEST_F(SettingTime, AHookTakesTheDefaultsPlaceAndObserversHearOfItIfAsked)
{
    CTime::attachModifyProc(&observe);
    const CTime::SetTimeHook hook(
        +[](const CTime& time, int tolerance) { trail += "hook " + text(time) + std::to_string(tolerance) + " "; });
    const CTime::SetTimeHookEx hookEx(+[](const SystemTimeEx& t, int tolerance) {
        EXPECT_TRUE(t.milliSecond == 7 && t.dst == 0 && tolerance == 0);
        trail += "hookEx " + text({t.year, t.month, t.day, t.wday, t.hour, t.minute, t.second});
        setLastError(0x1000000F);
    });
    const auto setBoth = [&] {
        setLastError(0);
        EXPECT_TRUE(CTime::setCurrentTimeEx(now, 3));
        const bool done = CTime::setCurrentTime(record(now), 0);
        return (done ? "" : "failed ") + told(lines);
    };
    const std::string observer = "observer 2024-7-3 5:46:40/3 ", called = "failed hook 2024-7-3 5:46:40/3 3 ",
                      calledEx = "hookEx 2024-7-3 5:46:40/3 ";
    const CTime::SetTimeHook standard = CTime::attachSetCurrentTimeHook(hook);
    const CTime::SetTimeHookEx standardEx = CTime::attachSetCurrentTimeHookEx(hookEx);
    EXPECT_EQ(setBoth(), called + calledEx);
    EXPECT_TRUE(CTime::attachSetCurrentTimeHook(hook, true) == hook && CTime::attachSetCurrentTimeHookEx(hookEx, true) == hookEx);
    EXPECT_EQ(setBoth(), called + observer + calledEx + observer);
    EXPECT_TRUE(CTime::attachSetCurrentTimeHook(standard) == hook && CTime::attachSetCurrentTimeHookEx({}) == hookEx &&
                wall() == july * 1000 + 900);
    clock.setWall(0);
    EXPECT_EQ(setBoth(), observer + observer) << "the default tells them itself";
    EXPECT_TRUE(wall() == july * 1000 + 7 && CTime::attachSetCurrentTimeHookEx(hookEx) == standardEx);
}

}  // namespace
