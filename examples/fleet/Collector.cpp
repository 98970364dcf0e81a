#include "Collector.h"

#include <algorithm>

using General::Ortha::CReadGuard;
using General::Ortha::CWriteGuard;

namespace Fleet {

Collector::Collector(std::size_t devices) : m_statistics(devices) {}

void Collector::onReading(std::size_t device, const Reading& reading)
{
    CWriteGuard guard(m_mutex);
    Statistics& statistics = m_statistics[device];
    statistics.reconnects += reading.reconnected ? 1 : 0;
    if (!reading.ok)
    {
        ++statistics.errors;
        return;
    }
    const bool first = statistics.readings++ == 0;
    statistics.last = reading.value;
    statistics.min = first ? reading.value : std::min(statistics.min, reading.value);
    statistics.max = first ? reading.value : std::max(statistics.max, reading.value);
    statistics.sum += reading.value;
    statistics.latencySum += reading.latency;
    statistics.latencyMax = std::max(statistics.latencyMax, reading.latency);
}

std::vector<Statistics> Collector::statistics() const
{
    CReadGuard guard(m_mutex);
    return m_statistics;
}

}  // namespace Fleet
