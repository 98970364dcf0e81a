// A tank's level, measured once a period and written to a journal: a program of the older interface alone.
#include <ortha/File.h>
#include <ortha/Mutex.h>
#include <ortha/Packet.h>
#include <ortha/Semaphore.h>
#include <ortha/Thread.h>
#include <ortha/Time.h>
#include <ortha/Timer.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <list>

namespace {

constexpr int headerSize = 64;

// What stands in the header of a reading's packet.
struct Stamp
{
    unsigned long number;
    SystemTime time;
};

// Readings on their way from the timer to the thread.
class Queue
{
public:
    void put(const CPacket& packet)
    {
        CGuard guard(m_mutex);
        m_packets.push_back(packet);
        m_ready.Post();
    }

    // Waits for a reading; an invalid one tells the end.
    CPacket take()
    {
        m_ready.Pend();
        CGuard guard(m_mutex);
        const CPacket packet = m_packets.front();
        m_packets.pop_front();
        return packet;
    }

private:
    CMutex m_mutex;
    CSemaphore m_ready;
    std::list<CPacket> m_packets;
};

class Gauge
{
public:
    explicit Gauge(Queue& queue) : m_queue(queue) {}

    void onTimer(unsigned long wanted)
    {
        CPacket packet(32UL);
        if (m_number == wanted || packet.Invalid())  // the log has told why
        {
            return;
        }
        const Stamp stamp = {++m_number, CTime::getCurrentTime()};
        std::memcpy(packet.GetHeader(), &stamp, sizeof(stamp));
        char text[32];
        const int length = std::snprintf(text, sizeof(text), "level %lu %%", 40 + 3 * m_number % 20);
        packet.SetLength(0);
        packet.PutBuffer(text, static_cast<unsigned long>(length));
        m_queue.put(packet);
        if (m_number == wanted)
        {
            m_queue.put(CPacket());
        }
    }

private:
    Queue& m_queue;
    unsigned long m_number = 0;
};

class Journal : public CThread
{
public:
    Journal(Queue& queue, CFile& file) : CThread("Journal", 64, 0, 0), m_queue(queue), m_file(file) {}
    ~Journal() override
    {
        if (!isThreadOver())
        {
            destroyThread();
        }
    }

private:
    void threadProc() override
    {
        while (looping())
        {
            const CPacket packet = m_queue.take();
            if (packet.Invalid())
            {
                return;
            }
            Stamp stamp;
            std::memcpy(&stamp, packet.GetHeader(), sizeof(stamp));
            char time[32];
            CTime(stamp.time).format(time, "yyyy-MM-dd HH:mm:ss");
            char line[96];
            const int length = std::snprintf(line, sizeof(line), "%s #%lu %.*s\n", time, stamp.number, static_cast<int>(packet.GetLength()),
                                             reinterpret_cast<const char*>(packet.GetBuffer()));
            m_file.write(line, static_cast<std::size_t>(length));
        }
    }

    Queue& m_queue;
    CFile& m_file;
};

}  // namespace

int main(int argc, char** argv)
{
    const int readings = argc == 3 ? std::atoi(argv[2]) : 0;
    if (readings < 1)
    {
        std::fprintf(stderr, "usage: legacy JOURNAL READINGS\n\nWrites that many readings, ten a second, to the file JOURNAL.\n");
        return 2;
    }
    IPacketManager::config(1 << 20, 1024, headerSize);
    CTime::setFormat("yyyy-MM-dd HH:mm:ss");

    CFile file;
    if (!file.open(argv[1], CFile::modeWrite))
    {
        std::fprintf(stderr, "legacy: cannot write %s\n", argv[1]);
        return 1;
    }
    Queue queue;
    Journal journal(queue, file);
    journal.createThread();
    Gauge gauge(queue);
    CTimer timer("Gauge");
    timer.start(&gauge, &Gauge::onTimer, 0, 100, static_cast<unsigned long>(readings), 0);
    while (!journal.isThreadOver())
    {
        CTime::sleep(10);
    }
    timer.stopAndWait();
    std::printf("%llu bytes in %s\n", file.getLength(), argv[1]);
    return 0;
}
