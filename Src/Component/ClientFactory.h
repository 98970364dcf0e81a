// The list of all clients, and the factories that keep it.
#pragma once

#include <vector>

#include "component/Client.h"
#include "ortha/ortha3/Timer.h"

#include "Src/Ortha3/Singleton.h"

namespace General::Component {

namespace ClientFactory {

/// Gives up a reference to a client: the last one logs it out and ends it. The number that are left.
int releaseClientObject(IClient* client);

}  // namespace ClientFactory

/// Stands before every client factory: clients are made through it alone, so that they are shared and listed.
class IClientFactoryWrap : public IClient::IFactory
{
public:
    /// The wrap of a factory, made once and never deleted.
    static IClientFactoryWrap* getClientFactoryWrap(IFactoryUnknown* factory);

    /// The factory is a client factory: asserted.
    explicit IClientFactoryWrap(IFactoryUnknown* factory);

    const char* clsid() override;
    /// A client for its own sake: an existing one of a remote class that is not broken, with one more reference, or a new one.
    IClient* create(const ServerInfo& info) override;
    /// The same for a component: a new client has a further reference, which stands for the list until its first use.
    IClient* createAndMake(const ServerInfo& info);

private:
    IClient* findOrCreate(const ServerInfo& info, bool explicitClient);

    IClient::IFactory* m_original;
};

/// All clients that exist, oldest first, and the check for those that nobody needs. The list holds no reference but that of a client that
/// has not been used.
class CClientInstanceList
{
public:
    static CClientInstanceList* instance() { return Ortha::Singleton<CClientInstanceList>::instance(); }

    /// Null is ignored.
    void insertClient(IClient* client);

    // Each gives the first client that fits, with one more reference, which is taken before another can end it; null if there is none.

    /// One that is not broken.
    IClient* findUsableClient(const ClassID& clsid, const ServerInfo& info);
    /// The same without a reference: it may end at any moment.
    const void* peekUsableClient(const ClassID& clsid, const ServerInfo& info);
    /// Broken or not. The reference is taken as makeComponentInstance does it.
    IClient* getClientByServer(const ClassID& clsid, const ServerInfo& info);
    IClient* findClientByUser(const ClassID& clsid, int userId);
    IClient* getClientByUser(const ClassID& clsid, int userId);

    int releaseClientInstance(IClient* client);
    /// Ends the clients that are idle and have no holder. The check timer's procedure.
    void removeIdleClientInstance(unsigned long param);
    /// Ends the check.
    void stop();

private:
    friend class Ortha::Singleton<CClientInstanceList>;

    CClientInstanceList();
    ~CClientInstanceList();

    IClient* firstUsable(const ClassID& clsid, const ServerInfo& info) const;

    std::vector<IClient*> m_clients;  // guarded by clientListMutex()
    Ortha::CTimer m_timer;
};

}  // namespace General::Component
