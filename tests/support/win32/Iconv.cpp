#include "support/win32/iconv.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <optional>
#include <string>
#include <unordered_map>

namespace {

#include "charsets.inc"

using Table = std::unordered_map<unsigned int, unsigned int>;

Table tableOf(const std::string& name, bool decodes)
{
    const auto set = std::find(std::begin(setNames), std::end(setNames), name) - std::begin(setNames);
    Table table;
    for (const auto& row : setRows)
    {
        if (row[0] == set && (row[1] == 1) == decodes)
        {
            table[row[2]] = row[3];
        }
    }
    return table;
}

}  // namespace

struct IconvConverter
{
    std::string to, from;
    Table encoded, decoded;
};

namespace {

// Takes one character off the text: a unit that is no surrogate.
std::optional<unsigned int> take(const IconvConverter& converter, std::string& text)
{
    const auto byte = [&](std::size_t i) { return i < text.size() ? static_cast<unsigned char>(text[i]) : 0u; };
    unsigned int unit = 0xD800;
    std::size_t size = 1;
    if (converter.from == "UTF-16LE")
    {
        size = 2;
        unit = byte(0) | byte(1) << 8;
    }
    else if (converter.from == "UTF-8")
    {
        size = byte(0) < 0x80 ? 1 : byte(0) < 0xE0 ? 2 : 3;
        unit = size == 1   ? byte(0)
               : size == 2 ? (byte(0) & 31) << 6 | (byte(1) & 63)
                           : (byte(0) & 15) << 12 | (byte(1) & 63) << 6 | (byte(2) & 63);
    }
    else
    {
        auto found = converter.decoded.find(byte(0));
        if (found == converter.decoded.end())
        {
            size = 2;
            found = converter.decoded.find(byte(0) << 8 | byte(1));
        }
        unit = found == converter.decoded.end() ? 0xD800 : found->second;
    }
    if (size > text.size() || (unit >= 0xD800 && unit < 0xE000))
    {
        return std::nullopt;
    }
    text.erase(0, size);
    return unit;
}

bool put(const IconvConverter& converter, unsigned int unit, std::string& text)
{
    const auto add = [&](unsigned int byte) { text += static_cast<char>(byte); };
    if (converter.to == "UTF-16LE")
    {
        add(unit), add(unit >> 8);
        return true;
    }
    if (converter.to == "UTF-8")
    {
        unit < 0x80    ? add(unit)
        : unit < 0x800 ? (add(0xC0 | unit >> 6), add(0x80 | (unit & 63)))
                       : (add(0xE0 | unit >> 12), add(0x80 | (unit >> 6 & 63)), add(0x80 | (unit & 63)));
        return true;
    }
    const auto found = converter.encoded.find(unit);
    if (found == converter.encoded.end())
    {
        return false;
    }
    found->second > 0xFF ? add(found->second >> 8) : void();
    add(found->second);
    return true;
}

}  // namespace

iconv_t iconv_open(const char* to, const char* from)
{
    return new IconvConverter{to, from, tableOf(to, false), tableOf(from, true)};
}

std::size_t iconv(iconv_t converter, char** in, std::size_t* inLeft, char** out, std::size_t* outLeft)
{
    std::string text = in ? std::string(*in, *inLeft) : "", result;
    while (!text.empty())
    {
        const auto unit = take(*converter, text);
        if (!unit || !put(*converter, *unit, result) || result.size() > *outLeft)
        {
            return static_cast<std::size_t>(-1);
        }
    }
    if (in)
    {
        std::memcpy(*out, result.data(), result.size());
        *in += *inLeft;
        *inLeft = 0;
        *out += result.size();
        *outLeft -= result.size();
    }
    return 0;
}
