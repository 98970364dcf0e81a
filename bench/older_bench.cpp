// The older interface, ours, beside the newer one that it forwards to. Rows are named older/operation/who.
#include <cstdlib>
#include <fstream>

#include "ortha/File.h"
#include "ortha/Mutex.h"
#include "ortha/Packet.h"
#include "ortha/Thread.h"
#include "ortha/Time.h"
#include "ortha/Timer.h"
#include "ortha/ortha3/Mutex.h"
#include "ortha/ortha3/Thread.h"
#include "ortha/ortha3/Timer.h"

#include "support.h"

namespace {

namespace Newer = General::Ortha;

// One call a turn, of an object that it knows nothing about.
template <class Object, class Call>
void compare(const std::string& operation, const std::string& who, Object& object, Call call)
{
    Bench::row(Bench::nameOf({"older", operation, who}), [&object, call](benchmark::State& state) {
        for (Object* at = &object; auto _ : state)
        {
            benchmark::DoNotOptimize(at);
            call(*at);
            benchmark::ClobberMemory();
        }
    });
}

constexpr auto looping = [](auto& thread) { benchmark::DoNotOptimize(thread.looping()); };

template <class Base>
struct Idle : Base
{
    Idle() : Base("Idle", 64, 0, 0) {}
    void threadProc() override {}
};

// The file is smaller than its stream's buffer: no row waits for the system.
constexpr auto read16 = [](auto& file) {
    char bytes[16];
    if (file.read(bytes, sizeof(bytes)) != sizeof(bytes))
    {
        file.seek(0, Newer::FileTypes::begin);
    }
    benchmark::DoNotOptimize(bytes);
};

template <class Time, class... Options>
void compareTime(const std::string& who, Options... options)
{
    static const Time s_time(1720000000ull);
    compare("time/format", who, s_time, [options...](const Time& time) {
        char text[32];
        time.format(text, "yyyy-MM-dd HH:mm:ss", options...);
        benchmark::DoNotOptimize(text);
    });
    compare("time/make", who, s_time, [](const Time& time) { benchmark::DoNotOptimize(time.makeTime()); });
    compare("time/break", who, s_time, [](const Time& time) { Time(time).breakTime(1720000000ull); });
}

}  // namespace

int main(int argc, char** argv)
{
    Bench::setZone("EST5EDT,M3.2.0,M11.1.0");
    static CMutex s_mutex;
    static Newer::CMutex s_newerMutex;
    static std::recursive_mutex s_stdMutex;
    compare("mutex/enter-leave", "ortha", s_mutex, [](CMutex& mutex) ORTHA_NO_THREAD_SAFETY_ANALYSIS { mutex.Enter(), mutex.Leave(); });
    compare("mutex/enter-leave", "newer", s_newerMutex, [](auto& mutex) ORTHA_NO_THREAD_SAFETY_ANALYSIS { mutex.enter(), mutex.leave(); });
    compare("mutex/enter-leave", "std-recursive", s_stdMutex, [](auto& mutex) { mutex.lock(), mutex.unlock(); });

    static CPacket s_packet(1000);
    static General::Memory::CPacket s_newerPacket = s_packet;
    compare("packet/buffer", "ortha", s_packet, [](CPacket& packet) { benchmark::DoNotOptimize(packet.GetBuffer()); });
    compare("packet/buffer", "newer", s_newerPacket, [](auto& packet) { benchmark::DoNotOptimize(packet.getBuffer()); });
    compare("packet/length", "ortha", s_packet, [](CPacket& packet) { benchmark::DoNotOptimize(packet.GetLength()); });
    compare("packet/length", "newer", s_newerPacket, [](auto& packet) { benchmark::DoNotOptimize(packet.size()); });

    const Bench::Scratch scratch;
    const std::string path = scratch.file("bytes");
    std::ofstream(path) << std::string(2048, 'x');
    static CFile s_file;
    static Newer::CFile s_newerFile;
    if (!s_file.open(path.c_str(), CFile::modeRead) || !s_newerFile.open(path.c_str(), CFile::modeRead))
    {
        return 1;
    }
    compare("file/read-16", "ortha", s_file, read16);
    compare("file/read-16", "newer", s_newerFile, read16);

    compareTime<CTime>("ortha");
    compareTime<Newer::CTime>("newer", 0);
    static Idle<CThread> s_thread;
    static Idle<Newer::CThread> s_newerThread;
    compare("thread/looping", "ortha", s_thread, looping);
    compare("thread/looping", "newer", s_newerThread, looping);
    static CTimer s_timer("Bench");
    static Newer::CTimer s_newerTimer("Bench");
    compare("timer/is-started", "ortha", s_timer, [](CTimer& timer) { benchmark::DoNotOptimize(timer.isStarted()); });
    compare("timer/is-started", "newer", s_newerTimer, [](auto& timer) { benchmark::DoNotOptimize(timer.isStarted()); });
    const int status = Bench::run(argc, argv);
    // Not every system removes what is open.
    s_file.close();
    s_newerFile.close();
    return status;
}
