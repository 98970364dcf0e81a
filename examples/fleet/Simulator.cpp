#include "Simulator.h"

#include <ortha/ortha3/Time.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <string>

#include "Frame.h"
#include "Log.h"

using asio::ip::tcp;
using General::Ortha::CTime;
using std::chrono::milliseconds;

namespace Fleet {

namespace {

constexpr std::size_t slowDevice = 2;
constexpr std::size_t droppingDevice = 5;
constexpr unsigned int dropEvery = 3;
constexpr std::size_t maxRequest = 64;

}  // namespace

class SimulatedDevice
{
public:
    SimulatedDevice(asio::io_context& io, std::size_t number)
        : m_number(number), m_acceptor(io, tcp::endpoint(asio::ip::address_v4::loopback(), 0))
    {
        accept();
    }

    [[nodiscard]] tcp::endpoint endpoint() const { return m_acceptor.local_endpoint(); }

    // How long the next answer takes.
    [[nodiscard]] milliseconds delay() const { return milliseconds(m_number == slowDevice ? 1500 : 5 + 3 * m_number); }

    // The next answer, a frame; empty if the device drops the connection instead.
    std::string answer()
    {
        if (m_number == droppingDevice && ++m_requests % dropEvery == 0)
        {
            return {};
        }
        constexpr double period = 20;  // seconds of one rise and fall
        const double place = static_cast<double>(m_number);
        const double seconds = static_cast<double>(CTime::getCurrentMilliSecond()) / 1000;
        const double temperature = 4 + 7 * place + 3 * std::sin(seconds * 6.283185307 / period + place);
        char value[32];
        std::snprintf(value, sizeof(value), "%.2f", temperature);
        return makeFrame(value, "C");
    }

private:
    void accept();
    void onConnection(const asio::error_code& error, tcp::socket socket);

    const std::size_t m_number;
    unsigned int m_requests = 0;
    tcp::acceptor m_acceptor;
};

namespace {

// One connection to a device. It lives as long as one of its operations is under way.
class Session : public std::enable_shared_from_this<Session>
{
public:
    Session(tcp::socket socket, SimulatedDevice& device) : m_device(device), m_socket(std::move(socket)), m_delay(m_socket.get_executor())
    {
    }

    void awaitRequest()
    {
        asio::async_read_until(
            m_socket, asio::dynamic_buffer(m_request, maxRequest), '\n',
            [self = shared_from_this()](const asio::error_code& error, std::size_t length) { self->onRequest(error, length); });
    }

private:
    void onRequest(const asio::error_code& error, std::size_t length)
    {
        if (error)
        {
            return;
        }
        m_request.erase(0, length);
        m_delay.expires_after(m_device.delay());
        m_delay.async_wait([self = shared_from_this()](const asio::error_code&) { self->sendAnswer(); });
    }

    void sendAnswer()
    {
        m_answer = m_device.answer();
        if (m_answer.empty())
        {
            return;  // nobody holds the session any more, and its socket closes
        }
        asio::async_write(m_socket, asio::buffer(m_answer),
                          [self = shared_from_this()](const asio::error_code& error, std::size_t) { self->onSent(error); });
    }

    void onSent(const asio::error_code& error)
    {
        if (!error)
        {
            awaitRequest();
        }
    }

    SimulatedDevice& m_device;
    tcp::socket m_socket;
    asio::steady_timer m_delay;
    std::string m_request;
    std::string m_answer;
};

}  // namespace

void SimulatedDevice::accept()
{
    m_acceptor.async_accept([this](const asio::error_code& error, tcp::socket socket) { onConnection(error, std::move(socket)); });
}

void SimulatedDevice::onConnection(const asio::error_code& error, tcp::socket socket)
{
    if (error)
    {
        logLibName(levelWarn, moduleSimulator, " simulated device %zu takes no more connections: %s\n", m_number + 1,
                   error.message().c_str());
        return;
    }
    std::make_shared<Session>(std::move(socket), *this)->awaitRequest();
    accept();
}

Simulator::Simulator() : CThread("Simulator", 64, 0, 0) {}

Simulator::~Simulator()
{
    if (!isThreadOver())
    {
        destroyThread();
    }
}

tcp::endpoint Simulator::addDevice()
{
    m_devices.push_back(std::make_unique<SimulatedDevice>(m_io, m_devices.size()));
    return m_devices.back()->endpoint();
}

void Simulator::threadProc()
{
    while (looping())
    {
        m_io.run_for(milliseconds(50));
    }
}

}  // namespace Fleet
