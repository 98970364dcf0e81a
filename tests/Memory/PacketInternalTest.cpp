#include "Src/Memory/PacketInternal.h"

#include <gmock/gmock.h>

#include <bit>
#include <cstring>

#include "ortha/ortha3/MemPool.h"
#include "ortha/ortha3/PacketManager.h"
#include "ortha/ortha3/PrintLog.h"

#include "support/FailingMemory.h"

namespace General::Memory {
namespace {

using namespace Ortha::Test;
using namespace ::testing;

// What was logged, kept without memory from anybody, and what the failure callback was told.
char s_text[4000];
std::uint32_t s_status = 0;

// Under each policy and alignment.
struct PacketMemory : TestWithParam<std::tuple<int, unsigned int>>
{
    PacketMemory()
    {
        CPacketManager::PoolParameter parameter{65536, 1024, std::get<1>(GetParam())};
        CPacketManager::config(static_cast<CPacketManager::Policy>(std::get<0>(GetParam())), nullptr, &parameter);
        CPacketManager::instance()->enableNodesStatistics(true);
        Ortha::setPrintLogLevel(6);
        Ortha::setLogPrinter({[](const char* text) { std::strncat(s_text, text, sizeof(s_text) - std::strlen(s_text) - 1); }});
        setPacketFailCallback({[](std::uint32_t status) { s_status += status; }});
    }
    std::size_t alignUp(std::size_t n) const { return (n + alignment - 1) / alignment * alignment; }
    std::size_t tail(std::size_t extra) const { return alignUp(extra + sizeof(OldPacketInternal)); }
    std::size_t inUse() const { return CPacketManager::instance()->getBufferSize() - CPacketManager::instance()->getFreeSize(); }

    const std::size_t alignment = std::bit_floor(std::get<1>(GetParam()));
    const bool external = std::get<0>(GetParam()) == CPacketManager::policyExternal;
    const bool split = std::get<0>(GetParam()) == CPacketManager::policySplitPool;
    const bool pool = split || std::get<0>(GetParam()) == CPacketManager::policyPool;
};
INSTANTIATE_TEST_SUITE_P(PolicyAndAlignment, PacketMemory, Combine(Range(1, 5), Values(4, 6, 8, 16, 64)));

TEST_P(PacketMemory, HoldsDataExtraRegionAndRecordOfAManagedPacketSideBySide)
{
    for (std::size_t step = 0; step < 30 && !external; ++step)
    {
        const std::size_t size = std::array{0u, 1u, 7u, 900u, 1024u, 5000u}[step % 6], extra = std::array{0u, 1u, 4u, 16u, 100u}[step / 6];
        PacketInternal* const packet = OldPacketInternal::create(size, extra);
        const std::size_t capacity = packet->capacity(), block = inUse(), needed = split ? size : alignUp(size) + tail(extra);
        EXPECT_EQ(block, pool && needed != 0 ? std::bit_ceil(std::max<std::size_t>(needed, 1024)) : 0);
        EXPECT_EQ(capacity, split ? block : pool ? block - tail(extra) : alignUp(size));
        unsigned char *const data = packet->getBuffer(), *const self = reinterpret_cast<unsigned char*>(packet);
        auto* const region = static_cast<unsigned char*>(packet->getExtraData());
        EXPECT_TRUE(packet->size() == size && packet->getExtraSize() == extra && (data != nullptr) == (!split || size != 0));
        EXPECT_TRUE(extra == 0 ? !region : (split || region == data + capacity) && region + extra <= self);
        EXPECT_TRUE(split || (data + capacity <= self && (!pool || self == data + block - sizeof(OldPacketInternal))));
        std::string bytes(capacity + 1, 'd');
        extra != 0 ? std::memset(region, 'e', extra) : nullptr;
        EXPECT_TRUE(!packet->resize(capacity + 1) && packet->resize(0) && packet->putBuffer(bytes.data(), capacity + 1) == capacity);
        EXPECT_TRUE(packet->size() == capacity && (extra == 0 || (region[0] == 'e' && region[extra - 1] == 'e')));
        packet->release();
        EXPECT_EQ(inUse(), 0u);
    }
}

TEST_P(PacketMemory, ThatLacksGivesAnInvalidHandleAndTheStatusAndLosesNothing)
{
    static int s_freed = 0;
    const CPacket::FreeFunction free([](void*, std::size_t) { ++s_freed; });
    const CPacket parent(&s_freed, 4, {});
    const std::string noRecord = "]PacketInternal::create(): malloc failured! size:", noSpace = split ? "2 NO enough, " : "(): NO enough, ";
    const std::string needs = std::to_string(tail(5)) + "\n", trace = "]tracepoint:\n";
    const std::string noPlace = split ? noRecord + needs : noSpace + "need size:10 ext:5\n";
    const std::pair<std::function<CPacket()>, std::string> forms[] = {
        {[&] { return CPacket(parent, 1, 2, 5); }, noRecord + needs},
        {[&] { return CPacket(&s_freed, 4, free); }, noRecord},
        {[&] { return CPacket(&s_freed, 4, 8, free); }, noRecord},
        {[&] { return CPacket(4, free, &s_freed, 8); }, noRecord},
        {[] { return CPacket(10, 5); }, external ? trace : noPlace},
        {[] { return CPacket(SIZE_MAX / 2 - 1, 5); }, external ? trace : noSpace + "need size:4294967294 ext:5\n"},
        {[] { return CPacket(7, SIZE_MAX); }, external ? trace : noPlace.substr(0, noPlace.find("size:"))},
        {[&] { return CPacket(parent, 1, 2, SIZE_MAX - 300); }, noRecord}};
    for (const auto& [make, text] : forms)
    {
        // The first allocation fails, the second one and so on, until none does; each time that one alone, then with all later ones.
        for (int turn = 2; turn == 2 || turn % 2 != 0 || FailingMemory::failed; ++turn)
        {
            *s_text = '\0';
            const long blocks = FailingMemory::blocks;
            FailingMemory::begin(turn / 2, turn % 2 != 0);
            CPacket packet = make();
            FailingMemory::end();
            const bool valid = packet.valid(),
                       lacks = FailingMemory::failed || &make >= &forms[5].first || (external && &make == &forms[4].first);
            EXPECT_TRUE(valid ? !lacks || pool || !packet.getExtraData() : lacks);
            EXPECT_EQ(std::exchange(s_status, 0), valid || text == trace ? 0 : 0x1000000D);
            EXPECT_THAT(s_text, HasSubstr(valid ? "" : text));
            packet.reset();
            EXPECT_EQ(std::exchange(s_freed, 0), valid && (&make == &forms[1].first || &make == &forms[2].first) ? 1 : 0);
            EXPECT_TRUE(FailingMemory::blocks == blocks && inUse() == 0);
        }
    }
}

}  // namespace
}  // namespace General::Memory
