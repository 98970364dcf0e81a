#include "Collector.h"

#include <algorithm>

#include "Frame.h"

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
    const double value = number(reading.value);
    const bool first = statistics.readings++ == 0;
    statistics.last = value;
    statistics.min = first ? value : std::min(statistics.min, value);
    statistics.max = first ? value : std::max(statistics.max, value);
    statistics.sum += value;
    statistics.latencySum += reading.latency;
    statistics.latencyMax = std::max(statistics.latencyMax, reading.latency);
    statistics.lastTime = reading.time;
}

std::vector<Statistics> Collector::statistics() const
{
    CReadGuard guard(m_mutex);
    return m_statistics;
}

}  // namespace Fleet
