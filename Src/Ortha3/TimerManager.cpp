#include "ortha/ortha3/TimerManager.h"

#include <cinttypes>

#include "ortha/ortha3/Assert.h"
#include "ortha/ortha3/Time.h"

#include "Src/Ortha3/Log.h"
#include "Src/Ortha3/Singleton.h"
#include "Src/Ortha3/TimerManagerInternal.h"

namespace General::Ortha {

TimerState& TimerState::get()
{
    static TimerState& state = *new TimerState;
    return state;
}

void TimerState::addThread(CTimerThread* thread)
{
    CRecursiveGuard guard(mutex);
    thread->m_nextThread = threads;
    threads = thread;
}

void TimerState::removeThread(CTimerThread* thread)
{
    CRecursiveGuard guard(mutex);
    CTimerThread** link = &threads;
    while (*link != thread)
    {
        link = &(*link)->m_nextThread;
    }
    *link = thread->m_nextThread;
}

TimerManagerInternal::TimerManagerInternal()
    : CThread("TimerManager", 1, 0, 0), m_state(TimerState::get()), m_curTime(CTime::getCurrentMilliSecond())
{
    {
        CRecursiveGuard guard(m_state.mutex);
        m_state.manager = this;
    }
    createThread();
}

TimerManagerInternal::~TimerManagerInternal()
{
    destroyThread();
    CTimerThread* idle = nullptr;
    {
        CRecursiveGuard guard(m_state.mutex);
        m_state.manager = nullptr;
        while (m_timers.head())
        {
            removeTimer(*m_timers.head());
        }
        idle = m_idleThreads;
        for (CTimerThread* thread = m_state.threads; thread; thread = thread->m_nextThread)
        {
            thread->m_manager = nullptr;
            if (thread->m_timer)
            {
                thread->m_timer->m_thread = nullptr;
                thread->m_timer = nullptr;
            }
        }
    }
    endThreads(idle);
}

TimerManagerInternal* TimerManagerInternal::instance()
{
    return Singleton<TimerManagerInternal>::instance();
}

void TimerManagerInternal::insertTimer(TimerInternal& timer)
{
    m_timers.insert(timer);
    timer.m_started = true;
}

void TimerManagerInternal::removeTimer(TimerInternal& timer)
{
    m_timers.remove(timer);
    timer.m_started = false;
}

bool TimerManagerInternal::runningLimitReached() const
{
    const int limit = m_runningLimit;
    return m_refused || (limit >= 1 && limit <= m_runningCount);
}

void TimerManagerInternal::threadProc()
{
    constexpr int tick = 10;
    constexpr int watchdogTime = 10000;
    bool sleepNext = true;
    do
    {
        if (sleepNext)
        {
            sleep(tick);
        }
        CRecursiveGuard guard(m_state.mutex);
        if (sleepNext)
        {
            const std::uint64_t before = m_curTime;
            m_curTime = CTime::getCurrentMilliSecond();
            m_refused = false;
            setTimeout(watchdogTime, m_curTime);
            if (m_curTime == before)
            {
                continue;
            }
            if (m_curTime < before)
            {
                ORTHA_ASSERT(0);
            }
        }
        const auto headIsDue = [this] { return m_timers.head() && m_timers.head()->m_nextTime < m_curTime; };
        if (headIsDue())
        {
            dispatch(*m_timers.head(), false);
        }
        // One timer a pass, so that others get the lock between two; all that are due get their turn in this tick.
        sleepNext = runningLimitReached() || !headIsDue();
    } while (looping());
}

bool TimerManagerInternal::dispatch(TimerInternal& timer, bool force)
{
    CTimerThread* thread = nullptr;
    if (!timer.m_thread)
    {
        if (!force && runningLimitReached())
        {
            return false;
        }
        thread = getTimerThread();
        if (!thread)
        {
            return false;
        }
    }
    if (timer.m_started)
    {
        removeTimer(timer);
    }
    const std::uint64_t now = m_curTime;
    if (timer.m_period != 0)
    {
        // From the old due time on by whole periods: the phase stays, and what was missed is not made up.
        while (timer.m_nextTime <= now)
        {
            timer.m_nextTime += timer.m_period * ((now - timer.m_nextTime) / timer.m_period + 1);
        }
        insertTimer(timer);
    }
    else
    {
        timer.m_called = true;
    }
    if (!thread)
    {
        return false;  // the last callback is still running
    }
    timer.m_callTime = now;
    timer.m_thread = thread;
    thread->run(timer);
    return true;
}

CTimerThread* TimerManagerInternal::getTimerThread()
{
    CTimerThread* thread = m_idleThreads;
    if (thread)
    {
        m_idleThreads = thread->m_nextIdle;
        --m_idleCount;
    }
    else
    {
        thread = new CTimerThread(this);
        if (!thread->createThread())
        {
            m_refused = true;
            delete thread;
            return nullptr;
        }
        m_state.addThread(thread);
    }
    ++m_runningCount;
    return thread;
}

CTimerThread* TimerManagerInternal::putTimerThread(CTimerThread* pThread)
{
    ORTHA_ASSERT(pThread);
    pThread->m_nextIdle = m_idleThreads;
    m_idleThreads = pThread;
    ++m_idleCount;
    --m_runningCount;

    const int limit = m_idleLimit;
    if (limit < 1 || m_idleCount <= limit)
    {
        return nullptr;
    }
    CTimerThread* last = m_idleThreads;
    for (int i = 1; i < limit; ++i)
    {
        last = last->m_nextIdle;
    }
    CTimerThread* surplus = last->m_nextIdle;
    last->m_nextIdle = nullptr;
    m_idleCount = limit;
    return surplus;
}

void TimerManagerInternal::endThreads(CTimerThread* threads)
{
    while (threads)
    {
        CTimerThread* thread = threads;
        threads = thread->m_nextIdle;
        thread->end();
        TimerState::get().removeThread(thread);
        delete thread;
    }
}

void TimerManagerInternal::dumpTimers()
{
    CRecursiveGuard guard(m_state.mutex);
    ORTHA_LOG(levelInfo, "Timers: ( %" PRIu64 " Milli-Seconds Elapsed )\n", m_curTime);
    ORTHA_LOG(levelInfo, "            Name            NextTime RunningTime Period   Used/Timeout State\n");
    ORTHA_LOG(levelInfo, "____________________________________________________________________________\n");
    for (const TimerInternal* timer : m_timers.sorted())
    {
        const bool running = timer->m_thread != nullptr;
        ORTHA_LOG(levelInfo, "%24s %11" PRIu64 " %11" PRIu64 " %6" PRIu32 " %6d/%6" PRIu32 " %s\n", timer->m_name.copy().text,
                  timer->m_nextTime, timer->m_usedTime / 1000, timer->m_period,
                  running ? static_cast<int>(m_curTime - timer->m_callTime) : 0, timer->m_timeout, running ? "Running" : "Idle");
    }
    ORTHA_LOG(levelInfo, "\n");
}

CTimerManager::CTimerManager()
{
    ORTHA_LOG(levelTrace, "this:%p CTimerManager::CTimerManager()>>>>>>>>>\n", static_cast<void*>(this));
    m_internal = TimerManagerInternal::instance();
}

CTimerManager::~CTimerManager() = default;

CTimerManager* CTimerManager::instance()
{
    return Singleton<CTimerManager>::instance();
}

void CTimerManager::dumpTimers()
{
    m_internal->dumpTimers();
}

bool CTimerManager::limitIdlePooled(int limit)
{
    m_internal->limitIdlePooled(limit);
    return true;
}

bool CTimerManager::setRunningThreadLimit(int limit)
{
    m_internal->setRunningThreadLimit(limit);
    return true;
}

}  // namespace General::Ortha
