// Reading UTF-8 many bytes at once.
#pragma once

namespace General::Utils {

/// Reads sequences of up to three bytes from `in` on, and writes their units to `out`, which it moves behind them; stops in front of 32
/// bytes that hold anything else, or a fault, and when fewer than 34 are left. Where it stopped. Nothing is read from `end` on.
using WideUtf8 = const unsigned char* (*)(unsigned short*& out, const unsigned char* in, const unsigned char* end);

/// Null if the processor has no instructions for it.
WideUtf8 wideUtf8();

}  // namespace General::Utils
