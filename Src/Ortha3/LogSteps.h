// Three steps of the log's road that stand on higher floors: the module filter, the statistics, the log file.
#pragma once

#include <atomic>

#include "ortha/ortha3/CPrintLog.h"

namespace General::Ortha {

/// Whether the lines of a module (which may be null) pass.
bool logModuleEnabled(const char* module);

/// Whether lines are counted.
extern std::atomic<bool> logStatisticsEnabled;
/// Adds the length of a line to its module's total.
void addLogStatistics(const char* module, int count);

/// Writes a line to the log file. 0, or -1 if it was not saved, which a line on standard output tells unless no path is set; the log call
/// succeeds all the same.
int saveLogLine(const char* text, unsigned int count, const LogTime& time);

}  // namespace General::Ortha
