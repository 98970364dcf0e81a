#include "Src/Ortha3/TimeSetting.h"

#include <cstdlib>
#include <new>

#include "ortha/ortha3/Error.h"

#include "Src/Ortha3/Calendar.h"
#include "Src/Ortha3/DstManager.h"
#include "Src/Ortha3/Log.h"
#include "Src/Ortha3/ObserverList.h"
#include "Src/Ortha3/WallClock.h"
#include "Src/Platform/Clock.h"

namespace General::Ortha {

namespace {

constexpr int clockNotSet = 0x1000000E;
constexpr int realTimeClockNotSet = 0x1000000F;

void setSysCurrentTime(const CTime& time, int tolerance);
void setSysCurrentTimeEx(const SystemTimeEx& time, int tolerance);

// Never destroyed: the clock may be set while the process exits.
struct Setting
{
    CTime::SetTimeHook hook{&setSysCurrentTime};
    CTime::SetTimeHookEx hookEx{&setSysCurrentTimeEx};
    CTime::VerifyHook verifyHook;
    bool notifyOnHook = false;
    bool notifyOnHookEx = false;
    ObserverList<CTime::ModifyProc> modifyProcs;
};

Setting& setting()
{
    static Setting& s_setting = *new Setting;
    return s_setting;
}

// False if there is nobody to call.
bool callModifyProcs(const CTime& time)
{
    return setting().modifyProcs.call(static_cast<const SystemTime&>(time));
}

// What both default hooks do.
void setLocalTime(CTime time, int milliSecond, int tolerance)
{
    time = time < CTime::minTime ? CTime::minTime : time > CTime::maxTime ? CTime::maxTime : time;
    if (tolerance != 0 && std::llabs(time - CTime::getCurrentTime()) <= tolerance)
    {
        return;
    }
    if (!Platform::setLocalTime({time.year, time.month, time.day, time.wday, time.hour, time.minute, time.second, milliSecond}))
    {
        setLastError(clockNotSet);
        return;
    }
    if (!callModifyProcs(time))
    {
        ORTHA_LOG(levelInfo, "CTime::setCurrentTime() success without callback function\n");
    }
}

void setSysCurrentTime(const CTime& time, int tolerance)
{
    setLocalTime(time, 0, tolerance);
}

void setSysCurrentTimeEx(const SystemTimeEx& time, int tolerance)
{
    setLocalTime(Calendar::timeOf(time), time.milliSecond, tolerance);
}

// The last error is not cleared before the clock is set: an older failure counts.
bool clockWasSet()
{
    const int error = getLastError();
    return error != clockNotSet && error != realTimeClockNotSet;
}

SystemTimeEx withWeekday(SystemTimeEx time)
{
    time.wday = Calendar::timeOf(time).wday;
    return time;
}

void notifyAfterHookEx(const SystemTimeEx& time)
{
    const Setting& set = setting();
    if (set.notifyOnHookEx && set.hookEx != CTime::SetTimeHookEx(&setSysCurrentTimeEx))
    {
        callModifyProcs(Calendar::timeOf(time));
    }
}

template <class Hook>
Hook replace(Hook& hook, const Hook& with, const Hook& standard)
{
    Hook former = hook;
    hook = with.empty() ? standard : with;
    return former;
}

}  // namespace

bool mayModifyTime()
{
    const CTime::VerifyHook& verify = setting().verifyHook;
    if (verify.empty() || verify())
    {
        return true;
    }
    ORTHA_LOG(levelError, "verification failed when modifying time!\n");
    return false;
}

bool Ortha_setCurrentTimeInternal(const SystemTimeEx& time, int tolerance)
{
    if (!mayModifyTime())
    {
        return false;
    }
    const SystemTimeEx record = withWeekday(time);
    setting().hookEx(record, tolerance);
    const bool wasSet = clockWasSet();
    if (wasSet && zoneView.dst.exchange(time.dst) != time.dst)
    {
        DstManager::instance()->callConvertCallback(time.dst == 1);
    }
    notifyAfterHookEx(record);
    return wasSet;
}

void CTime::setCurrentTime(const CTime& time, int tolerance)
{
    setCurrentTimeEx(time, tolerance);
}

bool CTime::setCurrentTimeEx(const CTime& time, int tolerance)
{
    if (!mayModifyTime())
    {
        return false;
    }
    const CTime copy(time.year, time.month, time.day, time.hour, time.minute, time.second);
    const Setting& set = setting();
    set.hook(copy, tolerance);
    if (set.notifyOnHook && set.hook != SetTimeHook(&setSysCurrentTime))
    {
        callModifyProcs(copy);
    }
    return clockWasSet();
}

bool CTime::setCurrentTime(const SystemTimeEx& time, int tolerance)
{
    if (!mayModifyTime())
    {
        return false;
    }
    SystemTimeEx record = withWeekday(time);
    record.dst = 0;
    setting().hookEx(record, tolerance);
    notifyAfterHookEx(record);
    return clockWasSet();
}

bool CTime::attachModifyProc(ModifyProc proc)
{
    return setting().modifyProcs.add(proc);
}

CTime::SetTimeHook CTime::attachSetCurrentTimeHook(SetTimeHook hook)
{
    return replace(setting().hook, hook, SetTimeHook(&setSysCurrentTime));
}

CTime::SetTimeHook CTime::attachSetCurrentTimeHook(SetTimeHook hook, bool notify)
{
    setting().notifyOnHook = notify;
    return attachSetCurrentTimeHook(hook);
}

CTime::SetTimeHookEx CTime::attachSetCurrentTimeHookEx(SetTimeHookEx hook)
{
    return replace(setting().hookEx, hook, SetTimeHookEx(&setSysCurrentTimeEx));
}

CTime::SetTimeHookEx CTime::attachSetCurrentTimeHookEx(SetTimeHookEx hook, bool notify)
{
    setting().notifyOnHookEx = notify;
    return attachSetCurrentTimeHookEx(hook);
}

void CTime::attachModifyTimeVerifyHook(VerifyHook hook)
{
    setting().verifyHook = hook;
}

}  // namespace General::Ortha
