#include "Src/Component/ClientInternal.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <list>
#include <random>

#include "component/Component.h"
#include "ortha/ortha3/Error.h"

#include "Src/Component/ClientFactory.h"
#include "Src/Component/UnknownInternal.h"
#include "support/Capture.h"
#include "support/LogLines.h"
#include "support/ManualClock.h"
#include "support/Sync.h"

namespace General::Component {
namespace {

using Detail::CComponentHelper;
using Ortha::Test::Blocking;
using Ortha::Test::Callback;
using Ortha::Test::eventually;
using Ortha::Test::inThreads;
using ::testing::HasSubstr;
using ::testing::MatchesRegex;

// What clients do, and what was done with them: (u)pdateBroken, (l)ogin, log(o)ut, (d)estroy.
struct Plan
{
    void note(char call)
    {
        std::lock_guard guard(mutex);
        calls += call;
    }
    std::string take() { return std::exchange(calls, ""); }
    auto count(char call)
    {
        std::lock_guard guard(mutex);
        return std::count(calls.begin(), calls.end(), call);
    }

    std::atomic<bool> logsIn{true}, breaks{false};
    bool gives = true;
    int user = 5, cause = 0x10030007;
    std::function<void(IClient*)> atLogin = [](IClient*) {}, atEnd = atLogin;
    std::mutex mutex;
    std::string calls;
};

struct PlannedClient : IClient
{
    explicit PlannedClient(Plan& its) : plan(its) {}
    bool updateBroken() override { return plan.note('u'), plan.breaks; }
    bool login() override
    {
        plan.note('l');
        plan.atLogin(this);
        Ortha::setLastError(plan.logsIn ? Ortha::getLastError() : plan.cause);
        return plan.logsIn;
    }
    bool logout() override { return plan.note('o'), plan.atEnd(this), false; }
    bool getUserID(int& userId) override { return userId = plan.user, false; }
    void destroy() override
    {
        plan.note('d');
        plan.atEnd(this);
        delete this;
    }
    void reservedOperation() override {}

    Plan& plan;
};

struct PlannedFactory : IClient::IFactory
{
    PlannedFactory(const char* className, Plan& its) : name(className), plan(its) {}
    const char* clsid() override { return name; }
    IClient* create(const ServerInfo&) override { return plan.gives ? ++made, new PlannedClient(plan) : nullptr; }

    const char* const name;
    Plan& plan;
    std::atomic<int> made{0};
};

struct SensorFactory : IFactoryUnknown
{
    explicit SensorFactory(const char* className) : name(className) {}
    const char* clsid() override { return name; }

    const char* const name;
};

struct ClientsUnderCheck : ::testing::Test
{
    ClientsUnderCheck()
    {
        server.address = "10.0.0.7";
        server.userName = "operator";
        tcp.registerFactory("Client");
        local.registerFactory("Client");
        sensors.registerFactory("Sensor");
        orphans.registerFactory("Sensor");
        log.take();
    }
    IFactoryUnknown* find() { return CComponentHelper::getComponentFactory("Sensor", "Tcp.Sensor", server, client); }
    static IClientFactoryWrap* wrap(const char* clsid)
    {
        IClient* none = nullptr;
        return dynamic_cast<IClientFactoryWrap*>(CComponentHelper::getComponentFactory("Client", clsid, ServerInfo::none, none));
    }
    // A new client for its own sake, made as its caller has to.
    IClient* create(const char* clsid = "Tcp")
    {
        IClient* const made = wrap(clsid)->create(server);
        CComponentHelper::makeComponentObject(made);
        return made;
    }
    // References, whether it is in use, and its state.
    static std::string life(IClient* one)
    {
        const ClientInternal& internal = ClientInternal::of(one);
        return std::to_string(getRefCount(one)) + (internal.using_ ? " used " : " unused ") + std::to_string(internal.state);
    }
    // The client that the list has for the server.
    IClient* listed()
    {
        IClient* const found = list.getClientByServer("Tcp", server);
        CComponentHelper::release(found);
        return found;
    }
    void pass(int milliSeconds)
    {
        clock.advance(milliSeconds);
        list.removeIdleClientInstance(0);
    }

    Ortha::Test::ManualClock& clock = *new Ortha::Test::ManualClock;  // the timers read it to the end
    Plan plan;
    PlannedFactory tcp{"Tcp", plan}, local{"Local", plan};
    SensorFactory sensors{"Tcp.Sensor"}, orphans{"Orphan.Sensor"};
    Ortha::Test::LogLines log;
    CClientInstanceList& list = *CClientInstanceList::instance();
    ServerInfo server = {};
    IClient* client = nullptr;
};

// The check is run by hand.
struct Clients : ClientsUnderCheck
{
    Clients()
    {
        log.take();
        Ortha_uninitComponentFactory();
        EXPECT_THAT(log.bare(), HasSubstr("client check timer stopped successfully.\n"));
    }
};

TEST_F(Clients, AComponentsClientStaysForALaterAttemptAndThenLivesAsLongAsItsHolders)
{
    std::string atLogin;
    plan.atLogin = [&](IClient* one) { atLogin = life(one) + (listed() == one ? "" : " lost"); };
    plan.logsIn = false;
    EXPECT_EQ(find(), nullptr);
    EXPECT_EQ(atLogin, "2 unused 0");
    IClient* const kept = listed();
    ASSERT_NE(kept, nullptr);
    EXPECT_EQ(find(), nullptr);
    EXPECT_EQ(life(kept), "1 unused 0");
    plan.logsIn = true;
    clock.setWall(86400000);
    EXPECT_EQ(find(), &sensors);
    EXPECT_EQ(atLogin, "2 unused 0");
    EXPECT_EQ(client, kept);
    EXPECT_EQ(life(client), "1 used 1");
    EXPECT_EQ(find(), &sensors);
    EXPECT_EQ(life(client), "2 used 1");
    Ortha::CTime loggedIn;
    EXPECT_TRUE(client->getLoginTime(loggedIn));
    EXPECT_EQ(loggedIn, Ortha::CTime::getCurrentTime());
    EXPECT_EQ(CComponentHelper::release(client), 1);
    pass(3600000);
    EXPECT_EQ(listed(), kept);
    EXPECT_EQ(CComponentHelper::release(client), 0);
    EXPECT_EQ(listed(), nullptr);
    EXPECT_EQ(plan.take(), "lllu"
                           "od");
    EXPECT_EQ(find(), &sensors);  // logged in at once
    EXPECT_EQ(life(client), "1 used 1");
    EXPECT_EQ(CComponentHelper::release(client), 0);
}

TEST_F(Clients, OnlyAClientOfAComponentThatNeverLoggedInAndHasNoHolderEndsAfterFiveMinutes)
{
    plan.logsIn = false;
    find();
    server.port = 1;
    find();
    plan.take();
    pass(300000);
    EXPECT_EQ(plan.take(), "");
    find();  // another attempt begins the time anew
    IClient* const held = list.findUsableClient("Tcp", server);
    pass(1);
    EXPECT_EQ(plan.take(), "lod");
    pass(300000);
    EXPECT_EQ(life(held), "2 unused 0");
    EXPECT_EQ(CComponentHelper::release(held), 1);
    server.port = 2;
    find();
    server.port = 3;
    IClient* const explicitOne = create();
    plan.take();
    pass(300001);
    EXPECT_EQ(plan.take(), "odod");
    EXPECT_EQ(listed(), explicitOne);
    EXPECT_EQ(CComponentHelper::release(explicitOne), 0);
}

TEST_F(Clients, AFoundClientIsMadeUsableAccordingToItsState)
{
    const std::string notGot = ".* debug .*\\]iid:Sensor, clsid:Tcp.Sensor could not been got because ";
    const struct
    {
        int before;
        bool breaks, logsIn;
        const char* after;  // calls, references, use and state
        std::string line;
    } rows[] = {
        {0, false, true, "l 1 used 1", ""},
        {0, true, false, "l 1 used 0", notGot + "login failed.\n"},
        {1, false, false, "u 1 used 1", ""},
        {1, true, true, "ul 1 used 1", ""},
        {1, true, false, "ul 1 used 2", notGot + "re-login failed.\n"},
        {2, false, true, "l 1 used 1", ""},
        {2, true, false, "l 1 used 2", notGot + "login failed.\n"},
        {7, true, true, " 1 used 7", ".* error .*\\]iid:Sensor, clsid:Tcp.Sensor client state is unknown!\n"},
    };
    Ortha::setPrintLogLevel(6);
    IClient* const held = create();
    for (const auto& [before, breaks, logsIn, after, line] : rows)
    {
        ClientInternal::of(held).state = before;
        plan.breaks = breaks, plan.logsIn = logsIn;
        Ortha::setLastError(0);
        EXPECT_EQ(find(), line.empty() ? &sensors : nullptr) << after;
        EXPECT_EQ(client, line.empty() ? held : nullptr) << after;
        std::string told;
        for (const std::string& text : log.take())
        {
            told += text.find("]ThreadBody ") == std::string::npos ? text : "";  // the library's threads tell of themselves, too
        }
        EXPECT_THAT(told, MatchesRegex(line)) << after;
        EXPECT_EQ(Ortha::getLastError(), logsIn || line.empty() ? 0 : plan.cause) << after;
        CComponentHelper::release(client);
        EXPECT_EQ(plan.take() + " " + life(held), after) << line;
    }
    EXPECT_EQ(CComponentHelper::release(held), 0);
}

TEST_F(Clients, AFactoryIsFoundOrTheLastErrorTellsWhatIsMissing)
{
    const ServerInfo copyOfNone = ServerInfo::none;
    SensorFactory gone("Tcp.Gone");
    gone.registerFactory("Sensor");
    gone.unregisterFactory("Sensor");
    PlannedFactory goneClient("Gone", plan);
    goneClient.registerFactory("Client");
    goneClient.unregisterFactory("Client");
    const struct
    {
        const char *iid, *clsid;
        const ServerInfo& info;
        bool gives;
        int error;
        const char *calls, *line;
    } rows[] = {
        {"Nothing", "Tcp.Sensor", server, true, 0x10030000, "", ""},
        {"Sensor", "Tcp.Other", ServerInfo::none, true, 0x10030001, "", ""},
        {"Sensor", "Tcp.Other", server, true, 0x10030001, "", ""},
        {"Sensor", "Orphan.Sensor", server, true, 0x10030002, "", "clsid:Orphan.Sensor could not been got because clientInstance could"},
        {"Sensor", "Tcp.Sensor", server, false, 0x10030003, "", "clsid:Tcp.Sensor could not been got because clientInstance could"},
        {"Client", "Tcp.Sensor", server, true, 0x10030001, "", ""},
        {"Client", "Gone", ServerInfo::none, true, 0x10030001, "", ""},
        {"Sensor", "Tcp.Gone", ServerInfo::none, true, 0, "", ""},
        {"Sensor", "Tcp.Gone", server, true, 0, "l", ""},
        {"Sensor", "Tcp.Sensor", copyOfNone, true, 0x10030007, "l", "clsid:Tcp.Sensor could not been generated because login failed.\n"},
    };
    for (const auto& [iid, clsid, info, gives, error, calls, line] : rows)
    {
        plan.gives = gives;
        plan.logsIn = error != plan.cause;
        Ortha::setLastError(0);
        client = reinterpret_cast<IClient*>(1);
        EXPECT_EQ(CComponentHelper::getComponentFactory(iid, clsid, info, client), nullptr) << iid << clsid;
        EXPECT_EQ(client, nullptr) << iid << clsid;
        EXPECT_EQ(Ortha::getLastError(), error) << iid << clsid;
        EXPECT_EQ(plan.take(), calls) << clsid;
        const std::string text = log.text();
        EXPECT_THAT(text, HasSubstr(line)) << iid << clsid;
        EXPECT_EQ(text.find(*line == 0 ? "]" : error == plan.cause ? " error " : " warn "), std::string::npos) << text;
    }
    EXPECT_EQ(CComponentHelper::getComponentFactory("Client", "Tcp", server, client), wrap("Tcp"));
    EXPECT_EQ(CComponentHelper::getComponentFactory("Sensor", "Tcp.Sensor", ServerInfo::none, client), &sensors);
    EXPECT_EQ(client, nullptr);
    EXPECT_EQ(plan.take(), "");

    // By user: a client as it is.
    Ortha::setLastError(0);
    EXPECT_EQ(CComponentHelper::getComponentFactory("Sensor", "Tcp.Sensor", -1, client), &sensors);
    EXPECT_EQ(CComponentHelper::getComponentFactory("Sensor", "Tcp.Sensor", 6, client), nullptr);
    EXPECT_EQ(Ortha::getLastError(), 0);
    IClient* const held = create();
    ClientInternal::of(held).state = ClientInternal::broken;
    plan.user = 6;
    EXPECT_EQ(CComponentHelper::getComponentFactory("Client", "Tcp", 6, client), wrap("Tcp"));
    EXPECT_EQ(client, nullptr);
    EXPECT_EQ(CComponentHelper::getComponentFactory("Sensor", "Tcp.Sensor", 6, client), &sensors);
    EXPECT_EQ(client, held);
    EXPECT_EQ(life(held), "2 used 2");
    EXPECT_EQ(IClient::getCurrentUserID(), 6);
    EXPECT_FALSE(CComponentHelper::setAsCurrentUser(nullptr));
    EXPECT_EQ(IClient::getCurrentUserID(), 6);
    EXPECT_EQ(tcp.instance(6), held);
    EXPECT_EQ(life(held), "3 used 2");
    EXPECT_EQ(CComponentHelper::getComponentFactory("Nothing", "Tcp.Sensor", 6, client), nullptr);
    EXPECT_EQ(life(held), "3 used 2");
    EXPECT_EQ(plan.take(), "");
    EXPECT_EQ(CComponentHelper::release(held) + CComponentHelper::release(held) + CComponentHelper::release(held), 3);
    pass(300001);
    EXPECT_EQ(plan.take(), "odod");
}

TEST_F(Clients, AClientIsFoundByTheFieldsOfItsServerThatTellOneFromAnother)
{
    using S = ServerInfo;
    std::vector<std::function<void(S&)>> changes;  // those that tell first
    const auto text = [&](auto... fields) { (changes.push_back([fields](S& info) { info.*fields = "other"; }), ...); };
    const auto number = [&](auto... fields) { (changes.push_back([fields](S& info) { ++(info.*fields); }), ...); };
    text(&S::address, &S::userName, &S::password, &S::extraText1, &S::extraText2, &S::extraText3, &S::extraText4, &S::extraText6,
         &S::extraText7, &S::extraText8, &S::extraText10);
    number(&S::port, &S::extraInt1, &S::extraInt2, &S::kind, &S::extraByte1, &S::extraByte2, &S::extraByte3, &S::extraShort2);
    changes.push_back([](S& info) { info.extraBit1 ^= 1; });
    const std::size_t telling = changes.size();
    text(&S::extraText5, &S::extraText9);
    number(&S::extraShort1, &S::extraInt3);
    changes.push_back([](S& info) { info.extraBit2 = 1, info.extraBits3 = 63, info.reserved1[6] = 1, info.reserved2[119] = 1; });
    S borrowed = server;
    std::string buffer = "soon overwritten";
    borrowed.extraText9 = borrowed.password = buffer.c_str();
    IClient* const held = wrap("Tcp")->create(borrowed);
    buffer = "not its text";
    server.password = "soon overwritten";
    for (std::size_t i = 0; i < changes.size(); ++i)
    {
        S changed = server;
        changes[i](changed);
        IClient* const found = list.findUsableClient("Tcp.x", changed);
        EXPECT_EQ(found, i < telling ? nullptr : held) << i;
        EXPECT_EQ(clientIsSameAs(held, "Tcp.x", changed), i >= telling) << i;
        CComponentHelper::release(found);
    }
    S kept = {};
    kept.extraBit2 = 1, kept.reserved2[119] = 4;
    EXPECT_TRUE(held->getServerInfo(kept));
    EXPECT_STREQ(kept.extraText9, "soon overwritten");
    EXPECT_STREQ(kept.extraText1, "");
    EXPECT_EQ(kept.extraBit2 + kept.reserved2[119], 5);
    EXPECT_EQ(CComponentHelper::release(held), 0);
}

TEST_F(Clients, AClientBelongsToTheClassesWhoseNamesBeginAsItsOwnAndToItsUser)
{
    PlannedFactory longer("abcd", plan);
    longer.registerFactory("Client");
    IClient* const held = create("abcd");
    const struct
    {
        const char* asked;
        bool fits;
    } rows[] = {{"abcd", true}, {"abc.def", true}, {"abc", true},    {"abcd.", true},
                {".x", true},   {"abcde", false},  {"Abc.d", false}, {"b", false}};
    for (const auto& [asked, fits] : rows)
    {
        EXPECT_EQ(clientIsSameAs(held, asked, server), fits) << asked;
        EXPECT_EQ(clientIsSameAs(held, asked, 5), fits) << asked;
    }
    EXPECT_FALSE(clientIsSameAs(held, "abcd", 4));

    // A saved name is part of it, once.
    ServerInfo info = {};
    EXPECT_TRUE(held->saveUserName("first"));
    EXPECT_TRUE(held->getServerInfo(info));
    log.take();
    EXPECT_TRUE(held->saveUserName("second"));
    EXPECT_EQ(log.bare(), "username of client has already saved.\n");
    EXPECT_STREQ(info.userName, "first");
    EXPECT_EQ(list.getClientByServer("abcd", server), nullptr);
    server.userName = "first";
    EXPECT_EQ(list.getClientByServer("abcd", server), held);
    EXPECT_EQ(held->release() + CComponentHelper::release(held), 1);

    // Null texts are empty ones, and an empty name is worth a warning.
    const ServerInfo nulls = {};
    server.address = server.userName = server.password = "";
    IClient* const empty = wrap("Tcp")->create(nulls);
    EXPECT_TRUE(clientIsSameAs(empty, "Tcp", server));
    EXPECT_TRUE(empty->getServerInfo(info));
    EXPECT_STREQ(info.extraText10, "");
    EXPECT_EQ(log.bare(), "userName of client is a null string!\n");
    EXPECT_EQ(CComponentHelper::release(empty), 0);
}

TEST_F(Clients, NoLockIsHeldWhenAClientEnds)
{
    std::list<Blocking> users;
    plan.atEnd = [&](IClient*) {
        const auto use = [this] {
            IClient* none = nullptr;
            EXPECT_EQ(CComponentHelper::getComponentFactory("Sensor", "Tcp.Sensor", 99, none), nullptr);
            EXPECT_EQ(ClassIDList("Client").count(), 2U);
            EXPECT_EQ(list.findUsableClient("Tcp", ServerInfo::none), nullptr);
            Plan refused;
            refused.gives = false;
            PlannedFactory factory("Other", refused);
            EXPECT_EQ(IClientFactoryWrap(&factory).create(ServerInfo::none), nullptr);
        };
        EXPECT_TRUE(users.emplace_back(use).done(std::chrono::seconds(2)));
    };
    EXPECT_EQ(find(), &sensors);
    EXPECT_EQ(CComponentHelper::release(client), 0);
    plan.logsIn = false;
    EXPECT_EQ(find(), nullptr);
    pass(300001);
    EXPECT_EQ(plan.take(), "lodlod");
    EXPECT_EQ(users.size(), 4U);
}

TEST_F(Clients, AbortTellsTheStatusProceduresWhichMayDetachThemselvesAndReleaseTheClient)
{
    const int data = 0;
    std::string told;
    IClient* held = create();
    held->setCustomData(const_cast<int*>(&data));
    Callback<void*, ClassID, TComPtr<IClient>, IClient::Status, int> once{[&](auto, auto, auto self, auto, auto) {
        told += "once ";
        EXPECT_TRUE(self->detachStatusProc(once));
    }};
    Callback<void*, ClassID, TComPtr<IClient>, IClient::Status, int> tell{
        [&](void* custom, ClassID clsid, auto self, auto status, int reason) {
            EXPECT_EQ(custom, &data);
            EXPECT_EQ(self.get(), held);
            told += std::string(clsid.name) + std::to_string(status) + std::to_string(reason) + " ";
        }};
    Callback<void*, ClassID, TComPtr<IClient>, IClient::Status, int> release{
        [&](auto...) { EXPECT_GE(CComponentHelper::release(held), 2); }};
    EXPECT_FALSE(held->abort(1));
    EXPECT_EQ(plan.take(), "o");
    EXPECT_TRUE(held->attachStatusProc(once));
    EXPECT_TRUE(held->attachStatusProc(tell));
    EXPECT_FALSE(held->attachStatusProc(tell));
    EXPECT_FALSE(held->abort(-3));
    EXPECT_FALSE(held->detachStatusProc(once));
    EXPECT_EQ(life(held), "1 used 0");
    for (unsigned int tag = Ortha::typeReuse; tag < Ortha::typeReuse + 7; ++tag)
    {
        EXPECT_TRUE(held->attachStatusProc(tell.tagged(tag)));
    }
    EXPECT_FALSE(held->attachStatusProc(once));
    EXPECT_TRUE(held->detachStatusProc(tell));
    EXPECT_TRUE(held->attachStatusProc(release));
    EXPECT_EQ(told, "once Tcp2-3 ");
    EXPECT_EQ(plan.take(), "o");
    EXPECT_FALSE(held->abort(4));
    EXPECT_EQ(plan.take(), "ood");
    EXPECT_EQ(listed(), nullptr);
}

TEST_F(Clients, TheFirstRegistrationNamesTheErrorsAndClassesAreListedInOrder)
{
    for (int code = 0x10030000; code <= 0x10030015; ++code)
    {
        EXPECT_EQ(std::string(Ortha::getErrMsg(code)).rfind("Component error: ", 0) == 0, code < 0x10030010 || code == 0x10030015) << code;
    }
    EXPECT_STREQ(Ortha::getErrMsg(0x10030005), "Component error: tring login!");
    EXPECT_STREQ(Ortha::getErrMsg(0x10030015), "Component error: User or password not valid!");
    SensorFactory first("Abc"), gone("Zyx"), again("Abc");
    first.registerFactory("Sensor"), gone.registerFactory("Sensor"), again.registerFactory("Sensor");
    gone.unregisterFactory("Sensor");
    EXPECT_EQ(CComponentHelper::getComponentFactory("Sensor", "Abc", ServerInfo::none, client), &again);
    const ClassIDList classes("Sensor");
    const char* const sorted[] = {"Abc", "Orphan.Sensor", "Tcp.Sensor", "Zyx"};
    ASSERT_EQ(classes.count(), std::size(sorted));
    for (int i = 0; i < 4; ++i)
    {
        EXPECT_STREQ(classes[i].c_str(), sorted[i]);
    }
    EXPECT_DEATH((void)classes[-1], "assertion \\(\\(size_t\\)index < m_internal->ids.size\\(\\)\\) failed");
    EXPECT_EQ(ClassIDList("unknown").count(), 0U);
    using Select = CLocalComSelectManager;
    EXPECT_FALSE(Select::setDefaultComponent(nullptr, "A"));
    EXPECT_EQ(Select::getDefaultClassID("Sensor"), "Local");
    EXPECT_TRUE(Select::setDefaultComponent("Sensor", "A"));
    EXPECT_FALSE(Select::setDefaultComponent("Sensor", "B"));
    EXPECT_EQ(Select::getDefaultClassID("Sensor"), "A");
    EXPECT_EQ(Select::getDefaultClassID(nullptr), "");
}

// With the check timer at work, under a clock that runs five minutes in some milliseconds.
struct ClientStress : ClientsUnderCheck
{
    void run(unsigned int clientsForTheirOwnSakeOfEight)
    {
        Ortha::setPrintLogLevel(1);
        const std::jthread time([this](const std::stop_token& stop) {
            for (; !stop.stop_requested(); std::this_thread::sleep_for(std::chrono::milliseconds(1)))
            {
                clock.advance(30000);
            }
        });
        inThreads([&](int seed) {
            std::minstd_rand random(static_cast<unsigned int>(seed) + 1);
            ServerInfo one = server, its = {};
            for (int round = 0; round < 3000; ++round)
            {
                one.port = static_cast<int>(random() % 3);
                plan.logsIn = random() % 2 == 0, plan.breaks = random() % 4 == 0;
                IClient* found = nullptr;
                if (random() % 8 < clientsForTheirOwnSakeOfEight)
                {
                    CComponentHelper::makeComponentObject(found = wrap("Tcp")->create(one));
                }
                else if (!CComponentHelper::getComponentFactory("Sensor", "Tcp.Sensor", one, found))
                {
                    continue;
                }
                const TComPtr<IClient> holder(found, nullptr);
                EXPECT_TRUE(holder->getServerInfo(its));
                EXPECT_EQ(its.port, one.port);
            }
        });
        EXPECT_TRUE(eventually([this] { return plan.count('d') == tcp.made; }));
        EXPECT_EQ(plan.count('o'), tcp.made);
        EXPECT_GT(tcp.made, 100);
    }
};

TEST_F(ClientStress, ComponentsClientsAreLoggedOutAndDestroyedOnceAndNotUsedAfterwards)
{
    run(0);
}

TEST_F(ClientStress, SoAreThoseThatOthersMakeForTheirOwnSake)
{
    run(2);
}

}  // namespace
}  // namespace General::Component
