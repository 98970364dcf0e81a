#include "Reporter.h"

#include <ortha/ortha3/ThreadManager.h>
#include <ortha/ortha3/Time.h>
#include <ortha/ortha3/TimerManager.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <string>
#include <string_view>

#include "Components.h"
#include "Frame.h"
#include "Log.h"
#include "Stamp.h"

using General::Ortha::CGuard;
using General::Ortha::CThreadManager;
using General::Ortha::CTime;
using General::Ortha::CTimerManager;

namespace Fleet {

namespace {

constexpr unsigned int tablePeriod = 2000;  // milliseconds, as all times here
constexpr int pause = 50;                   // how long a stop may have to wait
constexpr int watchdogTime = 5000;

double milliseconds(double microseconds)
{
    return microseconds / 1000;
}

}  // namespace

Reporter::Reporter(const std::vector<Device>& devices, const Collector& collector)
    : CThread("Reporter", 64, 0, 0), m_devices(devices), m_collector(collector), m_idWidth(8)
{
    for (const Device& device : devices)
    {
        m_idWidth = std::max(m_idWidth, static_cast<int>(device.id.size()));
    }
}

Reporter::~Reporter()
{
    if (!isThreadOver())
    {
        destroyThread();
    }
}

void Reporter::onReading(std::size_t device, const Reading& reading)
{
    const char* const id = m_devices[device].id.c_str();
    CGuard guard(m_output);
    if (reading.reconnected)
    {
        logLibName(levelInfo, moduleReadings, " %-*s  connected again\n", m_idWidth, id);
    }
    if (reading.ok)
    {
        const std::string_view unit = text(reading.unit);
        logLibName(levelInfo, moduleReadings, " %-*s %9.2f %-4.*s %9.1f ms  %s\n", m_idWidth, id, number(reading.value),
                   static_cast<int>(unit.size()), unit.data(), milliseconds(static_cast<double>(reading.latency)),
                   stamp(reading.time).c_str());
    }
    else
    {
        logLibName(levelWarn, moduleReadings, " %-*s  %s\n", m_idWidth, id, reading.error.c_str());
    }
}

void Reporter::logStatistics(const char* title)
{
    const std::vector<Statistics> statistics = m_collector.statistics();
    CGuard guard(m_output);
    logLibName(levelInfo, moduleReport, "%s\n", title);
    logLibName(levelInfo, moduleReport,
               " %-*s readings errors reconnects    last     min     max    mean  ms: mean     max  last reading\n", m_idWidth, "device");
    Statistics total;
    for (std::size_t i = 0; i < statistics.size(); ++i)
    {
        const Statistics& device = statistics[i];
        char values[96] = "";
        std::string lastReading;
        if (device.values.count != 0)
        {
            const double count = static_cast<double>(device.values.count);
            std::snprintf(values, sizeof(values), " %7.2f %7.2f %7.2f %7.2f %9.1f %7.1f", device.values.last, device.values.min,
                          device.values.max, device.values.mean, milliseconds(static_cast<double>(device.latencySum) / count),
                          milliseconds(static_cast<double>(device.latencyMax)));
            lastReading = "  " + stamp(device.lastTime);
        }
        // A row is one call: texts of other threads can stand between two.
        logLibName(levelInfo, moduleReport, " %-*s %8llu %6llu %10llu%s%s\n", m_idWidth, m_devices[i].id.c_str(), device.values.count,
                   device.errors, device.reconnects, values, lastReading.c_str());
        total.values.count += device.values.count;
        total.errors += device.errors;
        total.reconnects += device.reconnects;
    }
    logLibName(levelInfo, moduleReport, " %-*s %8llu %6llu %10llu\n\n", m_idWidth, "together", total.values.count, total.errors,
               total.reconnects);
}

void Reporter::logPool(const FramePool& pool)
{
    CGuard guard(m_output);
    logLibName(levelInfo, moduleReport, "Packet pool, in bytes:\n");
    logLibName(levelInfo, moduleReport, " %-*s %8zu\n", m_idWidth, "size", pool.size());
    logLibName(levelInfo, moduleReport, " %-*s %8zu\n", m_idWidth, "free", pool.freeSize());
    logLibName(levelInfo, moduleReport, " %-*s %8zu\n\n", m_idWidth, "most in use", pool.highWater());
}

void Reporter::logObjects()
{
    const std::map<std::string, int> objects = liveObjects();
    CGuard guard(m_output);
    logLibName(levelInfo, moduleReport, "Component objects:\n");
    for (const auto& [name, count] : objects)
    {
        logLibName(levelInfo, moduleReport, " %4d %s\n", count, name.c_str());
    }
    logLibName(levelInfo, moduleReport, "\n");
}

void Reporter::logLog()
{
    const auto modules = General::Ortha::getLogStatistics();
    CGuard guard(m_output);
    logLibName(levelInfo, moduleReport, "Log, in bytes by module:\n");
    for (const auto& [module, info] : modules)
    {
        logLibName(levelInfo, moduleReport, " %-*s %8llu\n", m_idWidth, module.c_str(), static_cast<unsigned long long>(info.logSize));
    }
    logLibName(levelInfo, moduleReport, "\n");
}

void Reporter::threadProc()
{
    unsigned long long next = CTime::getCurrentMilliSecond() + tablePeriod;
    while (looping())
    {
        setTimeout(watchdogTime);
        sleep(pause);
        if (!looping() || CTime::getCurrentMilliSecond() < next)
        {
            continue;
        }
        next += tablePeriod;
        logStatistics("Statistics:");
        CGuard guard(m_output);
        CThreadManager::instance()->dumpThreads();
        CTimerManager::instance()->dumpTimers();
    }
}

}  // namespace Fleet
