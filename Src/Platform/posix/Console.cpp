#include "Src/Platform/Console.h"

#include <unistd.h>

#include <atomic>
#include <cstdio>

namespace General::Ortha::Platform {

bool consoleIsTerminal()
{
    static std::atomic<int> s_terminal{-1};
    int terminal = s_terminal.load(std::memory_order_relaxed);
    if (terminal < 0)
    {
        terminal = isatty(STDOUT_FILENO) == 1 ? 1 : 0;
        s_terminal.store(terminal, std::memory_order_relaxed);
    }
    return terminal == 1;
}

ConsoleColor consoleColor()
{
    return defaultConsoleColor;
}

void setConsoleColor(ConsoleColor color)
{
    if (!consoleIsTerminal())
    {
        return;
    }
    char sequence[16];
    // SGR counts the colours red, green, blue from the lowest bit.
    const int sgr = color == defaultConsoleColor ? 0 : 30 + ((color >> 2) & 1) + (color & 2) + ((color & 1) << 2);
    const int length = std::snprintf(sequence, sizeof(sequence), "\x1b[%dm", sgr);
    [[maybe_unused]] const ssize_t written = write(STDOUT_FILENO, sequence, static_cast<std::size_t>(length));
}

void debuggerOutput(const char*)
{
    // No debugger listens for texts here.
}

}  // namespace General::Ortha::Platform
