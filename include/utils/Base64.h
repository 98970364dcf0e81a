// Base64: bytes as text, three as four characters (RFC 4648, section 4), with padding and without line breaks.
//
//     std::vector<char> text(base64EncodeLenEx(length));
//     base64EncodeEx(text.data(), bytes, length);
//
// Three generations: those without a suffix count in `int`, the Ex ones in `size_t`, and the Ex2 ones look at no more than `length`
// characters, so they need no terminator. None reports a failure: decoding ends at the first character that is not in the alphabet. The
// caller gives the room that the Len functions tell.
//
// Threads: any thread.
#pragma once

#include <cstddef>

#include "ortha/ortha3/Export.h"

namespace General::Utils {

/// Room for the text of `length` bytes, with its terminator: (length + 2) / 3 * 4 + 1.
ORTHA_API int base64EncodeLen(int length);
/// Encodes `length` bytes and terminates the text. What it wrote, the terminator included; 0, with nothing written, if `length` is below 1.
ORTHA_API int base64Encode(char* destination, const char* source, int length);
/// Room for the bytes of a text and a terminator, at most 3 more than needed.
ORTHA_API int base64DecodeLen(const char* source);
/// Decodes a text and writes a zero byte behind. The number of bytes without it.
ORTHA_API int base64Decode(char* destination, const char* source);

/// As base64EncodeLen.
ORTHA_API std::size_t base64EncodeLenEx(std::size_t length);
/// As base64Encode, but 0 bytes give an empty text, and 1.
ORTHA_API std::size_t base64EncodeEx(char* destination, const char* source, std::size_t length);
ORTHA_API std::size_t base64DecodeLenEx(const char* source);
ORTHA_API std::size_t base64DecodeEx(char* destination, const char* source);

ORTHA_API std::size_t base64DecodeLenEx2(const char* source, std::size_t length);
ORTHA_API std::size_t base64DecodeEx2(char* destination, const char* source, std::size_t length);

}  // namespace General::Utils
