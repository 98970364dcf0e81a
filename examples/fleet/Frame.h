// What a device answers a request with: a frame that holds one reading.
//
// | Offset | Bytes | Holds                                                              |
// |--------|-------|--------------------------------------------------------------------|
// | 0      | 2     | the number of bytes behind this field, the high byte first         |
// | 2      | 1     | the number of bytes in the value, v                                |
// | 3      | v     | the value: text, a finite decimal number                           |
// | 3 + v  | rest  | the unit: text, at least one printable character, none of it blank |
//
// A device is not trusted: every field is checked before it is used, and std::runtime_error tells what is wrong.
#pragma once

#include <ortha/ortha3/Packet.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace Fleet {

constexpr std::size_t frameLengthSize = 2;  ///< what has to be read to know how long the frame is
constexpr std::size_t maxFrame = 256;       ///< all fields together

/// A frame of these texts, which must fit.
std::string makeFrame(std::string_view value, std::string_view unit);

/// The bytes in the whole frame that begins with the `frameLengthSize` bytes at `length`: room for every field, and at most maxFrame.
std::size_t frameSize(const unsigned char* length);

/// Gives the parts of a whole frame. They are ranges of its packet: no byte is copied, and the frame lives as long as one of them.
void takeApart(const General::Memory::CPacket& frame, General::Memory::CPacket& value, General::Memory::CPacket& unit);

/// The bytes of a packet as text, without an end mark; valid as long as the packet.
std::string_view text(const General::Memory::CPacket& part);
/// The text of a packet as a number; not-a-number unless it is a finite one.
double number(const General::Memory::CPacket& part);

}  // namespace Fleet
