#include "Poller.h"

#include <ortha/ortha3/Function.h>
#include <ortha/ortha3/Time.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdlib>
#include <stdexcept>

using General::Ortha::CTime;
using General::Ortha::TFunction1;

namespace Fleet {

namespace {

constexpr unsigned int watchdogTime = 100;  // milliseconds; a poll that takes longer shows in the thread table
constexpr Connection::Limit connectLimit{1000};
constexpr Connection::Limit answerLimit{2000};

// An answer is a number, a blank and a unit of printable characters.
void parseAnswer(const std::string& answer, Reading& reading)
{
    char* end = nullptr;
    reading.value = std::strtod(answer.c_str(), &end);
    const bool number = end != answer.c_str() && *end == ' ' && std::isfinite(reading.value);
    reading.unit = number ? end + 1 : "";
    if (reading.unit.empty() ||
        !std::all_of(reading.unit.begin(), reading.unit.end(), [](unsigned char c) { return std::isgraph(c) != 0; }))
    {
        throw std::runtime_error("the answer is no reading");
    }
}

}  // namespace

Poller::Poller(std::size_t number, const Device& device, ReadingSignal& signal)
    : m_number(number), m_period(device.period), m_signal(signal), m_connection(device.endpoint), m_timer(device.id.c_str())
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
        parseAnswer(m_connection.ask("READ", answerLimit), reading);
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

}  // namespace Fleet
