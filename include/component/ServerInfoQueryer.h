// Which server has a channel or a device: the application tells it through one handler.
//
//     setQueryerHandler(TComPtr<IServerInfoQueryer>(new CDeviceList, nullptr));
//     Ortha::string clsid;
//     ServerInfo info = {};
//     if (CServerInfoQueryerHelper::instance()->getServerInfoByDeviceId("boiler-1", clsid, info)) { ... }
//
// Threads: the handler is installed before anybody asks; then any thread.
#pragma once

#include "component/ComPtr.h"
#include "component/ServerInfo.h"
#include "component/Unknown.h"
#include "ortha/ortha3/FlexString.h"

namespace General::Component {

/// What the application fills in. The texts of `info` stay the handler's, and live until it says otherwise.
class ORTHA_API IServerInfoQueryer : public IUnknown
{
public:
    /// False if there is no such channel.
    virtual bool getServerInfoByChannel(int channel, Ortha::string& clsid, ServerInfo& info) = 0;
    /// False if there is no such device.
    virtual bool getServerInfoByDeviceId(const char* deviceId, Ortha::string& clsid, ServerInfo& info) = 0;
};

class ORTHA_API CServerInfoQueryerHelper
{
public:
    static CServerInfoQueryerHelper* instance();

    /// Installs the handler, and keeps a reference to it until the process ends. False, with an error line, for a second one and for an
    /// empty one.
    bool setQueryerHandler(const TComPtr<IServerInfoQueryer>& handler);
    /// Asks the handler. Without one, and for channel -1, the answer is "Local" and `info` stays as it is. False below -1, with an error
    /// line.
    bool getServerInfoByChannel(int channel, Ortha::string& clsid, ServerInfo& info);
    /// Asks the handler. False without one and for null, with an error line.
    bool getServerInfoByDeviceId(const char* deviceId, Ortha::string& clsid, ServerInfo& info);

    CServerInfoQueryerHelper(const CServerInfoQueryerHelper&) = default;
    CServerInfoQueryerHelper& operator=(const CServerInfoQueryerHelper&) = default;

private:
    CServerInfoQueryerHelper() = default;
    ~CServerInfoQueryerHelper() = default;

    TComPtr<IServerInfoQueryer> m_handler;
};

/// As CServerInfoQueryerHelper::setQueryerHandler.
ORTHA_API bool setQueryerHandler(TComPtr<IServerInfoQueryer> handler);

}  // namespace General::Component
