#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "ortha/ortha3/PrintLog.h"
#include "ortha/ortha3/Process.h"

#include "support/Capture.h"
#include "support/Host.h"
#include "support/LogLines.h"
#include "support/ScratchDirectory.h"

namespace {

using namespace General::Ortha;
using namespace General::Ortha::Test;

TEST(Process, AnswersWhetherTheCommandWasStartedAndEnded)
{
    PrintOptions options;
    options.noTime = options.noThreadId = 1;
    setPrintOptions(options);
    const std::string fits = "cmd /c rem " + std::string(248, 'x');
    const std::string place = " Unknown Unknown:0]systemCall";
    LogLines lines;
    for (const std::string& ended : {std::string("cmd /c exit 0"), std::string("cmd /c exit 5"), fits})
    {
        EXPECT_EQ(systemCall(ended.c_str()), 0) << ended;
        EXPECT_EQ(lines.text(), "");
    }
    for (const char* refused : {"C:\\no\\such\\program", "no-such-program-in-path 1", "", "  "})
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
    EXPECT_EQ(captureOutput([] { EXPECT_EQ(systemCall("cmd /c echo said"), 0); }), "said\n");
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(systemCall("ping -n 2 -w 1000 127.0.0.1"), 0);
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(500));
    // A file that the child held would not go.
    ScratchDirectory scratch;
    const std::string path = scratch / "file";
    std::FILE* const file = std::fopen(path.c_str(), "w");
    EXPECT_EQ(systemCall(("cmd /c echo more>>\"" + path + '"').c_str()), 0);
    std::fclose(file);
    EXPECT_TRUE(std::filesystem::remove(path));
}

}  // namespace
