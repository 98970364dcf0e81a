#include "ortha/Timer.h"

#include "ortha/ortha3/Timer.h"
#include "ortha/ortha3/TimerManager.h"

#include "Src/Ortha3/Singleton.h"

struct CTimer::Internal
{
    General::Ortha::CTimer timer;
};

CTimer::CTimer(const char* name) : m_internal(new Internal{General::Ortha::CTimer(name)}) {}

CTimer::~CTimer()
{
    delete m_internal;
}

bool CTimer::start(TFunction1<void, unsigned long> proc, unsigned int delay, unsigned int period, unsigned long param, unsigned int timeout)
{
    return m_internal->timer.start(General::Ortha::TFunction1<void, unsigned long>(proc), delay, period, param, timeout);
}

bool CTimer::stop(bool callNow)
{
    return m_internal->timer.stop(callNow);
}

bool CTimer::stopAndWait()
{
    return m_internal->timer.stopAndWait();
}

void CTimer::setPeriodTime(unsigned int period)
{
    m_internal->timer.setPeriodTime(period);
}

const char* CTimer::getName()
{
    return m_internal->timer.getName();
}

void CTimer::setName(const char* name)
{
    m_internal->timer.setName(name);
}

bool CTimer::isStarted()
{
    return m_internal->timer.isStarted();
}

bool CTimer::isCalled()
{
    return m_internal->timer.isCalled();
}

bool CTimer::isRunning()
{
    return m_internal->timer.isRunning();
}

namespace {

class CTimerManager : public ITimerManager
{
public:
    void dumpTimers() override { General::Ortha::CTimerManager::instance()->dumpTimers(); }
};

}  // namespace

ITimerManager::~ITimerManager() = default;

ITimerManager* ITimerManager::instance()
{
    return General::Ortha::Singleton<CTimerManager>::instance();
}
