// fleet: polls a fleet of devices over TCP, one timer and one component each, and reports what they measure.

#include <ortha/ortha3/ThreadManager.h>
#include <ortha/ortha3/Time.h>

#include <csignal>
#include <cstdio>
#include <deque>
#include <exception>
#include <stdexcept>
#include <string>
#include <vector>

#include "Asio.h"
#include "Collector.h"
#include "Components.h"
#include "Console.h"
#include "DeviceList.h"
#include "DstRehearsal.h"
#include "FramePool.h"
#include "Log.h"
#include "Options.h"
#include "Poller.h"
#include "Reporter.h"
#include "Simulator.h"

namespace Fleet {

namespace {

void configureLog(const Options& options)
{
    General::Ortha::PrintOptions shown;
    shown.noVersion = 1;
    shown.noFile = 1;
    shown.noLine = 1;
    shown.showMilliseconds = 1;
    General::Ortha::setPrintOptions(shown);
    if (options.verbose)
    {
        General::Ortha::setPrintLogLevel(levelTrace);
    }
    runLogCommand("-logmodulestatistics on");
    if (!options.log.empty())
    {
        saveLog(options.log, options.logSize, options.logFiles);
    }
    for (const std::string& command : options.logCommands)
    {
        runLogCommand(command);
    }
}

// Gives every device that is to be simulated a server.
void simulate(const Options& options, std::vector<Device>& devices, Simulator& simulator)
{
    for (Device& device : devices)
    {
        if (options.simulate.value_or(device.port == 0))
        {
            simulator.addDevice(device);
        }
        else if (device.port == 0)
        {
            throw DeviceListError(options.devices, device.line, "port 0 is for simulated devices");
        }
    }
}

// Waits for SIGINT, SIGTERM or the end of the run time, 0 for none. Tells which it was.
std::string waitForStop(asio::io_context& io, asio::signal_set& signals, std::chrono::seconds runTime)
{
    std::string reason = "the time is up";
    asio::steady_timer timer(io);
    signals.async_wait([&](const asio::error_code& error, int signal) {
        if (!error)
        {
            reason = signal == SIGINT ? "SIGINT" : "SIGTERM";
            timer.cancel();
        }
    });
    if (runTime.count() != 0)
    {
        timer.expires_after(runTime);
        timer.async_wait([&](const asio::error_code&) {
            asio::error_code ignored;
            signals.cancel(ignored);
        });
    }
    io.run();
    return reason;
}

// A lost connection is told to all pollers that share it: none may go while another one polls.
class Pollers : public std::deque<Poller>  // a poller stays where it is made
{
public:
    ~Pollers() { stop(); }

    // No poll is under way when it returns.
    void stop()
    {
        for (Poller& poller : *this)
        {
            poller.stop();
        }
        for (Poller& poller : *this)
        {
            poller.wait();
        }
    }
};

// Polls until it is time to stop, and closes with the report. All that holds components is gone when this returns.
void poll(const Options& options, const std::vector<Device>& devices, Simulator& simulator, FramePool& pool)
{
    // From here on a signal is kept for waitForStop. A second one while the program stops changes nothing.
    asio::io_context io;
    asio::signal_set signals(io, SIGINT, SIGTERM);

    Collector collector(devices.size());
    const std::string end = options.runTime.count() == 0 ? "Ctrl-C stops" : "stops after " + std::to_string(options.runTime.count()) + " s";
    logLibName(levelInfo, moduleFleet, "fleet: %zu devices of %s, %zu of them simulated; %s.\n\n", devices.size(), options.devices.c_str(),
               simulator.devices(), end.c_str());

    Reporter reporter(devices, collector);
    ReadingSignal readings(2);
    readings.attach(ReadingSignal::Proc(&Collector::onReading, &collector));
    readings.attach(ReadingSignal::Proc(&Reporter::onReading, &reporter));

    if (simulator.devices() != 0 && !simulator.createThread())
    {
        throw std::runtime_error("the simulator does not start");
    }
    Pollers pollers;
    for (std::size_t i = 0; i < devices.size(); ++i)
    {
        Poller& poller = pollers.emplace_back(i, devices[i].id, devices[i].period, pool, readings);
        constexpr unsigned int spread = 50;  // the first polls do not all come at once
        poller.start(1 + static_cast<unsigned int>(i % 20) * spread);
    }
    if (!reporter.createThread())
    {
        throw std::runtime_error("the reporter does not start");
    }

    Console console;
    if (!console.createThread())
    {
        throw std::runtime_error("the console does not start");
    }

    const std::string reason = waitForStop(io, signals, options.runTime);
    logLibName(levelInfo, moduleFleet, "fleet: %s, stopping.\n", reason.c_str());
    reporter.destroyThread();
    pollers.stop();
    reporter.logStatistics("Closing report:");
    reporter.logPool(pool);
    reporter.logObjects();
    reporter.logLog();
}

int run(const Options& options)
{
    configureLog(options);
    General::Ortha::CTime::setFormatString(options.format.c_str());
    if (options.dstRehearsal)
    {
        rehearseDst();
        return 0;
    }
    std::vector<Device> devices = readDeviceList(options.devices);
    Simulator simulator;
    simulate(options, devices, simulator);

    General::Ortha::CThreadManager::instance()->registerMainThread();
    FramePool pool;  // before anything makes a packet
    startComponents(devices);
    poll(options, devices, simulator, pool);
    // No poll is under way and nobody keeps a reading: a packet that is still out has been lost.
    if (const std::size_t lost = pool.size() - pool.freeSize(); lost != 0)
    {
        throw std::runtime_error(std::to_string(lost) + " bytes of the packet pool have not come back");
    }
    endComponents();
    logLibName(levelInfo, moduleFleet, "fleet: all component objects are released, and the packet pool is full again.\n");
    return 0;
}

}  // namespace

}  // namespace Fleet

int main(int argc, char** argv)
{
    Fleet::Options options;
    if (const auto exitCode = Fleet::readOptions(argc, argv, options))
    {
        return *exitCode;
    }
    try
    {
        return Fleet::run(options);
    }
    catch (const Fleet::DeviceListError& error)
    {
        std::fprintf(stderr, "fleet: %s\n", error.what());
        return 2;
    }
    catch (const std::exception& error)
    {
        std::fprintf(stderr, "fleet: %s\n", error.what());
        return 1;
    }
}
