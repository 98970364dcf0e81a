#include "ortha/ortha3/Time.h"

#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <random>
#include <regex>
#include <string>

#include "support/Capture.h"
#include "support/Host.h"
#include "support/LogLines.h"

namespace {

using namespace General::Ortha;
using namespace General::Ortha::Test;

constexpr long long lastSecond = 4323283199;  // 2106-12-31 23:59:59

std::string text(const SystemTime& t)
{
    char buf[100];
    std::snprintf(buf, sizeof(buf), "%d-%d-%d %d:%d:%d/%d", t.year, t.month, t.day, t.hour, t.minute, t.second, t.wday);
    return buf;
}

// Each row is "input => result", with the lines that are logged at the result's end.
void expectRows(const std::function<std::string(const std::string&)>& result, std::initializer_list<const char*> rows)
{
    LogLines lines;
    for (const std::string row : rows)
    {
        const std::size_t arrow = row.find(" => ");
        const std::string output = result(row.substr(0, arrow));
        const std::string log = std::regex_replace(lines.text(), std::regex(R"(\[\S* (\w+) [^\]]*\])"), "#$1 ");
        EXPECT_EQ(output + std::regex_replace(log, std::regex("this:(0x)?[0-9a-f]+"), "this:@"), row.substr(arrow + 4)) << row;
    }
}

TEST(CalendarTime, EveryDayAgreesWithTheRuntimeInBothDirections)
{
    std::tm tm{};
    for (std::time_t i = 0, value = 0; value <= lastSecond; value += i++ % 3 == 2 ? 1 : 43199 + i % 2)
    {
        tm = *std::gmtime(&value);
        const SystemTime t{tm.tm_year + 1900, tm.tm_mon + 1, tm.tm_mday, tm.tm_wday, tm.tm_hour, tm.tm_min, tm.tm_sec};
        const CTime built(t.year, t.month, t.day, t.hour, t.minute, t.second);
        ASSERT_EQ(text(CTime(static_cast<unsigned long long>(value), false)) + text(built), text(t) + text(t));
        ASSERT_EQ(CTime::timeToSeconds(built), static_cast<unsigned long long>(utcSeconds(tm)));
    }
}

TEST(CalendarTime, ImpossibleFieldsAreHeldToTheNearestPossibleOnes)
{
    const auto held = [](const std::string& fields) {
        SystemTime t;
        std::sscanf(fields.c_str(), "%d,%d,%d %d:%d:%d", &t.year, &t.month, &t.day, &t.hour, &t.minute, &t.second);
        const CTime time(t.year, t.month, t.day, t.hour, t.minute, t.second);
        return CTime::timeToSeconds(t) == CTime::timeToSeconds(time) ? text(time) : "other seconds";
    };
    expectRows(held, {"0,0,0 0:0:0 => 1970-1-1 0:0:0/4", "2107,1,1 0:0:1 => 2106-1-1 0:0:1/5", "2024,13,0 0:0:0 => 2024-12-1 0:0:0/0",
                      "2023,2,30 25:0:0 => 2023-2-28 23:59:59/2", "2024,2,29 24:-7:-7 => 2024-2-29 23:59:59/4",
                      "2024,0,32 0:0:0 => 2024-1-31 0:0:0/3", "2024,2,30 0:60:-1 => 2024-2-28 0:59:0/3",
                      "2000,2,29 -1:-1:60 => 2000-2-29 0:0:59/2", "2100,2,29 1:2:3 => 2100-2-28 1:2:3/0",
                      "1969,4,31 0:0:0 => 1970-4-30 0:0:0/4", "-2147483648,-2147483648,-2147483648 0:0:0 => 1970-1-1 0:0:0/4",
                      "2147483647,2147483647,2147483647 2147483647:0:-2147483648 => 2106-12-31 23:59:59/5"});
}

TEST(CalendarTime, ArithmeticIsExactAndEndsWithTheCalendarAndOrderIsThatOfTheFields)
{
    std::mt19937_64 random(1);
    for (int i = 0; i < 20000; ++i)
    {
        const unsigned long long a = random() % (lastSecond + 1), b = random() % (lastSecond + 1);
        const auto distance = static_cast<long long>(b - a);
        CTime from(a, false), to(b, false);
        ASSERT_EQ(text(from + distance) + text(from - -distance), text(to) + text(to));
        ASSERT_TRUE(to - from == distance && (from < to) == (a < b) && (from >= to) == (a >= b) && (from += distance) == to);
        to.wday = to.isdst = 9;
        ASSERT_TRUE(from == to && from <= to && from >= to && !(from < to || from > to || from != to));
    }
    const CTime first(0, false), last(ULLONG_MAX, false);
    EXPECT_TRUE(first - 1 == first && last + 1 == last && text(last) == "2106-12-31 23:59:59/5" && first - last == -lastSecond);
    for (const long long far : {lastSecond, LLONG_MAX, -lastSecond, LLONG_MIN})
    {
        const CTime up = far > 0 ? last : first, down = far > 0 ? first : last;
        EXPECT_TRUE(first + far == up && first - far == down && last + far == up && last - far == down) << far;
    }
    CTime odd = last;
    odd.month = 13, odd.day = -1;
    EXPECT_TRUE(last < odd && odd > last && last <= odd && !(odd <= last)) << "as the fields stand";
}

TEST(CalendarTime, TheRuntimesZoneStandsBetweenFieldsAndSecondsUntilItIsDisabled)
{
    const auto inZone = [](const std::string& zone) {
        return runInChild([&] {
                   setZone(zone == "off" ? "EST-1" : zone.c_str());
                   const CTime july(1720000000ull + (zone == "off" ? static_cast<unsigned int>(CTime::disableTimezone()) : 0u), false);
                   std::printf("%ld %llu %llu ", CTime::getTimeZone(), CTime().makeTime(), july.makeTime());
                   std::printf("%s %s ", text(CTime(0)).c_str(), text(CTime(1ull << 63)).c_str());
                   std::printf("%s %s", text(CTime(3601, true)).c_str(), text(CTime(1720000000)).c_str());
               })
            .output;
    };
    expectRows(inZone, {"EST-1 => -3600 0 1719996400 1970-1-1 1:0:0/4 1970-1-1 0:0:0/4 1970-1-1 2:0:1/4 2024-7-3 10:46:40/3",
                        "WST5WDT => 18000 18000 1720018000 1970-1-1 0:0:0/4 1970-1-1 0:0:0/4 1970-1-1 0:0:0/4 2024-7-3 4:46:40/3",
                        "WST0:59:59 => 3599 3599 1720003599 1970-1-1 0:0:0/4 1970-1-1 0:0:0/4 1970-1-1 0:0:2/4 2024-7-3 8:46:41/3",
                        "off => 0 0 1720000000 1970-1-1 0:0:0/4 1970-1-1 0:0:0/4 1970-1-1 1:0:1/4 2024-7-3 9:46:40/3"});
}

TEST(TimeText, TheFirstTextOfAProcessNeedsNoMemory)
{
    char buf[32];
    const unsigned long before = allocationCount();
    CTime::minTime.format(buf, "yyyy-MM-dd HH:mm:ss", 0);
    EXPECT_EQ(allocationCount(), before) << buf;
}

TEST(TimeText, TemplatesWithThePreferencesAndOptionsOfEachCall)
{
    const auto shown = [](const char* preferences, const CTime& time) {
        return [time, preferences](const std::string& row) {  // options, template
            CTime::setFormatString(preferences);
            std::string buf(64, '#');
            time.format(row == "null" ? nullptr : buf.data(), row.c_str() + 2, row[0] - '0');
            return row == "null" ? "" : buf.substr(0, buf.find('#') - 1);
        };
    };
    constexpr char iso[] = "yyyy-MM-dd HH:mm:ss", dots[] = "dd.MM.yyyy hh:mm:ss tt";
    const CTime am(2024, 3, 5, 7, 8, 9), pm(2024, 3, 5, 13, 8, 9), noon(2024, 3, 5, 12, 0, 0), night(2106, 12, 31, 0, 59, 59);
    expectRows(shown(iso, am),
               {"0 yyyy-MM-dd HH:mm:ss => 2024-03-05 07:08:09", "0 yy/M/d H:m:s => 24-3-5 7:8:9", "0 d => 5", "0 hHhH:H:h Hh => 07:7:7 07",
                "1 y.MMM.ddd HHH:mmm:sss => 24.03.05 07:08:09", "0   t HH  tt:mm =>  07:08", "0 MM-d => 03-5",
                "0 d|M|yyyy|MM|dd => 2024|03|05||", "0 yyy|y => 2024|", "0 %n%% Day => %n%% Da24", "null => #error buf is NULL!!\n"});
    expectRows(shown(iso, pm),
               {"0 dd/MM/yyyy hh t => 2024-03-05 13", "1 dd/MM/yyyy hh t => 2024/03/05 13", "4 H:hH => 1:01",
                "2 dd/MM/yyyy hh t => 05-03-2024 13", "3 dd/MM/yyyy hh t => 05/03/2024 13", "4 dd/MM/yyyy hh t => 2024-03-05 01 PM",
                "5 dd/MM/yyyy hh t => 2024/03/05 01 PM", "6 dd/MM/yyyy hh t => 05-03-2024 01 PM", "7 dd/MM/yyyy hh t => 05/03/2024 01 PM"});
    expectRows(shown(dots, pm),
               {"0 yyyy-MM-dd HH:mm:ss tt => 05.03.2024 01:08:09 PM", "4 yyyy-MM-dd HH t => 05.03.2024 13", "2 MM/dd/yyyy => 03.05.2024",
                "2 MM-yyyy => 2024.03#error setFormat dateFormat is invalid,set default separator: ymd \n"});
    expectRows(shown("M/dy", am), {"0 yyyy-M-d => 3/5/2024", "0 yyyyMM => 032024"});
    expectRows(shown(dots, noon), {"0 hh:m tT => 12:0 PMT"});
    expectRows(shown(dots, night), {"0 H:m tttt t => 12:59 AM AM", "0 yy => 06"});
    CTime high, low;
    high.year = high.month = high.day = 12345, low.year = low.month = low.day = -5;
    expectRows(shown(iso, high), {"0 yyyy-M-dd => 1234-1234-1234", "0 yy|M => 45|1234"});
    expectRows(shown(iso, low), {"0 yyyy|M|dd => -005|-5|-5"});
}

TEST(TimeText, WhatATemplateDoesNotTellIsTheDefaultAndLeavesALine)
{
    const auto preferences = [](const std::string& format) {  // separator, order, 12-hour display
        CTime::setFormatString(format == "null" ? nullptr : format.c_str());
        EXPECT_TRUE(CTime::getFormat() == (format == "null" ? "" : format.c_str()));
        return CTime::getSeparator() + std::to_string(CTime::getDateFormat()) + (CTime::get12Hour() ? "h" : "");
    };
    expectRows(
        preferences,
        {"MM-dd-yyyy/hh.mm => .1h", "MM-dd/ => /1", "dd-MM HH => -2", "y.M => .0",
         "y/d => /0#error setFormat dateFormat is invalid,set default separator: ymd \n",
         "null => -0#error setFormat separator is invalid,set default separator: - \n#error setFormat dateFormat is invalid,set default "
         "separator: ymd \n"});
}

TEST(TimeText, ParsingReadsSixNumbersOrEmptiesTheRecordWithALine)
{
    const auto parsed = [](const char* format) {
        return [format](const std::string& input) {
            CTime time(1999, 9, 9, 9, 9, 9);
            const bool done = time.parse(input.c_str(), format, CTime::formatAsWritten);
            return (done ? "" : "failed ") + text(time);
        };
    };
    expectRows(parsed("yyyy-MM-dd HH:mm:ss"),
               {"2024-03-05 07:08:09 => 2024-3-5 7:8:9/2", "x2024-03-05 07:08 => 1970-12-3 5:7:8/4",
                "2024-02-31 10:00:00 => 2024-2-28 10:0:0/3", "99999999999999999999-03-05 07:08:4294967305 => 2106-3-5 7:8:59/5",
                "2024-03-05 07:08: => failed 0-0-0 0:0:0/4#error this:@ CTime parser input information is not enough.\n"});
    expectRows(parsed("MM/dd/yyyy"), {"03/05/2024 7:8:9 => 2024-3-5 7:8:9/2"});
    expectRows(parsed("dMy"), {"05.03.2024T07-08-09 and 10 PM => 2024-3-5 7:8:9/2"});
    expectRows(parsed("yyyy dd MM"), {"2024 3 5 7 8 9 => 1999-9-9 7:8:9/4"});
    expectRows(
        parsed("yMd hh"),
        {"2024-3-5 12:0:0 AM => 2024-3-5 0:0:0/2", "2024-3-5 11:0:0AM => 2024-3-5 11:0:0/2", "2024-3-5 12:0:0 PM => 2024-3-5 12:0:0/2",
         "2024-3-5 0:0:0 AM-PM => 2024-3-5 12:0:0/2",
         "2024-3-5 13:0:0 PM => failed 0-0-0 0:0:0/4#error this:@ CTime parser input hour format is not accord with real value format.\n",
         "2024-3-5 7:8:9 pm => failed 0-0-0 0:0:0/4#error this:@ 12 hours time point is unclear.\n"});
}

TEST(TimeText, TheFixedFormIsReadWithAnOffsetAndWrittenInUTCWhateverTheZone)
{
    setZone("EST-9");
    const auto read = [](const std::string& input) {
        unsigned long long utc = 5;
        const bool done = CTime::convertTZtoUTC(input == "null" ? nullptr : input.c_str(), &utc);
        return std::to_string(utc) + (done ? "" : " failed");
    };
    expectRows(
        read, {"2024-05-01T12:00:00Z => 1714564800", "2024-05-01T20:00:00+08:00 => 1714564800", "2024/05/01 12:00:00+05-30 => 1714584600",
               "2024-05-01 12:00:00 05:00 => 1714582800", "2024-05-01T12:00:00+14:00 => 1714514400", "2024-02-30T24:00:00Z => 1709164799",
               "2024-05-01T12:00:00-12:00 => 1714608000", "1970-01-01T00:00:00+14:00 => 0", "2106-12-31T23:59:59-12:00 => 4323283199",
               "2024-05-01T12:00:00+14:01 => 0 failed#error invalid timezone!\n",
               "2024-05-01T12:00:00-12:01 => 0 failed#error invalid timezone!\n",
               "2024-05-01T12:00:00+9999999999:0 => 0 failed#error invalid timezone!\n", "null => 5 failed#error buf or utcSec is NULL!!\n",
               "2024/05/01 12:00:00 08:00 => 0 failed#error convert TZ to UTC, input information is not enough.\n",
               "2024-05-01T12:00:00+08 => 0 failed#error convert TZ to UTC, input information is not enough.\n"});
    const auto written = [](const std::string& input) {  // seconds, "length" or "length+" for an offset
        char buf[] = ".....................";
        const std::size_t blank = input.find(' ');
        CTime::convertUTCtoTZ(std::stoull(input), buf, std::stoi(input.substr(blank)), input.back() == '+');
        return std::string(buf);
    };
    expectRows(written,
               {"0 21 => 1970-01-01T00:00:00Z", "1714564800 99 => 2024-05-01T12:00:00Z", "18446744073709551615 21 => 2106-12-31T23:59:59Z",
                "0 20 => .....................#error buf space is not large enough\n",
                "0 -1 => .....................#error buf space is not large enough\n",
                "0 21+ => .....................#error addOffset is temporarily not supported.\n"});
}

}  // namespace
