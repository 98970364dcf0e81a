// Base16: encoding against decoding, in rooms of any size.
#include "utils/Base16.h"

#include <algorithm>
#include <cctype>

#include "Fuzz.h"

using namespace General::Utils;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Fuzz::Input input(data, size);
    const std::size_t room = input.byte();
    const auto bytes = input.rest<unsigned char>();
    const std::size_t length = bytes.size();
    std::vector<char> text(room, 'x');
    const std::size_t encoded = base16Encode(bytes.data(), length, text.data(), room);
    Fuzz::require(encoded == (length != 0 && room > 2 * length ? 2 * length + 1 : 0));
    if (encoded != 0)
    {
        Fuzz::require(std::all_of(text.begin() + static_cast<std::ptrdiff_t>(2 * length), text.end(), [](char c) { return c == 0; }));
        std::vector<unsigned char> back(length);
        Fuzz::require(base16Decode(text.data(), 2 * length, back.data(), length) == length && back == bytes);
    }
    // The input as text.
    auto digits = input.rest<char>();
    const bool valid = length != 0 && length % 2 == 0 && room >= length / 2 &&
                       std::all_of(bytes.begin(), bytes.end(), [](int c) { return std::isxdigit(c); });
    std::vector<unsigned char> decoded(room, 'x');
    const std::size_t count = base16Decode(digits.data(), length, decoded.data(), room);
    Fuzz::require(count == (valid ? length / 2 : 0));
    if (valid)
    {
        std::vector<char> again(length + 1);
        Fuzz::require(base16Encode(decoded.data(), count, again.data(), again.size()) == length + 1);
        std::for_each(digits.begin(), digits.end(), [](char& c) { c = static_cast<char>(std::toupper(c)); });
        Fuzz::require(std::equal(digits.begin(), digits.end(), again.begin()));
    }
    return 0;
}
