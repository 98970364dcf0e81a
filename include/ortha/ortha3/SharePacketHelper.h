// CSharePacketHelper: the place where packets would be translated on their way between processes that share memory.
//
//     CPacket sent = CSharePacketHelper::instance()->toDescribePacket(packet);
//
// This library shares no memory between processes: packets pass through as they are.
//
// Threads: any thread.
#pragma once

#include "ortha/ortha3/Export.h"
#include "ortha/ortha3/Packet.h"

namespace General::Memory {

class ORTHA_API CSharePacketHelper
{
public:
    /// What an implementation with shared memory would need; nothing here.
    struct BaseArg;

    static CSharePacketHelper* instance();

    /// What describes `packet` to another process: a handle on the same block.
    [[nodiscard]] CPacket toDescribePacket(const CPacket& packet);
    /// The packet that another process described: a handle on the same block.
    [[nodiscard]] CPacket toOriginalPacket(const CPacket& packet);
    /// Always false.
    bool initSharePacket(BaseArg* arg);
};

}  // namespace General::Memory
