// Standard input, without waiting for it for long. One implementation a system, in posix/ and win32/.
#pragma once

#include <cstddef>

namespace Fleet {

/// Before the first reading.
void prepareInput();
/// Reads what there is, waiting for it at most so long. The bytes read; 0 if there is nothing yet, -1 at the end.
int readInput(char* to, std::size_t size, int milliseconds);

}  // namespace Fleet
