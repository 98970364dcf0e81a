#include "Poller.h"

#include <ortha/ortha3/Error.h>
#include <ortha/ortha3/Function.h>
#include <ortha/ortha3/Time.h>

#include <exception>
#include <stdexcept>

#include "Log.h"

using General::Component::ClassID;
using General::Component::CServerInfoQueryerHelper;
using General::Component::IClient;
using General::Component::ServerInfo;
using General::Component::TComPtr;
using General::Component::Detail::CComponentHelper;
using General::Ortha::CTime;
using General::Ortha::TFunction1;

namespace Fleet {

namespace {

constexpr unsigned int watchdogTime = 100;  // milliseconds; a poll that takes longer shows in the thread table
constexpr int reasonReadFailed = 1;         // for IClient::abort

}  // namespace

Poller::Poller(std::size_t number, const std::string& id, unsigned int period, FramePool& pool, ReadingSignal& signal)
    : m_number(number), m_id(id), m_period(period), m_pool(pool), m_signal(signal), m_timer(id.c_str())
{
}

Poller::~Poller()
{
    wait();
    if (m_client)
    {
        m_client->detachStatusProc(IClient::StatusProc(&Poller::onStatus, this));
    }
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

void Poller::wait()
{
    m_timer.stopAndWait();
}

void Poller::onTimer(unsigned long)
{
    m_signal(m_number, poll());
}

Reading Poller::poll()
{
    Reading reading;
    bool reconnected = false;
    const unsigned long long begin = CTime::getCurrentMicroSecond();
    try
    {
        reconnected = takeSensor();
        reading = m_sensor->read(m_pool);
        reading.ok = true;
    }
    catch (const std::exception& failure)  // nothing may leave a timer's callback
    {
        reading.error = failure.what();
        // Told to all who share the client, unless one of them was first, or has even had it log in again meanwhile.
        if (!m_lost.exchange(true) && m_client->updateBroken())
        {
            m_client->abort(reasonReadFailed);
        }
    }
    reading.reconnected = reconnected;
    reading.latency = CTime::getCurrentMicroSecond() - begin;
    return reading;
}

// Sees to a sensor whose client is logged in. Whether it had to be logged in anew. Throws std::runtime_error.
bool Poller::takeSensor()
{
    if (!m_lost)
    {
        return false;
    }
    General::Ortha::string clsid;
    ServerInfo server = {};
    if (!CServerInfoQueryerHelper::instance()->getServerInfoByDeviceId(m_id.c_str(), clsid, server))
    {
        throw std::runtime_error("the device directory does not have it");
    }
    // The old pair is held meanwhile: so it is the same client, which logs in again for all who share it.
    IClient* client = nullptr;
    auto* const factory =
        dynamic_cast<ISensorFactory*>(CComponentHelper::getComponentFactory(sensorInterface, ClassID(clsid.c_str()), server, client));
    if (!factory)
    {
        const int error = General::Ortha::getLastError();
        const char* const what = error == errorPasswordNotValid ? "login refused: " : "no login: ";
        throw std::runtime_error(what + std::string(General::Ortha::getErrorMessage(error).c_str()));
    }
    TComPtr<ISensor> sensor(factory->create(*client, m_id), client);
    const bool again = m_client != nullptr;
    if (!again)
    {
        m_client = client;
        client->attachStatusProc(IClient::StatusProc(&Poller::onStatus, this));  // without room, the next reading tells of a loss
        if (sensor->sharesClient())
        {
            logLibName(levelInfo, moduleClients, " %s shares the login of %s at %s\n", m_id.c_str(), server.userName,
                       addressOf(server).c_str());
        }
    }
    m_lost = false;
    m_sensor.swap(sensor);
    return again;
}

void Poller::onStatus(void*, ClassID, TComPtr<IClient>, IClient::Status, int)
{
    m_lost = true;
}

}  // namespace Fleet
