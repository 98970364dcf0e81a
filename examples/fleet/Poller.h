// Polls one device with the period of its timer and fires a signal with every reading. All it knows of the device is its id: who reads it,
// and by which login, the component system tells.
#pragma once

#include <component/Component.h>
#include <ortha/ortha3/Timer.h>

#include <atomic>
#include <cstddef>
#include <string>

#include "FramePool.h"
#include "Reading.h"
#include "Sensor.h"

namespace Fleet {

class Poller
{
public:
    /// `number` is the device's place in the list. The pool and the signal must outlive the poller.
    Poller(std::size_t number, const std::string& id, unsigned int period, FramePool& pool, ReadingSignal& signal);
    /// No poll may be under way, of this poller or another one that shares its client: it would tell this one of a lost connection.
    ~Poller();

    /// Begins after `delay` milliseconds. False if the timer could not be started.
    bool start(unsigned int delay);
    /// No further poll begins. One that is under way goes on.
    void stop();
    /// Waits until none is under way.
    void wait();

private:
    void onTimer(unsigned long);
    void onStatus(void* customData, General::Component::ClassID clsid, General::Component::TComPtr<General::Component::IClient> client,
                  General::Component::IClient::Status status, int reason);
    Reading poll();
    bool takeSensor();

    const std::size_t m_number;
    const std::string m_id;
    const unsigned int m_period;
    FramePool& m_pool;
    ReadingSignal& m_signal;
    General::Component::TComPtr<ISensor> m_sensor;
    General::Component::IClient* m_client = nullptr;  // m_sensor's, which holds it
    std::atomic<bool> m_lost{true};                   // the client needs a login
    General::Ortha::CTimer m_timer;
};

}  // namespace Fleet
