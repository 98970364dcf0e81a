#include <gtest/gtest.h>

#include <cstdio>
#include <list>
#include <typeinfo>

#include "component/Component.h"
#include "ortha/ortha3/Error.h"

#include "support/Sync.h"

namespace General::Component {
namespace {

using Detail::CComponentHelper;
using Detail::CObjectTable;
using Ortha::Test::Blocking;
using Ortha::Test::inThreads;

std::string s_ended;  // the names of the objects that have ended, in that order

template <class Base>
struct Ending : Base
{
    explicit Ending(const char* text, std::function<void()> atEnd = {}) : name(text), onEnd(std::move(atEnd)) {}
    void destroy() override
    {
        onEnd ? onEnd() : void(s_ended += name);
        delete this;
    }
    void reservedOperation() override {}

    const std::string name;
    const std::function<void()> onEnd;
};
using Named = Ending<IUnknown>;

// A client that the library has no record of, for pointers to hold.
struct BareClient : Ending<IClient>
{
    using Ending::Ending;
    bool updateBroken() override { return false; }
    bool login() override { return true; }
    bool logout() override { return true; }
    bool getUserID(int& userId) override { return std::fputs("asked for its user\n", stderr) != EOF && (userId = 17) != 0; }
};

struct Key : Detail::key_base
{
    explicit Key(const char* text) : wanted(text) {}
    bool match(IUnknown* object) const override { return ++asked != 0 && static_cast<Named*>(object)->name == wanted; }

    const std::string wanted;
    mutable std::atomic<int> asked{0};
};

// How many references an object has.
int refs(IUnknown* object)
{
    CComponentHelper::addRef(object);
    return CComponentHelper::release(object);
}

TEST(Unknown, WhatAHolderCostsDependsOnHowTheObjectWasMade)
{
    // Each letter is an operation: a reference, a making as an (o)bject or as an (i)nstance, an insertion into the (t)able.
    const struct
    {
        const char* operations;
        int count;
    } rows[] = {{"", 1},   {"oo", 1}, {"oa", 2}, {"i", 1},  {"iii", 3},   {"oi", 2}, {"io", 1}, {"ai", 3},
                {"ao", 2}, {"t", 1},  {"to", 1}, {"ti", 1}, {"toiio", 1}, {"ot", 2}, {"at", 3}, {"iit", 3}};
    CObjectTable table;
    for (const auto& [operations, count] : rows)
    {
        IUnknown* const object = new Named("x");
        for (const char operation : std::string(operations))
        {
            operation == 'a'   ? void(CComponentHelper::addRef(object))
            : operation == 'o' ? void(CComponentHelper::makeComponentObject(object))
            : operation == 'i' ? void(CComponentHelper::makeComponentInstance(object))
                               : table.insert(object);
        }
        EXPECT_EQ(refs(object), count) << operations;
        for (int left = count - 1; left >= 0; --left)
        {
            EXPECT_EQ(std::exchange(s_ended, ""), "") << operations;
            EXPECT_EQ(CComponentHelper::release(object), left) << operations;
        }
        EXPECT_EQ(std::exchange(s_ended, ""), "x") << operations;
        EXPECT_EQ(table.count(), 0U) << operations;
    }
    EXPECT_EQ(CComponentHelper::addRef(nullptr) + CComponentHelper::release(nullptr), 0);
    EXPECT_EQ(CComponentHelper::makeComponentInstance(nullptr), nullptr);
    EXPECT_EQ(Ortha::getLastError(), 0x1003000e);
    EXPECT_EQ(CComponentHelper::makeComponentObject(nullptr), nullptr);
    EXPECT_EQ(Ortha::getLastError(), 0x1003000d);
}

TEST(ObjectTable, FindsTheFirstThatMatchesUntilItsLastReferenceGoes)
{
    CObjectTable table;
    const Key x("x"), y("y");
    EXPECT_EQ(table.find(x), nullptr);
    EXPECT_EQ(x.asked, 0);
    std::list<Blocking> users;  // another thread can use the table while an object ends
    IUnknown* const first = new Named("x", [&] {
        EXPECT_EQ(table.count(), 2U);
        EXPECT_TRUE(users.emplace_back([&] { table.lock(), table.unlock(); }).done());
    });
    IUnknown *const second = new Named("x"), *const third = new Named("y");
    for (IUnknown* const object : {first, second, third})
    {
        table.insert(object);
    }
    EXPECT_EQ(table.find(x), first);
    EXPECT_EQ(x.asked, 1);
    EXPECT_EQ(first->release(), 1);
    EXPECT_EQ(first->release(), 0);
    EXPECT_EQ(users.size(), 1U);
    EXPECT_EQ(table.find(x), second);
    table.insert(second);
    EXPECT_EQ(table.count(), 3U);
    EXPECT_EQ(table.get(2), second);
    EXPECT_EQ(refs(second), 3);
    table.erase(second);
    table.erase(second);
    EXPECT_EQ(table.find(x), nullptr);
    EXPECT_EQ(table.find(y), third);
    EXPECT_DEATH((void)table.get(1), "assertion \\(index < m_internal->objects.size\\(\\)\\) failed");
    EXPECT_EQ(second->release() + second->release() + second->release(), 3);
    EXPECT_EQ(third->release() + third->release(), 1);
    EXPECT_EQ(s_ended, "xy");
}

TEST(ObjectTable, NeverHandsOutAnObjectThatIsEnding)
{
    CObjectTable table;
    std::atomic<int> made{0}, ended{0};
    inThreads([&](int) {
        const Key key("x");
        for (int round = 0; round < 3000; ++round)
        {
            table.lock();
            IUnknown* object = table.find(key);
            if (!object)
            {
                ++made;
                table.insert(object = new Named("x", [&ended] { ++ended; }));
            }
            EXPECT_EQ(table.count(), 1U);
            table.unlock();
            EXPECT_EQ(static_cast<Named*>(object)->name, "x");
            CComponentHelper::release(object);
        }
    });
    EXPECT_EQ(made, ended);
    EXPECT_EQ(table.count(), 0U);
}

TEST(ComPtr, EachCopyHoldsOneReferenceToTheObjectAndToItsClient)
{
    Named *const object = new Named("o"), *const other = new Named("p");
    BareClient* const client = new BareClient("c");
    const auto counts = [&] { return refs(object) * 10 + refs(client); };
    {
        TComPtr<Named> empty, adopted(object, client);
        EXPECT_EQ(counts(), 11);
        TComPtr<Named> copy(adopted), &same = copy;
        EXPECT_EQ(counts(), 22);
        copy = same;
        empty = copy;
        EXPECT_EQ(counts(), 33);
        empty = TComPtr<Named>(other, nullptr);
        EXPECT_EQ(counts(), 22);
        EXPECT_EQ(TComPtr<Named>(empty)->name, "p");
        EXPECT_EQ(refs(other), 1);
        EXPECT_EQ(IClient::getCurrentUserID(), 0);
        copy.reset();
        copy.reset();
        EXPECT_TRUE(!copy);
        EXPECT_EQ(counts(), 11);
        EXPECT_EQ(adopted->name, "o");
        EXPECT_EQ(IClient::getCurrentUserID(), 17);
        empty = adopted;
        EXPECT_EQ(s_ended, "p");
    }
    EXPECT_EQ(s_ended, "poc");
}

TEST(ComPtr, AnEmptyOneIsNotUsedAndSaysSoAfterTheUserWasSet)
{
    const TComPtr<Named> empty(nullptr, new BareClient("c"));
    EXPECT_DEATH((void)empty->name, "asked for its user\n(.|\n)*assertion \\(m_ptr != NULL\\) failed");
}

}  // namespace
}  // namespace General::Component
