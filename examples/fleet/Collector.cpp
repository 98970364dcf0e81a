#include "Collector.h"

#include <component/Registry.h>

#include <algorithm>
#include <iterator>
#include <stdexcept>

#include "Frame.h"

using General::Component::IUnknown;
using General::Component::TComPtr;
using General::Component::Detail::CComponentHelper;
using General::Ortha::CReadGuard;
using General::Ortha::CWriteGuard;

namespace Fleet {

namespace {

TComPtr<IStatistics> makeStatistics()
{
    IUnknown* const object = General::Component::createComponentObject("Stats", nullptr);
    auto* const statistics = dynamic_cast<IStatistics*>(object);
    if (!statistics)
    {
        CComponentHelper::release(object);
        throw std::runtime_error("the module Stats.so, which keeps the statistics, cannot be loaded; it belongs beside the program");
    }
    return {statistics, nullptr};
}

}  // namespace

Collector::Collector(std::size_t devices) : m_statistics(devices)
{
    std::generate_n(std::back_inserter(m_values), devices, makeStatistics);
}

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
    m_values[device]->add(number(reading.value));
    statistics.latencySum += reading.latency;
    statistics.latencyMax = std::max(statistics.latencyMax, reading.latency);
    statistics.lastTime = reading.time;
}

std::vector<Statistics> Collector::statistics() const
{
    CReadGuard guard(m_mutex);
    std::vector<Statistics> all = m_statistics;
    for (std::size_t i = 0; i < all.size(); ++i)
    {
        all[i].values = m_values[i]->figures();
    }
    return all;
}

}  // namespace Fleet
