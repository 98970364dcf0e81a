#include "ortha/ortha3/Packet.h"

#include <gmock/gmock.h>

#include <cstring>

#include "ortha/ortha3/PacketManager.h"
#include "ortha/ortha3/SharePacketHelper.h"

#include "support/LogLines.h"
#include "support/Sync.h"

namespace {

using namespace General::Memory;
using namespace General::Ortha::Test;
using namespace ::testing;

using Freed = std::vector<std::pair<void*, std::size_t>>;

struct Packet : TestWithParam<int>
{
    Packet() { CPacketManager::config(static_cast<CPacketManager::Policy>(GetParam()), nullptr, nullptr); }

    LogLines log;
    Freed freed;
    Callback<void*, std::size_t> note{[this](void* memory, std::size_t size) { freed.emplace_back(memory, size); }};
    unsigned char bytes[32] = "0123456789abcdefghijklmnopqrstu";
};
INSTANTIATE_TEST_SUITE_P(Policy, Packet, Range(1, 5));

TEST_P(Packet, KeepsWithinTheBufferItWasGivenAndGivesItBackAtItsEnd)
{
    const CPacket parent(bytes, 30, {});
    std::tuple<CPacket, std::size_t, unsigned char*, Freed> forms[] = {{{bytes, 20, note}, 0, bytes, {{bytes, 7}}},
                                                                       {{bytes, 20, 8, note}, 8, bytes, {{bytes, 7}}},
                                                                       {{parent, 10, 20, 5}, 5, bytes + 10, {}},
                                                                       {{20, note, this, 3}, 3, nullptr, {}},
                                                                       {{20, note, this, 0}, 0, nullptr, {{this, 20}}}};
    for (auto& [packet, extra, buffer, wanted] : forms)
    {
        EXPECT_TRUE(packet.getBuffer() == buffer && packet.getExtraSize() == extra && (packet.getExtraData() != nullptr) == (extra != 0));
        extra != 0 ? std::memset(packet.getExtraData(), 0xEE, extra) : nullptr;
        EXPECT_TRUE(!packet.resize(21) && packet.size() == 20 && packet.capacity() == 20);
        unsigned char more[20] = "ABCDEFGHIJKLMNOPQRS";
        if (buffer)
        {
            EXPECT_TRUE(packet.putBuffer(more, 1) == 0 && packet.resize(12) && packet.putBuffer(more, 5) == 5);
            EXPECT_TRUE(packet.putBuffer(more, 20) == 3 && packet.size() == 20 && std::memcmp(buffer + 12, "ABCDEABC", 8) == 0);
        }
        else if (!wanted.empty())
        {
            EXPECT_TRUE(packet.putBuffer(more, 5) == 5 && packet.putBuffer(bytes, 30) == 30 && packet.getBuffer() == bytes);
            EXPECT_TRUE(packet.size() == 30 && packet.capacity() == 20 && CPacket(packet, 29, 1, 0).getBuffer() == bytes + 29);
        }
        EXPECT_TRUE(packet.resize(7));
        packet.reset();
        packet.reset();
        EXPECT_EQ(std::exchange(freed, {}), wanted);
        EXPECT_FALSE(packet.valid() || packet.resize(0) || packet.putBuffer(more, 1) != 0 || packet.getBuffer() || packet.getExtraData());
    }
}

TEST_P(Packet, ThatIsARangeLiesWithinItsParentAndKeepsItsBytesAlive)
{
    CPacketManager& manager = *CPacketManager::instance();
    CPacket parent = GetParam() == CPacketManager::policyExternal ? CPacket(bytes, 10, note) : CPacket(10, 4);
    log.take();
    for (const auto& [offset, size] : {std::pair<std::size_t, std::size_t>{10, 0}, {5, 6}, {11, 1}, {5, SIZE_MAX}, {5, SIZE_MAX - 4}})
    {
        EXPECT_FALSE(CPacket(parent, offset, size, 0).valid());
        const std::string numbers = std::to_string(offset) + ", size:" + std::to_string(static_cast<std::uint32_t>(size));
        EXPECT_THAT(log.text(), EndsWith("]PacketInternal::create() offset or size is invalid!! huge_size:10, offset:" + numbers + "\n"));
    }
    EXPECT_TRUE(CPacket(parent, 9, 1, 0).valid() && CPacket(parent, 9, 0, 0).valid() && !CPacket(CPacket(), 0, 0, 0).valid());
    CPacket middle(parent, 2, 8, 0), inner(middle, 1, 7, 16);
    unsigned char* const begin = parent.getBuffer();
    EXPECT_TRUE(parent.resize(3) && !CPacket(parent, 2, 2, 0).valid()) << "its size counts, not its capacity";
    parent = middle = CPacket();
    EXPECT_TRUE(freed.empty() && (manager.getBufferSize() == 0 || manager.getFreeSize() < manager.getBufferSize()));
    EXPECT_EQ(std::memset(inner.getBuffer(), 'x', 7), begin + 3);
    inner.reset();
    EXPECT_EQ(freed, GetParam() == CPacketManager::policyExternal ? Freed({{bytes, 3}}) : Freed());
    EXPECT_EQ(manager.getFreeSize(), manager.getBufferSize());
}

TEST_P(Packet, LivesUntilTheLastOfItsHandlesWhateverCopiesMovesAndThreadsThereAre)
{
    CPacketManager& manager = *CPacketManager::instance();
    manager.enableNodesStatistics(true);
    CPacket packet(bytes, 10, note), moved(packet);
    const CPacket& alias = packet;
    packet = alias;
    packet = moved;
    moved = std::move(packet);
    packet = CSharePacketHelper::instance()->toOriginalPacket(CSharePacketHelper::instance()->toDescribePacket(moved));
    inThreads([&, source = moved](int) {
        for (std::size_t i = 0; i < 2000; ++i)
        {
            CPacket copy(source), range(copy, 1, 2, 0), managed(1 + i * 389 % 6000, i % 20);
            copy = range;
            range = CPacket(managed);
            i % 500 == 0 ? manager.dumpNodes() : void();
        }
    });
    moved.reset();
    EXPECT_TRUE(freed.empty() && manager.getFreeSize() == manager.getBufferSize());
    packet = CPacket();
    std::vector<CPacket> handles(threadCount * 100, CPacket(bytes, 1, note));
    inThreads([&](int i) { std::fill_n(handles.begin() + i * 100, 100, CPacket()); });
    EXPECT_EQ(freed, Freed({{bytes, 10}, {bytes, 1}}));
}

}  // namespace
