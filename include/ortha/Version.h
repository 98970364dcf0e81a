// CVersion of the older interface: as that of ortha3/Version.h, and each stamp is kept in a list of the process.
//
//     static const CVersion version("Doors", 1, 4, 0, "$Rev: 4711M $", __DATE__);
//
// Threads: stamps are made one at a time, as static objects are.
#pragma once

#include "ortha/ortha3/Export.h"
#include "ortha/ortha3/Time.h"

class ORTHA_API CVersion
{
public:
    /// As General::Ortha::CVersion; the revision stands at the beginning of `svnRevision` or behind its first colon. An "M" in it, the mark
    /// of sources that were changed before the build, leaves an info line.
    CVersion(const char* name, int major, int minor, int revision, const char* svnRevision, const char* date);

    /// Logs the stamp as one info line.
    void print() const;

private:
    char name[32];
    int major;
    int minor;
    int revision;
    int svnRevision;
    General::Ortha::SystemTime date;
};
