#include "component/Client.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <functional>
#include <string_view>
#include <utility>

#include "ortha/ortha3/Assert.h"
#include "ortha/ortha3/Error.h"
#include "ortha/ortha3/ThreadSpecific.h"

#include "Src/Component/ClientInternal.h"
#include "Src/Component/UnknownInternal.h"
#include "Src/Ortha3/Log.h"

namespace General::Component {

using Ortha::CRecursiveGuard;
using Ortha::CTime;

namespace {

constexpr int notSupported = 0x10030010;

using Text = const char* ServerInfo::*;

// All texts of a record, those that tell one client from another first.
constexpr std::size_t identityTexts = 11;
constexpr Text serverTexts[ClientInternal::textCount] = {
    &ServerInfo::address,     &ServerInfo::userName,   &ServerInfo::password,   &ServerInfo::extraText1, &ServerInfo::extraText2,
    &ServerInfo::extraText3,  &ServerInfo::extraText7, &ServerInfo::extraText8, &ServerInfo::extraText6, &ServerInfo::extraText4,
    &ServerInfo::extraText10, &ServerInfo::extraText5, &ServerInfo::extraText9};

std::string_view textOf(const ServerInfo& info, Text text)
{
    return info.*text ? info.*text : "";
}

// The numbers that tell one client from another.
std::array<int, 8> numbersOf(const ServerInfo& info)
{
    return {info.port,       info.kind,      info.extraByte1,  info.extraInt1,
            info.extraByte2, info.extraInt2, info.extraShort2, info.extraByte3 * 2 + info.extraBit1};
}

// The user of each thread. Made before the program begins, while the system still has a slot; never destroyed.
Ortha::CThreadSpecific& currentUser()
{
    static Ortha::CThreadSpecific& slot = *new Ortha::CThreadSpecific;
    return slot;
}

[[maybe_unused]] const Ortha::CThreadSpecific& s_currentUserMadeEarly = currentUser();

int userOf(IClient* client)
{
    int userId = -1;
    client->getUserID(userId);
    return userId;
}

void dropHolder(ClientInternal* internal)
{
    if (internal && internal->holders.fetch_sub(1, std::memory_order_acq_rel) == 1)
    {
        delete internal;
    }
}

ClientInternal* share(ClientInternal* internal)
{
    if (internal)
    {
        internal->holders.fetch_add(1, std::memory_order_relaxed);
    }
    return internal;
}

}  // namespace

std::size_t identityOf(const ServerInfo& info)
{
    std::size_t identity = 0;
    const auto mix = [&identity](std::size_t value) {
        constexpr std::uint64_t golden = 0x9E3779B97F4A7C15;
        identity = (identity ^ value) * golden;
        identity ^= identity >> 32;
    };
    for (std::size_t i = 0; i < identityTexts; ++i)
    {
        const std::string_view text = textOf(info, serverTexts[i]);
        mix(text.empty() ? 0 : std::hash<std::string_view>()(text));
    }
    for (const int number : numbersOf(info))
    {
        mix(static_cast<unsigned int>(number));
    }
    return identity;
}

ClientInternal::ClientInternal(const ClassID& classId, const ServerInfo& info, bool isExplicit)
    : clsid(classId.name), server(info), identity(identityOf(info)), lastUseTime(CTime::getCurrentMilliSecond()), explicitClient(isExplicit)
{
    for (std::size_t i = 0; i < textCount; ++i)
    {
        texts[i] = textOf(info, serverTexts[i]);
        server.*serverTexts[i] = texts[i].c_str();
    }
}

ClientInternal& ClientInternal::of(IClient* client)
{
    ORTHA_ASSERT(client != NULL && client->m_internal != NULL);
    return *client->m_internal;
}

void ClientInternal::create(IClient* client, const ClassID& classId, const ServerInfo& server, bool isExplicit)
{
    ORTHA_ASSERT(client != NULL && client->m_internal == NULL);
    client->m_internal = new ClientInternal(classId, server, isExplicit);
}

bool ClientInternal::saveUserName(const char* name)
{
    if (userNameSaved)
    {
        return false;
    }
    savedName = name ? name : "";  // the first name stays for those who have asked for it
    server.userName = savedName.c_str();
    identity = identityOf(server);
    userNameSaved = true;
    return true;
}

bool ClientInternal::isOf(const ClassID& classId) const
{
    const std::string_view name = classId.name;
    const std::size_t length = std::min(name.find('.'), name.size());
    return std::string_view(clsid).substr(0, length) == name.substr(0, length);
}

bool ClientInternal::isFor(const ServerInfo& other) const
{
    for (std::size_t i = 0; i < identityTexts; ++i)
    {
        if (textOf(server, serverTexts[i]) != textOf(other, serverTexts[i]))
        {
            return false;
        }
    }
    return numbersOf(server) == numbersOf(other);
}

void clientCreateInternal(IClient* client, const ClassID& clsid, const ServerInfo& info, bool explicitClient)
{
    ClientInternal::create(client, clsid, info, explicitClient);
}

bool clientIsCreated(IClient* client)
{
    return ClientInternal::of(client).state == ClientInternal::created;
}

bool clientIsLogined(IClient* client)
{
    return ClientInternal::of(client).state == ClientInternal::loggedIn;
}

bool clientIsBroken(IClient* client)
{
    return ClientInternal::of(client).state == ClientInternal::broken;
}

bool clientIsIdle(IClient* client)
{
    constexpr std::uint64_t idleTime = 300000;
    const ClientInternal& internal = ClientInternal::of(client);
    return internal.state == ClientInternal::created && !internal.explicitClient &&
           CTime::getCurrentMilliSecond() - internal.lastUseTime > idleTime;
}

long clientGetAndMarkUsing(IClient* client)
{
    return ClientInternal::of(client).using_.exchange(1);
}

bool clientLogin(IClient* client)
{
    ClientInternal& internal = ClientInternal::of(client);
    internal.lastUseTime = CTime::getCurrentMilliSecond();
    if (!client->login())
    {
        return false;
    }
    CRecursiveGuard guard(clientListMutex());
    internal.loginTime = CTime::getCurrentTime();
    internal.state = ClientInternal::loggedIn;
    return true;
}

bool clientUpdateBroken(IClient* client)
{
    ClientInternal& internal = ClientInternal::of(client);
    internal.lastUseTime = CTime::getCurrentMilliSecond();
    if (!client->updateBroken())
    {
        return false;
    }
    internal.state = ClientInternal::broken;
    return true;
}

bool clientIsSameAs(IClient* client, const ClassID& clsid, const ServerInfo& info)
{
    const ClientInternal& internal = ClientInternal::of(client);
    return internal.isOf(clsid) && internal.isFor(info);
}

bool clientIsSameAs(IClient* client, const ClassID& clsid, int userId)
{
    return ClientInternal::of(client).isOf(clsid) && userOf(client) == userId;
}

IClient::IClient() : m_internal(nullptr)
{
    UnknownInternal::of(this).isClient = true;
}

IClient::~IClient()
{
    dropHolder(std::exchange(m_internal, nullptr));
}

IClient::IClient(const IClient& other) : IUnknown(other), m_internal(share(other.m_internal)) {}

IClient& IClient::operator=(const IClient& other)
{
    IUnknown::operator=(other);
    ClientInternal* const shared = share(other.m_internal);
    dropHolder(std::exchange(m_internal, shared));
    return *this;
}

bool IClient::getCurrentTime(CTime&)
{
    Ortha::setLastError(notSupported);
    return false;
}

bool IClient::setCurrentTime(const CTime&, int)
{
    Ortha::setLastError(notSupported);
    return false;
}

bool IClient::loginAgain(const ServerInfo&)
{
    Ortha::setLastError(notSupported);
    return false;
}

bool IClient::checkAuthorityString(const char*)
{
    Ortha::setLastError(notSupported);
    return false;
}

bool IClient::loginFirst()
{
    Ortha::setLastError(notSupported);
    return false;
}

bool IClient::getChallenge(ServerChallenge&)
{
    Ortha::setLastError(notSupported);
    return false;
}

bool IClient::attachStatusProc(StatusProc proc)
{
    ORTHA_ASSERT(m_internal);
    return m_internal->statusSignal.attach(proc) > 0;
}

bool IClient::detachStatusProc(StatusProc proc)
{
    ORTHA_ASSERT(m_internal);
    return m_internal->statusSignal.detach(proc, false) >= 0;
}

bool IClient::getServerInfo(ServerInfo& info)
{
    ORTHA_ASSERT(m_internal);
    ServerInfo filled = {};
    {
        CRecursiveGuard guard(clientListMutex());
        filled = m_internal->server;
    }
    filled.extraBit2 = info.extraBit2;
    std::memcpy(filled.reserved1, info.reserved1, sizeof(info.reserved1));
    std::memcpy(filled.reserved2, info.reserved2, sizeof(info.reserved2));
    info = filled;
    if (*info.userName == 0)
    {
        ORTHA_LOG(Ortha::levelWarn, "this:%p userName of client is a null string!\n", static_cast<void*>(this));
    }
    return true;
}

bool IClient::getLoginTime(CTime& time)
{
    ORTHA_ASSERT(m_internal);
    CRecursiveGuard guard(clientListMutex());
    time = m_internal->loginTime;
    return true;
}

bool IClient::abort(int reason)
{
    ORTHA_ASSERT(m_internal);
    Detail::CComponentHelper::addRef(this);
    const TComPtr<IClient> self(this, nullptr);  // a procedure may give up the last other reference
    m_internal->statusSignal(m_internal->customData, ClassID(m_internal->clsid.c_str()), self, statusAborted, reason);
    return logout();
}

void IClient::setCustomData(void* data)
{
    ORTHA_ASSERT(m_internal);
    m_internal->customData = data;
}

void* IClient::getCustomData()
{
    ORTHA_ASSERT(m_internal);
    return m_internal->customData;
}

bool IClient::saveUserName(const char* name)
{
    ORTHA_ASSERT(m_internal);
    CRecursiveGuard guard(clientListMutex());
    if (!m_internal->saveUserName(name))
    {
        ORTHA_LOG(Ortha::levelWarn, "this:%p username of client has already saved.\n", static_cast<void*>(this));
    }
    return true;
}

int IClient::getCurrentUserID()
{
    void* user = nullptr;
    return currentUser().getValue(&user) ? static_cast<int>(reinterpret_cast<std::intptr_t>(user)) : 0;
}

namespace Detail {

bool CComponentHelper::setAsCurrentUser(IClient* client)
{
    return client && currentUser().setValue(reinterpret_cast<void*>(static_cast<std::intptr_t>(userOf(client))));
}

IUnknown* clientBase(IClient* client)
{
    return client;
}

}  // namespace Detail

}  // namespace General::Component
