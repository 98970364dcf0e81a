// The steps in their initial state: every module passes, nothing is counted, and no path is set to save to.
#include "Src/Ortha3/LogSteps.h"

#include "ortha/ortha3/PrintLog.h"

namespace General::Ortha {

std::atomic<bool> logStatisticsEnabled{false};

bool logModuleEnabled(const char*)
{
    return true;
}

void addLogStatistics(const char*, int) {}

int saveLogLine(const char*, unsigned int, const LogTime&)
{
    return -1;
}

void logCleanup() {}

}  // namespace General::Ortha
