// The console behind standard output, and the debugger.
#pragma once

#include <cstdint>

namespace General::Ortha::Platform {

/// A text colour: 1 blue, 2 green, 4 red, added up; `defaultConsoleColor` is what the terminal shows by itself.
using ConsoleColor = std::uint16_t;
inline constexpr ConsoleColor defaultConsoleColor = 0x100;

/// True if standard output is a terminal. Asked once, at the first call.
bool consoleIsTerminal();
/// The colour that stands now; where a terminal cannot be asked, `defaultConsoleColor`.
ConsoleColor consoleColor();
/// Sets the colour for what is written from now on. Nothing if standard output is not a terminal. The caller has flushed standard output.
void setConsoleColor(ConsoleColor color);

/// Gives a text to an attached debugger, where the system has a channel for that.
void debuggerOutput(const char* text);

}  // namespace General::Ortha::Platform
