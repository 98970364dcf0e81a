// Two small helpers around processes.
//
//     if (systemCall("tar -cf 'my backup.tar' data") != 0) { /* it could not be started */ }
//
// Threads: any thread.
#pragma once

#include <cstdint>

#include "ortha/ortha3/Export.h"

namespace General::Ortha {

/// Runs a command and waits, without limit, for its end. No shell is involved: the line is split at blanks, with single quotes, double
/// quotes and backslash as a shell would take them and no expansions; the first word is the program, looked for in PATH. The child gets the
/// standard streams and no other descriptor. Blocks the calling thread only.
/// 0 when the command was started and has ended, whatever its exit code; 1 for a null command; -1, with a log line, for a command of 260
/// characters or more and for one that could not be started.
ORTHA_API int systemCall(const char* command);

/// The calling process's id.
[[nodiscard]] ORTHA_API std::uint64_t getCurrectProcessID();

}  // namespace General::Ortha
