// Logging: levelled lines to the console, to printers and hooks, and to log files.
//
//     General::Ortha::logInfo("%d doors open\n", doors);       // [12:34:56 info Unknown 4711 Unknown:0]3 doors open
//     setPrintLogLevel(5);                                      // trace lines from here on
//     attachPrint(TFunction1<bool, const char*>(onLogLine));    // every line, also to this function
//
// The short functions stand in the global namespace and in General::Ortha; code with `using namespace General::Ortha` must say which.
//
// Levels: 1 fatal, 2 error, 3 warn, 4 info, 5 trace, 6 debug. A call above the current level (4 at first) returns 0 at once: nothing is
// formatted, no lock is taken, no memory allocated. A line that passes goes, in this order, to
//   1. the log printer if one is set, else the debugger and standard output;
//   2. every print hook, in the order of attachment;
//   3. the log file, if a path is set.
// Every call returns the number of characters of the line, header included, or 0 if it was dropped. A line longer than 8191 characters
// is cut and counts 8192.
//
// The log is a stream of text, not of lines: a text that does not end in a newline leaves the line open, and the next text continues it
// without a header. This state belongs to the process: texts of several threads can meet in one open line.
//
// Printers and hooks run on the logging thread, with no lock held. They may attach and detach hooks. What they log themselves goes to
// standard output as bare text and to no outlet, so they cannot recurse. They must not throw. A hook that another thread detaches may get
// one more call.
//
// Threads: any thread may log at any time. Settings (level, options, log printer) are start-up: a change is seen by other threads in its
// own time, and setLogPrinter must not race with a log call. Hooks may be attached and detached from any thread. No log call changes
// `errno` or the thread's last error.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>

#include "ortha/ortha3/Export.h"
#include "ortha/ortha3/Function.h"

// The short log functions, one a level, for code outside the namespace. logDebug logs at level 5, as logTrace does.
ORTHA_API int logFatal(const char* format, ...) ORTHA_PRINTF(1, 2);
ORTHA_API int logError(const char* format, ...) ORTHA_PRINTF(1, 2);
ORTHA_API int logWarn(const char* format, ...) ORTHA_PRINTF(1, 2);
ORTHA_API int logInfo(const char* format, ...) ORTHA_PRINTF(1, 2);
ORTHA_API int logTrace(const char* format, ...) ORTHA_PRINTF(1, 2);
ORTHA_API int logDebug(const char* format, ...) ORTHA_PRINTF(1, 2);

namespace General::Ortha {

/// What a line's header shows. One byte each; all 0 gives the default line. Mind the sense: most fields hide what they name.
struct PrintOptions
{
    unsigned char noTime = 0;            ///< no clock time, one blank in its place
    unsigned char noColor = 0;           ///< no colour on a terminal, and standard output is not flushed with each line
    unsigned char noModule = 0;          ///< no module name
    unsigned char noLevel = 0;           ///< no level word
    unsigned char noThreadId = 0;        ///< no thread id
    unsigned char noVersion = 0;         ///< no version
    unsigned char showFunction = 0;      ///< the function's name
    unsigned char noFile = 0;            ///< no file name
    unsigned char noLine = 0;            ///< no line number
    unsigned char showDate = 0;          ///< the date before the clock time
    unsigned char showMilliseconds = 0;  ///< the clock time with milliseconds
    unsigned char structured = 0;        ///< the labelled form, "[|T: 12:34:56 L:info |[Unknown] ... m:]"
    unsigned char noSaveFile = 0;        ///< the line is not saved to the log file
    unsigned char reserved[19] = {};
};

// The short log functions, one a level. logDebug logs at level 5, as logTrace does.
ORTHA_API int logFatal(const char* format, ...) ORTHA_PRINTF(1, 2);
ORTHA_API int logError(const char* format, ...) ORTHA_PRINTF(1, 2);
ORTHA_API int logWarn(const char* format, ...) ORTHA_PRINTF(1, 2);
ORTHA_API int logInfo(const char* format, ...) ORTHA_PRINTF(1, 2);
ORTHA_API int logTrace(const char* format, ...) ORTHA_PRINTF(1, 2);
ORTHA_API int logDebug(const char* format, ...) ORTHA_PRINTF(1, 2);

/// Logs for a named module. 0 at once unless `level` is 1 to 6.
ORTHA_API int logLibName(int level, const char* module, const char* format, ...) ORTHA_PRINTF(3, 4);

/// Logs with everything a header can show. What stands behind the last backslash of `file` is shown, and what stands behind the last ':' of
/// `function`. A level outside 0 to 6 shows no word. Preconditions: `file` is not null; `function` is not null while functions are shown.
/// `module` may be null only while modules are hidden; a null `version` counts as empty.
ORTHA_API int logFilter(int level, const char* module, const char* file, const char* function, int line, const char* version,
                        const char* format, ...) ORTHA_PRINTF(7, 8);

/// As logFilter, with the values as a va_list.
ORTHA_API int logFilterEx(int level, const char* module, const char* file, const char* function, int line, const char* version,
                          const char* format, va_list args) ORTHA_PRINTF(7, 0);

/// Sets the highest level that passes. 0 drops all but level 0. There is no range check.
ORTHA_API void setPrintLogLevel(int level);
[[nodiscard]] ORTHA_API int getPrintLogLevel();

/// Sets the display switches, for this layer and for the base layer of CPrintLog.h.
ORTHA_API void setPrintOptions(PrintOptions options);
/// Copies the display switches out. Always 0.
ORTHA_API int getPrintOptions(PrintOptions* options);

/// Replaces the console by `printer`, which gets every line; an empty function brings the console back. Always 0.
ORTHA_API int setLogPrinter(TFunction1<void, const char*> printer);

/// Adds a hook, which gets every line; its result is ignored. False if an equal function is attached already.
ORTHA_API bool attachPrint(TFunction1<bool, const char*> hook);
/// Removes a hook. False if no equal function is attached.
ORTHA_API bool detachPrint(TFunction1<bool, const char*> hook);

/// Logs `length` bytes at level 5, 16 to a row: address, bytes in hexadecimal, characters (bytes 32 to 122, else a dot). A blank line
/// follows each
/// 512 bytes. `length` is taken as a signed 32-bit count; nothing is logged from 0 down.
ORTHA_API void dumpHex(unsigned char* data, std::size_t length);

/// Runs one log command, as an operator types it: `argv` is the command word and its values, without a program's name. Nothing tells of a
/// command that is not understood. The numbers are read as atoi does; "on" and the other words of a value may be in capitals.
///
///     -loglevel N                           as setPrintLogLevel
///     -logmodule NAME on|off                lines of that module; modules not named pass
///     -logmodule on|off                     all lines; on brings modules that are off back too, until the next command that names one
///     -logtime, -logthread, -logversion on|off   shows or hides that piece of the header
///     -logfunction on|off                   mind: off shows the function, on hides it
///     -logpath PATH                         the log file, or the stem of a series' names; "" ends saving
///     -logsize KIB                          the size at which the file begins anew, or the next one is begun; 0 for no limit
///     -logsavesetting none                  one file, which begins anew (the setting at first)
///     -logsavesetting bysize KIB COUNT      a series, with this limit; COUNT files are kept, 0 for all
///     -logsavesetting byday on|off COUNT    a series; with on, a date has its own files
///     -logsavesetting filenametime day|sec  names of a series: PATH_2024-05-10_0 or PATH_2024-05-10-08-30-05_0
///     -logmodulestatistics on|off           counts bytes for getLogStatistics()
///     -h, or no word at all                 prints the usage to standard output
///
/// Any thread, while others log.
ORTHA_API void setLogFilter(int argc, char* const argv[]);

/// What one module has logged.
struct LogModuleInfo
{
    std::uint64_t logSize = 0;  ///< characters of its lines, headers included; stops at 4294967295
};

/// The modules that have logged since statistics were switched on, by name. Any thread. Throws std::bad_alloc without memory for the copy.
[[nodiscard]] ORTHA_API std::map<std::string, LogModuleInfo> getLogStatistics();

/// Closes the log file; the next line that is saved opens one again. Any thread.
ORTHA_API void logCleanup();

}  // namespace General::Ortha
