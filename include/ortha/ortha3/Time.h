// CTime: the library's time. For now its monotonic clock, by which every timer, watchdog and interval counts.
//
//     unsigned long long begin = CTime::getCurrentMicroSecond();
//     work();
//     unsigned long long spent = CTime::getCurrentMicroSecond() - begin;
//
// Threads: any thread, at any moment, from static initialisation on. Reading takes no lock.
#pragma once

#include "ortha/ortha3/Export.h"

namespace General::Ortha {

class ORTHA_API CTime
{
public:
    /// Milliseconds since the first reading of this clock in the process. Setting the machine's clock does not move it. Within a thread
    /// the value never falls; between threads no order is promised.
    static unsigned long long getCurrentMilliSecond();
    /// The same in microseconds.
    static unsigned long long getCurrentMicroSecond();
};

}  // namespace General::Ortha
