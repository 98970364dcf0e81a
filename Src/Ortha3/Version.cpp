#include "ortha/ortha3/Version.h"

#include <cstdio>
#include <cstring>

#include "ortha/ortha3/PrintLog.h"

#include "Src/Ortha3/VersionText.h"

namespace General::Ortha {

namespace {

constexpr char months[][4] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

// The revision at the beginning of a text, or behind the letters, colons and dollar sign of a keyword.
int revisionNumber(const char* text)
{
    return leadingNumber(
        text + (text[0] >= '0' && text[0] <= '9' ? 0 : std::strspn(text, "$:ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz")));
}

}  // namespace

int leadingNumber(const char* text)
{
    int number = 0;
    return std::sscanf(text, "%9d", &number) == 1 ? number : 0;
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
        std::sscanf(text + 3, "%9d %9d", &date.day, &date.year);
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
