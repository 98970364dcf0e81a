// IpAddress: an IPv4 address, and its dotted text.
//
//     General::IpAddress ip = General::Utils::stringToIp("192.168.0.1");      // ip.value is 0xC0A80001
//     char text[16];
//     General::Utils::ipToString(ip, text, sizeof(text));
//
// Threads: any thread.
#pragma once

#include <cstddef>
#include <cstdint>

#include "ortha/ortha3/Export.h"

namespace General {

/// The first number of the dotted text is the most significant byte of the value, whatever the byte order of the machine.
union IpAddress
{
    std::uint32_t value;
    std::uint8_t bytes[4];  ///< the value's, in the byte order of the machine
};

namespace Utils {

/// Writes the dotted text, at most `size` - 1 characters and a terminator. Gives `buffer`.
ORTHA_API char* ipToString(IpAddress ip, char* buffer, std::size_t size);

/// Reads a dotted text. Of each number the low 8 bits count; what is missing is 0, and a warning tells: "10.1" gives 10.1.0.0, and so does
/// null give 0.0.0.0.
[[nodiscard]] ORTHA_API IpAddress stringToIp(const char* text);

}  // namespace Utils

}  // namespace General
