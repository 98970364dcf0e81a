#include "ortha/ortha3/ReadWriteMutex.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <list>
#include <mutex>
#include <string>

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

class EveryMode : public ::testing::TestWithParam<RWPriority>
{
protected:
    template <class Guard>
    void noteInside(char who)
    {
        Guard guard(mutex);
        std::lock_guard orderGuard(orderMutex);
        order += who;
    }
    // Enters and leaves until a writer has been inside: once it sleeps, it is kept out.
    void readBehindTheWriter()
    {
        for (bool behind = false; !behind;)
        {
            CReadGuard guard(mutex);
            std::lock_guard orderGuard(orderMutex);
            behind = !order.empty();
            order += behind ? "R" : "";
        }
    }

    CReadWriteMutex mutex{GetParam()};
    std::mutex orderMutex;
    std::string order;
};
INSTANTIATE_TEST_SUITE_P(ReadWriteMutex, EveryMode, ::testing::Values(priorityDefault, priorityWriter),
                         [](const auto& mode) { return mode.param == priorityDefault ? "Default" : "WriterFirst"; });
using WriterFirst = EveryMode;
INSTANTIATE_TEST_SUITE_P(ReadWriteMutex, WriterFirst, ::testing::Values(priorityWriter));

TEST_P(EveryMode, AReaderThatComesAfterAWaitingWriterGoesBehindIt)
{
    mutex.enterReading();
    {
        Blocking writer([&] { noteInside<CWriteGuard>('W'); });
        Blocking reader([&] { readBehindTheWriter(); });
        EXPECT_TRUE(reader.asleep());
        EXPECT_EQ(order, "");
        EXPECT_TRUE(mutex.leave());
    }
    EXPECT_EQ(order, "WR");
    EXPECT_FALSE(mutex.leave());
}

TEST_P(WriterFirst, ALeavingWriterHandsOverToTheNextWriterBeforeAnyReader)
{
    mutex.enterWriting();
    {
        Blocking reader([&] { noteInside<CReadGuard>('R'); });
        EXPECT_TRUE(reader.asleep());
        Blocking second([&] { noteInside<CWriteGuard>('W'); });
        Blocking third([&] { noteInside<CWriteGuard>('W'); });
        EXPECT_TRUE(second.asleep());
        EXPECT_TRUE(third.asleep());
        mutex.leave();
    }
    EXPECT_EQ(order, "WWR");
}

TEST_P(EveryMode, ReadersThatAWriterKeptOutAreInsideTogether)
{
    constexpr int readers = 3;
    std::atomic<int> inside{0};
    EXPECT_TRUE(mutex.enterWriting());
    {
        std::list<Blocking> waiting;
        for (int i = 0; i < readers; ++i)
        {
            waiting.emplace_back([&] {
                CReadGuard guard(mutex);
                ++inside;
                EXPECT_TRUE(eventually([&] { return inside == readers; }));
            });
            EXPECT_TRUE(waiting.back().asleep());
        }
        EXPECT_EQ(inside, 0);
        EXPECT_TRUE(mutex.leave());
    }
}

TEST_P(EveryMode, WritersExcludeReadersAndEachOther)
{
    constexpr long rounds = 40000;
    long first = 0;
    long second = 0;
    {
        std::list<Blocking> workers;
        for (int worker = 0; worker < 4; ++worker)
        {
            workers.emplace_back([&, writes = worker % 2 == 0] {
                int torn = 0;
                for (long i = 0; i < rounds; ++i)
                {
                    {
                        CReadGuard guard(mutex);
                        torn += first != second;
                    }
                    if (writes)
                    {
                        CWriteGuard guard(mutex);
                        torn += ++first != ++second;
                    }
                }
                EXPECT_EQ(torn, 0);
            });
        }
    }
    EXPECT_EQ(first, 2 * rounds);
    EXPECT_EQ(second, first);
}

TEST_P(EveryMode, LeavingWithoutAHoldIsRefusedAndOnlyTheDefaultModeLogsIt)
{
    LogLines log;
    EXPECT_FALSE(mutex.leave());
    noteInside<CWriteGuard>('W');
    EXPECT_FALSE(mutex.leave());
    noteInside<CReadGuard>('R');
    EXPECT_FALSE(mutex.leave());
    const auto words = AllOf(HasSubstr(" error "), EndsWith("]No lock, maybe err\n"));
    EXPECT_THAT(log.take(), AllOf(SizeIs(GetParam() == priorityDefault ? 3 : 0), Each(words)));
}

TEST(ReadWriteMutex, TheDefaultModeReportsAtItsEndWhatIsHeldAndAnUnknownModeIsTakenForIt)
{
    LogLines log;
    for (RWPriority mode : {priorityWriter, static_cast<RWPriority>(2)})
    {
        CReadWriteMutex writer;
        CReadWriteMutex readers(mode);
        writer.enterWriting();
        readers.enterReading();
        readers.enterReading();
    }
    const auto written = AllOf(HasSubstr(" error "), EndsWith("]has lock write, maybe err\n"));
    EXPECT_THAT(log.take(), ElementsAre(written, EndsWith(" Input rwpriority level error, priorityDefault used!\n"),
                                        EndsWith("]has lock Read count:2, maybe err\n"), written));
}

}  // namespace
}  // namespace General::Ortha::Test
