#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>

#include "component/Component.h"

#include "support/Capture.h"
#include "support/LogLines.h"

namespace General::Component {
namespace {

using namespace Ortha::Test;
using ::testing::MatchesRegex;

constexpr int user = 5;

// Has a user and nothing else, and lives until the process ends.
struct UserClient : IClient
{
    bool updateBroken() override { return false; }
    bool login() override { return true; }
    bool logout() override { return true; }
    bool getUserID(int& userId) override { return userId = user, true; }
    void destroy() override { delete this; }
    void reservedOperation() override {}
};

TEST(ServerInfoQueryer, AsksTheOneHandlerAsItsUserAndNeverForWhatIsLocal)
{
    struct Queryer : IServerInfoQueryer
    {
        bool getServerInfoByChannel(int channel, Ortha::string& clsid, ServerInfo& info) override
        {
            info.port = channel + IClient::getCurrentUserID();
            return clsid = "Tcp.Channel", channel != 9;
        }
        bool getServerInfoByDeviceId(const char* id, Ortha::string& clsid, ServerInfo&) override { return clsid = id, *id == 0; }
        void destroy() override { std::puts("ended"), delete this; }
        void reservedOperation() override {}
    };
    // The handler is kept until the process ends.
    EXPECT_EQ(runInChild([] { setQueryerHandler({new Queryer, nullptr}); }).output, "ended\n");

    LogLines log;
    auto& helper = *CServerInfoQueryerHelper::instance();
    Ortha::string clsid;
    ServerInfo info = {};
    EXPECT_TRUE(helper.getServerInfoByChannel(5, clsid, info));
    EXPECT_EQ(clsid, "Local");
    EXPECT_FALSE(helper.getServerInfoByDeviceId("a", clsid, info));
    EXPECT_FALSE(setQueryerHandler({}));
    EXPECT_THAT(log.bare(), MatchesRegex("please call setQueryerHandler interface\nsetQueryerHandler failed setPtr:.* oldPtr:.*\n"));
    EXPECT_TRUE(setQueryerHandler({new Queryer, new UserClient}));
    log.take();
    EXPECT_FALSE(setQueryerHandler({new Queryer, nullptr}));
    EXPECT_THAT(log.text(), MatchesRegex(".* error .*\\]setQueryerHandler failed setPtr:(0x)?[0-9a-f]+, oldPtr:(0x)?[0-9a-f]+\n"));
    EXPECT_TRUE(helper.getServerInfoByChannel(-1, clsid, info));
    EXPECT_EQ(clsid, "Local");
    EXPECT_EQ(info.port, 0);
    EXPECT_FALSE(helper.getServerInfoByChannel(-2, clsid, info));
    EXPECT_FALSE(helper.getServerInfoByDeviceId(nullptr, clsid, info));
    EXPECT_EQ(log.bare(), "channel:-2 is invalid \ndeviceId:(null) is empty\n");
    EXPECT_TRUE(helper.getServerInfoByChannel(0, clsid, info));
    EXPECT_EQ(clsid, "Tcp.Channel");
    EXPECT_EQ(info.port, user);
    EXPECT_FALSE(helper.getServerInfoByChannel(9, clsid, info));
    EXPECT_TRUE(helper.getServerInfoByDeviceId("", clsid, info));
}

}  // namespace
}  // namespace General::Component
