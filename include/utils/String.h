// Bounded copies of text, which always leave a terminator.
//
//     char name[32];
//     General::Utils::strncpy(name, sizeof(name), text, count);
//     General::Utils::snprintf_x(name, sizeof(name), "%s-%d", text, number);
//
// Threads: any thread; the two variables are settings for the whole process: start-up.
#pragma once

#include <cstddef>

#include "ortha/ortha3/Export.h"

namespace General::Utils {

/// Formats at most `size` characters, with a terminator only if there is room for it; the number of characters, -1 if the text did not fit.
/// May be replaced.
extern ORTHA_API int (*snprintf)(char* buffer, std::size_t size, const char* format, ...);
/// Compares without regard to case: negative, 0 or positive. May be replaced.
extern ORTHA_API int (*stricmp)(const char* a, const char* b);

/// Copies at most `count` characters, as many as fit, and a terminator. The length of the text that is there now. `destinationSize` is at
/// least 1.
ORTHA_API std::size_t strncpy(char* destination, std::size_t destinationSize, const char* source, std::size_t count);

/// Appends at most `count` characters, as many as fit, and writes a zero byte at the end of `destination`. The bound that it used, the
/// smaller of `count` and the room; not what it added. `destination` holds a text that is shorter than `destinationSize`.
ORTHA_API std::size_t strncat(char* destination, std::size_t destinationSize, const char* source, std::size_t count);

/// Formats at most `size` - 1 characters and a terminator. The length of the text in `buffer`. 0, with nothing written, if `size` is below
/// 1.
ORTHA_API int snprintf_x(char* buffer, int size, const char* format, ...) ORTHA_PRINTF(3, 4);

}  // namespace General::Utils
