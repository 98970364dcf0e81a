// The longest part of encoding and decoding text that can be done many characters at once. What is left over is for the portable forms.
#pragma once

#include <cstddef>

namespace General::Utils {

/// Each tells how many units it has dealt with, from the front: bytes when encoding, characters when decoding (which stops in front of a
/// group that holds one that is no digit or not in the alphabet). Nothing is read or written beyond the units and what they become.
struct WideText
{
    std::size_t (*base16Encode)(char* text, const unsigned char* bytes, std::size_t length);
    std::size_t (*base16Decode)(unsigned char* bytes, const char* text, std::size_t length);
    std::size_t (*base64Encode)(char* text, const unsigned char* bytes, std::size_t length);
    std::size_t (*base64Decode)(char* bytes, const char* text, std::size_t length);
};

/// Null if the processor has no instructions for it.
const WideText* wideText();

}  // namespace General::Utils
