#include "FramePool.h"

#include <ortha/ortha3/PacketManager.h>

#include <stdexcept>

#include "Frame.h"

using General::Memory::CPacket;
using General::Memory::CPacketManager;

namespace Fleet {

FramePool::FramePool()
{
    CPacketManager::PoolParameter pool = {1 << 20, 1024, 8};  // 1 MiB, in chunks of 1 KiB
    CPacketManager::config(CPacketManager::policyPool, nullptr, &pool);
    CPacketManager::instance();  // makes the pool now, not during the first poll
}

CPacket FramePool::take()
{
    CPacket frame(maxFrame, 0);
    if (!frame.valid())
    {
        throw std::runtime_error("no room for a frame in the packet pool");
    }
    // A packet that another thread returns at this very moment goes uncounted: near enough for a figure to size a pool by.
    const std::size_t used = size() - freeSize();
    std::size_t highWater = m_highWater;
    while (highWater < used && !m_highWater.compare_exchange_weak(highWater, used))
    {
    }
    return frame;
}

std::size_t FramePool::size() const
{
    return CPacketManager::instance()->getBufferSize();
}

std::size_t FramePool::freeSize() const
{
    return CPacketManager::instance()->getFreeSize();
}

}  // namespace Fleet
