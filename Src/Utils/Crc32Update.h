// The bytes of a CRC-32, without the inversions before and behind, in forms that give the same.
#pragma once

#include <cstddef>
#include <cstdint>

namespace General::Utils {

using Crc32Update = std::uint32_t (*)(std::uint32_t crc, const unsigned char* data, std::size_t length);

std::uint32_t crc32Portable(std::uint32_t crc, const unsigned char* data, std::size_t length);

/// By the processor's multiplication without carries, of one or of four words at once; null if it has none.
Crc32Update crc32Multiplying();
Crc32Update crc32MultiplyingWide();

}  // namespace General::Utils
