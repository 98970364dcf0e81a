#include "ortha/Version.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <list>
#include <string>

#include "utils/String.h"

#include "Src/Ortha3/Log.h"
#include "Src/Ortha3/VersionText.h"
#include "Src/VersionList.h"

using namespace General::Ortha;

namespace {

struct VersionEntry
{
    std::string name;
    std::array<int, 3> version;  // major, minor, revision
};

// In order of construction. Never destroyed, as stamps of other libraries live until the very end.
std::list<VersionEntry>& entries()
{
    static std::list<VersionEntry>& s_entries = *new std::list<VersionEntry>;
    return s_entries;
}

template <class Condition>
bool allOfName(const char* name, Condition condition)
{
    return std::all_of(entries().begin(), entries().end(), [name, condition](const VersionEntry& entry) {
        return General::Utils::stricmp(entry.name.c_str(), name) != 0 || condition(entry.version);
    });
}

const char* behindColon(const char* text)
{
    const char* const colon = std::strchr(text, ':');
    return colon ? colon + 1 : text;
}

const ::CVersion s_version("Ortha2", 1, 0, 0, "Win32", __DATE__);

}  // namespace

::CVersion::CVersion(const char* library, int first, int second, int third, const char* revisionText, const char* dateText)
    : major(first),
      minor(second),
      revision(third),
      svnRevision(leadingNumber(behindColon(revisionText ? revisionText : ""))),
      date(buildDate(dateText))
{
    touchIncludeVersionCheck();
    entries().push_back({library ? library : "", {first, second, third}});
    copyName(name, library);
    if (revisionText && std::strchr(revisionText, 'M'))
    {
        ORTHA_LOG(levelInfo, "Some [%s] files are not commit to SVN server. It compied wtih local modified files.\n", name);
    }
}

void ::CVersion::print() const
{
    ORTHA_LOG(levelInfo, stampFormat, name, major, minor, revision, svnRevision, date.year, date.month, date.day);
}

bool isVersionAtLeast(const char* name, int major, int minor, int revision)
{
    const std::array wanted{major, minor, revision};
    return allOfName(name, [wanted](const auto& version) { return version >= wanted; });
}

bool isVersionSame(const char* name, int major, int minor, int revision)
{
    const std::array wanted{major, minor, revision};
    return allOfName(name, [wanted](const auto& version) { return version == wanted; });
}
