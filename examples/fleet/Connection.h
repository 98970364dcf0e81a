// A TCP connection on which every step has a time limit, so that a dead device cannot hold the calling thread.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>

#include "Asio.h"

namespace Fleet {

/// Threads: one thread at a time. Failures throw std::runtime_error and leave the connection closed.
class Connection
{
public:
    using Limit = std::chrono::milliseconds;

    [[nodiscard]] bool isOpen() const { return m_socket.is_open(); }
    /// Whether it is closed, or the peer has closed it, or has sent what nobody asked for. Does not wait.
    [[nodiscard]] bool isBroken();
    void open(const asio::ip::tcp::endpoint& device, Limit limit);
    void send(const std::string& bytes, Limit limit);
    /// Waits for exactly `size` bytes, and puts them at `buffer`.
    void receive(unsigned char* buffer, std::size_t size, Limit limit);
    /// Waits for a line of at most `longest` bytes, and gives it without its end.
    std::string receiveLine(std::size_t longest, Limit limit);
    void close();

private:
    // Starts an operation and runs it to its end or to the limit.
    template <class Start>
    void finish(Limit limit, const char* failure, Start start);

    asio::io_context m_io;
    asio::ip::tcp::socket m_socket{m_io};
};

}  // namespace Fleet
