#include "ortha/Packet.h"

#include <gtest/gtest.h>

#include <vector>

#include "support/LogLines.h"
#include "support/Sync.h"

namespace {

using namespace General::Ortha::Test;
using Numbers = std::vector<unsigned long>;

Numbers numbers(const CPacket& packet)
{
    return {packet.GetLength(), packet.GetSize(), packet.GetLeft(), packet.GetHeaderSize()};
}

TEST(OlderPacket, HasAHeaderAndASplitPoolAsConfigured)
{
    IPacketManager::config(1048576, 1024, 64);
    CPacket packet(100);
    EXPECT_TRUE(numbers(packet) == (Numbers{100, 1024, 924, 64}) && packet.SetLength(1025) == 0 && packet.SetLength(1020) == 1);
    EXPECT_TRUE(packet.PutBuffer(this, 7) == 4 && packet.GetLeft() == 0);
    packet.GetHeader()[63] = packet.GetBuffer()[0] = 1, packet.ClearHeader();
    EXPECT_TRUE(packet.GetHeader()[63] == 0 && packet.GetBuffer()[0] == 1 && CPacket(1 << 20).Invalid() && CPacket(0).GetHeader());
    EXPECT_EQ(IPacketManager::instance()->getFreeSize() + 1024, IPacketManager::instance()->getBufferSize());
}

TEST(OlderPacket, SharesItsBlockWithCopiesOfBothClassesUntilTheLastIsGone)
{
    EXPECT_TRUE(numbers(CPacket(100)) == (Numbers{100, 100, 0, 128}) && IPacketManager::instance()->getBufferSize() == 0);
    IPacketManager::config(1 << 20, 1024, 32);  // too late, but for the header
    Numbers freed;
    Callback<void*, std::size_t> onFree(
        [&](void* arg, std::size_t size) { freed.push_back(arg == &freed ? static_cast<unsigned int>(size) : 0); });
    CPacket first(10, onFree, &freed), other(20, onFree, &freed), invalid, made, &same = first;
    {
        const General::Memory::CPacket newer = (first.PutBuffer(this, 8), other.PutBuffer(this, 9), first);
        const CPacket copy(first), again(newer);
        EXPECT_TRUE(copy.GetBuffer() == newer.getBuffer() && again.GetLength() == 8 && again.GetHeaderSize() == 32);
        first = same, first = other;
        EXPECT_TRUE(freed.empty() && copy.GetSize() == 10 && first.GetSize() == 20);
    }
    const CPacket copied(invalid), none{General::Memory::CPacket()};
    made = first, first = invalid, other = none;
    EXPECT_TRUE(freed == Numbers{10} && made.Valid() && first.Invalid() && other.Invalid() && copied.Invalid() && none.Invalid());
    made = invalid, invalid.ClearHeader();
    EXPECT_TRUE(freed == (Numbers{10, 20}) && numbers(invalid) == Numbers(4) && !invalid.GetBuffer() && !invalid.GetHeader());
}

}  // namespace
