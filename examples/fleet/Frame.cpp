#include "Frame.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <limits>
#include <stdexcept>

using General::Memory::CPacket;

namespace Fleet {

namespace {

constexpr std::size_t valueOffset = frameLengthSize + 1;
constexpr std::size_t minFrame = valueOffset + 2;  // one character each

bool isPrintable(std::string_view text)
{
    return std::all_of(text.begin(), text.end(), [](unsigned char c) { return std::isgraph(c) != 0; });
}

}  // namespace

std::string makeFrame(std::string_view value, std::string_view unit)
{
    const std::size_t length = valueOffset - frameLengthSize + value.size() + unit.size();
    std::string frame{static_cast<char>(length >> 8), static_cast<char>(length & 0xFF), static_cast<char>(value.size())};
    return frame.append(value).append(unit);
}

std::size_t frameSize(const unsigned char* length)
{
    const std::size_t size = frameLengthSize + (std::size_t{length[0]} << 8) + length[1];
    if (size < minFrame || size > maxFrame)
    {
        throw std::runtime_error("a frame of " + std::to_string(size) + " bytes");
    }
    return size;
}

void takeApart(const CPacket& frame, CPacket& value, CPacket& unit)
{
    const std::size_t rest = frame.size() - valueOffset;
    const std::size_t valueSize = frame.getBuffer()[frameLengthSize];
    if (valueSize == 0 || valueSize >= rest)
    {
        throw std::runtime_error("a frame whose value has " + std::to_string(valueSize) + " of " + std::to_string(rest) + " bytes");
    }
    value = CPacket(frame, valueOffset, valueSize, 0);
    unit = CPacket(frame, valueOffset + valueSize, rest - valueSize, 0);
    if (!value.valid() || !unit.valid())
    {
        throw std::runtime_error("no memory for the parts of a frame");
    }
    if (std::isnan(number(value)))
    {
        throw std::runtime_error("a frame whose value is no number");
    }
    if (!isPrintable(text(unit)))
    {
        throw std::runtime_error("a frame whose unit is not printable");
    }
}

std::string_view text(const CPacket& part)
{
    return {reinterpret_cast<const char*>(part.getBuffer()), part.size()};
}

double number(const CPacket& part)
{
    const std::string_view digits = text(part);
    const char* const end = digits.data() + digits.size();
    double value = 0;
    const auto [stop, error] = std::from_chars(digits.data(), end, value);
    return error == std::errc() && stop == end && std::isfinite(value) ? value : std::numeric_limits<double>::quiet_NaN();
}

}  // namespace Fleet
