#include "Src/Ortha3/LogFile.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <limits>
#include <new>
#include <string>
#include <tuple>
#include <utility>

#include "ortha/ortha3/File.h"
#include "ortha/ortha3/FileFind.h"
#include "ortha/ortha3/Mutex.h"
#include "ortha/ortha3/PrintLog.h"
#include "ortha/ortha3/Time.h"
#include "ortha/ortha3/detail/source_text.h"

#include "Src/Ortha3/LogCore.h"
#include "Src/Ortha3/LogSteps.h"
#include "Src/Platform/FileApi.h"

namespace General::Ortha {

LogFileSettings logFileSettings;

namespace {

using Platform::FileStatus;

constexpr Detail::SourceText<sizeof(__FILE__)> source(__FILE__);

std::atomic<bool> s_pathSet{false};  // so that a line takes no lock while nothing is saved

template <class T>
T setting(const std::atomic<T>& value)
{
    return value.load(std::memory_order_relaxed);
}

std::int32_t sizeHeld(std::uint64_t size)
{
    return static_cast<std::int32_t>(std::min<std::uint64_t>(size, std::numeric_limits<std::int32_t>::max()));
}

bool sameDay(const SystemTime& a, const LogTime& b)
{
    return std::tie(a.year, a.month, a.day) == std::tie(b.year, b.month, b.day);
}

// What stands behind `logPath` in the name of a file of the series.
std::string suffix(const LogTime& time, bool seconds, int serial)
{
    char text[96];
    if (seconds)
    {
        std::snprintf(text, sizeof(text), "_%04d-%02d-%02d-%02d-%02d-%02d_%d", time.year, time.month, time.day, time.hour, time.minute,
                      time.second, serial);
    }
    else
    {
        std::snprintf(text, sizeof(text), "_%04d-%02d-%02d_%d", time.year, time.month, time.day, serial);
    }
    return text;
}

// The serial number in a suffix of the same date, or date and time; -1 if it is none.
int serialOf(const char* suffix, const LogTime& time, bool seconds)
{
    LogTime read{};
    int serial = -1;
    if (!seconds)
    {
        const bool whole = std::sscanf(suffix, "_%4d-%2d-%2d_%9d", &read.year, &read.month, &read.day, &serial) == 4;
        return whole && std::tie(read.year, read.month, read.day) == std::tie(time.year, time.month, time.day) ? serial : -1;
    }
    const bool whole = std::sscanf(suffix, "_%4d-%2d-%2d-%2d-%2d-%2d_%9d", &read.year, &read.month, &read.day, &read.hour, &read.minute,
                                   &read.second, &serial) == 7;
    return whole && std::tie(read.year, read.month, read.day, read.hour, read.minute, read.second) ==
                        std::tie(time.year, time.month, time.day, time.hour, time.minute, time.second)
               ? serial
               : -1;
}

// What is saved to, and the saving.
struct LogFiles
{
    void setPath(const char* path);
    int save(const char* text, std::size_t count, const LogTime& time);
    void close() ORTHA_REQUIRES(mutex);

    CMutex mutex;  // held for the whole of a save: lines stay whole and in order, whatever rotates

private:
    bool prepareOldWay() ORTHA_REQUIRES(mutex);
    bool prepareSeries(const LogTime& time) ORTHA_REQUIRES(mutex);
    bool openLatest(bool& found) ORTHA_REQUIRES(mutex);
    bool openNext(const LogTime& time) ORTHA_REQUIRES(mutex);
    template <class Visit>
    bool forEachLogFile(Visit visit) ORTHA_REQUIRES(mutex);
    bool findLogFile(bool latest, const std::string& except, std::string& result, int& logNum) ORTHA_REQUIRES(mutex);
    std::string newLogPath(const LogTime& time) ORTHA_REQUIRES(mutex);
    void removeOldestLog(const std::string& current) ORTHA_REQUIRES(mutex);

    std::string logPath ORTHA_GUARDED_BY(mutex);  // empty: nothing is saved
    std::string logDir ORTHA_GUARDED_BY(mutex);   // a search pattern for the directory of logPath
    std::FILE* logFile ORTHA_GUARDED_BY(mutex) = nullptr;
    std::uint64_t oldLogSize ORTHA_GUARDED_BY(mutex) = 0;  // old way: bytes in the file
    std::int32_t curLogSize ORTHA_GUARDED_BY(mutex) = 0;   // series: bytes in the current file
    SystemTime curLogTime ORTHA_GUARDED_BY(mutex);         // series: the time that stands for the current file; year 0: none yet
};

LogFiles& logFiles()
{
    static LogFiles& files = *new LogFiles;  // never destroyed: threads may log while the process exits
    return files;
}

void LogFiles::setPath(const char* path)
{
    std::string file = path;
    std::string directory;
    if (!file.empty() && (file.back() == '/' || file.back() == '\\'))
    {
        std::printf("[%s:%d]logDir is invalid\n", source.text, __LINE__);
        file.clear();
    }
    else if (const std::size_t last = file.find_last_of(Platform::pathSeparators); last != std::string::npos)
    {
        directory = file.substr(0, last + 1) + '*';
    }
    else if (!file.empty())
    {
        directory = "./";
        file = directory + file;
    }
    CGuard guard(mutex);
    logPath = std::move(file);
    logDir = std::move(directory);
    s_pathSet.store(!logPath.empty(), std::memory_order_relaxed);
}

int LogFiles::save(const char* text, std::size_t count, const LogTime& time)
{
    CGuard guard(mutex);
    const bool oldWay = setting(logFileSettings.saveOldWay);
    if (logPath.empty() || !(oldWay ? prepareOldWay() : prepareSeries(time)))
    {
        return -1;
    }
    bool failed = false;  // told by nothing, as a short count
    const std::size_t written = Platform::writeStream(text, 1, count, logFile, failed);
    if (oldWay)
    {
        oldLogSize += written;
    }
    else
    {
        curLogSize = sizeHeld(static_cast<std::uint64_t>(curLogSize) + written);
    }
    Platform::flushStream(logFile);
    return 0;
}

void LogFiles::close()
{
    if (logFile)
    {
        std::fclose(logFile);
        logFile = nullptr;
    }
}

bool LogFiles::prepareOldWay()
{
    if (!logFile)
    {
        logFile = Platform::openPrivateStream(logPath.c_str(), "a+");
        if (!logFile)
        {
            std::printf("[%s:%d] open log file failed, errno: %d\n", source.text, __LINE__, errno);
            return false;
        }
        FileStatus status;
        oldLogSize = Platform::statFile(logPath.c_str(), Platform::PathForm::native, status) == 0 ? status.size : 0;
    }
    const std::int32_t limit = setting(logFileSettings.logSizeLimit);
    if (limit != 0 && oldLogSize >= static_cast<std::uint32_t>(limit))
    {
        close();
        logFile = Platform::openPrivateStream(logPath.c_str(), "w+");
        if (!logFile)
        {
            std::printf("[%s:%d] fopen failed, errno:%d\n", source.text, __LINE__, errno);
            return false;
        }
        oldLogSize = 0;
    }
    return true;
}

bool LogFiles::prepareSeries(const LogTime& time)
{
    bool needNew = false;
    if (!logFile)
    {
        bool found = false;
        if (!openLatest(found))
        {
            return false;
        }
        needNew = !found;
    }
    if (setting(logFileSettings.saveByDay) && curLogTime.year != 0 && !sameDay(curLogTime, time))
    {
        needNew = true;
    }
    const std::int32_t limit = setting(logFileSettings.logSizeLimit);
    if (limit != 0 && curLogSize >= limit)
    {
        needNew = true;
    }
    return !needNew || openNext(time);
}

// Goes on with the latest log file, if there is one. False if that cannot be found out, or it does not open.
bool LogFiles::openLatest(bool& found)
{
    const Detail::LastErrorKeeper keeper;
    std::string latest;
    int count = 0;
    if (!findLogFile(true, {}, latest, count))
    {
        return false;
    }
    found = !latest.empty();
    if (!found)
    {
        return true;
    }
    logFile = Platform::openPrivateStream(latest.c_str(), "a+");
    if (!logFile)
    {
        std::printf("[%s:%d]fopen faild,errno:%d, errmesg:%s\n", source.text, __LINE__, errno, std::strerror(errno));
        return false;
    }
    FileStatus status;
    const bool read = Platform::statFile(latest.c_str(), Platform::PathForm::native, status) == 0;
    if (read)
    {
        curLogTime = CTime(static_cast<unsigned long long>(status.written));
    }
    curLogSize = read ? sizeHeld(status.size) : 0;
    return true;
}

bool LogFiles::openNext(const LogTime& time)
{
    const Detail::LastErrorKeeper keeper;
    close();
    const std::string path = newLogPath(time);
    // The name is a new one, unless the directory could not be read: then a file with lines in it must not be emptied.
    logFile = Platform::openPrivateStream(path.c_str(), "w+x");
    if (!logFile)
    {
        std::printf("[%s:%d] fopen failed, errno:%d\n", source.text, __LINE__, errno);
        return false;
    }
    curLogTime.year = time.year;
    curLogTime.month = time.month;
    curLogTime.day = time.day;
    curLogSize = 0;
    removeOldestLog(path);
    return true;
}

// Calls `visit` with the path of every file whose path holds logPath. False if the directory holds nothing at all.
template <class Visit>
bool LogFiles::forEachLogFile(Visit visit)
{
    CFileFind find;
    if (!find.findFile(logDir.c_str()))
    {
        std::printf("[%s:%d]no such logpath\n", source.text, __LINE__);
        return false;
    }
    do
    {
        const std::string path = find.getFilePath();
        if (!find.isDirectory() && path.find(logPath) != std::string::npos)
        {
            visit(path);
        }
    } while (find.findNextFile());
    return true;
}

// The log file that was written last, or first, of all but `except`; empty if there is none. `logNum` counts them all.
bool LogFiles::findLogFile(bool latest, const std::string& except, std::string& result, int& logNum)
{
    using WriteTime = std::pair<std::int64_t, std::int32_t>;
    WriteTime best;
    result.clear();
    logNum = 0;
    return forEachLogFile([&](const std::string& path) {
        FileStatus status;
        const bool known = Platform::statFile(path.c_str(), Platform::PathForm::native, status) == 0;
        if (known && status.directory)  // that a link points at
        {
            return;
        }
        ++logNum;
        if (!known || path == except)
        {
            return;
        }
        const WriteTime written(status.written, status.writtenNanoseconds);
        if (result.empty() || (latest ? written > best : written < best))
        {
            best = written;
            result = path;
        }
    });
}

std::string LogFiles::newLogPath(const LogTime& time)
{
    const bool seconds = setting(logFileSettings.fileNameSeconds) != 0;
    const std::string stem = logPath;
    int number = -1;
    forEachLogFile([&](const std::string& path) {
        if (path.compare(0, stem.size(), stem) == 0)
        {
            number = std::max(number, serialOf(path.c_str() + stem.size(), time, seconds));
        }
    });
    return logPath + suffix(time, seconds, number + 1);
}

// One at most goes at each rotation, and never the current one, which may be as old as another to the tick of the file system's clock.
void LogFiles::removeOldestLog(const std::string& current)
{
    const std::int32_t limit = setting(logFileSettings.maxLogFiles);
    if (limit == 0)
    {
        return;
    }
    std::string oldest;
    int count = 0;
    if (findLogFile(false, current, oldest, count) && !oldest.empty() && count > limit)
    {
        CFile::remove(oldest.c_str());
    }
}

}  // namespace

void setLogPath(const char* path)
{
    logFiles().setPath(path);
}

int saveLogLine(const char* text, unsigned int count, const LogTime& time)
{
    if (!s_pathSet.load(std::memory_order_relaxed))
    {
        return -1;
    }
    try
    {
        return logFiles().save(text, count, time);
    }
    catch (const std::bad_alloc&)
    {
        std::printf("[%s:%d] no memory, a line is not saved\n", source.text, __LINE__);
        return -1;
    }
}

void logCleanup()
{
    LogFiles& files = logFiles();
    CGuard guard(files.mutex);
    files.close();
}

}  // namespace General::Ortha
