#include "ortha/Time.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <time.h>

#include <climits>
#include <string>
#include <vector>

#include "support/Host.h"
#include "support/LogLines.h"

namespace {

using NewTime = General::Ortha::CTime;
using std::string;

const string utc = "UTC0", north = "EST5EDT,M3.2.0,M11.1.0", south = "LHST-10:30LHDT-11,M10.1.0,M4.1.0";

struct OlderTime : testing::TestWithParam<string>
{
    OlderTime() { General::Ortha::Test::setZone(zone.c_str()); }
    const string zone = GetParam();
};
INSTANTIATE_TEST_SUITE_P(Zone, OlderTime,
                         testing::ValuesIn(General::Ortha::Test::zonesHaveRules ? std::vector{utc, north, south} : std::vector{utc}));

string text(const SystemTime& t)
{
    char buf[100];
    std::snprintf(buf, sizeof(buf), "%d-%d-%d %d:%d:%d/%d ", t.year, t.month, t.day, t.hour, t.minute, t.second, t.wday);
    return buf;
}

template <class Time>
Time built(const SystemTime& t)
{
    return {t.year, t.month, t.day, t.hour, t.minute, t.second};
}

TEST_P(OlderTime, RollsOverAndCountsSecondsWhereTheNewerClassHoldsAndCountsFields)
{
    const SystemTime rows[] = {{2023, 13, 1}, {2023, 2, 30}, {2024, 2, 29, 0, 25, -1, 61}, {2107, 1, 0, 0, -1}};
    string older, newer;
    for (const SystemTime& fields : rows)
    {
        older += text(built<CTime>(fields)), newer += text(built<NewTime>(fields));
    }
    EXPECT_EQ(older, "2024-1-1 0:0:0/1 2023-3-2 0:0:0/4 2024-3-1 1:0:1/5 2106-12-30 23:0:0/4 ");
    EXPECT_EQ(newer, "2023-12-1 0:0:0/5 2023-2-28 0:0:0/2 2024-2-29 23:59:59/4 2106-1-1 0:0:0/5 ");
    const string first = zone == utc ? "1970-1-1 0:0:0/4 " : zone == north ? "1969-12-31 19:0:0/3 " : "1970-1-1 11:0:0/4 ";
    EXPECT_EQ(text(CTime(1969, 12, 30, 0, 0, INT_MIN)) + text(CTime(5ull) - 6) + text(CTime(5ull) + LLONG_MIN), first + first + first);
    const CTime last(67768036191676799ull), none(ULLONG_MAX);  // the runtime counts years from 1900: with them, the last fits no more
    EXPECT_TRUE((last.year == 0 || last.makeTime() == 67768036191676799ull) && none.year == 0) << text(last);

    struct
    {
        unsigned long long at;
        string zone, around;
    } const changes[] = {{1710054000, north, "2024-3-10 1:59:59/0 2024-3-10 3:0:0/0 "},
                         {1730613600, north, "2024-11-3 1:59:59/0 2024-11-3 1:0:0/0 "},
                         {1712415600, south, "2024-4-7 1:59:59/0 2024-4-7 1:30:0/0 "},
                         {1728142200, south, "2024-10-6 1:59:59/0 2024-10-6 2:30:0/0 "}};
    for (const auto& change : changes)
    {
        const CTime from(change.at - 7201), to(change.at + 7200), again(change.at + 900);
        EXPECT_TRUE(zone != change.zone || text(from + 7200) + text(to - 7200) == change.around) << change.around;
        EXPECT_TRUE(zone != change.zone || text(built<NewTime>(from) + 14401) != text(to));
        EXPECT_TRUE(to - from == 14401 && from - to == -14401 && from < to && to >= from && to != from && !(to <= from));
        EXPECT_EQ(text(built<CTime>(again)), text(again));
    }
    const CTime gap(2024, zone == south ? 10 : 3, zone == south ? 6 : 10, 2, 15, 0);  // left out: the time before or after
    EXPECT_TRUE(zone == utc || (gap.minute == (zone == south ? 45 : 15) && (gap.hour == 1 || gap.hour == (zone == south ? 2 : 3))));
    const CTime odd(SystemTime{2023, 13, 1, 6, 0, 0, 60}), even(2024, 1, 1, 0, 1, 0), early(SystemTime{1960, 5, 5});
    EXPECT_TRUE(odd == even && odd <= even && odd >= even && !(odd != even || odd < even || odd > even) && early == CTime(0ull));
}

TEST(OlderTimeText, HasPreferencesOfItsOwnAndTellsFaults)
{
    const SystemTime fields{2024, 3, 5, 0, 13, 8, 9};
    string shown;
    const auto show = [&](const char* format) {
        char buf[64] = "", other[64] = "";
        CTime(fields).format(buf, format), built<NewTime>(fields).format(other, "yyyy-M", 0);
        shown += std::to_string(CTime::getDateFormat()) + CTime::getSpliter() + std::to_string(CTime::getDateSeparator());
        shown += std::to_string(CTime::getTimeFormat()) + (CTime::get12Hour() ? "h|" : "|") + buf + '|' + other + '\n';
    };
    General::Ortha::Test::LogLines lines;
    NewTime::setFormatString("dd/MM/yyyy hh"), show("yyyy-MM-dd HH:mm:ss");
    CTime::setFormat(2, 0, 1), show("yyyy-MM-dd HH:mm:ss");
    CTime::setFormat(1, 9, 9), show("yy/M/d h tt");
    CTime::setFormat(-7, 1, 0), show("y-M tt"), shown += CTime::getFormat() + '\n';
    CTime::setFormat("MM/yyyy"), show("d-M H"), shown += CTime::getFormat() + '\n';
    CTime::setFormat(""), NewTime::setFormatString("yyyy-MM-dd"), CTime().format(nullptr, nullptr), show(nullptr);
    EXPECT_EQ(shown, "0-10|2024-03-05 13:08:09|3/2024\n2.01h|05.03.2024 01:08:09|3/2024\n1.01h|3.5.24 1 PM|3/2024\n-7-10|3-24|3/2024\n"
                     "yyyy-MM-dd HH:mm:ss\n0/20|3/5 13|3/2024\nMM/yyyy\n0-10||2024-3\n");
    const string order = "setFormat dateFormat is invalid,set default separator: ymd \n";
    EXPECT_EQ(lines.bare(),
              order + "setFormat separator is invalid,set default separator: - \n" + order + "buf is NULL!!\nformat is NULL!!\n");
}

}  // namespace
