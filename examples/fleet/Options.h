// The command line.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "Stamp.h"

namespace Fleet {

struct Options
{
    std::string devices;             ///< the device list
    std::optional<bool> simulate;    ///< true: all devices; false: none; not given: those of port 0
    std::chrono::seconds runTime{};  ///< 0: until stopped
    std::string format = defaultStampTemplate;
    std::string log;                       ///< the stem of the log files; empty: none
    unsigned int logSize = 1024;           ///< KiB a file
    unsigned int logFiles = 10;            ///< how many are kept, 0 for all
    std::vector<std::string> logCommands;  ///< run at the start
    bool dstRehearsal = false;             ///< no polling: what daylight saving does to this year
    bool verbose = false;
};

/// Reads the command line. A value is the exit code of a program that ends here: 0 after the help text, 2 after a message on standard
/// error.
std::optional<int> readOptions(int argc, char** argv, Options& options);

}  // namespace Fleet
