#include "Stamp.h"

#include <algorithm>
#include <cctype>
#include <string_view>

using General::Ortha::CTime;

namespace Fleet {

namespace {

// No letter of a template gives more than two characters: "H", "m" and "s" a number of two digits, "t" AM or PM. The date fields stay
// within that too: the four digits of a year need three "y", wherever they stand. "HmHm..." of 64 letters gives the most.
constexpr std::size_t longestStamp = 2 * maxStampTemplate;

// The letters of the date in the order in which they first stand.
std::string dateOrder(std::string_view text)
{
    std::string order;
    for (const char c : text)
    {
        if ((c == 'y' || c == 'M' || c == 'd') && order.find(c) == std::string::npos)
        {
            order += c;
        }
    }
    return order;
}

}  // namespace

std::string checkStampTemplate(const std::string& text)
{
    const auto printable = [](unsigned char c) { return c < 0x80 && std::isprint(c) != 0; };
    if (text.empty() || text.size() > maxStampTemplate || !std::all_of(text.begin(), text.end(), printable))
    {
        return "a template has 1 to " + std::to_string(maxStampTemplate) + " characters, all of them printable ASCII";
    }
    const std::string order = dateOrder(text);
    for (const std::string_view known : {"yMd", "Mdy", "dMy"})
    {
        if (known.substr(0, order.size()) == order)
        {
            return {};
        }
    }
    return "the date stands in the order y M d, M d y or d M y, of which the last fields may be missing";
}

std::string stamp(const CTime& time)
{
    const General::Ortha::string format = CTime::getFormat();
    int options = CTime::formatAsWritten;
    if (dateOrder(format.c_str()).size() < 2)
    {
        options &= ~CTime::formatDateOrder;  // there is none to take, which would leave an error line each time
    }
    char text[longestStamp + 1];
    time.format(text, format.c_str(), options);
    return text;
}

int stampWidth()
{
    return static_cast<int>(stamp(CTime(2000, 12, 31, 22, 59, 59)).size());  // two digits wherever there can be two
}

}  // namespace Fleet
