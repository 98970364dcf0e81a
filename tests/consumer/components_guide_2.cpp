#include <cstdio>
#include <string>

#include "component/Component.h"
#include "ortha/ortha3/Error.h"

using namespace General::Component;
using General::Component::Detail::CComponentHelper;

// A connection, which a real client would have. The server knows one password.
class CTcpClient : public IClient
{
public:
    explicit CTcpClient(const ServerInfo& info) : m_password(info.password) {}

    void destroy() override { delete this; }
    void reservedOperation() override {}
    bool updateBroken() override { return !m_connected; }
    bool login() override
    {
        m_connected = m_password == "fleet";
        if (!m_connected)
        {
            General::Ortha::setLastError(0x10030007);
        }
        std::printf("login: %s\n", m_connected ? "accepted" : "refused");
        return m_connected;
    }
    bool logout() override
    {
        m_connected = false;
        std::printf("logout\n");
        return true;
    }
    bool getUserID(int& userId) override
    {
        userId = 7;
        return true;
    }

private:
    const std::string m_password;
    bool m_connected = false;
};

class CTcpClientFactory : public IClient::IFactory
{
public:
    const char* clsid() override { return "Tcp"; }
    IClient* create(const ServerInfo& info) override { return new CTcpClient(info); }
};

class ISensor : public IUnknown
{
public:
    virtual double read() = 0;
};

class CSensor : public ISensor
{
public:
    void destroy() override { delete this; }
    void reservedOperation() override {}
    double read() override { return 21.5 + IClient::getCurrentUserID(); }
};

class CSensorFactory : public IFactoryUnknown
{
public:
    const char* clsid() override { return "Tcp.Sensor"; }
    ISensor* create() { return static_cast<ISensor*>(CComponentHelper::makeComponentObject(new CSensor)); }
};

TComPtr<ISensor> findSensor(const char* password)
{
    ServerInfo info = {};
    info.address = "10.0.0.7";
    info.userName = "operator";
    info.password = password;
    IClient* client = nullptr;
    auto* factory = dynamic_cast<CSensorFactory*>(CComponentHelper::getComponentFactory("Sensor", "Tcp.Sensor", info, client));
    return factory ? TComPtr<ISensor>(factory->create(), client) : TComPtr<ISensor>();
}

int main()
{
    CTcpClientFactory clients;
    CSensorFactory sensors;
    clients.registerFactory(IClient::IFactory::iid());
    sensors.registerFactory("Sensor");
    {
        const TComPtr<ISensor> first = findSensor("fleet");   // logs in
        const TComPtr<ISensor> second = findSensor("fleet");  // by the same client
        std::printf("%.1f %.1f\n", first->read(), second->read());
    }  // the last holder goes, and the client with it
    if (!findSensor("guess"))
    {
        std::printf("%s\n", General::Ortha::getErrMsg(General::Ortha::getLastError()));
    }
    Ortha_uninitComponentFactory();
}
