#include "ortha/ortha3/PacketManager.h"

#include <gmock/gmock.h>

#include <cstring>

#include "ortha/ortha3/Packet.h"
#include "ortha/ortha3/Thread.h"

#include "support/Capture.h"
#include "support/LogLines.h"

namespace {

using namespace General::Memory;
using namespace General::Ortha::Test;
using General::Ortha::CThread;
using namespace ::testing;
using Parameter = CPacketManager::PoolParameter;

int s_mallocs = 0, s_copies = 0;
CPacketManager::MemoryOperator s_functions{
    {[](std::size_t size) { return ++s_mallocs, size > 99999 ? nullptr : std::malloc(size); }},
    {[](void* memory) { std::fputs("free ", stderr), std::free(memory); }},
    {[](void* dst, const void* src, std::size_t n) -> void* { return ++s_copies, std::memcpy(dst, src, n), &s_copies; }}};

CPacketManager& configured(int policy, Parameter pool)
{
    CPacketManager::config(static_cast<CPacketManager::Policy>(policy), &s_functions, &pool);
    return *CPacketManager::instance();
}

struct PacketManager : TestWithParam<int>
{
    LogLines log;
};
INSTANTIATE_TEST_SUITE_P(Policy, PacketManager, Range(1, 5));

TEST_P(PacketManager, UsesTheSystemFunctionsAndTellsOfItselfAsItsPolicySays)
{
    const bool pool = GetParam() == CPacketManager::policyPool || GetParam() == CPacketManager::policySplitPool;
    const auto ofPolicy = [](std::array<std::string, 4> texts) { return EndsWith(texts[static_cast<std::size_t>(GetParam()) - 1]); };
    const auto exits = [] { configured(GetParam(), {6144, 1024, 4}).free(configured(GetParam(), {6144, 1024, 4}).malloc(1)); };
    EXPECT_EQ(runInChild(exits).errors, "free ") << "a block, or the pool when the process exits";
    CPacketManager& manager = configured(GetParam(), {6144, 1024, 4});
    unsigned char* const first = manager.getPoolBuffer() + (0 - reinterpret_cast<std::uintptr_t>(manager.getPoolBuffer())) % 1024;
    char range[80];
    std::snprintf(range, sizeof(range), "]AddrRange:%p/%p)\n", static_cast<void*>(first), static_cast<void*>(first + 6144));
    const char* const start = "]CPacketManager: malloc total:6144 pagesize:1024blockCount:6 ManagermentSize:288\n";
    EXPECT_THAT(log.text(), AllOf(HasSubstr(pool ? start : ""), ofPolicy({"]CPacketManager: System Policy\n", range, range, ""})));
    void *const a = manager.malloc(1), *const b = manager.malloc(3000);
    EXPECT_TRUE(manager.getFreeSize() == (pool ? 1024 : 0) && manager.getBufferSize() == (pool ? 6144 : 0) && s_mallocs == (pool ? 1 : 2));
    const auto copies = [&](void* dst, const void* src) { return manager.memcpy(dst, src, 1) == &s_copies; };
    EXPECT_TRUE(copies(b, a) && (!pool || (copies(first, first + 6143) && !copies(first + 6144, a))));
    EXPECT_TRUE(copies(&s_mallocs, a) != pool && copies(a, &s_mallocs) != pool);
    manager.free(a);
    manager.free(b);
    log.take();
    manager.dumpNodes();
    const std::string sys = "]CPacketManager dump: SYS Policy\n", list = log.text();
    EXPECT_THAT(list.substr(0, list.find('\n') + 1), ofPolicy({sys, "]CPacketManager: dump FreeList\n", sys, ""}));
}

TEST_F(PacketManager, TakesTheLastValueOfEachItemUntilTheFirstPacketOfAnyForm)
{
    CPacketManager::Policy policy{};
    Parameter read{}, last{4096, 2048, 8}, other{6144, 1024, 4};
    CPacketManager::config(CPacketManager::policySplitPool, nullptr, &other);
    CPacketManager::config(CPacketManager::policyPool, nullptr, &last);
    CPacketManager::config(CPacketManager::policyUnchanged, nullptr, nullptr);
    CPacketManager::config(CPacketManager::Policy(5), nullptr, &other);
    EXPECT_THAT(log.take(), ElementsAre(HasSubstr(" warn ")));
    CPacket(nullptr, 0, {});
    CPacketManager::config(CPacketManager::policySystem, &s_functions, &other);
    EXPECT_THAT(log.text(), ContainsRegex(" warn .*]PacketManagerInternal::config\\(\\) failured: Packet Manager has been configured!\n$"));
    CPacketManager::getConfig(policy, read);
    EXPECT_TRUE(policy == 2 && read.totalSize == 4096 && read.chunkSize == 2048 && read.alignSize == 8 && s_mallocs == 0);
}

TEST_F(PacketManager, CountsTheBlocksInUseByThreadAndTellsWhenNoneIsFree)
{
    CPacketManager& manager = configured(CPacketManager::policyPool, {32768, 1024, 4});
    EXPECT_NE(manager.malloc(1), nullptr);
    manager.enableNodesStatistics(true);
    void* const blocks[] = {manager.malloc(1), manager.malloc(2000), manager.malloc(9000)};
    manager.free(blocks[2]);
    const int first = CThread::getCurrentThreadID();
    const std::string own = "]ThreadID " + std::to_string(first) + "  nodes= 2  size\\(K\\)= 3\n[^]]*";
    std::string dump = " warn [^]]*]CPacket No Free Space, totalSize:32768, freeSize:20480 \n[^]]*";
    std::thread([&] {
        const int id = CThread::getCurrentThreadID();
        const std::string other = "]ThreadID " + std::to_string(manager.malloc(5000) ? id : 0) + "  nodes= 1  size\\(K\\)= 8\n[^]]*";
        dump += id < first ? other + own : own + other;
    }).join();
    for (const std::size_t size : {std::size_t{0}, std::size_t{32768}, std::size_t{1} << 42})
    {
        EXPECT_EQ(manager.malloc(size), nullptr);
        EXPECT_THAT(log.text(),
                    ContainsRegex(dump + "]Total  unfree count = 3 packetUsed\\(K\\) 11\n[^]]*]CPacketManager: dump FreeList\n"));
    }
    manager.enableNodesStatistics(false);
    manager.dumpNodes();
    EXPECT_THAT(log.text(), Not(HasSubstr("unfree")));
    manager.enableNodesStatistics(true);
    manager.free(blocks[0]);
    manager.dumpNodes();
    EXPECT_THAT(log.take().front(), EndsWith("]Total  unfree count = 0 packetUsed(K) 0\n"));
}

TEST(PacketManagerDeathTest, WhatCannotBeIsAnAssertion)
{
    General::Ortha::setLogPrinter({[](const char* text) { std::fputs(text, stderr); }});
    const char* const sizes = "(param->chunkSize >= 1024 && param->chunkSize > 0 && param->totalSize % param->chunkSize == 0) failed";
    EXPECT_DEATH(configured(2, {1 << 20, 1023, 3}), HasSubstr(sizes));
    EXPECT_DEATH(configured(2, {2000, 1024, 4}), HasSubstr(sizes));
    EXPECT_DEATH(configured(2, {3072, 1536, 4}), HasSubstr("assertion ("));
    EXPECT_DEATH(configured(2, {6144, 1024, 3}), HasSubstr("(param->alignSize >= 4) failed"));
    EXPECT_DEATH(configured(2, {1 << 20, 1024, 4}), " fatal .*]sm_param.chunkSize malloc failed!(.|\n)*assertion \\(");
    EXPECT_DEATH((s_functions.free = {}, configured(2, {6144, 1024, 4})),
                 HasSubstr("(!memop->malloc.empty() && !memop->free.empty() && !memop->memcpy.empty()) failed"));
    CPacketManager& manager = configured(CPacketManager::policySplitPool, {1024, 1024, 4});
    auto* const block = static_cast<char*>(manager.malloc(1));
    EXPECT_DEATH(manager.free(block - 1), HasSubstr("assertion (id >= 0) failed"));
    EXPECT_DEATH(manager.free(block + 1024), HasSubstr("assertion ("));
    manager.free(block);
    EXPECT_DEATH(manager.free(block), HasSubstr("assertion ("));
}

}  // namespace
