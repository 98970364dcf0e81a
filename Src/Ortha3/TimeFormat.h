// The template language of times, for every class that writes or reads one.
#pragma once

#include "ortha/ortha3/Time.h"

namespace General::Ortha {

/// How a time is shown where its template does not say.
struct TimePreferences
{
    CTime::DateFormat dateFormat = CTime::dateFormatYMD;
    char separator = '-';
    bool twelveHour = false;
};

/// Where a template's faults are told.
using ReportFormatFault = void (*)(const char* text);

/// The preferences that a template tells.
TimePreferences preferencesOf(const char* format, ReportFormatFault report);

/// Writes a time. `preferences` hold but for what `options` (CTime::FormatOption) take from the template.
void formatTime(char* buf, const char* format, const SystemTime& time, TimePreferences preferences, int options, ReportFormatFault report);

}  // namespace General::Ortha
