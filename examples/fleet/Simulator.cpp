#include "Simulator.h"

#include <ortha/ortha3/Time.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <sstream>
#include <string>
#include <utility>

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
constexpr std::size_t maxRequest = 3 * (maxWord + 1);
constexpr const char* password = "fleet";

// Gives the answers of one device.
class SimulatedDevice
{
public:
    explicit SimulatedDevice(std::size_t number) : m_number(number) {}

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
    const std::size_t m_number;
    unsigned int m_requests = 0;
};

}  // namespace

class SimulatedServer
{
public:
    SimulatedServer(asio::io_context& io, const asio::ip::address& address, std::map<std::string, int>& users)
        : m_users(users), m_acceptor(io, tcp::endpoint(address, 0))
    {
        accept();
    }

    [[nodiscard]] tcp::endpoint endpoint() const { return m_acceptor.local_endpoint(); }
    void addDevice(const std::string& id, std::size_t number) { m_devices.emplace(id, number); }

    // Null if it is not here.
    SimulatedDevice* find(const std::string& id)
    {
        const auto found = m_devices.find(id);
        return found == m_devices.end() ? nullptr : &found->second;
    }
    // The same for a name each time.
    int userId(const std::string& name) { return m_users.try_emplace(name, static_cast<int>(m_users.size()) + 1).first->second; }

private:
    void accept();
    void onConnection(const asio::error_code& error, tcp::socket socket);

    std::map<std::string, int>& m_users;
    std::map<std::string, SimulatedDevice> m_devices;
    tcp::acceptor m_acceptor;
};

namespace {

// One connection to a server. It lives as long as one of its operations is under way; when it ends, its socket closes.
class Session : public std::enable_shared_from_this<Session>
{
public:
    Session(tcp::socket socket, SimulatedServer& server) : m_server(server), m_socket(std::move(socket)), m_delay(m_socket.get_executor())
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
        std::istringstream words(m_request.substr(0, length));
        m_request.erase(0, length);
        std::string request;
        std::string name;  // of a user or a device
        std::string key;
        words >> request >> name >> key;
        if (request == "LOGIN")
        {
            m_loggedIn = key == password;
            send(m_loggedIn ? "OK " + std::to_string(m_server.userId(name)) + "\n" : "DENIED\n");
        }
        else if (SimulatedDevice* const device = m_server.find(name); device && m_loggedIn && request == "READ")
        {
            m_delay.expires_after(device->delay());
            m_delay.async_wait([self = shared_from_this(), device](const asio::error_code&) { self->send(device->answer()); });
        }
    }

    void send(std::string answer)
    {
        m_answer = std::move(answer);
        if (!m_answer.empty())
        {
            asio::async_write(m_socket, asio::buffer(m_answer),
                              [self = shared_from_this()](const asio::error_code& error, std::size_t) { self->onSent(error); });
        }
    }

    void onSent(const asio::error_code& error)
    {
        if (!error)
        {
            awaitRequest();
        }
    }

    SimulatedServer& m_server;
    tcp::socket m_socket;
    asio::steady_timer m_delay;
    bool m_loggedIn = false;
    std::string m_request;
    std::string m_answer;
};

}  // namespace

void SimulatedServer::accept()
{
    m_acceptor.async_accept([this](const asio::error_code& error, tcp::socket socket) { onConnection(error, std::move(socket)); });
}

void SimulatedServer::onConnection(const asio::error_code& error, tcp::socket socket)
{
    if (error)
    {
        logLibName(levelWarn, moduleSimulator, " a simulated server takes no more connections: %s\n", error.message().c_str());
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

void Simulator::addDevice(Device& device)
{
    std::unique_ptr<SimulatedServer>& server = m_servers[device.address];
    if (!server)
    {
        const asio::ip::address address = asio::ip::make_address(device.address);
        const bool ours = address.is_v4() && address.is_loopback();
        server = std::make_unique<SimulatedServer>(m_io, ours ? address : asio::ip::address_v4::loopback(), m_users);
    }
    server->addDevice(device.id, m_devices++);
    device.address = server->endpoint().address().to_string();
    device.port = server->endpoint().port();
}

void Simulator::threadProc()
{
    while (looping())
    {
        m_io.run_for(milliseconds(50));
    }
}

}  // namespace Fleet
