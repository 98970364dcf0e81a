#include "component/ServerInfoQueryer.h"

#include "Src/Ortha3/Log.h"

namespace General::Component {

CServerInfoQueryerHelper* CServerInfoQueryerHelper::instance()
{
    static CServerInfoQueryerHelper s_instance;
    return &s_instance;
}

bool CServerInfoQueryerHelper::setQueryerHandler(const TComPtr<IServerInfoQueryer>& handler)
{
    if (!m_handler && handler)
    {
        m_handler = handler;
        return true;
    }
    ORTHA_LOG(Ortha::levelError, "setQueryerHandler failed setPtr:%p, oldPtr:%p\n", static_cast<void*>(handler.get()),
              static_cast<void*>(m_handler.get()));
    return false;
}

bool CServerInfoQueryerHelper::getServerInfoByChannel(int channel, Ortha::string& clsid, ServerInfo& info)
{
    if (!m_handler || channel == ComSelChannelInfo::local.channel)
    {
        clsid = ClassID::local.name;
        return true;
    }
    if (channel < ComSelChannelInfo::local.channel)
    {
        ORTHA_LOG(Ortha::levelError, "channel:%d is invalid \n", channel);
        return false;
    }
    return m_handler->getServerInfoByChannel(channel, clsid, info);
}

bool CServerInfoQueryerHelper::getServerInfoByDeviceId(const char* deviceId, Ortha::string& clsid, ServerInfo& info)
{
    if (!m_handler)
    {
        ORTHA_LOG(Ortha::levelError, "please call setQueryerHandler interface\n");
        return false;
    }
    if (!deviceId)
    {
        ORTHA_LOG(Ortha::levelError, "deviceId:%s is empty\n", "(null)");
        return false;
    }
    return m_handler->getServerInfoByDeviceId(deviceId, clsid, info);
}

bool setQueryerHandler(TComPtr<IServerInfoQueryer> handler)
{
    return CServerInfoQueryerHelper::instance()->setQueryerHandler(handler);
}

}  // namespace General::Component
