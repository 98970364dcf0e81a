// The record behind a client, and the operations on it that are the library's own.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>

#include "component/Client.h"
#include "ortha/ortha3/Mutex.h"
#include "ortha/ortha3/SignalTemplate.h"

namespace General::Component {

/// Guards the list of clients, and what a client shows of its server and its login. Taken inside the create mutex, never the other way
/// round.
Ortha::CRecursiveMutex& clientListMutex();

/// What a client is found by, apart from its class: equal for equal servers.
std::size_t identityOf(const ServerInfo& info);

struct ClientInternal
{
    ClientInternal(const ClassID& classId, const ServerInfo& server, bool isExplicit);
    ClientInternal(const ClientInternal&) = delete;
    ClientInternal& operator=(const ClientInternal&) = delete;

    /// The record of a client, which must have one: asserted.
    static ClientInternal& of(IClient* client);
    /// Makes it, once: asserted.
    static void create(IClient* client, const ClassID& classId, const ServerInfo& server, bool isExplicit);
    /// Whether the client is of the class that stands before the first "." of the name.
    bool isOf(const ClassID& classId) const;
    bool isFor(const ServerInfo& server) const;
    /// Names the user; false if that was done before.
    bool saveUserName(const char* name);

    enum State : int
    {
        created = 0,
        loggedIn = 1,
        broken = 2
    };

    static constexpr std::size_t textCount = 13;

    const std::string clsid;
    std::string texts[textCount];
    ServerInfo server = {};  // its texts are those above, or the saved name
    std::size_t identity;    // of the server
    std::string savedName;
    bool userNameSaved = false;
    std::atomic<int> state{created};
    Ortha::CTime loginTime;
    std::atomic<std::uint64_t> lastUseTime;  // milliseconds of the counter
    const bool explicitClient;               // made on its own behalf, not for a component
    std::atomic<std::int32_t> using_{0};     // 1 from the first use on
    std::atomic<void*> customData{nullptr};
    Ortha::TSignal5<void*, ClassID, TComPtr<IClient>, IClient::Status, int> statusSignal{8};
    std::atomic<int> holders{1};  // objects that share the record
};

void clientCreateInternal(IClient* client, const ClassID& clsid, const ServerInfo& info, bool explicitClient);
bool clientIsCreated(IClient* client);
bool clientIsLogined(IClient* client);
bool clientIsBroken(IClient* client);
/// Not logged in, made for a component, and not used for more than five minutes.
bool clientIsIdle(IClient* client);
/// 0 at the first use, then 1.
long clientGetAndMarkUsing(IClient* client);
bool clientLogin(IClient* client);
/// True if the connection has broken.
bool clientUpdateBroken(IClient* client);
bool clientIsSameAs(IClient* client, const ClassID& clsid, const ServerInfo& info);
bool clientIsSameAs(IClient* client, const ClassID& clsid, int userId);

}  // namespace General::Component
