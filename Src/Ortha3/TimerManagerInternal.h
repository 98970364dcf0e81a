// The timer manager: its thread, the queue of started timers, the pool of callback threads.
#pragma once

#include <atomic>
#include <cstdint>

#include "ortha/ortha3/Mutex.h"
#include "ortha/ortha3/Thread.h"

#include "Src/Ortha3/TimerQueue.h"
#include "Src/Ortha3/TimerThread.h"

namespace General::Ortha {

template <class T>
class Singleton;

/// What outlives the manager: callbacks may still run, and timers may be stopped and destroyed, while or after the exit handlers run.
struct TimerState
{
    CRecursiveMutex mutex;  // the timer lock: the manager and all timers; before a thread's own m_mutex
    TimerManagerInternal* manager ORTHA_GUARDED_BY(mutex) = nullptr;  // null before its construction and from its destruction on
    CTimerThread* threads ORTHA_GUARDED_BY(mutex) = nullptr;          // all pooled threads; those in a callback at exit stay here

    static TimerState& get();
    void addThread(CTimerThread* thread);
    void removeThread(CTimerThread* thread);
};

class TimerManagerInternal : public CThread
{
public:
    static TimerManagerInternal* instance();
    /// Stops the tick, ends the idle threads, and lets go of timers and busy threads.
    ~TimerManagerInternal() override;

    // With the timer lock held.
    void insertTimer(TimerInternal& timer);
    void removeTimer(TimerInternal& timer);
    /// Hands the timer to a pooled thread and moves a periodic one on. False if no callback was handed out: the last one is still running,
    /// or, without `force`, the limit is reached.
    bool dispatch(TimerInternal& timer, bool force);
    [[nodiscard]] std::uint64_t currentTime() const { return m_curTime; }

    /// Takes a thread that has done its job back into the pool; with the timer lock held. The idle threads above the limit, for the caller
    /// to end when it has released the lock.
    CTimerThread* putTimerThread(CTimerThread* pThread);
    /// Ends and deletes threads linked through m_nextIdle. Without the timer lock.
    static void endThreads(CTimerThread* threads);

    void dumpTimers();
    void limitIdlePooled(int limit) { m_idleLimit = limit; }
    void setRunningThreadLimit(int limit) { m_runningLimit = limit; }

private:
    friend class Singleton<TimerManagerInternal>;
    TimerManagerInternal();

    void threadProc() override;
    [[nodiscard]] bool runningLimitReached() const;
    /// A thread out of the pool, or a new one; null if the system refuses one.
    CTimerThread* getTimerThread();

    TimerState& m_state;

    // Guarded by the timer lock.
    CTimerThread* m_idleThreads = nullptr;  // last returned first
    std::uint64_t m_curTime;                // milliseconds; moved once a tick
    TimerQueue m_timers;
    int m_idleCount = 0;
    int m_runningCount = 0;
    bool m_refused = false;  // the system gave no thread in this tick

    // Below 1 there is no limit.
    std::atomic<int> m_idleLimit{-1};
    std::atomic<int> m_runningLimit{0};
};

}  // namespace General::Ortha
