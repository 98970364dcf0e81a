// Polls one device with the period of its timer and fires a signal with every reading.
#pragma once

#include <ortha/ortha3/Timer.h>

#include <cstddef>

#include "Connection.h"
#include "DeviceList.h"
#include "FramePool.h"
#include "Reading.h"

namespace Fleet {

class Poller
{
public:
    /// `number` is the device's place in the list. The pool and the signal must outlive the poller.
    Poller(std::size_t number, const Device& device, FramePool& pool, ReadingSignal& signal);

    /// Begins after `delay` milliseconds. False if the timer could not be started.
    bool start(unsigned int delay);
    /// No further poll begins. One that is under way goes on; the destructor waits for it.
    void stop();

private:
    void onTimer(unsigned long);
    Reading poll();
    void ask(Reading& reading);

    const std::size_t m_number;
    const unsigned int m_period;
    FramePool& m_pool;
    ReadingSignal& m_signal;
    Connection m_connection;
    bool m_wasConnected = false;
    General::Ortha::CTimer m_timer;  // last: it is the first to go, and waits until nobody uses the others
};

}  // namespace Fleet
