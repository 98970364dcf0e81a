#include <cstdio>
#include <cstring>

#include "ortha/ortha3/Packet.h"
#include "ortha/ortha3/PacketManager.h"

using namespace General::Memory;

// A frame: a header of 4 bytes, then the body. The extra region remembers where the frame came from.
struct Origin
{
    int channel;
};

CPacket receive(int channel)
{
    CPacket frame(1500, sizeof(Origin));  // room for the largest frame
    if (!frame.valid())
    {
        return frame;  // the pool is exhausted, and a log line says so
    }
    const Origin origin = {channel};
    std::memcpy(frame.getExtraData(), &origin, sizeof(origin));
    frame.resize(0);
    char bytes[] = "HEADbody";  // what a socket would give
    frame.putBuffer(bytes, 8);
    return frame;
}

int main()
{
    CPacketManager::PoolParameter pool = {64 << 10, 1024, 8};
    CPacketManager::config(CPacketManager::policyPool, nullptr, &pool);
    {
        CPacket body;
        {
            const CPacket frame = receive(7);
            body = CPacket(frame, 4, frame.size() - 4, 0);
        }  // this handle goes, the frame stays: body refers to it
        std::printf("%.4s\n", reinterpret_cast<const char*>(body.getBuffer()));
        std::printf("%zu of %zu bytes are free\n", CPacketManager::instance()->getFreeSize(), CPacketManager::instance()->getBufferSize());
    }
    std::printf("%zu bytes are free\n", CPacketManager::instance()->getFreeSize());
}
