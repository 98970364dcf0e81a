#include "Src/Ortha3/TimerThread.h"

#include <algorithm>
#include <climits>

#include "ortha/ortha3/Time.h"

#include "Src/Ortha3/ThreadInternal.h"
#include "Src/Ortha3/TimerManagerInternal.h"
#include "Src/Platform/NativeThread.h"

namespace General::Ortha {

namespace {

constexpr const char* idleName = "[Pooled]";
constexpr unsigned long long notMeasured = ~0ull;

}  // namespace

CTimerThread::CTimerThread(TimerManagerInternal* manager) : CThread(idleName, 64, 0, 0), m_manager(manager) {}

CTimerThread::~CTimerThread()
{
    // Quieter than destroyThread, which warns of a thread that has just ended by itself.
    ThreadInternal::of(*this).waitForEnd();
}

void CTimerThread::run(TimerInternal& timer)
{
    // The thread itself shows the name to the system: from here that would cost more than the whole dispatch.
    ThreadInternal::of(*this).m_name.set(timer.m_name.copy().text);
    setTimeout(static_cast<int>(std::min<std::uint32_t>(timer.m_timeout, INT_MAX)));
    m_procUlong = timer.m_procUlong;
    m_procPtr = timer.m_procPtr;
    m_param = timer.m_param;
    m_timer = &timer;
    m_semaphore.post();
}

void CTimerThread::end()
{
    cancelThread();
    m_exit = true;
    m_semaphore.post();
}

void CTimerThread::threadProc()
{
    while (looping())
    {
        m_semaphore.pend();
        if (m_exit)
        {
            break;
        }
        Platform::setSystemThreadName(getThreadID(), getThreadName());
        const unsigned long long begin = isMeasured() ? CTime::getCurrentMicroSecond() : notMeasured;
        if (!m_procUlong.empty())
        {
            m_procUlong(static_cast<std::uint32_t>(m_param));
        }
        if (!m_procPtr.empty())
        {
            m_procPtr(reinterpret_cast<void*>(m_param));
        }
        setTimeout(0);
        setThreadName(idleName);
        if (!finish(begin))
        {
            break;
        }
    }
}

bool CTimerThread::isMeasured()
{
    CRecursiveGuard guard(TimerState::get().mutex);
    return m_timer && m_timer->m_statEnabled;
}

bool CTimerThread::finish(unsigned long long begin)
{
    CTimerThread* surplus = nullptr;
    {
        CRecursiveGuard guard(TimerState::get().mutex);
        if (m_timer)
        {
            if (begin != notMeasured && m_timer->m_statEnabled)
            {
                m_timer->m_usedTime += CTime::getCurrentMicroSecond() - begin;
            }
            m_timer->m_thread = nullptr;
            m_timer = nullptr;
        }
        if (!m_manager)
        {
            return false;
        }
        surplus = m_manager->putTimerThread(this);
    }
    TimerManagerInternal::endThreads(surplus);
    return true;
}

}  // namespace General::Ortha
