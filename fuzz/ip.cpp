// Dotted texts: any text, and the round trip of an address in a buffer of any size.
#include <cstdio>

#include "utils/IpAddress.h"

#include "Fuzz.h"

using namespace General;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Fuzz::Input input(data, size);
    std::vector<char> buffer(input.byte() % 16 + 1, 'x');
    const auto text = input.rest<char>(true);
    const IpAddress ip = Utils::stringToIp(text.data());

    char dotted[16];
    Fuzz::require(Utils::ipToString(ip, dotted, sizeof(dotted)) == dotted && Utils::stringToIp(dotted).value == ip.value);
    char expected[16];
    std::snprintf(expected, sizeof(expected), "%u.%u.%u.%u", ip.value >> 24, ip.value >> 16 & 0xFF, ip.value >> 8 & 0xFF, ip.value & 0xFF);
    Fuzz::require(std::strcmp(dotted, expected) == 0);

    expected[buffer.size() - 1] = 0;
    Fuzz::require(std::strcmp(Utils::ipToString(ip, buffer.data(), buffer.size()), expected) == 0);

    // A text that is plain gives its numbers.
    unsigned int numbers[4];
    int end = 0;
    if (std::sscanf(text.data(), "%3u.%3u.%3u.%3u%n", &numbers[0], &numbers[1], &numbers[2], &numbers[3], &end) == 4 && text[0] >= '0' &&
        end == static_cast<int>(std::strlen(text.data())) && std::strspn(text.data(), "0123456789.") == std::strlen(text.data()))
    {
        Fuzz::require(ip.value == ((numbers[0] & 0xFF) << 24 | (numbers[1] & 0xFF) << 16 | (numbers[2] & 0xFF) << 8 | (numbers[3] & 0xFF)));
    }
    return 0;
}
