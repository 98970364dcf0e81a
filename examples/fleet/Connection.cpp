#include "Connection.h"

#include <stdexcept>

namespace Fleet {

namespace {

constexpr std::size_t maxAnswer = 256;

std::string describe(const asio::error_code& error)
{
    if (error == asio::error::eof)
    {
        return "the device closed the connection";
    }
    if (error == asio::error::not_found)
    {
        return "a line of more than " + std::to_string(maxAnswer) + " characters";
    }
    return error.message();
}

}  // namespace

Connection::Connection(asio::ip::tcp::endpoint device) : m_device(std::move(device)) {}

template <class Start>
void Connection::finish(Limit limit, const char* failure, Start start)
{
    asio::error_code result;
    start([&result](const asio::error_code& error, auto...) { result = error; });
    m_io.restart();
    m_io.run_for(limit);
    const bool late = !m_io.stopped();
    if (!late && !result)
    {
        return;
    }
    close();
    if (late)
    {
        m_io.run();  // the operation ends as cancelled; it must not outlive this call
        throw std::runtime_error(std::string(failure) + " within " + std::to_string(limit.count()) + " ms");
    }
    throw std::runtime_error(std::string(failure) + ": " + describe(result));
}

void Connection::open(Limit limit)
{
    finish(limit, "not connected", [this](auto done) { m_socket.async_connect(m_device, done); });
}

std::string Connection::ask(const std::string& request, Limit limit)
{
    const std::string line = request + "\n";
    finish(limit, "request not sent", [&](auto done) { asio::async_write(m_socket, asio::buffer(line), done); });
    std::string answer;
    finish(limit, "no answer", [&](auto done) { asio::async_read_until(m_socket, asio::dynamic_buffer(answer, maxAnswer), '\n', done); });
    answer.erase(answer.find('\n'));
    return answer;
}

void Connection::close()
{
    asio::error_code ignored;
    m_socket.close(ignored);
}

}  // namespace Fleet
