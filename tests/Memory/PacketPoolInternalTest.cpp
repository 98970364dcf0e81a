#include "Src/Memory/PacketPool.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <map>
#include <random>

#include "support/FailingMemory.h"
#include "support/LogLines.h"

namespace General::Memory {
namespace {

// The first chunks of the free blocks by order, as the lists have them.
using Lists = std::vector<std::vector<int>>;

struct TestPool
{
    explicit TestPool(std::size_t chunks) : memory((chunks + 1) * 1024), pool(memory.data(), chunks * 1024, 1024) {}
    Lists lists()
    {
        Lists lists(static_cast<std::size_t>(pool.listCount()));
        pool.printNodeInfo();
        std::size_t list = 0;
        for (int id = -1; const std::string& line : log.take())
        {
            const bool block = std::sscanf(line.c_str() + line.find(']'), "]bufflist:%zu, id:%*d, realIdx:%d", &list, &id) == 2;
            block ? lists.at(list).push_back(id) : void();
        }
        return lists;
    }

    std::vector<unsigned char> memory;
    PacketPool pool;
    Ortha::Test::LogLines log;
    std::mt19937 random{4711};
};

TEST(PacketPool, KeepsEveryChunkInOneBlockUnderRandomUseAndIsAtTheEndAsAtTheStart)
{
    const Lists six{{}, {4}, {0}}, seven{{6}, {4}, {0}}, hundred{{}, {}, {96}, {}, {}, {64}, {0}};
    for (const auto& [chunks, start] :
         std::map<std::size_t, Lists>{{1, {{0}}}, {2, {{}, {0}}}, {6, six}, {7, seven}, {100, hundred}, {2048, {}}})
    {
        const std::size_t total = chunks * 1024, huge = std::size_t{1} << 42;
        const std::size_t special[] = {0, 1, total, total + 1, huge, huge + 1, huge + 1024, SIZE_MAX / 2 + 2, SIZE_MAX};
        TestPool test(chunks);
        const Lists first = test.lists();
        EXPECT_TRUE(chunks == 2048 ? first.back() == std::vector{0} : first == start);
        std::map<int, std::size_t> used;  // orders of blocks by their first chunk
        Lists now = first;
        for (unsigned int step = 0; (step < 600 || !used.empty()) && !::testing::Test::HasFailure(); ++step)
        {
            // Now more are taken, now more are given back; in the end, all.
            if (step < 600 && (used.empty() || test.random() % 10 < (step / 50 % 2 == 0 ? 8 : 2)))
            {
                const std::size_t edge = std::size_t{1024} << test.random() % (now.size() + 1) >> test.random() % 3;
                const std::size_t wish = step % 7 == 0 ? special[test.random() % std::size(special)] : edge - 1 + step % 3;
                const std::size_t order =
                    wish == 0 || wish > total ? now.size() : static_cast<std::size_t>(std::bit_width((wish - 1) / 1024));
                const auto from = std::find_if(now.begin() + static_cast<int>(order), now.end(), [](auto& list) { return !list.empty(); });
                std::size_t size = wish;
                const ChunkNode* const node = test.pool.allocate(size);
                ASSERT_TRUE((node != nullptr) == (from != now.end()) && size == (node ? std::size_t{1024} << order : wish)) << wish;
                if (node)  // the highest part of the block freed last
                {
                    EXPECT_EQ(node->id, from->front() + (1 << (from - now.begin())) - (1 << order));
                    EXPECT_EQ(node->buffer, test.pool.begin() + static_cast<std::size_t>(node->id) * 1024);
                    node->buffer[0] = node->buffer[size - 1] = 1;
                    used[node->id] = order;
                }
            }
            else
            {
                const auto block = std::next(used.begin(), static_cast<int>(test.random() % used.size()));
                test.pool.release(test.pool.idOf(test.pool.begin() + block->first * 1024));
                used.erase(block);
            }
            now = test.lists();
            std::map<int, std::size_t> blocks = used;
            std::size_t free = 0;
            for (std::size_t order = 0; order < now.size(); ++order)
            {
                for (const int id : now[order])
                {
                    free += std::size_t{1024} << order;
                    EXPECT_TRUE(blocks.emplace(id, order).second);
                    EXPECT_TRUE(order + 1 == now.size() || std::count(now[order].begin(), now[order].end(), id ^ (1 << order)) == 0);
                }
            }
            std::size_t next = 0;
            for (auto block = blocks.begin(); block != blocks.end(); next += std::size_t{1} << block++->second)
            {
                EXPECT_TRUE(static_cast<std::size_t>(block->first) == next && next % (std::size_t{1} << block->second) == 0);
            }
            EXPECT_TRUE(next == chunks && test.pool.freeSize() == free);
        }
        EXPECT_EQ(now, first);
    }
}

TEST(PacketPool, HandsOutTheLastChunkFirstAndThenTheOneFreedLast)
{
    TestPool test(2048);
    std::size_t size = 1;
    std::vector<int> ids(2048);
    std::generate(ids.begin(), ids.end(), [&] { return test.pool.allocate(size)->id; });
    EXPECT_TRUE(ids.front() == 2047 && std::is_sorted(ids.rbegin(), ids.rend()));
    std::for_each(ids.begin(), ids.end(), [&](int id) { id % 2 != 0 ? test.pool.release(id) : void(); });
    std::for_each(ids.rbegin(), ids.rend(), [&](int id) { EXPECT_TRUE(id % 2 == 0 || test.pool.allocate(size)->id == id); });
    std::for_each(ids.begin(), ids.end(), [&](int id) { test.pool.release(id); });
    EXPECT_EQ(test.lists().back(), std::vector{0});
}

TEST(PacketPoolDeathTest, WithoutMemoryForItsNodesItEndsTheProcess)
{
    Ortha::setLogPrinter({[](const char* text) { std::fputs(text, stderr); }});
    const auto construct = [](int number) { Ortha::Test::FailingMemory::begin(number, false), TestPool(1); };
    EXPECT_DEATH(construct(2), R"( fatal .*\]ChunkNode malloc failed!(.|\n)*assertion \()");
    EXPECT_DEATH(construct(3), R"( fatal .*\]BufferList malloc failed!(.|\n)*assertion \()");
}

}  // namespace
}  // namespace General::Memory
