// The base layer of the log: the line header, the console and the level test, under plain names that any module can link to.
//
//     Ortha_logFilter(4, "Unknown", __FILE__, __func__, __LINE__, nullptr, "%d doors open\n", doors);
//
// A line written here goes to the console alone. The full layer, PrintLog.h, adds printers, hooks, module filters and log files;
// prefer it. Levels: 1 fatal, 2 error, 3 warn, 4 info, 5 trace, 6 debug; a level above the current one (4 at first) is dropped.
//
// The log is a stream of text, not of lines: a text that does not end in a newline leaves the line open, and the next text continues it
// without a header. This state belongs to the process, not to a thread.
//
// Threads: every function may be called from any thread. None changes `errno`, and none throws.
#pragma once

#include <cstdint>

#include "ortha/ortha3/Export.h"

namespace General::Ortha {

/// The local time of one log line.
struct LogTime
{
    std::int32_t year;
    std::int32_t month;      ///< 1 to 12
    std::int32_t day;        ///< 1 to 31
    std::int32_t dayOfWeek;  ///< 0 is Sunday
    std::int32_t hour;
    std::int32_t minute;
    std::int32_t second;
    std::int32_t milliSecond;
    std::int32_t reserved[4];  ///< zero
};

}  // namespace General::Ortha

extern "C" {

/// Formats one text and writes it to the console if its level passes. Level 6 counts as 5 here.
/// `file` may be null, else what stands behind its last backslash is shown; `function` may be null unless functions are shown; `version`
/// may be null. A text of 8192 characters or more, header included, is cut and ends the line.
/// The number of characters, header included, or 0 if the text was dropped.
ORTHA_API int Ortha_logFilter(int level, const char* module, const char* file, const char* function, int line, const char* version,
                              const char* format, ...) ORTHA_PRINTF(7, 8);

/// Reads the local time into `*time` (which may be null) and, if a new line begins, writes its header into `buffer`, sets the level's
/// colour on a terminal, and gives the header's length. 0 in the middle of a line. At most `size` bytes are written, terminator included; a
/// piece that does not fit is cut. A level outside 0 to 6 shows no word.
ORTHA_API int Ortha_logOptionControl(char* buffer, int size, int level, const char* module, const char* file, const char* function,
                                     int line, const char* version, General::Ortha::LogTime* time);

/// Writes `text` to the debugger, if there is one, and to standard output. `level` has no effect.
ORTHA_API void Ortha_print(int level, const char* text);

/// Flushes standard output and sets a terminal's colour back, if a line has ended since a colour was set.
ORTHA_API void Ortha_resetcolor();

/// The 13 display switches that this layer reads, one byte each in the order of PrintOptions. Never null.
ORTHA_API unsigned char* Ortha_getPrintOption();

}  // extern "C"
