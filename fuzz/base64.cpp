// Base64: the three generations against each other, encoding against decoding.
#include "utils/Base64.h"

#include <algorithm>

#include "Fuzz.h"

using namespace General::Utils;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Fuzz::Input input(data, size);
    const auto bytes = input.rest<char>();
    const auto text = input.rest<char>(true);

    std::vector<char> encoded(base64EncodeLenEx(size));
    Fuzz::require(base64EncodeEx(encoded.data(), bytes.data(), size) == encoded.size() && encoded.back() == 0);
    std::vector<char> older(static_cast<std::size_t>(base64EncodeLen(Fuzz::count(bytes))));
    const int olderLength = base64Encode(older.data(), bytes.data(), Fuzz::count(bytes));
    Fuzz::require(size == 0 ? olderLength == 0 : olderLength == Fuzz::count(encoded) && older == encoded);

    std::vector<char> back(base64DecodeLenEx(encoded.data()));
    Fuzz::require(base64DecodeEx(back.data(), encoded.data()) == size);
    Fuzz::require(std::equal(bytes.begin(), bytes.end(), back.begin()));

    // The input as text, which is terminated for the first two and is not for the third.
    std::vector<char> first(static_cast<std::size_t>(base64DecodeLen(text.data())));
    std::vector<char> second(base64DecodeLenEx(text.data()));
    std::vector<char> third(base64DecodeLenEx2(bytes.data(), size));
    const std::size_t length = base64DecodeEx2(third.data(), bytes.data(), size);
    Fuzz::require(base64Decode(first.data(), text.data()) == static_cast<int>(length));
    Fuzz::require(base64DecodeEx(second.data(), text.data()) == length);
    Fuzz::require(first == second && second == third && third[length] == 0);
    Fuzz::require(length < third.size() && third.size() - length <= 4);
    return 0;
}
