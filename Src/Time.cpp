#include "ortha/Time.h"

#include <cstdint>
#include <utility>

#include "ortha/ortha3/PrintLog.h"
#include "ortha/ortha3/Thread.h"

#include "Src/Ortha3/TimeFormat.h"
#include "Src/Platform/Clock.h"

namespace {

using NewTime = General::Ortha::CTime;
namespace Platform = General::Ortha::Platform;

void report(const char* text)
{
    logError("%s", text);
}

// Nothing links these to the newer class's. Never destroyed, as times are written until the very end.
struct Settings
{
    std::string m_format = "yyyy-MM-dd HH:mm:ss";
    int m_dateFormat = NewTime::dateFormatYMD;
    char m_dateSeparator = '-';
    bool m_12hour = false;
};

Settings& settings()
{
    static Settings& s_settings = *new Settings;
    return s_settings;
}

NewTime newTime(const SystemTime& time)
{
    return {time.year, time.month, time.day, time.hour, time.minute, time.second};
}

}  // namespace

constinit const CTime CTime::minTime(SystemTime{2000, 1, 1, 6, 0, 0, 0});
constinit const CTime CTime::maxTime(SystemTime{2038, 1, 1, 5, 0, 0, 0});

CTime::CTime(unsigned long long time)
{
    breakTime(time);
}

CTime::CTime(int inYear, int inMonth, int onDay, int atHour, int atMinute, int atSecond)
    : CTime(SystemTime{inYear, inMonth, onDay, 0, atHour, atMinute, atSecond})
{
    breakTime(makeTime());
}

unsigned long long CTime::makeTime() const
{
    const std::int64_t seconds = Platform::joinLocal({year, month, day, 0, hour, minute, second, 0});
    return seconds < 0 ? 0 : static_cast<unsigned long long>(seconds);
}

void CTime::breakTime(unsigned long long time)
{
    Platform::CalendarTime split;
    if (Platform::splitLocal(time, split))
    {
        year = split.year;
        month = split.month;
        day = split.day;
        wday = split.dayOfWeek;
        hour = split.hour;
        minute = split.minute;
        second = split.second;
    }
}

CTime CTime::operator+(long long seconds) const
{
    const unsigned long long time = makeTime();
    const unsigned long long sum = time + static_cast<unsigned long long>(seconds);
    return {seconds < 0 && sum > time ? 0 : sum};
}

CTime CTime::operator-(long long seconds) const
{
    const unsigned long long time = makeTime();
    const unsigned long long difference = time - static_cast<unsigned long long>(seconds);
    return {seconds > 0 && difference > time ? 0 : difference};
}

long long CTime::operator-(const CTime& time) const
{
    return static_cast<long long>(makeTime() - time.makeTime());
}

CTime& CTime::operator+=(long long seconds)
{
    return *this = *this + seconds;
}

CTime& CTime::operator-=(long long seconds)
{
    return *this = *this - seconds;
}

void CTime::format(char* buf, const char* format) const
{
    if (!buf || !format)
    {
        report(!buf ? "buf is NULL!!\n" : "format is NULL!!\n");
        return;
    }
    const Settings& set = settings();
    const auto order = set.m_dateFormat == 0   ? NewTime::dateFormatYMD
                       : set.m_dateFormat == 1 ? NewTime::dateFormatMDY
                                               : NewTime::dateFormatDMY;
    General::Ortha::formatTime(buf, format, *this, {order, set.m_dateSeparator, set.m_12hour}, 0, &report);
}

CTime CTime::getCurrentTime()
{
    const NewTime now = NewTime::getCurrentTime();
    return {now.year, now.month, now.day, now.hour, now.minute, now.second};
}

void CTime::setCurrentTime(const CTime& time, int tolerance)
{
    NewTime::setCurrentTime(newTime(time), tolerance);
}

unsigned long long CTime::getCurrentMilliSecond()
{
    return NewTime::getCurrentMilliSecond();
}

unsigned long long CTime::getCurrentMicroSecond()
{
    return NewTime::getCurrentMicroSecond();
}

void CTime::sleep(int ms)
{
    General::Ortha::CThread::sleep(ms);
}

void CTime::setFormat(std::string format)
{
    Settings& set = settings();
    const auto preferences = General::Ortha::preferencesOf(format.c_str(), &report);
    set.m_format = std::move(format);
    set.m_dateFormat = preferences.dateFormat;
    set.m_dateSeparator = preferences.separator;
    set.m_12hour = preferences.twelveHour;
}

void CTime::setFormat(int dateFormat, int dateSeparator, int timeFormat)
{
    Settings& set = settings();
    set.m_dateFormat = dateFormat;
    if (dateSeparator >= 0 && dateSeparator <= 2)
    {
        set.m_dateSeparator = ".-/"[dateSeparator];
    }
    if (timeFormat == 0 || timeFormat == 1)
    {
        set.m_12hour = timeFormat == 1;
    }
}

const std::string CTime::getFormat()
{
    return settings().m_format;
}

int CTime::getDateFormat()
{
    return settings().m_dateFormat;
}

bool CTime::get12Hour()
{
    return settings().m_12hour;
}

char CTime::getSpliter()
{
    return settings().m_dateSeparator;
}

int CTime::getTimeFormat()
{
    return get12Hour() ? 1 : 0;
}

int CTime::getDateSeparator()
{
    const char separator = getSpliter();
    return separator == '-' ? 1 : separator == '/' ? 2 : 0;
}
