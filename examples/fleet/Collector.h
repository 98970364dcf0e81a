// Keeps count of the readings, device by device; their values are left to a component each.
#pragma once

#include <component/Client.h>
#include <component/ComPtr.h>
#include <ortha/ortha3/ReadWriteMutex.h>
#include <ortha/ortha3/Time.h>

#include <cstddef>
#include <vector>

#include "Reading.h"
#include "stats/IStatistics.h"

namespace Fleet {

/// One device's readings so far.
struct Statistics
{
    Figures values;
    unsigned long long errors = 0;
    unsigned long long reconnects = 0;
    unsigned long long latencySum = 0;  ///< microseconds, of the readings
    unsigned long long latencyMax = 0;
    General::Ortha::CTime lastTime;
};

/// Threads: every operation from any thread.
class Collector
{
public:
    /// Throws std::runtime_error if the component that keeps the values cannot be had.
    explicit Collector(std::size_t devices);

    /// Adds a reading to the device's statistics.
    void onReading(std::size_t device, const Reading& reading);
    /// A copy of all statistics, in the order of the list.
    [[nodiscard]] std::vector<Statistics> statistics() const;

private:
    mutable General::Ortha::CReadWriteMutex m_mutex;
    // Under m_mutex.
    std::vector<Statistics> m_statistics;  // but their values, which the components keep
    std::vector<General::Component::TComPtr<IStatistics>> m_values;
};

}  // namespace Fleet
