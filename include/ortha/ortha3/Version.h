// CVersion: what a library tells of itself: name, version, source revision, build date.
//
//     static const General::Ortha::CVersion version("Doors", 1, 4, 0, "$Rev: 4711 $", __DATE__);
//     version.print();                        // [*] Doors 1.4.0.4711 Built in 2024/ 5/10 [*]
//
// Threads: one thread at a time for an object while it is assigned; setAppDate() at start-up.
#pragma once

#include "ortha/ortha3/Export.h"
#include "ortha/ortha3/Time.h"

namespace General::Ortha {

class ORTHA_API CVersion
{
public:
    /// `name` is cut to 31 characters. `svnRevision` begins with the revision, or is a keyword text that has it behind letters and colons
    /// ("$Rev: 4711 $"); without a number it counts as 0. `date` is as __DATE__ gives it, "May 10 2024"; a month that is none is 13. Null
    /// texts count as empty.
    CVersion(const char* name, int major, int minor, int revision, const char* svnRevision, const char* date);

    /// Logs the stamp as one info line.
    void print() const;

    /// When the application was built: year, month and day. Zero until setAppDate().
    static SystemTime appDate;
    /// Sets appDate; `date` as in the constructor.
    static void setAppDate(const char* date);

private:
    char name[32];
    int major;
    int minor;
    int revision;
    int svnRevision;
    SystemTime date;
};

}  // namespace General::Ortha
