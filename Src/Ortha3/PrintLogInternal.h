// The part of the log that is the library's own.
#pragma once

#include "ortha/ortha3/Function.h"
#include "ortha/ortha3/PrintLog.h"

namespace General::Ortha {

/// Sets a printer that gets every line of the calling thread, after the hooks and under a lock; an empty function removes it. A thread
/// removes its printer before it ends. 1, or 0, with a line on standard output, if the system has no per-thread slot for it.
int setThreadLogPrinter(TFunction1<void, const char*> printer);

/// Sets one display switch, in both layers.
void setPrintOption(unsigned char PrintOptions::*field, unsigned char value);

}  // namespace General::Ortha
