// Character sets: those of one byte. The first byte tells which one, the second the room.
#include <iterator>

#include "utils/CharSet.h"

#include "Fuzz.h"

using namespace General::Utils;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr decltype(&cp862_to_utf8) sets[] = {
        cp862_to_utf8,     cp874_to_utf8,      cp1250_to_utf8,     cp1251_to_utf8,     iso8859_1_to_utf8,  iso8859_2_to_utf8,
        iso8859_3_to_utf8, iso8859_4_to_utf8,  iso8859_5_to_utf8,  iso8859_6_to_utf8,  iso8859_7_to_utf8,  iso8859_8_to_utf8,
        iso8859_9_to_utf8, iso8859_10_to_utf8, iso8859_13_to_utf8, iso8859_14_to_utf8, iso8859_15_to_utf8, iso8859_16_to_utf8};
    Fuzz::Input input(data, size);
    const auto toUtf8 = sets[input.byte() % std::size(sets)];
    const int room = static_cast<int>(input.byte());
    const auto bytes = input.rest<unsigned char>();
    const int length = Fuzz::count(bytes);
    std::vector<unsigned char> out(static_cast<std::size_t>(room));

    int read = length;
    int written = room;
    const int result = toUtf8(out.data(), written, bytes.data(), read);
    Fuzz::require(result == (length == 0 || room < length ? -1 : 0));
    if (result == 0)
    {
        std::vector<unsigned short> units(static_cast<std::size_t>(written));
        const int count = utf8_mbstowcs(units.data(), out.data(), written);
        Fuzz::require(written <= room && read <= length && count <= read && (read == length || room - written < 3));
    }

    const int needed = cp1252_to_utf8(out.data(), room, bytes.data(), length);
    Fuzz::require(length == 0 ? needed == -1 : needed == 0 || needed > room);
    const int exact = length == 0 ? 0 : cp1252_to_utf8(nullptr, 0, bytes.data(), length);
    std::vector<unsigned char> utf8(static_cast<std::size_t>(exact));
    Fuzz::require(exact == 0 || cp1252_to_utf8(utf8.data(), exact, bytes.data(), length) == 0);
    std::vector<unsigned char> back(bytes.size());
    const auto end = static_cast<std::size_t>(utf8_to_cp1252(utf8.data(), exact, back.data(), length));
    Fuzz::require(end == bytes.size());  // a byte that is not defined becomes a zero byte
    for (std::size_t i = 0; i < end && (back[i] != 0 || bytes[i] == 0); ++i)
    {
        Fuzz::require(back[i] == bytes[i]);
    }
    Fuzz::require(utf8_to_cp1252(bytes.data(), length, out.data(), room) <= room);
    return 0;
}
