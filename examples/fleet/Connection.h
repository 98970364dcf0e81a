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

    explicit Connection(asio::ip::tcp::endpoint device);

    [[nodiscard]] bool isOpen() const { return m_socket.is_open(); }
    void open(Limit limit);
    void send(const std::string& bytes, Limit limit);
    /// Waits for exactly `size` bytes, and puts them at `buffer`.
    void receive(unsigned char* buffer, std::size_t size, Limit limit);
    void close();

private:
    // Starts an operation and runs it to its end or to the limit.
    template <class Start>
    void finish(Limit limit, const char* failure, Start start);

    const asio::ip::tcp::endpoint m_device;
    asio::io_context m_io;
    asio::ip::tcp::socket m_socket{m_io};
};

}  // namespace Fleet
