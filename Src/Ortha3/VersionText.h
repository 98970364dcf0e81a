// What both kinds of version stamps read from their texts.
#pragma once

#include "ortha/ortha3/Time.h"

namespace General::Ortha {

/// The number at the beginning of a text, blanks before it passed over; 0 if there is none.
int leadingNumber(const char* text);
/// Year, month and day of a date as __DATE__ gives it, "May 10 2024"; a month that is none is 13. The rest is zero.
SystemTime buildDate(const char* text);
/// Copies a name, cut to 31 characters, with its terminator. A null text counts as empty.
void copyName(char (&name)[32], const char* text);

inline constexpr char stampFormat[] = "[*] %s %d.%d.%d.%d Built in %d/%2d/%2d [*]\n";

}  // namespace General::Ortha
