// How the library's own code logs.
#pragma once

#include "ortha/ortha3/PrintLog.h"
#include "ortha/ortha3/detail/source_text.h"

namespace General::Ortha {

enum LogLevel : int
{
    levelFatal = 1,
    levelError = 2,
    levelWarn = 3,
    levelInfo = 4,
    levelTrace = 5,
    levelDebug = 6
};

}  // namespace General::Ortha

/// Logs one line for the place it stands in: ORTHA_LOG(levelWarn, "this:%p no door\n", this). Lines of objects begin with "this:%p ".
#define ORTHA_LOG(level, ...)                                                                                        \
    do                                                                                                               \
    {                                                                                                                \
        static constexpr ::General::Ortha::Detail::SourceText<sizeof(__FILE__)> orthaSource(__FILE__);               \
        ::General::Ortha::logFilter(level, "Unknown", orthaSource.text, __func__, __LINE__, "Unknown", __VA_ARGS__); \
    } while (false)
