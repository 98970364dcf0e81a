// CCheckIncludeVersion: finds libraries of one process that were built against different revisions of the same header.
//
// Each library defines one static object, with the headers that it was built against; the application asks for the result when all are
// loaded:
//
//     static const IncludeNode nodes[] = {ORTHA_INCLUDE_NODES, ORTHA_INCLUDE_NODE("http://doors/include/Door.h", "12")};
//     static const CCheckIncludeVersion check("Doors", nodes, std::size(nodes));
//     ...
//     check.checkResult();                    // ends the process, after a report, if two libraries differ
//
// The check is off unless ORTHA_INCLUDE_VERSION_CHECK is defined, for the library and for those who use it: the CMake option of that name.
// Off, tables are empty texts and nothing is compared.
#pragma once

#include <cstddef>
#include <list>

#include "ortha/Mutex.h"
#include "ortha/ortha3/Export.h"
#include "ortha/ortha3/PrintLog.h"

/// One header.
struct IncludeNode
{
    const char* url;      ///< where it is kept, its name last: "http://doors/include/Door.h"
    const char* version;  ///< its revision, a decimal number
};

/// What one library told.
struct IncludeEntry
{
    const char* libName;
    const IncludeNode* nodes;
    int count;
};

/// Whether the log shows every header, and every pair that differs. True at first. Start-up.
extern ORTHA_API bool includeVerbose;

/// The process's reports. Threads: check() from any thread; checkResult() when no library is being loaded.
class ORTHA_API CCheckIncludeVersionInter
{
public:
    /// The one object of the process, from the first use to the very end.
    static CCheckIncludeVersionInter* instance();
    virtual ~CCheckIncludeVersionInter();
    CCheckIncludeVersionInter(const CCheckIncludeVersionInter&) = delete;
    CCheckIncludeVersionInter& operator=(const CCheckIncludeVersionInter&) = delete;

    /// Adds a library's report; texts and table stay the caller's, and must stay. False if a version is not a decimal number, or the same
    /// header was told with another version before.
    bool check(const char* libName, const IncludeNode* nodes, int count);
    /// Logs the result of all checks so far. If one failed: a report with the highest version of each header, then an assertion.
    void checkResult() const;

private:
    CCheckIncludeVersionInter();

    bool matches(const IncludeEntry& a, const IncludeEntry& b) const;
    void reportInvalidVersions() const;
    void reportLastVersions() const;

    std::list<IncludeEntry> m_libraries;
    CMutex m_mutex;
    bool m_matchFlag;
    bool m_selfFlag;
};

/// A library's front to the check. `enabled` makes the two kinds different classes, so that libraries built with and without the check can
/// be in one process.
template <bool enabled>
class TCheckIncludeVersion
{
public:
    TCheckIncludeVersion([[maybe_unused]] const char* library, [[maybe_unused]] const IncludeNode* table, [[maybe_unused]] std::size_t size)
    {
        if constexpr (enabled)
        {
            CCheckIncludeVersionInter::instance()->check(library, table, static_cast<int>(size));
        }
    }

    void checkResult() const
    {
        if constexpr (enabled)
        {
            CCheckIncludeVersionInter::instance()->checkResult();
        }
        else
        {
            logInfo("CheckIncludeVersion is turned off.\n");
        }
    }
};

#ifdef ORTHA_INCLUDE_VERSION_CHECK
using CCheckIncludeVersion = TCheckIncludeVersion<true>;
/// A row of a library's table.
#define ORTHA_INCLUDE_NODE(url, version) \
    {                                    \
        url, version                     \
    }
#else
using CCheckIncludeVersion = TCheckIncludeVersion<false>;
#define ORTHA_INCLUDE_NODE(url, version) \
    {                                    \
        "", ""                           \
    }
#endif

/// The headers of this library whose layout older callers build upon, in the revision that is being included.
#define ORTHA_INCLUDE_NODES                                                                                                                \
    ORTHA_INCLUDE_NODE("http://ortha/include/ortha/Mutex.h", "30000"), ORTHA_INCLUDE_NODE("http://ortha/include/ortha/Packet.h", "30000"), \
        ORTHA_INCLUDE_NODE("http://ortha/include/ortha/Thread.h", "30000"),                                                                \
        ORTHA_INCLUDE_NODE("http://ortha/include/ortha/Time.h", "30000"),                                                                  \
        ORTHA_INCLUDE_NODE("http://ortha/include/ortha/Timer.h", "30000")
