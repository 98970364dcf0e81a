#include "ortha/ortha3/Version.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>

#include "ortha/ortha3/PrintLog.h"

#include "Src/Ortha3/VersionText.h"

namespace General::Ortha {

namespace {

constexpr char months[][4] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

// The number at the beginning of a text, blanks before it passed over, and where it ends; 0, at the beginning, if there is none.
int number(const char* text, const char*& end)
{
    char* last = nullptr;
    const long value = std::strtol(text, &last, 10);
    end = last;
    return static_cast<int>(std::clamp<long>(value, INT_MIN, INT_MAX));
}

// The revision at the beginning of a text, or behind the letters, colons and dollar sign of a keyword.
int revisionNumber(const char* text)
{
    if (text[0] >= '0' && text[0] <= '9')
    {
        return leadingNumber(text);
    }
    const std::size_t keyword = std::strspn(text, "$:ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz");
    return keyword == 0 ? 0 : leadingNumber(text + keyword);
}

}  // namespace

int leadingNumber(const char* text)
{
    return number(text, text);
}

SystemTime buildDate(const char* text)
{
    SystemTime date;
    date.isdst = 0;
    text = text ? text : "";
    date.month = 13;
    for (int i = 0; i < 12; ++i)
    {
        if (std::strncmp(text, months[i], 3) == 0)
        {
            date.month = i + 1;
        }
    }
    if (std::strlen(text) > 3)
    {
        date.day = number(text + 3, text);
        date.year = number(text, text);
    }
    return date;
}

void copyName(char (&name)[32], const char* text)
{
    std::memset(name, 0, sizeof(name));
    std::strncpy(name, text ? text : "", sizeof(name) - 1);
}

SystemTime CVersion::appDate{0, 0, 0, 0, 0, 0, 0, 0};

CVersion::CVersion(const char* library, int first, int second, int third, const char* revisionText, const char* dateText)
    : major(first), minor(second), revision(third), svnRevision(revisionNumber(revisionText ? revisionText : "")), date(buildDate(dateText))
{
    copyName(name, library);
}

void CVersion::print() const
{
    logInfo(stampFormat, name, major, minor, revision, svnRevision, date.year, date.month, date.day);
}

void CVersion::setAppDate(const char* date)
{
    appDate = buildDate(date);
}

}  // namespace General::Ortha
