// Plays devices: real TCP servers on the loopback address, all in one thread. Each answers every line it is sent with a frame that holds a temperature.
//
// The third one is slow: its answers take 1.5 seconds. The sixth drops its connection instead of every third answer.
#pragma once

#include <ortha/ortha3/Thread.h>

#include <cstddef>
#include <memory>
#include <vector>

#include "Asio.h"

namespace Fleet {

class SimulatedDevice;

/// Add the devices before createThread; no operation but those of CThread afterwards.
class Simulator : public General::Ortha::CThread
{
public:
    Simulator();
    ~Simulator() override;

    /// Adds a device and tells where it listens; the system chooses the port. Throws std::system_error if the system gives none.
    asio::ip::tcp::endpoint addDevice();
    [[nodiscard]] std::size_t devices() const { return m_devices.size(); }

private:
    void threadProc() override;

    asio::io_context m_io;
    std::vector<std::unique_ptr<SimulatedDevice>> m_devices;
};

}  // namespace Fleet
