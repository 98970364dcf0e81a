#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <regex>
#include <string>
#include <thread>
#include <utility>

#include "ortha/ortha3/CPrintLog.h"
#include "ortha/ortha3/PrintLog.h"
#include "ortha/ortha3/Time.h"
#include "ortha/ortha3/detail/source_text.h"

#include "Src/Ortha3/PrintLogInternal.h"
#include "Src/Ortha3/Singleton.h"
#include "Src/Platform/Event.h"
#include "support/Capture.h"
#include "support/LogLines.h"
#include "support/ManualClock.h"
#include "support/Sync.h"

namespace {

using namespace General::Ortha;
using namespace General::Ortha::Test;
using ::testing::ElementsAre;
using ::testing::MatchesRegex;

struct Place
{
    const char* file = "Src\\Utils\\Md5";
    const char* function = "General::Utils::CMd5::final";
    const char* version = "Unknown";
};

// The header that a layer, logFilter or Ortha_logFilter, writes, with '@' for the thread's id and for the message.
std::string header(decltype(&logFilter) log, const PrintOptions& options, const Place& place = {})
{
    setPrintOptions(options);
    const std::string line = captureOutput([&] { log(2, "Unknown", place.file, place.function, 441, place.version, "%s", "x\n"); });
    return std::regex_replace(line, std::regex(std::to_string(CThread::getCurrentThreadID()) + "|x\n"), "@");
}

TEST(LogHeader, EverySwitchAndPlaceInBothForms)
{
    ManualClock clock;
    clock.setWall(1715344496007);
    setZone("UTC0");
    const PrintOptions plain{.noTime = 1, .noLevel = 1, .noThreadId = 1, .showFunction = 1};
    const struct
    {
        PrintOptions options;
        std::string header;
        Place place = {};
    } cases[] = {
        {{}, "[12:34:56 error Unknown @ Md5:441]"},
        {{.noTime = 1, .showMilliseconds = 1}, "[ error Unknown @ Md5:441]"},
        {{.noTime = 1, .showDate = 1}, "[2024-05-10T error Unknown @ Md5:441]"},
        {{.showDate = 1, .showMilliseconds = 1}, "[2024-05-10T12:34:56.007 error Unknown @ Md5:441]"},
        {{.noModule = 1}, "[12:34:56 error  @ Md5:441]"},
        {{.noVersion = 1}, "[12:34:56 error Unknown @ Md5:441]"},
        {{.noModule = 1, .noVersion = 1}, "[12:34:56 error @ Md5:441]"},
        {{.noLevel = 1, .noFile = 1}, "[12:34:56 Unknown @ 441]"},
        {{.noThreadId = 1, .noLine = 1}, "[12:34:56 error Unknown Md5:]"},
        {{.noColor = 1, .showFunction = 1, .noSaveFile = 255}, "[12:34:56 error Unknown @ Md5:441 final]"},
        {{.structured = 1}, "[|T: 12:34:56 L:error |[Unknown] [ver:Unknown] tid:@ F:Md5|l:441|m:]"},
        {{.showFunction = 1, .showDate = 1, .showMilliseconds = 1, .structured = 1},
         "[|T: 2024-05-10T12:34:56.007 L:error |[Unknown] [ver:Unknown] tid:@ F:Md5|l:441|f:final|m:]"},
        {{.noTime = 1, .noModule = 1, .structured = 1}, "[|T:  L:error |[ver:Unknown] tid:@ F:Md5|l:441|m:]"},
        {{.noLevel = 1, .noVersion = 1, .noFile = 1, .structured = 1}, "[|T: 12:34:56 [Unknown] tid:@ l:441|m:]"},
        {{.noThreadId = 1, .noLine = 1, .structured = 1}, "[|T: 12:34:56 L:error |[Unknown] [ver:Unknown] F:Md5|m:]"},
        {{.noTime = 1, .noThreadId = 1, .structured = 1}, "[|T:  L:error |[Unknown] [ver:] F:Md5|l:441|m:]", {.version = nullptr}},
        {plain, "[ Unknown Md5:441 final]", {.version = nullptr}},
        {plain, "[ Unknown:Unknown2 Md5:441 final]", {.version = "Unknown2"}},
        {plain, "[ Unknown a/b.c:441 final]", {.file = "a/b.c"}},
        {plain, "[ Unknown c/d:441 final]", {.file = "a/b\\c/d"}},
        {plain, "[ Unknown Md5:441 main]", {.function = "main"}},
        {plain, "[ Unknown Md5:441 ]", {.function = "a::b:"}},
    };
    for (const auto& c : cases)
    {
        EXPECT_EQ(header(logFilter, c.options, c.place), c.header + "@");
        EXPECT_EQ(header(Ortha_logFilter, c.options, c.place), c.header + "@");
    }
    EXPECT_EQ(header(logFilter, plain, {.file = "Src\\Md5\\"}), "[ Unknown :441 final]@");
    EXPECT_EQ(header(Ortha_logFilter, plain, {.file = "Src\\Md5\\"}), "[ Unknown Src\\Md5\\:441 final]@");
    EXPECT_THAT(header(Ortha_logFilter, plain, {.file = nullptr}), MatchesRegex(R"(\[ Unknown .*:441 final\]@)"));
}

TEST(LogHeader, ShowsLocalTimeAndGivesItOutInTheMiddleOfALineToo)
{
    ManualClock clock;
    setZone("AHD-5:30");
    clock.setWall(1709251199001);  // 2024-02-29T23:59:59.001
    EXPECT_EQ(header(logFilter, {.noThreadId = 1, .showDate = 1, .showMilliseconds = 1}),
              "[2024-03-01T05:29:59.001 error Unknown Md5:441]@");
    captureOutput([] { ::logInfo("open"); });
    clock.advance(61000);
    LogTime time{9, 9, 9, 9, 9, 9, 9, 9, {9, 9, 9, 9}};
    char buffer[10] = "untouched";
    EXPECT_EQ(Ortha_logOptionControl(buffer, sizeof(buffer), 4, "m", "f", "g", 1, nullptr, &time), 0);
    EXPECT_STREQ(buffer, "untouched");
    const std::int32_t fields[] = {time.year, time.month, time.day, time.dayOfWeek, time.hour, time.minute, time.second, time.milliSecond};
    EXPECT_THAT(fields, ElementsAre(2024, 3, 1, 5, 5, 31, 0, 1));
    EXPECT_THAT(time.reserved, ElementsAre(0, 0, 0, 0));
}

TEST(ThreadPrinter, GetsItsOwnThreadsLinesAfterPrinterAndHooks)
{
    std::string trail;
    const auto mark = [&](char name) { return [&trail, name](const char*) { trail += name; }; };
    Callback<const char*> thread(mark('t')), other(mark('o')), printer(mark('p'));
    const auto log = [&] { return ::logInfo("1\n"), std::exchange(trail, ""); };
    setLogPrinter(printer);
    EXPECT_EQ(setThreadLogPrinter(thread), 1);
    EXPECT_EQ(log(), "pt");
    std::thread([&] { EXPECT_EQ(log(), "p"); }).join();
    EXPECT_EQ(setThreadLogPrinter(other), 1);
    EXPECT_EQ(log(), "po");
    EXPECT_EQ(setThreadLogPrinter({}), 1);
    EXPECT_EQ(log(), "p");
}

TEST(SourceText, IsTheLastSourceFolderOnWithBackslashesAndNoExtension)
{
    using General::Ortha::Detail::SourceText;
    const auto text = [](const auto& path) { return std::string(SourceText<sizeof(path)>(path).text); };
    EXPECT_EQ(text("/home/Src/ortha/Src/Ortha3/Thread.cpp"), "Src\\Ortha3\\Thread");
    EXPECT_EQ(text("/usr/include/ortha/ortha3/detail/x.y.h"), "include\\ortha\\ortha3\\detail\\x.y");
    EXPECT_EQ(text("/Src/oldSrc/Src.d/name"), "Src\\oldSrc\\Src.d\\name");
    EXPECT_EQ(text("tests/x.cpp"), "tests\\x");
}

TEST(Singleton, GoesBeforeWhatItsConstructorUsesAndIsMadeAnewAfterItsEnd)
{
    struct Inner
    {
        Inner() { std::printf("+Inner "); }
        ~Inner() { std::printf("-Inner "); }
    };
    struct Outer
    {
        Outer() { Singleton<Inner>::instance(), std::printf("+Outer "); }
        ~Outer() { std::printf("-Outer "); }
    };
    const ChildResult result = runInChild([] {
        std::atexit([] { Singleton<Outer>::instance(); });
        EXPECT_EQ(Singleton<Outer>::instance(), Singleton<Outer>::instance());
    });
    EXPECT_EQ(result.code, 0) << result.errors;
    const std::string late = callsLateHandlers ? "-Outer -Inner " : "";
    EXPECT_EQ(result.output, "+Inner +Outer -Outer -Inner +Inner +Outer " + late);
}

TEST(Platform, AnEventLetsTheTicketsFromBeforeItsSetPass)
{
    Platform::Event event;
    const std::uint32_t early = event.reset();
    event.set();
    const std::uint32_t late = event.reset();
    event.wait(early);  // returns, though the gate is closed
    Blocking waiter([&] { event.wait(late); });
    EXPECT_TRUE(waiter.asleep());
    event.set();
    EXPECT_TRUE(waiter.done());
}

TEST(MonotonicClock, CountsFromItsFirstReadingCutsTheFractionAndNeverFallsWithinAThread)
{
    ManualClock clock(10000000);
    clock.setCounter(1000000);
    LogLines lines;
    EXPECT_EQ(CTime::getCurrentMilliSecond(), 0u);
    EXPECT_THAT(lines.text(), MatchesRegex("\\[.* info Unknown .* MonotonicClock:[0-9]+\\]init freq: 10000000, base time: 1000000\n"));
    clock.setWall(2208988800000);
    // The last one is beyond what a double holds to the unit.
    const std::uint64_t cases[][3] = {{1000009, 0, 0},
                                      {1009999, 0, 999},
                                      {1010000, 1, 1000},
                                      {600001000001, 60000000, 60000000000},
                                      {180143985095819991, 18014398509482, 18014398509482000}};
    for (const auto& [counter, milli, micro] : cases)
    {
        clock.setCounter(counter);
        EXPECT_EQ(CTime::getCurrentMilliSecond(), milli) << counter;
        EXPECT_EQ(CTime::getCurrentMicroSecond(), micro) << counter;
    }
    for (const std::uint64_t back : {1500000u, 900000u, 0u})
    {
        clock.setCounter(back);
        EXPECT_EQ(CTime::getCurrentMicroSecond(), 18014398509482000u) << back;
        std::thread([&] { EXPECT_EQ(CTime::getCurrentMilliSecond(), back > 1000000 ? 50u : 0u); }).join();
    }
    EXPECT_TRUE(lines.take().empty()) << "the start is told once";
}

}  // namespace
