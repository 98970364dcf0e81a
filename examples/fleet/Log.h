// What the program logs as: a module for each kind of line, which "-logmodule" switches and the closing report counts.
#pragma once

#include <ortha/ortha3/PrintLog.h>

#include <string>

namespace Fleet {

using General::Ortha::logLibName;

enum Level : int
{
    levelWarn = 3,
    levelInfo = 4,
    levelTrace = 5
};

constexpr const char* moduleClients = "clients";
constexpr const char* moduleFleet = "fleet";
constexpr const char* moduleReadings = "readings";
constexpr const char* moduleReport = "report";
constexpr const char* moduleSimulator = "simulator";

/// Runs a log command as it is typed, "-logmodule readings off"; a value with blanks stands in double quotes. False, and nothing happens,
/// if it does not begin with "-log".
bool runLogCommand(const std::string& text);

/// Saves lines to files named `stem` with date and number: a new one each day and at `kilobytes`, of which the newest `count` are kept, 0
/// for all. Makes the directory if need be; throws std::runtime_error if it cannot.
void saveLog(const std::string& stem, unsigned int kilobytes, unsigned int count);

}  // namespace Fleet
