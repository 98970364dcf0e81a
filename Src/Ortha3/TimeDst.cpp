// The daylight-saving operations of CTime.
#include <cstdint>

#include "ortha/ortha3/Time.h"

#include "Src/Ortha3/Calendar.h"
#include "Src/Ortha3/DstManager.h"
#include "Src/Ortha3/Log.h"
#include "Src/Ortha3/ObserverList.h"
#include "Src/Ortha3/TimeSetting.h"
#include "Src/Ortha3/WallClock.h"

namespace General::Ortha {

namespace {

constexpr int dstSeconds = 3600;

// Never destroyed: the clock may be set while the process exits.
struct RealUTC
{
    CTime::SetRealUTCHook hook;
    bool notifyOnHook = false;
    ObserverList<CTime::ModifyRealUTCProc> procs;
};

RealUTC& realUTC()
{
    static RealUTC& s_realUTC = *new RealUTC;
    return s_realUTC;
}

// Whether daylight saving is in force at a local time, in seconds, to which no hour has been added yet.
std::int32_t isLocalTimeInDst(unsigned long long seconds)
{
    const CTime time(seconds, false);
    CTime start;
    CTime end;
    if (!DstManager::instance()->getDstConfig(start, end, time.year))
    {
        ORTHA_LOG(levelDebug, "the dst manager is not set.\n");
        return zoneView.dst;
    }
    const bool begun = time >= start;
    const bool notEnded = time < end - dstSeconds;  // the end is told in daylight-saving time
    return (start < end ? begun && notEnded : begun || notEnded) ? 1 : 0;
}

bool setRealUTCByHook(unsigned long long utc, int tolerance)
{
    if (!mayModifyTime())
    {
        return false;
    }
    const unsigned long long old = CTime::getCurrentRealUTC();
    if (realUTC().hook(utc, tolerance) && realUTC().notifyOnHook)
    {
        realUTC().procs.call(old, utc);
    }
    return true;
}

}  // namespace

bool CTime::setDst(bool dst)
{
    const std::int32_t flag = dst ? 1 : 0;
    if (zoneView.dst != flag)
    {
        DstManager::instance()->callConvertCallback(dst);
    }
    zoneView.dst = flag;
    ORTHA_LOG(levelInfo, "set ortha dst: %d\n", flag);
    return true;
}

bool CTime::setInitDst(bool dst)
{
    return DstManager::instance()->initDst(dst);
}

bool CTime::setDstConfig(const DstConfigInfo& start, const DstConfigInfo& end, bool enable)
{
    if (!enable)
    {
        DstManager::instance()->stopDstManager();
        ORTHA_LOG(levelInfo, "stop dst manager.\n");
        return true;
    }
    if (!DstManager::instance()->startDstManager(start, end))
    {
        ORTHA_LOG(levelError, "start dst manager failed!\n");
        return false;
    }
    ORTHA_LOG(levelInfo, "start dst manager ok!\n");
    return true;
}

bool CTime::getDstConfig(int year, CTime& start, CTime& end)
{
    return DstManager::instance()->getDstConfig(start, end, year);
}

void CTime::attachConvertDstCallback(ConvertDstProc proc)
{
    DstManager::instance()->setConvertCallback(proc);
}

void CTime::makeLocal(unsigned long long utc, unsigned long long* local, int* offset)
{
    if (!local || !offset)
    {
        ORTHA_LOG(levelError, "input is NULL!!\n");
        return;
    }
    *local = utc;
    *offset = 0;
    if (int zone = 0; getTimeZone(&zone))
    {
        // The sum is that of unsigned numbers, and what is beyond the signed ones counts as before 1970.
        const unsigned long long sum = utc + static_cast<unsigned long long>(std::int64_t{zone});
        if (static_cast<std::int64_t>(sum) < 0)
        {
            ORTHA_LOG(levelError, "invalid local time!\n");
            return;
        }
        *local = sum;
        *offset = zone;
    }
    else
    {
        ORTHA_LOG(levelWarn, "the time zone is not set.\n");
    }
    if (isLocalTimeInDst(*local) == 1)
    {
        *local += dstSeconds;
        *offset += dstSeconds;
    }
    if (*local > timeToSeconds(maxTime))
    {
        *local = timeToSeconds(maxTime);
        ORTHA_LOG(levelWarn, "this time exceeds the maximum time.\n");
    }
    else if (*local < timeToSeconds(minTime))
    {
        *local = timeToSeconds(minTime);
        ORTHA_LOG(levelWarn, "this time exceeds the minimum time.\n");
    }
}

bool CTime::setCurrentRealUTC(unsigned long long utc, int tolerance)
{
    if (!realUTC().hook.empty())
    {
        return setRealUTCByHook(utc, tolerance);
    }
    const unsigned long long begin = getCurrentMilliSecond();
    auto seconds = static_cast<std::int64_t>(utc / 1000);
    if (int zone = 0; getTimeZone(&zone))
    {
        seconds += zone;
        if (seconds < 0)
        {
            ORTHA_LOG(levelError, "invalid time!\n");
            return false;
        }
    }
    else
    {
        ORTHA_LOG(levelWarn, "the time zone is not set.\n");
    }
    const std::int32_t inDst = isLocalTimeInDst(static_cast<unsigned long long>(seconds));
    seconds += inDst == 1 ? dstSeconds : 0;
    SystemTimeEx record;
    Calendar::split(seconds, record);
    record.milliSecond = static_cast<std::int32_t>(utc % 1000);

    DstManager& manager = *DstManager::instance();
    manager.pause();
    const unsigned long long now = getCurrentMilliSecond();
    record = Calendar::addMilliSeconds(record, now > begin ? static_cast<std::int64_t>(now - begin) : 0);
    record.dst = inDst;
    const std::int32_t before = zoneView.dst;
    const bool wasSet = Ortha_setCurrentTimeInternal(record, tolerance);
    if (wasSet && inDst != before)
    {
        ORTHA_LOG(levelInfo, "set real UTC, change dst: %d\n", inDst);
    }
    manager.resume();
    return wasSet;
}

bool CTime::attachModifyRealUTCProc(ModifyRealUTCProc proc)
{
    return realUTC().procs.add(proc);
}

void CTime::attachSetCurrentRealUTCHook(SetRealUTCHook hook, bool notify)
{
    realUTC().hook = hook;
    realUTC().notifyOnHook = notify;
}

}  // namespace General::Ortha
