#include "Src/Platform/Console.h"

#include "Src/Platform/win32/Windows.h"

namespace General::Ortha::Platform {

static_assert(FOREGROUND_BLUE == 1 && FOREGROUND_GREEN == 2 && FOREGROUND_RED == 4, "a colour is a console attribute");

namespace {

// Standard output's console; null if it is none.
HANDLE console()
{
    static const HANDLE s_console = [] {
        const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
        CONSOLE_SCREEN_BUFFER_INFO info;
        return GetConsoleScreenBufferInfo(output, &info) ? output : nullptr;
    }();
    return s_console;
}

}  // namespace

bool consoleIsTerminal()
{
    return console() != nullptr;
}

ConsoleColor consoleColor()
{
    CONSOLE_SCREEN_BUFFER_INFO info;
    return console() && GetConsoleScreenBufferInfo(console(), &info) ? info.wAttributes : defaultConsoleColor;
}

void setConsoleColor(ConsoleColor color)
{
    if (console())
    {
        SetConsoleTextAttribute(console(), color);
    }
}

void debuggerOutput(const char* text)
{
    OutputDebugStringA(text);
}

}  // namespace General::Ortha::Platform
