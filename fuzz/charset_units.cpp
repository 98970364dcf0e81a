// Character sets: single characters.
#include "utils/CharSet.h"

#include "Fuzz.h"

using namespace General::Utils;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Fuzz::Input input(data, size);
    const int room = static_cast<int>(input.byte() % 5);
    const auto unit = static_cast<unsigned short>(input.byte() << 8 | input.byte());
    const auto bytes = input.rest<unsigned char>();
    std::vector<unsigned char> out(static_cast<std::size_t>(room));

    const int page = uni2char(unit, out.data(), room);
    Fuzz::require(page == -1 || (page >= 1 && page <= room && page <= 2));
    unsigned short back = 0;
    Fuzz::require(page == -1 || page == (unit > 0xFF ? 2 : 1));
    Fuzz::require(page != 2 || (char2uni(out.data(), page, &back) == 2 && back == unit));

    const int utf8 = utf8_wctomb(out.data(), unit, room);
    const int expected = unit < 0x80 ? 1 : unit < 0x800 ? 2 : 3;
    Fuzz::require(utf8 == (room == 0 ? (out.data() ? -1 : 0) : expected > room ? -1 : expected));
    Fuzz::require(utf8 < 1 || (utf8_mbtowc(&back, out.data(), utf8) == utf8 && back == unit));

    const int read = char2uni(bytes.data(), Fuzz::count(bytes), &back);
    Fuzz::require(read == -1 || (read >= 1 && read <= 2 && read <= Fuzz::count(bytes)));
    const int sequence = utf8_mbtowc(&back, bytes.data(), Fuzz::count(bytes));
    Fuzz::require(sequence == -1 || (sequence >= 1 && sequence <= 6 && sequence <= Fuzz::count(bytes)));
    int told = -1;
    const unsigned short first = GetUnicodeFromUtf8(input.rest<char>(true).data(), &told);
    Fuzz::require(told >= 0 && told <= 3 && (sequence < 1 || sequence > 3 || (told == (back != 0 ? sequence : 0) && first == back)));
    return 0;
}
