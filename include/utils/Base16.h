// Base16: bytes as hexadecimal digits (RFC 4648).
//
//     char text[2 * 4 + 1];
//     base16Encode(bytes, 4, text, sizeof(text));           // "DEADBEEF", and 9
//
// Threads: any thread.
#pragma once

#include <cstddef>

#include "ortha/ortha3/Export.h"

namespace General::Utils {

/// Writes two upper-case digits for each byte, and fills the rest of `destination` with zeros, of which there must be one. The length of
/// the text plus 1; 0, with a warning, for null, no bytes, or too little room (2 * sourceLength + 1).
ORTHA_API std::size_t base16Encode(const unsigned char* source, std::size_t sourceLength, char* destination, std::size_t destinationLength);

/// Reads pairs of digits, upper or lower case, and fills the rest of `destination` with zeros. The number of bytes; 0, with a warning, for
/// null, an odd number of digits or none, too little room (sourceLength / 2), or a character that is no digit; then `destination` holds
/// zeros alone.
ORTHA_API std::size_t base16Decode(const char* source, std::size_t sourceLength, unsigned char* destination, std::size_t destinationLength);

}  // namespace General::Utils
