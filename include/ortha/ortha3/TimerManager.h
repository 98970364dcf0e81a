// CTimerManager: the process's timers as a whole: their table, and limits on the threads that run their callbacks.
//
//     CTimerManager::instance()->dumpTimers();                  // the timer table, through the log at level 4
//
// One thread, "TimerManager", looks every 10 milliseconds for timers that are due and hands each to an idle pooled thread, or to a new one:
// by default the pool grows to the highest number of callbacks that ever ran at once, and never shrinks.
//
// Threads: every operation from any thread.
#pragma once

#include "ortha/ortha3/Export.h"

namespace General::Ortha {

class TimerManagerInternal;
template <class T>
class Singleton;

class ORTHA_API CTimerManager
{
public:
    /// The one manager of the process; the first use starts its thread.
    static CTimerManager* instance();

    /// Logs the timer table at level 4, in the order of due times: name, next due time and run time so far (with statistics on) in
    /// milliseconds, period, time in the current call and its watchdog time, "Running" or "Idle".
    /// The lines are logged while all timers stand still: a printer or hook must not wait for a timer.
    void dumpTimers();
    /// Keeps at most `limit` idle pooled threads, the most recently used ones; below 1 there is no limit. Takes effect when a callback
    /// returns. Always true.
    bool limitIdlePooled(int limit);
    /// Runs at most `limit` callbacks at once; below 1 there is no limit. While the limit is reached due timers wait, each behind the one
    /// due before it. Always true.
    bool setRunningThreadLimit(int limit);

private:
    friend class Singleton<CTimerManager>;
    CTimerManager();
    ~CTimerManager();

    TimerManagerInternal* m_internal;
};

}  // namespace General::Ortha
