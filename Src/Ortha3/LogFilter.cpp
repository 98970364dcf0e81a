// The log commands, the module filter and the statistics.

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <new>
#include <string>
#include <string_view>

#include "ortha/ortha3/Mutex.h"
#include "ortha/ortha3/PrintLog.h"

#include "Src/Ortha3/LogCore.h"
#include "Src/Ortha3/LogFile.h"
#include "Src/Ortha3/LogSteps.h"
#include "Src/Ortha3/PrintLogInternal.h"

namespace General::Ortha {

std::atomic<bool> logStatisticsEnabled{false};

namespace {

// The modules that commands have named, in chains by a sum of the name. An entry is added and never taken out again, so log calls read them
// without a lock; there are as many as an operator has named.
struct ModuleSwitch
{
    std::unique_ptr<char[]> name;
    std::atomic<bool> on;
    ModuleSwitch* next;
};

using ModuleChain = std::atomic<ModuleSwitch*>;
constexpr unsigned int chainCount = 64;
ModuleChain moduleLogMap[chainCount];

ModuleChain& chainOf(const char* module)
{
    unsigned int sum = 0;
    for (; *module != 0; ++module)
    {
        sum += static_cast<unsigned char>(*module);
    }
    return moduleLogMap[sum % chainCount];
}

ModuleSwitch* findModule(const ModuleChain& chain, const char* module)
{
    ModuleSwitch* at = chain.load(std::memory_order_acquire);
    while (at && std::strcmp(at->name.get(), module) != 0)
    {
        at = at->next;
    }
    return at;
}

// One command runs at a time.
CMutex& commandMutex()
{
    static CMutex& mutex = *new CMutex;
    return mutex;
}

struct Statistics
{
    CMutex mutex;
    std::map<std::string, LogModuleInfo, std::less<>> logStatistics ORTHA_GUARDED_BY(mutex);
};

Statistics& statistics()
{
    static Statistics& statistics = *new Statistics;  // never destroyed: threads may log while the process exits
    return statistics;
}

}  // namespace

bool logModuleEnabled(const char* module)
{
    if (Detail::filterMode.load(std::memory_order_relaxed) != Detail::filterByModule || !module)
    {
        return true;
    }
    const ModuleSwitch* const found = findModule(chainOf(module), module);
    return !found || found->on.load(std::memory_order_relaxed);
}

void addLogStatistics(const char* module, int count)
{
    if (!module || *module == 0)
    {
        return;
    }
    constexpr std::uint64_t limit = std::numeric_limits<std::uint32_t>::max();
    const std::string_view name = module;
    Statistics& all = statistics();
    CGuard guard(all.mutex);
    auto entry = all.logStatistics.find(name);
    if (entry == all.logStatistics.end())
    {
        try
        {
            entry = all.logStatistics.emplace(name, LogModuleInfo()).first;
        }
        catch (const std::bad_alloc&)
        {
            return;  // the module is counted from the next line on
        }
    }
    std::uint64_t& size = entry->second.logSize;
    size = std::min(size + static_cast<std::uint64_t>(count), limit);
}

std::map<std::string, LogModuleInfo> getLogStatistics()
{
    Statistics& all = statistics();
    CGuard guard(all.mutex);
    return {all.logStatistics.begin(), all.logStatistics.end()};
}

namespace {

using Arguments = char* const*;

// Whether a value is this word, in capitals or not.
bool is(std::string_view value, std::string_view word)
{
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
    return std::equal(value.begin(), value.end(), word.begin(), word.end(), [&](char a, char b) { return lower(a) == b; });
}

template <class T>
void set(std::atomic<T>& value, T to)
{
    value.store(to, std::memory_order_relaxed);
}

void setLevel(int, Arguments argv)
{
    setPrintLogLevel(std::atoi(argv[1]));
}

void setModule(int, Arguments argv)
{
    ModuleChain& chain = chainOf(argv[1]);
    const bool on = is(argv[2], "on");
    if (ModuleSwitch* const known = findModule(chain, argv[1]))
    {
        set(known->on, on);
    }
    else
    {
        const std::size_t size = std::strlen(argv[1]) + 1;
        std::unique_ptr<char[]> name(new (std::nothrow) char[size]);
        ModuleSwitch* const next = chain.load(std::memory_order_relaxed);
        auto* const entry = name ? new (std::nothrow) ModuleSwitch{std::move(name), on, next} : nullptr;
        if (!entry)
        {
            return;
        }
        std::memcpy(entry->name.get(), argv[1], size);
        chain.store(entry, std::memory_order_release);
    }
    set<int>(Detail::filterMode, Detail::filterByModule);
}

void setAllModules(int, Arguments argv)
{
    set<int>(Detail::filterMode, is(argv[1], "off") ? Detail::filterNone : Detail::filterAll);
}

template <unsigned char PrintOptions::*field>
void setOption(int, Arguments argv)
{
    setPrintOption(field, is(argv[1], "on") ? 0 : 1);
}

void setPath(int, Arguments argv)
{
    try
    {
        setLogPath(argv[1]);
    }
    catch (const std::bad_alloc&)
    {
        // as it was
    }
}

void setSizeLimit(const char* kilobytes)
{
    const auto bytes = static_cast<std::int32_t>(static_cast<std::uint32_t>(std::atoi(kilobytes)) * 1024);
    set(logFileSettings.logSizeLimit, std::max(bytes, 0));
}

void setSize(int, Arguments argv)
{
    setSizeLimit(argv[1]);
}

void setStatistics(int, Arguments argv)
{
    set(logStatisticsEnabled, is(argv[1], "on"));
}

void setSaving(int argc, Arguments argv)
{
    LogFileSettings& settings = logFileSettings;
    const std::string_view what = argv[1];
    if (argc == 2 && is(what, "none"))
    {
        set(settings.saveOldWay, true);
    }
    else if (argc == 3 && is(what, "filenametime"))
    {
        if (is(argv[2], "day") || is(argv[2], "sec"))
        {
            set(settings.fileNameSeconds, is(argv[2], "sec") ? 1 : 0);
        }
    }
    else if (argc == 4 && (is(what, "byday") || is(what, "bysize")))
    {
        if (is(what, "byday"))
        {
            set(settings.saveByDay, is(argv[2], "on"));
        }
        else
        {
            setSizeLimit(argv[2]);
        }
        set(settings.maxLogFiles, std::max(std::atoi(argv[3]), 0));
        set(settings.saveOldWay, false);
    }
}

struct Command
{
    const char* word;
    int minArgc;
    int maxArgc;
    void (*run)(int argc, Arguments argv);
};

constexpr int any = std::numeric_limits<int>::max();

// The first row that fits is run.
constexpr Command commands[] = {
    {"-loglevel", 2, any, setLevel},
    {"-logmodule", 3, any, setModule},
    {"-logmodule", 2, 2, setAllModules},
    {"-logtime", 2, any, setOption<&PrintOptions::noTime>},
    {"-logthread", 2, any, setOption<&PrintOptions::noThreadId>},
    {"-logversion", 2, any, setOption<&PrintOptions::noVersion>},
    {"-logfunction", 2, any, setOption<&PrintOptions::showFunction>},
    {"-logpath", 2, any, setPath},
    {"-logsize", 2, any, setSize},
    {"-logmodulestatistics", 2, 2, setStatistics},
    {"-logsavesetting", 2, 4, setSaving},
};

void printUsage()
{
    std::fputs(
        "logfilter command usage:\n"
        "logfilter -loglevel [levelnum](0-no printlevel, 1-fatal, 2-error, 3-warn, 4-info, 5-trace, 6-debug): set log level\n"
        "logfilter -logmodule [modulename] [on/off] #turn module's log on/off\n"
        "logfilter -logmodule [on/off] #turn ALL module's log on/off\n"
        "logfilter -logpath [logpath/] #logger module's log to logpath or cancel logger(by set path to )\n"
        "logfilter -logmodulestatistics  [on/off] #turn ALL module's logstatistics func on/off\n"
        "logfiter -logsize [logsize] #log file max size limited to logsize Kbytes\n"
        "logfiter -logsavesetting bysize [logsize] [maxnumber]#(logsize-log will save as a new file if log's size reaches to "
        "logsize),(maxnumber-total log file)\n"
        "logfiter -logsavesetting byday [on/off] [maxnumber] #(on-log will save as a new file if date changes),(maxnumber-total log file)\n"
        "logfiter -logsavesetting filenametime [day/sec] #[day]:the time info of log file name includes -y-m-d, [sec]: -y-m-d-h-m-s, "
        "default: -y-m-d;\n"
        "logfiter -logsavesetting none #log file save in the old way\n",
        stdout);
}

}  // namespace

void setLogFilter(int argc, char* const argv[])
{
    if (argc == 0 || (argc == 1 && argv[0] && std::strcmp(argv[0], "-h") == 0))
    {
        printUsage();
        return;
    }
    if (argc < 0 || std::find(argv, argv + argc, nullptr) != argv + argc)
    {
        return;
    }
    CGuard guard(commandMutex());
    for (const Command& command : commands)
    {
        if (std::strcmp(argv[0], command.word) == 0 && argc >= command.minArgc && argc <= command.maxArgc)
        {
            command.run(argc, argv);
            return;
        }
    }
}

}  // namespace General::Ortha
