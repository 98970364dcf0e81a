#include <cstdio>

#include "ortha/Ortha3.h"  // the newer interface, in its namespaces
#include "ortha/Packet.h"  // the older one, in the global namespace
#include "ortha/Thread.h"
#include "ortha/Time.h"

namespace Newer = General::Ortha;

// An older thread that hands a packet on to newer code.
class Sender : public CThread
{
public:
    Sender() : CThread("Sender", 64, 0, 0) {}
    ~Sender() override { destroyThread(); }

    CPacket packet{100UL};
    Newer::CSemaphore sent;

private:
    void threadProc() override
    {
        packet.SetLength(10);
        sent.post();
        while (looping())
        {
            CTime::sleep(1);
        }
    }
};

int main()
{
    Sender sender;
    sender.createThread();
    sender.sent.pend();
    const General::Memory::CPacket newer = sender.packet;  // shares the bytes

    const CTime rolled(2023, 2, 30, 0, 0, 0);
    const Newer::CTime held(2023, 2, 30, 0, 0, 0);
    std::printf("%zu bytes; March %d and February %d\n", newer.size(), rolled.day, held.day);
    return newer.size() == 10 && rolled.day == 2 && held.day == 28 ? 0 : 1;
}
