// Log calls whose lines are easily told.
#pragma once

#include <string>

#include "ortha/ortha3/CPrintLog.h"
#include "ortha/ortha3/PrintLog.h"

namespace General::Ortha::Test {

/// With nothing shown a header is "[ ]".
inline void useShortHeader(unsigned char PrintOptions::*but = nullptr, unsigned char value = 0)
{
    PrintOptions options;
    options.noTime = options.noModule = options.noLevel = options.noThreadId = options.noVersion = options.noFile = options.noLine = 1;
    if (but)
    {
        options.*but = value;
    }
    setPrintOptions(options);
}

/// A log call of either layer.
inline int fullLog(int level, const std::string& text)
{
    return logFilter(level, "Door", "Door", "open", 7, nullptr, "%s", text.c_str());
}

inline int baseLog(int level, const std::string& text)
{
    return Ortha_logFilter(level, "Door", "Door", "open", 7, nullptr, "%s", text.c_str());
}

}  // namespace General::Ortha::Test
