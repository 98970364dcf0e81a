// A pooled thread that runs timer callbacks.
#pragma once

#include <cstdint>

#include "ortha/ortha3/Function.h"
#include "ortha/ortha3/Semaphore.h"
#include "ortha/ortha3/Thread.h"

namespace General::Ortha {

struct TimerInternal;
class TimerManagerInternal;

/// Sleeps in the manager's pool until it is given a job. The manager gives one only to a thread that it has taken out of the pool.
class CTimerThread : public CThread
{
public:
    explicit CTimerThread(TimerManagerInternal* manager);
    /// Waits for the end of a thread that was told to end. The caller does not hold the timer lock: what the thread logs on its way may
    /// need it.
    ~CTimerThread() override;

    /// Runs the timer's callback under its name and deadline. The caller holds the timer lock.
    void run(TimerInternal& timer);
    /// Tells an idle thread to end.
    void end();

    // Guarded by the timer lock.
    TimerManagerInternal* m_manager;       // null once the manager is gone: this thread then ends, and touches no timer
    TimerInternal* m_timer = nullptr;      // being served
    CTimerThread* m_nextIdle = nullptr;    // of the idle pool
    CTimerThread* m_nextThread = nullptr;  // of all pooled threads

private:
    void threadProc() override;
    /// The timer being served wants its run time measured.
    bool isMeasured();
    /// Gives the job back; false if the thread is to end.
    bool finish(unsigned long long begin);

    // Written before the semaphore is posted, read behind it.
    TFunction1<void, unsigned long> m_procUlong;
    TFunction1<void, void*> m_procPtr;
    std::uint64_t m_param = 0;
    bool m_exit = false;
    CSemaphore m_semaphore;  // posted once a job, and once to end
};

}  // namespace General::Ortha
