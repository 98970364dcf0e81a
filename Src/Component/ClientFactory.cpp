#include "Src/Component/ClientFactory.h"

#include <algorithm>
#include <cstring>
#include <map>

#include "ortha/ortha3/Assert.h"

#include "Src/Component/ClientInternal.h"
#include "Src/Component/UnknownInternal.h"
#include "Src/Ortha3/Log.h"

namespace General::Component {

using Detail::CComponentHelper;
using Ortha::CGuard;
using Ortha::CMutex;
using Ortha::CRecursiveGuard;
using Ortha::CRecursiveMutex;

CRecursiveMutex& clientListMutex()
{
    static CRecursiveMutex& mutex = *new CRecursiveMutex;  // never destroyed: clients may be released while the process exits
    return mutex;
}

namespace {

CRecursiveMutex& clientCreateMutex()
{
    static CRecursiveMutex& mutex = *new CRecursiveMutex;
    return mutex;
}

// The end of a client that nobody can find any more, with no lock held.
void end(IClient* client)
{
    client->logout();
    client->destroy();
}

template <class Fits>
IClient* firstOf(const std::vector<IClient*>& clients, Fits fits)
{
    const auto found = std::find_if(clients.begin(), clients.end(), fits);
    return found == clients.end() ? nullptr : *found;
}

// Looks at the texts of those clients alone whose identity is that of the server.
auto isSameAs(const ClassID& clsid, const ServerInfo& info)
{
    return [&clsid, &info, identity = identityOf(info)](IClient* client) {
        return ClientInternal::of(client).identity == identity && clientIsSameAs(client, clsid, info);
    };
}

IClient* referenced(IClient* client)
{
    CComponentHelper::addRef(client);
    return client;
}

}  // namespace

int ClientFactory::releaseClientObject(IClient* client)
{
    ORTHA_ASSERT(client != NULL);
    return CClientInstanceList::instance()->releaseClientInstance(client);
}

const char* IClient::IFactory::iid()
{
    return "Client";
}

IClient* IClient::IFactory::instance(int userId)
{
    return CClientInstanceList::instance()->findClientByUser(ClassID(clsid()), userId);
}

IClientFactoryWrap* IClientFactoryWrap::getClientFactoryWrap(IFactoryUnknown* factory)
{
    static CMutex& s_mutex = *new CMutex;
    static auto& s_clientFactoryWraps = *new std::map<IFactoryUnknown*, IClientFactoryWrap*>;
    CGuard guard(s_mutex);
    IClientFactoryWrap*& wrap = s_clientFactoryWraps[factory];
    if (!wrap)
    {
        wrap = new IClientFactoryWrap(factory);
    }
    return wrap;
}

IClientFactoryWrap::IClientFactoryWrap(IFactoryUnknown* factory) : m_original(dynamic_cast<IClient::IFactory*>(factory))
{
    ORTHA_ASSERT(m_original != NULL);
}

const char* IClientFactoryWrap::clsid()
{
    return m_original->clsid();
}

IClient* IClientFactoryWrap::create(const ServerInfo& info)
{
    return findOrCreate(info, true);
}

IClient* IClientFactoryWrap::createAndMake(const ServerInfo& info)
{
    return findOrCreate(info, false);
}

IClient* IClientFactoryWrap::findOrCreate(const ServerInfo& info, bool explicitClient)
{
    CRecursiveGuard guard(clientCreateMutex());
    CClientInstanceList& list = *CClientInstanceList::instance();
    const ClassID own(clsid());
    const bool isRemote = std::strcmp(own.name, ClassID::local.name) != 0;
    if (IClient* const usable = isRemote ? list.findUsableClient(own, info) : nullptr)
    {
        return usable;
    }
    IClient* const client = m_original->create(info);
    if (!client)
    {
        return nullptr;
    }
    clientCreateInternal(client, own, info, explicitClient);
    if (explicitClient)
    {
        clientGetAndMarkUsing(client);
        markMade(client);  // its first reference is the caller's: who finds it takes another
    }
    else
    {
        CComponentHelper::makeComponentObject(client);
        CComponentHelper::addRef(client);
    }
    if (const void* const other = isRemote ? list.peekUsableClient(own, info) : nullptr)
    {
        ORTHA_LOG(Ortha::levelError, "this:%p remote client instance:%p has been in CClientInstanceList already.\n",
                  static_cast<void*>(this), other);
    }
    list.insertClient(client);
    CComponentHelper::setAsCurrentUser(client);
    return client;
}

CClientInstanceList::CClientInstanceList() : m_timer("ClientCheck")
{
    constexpr unsigned int period = 60;  // milliseconds
    constexpr unsigned int timeout = 60000;
    m_timer.start(Ortha::TFunction1<void, unsigned long>(&CClientInstanceList::removeIdleClientInstance, this), 0, period, 0, timeout);
}

// Clients that are still there are left as they are.
CClientInstanceList::~CClientInstanceList()
{
    m_timer.stopAndWait();
}

void CClientInstanceList::insertClient(IClient* client)
{
    if (client)
    {
        CRecursiveGuard guard(clientListMutex());
        m_clients.push_back(client);
    }
}

IClient* CClientInstanceList::firstUsable(const ClassID& clsid, const ServerInfo& info) const
{
    return firstOf(m_clients, [same = isSameAs(clsid, info)](IClient* client) { return !clientIsBroken(client) && same(client); });
}

IClient* CClientInstanceList::findUsableClient(const ClassID& clsid, const ServerInfo& info)
{
    CRecursiveGuard guard(clientListMutex());
    return referenced(firstUsable(clsid, info));
}

const void* CClientInstanceList::peekUsableClient(const ClassID& clsid, const ServerInfo& info)
{
    CRecursiveGuard guard(clientListMutex());
    return firstUsable(clsid, info);
}

IClient* CClientInstanceList::getClientByServer(const ClassID& clsid, const ServerInfo& info)
{
    CRecursiveGuard guard(clientListMutex());
    IClient* const client = firstOf(m_clients, isSameAs(clsid, info));
    if (client)
    {
        CComponentHelper::makeComponentInstance(client);
    }
    return client;
}

IClient* CClientInstanceList::findClientByUser(const ClassID& clsid, int userId)
{
    CRecursiveGuard guard(clientListMutex());
    return referenced(firstOf(m_clients, [&](IClient* client) { return clientIsSameAs(client, clsid, userId); }));
}

IClient* CClientInstanceList::getClientByUser(const ClassID& clsid, int userId)
{
    CRecursiveGuard guard(clientListMutex());
    IClient* const client = firstOf(m_clients, [&](IClient* one) { return clientIsSameAs(one, clsid, userId); });
    if (client)
    {
        CComponentHelper::makeComponentInstance(client);
    }
    return client;
}

int CClientInstanceList::releaseClientInstance(IClient* client)
{
    ORTHA_ASSERT(client != NULL);
    if (const int left = decreaseUnlessLast(client))
    {
        return left;
    }
    {
        CRecursiveGuard guard(clientListMutex());
        if (const int left = decreaseRefCount(client); left != 0)
        {
            return left;
        }
        std::erase(m_clients, client);
    }
    end(client);
    return 0;
}

void CClientInstanceList::removeIdleClientInstance(unsigned long)
{
    std::vector<IClient*> idleClientList;
    {
        CRecursiveGuard guard(clientListMutex());
        // The one reference of a client that was used is a holder's.
        const auto isIdle = [](IClient* client) {
            return clientIsIdle(client) && ClientInternal::of(client).using_ == 0 && getRefCount(client) < 2;
        };
        if (std::none_of(m_clients.begin(), m_clients.end(), isIdle))
        {
            return;
        }
        const auto firstIdle = std::stable_partition(m_clients.begin(), m_clients.end(), [&](IClient* client) { return !isIdle(client); });
        idleClientList.assign(firstIdle, m_clients.end());
        m_clients.erase(firstIdle, m_clients.end());
    }
    for (IClient* const client : idleClientList)
    {
        ORTHA_ASSERT(client != NULL);
        if (decreaseRefCount(client) == 0)
        {
            end(client);
        }
    }
}

void CClientInstanceList::stop()
{
    if (m_timer.stopAndWait())
    {
        ORTHA_LOG(Ortha::levelInfo, "this:%p client check timer stopped successfully.\n", static_cast<void*>(this));
    }
}

}  // namespace General::Component

void Ortha_uninitComponentFactory()
{
    General::Component::CClientInstanceList::instance()->stop();
}
