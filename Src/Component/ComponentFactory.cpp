// The table of factories, and finding one.
#include <atomic>
#include <cstring>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "component/ComponentHelper.h"
#include "component/Factory.h"
#include "ortha/ortha3/Assert.h"
#include "ortha/ortha3/Error.h"
#include "ortha/ortha3/Mutex.h"

#include "Src/Component/ClientFactory.h"
#include "Src/Component/ClientInternal.h"
#include "Src/Ortha3/Log.h"

namespace General::Component {

using Detail::CComponentHelper;
using Ortha::CGuard;
using Ortha::CMutex;
using Ortha::CRecursiveGuard;
using Ortha::CRecursiveMutex;

namespace {

constexpr int interfaceNotFound = 0x10030000;
constexpr int classNotFound = 0x10030001;
constexpr int clientNotFound = 0x10030002;
constexpr int clientNotExist = 0x10030003;

struct ErrorText
{
    int code;
    const char* text;
};

constexpr ErrorText errorTexts[] = {
    {interfaceNotFound, "Component error: interface not found!"},
    {classNotFound, "Component error: class not found!"},
    {clientNotFound, "Component error: client not found!"},
    {clientNotExist, "Component error: client not exist!"},
    {0x10030004, "Component error: not login yet!"},
    {0x10030005, "Component error: tring login!"},
    {0x10030006, "Component error: user's name not valid!"},
    {0x10030007, "Component error: password not valid!"},
    {0x10030008, "Component error: peer has been blocked!"},
    {0x10030009, "Component error: peer in Blocklist!"},
    {0x1003000a, "Component error: user's name has been used!"},
    {0x1003000b, "Component error: too many connections!"},
    {0x1003000c, "Component error: no authority!"},
    {0x1003000d, "Component error: creating object failed!"},
    {0x1003000e, "Component error: getting instance failed!"},
    {0x1003000f, "Component error: login challenge!"},
    {0x10030015, "Component error: User or password not valid!"},
};

using ClassMap = std::map<std::string, IFactoryUnknown*, std::less<>>;

// Entries are never taken out; the factory of one is null once it was unregistered.
struct Factories
{
    CRecursiveMutex s_factoryMutex;
    std::map<std::string, ClassMap, std::less<>> s_factoryMap ORTHA_GUARDED_BY(s_factoryMutex);
};

Factories& factories()
{
    static Factories& factories = *new Factories;
    return factories;
}

struct Defaults
{
    CMutex s_defaultComponentMutex;
    std::map<std::string, std::string, std::less<>> s_defaultComponents ORTHA_GUARDED_BY(s_defaultComponentMutex);
};

Defaults& defaults()
{
    static Defaults& defaults = *new Defaults;
    return defaults;
}

void registerErrorTexts()
{
    static std::atomic<bool> s_registered{false};
    if (!s_registered.exchange(true))
    {
        for (const ErrorText& error : errorTexts)
        {
            Ortha::setErrMsg(error.code, error.text);
        }
    }
}

// 0 with the factory, which is null if it was unregistered, or the code of what is not known.
int findFactory(const char* iid, const ClassID& clsid, IFactoryUnknown*& factory)
{
    Factories& all = factories();
    CRecursiveGuard guard(all.s_factoryMutex);
    const auto interface = all.s_factoryMap.find(std::string_view(iid));
    if (interface == all.s_factoryMap.end())
    {
        return interfaceNotFound;
    }
    const auto entry = interface->second.find(std::string_view(clsid.name));
    if (entry == interface->second.end())
    {
        return classNotFound;
    }
    factory = entry->second;
    return 0;
}

bool isClientInterface(const char* iid)
{
    return std::strcmp(iid, IClient::IFactory::iid()) == 0;
}

// Finds the factory, and marks the client, if there is one, as that of the thread. 0, or the code of the failure; -1 for one without a
// code.
int findFor(const char* iid, const ClassID& clsid, IClient* client, IFactoryUnknown*& factory)
{
    CRecursiveGuard guard(factories().s_factoryMutex);
    const bool isClientFactory = isClientInterface(iid);
    if (const int error = findFactory(iid, clsid, factory))
    {
        return error;
    }
    if (!factory)
    {
        return isClientFactory ? classNotFound : -1;
    }
    if (client)
    {
        CComponentHelper::setAsCurrentUser(client);
    }
    if (isClientFactory)
    {
        factory = IClientFactoryWrap::getClientFactoryWrap(factory);
    }
    return 0;
}

// Hands a factory over with the client, if there is one, whose reference is given up on failure: behind the lock, for it may be the last.
IFactoryUnknown* deliver(const char* iid, const ClassID& clsid, IClient* found, IClient*& client)
{
    IFactoryUnknown* factory = nullptr;
    if (const int error = findFor(iid, clsid, found, factory))
    {
        CComponentHelper::release(found);
        if (error > 0)
        {
            Ortha::setLastError(error);
        }
        return nullptr;
    }
    if (found && clientGetAndMarkUsing(found) == 0)
    {
        CComponentHelper::release(found);  // the reference that stood for the list
    }
    client = found;
    return factory;
}

IClient* createClientInstance(const ClassID& clsid, const ServerInfo& info)
{
    const std::string name(clsid.name, std::strcspn(clsid.name, "."));
    IClient* ignored = nullptr;
    IFactoryUnknown* const factory =
        CComponentHelper::getComponentFactory(IClient::IFactory::iid(), ClassID(name.c_str()), ServerInfo::none, ignored);
    auto* const wrap = dynamic_cast<IClientFactoryWrap*>(factory);
    if (!wrap)
    {
        Ortha::setLastError(clientNotFound);
        return nullptr;
    }
    IClient* const client = wrap->createAndMake(info);
    if (!client)
    {
        Ortha::setLastError(clientNotExist);
    }
    return client;
}

// Logs in, or gives the reference up and tells why.
IClient* loginOrRelease(IClient* client, const char* iid, const ClassID& clsid, int level, const char* message)
{
    if (clientLogin(client))
    {
        return client;
    }
    const int cause = Ortha::getLastError();
    CComponentHelper::release(client);
    ORTHA_LOG(level, message, iid, clsid.name);
    Ortha::setLastError(cause);
    return nullptr;
}

// A client that was there already, made usable.
IClient* makeUsable(IClient* client, const char* iid, const ClassID& clsid)
{
    constexpr const char* loginFailed = "iid:%s, clsid:%s could not been got because login failed.\n";
    constexpr const char* reloginFailed = "iid:%s, clsid:%s could not been got because re-login failed.\n";
    switch (ClientInternal::of(client).state)  // read once: another thread may find the connection broken meanwhile
    {
    case ClientInternal::created:
    case ClientInternal::broken:
        return loginOrRelease(client, iid, clsid, Ortha::levelDebug, loginFailed);
    case ClientInternal::loggedIn:
        return clientUpdateBroken(client) ? loginOrRelease(client, iid, clsid, Ortha::levelDebug, reloginFailed) : client;
    default:
        break;
    }
    ORTHA_LOG(Ortha::levelError, "iid:%s, clsid:%s client state is unknown!\n", iid, clsid.name);
    CComponentHelper::release(client);
    return nullptr;
}

// A new client, made and logged in.
IClient* makeClient(const char* iid, const ClassID& clsid, const ServerInfo& info)
{
    IFactoryUnknown* ignored = nullptr;
    if (const int error = findFactory(iid, clsid, ignored))  // no connection for a class that nobody registered
    {
        Ortha::setLastError(error);
        return nullptr;
    }
    IClient* const client = createClientInstance(clsid, info);
    if (!client)
    {
        ORTHA_LOG(Ortha::levelError, "iid:%s, clsid:%s could not been got because clientInstance could not be created.\n", iid, clsid.name);
        return nullptr;
    }
    return loginOrRelease(client, iid, clsid, Ortha::levelWarn, "iid:%s, clsid:%s could not been generated because login failed.\n");
}

}  // namespace

IFactoryUnknown::~IFactoryUnknown() = default;

bool IFactoryUnknown::registerFactory(const char* iid)
{
    registerErrorTexts();
    Factories& all = factories();
    CRecursiveGuard guard(all.s_factoryMutex);
    all.s_factoryMap[iid][clsid()] = this;
    return true;
}

bool IFactoryUnknown::unregisterFactory(const char* iid)
{
    Factories& all = factories();
    CRecursiveGuard guard(all.s_factoryMutex);
    all.s_factoryMap[iid][clsid()] = nullptr;
    return true;
}

struct ClassIDList::Internal
{
    std::vector<Ortha::string> ids;
};

ClassIDList::ClassIDList(const char* iid) : m_internal(new Internal)
{
    Factories& all = factories();
    CRecursiveGuard guard(all.s_factoryMutex);
    const auto interface = all.s_factoryMap.find(std::string_view(iid));
    if (interface != all.s_factoryMap.end())
    {
        m_internal->ids.reserve(interface->second.size());
        for (const auto& entry : interface->second)
        {
            m_internal->ids.emplace_back(entry.first.c_str());
        }
    }
}

ClassIDList::~ClassIDList()
{
    delete m_internal;
}

std::size_t ClassIDList::count() const
{
    return m_internal->ids.size();
}

Ortha::string ClassIDList::operator[](int index) const
{
    ORTHA_ASSERT((size_t)index < m_internal->ids.size());
    return m_internal->ids[static_cast<std::size_t>(index)];
}

bool CLocalComSelectManager::setDefaultComponent(const char* iid, const char* clsid)
{
    if (!iid)
    {
        return false;
    }
    Defaults& all = defaults();
    CGuard guard(all.s_defaultComponentMutex);
    return all.s_defaultComponents.try_emplace(iid, clsid ? clsid : "").second;
}

Ortha::string CLocalComSelectManager::getDefaultClassID(const char* iid)
{
    if (!iid)
    {
        return {};
    }
    Defaults& all = defaults();
    CGuard guard(all.s_defaultComponentMutex);
    const auto found = all.s_defaultComponents.find(std::string_view(iid));
    return found == all.s_defaultComponents.end() ? ClassID::local.name : found->second.c_str();
}

namespace Detail {

IFactoryUnknown* CComponentHelper::getComponentFactory(const char* iid, const ClassID& clsid, const ServerInfo& info, IClient*& client)
{
    client = nullptr;
    if (isClientInterface(iid) || &info == &ServerInfo::none)
    {
        return deliver(iid, clsid, nullptr, client);
    }
    IClient* const known = CClientInstanceList::instance()->getClientByServer(clsid, info);
    IClient* const found = known ? makeUsable(known, iid, clsid) : makeClient(iid, clsid, info);
    return found ? deliver(iid, clsid, found, client) : nullptr;
}

IFactoryUnknown* CComponentHelper::getComponentFactory(const char* iid, const ClassID& clsid, int userId, IClient*& client)
{
    client = nullptr;
    IClient* found = nullptr;
    if (!isClientInterface(iid) && userId != -1)
    {
        found = CClientInstanceList::instance()->getClientByUser(clsid, userId);
        if (!found)
        {
            return nullptr;
        }
    }
    return deliver(iid, clsid, found, client);
}

}  // namespace Detail

}  // namespace General::Component
