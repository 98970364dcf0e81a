// Settings of the log files, which the log commands change. The state and the work stand in LogFile.cpp.
#pragma once

#include <atomic>
#include <cstdint>

namespace General::Ortha {

// Each is read by itself when a line is saved: a change is seen in its own time.
struct LogFileSettings
{
    std::atomic<bool> saveOldWay{true};            // one file that begins anew at its limit; else a series of files
    std::atomic<std::int32_t> logSizeLimit{0};     // bytes; 0: no limit
    std::atomic<bool> saveByDay{false};            // series: a new file when the date changes
    std::atomic<std::int32_t> maxLogFiles{0};      // series: how many are kept; 0: all
    std::atomic<std::int32_t> fileNameSeconds{0};  // series: 1 puts the time of day into the names too
};

extern LogFileSettings logFileSettings;

/// Sets the file, or the stem of the names of the series; empty: nothing is saved from here on. A path that ends in a separator is refused
/// with a line on standard output, and counts as empty. A file that is open stays in use.
void setLogPath(const char* path);

}  // namespace General::Ortha
