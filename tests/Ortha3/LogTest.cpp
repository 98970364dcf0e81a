#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <functional>
#include <mutex>
#include <numeric>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "ortha/ortha3/CPrintLog.h"
#include "ortha/ortha3/Error.h"
#include "ortha/ortha3/PrintLog.h"

#include "support/Capture.h"
#include "support/LogCalls.h"
#include "support/LogLines.h"
#include "support/Sync.h"

namespace {

using namespace General::Ortha;
using namespace General::Ortha::Test;
using ::testing::ElementsAre;
using ::testing::SizeIs;

// A print hook that does what a test gives it to do.
struct Hook
{
    std::function<void(const char*)> action;

    bool run(const char* text) { return action(text), false; }
    operator TFunction1<bool, const char*>() { return {&Hook::run, this}; }
};

TEST(Log, EachCallPassesUpToTheLevelWithItsOwnWord)
{
    useShortHeader(&PrintOptions::noLevel);
    const char* words[] = {"", "fatal ", "error ", "warn ", "info ", "trace ", "debug "};
    int (*const direct[][6])(const char*, ...) = {{::logFatal, ::logError, ::logWarn, ::logInfo, ::logTrace, ::logDebug},
                                                  {General::Ortha::logFatal, General::Ortha::logError, General::Ortha::logWarn,
                                                   General::Ortha::logInfo, General::Ortha::logTrace, General::Ortha::logDebug}};
    EXPECT_EQ(getPrintLogLevel(), 4);
    for (int highest = 0; highest <= 7; ++highest)
    {
        setPrintLogLevel(highest);
        for (int level = -1; level <= 7; ++level)
        {
            const bool named = level >= 1 && level <= 6;
            const auto check = [&](int shownAs, const std::function<int()>& log) {
                const std::string word = shownAs >= 0 && shownAs <= 6 ? words[shownAs] : "";
                const std::string expected = shownAs <= highest ? "[ " + word + "]x\n" : "";
                int count = -1;
                EXPECT_EQ(captureOutput([&] { count = log(); }), expected) << level << " at level " << highest;
                EXPECT_EQ(count, static_cast<int>(expected.size()));
            };
            check(named ? level : 99, [&] { return logLibName(level, "Door", "x\n"); });
            check(level, [&] { return fullLog(level, "x\n"); });
            check(level == 6 ? 5 : level, [&] { return baseLog(level, "x\n"); });
            for (int set = 0; named && set < 2; ++set)
            {
                check(std::min(level, 5), [&] { return direct[set][level - 1]("x\n"); });
            }
        }
    }
}

TEST(Log, OneHeaderStandsBeforeEachLineWhoeverWritesItsPartsAndADroppedLineLeavesNoTrace)
{
    useShortHeader();
    const std::string line = "x\n";
    const std::string output = captureOutput([&] {
        fullLog(4, "a");
        std::thread([] { baseLog(4, "b"); }).join();
        errno = E2BIG;
        const unsigned long before = allocationCount();
        const int sum = ::logTrace("x\n") + logLibName(7, "Door", "x\n") + fullLog(5, line) + baseLog(5, line);
        EXPECT_TRUE(allocationCount() == before && errno == E2BIG && sum == 0);
        fullLog(4, "");
        baseLog(1, "c\n");
        fullLog(4, "d\ne");  // only a newline at the end counts
        fullLog(4, "\n");
        fullLog(4, "");
        fullLog(4, "f\n");
    });
    EXPECT_EQ(output, "[ ]abc\n[ ]d\ne\n[ ]f\n");
}

TEST(Log, ALineIsCutAtItsLimitAndThenComplete)
{
    useShortHeader();
    for (const int length : {8190, 8191, 8192, 8193, 20000})
    {
        for (const char end : {'\n', 'x'})
        {
            const std::string text = std::string(static_cast<std::size_t>(length) - 4, 'x') + end;
            const std::string expected = ("[ ]" + text).substr(0, 8191) + (length >= 8192 || end == '\n' ? "[ ]" : "") + "next\n";
            int counts[2] = {};
            EXPECT_EQ(captureOutput([&] { counts[0] = fullLog(4, text), fullLog(4, "next\n"); }), expected) << length;
            EXPECT_EQ(captureOutput([&] { counts[1] = baseLog(4, text), baseLog(4, "next\n"); }), expected) << length;
            // The base layer counts what the line would have had.
            EXPECT_THAT(counts, ElementsAre(std::min(length, 8192), length));
        }
    }
}

TEST(Log, AHeaderFitsWhateverItsNamesAndItsRoom)
{
    PrintOptions options;
    options.noTime = options.showFunction = options.structured = 1;
    setPrintOptions(options);
    const std::string name(20000, 'n');
    LogLines lines;
    logFilter(4, name.c_str(), name.c_str(), name.c_str(), 1, name.c_str(), "text\n");
    logFilter(4, "Door", "Src", name.c_str(), 1, "1.2", "text\n");
    EXPECT_THAT(lines.take(), ElementsAre(SizeIs(8191), SizeIs(8191)));
    const auto header = [](char* room, int size) {
        return Ortha_logOptionControl(room, size, 4, "Door", "Src", "A::open", -2147483647 - 1, "1.2", nullptr);
    };
    char whole[200];
    const int length = header(whole, sizeof(whole));
    EXPECT_THAT(whole, ::testing::EndsWith("F:Src|l:-2147483648|f:open|m:]"));
    for (int size = 1; size <= length + 1; ++size)
    {
        std::vector<char> room(static_cast<std::size_t>(size) + 1, '#');
        EXPECT_EQ(header(room.data(), size), size - 1);
        EXPECT_EQ(std::string(room.data()), std::string(whole, static_cast<std::size_t>(size) - 1));
        EXPECT_EQ(room.back(), '#') << "written behind " << size;
    }
}

TEST(Log, WhatAnOutletLogsGoesToStandardOutputAsBareText)
{
    useShortHeader();
    std::string seen;
    Hook hook{[&](const char* text) {
        seen += text;
        EXPECT_EQ(::logInfo("from hook %d\n", 1), 0);
    }};
    Callback<const char*> printer([](const char*) { EXPECT_EQ(fullLog(1, "from printer\n"), 0); });
    attachPrint(hook);
    EXPECT_EQ(captureOutput([] { EXPECT_EQ(fullLog(4, "one\n"), 7); }), "[ ]one\nfrom hook 1\n");
    setLogPrinter(printer);
    EXPECT_EQ(captureOutput([] { EXPECT_EQ(fullLog(4, "two\n"), 7); }), "from printer\nfrom hook 1\n");

    // Only the logging thread is inside: what another one logs meanwhile, though it is waited for, takes the whole road.
    hook.action = [&](const char* text) {
        seen += text;
        if (std::strcmp(text, "[ ]three\n") == 0)
        {
            std::thread([] { EXPECT_EQ(fullLog(4, "aside\n"), 9); }).join();
        }
    };
    captureOutput([] { fullLog(4, "three\n"); });
    EXPECT_EQ(seen, "[ ]one\n[ ]two\n[ ]three\n[ ]aside\n");
}

TEST(Log, AnOutletGetsEachLineInItsTurn)
{
    useShortHeader();
    std::string trail;
    const auto mark = [&](char name) { return [&trail, name](const char*) { trail += name; }; };
    Callback<const char*> printer(mark('p'));
    Hook a{mark('a')}, b{mark('b')}, changing;
    const auto consoleAndTrail = [&] {
        const std::string console = captureOutput([] { fullLog(4, "x\n"); });
        return (console == "[ ]x\n" ? "c" : console) + std::exchange(trail, "");
    };
    EXPECT_TRUE(!detachPrint(a) && attachPrint(a) && attachPrint(b) && !attachPrint(a));
    EXPECT_EQ(consoleAndTrail(), "cab");
    EXPECT_EQ(setLogPrinter(printer), 0);
    EXPECT_EQ(consoleAndTrail(), "pab") << "a printer stands in for the console";
    EXPECT_TRUE(detachPrint(a) && attachPrint(a));
    EXPECT_EQ(consoleAndTrail(), "pba");
    EXPECT_TRUE(setLogPrinter({}) == 0 && detachPrint(b) && detachPrint(a));
    EXPECT_EQ(consoleAndTrail(), "c");

    // What a hook changes holds from the next line on.
    changing.action = [&](const char*) { EXPECT_TRUE(detachPrint(changing) && detachPrint(a) && attachPrint(b)); };
    EXPECT_TRUE(attachPrint(changing) && attachPrint(a));
    EXPECT_EQ(consoleAndTrail(), "ca");
    EXPECT_EQ(consoleAndTrail(), "cb");
}

TEST(Log, NoCallTouchesErrnoOrTheLastErrorAndTheFormatSeesTheCallersErrno)
{
    useShortHeader();
    Hook hook{[](const char*) {
        errno = EDOM;
        setLastError(99);
        fullLog(4, "nested\n");
    }};
    Callback<const char*> printer(hook.action);
    setLastError(-7);
    const std::string showErrno = "%m%s\n";
    const auto check = [&] {
        errno = ENOENT;
        EXPECT_EQ(::logInfo(showErrno.c_str(), ""), 29);
        EXPECT_EQ(Ortha_logFilter(4, "Door", nullptr, "open", 7, nullptr, showErrno.c_str(), ""), 29);
        char header[8];
        Ortha_logOptionControl(header, sizeof(header), 4, "Door", "Door", "open", 7, nullptr, nullptr);
        Ortha_resetcolor();
        EXPECT_EQ(errno, ENOENT);
        EXPECT_EQ(getLastError(), -7);
    };
    const std::string line = "[ ]No such file or directory\n";
    EXPECT_EQ(captureOutput(check), line + line);
    attachPrint(hook);
    EXPECT_EQ(captureOutput(check), line + "nested\n" + line);
    setLogPrinter(printer);
    EXPECT_EQ(captureOutput(check), "nested\nnested\n" + line);
}

TEST(Log, TheBaseLayersSwitchesFollowTheRecordAndStandForThemselves)
{
    PrintOptions options, copy;
    auto* const bytes = reinterpret_cast<unsigned char*>(&options);
    std::iota(bytes, bytes + sizeof(options), static_cast<unsigned char>(1));
    setPrintOptions(options);
    getPrintOptions(&copy);
    EXPECT_TRUE(std::memcmp(Ortha_getPrintOption(), bytes, 13) == 0 && std::memcmp(&copy, bytes, sizeof(copy)) == 0);
    useShortHeader();
    Ortha_getPrintOption()[8] = 0;  // the line number
    EXPECT_EQ(captureOutput([] { fullLog(4, "x\n"), baseLog(4, "y\n"); }), "[ 7]x\n[ 7]y\n");
    getPrintOptions(&copy);
    EXPECT_EQ(copy.noLine, 1);
}

TEST(Log, HexDumpHasOneHeaderARowAndABlankLineAfterEachBlock)
{
    useShortHeader();
    unsigned char data[1040] = {31, 32, 122, 123, 0, 255, '%', 127};
    std::fill(data + 8, data + sizeof(data), static_cast<unsigned char>('a'));
    const auto dump = [&](std::size_t length) { return captureOutput([&] { dumpHex(data, length); }); };
    EXPECT_EQ(dump(20), "") << "level 5 is off";
    setPrintLogLevel(5);
    const auto row = [&](std::size_t at, const std::string& text) {
        char address[32];
        std::snprintf(address, sizeof(address), "[ ]%p: ", static_cast<void*>(data + at));
        return address + text;
    };
    const std::string eight = "61 61 61 61 61 61 61 61 ";
    const std::string first = row(0, "1f 20 7a 7b 00 ff 25 7f " + eight + "  . z...%.aaaaaaaa\n");
    EXPECT_EQ(dump(0), "");
    EXPECT_EQ(dump(20), first + row(16, "61 61 61 61 " + std::string(12 * 3, ' ') + "  aaaa\n"));
    EXPECT_EQ(dump((1ull << 32) + 16), first) << "the length is read as 32 bits";
    EXPECT_EQ(dump(0xFFFFFFFFu), "");
    EXPECT_EQ(dump(511).find("[ ]\n"), std::string::npos) << "a short row ends no block";
    std::string expected = first;
    for (std::size_t at = 16; at < sizeof(data); at += 16)
    {
        expected += row(at, eight + eight + "  aaaaaaaaaaaaaaaa\n") + (at % 512 == 496 ? "[ ]\n" : "");
    }
    EXPECT_EQ(dump(sizeof(data)), expected);
}

TEST(Log, LinesOfManyThreadsReachEveryOutletWhole)
{
    useShortHeader();
    std::mutex mutex;
    int whole = 0;
    Hook counting{[&](const char* text) {
        std::lock_guard guard(mutex);
        whole += std::strlen(text) == 8 && std::strncmp(text, "[ ]", 3) == 0 ? 1 : 0;
    }};
    Hook passing{[](const char*) {}};
    attachPrint(counting);
    const std::string console = captureOutput([&] {
        inThreads([&](int i) {
            for (int line = 0; line < 500; ++line)
            {
                EXPECT_TRUE(i == 0 ? attachPrint(passing) && detachPrint(passing) : ::logInfo("%04d\n", line) == 8);
            }
        });
    });
    EXPECT_EQ(console.size(), 3u * 500 * 8);
    EXPECT_EQ(whole, 3 * 500);
}

}  // namespace
