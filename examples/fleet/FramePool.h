// Where the memory of frames comes from: one pool for the whole program, which cannot outgrow its size whatever the devices send.
#pragma once

#include <ortha/ortha3/Packet.h>

#include <atomic>
#include <cstddef>

namespace Fleet {

/// Threads: every operation from any thread.
class FramePool
{
public:
    /// Has the library take all packets from a pool. The choice holds for the process, and only before its first packet.
    FramePool();

    /// A packet of maxFrame bytes. Throws std::runtime_error if the pool has no room.
    General::Memory::CPacket take();

    /// All in bytes. What a frame takes is a whole chunk of the pool.
    [[nodiscard]] std::size_t size() const;
    [[nodiscard]] std::size_t freeSize() const;
    /// The most that was in use at once.
    [[nodiscard]] std::size_t highWater() const { return m_highWater; }

private:
    std::atomic<std::size_t> m_highWater{0};
};

}  // namespace Fleet
