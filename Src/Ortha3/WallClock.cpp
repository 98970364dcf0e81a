#include "Src/Ortha3/WallClock.h"

#include <iterator>
#include <memory>
#include <new>
#include <string>

#include "ortha/ortha3/Time.h"

#include "Src/Ortha3/Calendar.h"
#include "Src/Ortha3/Log.h"
#include "Src/Platform/Clock.h"

namespace General::Ortha {

constinit ZoneView zoneView;

namespace {

constexpr int minZone = -43200;
constexpr int maxZone = 50400;
constexpr int dstSeconds = 3600;

std::atomic<bool> m_useSystemZone{true};

// Seconds east of UTC: whole hours to the east, to the west, and the zones in between.
constexpr int zoneTable[] = {0,      3600,   7200,   10800,  12600,  14400,  16200, 18000, 19800,  20700,  21600,  23400,  25200,  28800,
                             32400,  34200,  36000,  39600,  43200,  46800,  -3600, -7200, -10800, -12600, -14400, -18000, -21600, -25200,
                             -28800, -32400, -36000, -39600, -43200, -16200, 37800, 50400, -34200, 30600,  31500,  45900};

// Ends with its thread.
struct ClientInfo
{
    std::string name;
    std::string address;
    std::string type;
};

thread_local std::unique_ptr<const ClientInfo> t_clientInfo;

}  // namespace

std::int64_t zoneOffset() noexcept
{
    return m_useSystemZone.load(std::memory_order_relaxed) ? Platform::zoneOffset() : 0;
}

CTime CTime::getCurrentTime()
{
    const Platform::CalendarTime now = Platform::localTime();
    return {now.year, now.month, now.day, now.hour, now.minute, now.second};
}

CTime CTime::getCurTimeForPrint()
{
    return getCurrentTime();
}

SystemTimeEx CTime::getCurrentTimeEx()
{
    const Platform::CalendarTime now = Platform::localTime();
    return {now.year, now.month, now.day, now.dayOfWeek, now.hour, now.minute, now.second, now.milliSecond};
}

SystemTimeEx CTime::getCurTimeExForPrint(unsigned long long)
{
    return getCurrentTimeEx();
}

unsigned long long CTime::getCurrentUTCtime()
{
    return getCurrentUTCMilliSecond() / 1000;
}

unsigned long long CTime::getCurrentUTCMilliSecond()
{
    return static_cast<unsigned long long>(Platform::wallNanoseconds() / 1000000);
}

unsigned long long CTime::getCurrentRealUTC()
{
    return getCurrentUTCMilliSecond();
}

bool CTime::setTimeZone(int seconds)
{
    if (seconds < minZone || seconds > maxZone)
    {
        return false;
    }
    zoneView.timeZone = seconds;
    return true;
}

bool CTime::getTimeZone(int* seconds)
{
    const std::int32_t zone = zoneView.timeZone;
    if (zone == ZoneView::unsetZone)
    {
        return false;
    }
    *seconds = zone;
    return true;
}

long CTime::getTimeZone()
{
    return static_cast<long>(zoneOffset());
}

int CTime::getTimeZonefromTable(int index)
{
    if (index < 0 || index >= static_cast<int>(std::size(zoneTable)))
    {
        ORTHA_LOG(levelError, "CTime::getTimeZonefromTable, zoneIndex error:%d\n", index);
        return 0;
    }
    return zoneTable[index];
}

int CTime::disableTimezone()
{
    m_useSystemZone = false;
    return 0;
}

int CTime::getDst()
{
    return zoneView.dst;
}

unsigned long long CTime::makeUTC(unsigned long long local, const int* offset)
{
    // The sums are those of unsigned numbers, and what is beyond the signed ones counts as before 1970.
    const auto result = [](std::uint64_t utc) -> unsigned long long {
        if (static_cast<std::int64_t>(utc) < 0)
        {
            ORTHA_LOG(levelError, "invalid local time!\n");
            return 0;
        }
        return utc;
    };
    const auto less = [](std::uint64_t time, int seconds) { return time - static_cast<std::uint64_t>(std::int64_t{seconds}); };
    if (offset)
    {
        return result(less(local, *offset));
    }
    std::uint64_t utc = local;
    if (int zone = 0; getTimeZone(&zone))
    {
        utc = less(utc, zone);
    }
    else
    {
        ORTHA_LOG(levelDebug, "the time zone is not set.\n");
    }
    const std::int32_t dst = zoneView.dst;
    if (static_cast<std::int64_t>(utc) >= 0 && dst == ZoneView::unsetDst)
    {
        ORTHA_LOG(levelDebug, "the dst manager is not set.\n");
    }
    else if (static_cast<std::int64_t>(utc) >= 0 && dst != 0)
    {
        utc = less(utc, dstSeconds);
    }
    return result(utc);
}

bool CTime::getUTCForEmbed(UTCTimeDef& time)
{
    const std::int32_t zone = zoneView.timeZone;
    const std::int32_t dst = zoneView.dst;
    if (zone == ZoneView::unsetZone || dst == ZoneView::unsetDst)
    {
        return false;
    }
    const unsigned long long local = timeToSeconds(getCurTimeForPrint());
    time.utc = static_cast<std::uint64_t>(static_cast<std::int64_t>(local) - zone - (dst == 1 ? dstSeconds : 0));
    time.timeZone = zone;
    time.dst = dst;
    return true;
}

void CTime::setModifyTimeClientInfo(const ModifyTimeClientInfo& info)
{
    const auto textOf = [](const char* text) { return text ? text : ""; };
    try
    {
        t_clientInfo.reset(new ClientInfo{textOf(info.name), textOf(info.address), textOf(info.type)});
    }
    catch (const std::bad_alloc&)
    {
        t_clientInfo.reset();
    }
}

ModifyTimeClientInfo CTime::getModifyTimeClientInfo()
{
    if (!t_clientInfo)
    {
        ORTHA_LOG(levelError, "get thread specific failed!\n");
        return {"", "", ""};
    }
    return {t_clientInfo->name.c_str(), t_clientInfo->address.c_str(), t_clientInfo->type.c_str()};
}

}  // namespace General::Ortha
