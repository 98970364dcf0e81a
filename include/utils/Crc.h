// Cyclic redundancy checks: against faults of a line, not against somebody who changes data.
//
//     unsigned int sum = crc32(data, length);
//     sum = crc32(sum, more, moreLength);                 // as of both, joined
//     unsigned short modbus = crc16(0xFFFF, data, length);
//
// Threads: any thread.
#pragma once

#include <cstddef>

#include "ortha/ortha3/Export.h"

namespace General::Utils {

/// CRC-16 with the reflected polynomial 0xA001, least significant bit first, nothing added at the end. `crc` is the start value, 0 for
/// CRC-16/ARC, 0xFFFF for CRC-16/MODBUS, or the result of what went before.
[[nodiscard]] ORTHA_API unsigned short crc16(unsigned short crc, const unsigned char* data, std::size_t length);

/// CRC-32 of IEEE 802.3, as zip and gzip have it: reflected polynomial 0xEDB88320, start value and final XOR 0xFFFFFFFF.
[[nodiscard]] ORTHA_API unsigned int crc32(const unsigned char* data, std::size_t length);
/// The same, going on from the result of what went before; 0 begins.
[[nodiscard]] ORTHA_API unsigned int crc32(unsigned int crc, const unsigned char* data, std::size_t length);

}  // namespace General::Utils
