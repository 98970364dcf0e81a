#include "ortha/Version.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>
#include <string>

#include "ortha/CheckIncludeVersion.h"
#include "ortha/ortha3/Version.h"

#include "support/Host.h"
#include "support/LogLines.h"

namespace {

using namespace General::Ortha::Test;
using NewVersion = General::Ortha::CVersion;
using std::string;

TEST(OlderVersion, StampsReadRevisionsAndDatesOfEveryForm)
{
    const char* const rows[][5] = {{"4711", "Jan  2 2024", "4711", "4711", "2024/ 1/ 2"},
                                   {"12:34M", "Dec 31 1999", "12", "34", "1999/12/31"},
                                   {"$Rev: 4711 $", "May 10 2024", "4711", "4711", "2024/ 5/10"},
                                   {"abc", "Foo 10 2024", "0", "0", "2024/13/10"},
                                   {"2147483647", "Feb", "2147483647", "2147483647", "0/ 2/ 0"},
                                   {" 5", "Se", "0", "5", "0/13/ 0"},
                                   {nullptr, nullptr, "0", "0", "0/13/ 0"}};
    const string name(40, 'n'), begin = "[*] " + name.substr(9) + " 1.2.3.";
    LogLines lines;
    for (const auto& [revision, date, newer, older, built] : rows)
    {
        NewVersion stamp(nullptr, 9, 9, 9, "9", "");
        stamp = NewVersion(name.c_str(), 1, 2, 3, revision, date), stamp.print(), CVersion(name.c_str(), 1, 2, 3, revision, date).print();
        const string end = string(" Built in ") + built + " [*]\n";
        const string modified = "Some [" + name.substr(9) + "] files are not commit to SVN server. It compied wtih local modified files.\n";
        EXPECT_EQ(lines.bare(), begin + newer + end + (*older == '3' ? modified : "") + begin + older + end);
    }
    General::Ortha::setPrintLogLevel(3), NewVersion::setAppDate("Nov 23 2026"), CVersion("x", 1, 2, 3, "5M", "").print();
    EXPECT_EQ(lines.text() + std::to_string(NewVersion::appDate.year + NewVersion::appDate.month * 100 + NewVersion::appDate.day), "3149");
}

CCheckIncludeVersionInter& all = *CCheckIncludeVersionInter::instance();

// As a death test sees it: lines without headers and addresses.
void dieOfResult()
{
    static const std::regex header(R"(^\[[^\]]*\](this:\S+ )?)");
    General::Ortha::setLogPrinter(+[](const char* text) { std::fputs(std::regex_replace(text, header, "").c_str(), stderr); });
    all.checkResult();
}

testing::Matcher<const string&> report(const string& kind, const string& list, const string& lines)
{
    return testing::HasSubstr("CCheckIncludeVersionInter::checkResult error:" + kind + " error\n" + list +
                              "----------------check include report start---------------\n" + lines +
                              "----------------check include report end---------------\n"
                              "***** Internal Program Error - assertion (m_matchFlag) failed");
}

#ifdef ORTHA_TEST_MODULES
TEST(IncludeCheck, FindsTwoLibrariesBuiltAgainstDifferentRevisions)
{
    LogLines lines;
    all.checkResult();
    for (const char* const library : {"include12" ORTHA_TEST_MODULES, "include13" ORTHA_TEST_MODULES})
    {
        ASSERT_TRUE(loadLibrary((programFile().parent_path() / library).string()));
    }
    const IncludeNode gate[] = {{"Door.h", "012"}, {"s/http:/Door.h", "5"}}, late[] = {{"Door.h", "12"}};
    includeVerbose = false;
    EXPECT_TRUE(all.check("Gate", gate, 2) && !all.check("Late", late, 1)) << "012 is another text than 12";
    includeVerbose = true;
    EXPECT_EQ(lines.bare(),
              "CCheckIncludeVersionInter::checkResult successful\ncheck include version:Doors12\nhttp:d/Door.h 12\nhttp:d/Knob.h 7\n"
              "check include version:Doors13\nhttp:d/Door.h 13\nhttp:d/Knob.h 7\ncheck include version failed\nDoors13 http:d/Door.h 13\n"
              "Doors12 http:d/Door.h 12\ncheck include version:Gate\ncheck include version:Late\n");
    const string line = "------------------------------------\n", ok = "], include is ok\n" + line;
    EXPECT_DEATH(dieOfResult(), report("match",
                                       "--------include version all start---------\nDoor.h 12\nhttp:d/Door.h 13\nhttp:d/Knob.h 7\n"
                                       "s/http:/Door.h 5\n--------include version all end---------\n",
                                       "[Doors12], include version suggest:\n\nDoor.h -r13 http:d/Door.h\nKnob.h -r7 http:d/Knob.h\n" +
                                           line + "[Doors13" + ok + "[Gate" + ok + "[Late" + ok));

    // Versions that are no numbers are told before any are compared.
    const IncludeNode off[] = {ORTHA_INCLUDE_NODE("a/Door.h", "1")}, other[] = {{"a/Door.h", "2"}};
    const IncludeNode nodes[] = {{"a/Door.h", "1"}, {"b", "2x"}, {"c", nullptr}, {"d", ""}, {"e", "-1"}};
    lines.take(), CCheckIncludeVersion("Off", off, 1).checkResult();
    EXPECT_TRUE(!all.check("Doors", nodes, 5) && !all.check("Others", other, 1) && off->url + string(off->version) == "");
    EXPECT_THAT(lines.bare(),
                testing::StartsWith(
                    "CheckIncludeVersion is turned off.\ncheck include version:Doors\na/Door.h 1\nb 2x\nc \nd \ne -1\n"
                    "Doors version error\nb 2x\nc \nd \ne -1\ncheck include version:Others\na/Door.h 2\ncheck include version failed\n"));
    const string each = "libname:Doors, url:";
    EXPECT_DEATH(dieOfResult(),
                 report("self", "", each + "b version:2x\n" + each + "c version:\n" + each + "d version:\n" + each + "e version:-1\n"));
}
#endif

}  // namespace
