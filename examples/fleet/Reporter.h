// What the user sees: a line for every reading, the tables every two seconds, and the closing report. All of it goes through the log.
#pragma once

#include <ortha/ortha3/Mutex.h>
#include <ortha/ortha3/Thread.h>

#include <cstddef>
#include <vector>

#include "Collector.h"
#include "DeviceList.h"
#include "FramePool.h"
#include "Reading.h"

namespace Fleet {

/// The thread prints the tables; start it with createThread and stop it with destroyThread.
class Reporter : public General::Ortha::CThread
{
public:
    /// The devices and the collector must outlive the reporter.
    Reporter(const std::vector<Device>& devices, const Collector& collector);
    ~Reporter() override;

    /// Logs a reading: a value at info level, a failure at warn level. Any thread.
    void onReading(std::size_t device, const Reading& reading);
    /// Logs the statistics of all devices and their totals. Any thread.
    void logStatistics(const char* title);
    /// Logs how much of the pool is and was in use. Any thread.
    void logPool(const FramePool& pool);
    /// Logs how many component objects of each class there are. Any thread.
    void logObjects();
    /// Logs how much each module has logged. Any thread.
    void logLog();

private:
    void threadProc() override;

    const std::vector<Device>& m_devices;
    const Collector& m_collector;
    int m_idWidth;
    General::Ortha::CMutex m_output;  // held while a table is printed, so that no reading stands between its rows
};

}  // namespace Fleet
