#include "Connection.h"

#include <stdexcept>

namespace Fleet {

namespace {

std::string describe(const asio::error_code& error)
{
    return error == asio::error::eof ? "the device closed the connection" : error.message();
}

}  // namespace

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

bool Connection::isBroken()
{
    if (!isOpen())
    {
        return true;
    }
    char next = 0;
    asio::error_code result;
    m_socket.non_blocking(true, result);
    m_socket.receive(asio::buffer(&next, 1), asio::socket_base::message_peek, result);
    return result != asio::error::would_block;
}

void Connection::open(const asio::ip::tcp::endpoint& device, Limit limit)
{
    finish(limit, "not connected", [&](auto done) { m_socket.async_connect(device, done); });
}

void Connection::send(const std::string& bytes, Limit limit)
{
    finish(limit, "request not sent", [&](auto done) { asio::async_write(m_socket, asio::buffer(bytes), done); });
}

void Connection::receive(unsigned char* buffer, std::size_t size, Limit limit)
{
    finish(limit, "no answer", [&](auto done) { asio::async_read(m_socket, asio::buffer(buffer, size), done); });
}

std::string Connection::receiveLine(std::size_t longest, Limit limit)
{
    std::string line;
    finish(limit, "no answer", [&](auto done) { asio::async_read_until(m_socket, asio::dynamic_buffer(line, longest), '\n', done); });
    if (line.find('\n') + 1 != line.size())
    {
        close();
        throw std::runtime_error("more than a line for an answer");
    }
    line.pop_back();
    return line;
}

void Connection::close()
{
    asio::error_code ignored;
    m_socket.close(ignored);
}

}  // namespace Fleet
