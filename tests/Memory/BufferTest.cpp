#include "ortha/ortha3/Buffer.h"

#include <gmock/gmock.h>

#include <cstring>

#include "ortha/ortha3/MemPool.h"

#include "support/LogLines.h"
#include "support/Sync.h"

namespace {

using namespace General::Memory;
using namespace General::Ortha::Test;

TEST(Buffer, GrowsToTheNeedOrByItsStepAndStaysAsItWasWithoutMemory)
{
    std::vector<unsigned char> bytes(3000, 'x');
    CBuffer buffer, none;
    const auto is = [&](std::size_t size, std::size_t capacity) {
        return buffer.size() == size && buffer.capacity() == capacity && (buffer.getBuffer() != nullptr) == (size != 0) &&
               (size == 0 || std::memcmp(buffer.getBuffer(), bytes.data(), std::min<std::size_t>(size, 1025)) == 0);
    };
    const auto put = [&](std::size_t size) { return buffer.putBuffer(bytes.data(), size) == size; };
    buffer.reserve(100);
    EXPECT_TRUE(is(0, 100) && put(1) && is(1, 100) && put(100) && is(101, 101) && put(0) && is(101, 101));
    buffer.setIncreasedSize(64);
    buffer.reserve(130);
    EXPECT_TRUE(is(101, 130) && put(29) && is(130, 130) && put(1) && is(131, 192)) << "reserve is exact, putBuffer goes by the step";
    buffer.reset();
    buffer.resize(0);
    EXPECT_TRUE(is(0, 0) && put(10) && put(1) && is(11, 11)) << "the step is gone";
    buffer.setIncreasedSize(1024);
    EXPECT_TRUE(put(1014) && is(1025, 2048));
    buffer.resize(3000);
    EXPECT_TRUE(is(3072, 3072));
    LogLines log;
    none.resize(SIZE_MAX);
    none.reserve(SIZE_MAX);
    none.setIncreasedSize(SIZE_MAX);
    buffer.resize(SIZE_MAX);
    buffer.reserve(SIZE_MAX);
    EXPECT_TRUE(none.putBuffer(nullptr, SIZE_MAX) == 0 && buffer.putBuffer(nullptr, SIZE_MAX - 3072) == 0 && is(3072, 3072));
    const char* const texts =
        "] CBuffer resize Malloc.*] CBuffer resize Malloc.*] CBuffer setIncreasedSize Malloc.*] CBuffer resize ReMalloc.*"
        "] CBuffer reserve Malloc.*] CBuffer putbuffer Malloc.*]CBuffer putbuffer ReMalloc fail:\n$";
    EXPECT_THAT(log.text(), ::testing::ContainsRegex(texts));
}

TEST(MemPool, GivesBlocksOfAnySizeInARowAndTheOneFreedLastFirstAndEachToOneThread)
{
    for (const unsigned int size : {1u, 8u, 9u, 100u})
    {
        Detail::CMemPool pool(size, 3);
        auto* const first = static_cast<unsigned char*>(pool.malloc());
        unsigned char *const second = first + std::max(size, 8u), *const third = second + std::max(size, 8u);
        EXPECT_TRUE(pool.malloc() == second && pool.malloc() == third && std::memset(third, 0xFF, std::max(size, 8u)));
        pool.free(third);
        pool.free(first);
        EXPECT_TRUE(pool.malloc() == first && pool.malloc() == third && pool.malloc() != nullptr);
    }
    Detail::CMemPool pool(sizeof(int), 3);
    inThreads([&](int thread) {
        for (int step = 0; step < 5000; ++step)
        {
            int *const a = static_cast<int*>(pool.malloc()), *const b = static_cast<int*>(pool.malloc());
            *a = *b = thread;
            EXPECT_TRUE(a != b && *a == thread && *b == thread);
            pool.free(a);
            pool.free(b);
        }
    });
}

}  // namespace
