#include "Src/Ortha3/LogFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <optional>
#include <set>
#include <sstream>

#include "Src/Ortha3/FileDefaultOpt.h"
#include "Src/Ortha3/LogSteps.h"
#include "support/Capture.h"
#include "support/LogCommand.h"
#include "support/LogLines.h"
#include "support/ManualClock.h"
#include "support/ScratchDirectory.h"
#include "support/Sync.h"

namespace General::Ortha {
namespace {

namespace fs = std::filesystem;
using namespace Test;
using testing::MatchesRegex;

// Works in a directory of its own, with the header "[ ]".
struct LogFiles : testing::Test
{
    LogFiles()
    {
        setZone("UTC");
        fs::current_path(scratch / "");
        clock.setWall(beginOfDay(10) * 1000);
        PrintOptions options;
        options.noTime = options.noModule = options.noLevel = options.noThreadId = options.noVersion = options.noFile = options.noLine = 1;
        setPrintOptions(options);
    }
    ~LogFiles() override { command({"-logpath", ""}), logCleanup(); }

    static std::int64_t beginOfDay(int day) { return 1714521600 + (day - 1) * 86400; }

    static std::string files(const std::string& directory)
    {
        std::string all;
        for (const fs::path& file : std::set<fs::path>(fs::directory_iterator(directory), {}))
        {
            all += (all.empty() ? "" : " ") + file.filename().string() + ':';
            std::ifstream stream(file);
            for (std::string line; std::getline(stream, line);)
            {
                all += !stream.eof() && line.size() > 3 && line == "[ ]" + std::string(line.size() - 3, line[3]) ? line[3] : '!';
            }
        }
        return all;
    }

    // Runs steps that end in ';': log commands; "close"; "day 9" of May 2024; "log ab 600", a line so long (512) for each mark;
    // "put log a 9", a line for a file, written last on a day; "= log:ab", the files with the marks of their lines ('!': not whole).
    void run(const std::string& script)
    {
        std::istringstream steps(script), words;
        std::string step, verb, name, marks;
        int number = 0;
        const std::map<std::string, std::function<void()>> verbs = {
            {"close", logCleanup},
            {"=", [&] { EXPECT_EQ(files("."), step.substr(2)) << script; }},
            {"day", [&] { words >> number, clock.setWall(beginOfDay(number) * 1000); }},
            {"log",
             [&] {
                 for (words >> marks >> number; const char mark : marks)
                 {
                     EXPECT_EQ(::logInfo("%s\n", std::string(static_cast<std::size_t>(number) - 4, mark).c_str()), number);
                 }
             }},
            {"put", [&] {
                 words >> name >> marks >> number;
                 std::ofstream(name, std::ios::app) << "[ ]" + std::string(508, marks[0]) + '\n';
                 fs::last_write_time(name, std::chrono::file_clock::from_sys(std::chrono::system_clock::from_time_t(beginOfDay(number))));
             }}};
        while (std::getline(steps >> std::ws, step, ';'))
        {
            words.clear(), words.str(step), words >> verb, number = 512;
            verbs.count(verb) != 0 ? verbs.at(verb)() : commandLine(step);
        }
    }
    ScratchDirectory scratch;
    ManualClock clock;
    LogLines console;
};

TEST_F(LogFiles, OneFileIsAppendedToAndBeginsAnewAtItsLimit)
{
    const auto refused = MatchesRegex("\\[Src.Ortha3.LogFile:[0-9]+\\]logDir is invalid\n");
    EXPECT_THAT(captureOutput([&] { run("log a; -logpath log; log b; -logpath ./; log c;"); }), refused);
    EXPECT_THAT(captureOutput([&] { run("-logpath log; log d; -logpath log\\; log e; = log:bd;"); }), refused);
    run("-logpath log; log f; -logpath ; log g; close; close; -logpath log; log h; = log:bdfh; -logsize 1; log i 1023; log j 1023; = "
        "log:ij;"
        "log k; = log:k; log l; close; log mno; = log:o; -logpath two; log p; close; log q; = log:op two:q;");
    PrintOptions options;
    getPrintOptions(&options), options.noSaveFile = 1, setPrintOptions(options);
    run("log r; = log:op two:q;");
    for (const auto& [value, limit] :
         {std::pair("1", 1024), {"0", 0}, {"2097151", 2147482624}, {"-5", 0}, {"2097152", 0}, {"4194305", 1024}})
    {
        run(std::string("-logsize 3; -logsize ") + value);
        EXPECT_EQ(logFileSettings.logSizeLimit, limit) << value;
    }
}

TEST_F(LogFiles, ASeriesNamesItsFilesByDateOrTimeAndSerialNumber)
{
    run("-logpath log; -logsavesetting none; log a; -logsavesetting bysize 1 -1; log bcd; day 11; log ef; day 12; log g; -logsavesetting "
        "byday ON 0; log hi; day 13; log j;"
        "= log:abc log_2024-05-10_0:de log_2024-05-11_0:fg log_2024-05-12_0:hi log_2024-05-13_0:j;"
        "put log_2024-05-13_9 . 1; put log_2024-05-13_10 . 1; put log_2024-05-14_20 . 1; put log_2024-05-13-00-00-00_5 . 1; put "
        "my_2024-05-13_40 . 1;"
        "log kl; -logsavesetting filenametime SEC; log mnop; day 14; log qrs; -logsavesetting filenametime day; log t;"
        "= log:abc log_2024-05-10_0:de log_2024-05-11_0:fg log_2024-05-12_0:hi log_2024-05-13-00-00-00_5:. log_2024-05-13-00-00-00_6:no "
        "log_2024-05-13-00-00-00_7:p log_2024-05-13_0:jk log_2024-05-13_10:. log_2024-05-13_11:lm log_2024-05-13_9:. "
        "log_2024-05-14-00-00-00_0:qr "
        "log_2024-05-14-00-00-00_1:st log_2024-05-14_20:. my_2024-05-13_40:.;");
}

TEST_F(LogFiles, ARestartGoesOnWithTheLatestFileUnlessItIsOfAnotherDay)
{
    run("-logpath log; -logsavesetting byday off 0; put log_2024-05-10_5 a 7; put log_2024-05-08_3 b 9; log c; = log_2024-05-08_3:bc "
        "log_2024-05-10_5:a;"
        "close; -logsavesetting byday on 0; put log_2024-05-08_3 d 10; log e; = log_2024-05-08_3:bcde log_2024-05-10_5:a;"
        "close; put log_2024-05-08_3 f 9; log g; = log_2024-05-08_3:bcdef log_2024-05-10_5:a log_2024-05-10_6:g;");
}

TEST_F(LogFiles, TheFileWrittenLongestAgoGoesAtARotation)
{
    // The one file of the other way is a log file too.
    run("put log a 9; put log_2024-05-10_0 b 7; put my_log c 1; -logpath log; -logsavesetting bysize 1 3; log ef;"
        "= log:ae log_2024-05-10_0:b log_2024-05-10_1:f my_log:c; put log - 2; put log_2024-05-10_2 g 8; put log_2024-05-10_3 h 6; log ij;"
        "= log_2024-05-10_0:b log_2024-05-10_1:fi log_2024-05-10_2:g log_2024-05-10_3:h log_2024-05-10_4:j my_log:c; log kl;"
        "= log_2024-05-10_0:b log_2024-05-10_1:fi log_2024-05-10_2:g log_2024-05-10_4:jk log_2024-05-10_5:l my_log:c; close;"
        "-logpath z; -logsavesetting bysize 1 1");
    for (char mark = 'a'; mark <= 'z'; ++mark)  // the newest stays, however fast they follow each other
    {
        run(std::string("log ") + mark + " 1024");
        EXPECT_THAT(files("."), testing::EndsWith(" my_log:c z_2024-05-10_" + std::to_string(mark - 'a') + ':' + mark));
    }
}

TEST_F(LogFiles, OnlyLinesAreMissingOfWhichAMessageTold)
{
    struct : FileDefaultOpt
    {
        long findfirst(const char* pattern, FileInfo& info) override { return fail ? -1 : FileDefaultOpt::findfirst(pattern, info); }
        bool fail = false;
    } search;
    hookFileSystem("logs", &search);
    for (const std::string setting : {"none", "byday on 0", "bysize 1 0"})
    {
        logCleanup(), fs::remove_all("logs"), fs::create_directory("logs");
        run("close; -logpath logs/log; -logsavesetting " + setting);
        std::string missing;
        for (char mark = 'A'; mark < 'A' + 20; mark += 2)
        {
            const int fault = std::max((mark - 'A') / 2 % 5,
                                       fewestDescriptors);  // 0 to 2: descriptors left; 3: the directory is away; 4: it cannot be searched
            run(std::string("log ") + mark + " 1024");
            EXPECT_EQ(inheritedDescriptors().find("/logs/"), std::string::npos);
            mark < 'K' ? logCleanup() : clock.advance(setting == "byday on 0" ? 86400000 : 0);
            const std::string message = captureOutput([&] {
                std::optional<ScarceDescriptors> scarce;
                fault < 3 ? void(scarce.emplace(fault)) : void();
                fs::rename("logs", fault == 3 ? "away" : "logs");
                search.fail = fault == 4;
                run(std::string("log ") + static_cast<char>(mark + 1) + " 1024");  // the call succeeds
                search.fail = false;
                fs::rename(fault == 3 ? "away" : "logs", "logs");
            });
            EXPECT_THAT(message, MatchesRegex("((this:[^\n]*\n)?\\[Src.Ortha3.LogFile:[0-9]+\\]( ?[a-z :,]+[0-9]*)\n)*"));
            EXPECT_TRUE(!message.empty() || mark >= 'K' || (fault != 0 && fault != 3)) << setting << fault;
            missing += message.empty() ? "" : std::string(1, static_cast<char>(mark + 1));
        }
        std::string saved = files("logs");
        saved.erase(std::remove_if(saved.begin(), saved.end(), [](char c) { return c != '!' && (c < 'A' || c > 'T'); }), saved.end());
        missing.erase(std::remove_if(missing.begin(), missing.end(), [&](char c) { return saved.find(c) != saved.npos; }), missing.end());
        EXPECT_THAT(saved + missing, testing::UnorderedElementsAreArray("ABCDEFGHIJKLMNOPQRST", 20));
    }
    hookFileSystem("logs", nullptr);
}

TEST_F(LogFiles, LinesOfManyThreadsAreSavedOnceAndInOrderThroughRotations)
{
    run("-logpath log; -logsavesetting byday on 100000; -logsize 1");
    const auto write = [&](int thread) {
        for (int line = 0; line < 500; ++line)
        {
            clock.advance(thread == 0 ? 240000 : 0), ::logInfo("%d %d\n", thread, line);
        }
    };
    EXPECT_EQ(captureOutput([&] {
                  std::vector<std::jthread> writers;
                  std::generate_n(std::back_inserter(writers), 8, [&, i = 0]() mutable { return std::jthread(write, i++); });
              }),
              "");
    std::map<std::pair<std::string, int>, fs::path> inOrder;
    for (const auto& file : fs::directory_iterator("."))
    {
        const std::string name = file.path().filename().string();
        inOrder[{name.substr(0, 14), std::stoi(name.substr(15))}] = name;
        EXPECT_LT(file.file_size(), 1024u + 10);
    }
    EXPECT_TRUE(inOrder.size() > 30 && inOrder.begin()->first.first < inOrder.rbegin()->first.first);
    std::map<std::string, int> next;
    for (const auto& [key, file] : inOrder)
    {
        std::ifstream stream(file);
        for (std::string line; std::getline(stream, line);)
        {
            const std::string thread = line.substr(0, 5);
            ASSERT_EQ(line, thread + std::to_string(next[thread]++));
        }
    }
    EXPECT_THAT(next, testing::AllOf(testing::SizeIs(8), testing::Each(testing::Pair(MatchesRegex("\\[ \\][0-7] "), 500))));
}

TEST_F(LogFiles, CommandsMayComeWhileOthersLog)
{
    std::atomic<std::uint64_t> sum{0};
    std::atomic<bool> over{false};
    const auto write = [&](int) {
        do
        {
            sum += static_cast<std::uint64_t>(logFilter(4, "gate", "Door", "open", 7, "1", "whole\n"));
        } while (!over);
    };
    const auto commands = [&] {
        for (int round = 0; round < 100 || sum < 500000; ++round)
        {
            const char* const paths[] = {"", "log", "logbook"};
            run("-loglevel 3; -logmodule gate off; -logtime on; -logsize 1; -logsavesetting bysize 1 5; -logmodulestatistics on; -loglevel "
                "4; "
                "close; -logsavesetting byday on 3; -logthread on; -logmodule gate on; -logsavesetting filenametime sec; -logversion on; "
                "-logmodule off; -logsavesetting none; -logfunction off; -logmodule on; -logsavesetting filenametime day; -logtime off; "
                "-logmodulestatistics off; -logmodule m" +
                std::to_string(round) + " off; -logfunction on; -logpath " + paths[round % 3]);
            EXPECT_LE(getLogStatistics().size(), 1u);
        }
        over = true;
    };
    const auto both = [&] {
        std::jthread commander(commands);
        inThreads(write);
    };
    EXPECT_EQ(captureOutput(both), "");
    run("-logpath settled; -logsavesetting none; -logsize 0; -logmodulestatistics on; close");
    const std::uint64_t before = getLogStatistics()["gate"].logSize;
    sum = 0, inThreads(write);
    EXPECT_TRUE(sum == fs::file_size("settled") && sum == getLogStatistics()["gate"].logSize - before && sum > 4 * 6);
    for (const auto& file : fs::directory_iterator("."))
    {
        std::stringstream text;
        text << std::ifstream(file.path()).rdbuf();
        EXPECT_THAT(text.str(), MatchesRegex("(\\[[^]]*\\]whole\n)*")) << file.path();
    }
    for (const auto& [add, total] :
         {std::pair(0x7FFFFFFF, 0x7FFFFFFFu), {0x7FFFFFFF, 0xFFFFFFFEu}, {1, 0xFFFFFFFFu}, {0x7FFFFFFF, 0xFFFFFFFFu}})
    {
        addLogStatistics("door", add), addLogStatistics("", add), addLogStatistics(nullptr, add);
        EXPECT_TRUE(getLogStatistics()["door"].logSize == total && getLogStatistics().size() == 2) << total;
    }
}

}  // namespace
}  // namespace General::Ortha
