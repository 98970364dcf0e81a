#include "Components.h"

#include <component/Component.h>
#include <cxxabi.h>
#include <ortha/ortha3/Error.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <typeinfo>
#include <utility>

#include "Sensor.h"
#include "TcpClient.h"

using General::Component::IClient;
using General::Component::IServerInfoQueryer;
using General::Component::ServerInfo;
using General::Component::TComPtr;
using General::Component::Detail::CComponentHelper;
using General::Ortha::string;

namespace Fleet {

namespace {

constexpr const char* tcpClientClass = "Tcp";
constexpr const char* tcpSensorClass = "Tcp.Sensor";

}  // namespace

class TcpSensor : public ISensor
{
public:
    TcpSensor(TcpClient& client, std::string deviceId)
        : m_client(client), m_deviceId(std::move(deviceId)), m_sharesClient(client.used.exchange(true))
    {
    }
    void destroy() override { delete this; }
    void reservedOperation() override {}
    Reading read(FramePool& pool) override { return m_client.read(m_deviceId, pool); }
    [[nodiscard]] bool sharesClient() const override { return m_sharesClient; }

private:
    TcpClient& m_client;
    const std::string m_deviceId;
    const bool m_sharesClient;
};

// Which server a device is behind. It has the texts that it gives, and lives until the process ends.
class DeviceDirectory : public IServerInfoQueryer
{
public:
    explicit DeviceDirectory(const std::vector<Device>& devices) : m_devices(devices) {}

    void destroy() override { delete this; }
    void reservedOperation() override {}
    // No server is known by a channel.
    bool getServerInfoByChannel(int, string&, ServerInfo&) override { return false; }
    bool getServerInfoByDeviceId(const char* deviceId, string& clsid, ServerInfo& info) override
    {
        const auto found = std::find_if(m_devices.begin(), m_devices.end(), [&](const Device& device) { return device.id == deviceId; });
        if (found == m_devices.end())
        {
            return false;
        }
        clsid = tcpSensorClass;
        info.address = found->address.c_str();
        info.port = found->port;
        info.userName = found->user.c_str();
        info.password = found->password.c_str();
        return true;
    }

private:
    const std::vector<Device> m_devices;
};

namespace {

class TcpClientFactory : public IClient::IFactory
{
public:
    const char* clsid() override { return tcpClientClass; }
    IClient* create(const ServerInfo&) override { return new TcpClient; }
};

class TcpSensorFactory : public ISensorFactory
{
public:
    const char* clsid() override { return tcpSensorClass; }
    ISensor* create(IClient& client, const std::string& deviceId) override
    {
        auto* const sensor = new TcpSensor(dynamic_cast<TcpClient&>(client), deviceId);
        CComponentHelper::makeComponentObject(sensor);
        return sensor;
    }
};

std::string demangled(const char* name)
{
    const std::unique_ptr<char, decltype(&std::free)> text(abi::__cxa_demangle(name, nullptr, nullptr, nullptr), &std::free);
    return text ? text.get() : name;
}

}  // namespace

void startComponents(const std::vector<Device>& devices)
{
    static TcpClientFactory clients;
    static TcpSensorFactory sensors;
    clients.registerFactory(IClient::IFactory::iid());
    sensors.registerFactory(sensorInterface);
    General::Ortha::setErrMsg(errorNoConnection, "Tcp error: no connection to the device!");
    auto* const directory = new DeviceDirectory(devices);
    CComponentHelper::makeComponentObject(directory);
    General::Component::setQueryerHandler(TComPtr<IServerInfoQueryer>(directory, nullptr));
}

std::map<std::string, int> liveObjects()
{
    std::map<string, int> counts;
    General::Component::getComponentCountInfo(counts);
    std::map<std::string, int> objects;
    for (const auto& [name, count] : counts)
    {
        if (count != 0)
        {
            objects[name.empty() ? "not made yet" : demangled(name.c_str())] = count;
        }
    }
    return objects;
}

void endComponents()
{
    // A client that never got a login waits five minutes for another attempt. Its user is 0; whoever takes it by that and gives it back
    // ends it.
    IClient* client = nullptr;
    while (CComponentHelper::getComponentFactory(sensorInterface, tcpSensorClass, 0, client))
    {
        CComponentHelper::release(client);
    }
    Ortha_uninitComponentFactory();
    std::map<std::string, int> objects = liveObjects();
    objects.erase(demangled(typeid(DeviceDirectory).name()));
    if (!objects.empty())
    {
        const auto& [name, count] = *objects.begin();
        throw std::runtime_error(std::to_string(count) + " objects of " + name + " have not been released");
    }
}

}  // namespace Fleet
