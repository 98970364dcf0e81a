// Character sets: texts of several bytes a character. Sizes are what the first byte tells.
#include <algorithm>

#include "utils/CharSet.h"

#include "Fuzz.h"

using namespace General::Utils;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Fuzz::Input input(data, size);
    const int room = static_cast<int>(input.byte());
    const auto within = [room](int result) { return result >= 0 && result <= room; };
    auto bytes = input.rest<unsigned char>();
    auto text = input.rest<char>(true);
    auto units = input.rest<unsigned short>();
    auto ended = input.rest<unsigned short>(true);
    auto values = input.rest<char>();
    const int length = Fuzz::count(bytes);
    std::vector<unsigned char> out(static_cast<std::size_t>(room));
    std::vector<unsigned short> outUnits(out.size());
    auto* const outText = reinterpret_cast<char*>(out.data());

    std::vector<unsigned short> decoded(bytes.size());
    const int decodedCount = utf8_mbstowcs(decoded.data(), bytes.data(), length);
    Fuzz::require(decodedCount >= 0 && decodedCount <= length);
    Fuzz::require(within(utf8_wcstombs(out.data(), ended.data(), room)));
    std::vector<unsigned char> again(3 * decoded.size());
    decoded.resize(static_cast<std::size_t>(decodedCount) + 1);
    std::vector<unsigned short> back(again.size());
    const int count = utf8_mbstowcs(back.data(), again.data(), utf8_wcstombs(again.data(), decoded.data(), Fuzz::count(again)));
    // A character beyond the units may be cut to zero, which ends the text.
    Fuzz::require(count <= decodedCount && std::equal(back.begin(), back.begin() + count, decoded.begin()) &&
                  decoded[static_cast<std::size_t>(count)] == 0);

    Fuzz::require(within(Gb2312ToUni(text.data(), outUnits.data(), room)));
    const int converted = UniTGb2312(units.data(), Fuzz::count(units), outText, room);
    Fuzz::require(converted == -1 || (within(converted) && converted <= Fuzz::count(units)));
    Fuzz::require(within(Gb2312TUtf8(text.data(), out.data(), room)));
    Fuzz::require(utf8TGb2312(bytes.data(), outText, length, room) >= -1);
    Fuzz::require(within(UCS4ToUtf8(values.data(), Fuzz::count(values), out.data(), room)));
    Fuzz::require(within(utf8ToUCS4(values.data(), Fuzz::count(values), out.data(), room)));
    return 0;
}
