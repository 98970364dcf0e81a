// CTimer: calls a function after a delay, once or with a period, on a thread of the timer manager.
//
//     CTimer timer("Poll");
//     timer.start(TFunction1<void, unsigned long>(&Poller::onTimer, &poller), 0, 1000, 7, 200);    // now and every second
//     ...
//     timer.stopAndWait();                    // no call is running any more, and none will come
//
// The manager counts in ticks of 10 milliseconds. A call comes at the first tick after its due time, so up to 10 milliseconds and the
// scheduler's delay late, and, as the delay counts from the last tick, up to 10 milliseconds early. Timers due at one tick are called in
// the order of their due times; among equal due times the one started last comes first.
//
// Two calls of one timer never overlap. A due time that finds the last call still running is skipped; the next one is a whole number of
// periods later, so that the phase stays.
//
// | State             | isStarted | isRunning | isCalled | Meaning                                                       |
// |-------------------|-----------|-----------|----------|---------------------------------------------------------------|
// | Idle              | false     | false     | false    | new, or stopped before a one-shot timer's call                |
// | Armed             | true      | false     | false    | waiting for its due time                                      |
// | Armed and running | true      | true      | false    | periodic, or started again, and in a call                     |
// | Running           | false     | true      | either   | stopped during a call, or one-shot in its call (called: true) |
// | Done              | false     | false     | true     | one-shot, and its call has ended                              |
//
// Callbacks run on a pooled thread, one call at a time, with no lock held and with the timer's name as the thread's name. They may call any
// operation on any timer, their own included. They must not throw.
//
// Threads: every operation from any thread. A timer must not be destroyed from inside its own callback.
#pragma once

#include "ortha/ortha3/Export.h"
#include "ortha/ortha3/Function.h"

namespace General::Ortha {

struct TimerInternal;

class ORTHA_API CTimer
{
public:
    /// The first timer of a process starts the timer manager. `name` is cut to 31 characters; it must not be null.
    explicit CTimer(const char* name);
    /// As stopAndWait.
    virtual ~CTimer();
    CTimer(const CTimer&) = delete;
    CTimer& operator=(const CTimer&) = delete;

    /// Arms the timer, also if it is started already: first call after `delay` milliseconds, then every `period` milliseconds, or never
    /// again if `period` is 0. `proc`, which is copied, gets `param`, of which the low 32 bits arrive. `timeout` is the watchdog time of
    /// one call in milliseconds, 0 for none: a call that takes longer goes on, and shows as "Timeout" in the thread table.
    /// A delay of 0 hands the first call out before returning; then the result can be false: the last call was still running, or the limit
    /// of running threads was reached (see CTimerManager; the timer stays armed). Also false, with nothing armed, once the manager is gone
    /// at exit.
    bool start(TFunction1<void, unsigned long> proc, unsigned int delay, unsigned int period, unsigned long param, unsigned int timeout);
    /// The same with a pointer, which the timer does not own.
    bool start(TFunction1<void, void*> proc, unsigned int delay, unsigned int period, void* param, unsigned int timeout);

    /// Takes the timer out of the schedule; a running call goes on. With `callNow` a one-shot timer is called now instead of later. False
    /// if the timer was not started, or its call could not be handed out because the last one was still running.
    bool stop(bool callNow);
    /// Stops the timer and waits, without limit, until no call is running. Inside the timer's own callback it does not wait. Always true.
    /// The first wait and each 500th leave a log line while all timers stand still: a printer or hook must not wait for a timer.
    bool stopAndWait();

    /// Changes the period; the pending due time moves by the difference. 0 makes a one-shot timer.
    void setPeriodTime(unsigned int period);

    /// The name, valid as long as the object; the text changes with setName.
    [[nodiscard]] const char* getName();
    /// `name` is cut to 31 characters; it must not be null.
    void setName(const char* name);

    [[nodiscard]] bool isStarted();
    /// True if a one-shot timer's call has been handed out since the last start. Never true for a periodic one.
    [[nodiscard]] bool isCalled();
    [[nodiscard]] bool isRunning();

    /// Switches the measuring of the calls' run times, which the timer table shows. `start` switches it off.
    void enableStat(bool enable);

private:
    TimerInternal* m_internal;
};

}  // namespace General::Ortha
