#include "ortha/ortha3/Timer.h"

#include "ortha/ortha3/Assert.h"
#include "ortha/ortha3/TimerManager.h"

#include "Src/Ortha3/Log.h"
#include "Src/Ortha3/TimerInternal.h"
#include "Src/Ortha3/TimerManagerInternal.h"

namespace General::Ortha {

namespace {

// Both overloads of start, once the record has its callback and argument. The caller holds the timer lock.
bool arm(TimerManagerInternal& manager, TimerInternal& timer, unsigned int delay, unsigned int period, unsigned int timeout)
{
    if (timer.m_started)
    {
        manager.removeTimer(timer);
    }
    timer.m_nextTime = manager.currentTime() + delay;
    timer.m_period = period;
    timer.m_timeout = timeout;
    timer.m_called = false;
    timer.m_statEnabled = false;
    manager.insertTimer(timer);
    return delay != 0 || manager.dispatch(timer, false);
}

}  // namespace

CTimer::CTimer(const char* name) : m_internal(new TimerInternal(name))
{
    if (!CTimerManager::instance())
    {
        ORTHA_LOG(levelFatal, "CTimerManager::instance() is null\n");
        ORTHA_ASSERT(0);
    }
}

CTimer::~CTimer()
{
    stopAndWait();
    TimerState& state = TimerState::get();
    CRecursiveGuard guard(state.mutex);
    if (CTimerThread* thread = m_internal->m_thread)
    {
        thread->m_timer = nullptr;  // the process ends, or the timer is destroyed, in its own callback
    }
    delete m_internal;
}

bool CTimer::start(TFunction1<void, unsigned long> proc, unsigned int delay, unsigned int period, unsigned long param, unsigned int timeout)
{
    TimerState& state = TimerState::get();
    CRecursiveGuard guard(state.mutex);
    if (!state.manager)
    {
        return false;
    }
    m_internal->m_procUlong = proc;
    m_internal->m_procPtr = {};
    m_internal->m_param = param;
    return arm(*state.manager, *m_internal, delay, period, timeout);
}

bool CTimer::start(TFunction1<void, void*> proc, unsigned int delay, unsigned int period, void* param, unsigned int timeout)
{
    TimerState& state = TimerState::get();
    CRecursiveGuard guard(state.mutex);
    if (!state.manager)
    {
        return false;
    }
    m_internal->m_procUlong = {};
    m_internal->m_procPtr = proc;
    m_internal->m_param = reinterpret_cast<std::uintptr_t>(param);
    return arm(*state.manager, *m_internal, delay, period, timeout);
}

bool CTimer::stop(bool callNow)
{
    TimerState& state = TimerState::get();
    CRecursiveGuard guard(state.mutex);
    if (!state.manager || !m_internal->m_started)
    {
        return false;
    }
    state.manager->removeTimer(*m_internal);
    if (m_internal->m_period == 0 && callNow)
    {
        return state.manager->dispatch(*m_internal, true);
    }
    return true;
}

bool CTimer::stopAndWait()
{
    constexpr int pause = 10;
    constexpr unsigned int passesALine = 500;
    stop(false);
    TimerState& state = TimerState::get();
    CRecursiveGuard guard(state.mutex);
    for (unsigned int pass = 0; CTimerThread* thread = m_internal->m_thread; ++pass)
    {
        if (thread->getThreadID() == CThread::getCurrentThreadID())
        {
            break;
        }
        state.mutex.leave();
        CThread::sleep(pause);
        state.mutex.enter();
        if (pass % passesALine == 0)
        {
            ORTHA_LOG(levelInfo, "this:%p CTimer::Stop Timer:%s wait callback exit!\n", static_cast<void*>(this),
                      m_internal->m_name.copy().text);
        }
    }
    return true;
}

void CTimer::setPeriodTime(unsigned int period)
{
    TimerState& state = TimerState::get();
    CRecursiveGuard guard(state.mutex);
    const bool started = m_internal->m_started;
    if (started)
    {
        state.manager->removeTimer(*m_internal);
    }
    const std::uint64_t moved = m_internal->m_nextTime + period;
    m_internal->m_nextTime = moved > m_internal->m_period ? moved - m_internal->m_period : 0;
    m_internal->m_period = period;
    if (started)
    {
        state.manager->insertTimer(*m_internal);
    }
}

const char* CTimer::getName()
{
    return m_internal->m_name.text();
}

void CTimer::setName(const char* name)
{
    m_internal->m_name.set(name);
}

bool CTimer::isStarted()
{
    return m_internal->m_started;
}

bool CTimer::isCalled()
{
    return m_internal->m_called;
}

bool CTimer::isRunning()
{
    return m_internal->m_thread != nullptr;
}

void CTimer::enableStat(bool enable)
{
    m_internal->m_statEnabled = enable;
}

}  // namespace General::Ortha
