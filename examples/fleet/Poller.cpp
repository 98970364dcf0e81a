#include "Poller.h"

#include <ortha/ortha3/Function.h>
#include <ortha/ortha3/Time.h>

#include <exception>

#include "Frame.h"

using General::Memory::CPacket;
using General::Ortha::CTime;
using General::Ortha::TFunction1;

namespace Fleet {

namespace {

constexpr unsigned int watchdogTime = 100;  // milliseconds; a poll that takes longer shows in the thread table
constexpr Connection::Limit connectLimit{1000};
constexpr Connection::Limit answerLimit{2000};

}  // namespace

Poller::Poller(std::size_t number, const Device& device, FramePool& pool, ReadingSignal& signal)
    : m_number(number), m_period(device.period), m_pool(pool), m_signal(signal), m_connection(device.endpoint), m_timer(device.id.c_str())
{
}

bool Poller::start(unsigned int delay)
{
    const bool started = m_timer.start(TFunction1<void, unsigned long>(&Poller::onTimer, this), delay, m_period, 0, watchdogTime);
    m_timer.enableStat(true);
    return started;
}

void Poller::stop()
{
    m_timer.stop(false);
}

void Poller::onTimer(unsigned long)
{
    m_signal(m_number, poll());
}

Reading Poller::poll()
{
    Reading reading;
    const unsigned long long begin = CTime::getCurrentMicroSecond();
    try
    {
        if (!m_connection.isOpen())
        {
            m_connection.open(connectLimit);
            reading.reconnected = m_wasConnected;
            m_wasConnected = true;
        }
        ask(reading);
        reading.ok = true;
    }
    catch (const std::exception& failure)  // nothing may leave a timer's callback
    {
        reading.error = failure.what();
        m_connection.close();
    }
    reading.latency = CTime::getCurrentMicroSecond() - begin;
    return reading;
}

void Poller::ask(Reading& reading)
{
    CPacket frame = m_pool.take();  // before the request: an answer without room for it would be of no use
    unsigned char* const buffer = frame.getBuffer();
    m_connection.send("READ\n", answerLimit);
    m_connection.receive(buffer, frameLengthSize, answerLimit);
    frame.resize(frameSize(buffer));
    m_connection.receive(buffer + frameLengthSize, frame.size() - frameLengthSize, answerLimit);
    reading.time = CTime::getCurrentTime();
    takeApart(frame, reading.value, reading.unit);
}

}  // namespace Fleet
