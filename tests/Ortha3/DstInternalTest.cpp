#include <gtest/gtest.h>

#include <ctime>
#include <optional>
#include <regex>
#include <tuple>

#include "ortha/ortha3/Error.h"
#include "ortha/ortha3/Time.h"

#include "Src/Ortha3/DstManager.h"
#include "Src/Ortha3/TimerManagerInternal.h"
#include "support/LogLines.h"
#include "support/ManualClock.h"
#include "support/Sync.h"

namespace General::Ortha::Test {
namespace {

const DstConfigInfo northStart{3, 0, 2, 2, 0}, northEnd{11, 0, 1, 2, 0};  // in 2024 March 10 and November 3
const DstConfigInfo southStart{10, 0, 1, 2, 0}, southEnd{4, 0, 1, 3, 0};  // October 6 and April 7
// Rules, their dates in 2024, "01" if in winter a change is due with the flag 1 alone, "10" if with 0 alone, and what winter adds to local
// time.
using Half = std::tuple<DstConfigInfo, DstConfigInfo, std::int64_t, std::int64_t, const char*, int>;
const Half halves[] = {{northStart, northEnd, 1710036000, 1730599200, "01", 0}, {southStart, southEnd, 1728180000, 1712458800, "10", 3600}};
const std::string byManager = "set by DstManager, 127.0.0.1, local\n", byTester = "set by tester, here, test\n";
const std::string into = byManager + "told 1\nchange dst, dst flag is 1.\n", out = byManager + "told 0\nchange dst, dst flag is 0.\n";
const std::string paused = "dstmanager has been paused.\n", resumed = "resume dstmanager.\n", stopped = "stop dst manager.\n";

// Counts the readings of the manager's thread, that is of other threads than the test's: for a check, and for its log lines.
struct WatchedClock : ManualClock
{
    std::int64_t wallNanoseconds() override { return readings += std::this_thread::get_id() != tester, ManualClock::wallNanoseconds(); }
    std::atomic<int> readings{0};
    const std::thread::id tester = std::this_thread::get_id();
};

// Results are texts: the lines that were logged, and what the clock shows then.
struct DaylightSaving : ::testing::Test
{
    DaylightSaving()
    {
        setZone("UTC");
        CTime::attachConvertDstCallback({&DaylightSaving::told, this});
        CTime::attachModifyProc({&DaylightSaving::modified, this});
        CTime::setModifyTimeClientInfo({"tester", "here", "test"});
        show("2024-01-15 12:00:00");
        log.take();
    }
    ~DaylightSaving() override { CTime::attachSetCurrentTimeHookEx({}), manager.stopDstManager(); }

    static ModifyTimeClientInfo by() { return CTime::getModifyTimeClientInfo(); }
    void told(bool dst) { logInfo("told %d\n", dst); }
    bool modified(SystemTime) { return logInfo("set by %s, %s, %s\n", by().name, by().address, by().type) != 0; }
    bool allows() { return allowed; }
    bool setUtc(unsigned long long utc, int tolerance) { return logInfo("utc %llu within %d\n", utc, tolerance) != 0 && allowed; }
    void observed(unsigned long long old, unsigned long long utc) { logInfo("utc was %llu, is %llu\n", old, utc); }

    // The C runtime's view of times: seconds of a text, text of milliseconds.
    static std::int64_t at(const char* text, std::tm tm = {})
    {
        std::sscanf(text, "%d-%d-%d %d:%d:%d", &tm.tm_year, &tm.tm_mon, &tm.tm_mday, &tm.tm_hour, &tm.tm_min, &tm.tm_sec);
        tm.tm_year -= 1900, tm.tm_mon -= 1;
        return utcSeconds(tm);
    }
    static std::string text(std::int64_t milliSeconds)
    {
        const std::time_t seconds = milliSeconds / 1000;
        char text[40] = "";
        std::strftime(text, sizeof(text), "%Y-%m-%d %H:%M:%S.", std::gmtime(&seconds));
        return text + std::to_string(1000 + milliSeconds % 1000).substr(1);
    }
    static std::string text(const CTime& time) { return text(static_cast<std::int64_t>(CTime::timeToSeconds(time)) * 1000); }

    void show(const char* text, int milliSeconds = 999) { clock.setWall(at(text) * 1000 + milliSeconds); }
    std::string lines() { return std::regex_replace(log.text(), std::regex("\\[[^\\]]*\\]"), ""); }
    std::string result() { return lines() + text(clock.wallNanoseconds() / 1000000); }
    // Waits for the end of a check of the clock that was begun since `before` readings.
    std::string checked(int before)
    {
        EXPECT_TRUE(eventually([&] {
            CRecursiveGuard guard(TimerState::get().mutex);
            return clock.readings > before && !TimerState::get().threads->m_timer;
        }));
        return result();
    }
    std::string start(const DstConfigInfo& start, const DstConfigInfo& end, int before = 0)
    {
        before = clock.readings;
        return CTime::setDstConfig(start, end, true) ? checked(before) : "false";
    }
    std::string pass(int milliSeconds, int before = 0) { return before = clock.readings, clock.advance(milliSeconds), checked(before); }
    // One check of the clock, which then shows this and 999 milliseconds.
    std::string tickAt(std::int64_t seconds) { return clock.setWall(seconds * 1000 + 999 - tick), pass(tick); }
    std::string tickAt(const char* text) { return tickAt(at(text)); }
    std::string stop() { return CTime::setDstConfig({}, {}, false) ? result() : "false"; }

    static constexpr int tick = 1002;         // so that the timer is due
    WatchedClock& clock = *new WatchedClock;  // the timer manager reads it to the end
    LogLines log;
    DstManager& manager = *DstManager::instance();
    std::atomic<bool> allowed{false};
    CTime from, to;
};

TEST_F(DaylightSaving, RulesGiveTheirDatesInEveryYearUnlessTheyAreImpossible)
{
    manager.pause();
    EXPECT_TRUE(CTime::setDstConfig({2, 31, 0, 23, 59}, {4, 31, 0, 2, 0}, true) && CTime::getDstConfig(2025, from, to));
    EXPECT_EQ(text(from) + text(to), "2025-02-28 23:59:00.0002025-04-30 02:00:00.000");
    for (int i = 0; i < 35 * 137; ++i)
    {
        const int weekday = i / 137 % 7, week = i / 137 < 7 ? -1 : i / 137 / 7;
        ASSERT_TRUE(i % 137 != 0 || CTime::setDstConfig({2, weekday, week, 0, 0}, {10, 0, -1, 0, 0}, true));
        ASSERT_TRUE(CTime::getDstConfig(1970 + i % 137, from, to));
        EXPECT_EQ((CTime::timeToSeconds(from) / 86400 + 4) % 7, static_cast<unsigned>(weekday)) << text(from);
        EXPECT_TRUE(week > 0 ? (from.day + 6) / 7 == week : (from + 7 * 86400).month == 3) << text(from);
    }
    start(northStart, northEnd);
    const DstConfigInfo impossible[] = {{0, 1, 0, 0, 0},   {13, 1, 0, 0, 0}, {1, 0, 0, 0, 0},  {1, 32, 0, 0, 0},
                                        {1, 1, 5, 0, 0},   {1, 1, -2, 0, 0}, {1, 7, 1, 0, 0},  {1, 1, 0, 24, 0},
                                        {1, -1, -1, 0, 0}, {1, 1, 0, -1, 0}, {1, 1, 0, 0, 60}, {1, 1, 0, 0, -1}};
    for (const DstConfigInfo& rule : impossible)
    {
        EXPECT_FALSE(CTime::setDstConfig(rule, northEnd, true) || CTime::setDstConfig(northStart, rule, true));
        EXPECT_EQ(lines(), "DST config time invalid!\nstart dst manager failed!\nDST config time invalid!\nstart dst manager failed!\n");
    }
    EXPECT_TRUE(CTime::getDstConfig(2024, from, to));
    EXPECT_EQ(text(from) + text(to), "2024-03-10 02:00:00.0002024-11-03 02:00:00.000");
    for (const auto& [hour, minute, accepted] : {std::tuple(2, 0, false), {3, 0, false}, {3, 1, true}, {1, 59, true}})
    {
        EXPECT_EQ(CTime::setDstConfig(northStart, {3, 10, 0, hour, minute}, true), accepted) << hour << ":" << minute;
        EXPECT_EQ(lines().find("invalid dst config, start time: 2024-03-10 02:00:00, end time: 2024-03-10 0") == 0, !accepted);
        EXPECT_EQ(CTime::getDstConfig(2024, from, to), accepted);
    }
}

TEST_F(DaylightSaving, AChangeIsDueFromTwoSecondsAheadOnAndNotInTheHourThatRepeats)
{
    for (const auto& [first, last, s, e, winter, hour] : halves)
    {
        const std::pair<std::int64_t, const char*> moments[] = {
            {s - 3, "01"},    {s - 2, "11"},    {s + 3597, "11"}, {s + 3598, "10"}, {at("2024-01-01 00:00:00"), winter},
            {e - 3603, "10"}, {e - 3602, "00"}, {e - 3, "00"},    {e - 2, "01"},    {at("2024-12-31 23:59:59"), winter}};
        start(first, last);
        for (const auto& [now, due] : moments)
        {
            for (const bool flag : {false, true})
            {
                CTime::setDst(flag);
                lines();
                const std::string change = (flag ? out : into) + text((now + (flag ? -3598 : 3602)) * 1000);
                EXPECT_EQ(tickAt(now), due[flag] == '1' ? change : text(now * 1000 + 999)) << flag;
            }
        }
    }
}

TEST_F(DaylightSaving, NorthernYears)
{
    EXPECT_EQ(start(northStart, northEnd), "dst config, start time: 2024-03-10 02:00:00, end time: 2024-11-03 02:00:00\ntold 0\n"
                                           "DstManager init dst, dst flag is 0.\nstart dst manager ok!\n2024-01-15 12:00:00.999");
    EXPECT_EQ(tickAt("2024-03-10 01:59:58"), into + "2024-03-10 03:00:00.000");
    EXPECT_EQ(pass(tick), "2024-03-10 03:00:01.002");
    EXPECT_EQ(tickAt("2024-11-03 01:30:00"), "2024-11-03 01:30:00.999");
    EXPECT_EQ(tickAt("2024-11-03 01:59:58"), out + "2024-11-03 01:00:00.000");
    EXPECT_EQ(pass(tick), "2024-11-03 01:00:01.002");
    EXPECT_EQ(tickAt("2024-11-03 01:59:58"), "2024-11-03 01:59:58.999");
    EXPECT_EQ(tickAt("2025-01-01 00:00:00"), "year changed, increasing time: 2025-03-09 02:00:00, decreasing time: 2025-11-02 02:00:00.\n"
                                             "2025-01-01 00:00:00.999");
    EXPECT_EQ(tickAt("2025-03-09 01:59:58"), into + "2025-03-09 03:00:00.000");
    EXPECT_EQ(tickAt("2025-03-09 02:30:00"), out + "2025-03-09 01:30:02.000");  // the clock was moved into the hour that vanishes
    EXPECT_EQ(tickAt("2025-03-09 02:30:00"), into + "2025-03-09 03:30:02.000");
    show("2025-07-01 12:00:00", 0);
    EXPECT_EQ(start({3, 0, -1, 2, 0}, {10, 0, -1, 3, 0}),
              "dst config, start time: 2025-03-30 02:00:00, end time: 2025-10-26 03:00:00\nstart dst manager ok!\n2025-07-01 12:00:00.000");
    EXPECT_EQ(tickAt("2025-10-26 02:59:58"), out + "2025-10-26 02:00:00.000");
    EXPECT_EQ(stop(), stopped + "2025-10-26 02:00:00.000");
}

TEST_F(DaylightSaving, SouthernYearsBegunInDaylightSavingTime)
{
    EXPECT_TRUE(CTime::setDst(false) && CTime::setDst(false) && CTime::setInitDst(true));
    EXPECT_EQ(lines(), "told 0\nset ortha dst: 0\nset ortha dst: 0\ninit dst, dst flag is 1.\n");
    EXPECT_EQ(start(southStart, southEnd), "dst config, start time: 2024-10-06 02:00:00, end time: 2024-04-07 03:00:00\n"
                                           "start dst manager ok!\n2024-01-15 12:00:00.999");
    EXPECT_FALSE(CTime::setInitDst(false));
    EXPECT_EQ(lines(), "dst manager has been started!\n");
    EXPECT_EQ(tickAt("2024-04-07 02:59:58"), out + "2024-04-07 02:00:00.000");
    EXPECT_EQ(tickAt("2024-04-07 02:59:58"), "2024-04-07 02:59:58.999");
    EXPECT_EQ(tickAt("2024-10-06 01:59:58"), into + "2024-10-06 03:00:00.000");
    EXPECT_EQ(tickAt("2025-01-01 00:00:00"), "year changed, increasing time: 2025-10-05 02:00:00, decreasing time: 2025-04-06 03:00:00.\n"
                                             "2025-01-01 00:00:00.999");
    EXPECT_EQ(stop(), byManager + "told 0\nout dst, dst flag is 0.\n" + stopped + "2024-12-31 23:00:00.999");
    EXPECT_EQ(stop(), "dst manager not started.\n" + stopped + "2024-12-31 23:00:00.999");
    EXPECT_TRUE(CTime::setInitDst(false) && !CTime::getDstConfig(2025, from, to));
}

TEST_F(DaylightSaving, AClockThatIsNotSetLeavesTheFlagAndIsTriedAgainUntilOneChangeWasMade)
{
    start(northStart, northEnd);
    const std::string failed = "dst manager set time failed!\n";
    clock.refuse(true);
    EXPECT_EQ(tickAt("2024-03-10 01:59:58"), failed + "2024-03-10 01:59:58.999");
    clock.refuse(false);
    Callback<const SystemTimeEx&, int> failing{[](const SystemTimeEx&, int) { setLastError(0x1000000F); }};
    const CTime::SetTimeHookEx former = CTime::attachSetCurrentTimeHookEx(failing, true);
    EXPECT_EQ(tickAt("2024-03-10 01:59:59"), byManager + failed + "2024-03-10 01:59:59.999");
    CTime::attachSetCurrentTimeHookEx(former);
    CTime::attachModifyTimeVerifyHook({&DaylightSaving::allows, this});
    EXPECT_EQ(tickAt("2024-03-10 02:00:00"), "verification failed when modifying time!\n" + failed + "2024-03-10 02:00:00.999");
    allowed = true;
    manager.pause();
    EXPECT_EQ(tickAt("2024-03-10 02:00:01"), paused + "dst manager paused, exit.\n2024-03-10 02:00:01.999");
    EXPECT_EQ(tickAt("2024-03-10 02:00:02"), "dst manager paused, exit.\n2024-03-10 02:00:02.999");
    EXPECT_EQ(CTime::getDst(), 0);
    manager.resume();
    EXPECT_EQ(tickAt("2024-03-10 02:00:03"), resumed + into + "2024-03-10 03:00:05.000");
    EXPECT_EQ(pass(tick), "2024-03-10 03:00:06.002");
    clock.refuse(true);
    EXPECT_EQ(stop() + std::to_string(CTime::getDst()), failed + stopped + "2024-03-10 03:00:06.0021");
}

TEST_F(DaylightSaving, TheDatesWaitForACheckAndAnotherSettingOfTheClockForTheManagersOwn)
{
    start(northStart, northEnd);
    Gate maySet;
    std::atomic<int> settings{0};
    Callback<const SystemTimeEx&, int> hook{[&](const SystemTimeEx& time, int tolerance) {
        logInfo("set %d:%d.%d day %d dst %d within %d\n", time.hour, time.second, time.milliSecond, time.wday, time.dst, tolerance);
        EXPECT_TRUE(++settings && maySet.wait());
    }};
    CTime::attachSetCurrentTimeHookEx(hook);
    lines();
    clock.setWall(at("2024-03-10 01:59:58") * 1000 - tick);
    const auto begin = std::chrono::steady_clock::now();
    clock.advance(tick);
    std::optional<Blocking> dates;
    EXPECT_TRUE(eventually([&] { return !dates.emplace([this] { CTime::getDstConfig(2024, from, to); }).done(aMoment); }));
    EXPECT_EQ(settings, 0);
    Blocking other(
        [] { EXPECT_TRUE(CTime::setCurrentRealUTC(static_cast<unsigned long long>(at("2024-03-10 12:00:00")) * 1000 + 900, 7)); });
    EXPECT_TRUE(dates->done() && eventually([&] { return settings == 1; }));
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(1200));
    // While the clock is being set the dates are free. What passes until the manager is done is added to the other setting.
    EXPECT_TRUE(CTime::getDstConfig(2024, from, to));
    std::string seen;
    EXPECT_TRUE(eventually([&] { return (seen += lines()).find("pause and waiting for the callback to finish.\n") != std::string::npos; }));
    clock.advance(400);
    EXPECT_FALSE(other.done(aMoment));
    maySet.open();
    EXPECT_TRUE(other.done());
    EXPECT_NE(seen.find("set 3:0.0 day 0 dst 1 within 0\n"), std::string::npos) << seen;
    EXPECT_EQ(lines(), "told 1\nchange dst, dst flag is 1.\n" + paused + "set 13:1.300 day 0 dst 1 within 7\n" + resumed);
}

TEST_F(DaylightSaving, LocalTimeIsUtcWithZoneAndTheHourOfTheRules)
{
    const std::string tooEarly = "this time exceeds the minimum time.\n", tooLate = "this time exceeds the maximum time.\n";
    const std::string noZone = "the time zone is not set.\n", noManager = "the dst manager is not set.\n";
    const std::int64_t low = at("2000-01-01 00:00:00"), high = at("2038-01-01 00:00:00");
    CTimer once("Once");  // until it was called the manager's threads log that they begin
    once.start(TFunction1<void, void*>(), 1, 0, nullptr, 0);
    clock.advance(2);
    EXPECT_TRUE(eventually([&] { return once.isCalled() && !once.isRunning(); }));
    unsigned long long local = 1;
    int offset = 2;
    CTime::makeLocal(5, nullptr, &offset);
    CTime::makeLocal(5, &local, nullptr);
    EXPECT_EQ(std::tuple(local, offset, lines()), std::tuple(1u, 2, "input is NULL!!\ninput is NULL!!\n"));
    const auto check = [&](const std::vector<std::tuple<std::int64_t, std::int64_t, int, std::string>>& rows) {
        for (const auto& [utc, wantedLocal, wantedOffset, wantedLines] : rows)
        {
            lines();
            setPrintLogLevel(6);
            CTime::makeLocal(static_cast<unsigned long long>(utc), &local, &offset);
            setPrintLogLevel(4);
            EXPECT_EQ(std::tuple(static_cast<std::int64_t>(local), offset, lines()), std::tuple(wantedLocal, wantedOffset, wantedLines))
                << utc;
        }
    };
    check({{high, high, 0, noZone + noManager}, {low - 1, low, 0, noZone + noManager + tooEarly}});
    CTime::setInitDst(true);
    check({{low, low + 3600, 3600, noZone + noManager}});
    CTime::setTimeZone(-3600);
    check({{3599, 3599, 0, "invalid local time!\n"}});
    CTime::setTimeZone(3600);
    check({{low, low + 7200, 7200, noManager}, {INT64_MAX, INT64_MAX, 0, "invalid local time!\n"}});
    manager.pause();
    for (const auto& [first, last, s, e, winter, hour] : halves)
    {
        const int zone = 3600 + hour;
        start(first, last);
        check({{s - 3601, s - 1, 3600, ""},
               {s - 3600, s + 3600, 7200, ""},
               {e - 7201, e - 1, 7200, ""},
               {e - 7200, e - 3600, 3600, ""},
               {low - zone, low, zone, ""},
               {low - zone - 1, low, zone, tooEarly},
               {high - zone, high, zone, ""},
               {high - zone + 1, high, zone, tooLate}});
    }
}

TEST_F(DaylightSaving, AUtcSetsTheClockAndTheFlagWithinItsToleranceWhileTheManagerPauses)
{
    const auto set = [this](const char* utc, int milliSeconds, int tolerance) {
        lines();
        const bool wasSet = CTime::setCurrentRealUTC(static_cast<unsigned long long>(at(utc) * 1000 + milliSeconds), tolerance);
        return (wasSet ? "set: " : "not set: ") + result();
    };
    EXPECT_EQ(set("2024-01-15 12:00:00", 250, 0),
              "set: the time zone is not set.\n" + paused + byTester + resumed + "2024-01-15 12:00:00.250");
    CTime::setTimeZone(-3600);
    EXPECT_EQ(set("1970-01-01 00:59:59", 999, 0), "not set: invalid time!\n2024-01-15 12:00:00.250");
    CTime::setTimeZone(3600);
    start(northStart, northEnd);
    EXPECT_EQ(set("2024-07-01 12:00:00", 250, 0),
              "set: " + paused + byTester + "told 1\nset real UTC, change dst: 1\n" + resumed + "2024-07-01 14:00:00.250");
    EXPECT_EQ(set("2024-07-01 12:00:05", 0, 5), "set: " + paused + resumed + "2024-07-01 14:00:00.250");
    EXPECT_EQ(set("2024-07-01 12:00:06", 0, 5), "set: " + paused + byTester + resumed + "2024-07-01 14:00:06.000");
    CTime::attachModifyTimeVerifyHook({&DaylightSaving::allows, this});
    const std::string veto = "verification failed when modifying time!\n";
    EXPECT_EQ(set("2024-01-15 12:00:00", 0, 0), "not set: " + paused + veto + resumed + "2024-07-01 14:00:06.000");
    allowed = true;
    clock.refuse(true);
    EXPECT_EQ(set("2024-01-15 12:00:00", 0, 0), "not set: " + paused + resumed + "2024-07-01 14:00:06.000");
    clock.refuse(false);
    EXPECT_EQ(pass(tick), "2024-07-01 14:00:07.002");
    EXPECT_EQ(tickAt("2024-11-03 01:59:58"), out + "2024-11-03 01:00:00.000");
    // With a hook.
    CTime::attachModifyRealUTCProc({&DaylightSaving::observed, this});
    CTime::attachSetCurrentRealUTCHook({&DaylightSaving::setUtc, this}, true);
    EXPECT_EQ(set("1970-01-01 00:00:00", 7, 3), "set: utc 7 within 3\nutc was 1730595600000, is 7\n2024-11-03 01:00:00.000");
    CTime::attachSetCurrentRealUTCHook({&DaylightSaving::setUtc, this}, false);
    EXPECT_EQ(set("1970-01-01 00:00:00", 7, 3), "set: utc 7 within 3\n2024-11-03 01:00:00.000");
    allowed = false;
    EXPECT_EQ(set("1970-01-01 00:00:00", 7, 3), "not set: " + veto + "2024-11-03 01:00:00.000");
    CTime::attachModifyTimeVerifyHook({});
    CTime::attachSetCurrentRealUTCHook({&DaylightSaving::setUtc, this}, true);
    EXPECT_EQ(set("1970-01-01 00:00:00", 7, 3), "set: utc 7 within 3\n2024-11-03 01:00:00.000");
}

}  // namespace
}  // namespace General::Ortha::Test
