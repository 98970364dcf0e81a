#include <gtest/gtest.h>

#include <string>

#include "ortha/ortha3/CPrintLog.h"
#include "ortha/ortha3/PrintLog.h"

#include "support/Capture.h"
#include "support/LogCalls.h"

namespace {

using namespace General::Ortha;
using namespace General::Ortha::Test;

TEST(Console, ShowsEachLineInTheColourOfItsLevelAndThenTheOneBefore)
{
    useShortHeader();
    setPrintLogLevel(6);
    EXPECT_EQ(captureTerminal(Ortha_resetcolor), "") << "no line has set one";
    const char* sgr[] = {"30", "35", "31", "33", "32", "37", "36"};
    for (int level = 0; level <= 6; ++level)
    {
        // The colour is the one of the line's beginning, and stays to its end.
        EXPECT_EQ(captureTerminal([&] { fullLog(level, "a"), baseLog(2, "b"), fullLog(3, "c\n"); }),
                  "\x1b[" + std::string(sgr[level]) + "m[ ]abc\n\x1b[0m");
    }
    EXPECT_EQ(captureTerminal([] { baseLog(6, "x\n"); }), "\x1b[37m[ ]x\n\x1b[0m");
    // A colour that stands when colours are switched off is still taken back, once.
    const auto switchedOff = [] {
        fullLog(2, "a");
        useShortHeader(&PrintOptions::noColor, 1);
        fullLog(2, "b\n"), fullLog(2, "c\n"), baseLog(2, "d\n");
        Ortha_resetcolor();
    };
    EXPECT_EQ(captureTerminal(switchedOff), "\x1b[31m[ ]ab\n\x1b[0m[ ]c\n[ ]d\n");
}

}  // namespace
