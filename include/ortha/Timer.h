// CTimer and ITimerManager of the older interface: they hold and reach those of ortha3/Timer.h and ortha3/TimerManager.h, where each
// operation is told.
//
//     CTimer timer("Poll");
//     timer.start(&poller, &Poller::onTimer, 0, 1000, 7, 200);      // poller.onTimer(7) now and every second
//     ...
//     timer.stopAndWait();
//
// Threads: as the newer classes.
#pragma once

#include "ortha/Function.h"
#include "ortha/ortha3/Export.h"

class ORTHA_API CTimer
{
public:
    explicit CTimer(const char* name);
    virtual ~CTimer();
    CTimer(const CTimer&) = delete;
    CTimer& operator=(const CTimer&) = delete;

    bool start(TFunction1<void, unsigned long> proc, unsigned int delay, unsigned int period, unsigned long param, unsigned int timeout);
    /// The same with a member function of `object`, or of a base of it. The object is not owned.
    template <class T, class O>
    bool start(T* object, void (O::*proc)(unsigned long), unsigned int delay, unsigned int period, unsigned long param,
               unsigned int timeout)
    {
        return start(TFunction1<void, unsigned long>(proc, object), delay, period, param, timeout);
    }
    bool stop(bool callNow);
    bool stopAndWait();
    void setPeriodTime(unsigned int period);
    [[nodiscard]] const char* getName();
    void setName(const char* name);
    [[nodiscard]] bool isStarted();
    [[nodiscard]] bool isCalled();
    [[nodiscard]] bool isRunning();

private:
    struct Internal;
    Internal* m_internal;
};

class ORTHA_API ITimerManager
{
public:
    virtual void dumpTimers() = 0;
    virtual ~ITimerManager();

    /// The one object of the process.
    static ITimerManager* instance();
};
