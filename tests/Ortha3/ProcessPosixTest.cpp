#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <chrono>
#include <string>

#include "ortha/ortha3/PrintLog.h"
#include "ortha/ortha3/Process.h"

#include "support/Capture.h"
#include "support/LogLines.h"

namespace {

using namespace General::Ortha;
using namespace General::Ortha::Test;

// The arguments that a command's program gets, each in brackets.
std::string split(const char* arguments)
{
    return captureOutput([&] { EXPECT_EQ(systemCall((std::string(" printf [%s] ") + arguments).c_str()), 0); });
}

TEST(Process, ACommandIsSplitAsAShellWouldWithoutExpansions)
{
    EXPECT_EQ(split("a b\tc\n d"), "[a][b][c][d]");
    EXPECT_EQ(split(R"('b c' "d e" f\ g a'b'"c"d)"), "[b c][d e][f g][abcd]");
    EXPECT_EQ(split(R"('' "")"), "[][]");
    EXPECT_EQ(split(R"("say \"hi\"" "\\" "a\b" '\' \')"), R"([say "hi"][\][a\b][\]['])");
    EXPECT_EQ(split(R"("it's" 'say "hi"')"), R"([it's][say "hi"])");
    EXPECT_EQ(split("$HOME * `id` > ~ ; #a"), "[$HOME][*][`id`][>][~][;][#a]");
}

TEST(Process, AnswersWhetherTheCommandWasStartedAndEnded)
{
    PrintOptions options;
    options.noTime = options.noThreadId = 1;
    setPrintOptions(options);
    const std::string fits = "true " + std::string(254, 'x');
    const std::string place = " Unknown Unknown:0]systemCall";
    LogLines lines;
    for (const std::string& ended : {std::string("true"), std::string("false"), std::string("sh -c 'kill -9 $$'"), fits})
    {
        EXPECT_EQ(systemCall(ended.c_str()), 0) << ended;
        EXPECT_EQ(lines.text(), "");
    }
    for (const char* refused : {"/no/such/program", "no-such-program-in-path 1", "", "  ", "true 'unclosed", "true \"unclosed", "true \\"})
    {
        EXPECT_EQ(systemCall(refused), -1);
        EXPECT_EQ(lines.text(), "[ warn" + place + " CreateProcessA cmd:" + refused + " failed\n");
    }
    EXPECT_EQ(systemCall((fits + "x").c_str()), -1);
    EXPECT_EQ(lines.text(), "[ error" + place + "'s input parameter is too long, command:" + fits + "x\n");
    EXPECT_EQ(systemCall(nullptr), 1);
}

TEST(Process, WaitsForTheChildWhichGetsTheStandardStreamsOnly)
{
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(systemCall("sleep 0.2"), 0);
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(200));
    ASSERT_TRUE(dup2(STDERR_FILENO, 3) == 3 && dup2(STDERR_FILENO, 200) == 200);
    EXPECT_EQ(captureOutput([] { EXPECT_EQ(systemCall("ls /proc/self/fd"), 0); }), "0\n1\n2\n3\n");  // 3 is the folder that ls reads
    signal(SIGCHLD, SIG_IGN);
    EXPECT_EQ(systemCall("true"), 0) << "also when the system takes the child's end away";
}

}  // namespace
