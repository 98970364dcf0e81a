#include "ortha/ortha3/PrintLog.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <vector>

#include "ortha/ortha3/Error.h"
#include "ortha/ortha3/Mutex.h"
#include "ortha/ortha3/ThreadSpecific.h"

#include "Src/Ortha3/Log.h"
#include "Src/Ortha3/LogCore.h"
#include "Src/Ortha3/LogSteps.h"
#include "Src/Ortha3/PrintLogInternal.h"

namespace General::Ortha {

using namespace Detail;

namespace {

using Printer = TFunction1<void, const char*>;
using Hook = TFunction1<bool, const char*>;
using HookList = std::vector<Hook>;

// Whatever a log call needs is never destroyed: threads may log while the process exits. A thread slot is made before the program begins,
// while the system still has one.

// Module and file of the calls that name none.
constexpr const char* unknown = "Unknown";

PrintOptions s_options;
Printer s_printer;

unsigned char readOption(const unsigned char& field)
{
    return std::atomic_ref(const_cast<unsigned char&>(field)).load(std::memory_order_relaxed);
}

// In this layer, and in the base layer if it has the switch.
void storeOption(std::size_t index, unsigned char value)
{
    std::atomic_ref(reinterpret_cast<unsigned char*>(&s_options)[index]).store(value, std::memory_order_relaxed);
    if (index < optionCount)
    {
        std::atomic_ref(Ortha_getPrintOption()[index]).store(value, std::memory_order_relaxed);
    }
}

struct Hooks
{
    CMutex mutex;
    std::shared_ptr<const HookList> list ORTHA_GUARDED_BY(mutex) = std::make_shared<HookList>();  // replaced, never changed
    std::atomic<bool> any{false};
};

Hooks& hooks()
{
    static Hooks& hooks = *new Hooks;
    return hooks;
}

// So that a first line that tells of a lack of memory needs none.
[[maybe_unused]] const Hooks& s_hooksMadeEarly = hooks();

struct ThreadPrinters
{
    CRecursiveMutex mutex;  // held while a thread printer runs
    CThreadSpecific slot;
    std::atomic<bool> any{false};
};

ThreadPrinters& threadPrinters()
{
    static ThreadPrinters& printers = *new ThreadPrinters;
    return printers;
}

[[maybe_unused]] const ThreadPrinters& s_printersMadeEarly = threadPrinters();

// Tells a call made from within a printer or hook on the same thread.
class ReentranceGuard
{
public:
    ReentranceGuard() : m_nested(t_inside) { t_inside = true; }
    ~ReentranceGuard() { t_inside = m_nested; }
    ReentranceGuard(const ReentranceGuard&) = delete;
    ReentranceGuard& operator=(const ReentranceGuard&) = delete;

    [[nodiscard]] bool nested() const { return m_nested; }

private:
    static constinit thread_local bool t_inside;

    const bool m_nested;
};

constinit thread_local bool ReentranceGuard::t_inside = false;

void runHooks(const char* text)
{
    std::shared_ptr<const HookList> tmpPrintProcList;
    {
        CGuard guard(hooks().mutex);
        tmpPrintProcList = hooks().list;
    }
    const LastErrorKeeper keeper;
    for (const Hook& hook : *tmpPrintProcList)
    {
        hook(text);
    }
}

void runThreadPrinter(const char* text)
{
    CRecursiveGuard guard(threadPrinters().mutex);
    void* printer = nullptr;
    if (threadPrinters().slot.getValue(&printer) && printer)
    {
        const LastErrorKeeper keeper;
        (*static_cast<Printer*>(printer))(text);
    }
}

void dispatch(int level, const char* text)
{
    if (s_printer.empty())
    {
        Ortha_print(level, text);
    }
    else
    {
        const LastErrorKeeper keeper;
        s_printer(text);
    }
    if (hooks().any.load(std::memory_order_acquire))
    {
        runHooks(text);
    }
    if (threadPrinters().any.load(std::memory_order_acquire))
    {
        runThreadPrinter(text);
    }
}

// Whether a call goes on: its level and its module are on. No lock.
inline bool passes(int level, const char* module)
{
    return levelPasses(level) && logModuleEnabled(module);
}

ORTHA_PRINTF(7, 0)
int logPassed(int level, const char* module, const char* file, const char* function, int line, const char* version, const char* format,
              va_list args)
{
    const ErrnoKeeper errnoKeeper;
    const ReentranceGuard guard;
    if (guard.nested())
    {
        std::vfprintf(stdout, format, args);
        return 0;
    }
    const char* shownVersion = version && readOption(s_options.noVersion) == 0 ? version : "";
    char buffer[lineBufferSize];
    LogTime time;
    int count = formatLine(buffer, level, module, behindLastBackslash(file), function, line, shownVersion, &time, format, args);
    dispatch(level, buffer);
    Ortha_resetcolor();
    count = std::min(count, lineBufferSize);
    if (readOption(s_options.noSaveFile) == 0)
    {
        saveLogLine(buffer, static_cast<unsigned int>(std::min(count, lineBufferSize - 1)), time);
    }
    if (logStatisticsEnabled.load(std::memory_order_relaxed))
    {
        addLogStatistics(module, count);
    }
    return count;
}

ORTHA_PRINTF(2, 0) int logShort(int level, const char* format, va_list args)
{
    return logPassed(level, unknown, unknown, "", 0, "", format, args);
}

}  // namespace

int logFilterEx(int level, const char* module, const char* file, const char* function, int line, const char* version, const char* format,
                va_list args)
{
    return passes(level, module) ? logPassed(level, module, file, function, line, version, format, args) : 0;
}

int logFilter(int level, const char* module, const char* file, const char* function, int line, const char* version, const char* format, ...)
{
    if (!passes(level, module))
    {
        return 0;
    }
    va_list args;
    va_start(args, format);
    const int count = logPassed(level, module, file, function, line, version, format, args);
    va_end(args);
    return count;
}

int logLibName(int level, const char* module, const char* format, ...)
{
    if (level < levelFatal || level > levelDebug || !passes(level, module))
    {
        return 0;
    }
    va_list args;
    va_start(args, format);
    const int count = logPassed(level, module, unknown, "", 0, "", format, args);
    va_end(args);
    return count;
}

void setPrintLogLevel(int level)
{
    logLevel.store(level, std::memory_order_relaxed);
}

int getPrintLogLevel()
{
    return logLevel.load(std::memory_order_relaxed);
}

void setPrintOptions(PrintOptions options)
{
    const auto* from = reinterpret_cast<const unsigned char*>(&options);
    for (std::size_t i = 0; i < sizeof(PrintOptions); ++i)
    {
        storeOption(i, from[i]);
    }
}

void setPrintOption(unsigned char PrintOptions::*field, unsigned char value)
{
    storeOption(optionIndex(field), value);
}

int getPrintOptions(PrintOptions* options)
{
    const auto* from = reinterpret_cast<const unsigned char*>(&s_options);
    auto* to = reinterpret_cast<unsigned char*>(options);
    std::transform(from, from + sizeof(PrintOptions), to, readOption);
    return 0;
}

int setLogPrinter(TFunction1<void, const char*> printer)
{
    s_printer = printer;
    return 0;
}

bool attachPrint(TFunction1<bool, const char*> hook)
{
    CGuard guard(hooks().mutex);
    if (std::find(hooks().list->begin(), hooks().list->end(), hook) != hooks().list->end())
    {
        return false;
    }
    auto list = std::make_shared<HookList>(*hooks().list);
    list->push_back(hook);
    hooks().list = std::move(list);
    hooks().any.store(true, std::memory_order_release);
    return true;
}

bool detachPrint(TFunction1<bool, const char*> hook)
{
    CGuard guard(hooks().mutex);
    auto list = std::make_shared<HookList>(*hooks().list);
    const auto found = std::find(list->begin(), list->end(), hook);
    if (found == list->end())
    {
        return false;
    }
    list->erase(found);
    hooks().any.store(!list->empty(), std::memory_order_release);
    hooks().list = std::move(list);
    return true;
}

int setThreadLogPrinter(TFunction1<void, const char*> printer)
{
    static constexpr SourceText<sizeof(__FILE__)> file(__FILE__);
    ThreadPrinters& printers = threadPrinters();
    CRecursiveGuard guard(printers.mutex);
    void* old = nullptr;
    if (!printers.slot.getValue(&old))
    {
        std::printf("[%s:%d] get old cb failed\n", file.text, __LINE__);
        return 0;
    }
    auto copy = printer.empty() ? nullptr : std::make_unique<Printer>(printer);
    if (!printers.slot.setValue(copy.get()))
    {
        std::printf("[%s:%d] set new cb failed\n", file.text, __LINE__);
        return 0;
    }
    static_cast<void>(copy.release());
    delete static_cast<Printer*>(old);
    printers.any.store(true, std::memory_order_release);
    return 1;
}

void dumpHex(unsigned char* data, std::size_t length)
{
    constexpr int rowLength = 16;
    constexpr int blockLength = 512;
    const int count = static_cast<int>(length);
    for (int begin = 0; begin < count; begin += rowLength)
    {
        const int bytes = std::min(rowLength, count - begin);
        const unsigned char* row = data + begin;
        logTrace("%p: ", static_cast<const void*>(row));
        for (int i = 0; i < bytes; ++i)
        {
            logTrace("%02x ", row[i]);
        }
        for (int i = bytes; i < rowLength; ++i)
        {
            logTrace("   ");
        }
        logTrace("  ");
        for (int i = 0; i < bytes; ++i)
        {
            logTrace("%c", row[i] >= 32 && row[i] <= 122 ? row[i] : '.');
        }
        logTrace("\n");
        if (bytes == rowLength && begin % blockLength == blockLength - rowLength)
        {
            logTrace("\n");
        }
    }
}

}  // namespace General::Ortha

// Each short function stands in the global namespace and in General::Ortha.
#define ORTHA_SHORT_LOG(name, level)                                       \
    int name(const char* format, ...)                                      \
    {                                                                      \
        if (!::General::Ortha::passes(level, ::General::Ortha::unknown))   \
        {                                                                  \
            return 0;                                                      \
        }                                                                  \
        va_list args;                                                      \
        va_start(args, format);                                            \
        const int count = ::General::Ortha::logShort(level, format, args); \
        va_end(args);                                                      \
        return count;                                                      \
    }

ORTHA_SHORT_LOG(logFatal, General::Ortha::levelFatal)
ORTHA_SHORT_LOG(logError, General::Ortha::levelError)
ORTHA_SHORT_LOG(logWarn, General::Ortha::levelWarn)
ORTHA_SHORT_LOG(logInfo, General::Ortha::levelInfo)
ORTHA_SHORT_LOG(logTrace, General::Ortha::levelTrace)
ORTHA_SHORT_LOG(logDebug, General::Ortha::levelTrace)
ORTHA_SHORT_LOG(General::Ortha::logFatal, General::Ortha::levelFatal)
ORTHA_SHORT_LOG(General::Ortha::logError, General::Ortha::levelError)
ORTHA_SHORT_LOG(General::Ortha::logWarn, General::Ortha::levelWarn)
ORTHA_SHORT_LOG(General::Ortha::logInfo, General::Ortha::levelInfo)
ORTHA_SHORT_LOG(General::Ortha::logTrace, General::Ortha::levelTrace)
ORTHA_SHORT_LOG(General::Ortha::logDebug, General::Ortha::levelTrace)
