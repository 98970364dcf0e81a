// Child processes.
#pragma once

#include <cstdint>

namespace General::Ortha::Platform {

/// Starts a command line without a shell and waits, without limit, for its end. The line is split by the system's own rules; where it has
/// none, as a shell would: blanks, single and double quotes, backslash, no expansions. The program is looked for in PATH. The child has the
/// standard streams and no other descriptor. False if the line is empty or cannot be split, or the program could not be started.
bool runChildProcess(const char* commandLine);

std::uint64_t currentProcessId();

}  // namespace General::Ortha::Platform
