#include "ortha/ortha3/SharePacketHelper.h"

namespace General::Memory {

CSharePacketHelper* CSharePacketHelper::instance()
{
    static constinit CSharePacketHelper s_instance;
    return &s_instance;
}

CPacket CSharePacketHelper::toDescribePacket(const CPacket& packet)
{
    return packet;
}

CPacket CSharePacketHelper::toOriginalPacket(const CPacket& packet)
{
    return packet;
}

bool CSharePacketHelper::initSharePacket(BaseArg*)
{
    return false;
}

}  // namespace General::Memory
