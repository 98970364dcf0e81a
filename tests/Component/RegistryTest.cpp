#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <set>

#include "component/Component.h"

#include "support/LogLines.h"
#include "support/ScratchDirectory.h"
#include "support/Sync.h"

namespace General::Component {
namespace {

using Detail::CComponentHelper;
using Ortha::Test::eventually;
using Ortha::Test::inThreads;
using Ortha::Test::LogLines;
using ::testing::MatchesRegex;

std::atomic<int> s_made{0}, s_ended{0}, s_waiting{0};

struct Thing : IUnknown
{
    void destroy() override
    {
        ++s_ended;
        delete this;
    }
    void reservedOperation() override {}
};

IUnknown* createThing(const ServerInfo*)
{
    ++s_made;
    return CComponentHelper::makeComponentObject(new Thing);
}

int liveDoors()
{
    std::map<Ortha::string, int> counts;
    getComponentCountInfo(counts);
    return counts["N10ModuleTest4DoorE"];
}

TEST(Registry, AnInstanceIsSharedByThoseWhoNameTheSameServer)
{
    ServerInfo base = {};
    base.address = "a", base.port = 1, base.userName = "u", base.password = "p", base.kind = 2;
    const struct
    {
        const char* change;
        void (*make)(ServerInfo&);
        bool shared;
    } rows[] = {
        {"none", [](ServerInfo&) {}, true},
        {"address", [](ServerInfo& info) { info.address = "A"; }, false},
        {"address to null", [](ServerInfo& info) { info.address = nullptr; }, false},
        {"port", [](ServerInfo& info) { info.port = 3; }, false},
        {"user", [](ServerInfo& info) { info.userName = "u "; }, false},
        {"password", [](ServerInfo& info) { info.password = ""; }, false},
        {"kind", [](ServerInfo& info) { info.kind = 3; }, false},
        {"all others",
         [](ServerInfo& info) {
             info.extraText1 = info.extraText2 = info.extraText3 = info.extraText4 = info.extraText5 = info.extraText6 = "other";
             info.extraText7 = info.extraText8 = info.extraText9 = info.extraText10 = "other";
             info.extraByte1 = info.extraByte2 = info.extraByte3 = 1, info.extraBit1 = 1, info.extraBit2 = 1, info.extraBits3 = 1;
             info.extraShort1 = info.extraShort2 = 1, info.extraInt1 = info.extraInt2 = info.extraInt3 = 1, info.reserved2[0] = 1;
         },
         true},
    };
    registerComponent("Thing", createThing);
    std::string address = "a";
    base.address = address.c_str();
    IUnknown* const instance = getComponentInstance("Thing", &base);
    address = "overwritten";
    base.address = "a";
    for (const auto& [change, make, shared] : rows)
    {
        ServerInfo info = base;
        make(info);
        IUnknown* const found = getComponentInstance("Thing", &info);
        EXPECT_EQ(found == instance, shared) << change;
        EXPECT_EQ(CComponentHelper::release(found), shared ? 1 : 0) << change;
    }
    const ServerInfo nulls = {};
    ServerInfo empty = {};
    empty.address = empty.userName = empty.password = "";
    IUnknown* const local = getComponentInstance("Thing", nullptr);
    IUnknown* const unnamed = getComponentInstance("Thing", &nulls);
    EXPECT_NE(local, unnamed);
    EXPECT_EQ(getComponentInstance("Thing", &empty), unnamed);
    EXPECT_EQ(getComponentInstance("Thing", nullptr), local);

    // Objects of their own do not touch the list.
    IUnknown *const own = createComponentObject("Thing", &base), *const other = createComponentObject("Thing", &base);
    EXPECT_NE(own, other);
    EXPECT_EQ(CComponentHelper::release(own) + CComponentHelper::release(other), 0);
    EXPECT_EQ(getComponentInstance("Thing", &base), instance);
    EXPECT_EQ(instance->release() + unnamed->release() + local->release(), 3);

    // An instance ends with its last holder and is made anew.
    s_made = 0;
    EXPECT_EQ(instance->release() + unnamed->release() + local->release(), 0);
    IUnknown* const anew = getComponentInstance("Thing", &base);
    EXPECT_EQ(s_made, 1);
    EXPECT_EQ(anew->release(), 0);
}

TEST(Registry, TheLastCreatorCountsAndMayUseTheRegistryOrGiveNothing)
{
    LogLines log;
    EXPECT_TRUE(registerComponent("Outer", [](const ServerInfo*) -> IUnknown* { return nullptr; }));
    EXPECT_EQ(getComponentInstance("Outer", nullptr), nullptr);
    EXPECT_EQ(log.text(), "");
    EXPECT_TRUE(registerComponent("Outer", [](const ServerInfo*) {
        registerComponent("Inner", createThing);
        for (int i = 0; i < 1000; ++i)
        {
            registerComponent(("Inner" + std::to_string(i)).c_str(), createThing);
        }
        CComponentHelper::release(getComponentInstance("Inner", nullptr));
        return createComponentObject("Inner999", nullptr);
    }));
    EXPECT_THAT(log.text(), MatchesRegex(".* warn .*\\]registerComponentCreator creator for cid:Outer already exist!\n"));
    IUnknown* const outer = getComponentInstance("Outer", nullptr);
    EXPECT_EQ(getComponentInstance("Outer", nullptr), outer);
    EXPECT_EQ(outer->release() + outer->release(), 1);
    EXPECT_EQ(s_made, s_ended);
}

TEST(Registry, ThreadsThatMissAtOnceEachMakeAnInstanceAndTheOlderServes)
{
    registerComponent("Slow", [](const ServerInfo*) {
        ++s_waiting;
        EXPECT_TRUE(eventually([] { return s_waiting >= Ortha::Test::threadCount; }));
        return createThing(nullptr);
    });
    IUnknown* instances[Ortha::Test::threadCount];
    inThreads([&](int i) { instances[i] = getComponentInstance("Slow", nullptr); });
    std::set<IUnknown*> left(std::begin(instances), std::end(instances));
    while (!left.empty())
    {
        IUnknown* const serving = getComponentInstance("Slow", nullptr);
        EXPECT_EQ(left.erase(serving), 1U);
        EXPECT_EQ(serving->release() + serving->release(), 1);
    }
    EXPECT_EQ(s_made, Ortha::Test::threadCount);
    EXPECT_EQ(s_ended, s_made);
}

TEST(Registry, NeverHandsOutAnInstanceThatIsEnding)
{
    registerComponent("Thing", createThing);
    inThreads([](int i) {
        for (int round = 0; round < 3000; ++round)
        {
            IUnknown* const instance = getComponentInstance("Thing", nullptr);
            EXPECT_NE(dynamic_cast<Thing*>(instance), nullptr);
            IUnknown* const object = (round + i) % 8 == 0 ? createComponentObject("Thing", nullptr) : nullptr;
            CComponentHelper::release(instance);
            CComponentHelper::release(object);
        }
    });
    EXPECT_EQ(s_made, s_ended);
}

#ifdef ORTHA_TEST_MODULES

TEST(RegistryModules, AClassThatNobodyRegisteredIsLoadedAndItsObjectsAreCountedAcrossModules)
{
    LogLines log;
    inThreads([](int i) {
        for (int round = 0; round < 50; ++round)
        {
            IUnknown* const object = createComponentObject(i % 2 == 0 ? "Door" : "Window", nullptr);
            IUnknown* const instance = getComponentInstance("NineteenCharsInName", nullptr);
            EXPECT_GE(liveDoors(), 2);
            EXPECT_EQ(CComponentHelper::release(object), 0);
            EXPECT_GE(CComponentHelper::release(instance), 0);
        }
    });
    EXPECT_EQ(liveDoors(), 0);
    EXPECT_EQ(log.text(), "");
}

TEST(RegistryModules, AModuleMayRegisterClassesWhileItLoadsWhichItDoesOnce)
{
    LogLines log;
    EXPECT_EQ(createComponentObject("Along", nullptr), nullptr);
    EXPECT_EQ(log.text(), "");
    EXPECT_EQ(CComponentHelper::release(createComponentObject("Registering", nullptr)), 0);
    EXPECT_THAT(log.bare(), "registerComponentCreator creator for cid:Along already exist!\n");
    EXPECT_EQ(CComponentHelper::release(createComponentObject("Registering", nullptr)), 0);
    IUnknown* const along = createComponentObject("Along", nullptr);
    EXPECT_EQ(liveDoors(), 1);
    CComponentHelper::release(along);
    EXPECT_EQ(log.text(), "");
}

TEST(RegistryModules, WhatCannotBeLoadedGivesNullAndALineIfTheEntryAloneIsMissing)
{
    const Ortha::Test::ScratchDirectory here;
    const std::filesystem::path modules = Ortha::Test::programFile().parent_path();
    std::filesystem::copy_file(modules / "Door" ORTHA_TEST_MODULES, here / "OnlyHere" ORTHA_TEST_MODULES);
    std::filesystem::current_path(here / "");
    const struct
    {
        std::string clsid, line;
    } rows[] = {
        {"NoEntry", "getDynamicCreator get proc:createNoEntryObject failed!\n"},
        {"TwentyCharactersName", "getDynamicCreator get proc:createTwentyCharactersNameObjec failed!\n"},
        {"Nowhere", ""},
        {"", ""},
        {"OnlyHere", ""},
        {"./OnlyHere", ""},
        {here / "OnlyHere", ""},
        {"../" + modules.filename().string() + "/Door", ""},
        {std::string(40, 'x'), ""},
    };
    LogLines log;
    for (const auto& [clsid, line] : rows)
    {
        EXPECT_EQ(createComponentObject(clsid.c_str(), nullptr), nullptr) << clsid;
        EXPECT_EQ(getComponentInstance(clsid.c_str(), nullptr), nullptr) << clsid;
        EXPECT_EQ(log.bare(), line + line) << clsid;
    }
}

#endif

}  // namespace
}  // namespace General::Component
