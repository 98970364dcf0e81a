// Keeps count of the readings, device by device.
#pragma once

#include <ortha/ortha3/ReadWriteMutex.h>
#include <ortha/ortha3/Time.h>

#include <cstddef>
#include <vector>

#include "Reading.h"

namespace Fleet {

/// One device's readings so far. The values mean something from the first reading on.
struct Statistics
{
    unsigned long long readings = 0;
    unsigned long long errors = 0;
    unsigned long long reconnects = 0;
    double last = 0;
    double min = 0;
    double max = 0;
    double sum = 0;
    unsigned long long latencySum = 0;  ///< microseconds, of the readings
    unsigned long long latencyMax = 0;
    General::Ortha::CTime lastTime;
};

/// Threads: every operation from any thread.
class Collector
{
public:
    explicit Collector(std::size_t devices);

    /// Adds a reading to the device's statistics.
    void onReading(std::size_t device, const Reading& reading);
    /// A copy of all statistics, in the order of the list.
    [[nodiscard]] std::vector<Statistics> statistics() const;

private:
    mutable General::Ortha::CReadWriteMutex m_mutex;
    std::vector<Statistics> m_statistics;  // under m_mutex
};

}  // namespace Fleet
