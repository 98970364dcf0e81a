// Plays devices behind real TCP servers, all in one thread: one server for each address, on that address if it is a loopback one, else on
// 127.0.0.1. A reading is a temperature. Every user with the password "fleet" may log in; the users' ids are numbers from 1.
//
// The third device is slow: its answers take 1.5 seconds. The sixth drops the connection instead of every third answer.
#pragma once

#include <ortha/ortha3/Thread.h>

#include <cstddef>
#include <map>
#include <memory>
#include <string>

#include "Asio.h"
#include "DeviceList.h"

namespace Fleet {

class SimulatedServer;

/// Add the devices before createThread; no operation but those of CThread afterwards.
class Simulator : public General::Ortha::CThread
{
public:
    Simulator();
    ~Simulator() override;

    /// Adds a device and tells it where its server listens; the system chooses the port. Throws std::system_error if the system gives none.
    void addDevice(Device& device);
    [[nodiscard]] std::size_t devices() const { return m_devices; }

private:
    void threadProc() override;

    asio::io_context m_io;
    std::size_t m_devices = 0;
    std::map<std::string, int> m_users;                                 // their ids
    std::map<std::string, std::unique_ptr<SimulatedServer>> m_servers;  // by the address in the list
};

}  // namespace Fleet
