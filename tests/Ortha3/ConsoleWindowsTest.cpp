#include <fcntl.h>
#include <gtest/gtest.h>
#include <io.h>
#include <windows.h>

#include <string>
#include <vector>

#include "support/LogCalls.h"
#include "support/win32/ConsoleCapture.h"

namespace {

using namespace General::Ortha;
using namespace General::Ortha::Test;

// Standard output on a screen buffer of its own. To be made before the library first asks for it.
class Screen
{
public:
    Screen()
    {
        m_buffer = CreateConsoleScreenBuffer(GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                             CONSOLE_TEXTMODE_BUFFER, nullptr);
        EXPECT_NE(m_buffer, INVALID_HANDLE_VALUE);
        std::fflush(stdout);
        m_output = _dup(1);
        const int descriptor = _open_osfhandle(reinterpret_cast<std::intptr_t>(m_buffer), _O_TEXT);
        EXPECT_EQ(_dup2(descriptor, 1), 0);
        SetStdHandle(STD_OUTPUT_HANDLE, m_buffer);
    }
    ~Screen()
    {
        std::fflush(stdout);
        _dup2(m_output, 1);
    }

    WORD attribute() const
    {
        CONSOLE_SCREEN_BUFFER_INFO info{};
        EXPECT_TRUE(GetConsoleScreenBufferInfo(m_buffer, &info));
        return info.wAttributes;
    }
    void setAttribute(WORD attribute) { EXPECT_TRUE(SetConsoleTextAttribute(m_buffer, attribute)); }

    /// The first characters of a row, in pieces of one colour: "text/attribute ".
    std::string row(short number, DWORD length) const
    {
        std::vector<char> characters(length);
        std::vector<WORD> attributes(length);
        DWORD count = 0;
        EXPECT_TRUE(ReadConsoleOutputCharacterA(m_buffer, characters.data(), length, {0, number}, &count));
        EXPECT_TRUE(ReadConsoleOutputAttribute(m_buffer, attributes.data(), length, {0, number}, &count));
        std::string pieces;
        for (DWORD i = 0; i < length; ++i)
        {
            pieces += characters[i];
            pieces += i + 1 == length || attributes[i + 1] != attributes[i] ? "/" + std::to_string(attributes[i]) + " " : "";
        }
        return pieces;
    }

private:
    HANDLE m_buffer = nullptr;
    int m_output = -1;
};

void writeLines()
{
    std::string report;
    const auto tell = [&](const Screen& screen) { report += std::to_string(screen.attribute()) + "\n"; };
    {
        Screen screen;
        screen.setAttribute(0x1E);  // yellow on blue
        useShortHeader();
        setPrintLogLevel(6);
        Ortha_resetcolor();
        tell(screen);  // no line has set one
        for (int level = 1; level <= 6; ++level)
        {
            fullLog(level, "a"), baseLog(2, "b");
            level == 2 ? tell(screen) : void();
            fullLog(3, "c\n");
            report += screen.row(static_cast<short>(level - 1), 6);
            tell(screen);
        }
        fullLog(2, "d");
        useShortHeader(&PrintOptions::noColor, 1);
        fullLog(2, "e\n"), fullLog(2, "f\n");
        report += screen.row(6, 5) + screen.row(7, 4);
        tell(screen);
    }
    std::fputs(report.c_str(), stdout);
}

TEST(Console, ShowsEachLineInTheColourOfItsLevelAndThenTheOneBefore)
{
    const ChildResult result = runInConsole(writeLines);
    EXPECT_EQ(result.code, 0) << result.errors;
    EXPECT_EQ(result.output, "30\n[ ]abc/5 30\n4\n[ ]abc/4 30\n[ ]abc/6 30\n[ ]abc/2 30\n[ ]abc/7 30\n[ ]abc/3 30\n[ ]de/4 [ ]f/30 30\n");
}

}  // namespace
