#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <deque>
#include <list>
#include <memory>
#include <random>
#include <string>

#include "ortha/ortha3/SignalTemplate.h"

#include "support/Capture.h"
#include "support/Sync.h"

namespace General::Ortha::Test {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

// Procedures that note their names, and what else the tests attach.
struct Signal : ::testing::Test
{
    std::function<void()> note(char name)
    {
        return [this, name] { calls += name; };
    }
    std::string fire(TSignal0& signal)
    {
        calls.clear();
        signal();
        return calls;
    }
    // Attaches new procedures to a signal that has `attached` until one is refused. The number attached then.
    int fill(TSignal0& signal, int attached = 0)
    {
        while (attached < 300 && signal.attach(procs.emplace_back(note('.'))) == attached + 1)
        {
            ++attached;
        }
        return attached;
    }

    std::string calls;
    Callback<> a{note('a')}, b{note('b')}, c{note('c')}, d{note('d')}, e{note('e')}, f{note('f')};
    std::deque<Callback<>> procs;
};

// A procedure whose calls, each from a firing on a thread of its own, last until they are let go.
struct Held
{
    void enter()
    {
        firings.emplace_back([this] { signal(); });
        EXPECT_TRUE(eventually([this] { return inside == static_cast<int>(firings.size()); }));
    }
    void leave()
    {
        mayLeave = inside.load();
        firings.clear();
    }

    TSignal0& signal;
    std::atomic<int> inside{0}, mayLeave{0}, left{0};
    Callback<> proc{[this] {
        const int call = ++inside;
        EXPECT_TRUE(eventually([&] { return mayLeave >= call; }));
        ++left;
    }};
    std::list<Blocking> firings{};
};

TEST_F(Signal, AttachAndDetachAnswerWithTheNumberAttachedOrTheReason)
{
    TSignal0 signal(8);
    EXPECT_EQ(fill(signal), 8);
    EXPECT_EQ(signal.attach(a), errorFull);
    EXPECT_EQ(signal.attach(procs[3]), errorAttached);
    EXPECT_EQ(signal.detach(procs[3]), 7);
    EXPECT_EQ(signal.detach(procs[3], true), errorNotFound);
    EXPECT_EQ(signal.attach(a, 3), errorFull);
    EXPECT_EQ(signal.attach(a, -1), errorFull);
    EXPECT_EQ(signal.attach({}), errorEmptyProc);
    EXPECT_EQ(signal.detach({}), errorEmptyProc);
    EXPECT_EQ(signal.attach(a.tagged(typeAny)), errorAnyProc);
    EXPECT_EQ(signal.attach(a), 8);
}

TEST_F(Signal, PositionsDecideWhoIsMovedAndInWhatOrderProceduresAreCalled)
{
    TSignal0 signal(4);
    signal.attach(a);
    signal.attach(b);
    EXPECT_EQ(signal.attach(c, positionBack), 3);  // a b - c
    EXPECT_EQ(signal.attach(d, positionFront), 4);
    EXPECT_EQ(fire(signal), "dabc");
    signal.detach(a);
    EXPECT_EQ(signal.attach(e, positionBack), 4);
    EXPECT_EQ(fire(signal), "dbce");
    signal.detach(c);
    EXPECT_EQ(signal.attach(f, positionAny), 4);
    EXPECT_EQ(signal.attach(a, positionFront), errorFull);
    EXPECT_EQ(signal.attach(a, positionBack), errorFull);
    EXPECT_EQ(fire(signal), "dbfe");
}

TEST_F(Signal, AProcedureMayDetachItselfWithWaitAndChangesLaterSlotsOfItsFiring)
{
    TSignal0 signal(4);
    Callback<>* self = nullptr;
    Callback<> actor([&] {
        calls += '!';
        EXPECT_EQ(signal.detach(*self, true), 1);
        EXPECT_EQ(signal.detach(b), 0);
        signal.attach(c);
        signal.attach(d);
    });
    self = &actor;
    signal.attach(a);
    signal.attach(actor);
    signal.attach(b);
    signal.detach(a);               // - ! b -
    EXPECT_EQ(fire(signal), "!d");  // c (!) d -
    EXPECT_EQ(fire(signal), "cd");
    EXPECT_EQ(fill(signal, 2), 4);
}

TEST_F(Signal, ADrainingSlotIsNeitherEnteredNorTakenAndTheThreadThatFiredLastDoesNotWaitForIt)
{
    TSignal0 signal(2);
    Held held{signal};
    int result = 0;
    Callback<> detacher([&] { result = signal.detach(held.proc, true); });
    signal.attach(held.proc);
    held.enter();
    signal.attach(detacher, positionFront);
    signal();
    EXPECT_EQ(result, 1);
    EXPECT_FALSE(signal.isAttached(held.proc));
    for (int position : {positionAny, positionBack, positionFront})
    {
        EXPECT_EQ(signal.attach(a, position), errorFull);
        EXPECT_EQ(signal.attach(held.proc, position), errorFull);
    }
    signal();
    EXPECT_EQ(result, errorNotFound);
    EXPECT_EQ(held.inside, 1);
    EXPECT_EQ(held.left, 0);
    held.leave();
    EXPECT_EQ(signal.attach(a), 2);
}

TEST_F(Signal, DetachWithWaitReturnsWhenEveryFiringHasLeft)
{
    TSignal0 signal(3);
    Held held{signal};
    signal.attach(held.proc);
    held.enter();
    held.enter();
    held.enter();
    {
        Blocking detaching([&] {
            EXPECT_EQ(signal.detach(held.proc, true), 0);
            EXPECT_EQ(held.left, 3);
        });
        held.mayLeave = 2;
        EXPECT_TRUE(eventually([&] { return held.left == 2; }));
        EXPECT_FALSE(detaching.done(aMoment));
        EXPECT_TRUE(signal.isAttached(held.proc));
        held.mayLeave = 3;
    }
    held.leave();
    EXPECT_EQ(fill(signal), 3);
}

TEST_F(Signal, AFiringAndADetachThatWaitsFollowTheProcedureThatAPositionalAttachMoves)
{
    for (int position : {positionFront, positionBack})
    {
        SCOPED_TRACE(position);
        TSignal0 signal(3);
        Held held{signal};
        if (position == positionBack)
        {
            signal.attach(a);
        }
        signal.attach(held.proc);
        signal.attach(b);
        signal.detach(a);
        calls.clear();
        const std::string output = captureOutput([&] {
            held.enter();
            Blocking detaching([&] {
                EXPECT_EQ(signal.detach(held.proc, true), 2);
                EXPECT_EQ(calls, position == positionFront ? "b" : "bc");
            });
            EXPECT_TRUE(detaching.asleep(1));
            EXPECT_EQ(signal.attach(c, position), 3);
            EXPECT_FALSE(detaching.done(aMoment));
            held.leave();
            // With a running count left behind it would wait for ever, and with one that passed below 0 no slot would become free.
            EXPECT_TRUE(detaching.done());
        });
        EXPECT_THAT(output, HasSubstr("the index of the current proc in the slotsList has changed when operator() released mutex\n"));
        EXPECT_THAT(output, HasSubstr("has changed when detach() released mutex\n"));
        EXPECT_THAT(output, Not(HasSubstr("can not find back")));
        EXPECT_EQ(signal.attach(a), 3);
    }
}

TEST_F(Signal, AnyTagDetachesEveryTaggedBindingOfItsFunctionAndObject)
{
    TSignal0 signal(8);
    for (const auto& proc : {a.tagged(typeReuse), b.tagged(17), a.tagged(18), a.tagged(0xFFFFFFFEu), a.tagged(typeMember)})
    {
        EXPECT_GT(signal.attach(proc), 0);
    }
    EXPECT_EQ(signal.detach(a.tagged(19)), errorNotFound);
    EXPECT_TRUE(signal.isAttached(a.tagged(typeAny)));
    EXPECT_EQ(signal.detach(a.tagged(typeAny), true), 2);
    EXPECT_EQ(signal.detach(a.tagged(typeAny)), errorNotFound);
    EXPECT_EQ(fire(signal), "ba");
}

TEST_F(Signal, EveryCallGetsItsOwnCopiesOfTheArguments)
{
    TSignal5<std::string, std::shared_ptr<int>, int, double, const char*> signal(2);
    const auto body = [](std::string text, std::shared_ptr<int> shared, int number, double, const char* end) {
        EXPECT_EQ(std::exchange(text, "") + std::to_string(number) + end, "text7end");
        ++*std::exchange(shared, nullptr);
    };
    Callback<std::string, std::shared_ptr<int>, int, double, const char*> first(body), second(body);
    signal.attach(first);
    signal.attach(second);
    const auto count = std::make_shared<int>(0);
    signal("text", count, 7, 0.5, "end");
    EXPECT_EQ(*count, 2);
}

TEST_F(Signal, TheTableStaysSoundWhenManyThreadsFireAttachAndDetach)
{
    TSignal0 signal(6);
    std::deque<Callback<>> attached[4];
    std::atomic<int> called{0};
    const std::string output = captureOutput([&] {
        std::list<Blocking> workers;
        for (auto& own : attached)
        {
            workers.emplace_back([&] {
                std::minstd_rand random(static_cast<unsigned int>(&own - attached));
                for (int i = 0; i < 1500; ++i)
                {
                    Callback<>& proc = own.emplace_back([&] { ++called; });
                    // Others may hold all slots in draining state for the moment.
                    EXPECT_TRUE(eventually([&] { return signal.attach(proc, static_cast<int>(random() % 3)) > 0; }));
                    signal();
                    EXPECT_GE(signal.detach(proc, random() % 8 == 0), 0);
                }
            });
        }
    });
    EXPECT_THAT(output, Not(HasSubstr("can not find back")));
    EXPECT_GT(called, 0);
    EXPECT_EQ(fill(signal), 6);
}

}  // namespace
}  // namespace General::Ortha::Test
