// The command line.
#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "Stamp.h"

namespace Fleet {

struct Options
{
    std::string devices;             ///< the device list
    std::optional<bool> simulate;    ///< true: all devices; false: none; not given: those of port 0
    std::chrono::seconds runTime{};  ///< 0: until stopped
    std::string format = defaultStampTemplate;
    bool dstRehearsal = false;  ///< no polling: what daylight saving does to this year
    bool verbose = false;
};

/// Reads the command line. A value is the exit code of a program that ends here: 0 after the help text, 2 after a message on standard error.
std::optional<int> readOptions(int argc, char** argv, Options& options);

}  // namespace Fleet
