// Formatting of log messages.
#pragma once

#include <cstdarg>
#include <cstddef>

#include "ortha/ortha3/Export.h"

namespace General::Ortha::Detail {

/// As vsnprintf, `size` at least 1. Messages with plain conversions alone (%s %c %d %i %u, with l, ll or z before an integer, and %%) are
/// formatted by hand; any other goes to vsnprintf as a whole.
int formatMessage(char* buffer, std::size_t size, const char* format, va_list args) ORTHA_PRINTF(3, 0);

}  // namespace General::Ortha::Detail
