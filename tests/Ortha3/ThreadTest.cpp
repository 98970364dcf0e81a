#include "ortha/ortha3/Thread.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <deque>
#include <memory>
#include <string>

#include "ortha/ortha3/ThreadManager.h"
#include "ortha/ortha3/Time.h"

#include "support/LogLines.h"
#include "support/Sync.h"

namespace General::Ortha::Test {
namespace {

using ::testing::AllOf;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::SizeIs;

constexpr const char* running = "CThread::CreateThread() thread:T is still running!\n";
constexpr const char* destroyed = "CThread::DestroyThread() thread:T has been destroyed!\n";
constexpr const char* exited = "CThread::DestroyThread() thread:T has exited!\n";
constexpr const char* notThere = "CThread::cancelThread() thread:T not exist!\n";

// A thread whose body ends when it is let go, whatever looping() says.
struct HeldThread
{
    std::atomic<int> runs{0}, mayEnd{0};
    TestThread thread{[this](CThreadLite&) {
                          const int run = ++runs;
                          EXPECT_TRUE(eventually([&] { return mayEnd >= run; }));
                      },
                      "T"};
};

// The log line of a warning about `thread`.
auto warning(const CThread& thread, const char* text)
{
    char address[32];
    std::snprintf(address, sizeof(address), "]this:%p ", static_cast<const void*>(&thread));
    return AllOf(HasSubstr(" warn "), EndsWith(address + std::string(text)));
}

TEST(Thread, EveryTransitionAnswersAndLogsAsItsTableSays)
{
    LogLines log;
    HeldThread held;
    TestThread& thread = held.thread;
    using State = std::pair<bool, bool>;  // looping, over
    const State over{false, true}, runs{true, false}, stopping{false, false};
    const auto state = [&] { return State(thread.looping(), thread.isThreadOver()); };
    const auto check = [&](bool answer, State after, const char* words = nullptr) {
        EXPECT_EQ(answer, !words);
        EXPECT_EQ(state(), after);
        EXPECT_THAT(log.take(), AllOf(SizeIs(words ? 1 : 0), Each(warning(thread, words ? words : ""))));
    };
    EXPECT_EQ(state(), over);
    EXPECT_EQ(thread.getThreadID(), -1);
    check(thread.cancelThread(), over, notThere);
    check(thread.destroyThread(), over, exited);
    check(thread.createThread(), runs);
    check(thread.createThread(), runs, running);
    check(thread.cancelThread(), stopping);
    check(thread.cancelThread(), stopping, notThere);
    {
        Blocking destroying([&] { EXPECT_TRUE(thread.destroyThread()); });
        EXPECT_FALSE(destroying.done(aMoment));
        EXPECT_EQ(state(), stopping);
        held.mayEnd = 1;
    }
    check(thread.destroyThread(), over, destroyed);
    check(thread.cancelThread(), over, notThere);
    const int firstId = thread.getThreadID();
    check(thread.createThread(), runs);
    EXPECT_TRUE(eventually([&] { return held.runs == 2; }));
    EXPECT_NE(thread.getThreadID(), firstId);
    held.mayEnd = 2;
    EXPECT_TRUE(eventually([&] { return state() == over; }));
    check(thread.destroyThread(), over, exited);
    EXPECT_NE(thread.getThreadID(), -1);
}

TEST(Thread, CreatingWhileTheLastRunIsStoppingWaitsForItsEndAndOnlyOneCallerWins)
{
    LogLines log;
    HeldThread held;
    EXPECT_TRUE(held.thread.createThread());
    EXPECT_TRUE(eventually([&] { return held.runs == 1; }));
    EXPECT_TRUE(held.thread.cancelThread());
    std::atomic<int> won{0};
    {
        std::deque<Blocking> creating;
        for (int i = 0; i < 3; ++i)
        {
            creating.emplace_back([&] { won += held.thread.createThread(); });
            EXPECT_TRUE(creating.back().asleep(1));
        }
        // The first run's handle is let go by then.
        EXPECT_FALSE(held.thread.destroyThread());
        EXPECT_THAT(log.take(), ElementsAre(warning(held.thread, "CThread::DestroyThread() thread handle has been invalid!\n")));
        EXPECT_EQ(held.runs, 1);
        held.mayEnd = 1;
    }
    EXPECT_EQ(won, 1);
    EXPECT_TRUE(eventually([&] { return held.runs == 2; }));
    EXPECT_TRUE(held.thread.looping());
    EXPECT_THAT(log.take(), ElementsAre(warning(held.thread, running), warning(held.thread, running)));
    held.mayEnd = 2;
}

TEST(Thread, DestroyFromTheThreadItselfReturnsAtOnceAndTheBodyRunsOn)
{
    LogLines log;
    Gate asked, release;
    TestThread thread(
        [&](CThreadLite& self) {
            EXPECT_TRUE(self.destroyThread());
            EXPECT_FALSE(self.looping());
            asked.open();
            release.wait();
        },
        "T");
    EXPECT_TRUE(thread.createThread());
    EXPECT_TRUE(asked.wait());
    EXPECT_FALSE(thread.isThreadOver());
    EXPECT_FALSE(thread.destroyThread());
    EXPECT_THAT(log.take(), ElementsAre(warning(thread, destroyed)));
    release.open();
    EXPECT_TRUE(eventually([&] { return thread.isThreadOver(); }));
}

TEST(Thread, NoLockIsHeldWhileARefusalOrTheTableIsLogged)
{
    CTime::getCurrentMilliSecond();  // the first reading logs a line
    CThreadManager& manager = *CThreadManager::instance();
    TestThread thread(untilStopped);
    std::deque<Blocking> lookers;
    int free = 0;
    const auto look = [&] { (void)(thread.isTimeout() || manager.hasThread(thread.getThreadID())); };
    Callback<const char*> printer([&](const char*) { free += lookers.emplace_back(look).done(std::chrono::seconds(1)); });
    setLogPrinter(printer);
    EXPECT_FALSE(thread.cancelThread());
    EXPECT_FALSE(thread.destroyThread());
    EXPECT_TRUE(thread.createThread());
    EXPECT_FALSE(thread.createThread());
    EXPECT_TRUE(eventually([&] { return manager.hasThread(thread.getThreadID()); }));
    manager.dumpThreads();
    EXPECT_TRUE(thread.destroyThread());
    EXPECT_FALSE(thread.destroyThread());
    EXPECT_EQ(lookers.size(), 10u);
    EXPECT_EQ(free, 10);
    lookers.clear();
    setLogPrinter({});
}

TEST(Thread, TheDestructorOfACancelledThreadTellsThatItWaitsForTheEndOfTheBody)
{
    static Gate begun, told;
    static std::atomic<bool> ended{false};
    struct Bare : CThread
    {
        Bare() : CThread("T", 64, 0, 0) {}
        void threadProc() override
        {
            begun.open();
            EXPECT_TRUE(told.wait());
            ended = true;
        }
    };
    setPrintLogLevel(6);
    const std::string words = "CThread::~CThread:T wait for thread over, times:100\n";
    Callback<const char*> printer([&](const char* line) { std::string(line).ends_with(words) ? told.open() : void(); });
    setLogPrinter(printer);
    {
        Bare thread;
        EXPECT_TRUE(thread.createThread());
        EXPECT_TRUE(begun.wait());
        EXPECT_TRUE(thread.cancelThread());
    }
    EXPECT_TRUE(ended);
    setLogPrinter({});
}

TEST(Thread, TerminateEndsABodyThatWaitsInTheSystemAndDoesNotLook)
{
    LogLines log;
    Gate begun;
    std::atomic<bool> unwound{false};
    TestThread thread(
        [&](CThreadLite&) {
            const std::shared_ptr<void> guard(nullptr, [&](void*) { unwound = true; });
            begun.open();
            sleepForAnHour();
        },
        "T");
    EXPECT_FALSE(thread.terminateThread());
    EXPECT_THAT(log.take(),
                ElementsAre(warning(thread, exited), AllOf(HasSubstr(" error "), EndsWith(" handle is null, can't be terminated\n"))));
    EXPECT_TRUE(thread.createThread());
    EXPECT_TRUE(begun.wait());
    {
        Blocking destroying([&] { EXPECT_TRUE(thread.destroyThread()); });
        EXPECT_FALSE(destroying.done(aMoment));
        EXPECT_TRUE(thread.terminateThread());
    }
    EXPECT_EQ(unwound, terminationUnwinds);
    EXPECT_TRUE(thread.isThreadOver());
    EXPECT_FALSE(CThreadManager::instance()->hasThread(thread.getThreadID()));
    EXPECT_THAT(log.take(), ElementsAre(warning(thread, destroyed)));
}

TEST(Thread, NamesAreCutAndShowInTheSystemsToolsAlsoWhenChangedWhileRunning)
{
    const std::string longName = "forty-characters-of-name-is-too-many-for";
    TestThread thread(untilStopped, longName.c_str());
    EXPECT_EQ(thread.getThreadName(), longName.substr(0, 31));
    EXPECT_TRUE(thread.createThread());
    EXPECT_TRUE(eventually([&] { return systemName(thread.getThreadID()) == longName.substr(0, systemNameLength); }));
    thread.setThreadName("renamed");
    EXPECT_STREQ(thread.getThreadName(), "renamed");
    EXPECT_EQ(systemName(thread.getThreadID()), "renamed");
    thread.setThreadName(nullptr);
    EXPECT_EQ(systemName(thread.getThreadID()), "Nonamed");
}

TEST(Thread, TheWatchdogDeadlinePassesIsRemovedIsClearedByAStartAndMayBeSetByTheBody)
{
    EXPECT_FALSE(CThread::setCurrentTimeout(1));
    Gate start;
    TestThread thread([&](CThreadLite& self) {
        EXPECT_TRUE(start.wait());
        EXPECT_TRUE(CThread::setCurrentTimeout(1));
        untilStopped(self);
    });
    const auto timesOut = [&] { return eventually([&] { return thread.isTimeout(); }); };
    const unsigned long long before = CTime::getCurrentMilliSecond();
    thread.setTimeout(50);
    EXPECT_TRUE(timesOut());
    EXPECT_GT(CTime::getCurrentMilliSecond(), before + 50);
    thread.setTimeout(0);
    EXPECT_FALSE(thread.isTimeout());
    thread.setTimeout(100, 1);  // reckoned from long ago
    EXPECT_TRUE(timesOut());
    EXPECT_TRUE(thread.createThread());
    EXPECT_FALSE(thread.isTimeout());
    start.open();
    EXPECT_TRUE(timesOut());
}

}  // namespace
}  // namespace General::Ortha::Test
