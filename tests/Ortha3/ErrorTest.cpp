#include "ortha/ortha3/Error.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

#include "ortha/ortha3/Assert.h"
#include "ortha/ortha3/PrintLog.h"

#include "support/Capture.h"
#include "support/LogLines.h"
#include "support/Sync.h"

namespace {

using namespace General::Ortha;
using namespace General::Ortha::Test;
using ::testing::MatchesRegex;

TEST(Error, TheLastErrorIsTheThreadsOwn)
{
    for (const int code : {-1, 0x10030001, -0x7FFFFFFF - 1, 0})
    {
        setLastError(code);
        std::thread([] {
            EXPECT_EQ(getLastError(), 0);
            setLastError(5);
        }).join();
        EXPECT_EQ(getLastError(), code);
    }
}

TEST(Error, ATextStandsUntilTheNextOneForItsCode)
{
    EXPECT_STREQ(getErrMsg(7), "");
    setErrMsg(-7, "minus");
    setErrMsg(7, "first");
    const char* const text = getErrMsg(7);
    const string copy = getErrorMessage(7);
    for (int code = 8; code < 1000; ++code)
    {
        setErrMsg(code, "another");
    }
    EXPECT_STREQ(text, "first") << "other codes do not move it";
    setErrMsg(7, nullptr);
    EXPECT_STREQ(getErrMsg(7), "");
    setErrorMessage(7, string("cut\0off", 7));
    EXPECT_TRUE(copy == "first" && getErrorMessage(7) == "cut" && getErrorMessage(-7) == "minus");
}

TEST(Error, ThreadsThatMeetAtTheFirstUseShareOneTableAndCopyWholeTexts)
{
    const std::string texts[] = {std::string(500, 'a'), std::string(900, 'b')};
    inThreads([&](int i) {
        for (int code = i; code < 200 * threadCount; code += threadCount)
        {
            setErrMsg(code, std::to_string(code).c_str());
            setErrMsg(-1, texts[i % 2].c_str());
            const string copy = getErrorMessage(-1);
            EXPECT_TRUE(copy == texts[0].c_str() || copy == texts[1].c_str());
        }
    });
    for (int code = 0; code < 200 * threadCount; ++code)
    {
        EXPECT_EQ(getErrMsg(code), std::to_string(code));
    }
}

TEST(Error, WhoAsksAfterTheExitHandlerFindsAFreshTable)
{
    struct Late
    {
        ~Late()
        {
            const std::string before = getErrMsg(7);
            setErrMsg(7, "new");
            setLastError(-4);
            std::printf("<%s><%s><%d>", before.c_str(), getErrMsg(7), getLastError());
        }
    };
    const ChildResult result = runInChild([] {
        static Late late;
        setErrMsg(7, "old");
    });
    EXPECT_EQ(result.code, 0) << result.errors;
    EXPECT_EQ(result.output, "<><new><-4>");
}

TEST(Assertion, ReportsToStandardErrorAndAbortsWhateverTheLogLevel)
{
    for (const int level : {0, 4})
    {
        const ChildResult result = runInChild([&] {
            std::atexit([] { std::fputs("exit handler", stderr); });
            setPrintLogLevel(level);
            attachPrint({+[](const char* text) { return std::fprintf(stderr, "log: %s", text) > 0; }});
            level == 0 ? Detail::assertionFailedMsg("door->open", "it is %s", "void f(int)", "Src\\Door", LONG_MAX)
                       : Detail::assertionFailed("door->open", "void f(int)", "Src\\Door", LONG_MAX);
        });
        EXPECT_TRUE(result.aborted) << result.code;
        const std::string report = R"(\*\*\*\*\* Internal Program Error - assertion \(door->open\) failed in void f\(int\): Src\\Door\()" +
                                   std::to_string(LONG_MAX) + "\\)";
        EXPECT_THAT(result.errors, MatchesRegex(report + (level == 0 ? ": it is %s\n"
                                                                     : "\nlog: \\[..:..:.. info Unknown [0-9]+ Unknown:0\\]custom_abort")));
    }
}

TEST(Assertion, TheMacroEvaluatesOnceAndTellsConditionFunctionAndPlace)
{
    int evaluated = 0;
    ORTHA_ASSERT(++evaluated == 1);
    EXPECT_EQ(evaluated, 1);
    const std::string line = std::to_string(__LINE__ + 1);
    const ChildResult result = runInChild([] { ORTHA_ASSERT(getLastError() == 1 && "text"); });
    EXPECT_THAT(result.errors,
                MatchesRegex(R"(.*assertion \(getLastError\(\) == 1 && "text"\) failed in .*TestBody.*: .*\\Ortha3\\ErrorTest\()" + line +
                             "\\)\n"));
}

}  // namespace
