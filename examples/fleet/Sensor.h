// ISensor: what a device is to its poller, a component that gives readings. Which class it is of, and where it is, the device directory
// tells.
#pragma once

#include <component/Client.h>

#include <string>

#include "FramePool.h"
#include "Reading.h"

namespace Fleet {

constexpr const char* sensorInterface = "Sensor";
constexpr int errorPasswordNotValid = 0x10030007;  ///< the library's, of a login

/// Threads: any thread. A sensor must not outlive its client: a TComPtr holds both.
class ISensor : public General::Component::IUnknown
{
public:
    /// Asks the device. The reading has value, unit and time, in a packet of the pool. Throws std::runtime_error if there is none; the
    /// connection is then closed, and the caller aborts the client.
    virtual Reading read(FramePool& pool) = 0;
    /// Whether the client had sensors already when this one was made.
    [[nodiscard]] virtual bool sharesClient() const = 0;
};

class ISensorFactory : public General::Component::IFactoryUnknown
{
public:
    /// A sensor for the device of this id, which is reached through the client, with its first reference.
    virtual ISensor* create(General::Component::IClient& client, const std::string& deviceId) = 0;
};

/// "127.0.0.1:37777".
inline std::string addressOf(const General::Component::ServerInfo& server)
{
    return std::string(server.address) + ":" + std::to_string(server.port);
}

}  // namespace Fleet
