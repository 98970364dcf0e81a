#include "ortha/Thread.h"

#include "ortha/ortha3/Assert.h"
#include "ortha/ortha3/PrintLog.h"
#include "ortha/ortha3/Thread.h"
#include "ortha/ortha3/ThreadManager.h"

#include "Src/Ortha3/Singleton.h"
#include "Src/Platform/NativeThread.h"

class CThreadDrived : public General::Ortha::CThread
{
public:
    CThreadDrived(::CThread* owner, const char* name, int priority, int policy, int stackSize)
        : General::Ortha::CThread(name, priority, policy, stackSize), m_owner(owner)
    {
        ORTHA_ASSERT(m_owner != NULL);
    }

private:
    void threadProc() override { m_owner->threadProc(); }

    ::CThread* const m_owner;
};

struct CThread::Internal
{
    CThreadDrived* m_thread;
};

CThread::CThread(const char* name, int priority, int policy, int stackSize)
    : m_internal(new Internal{new CThreadDrived(this, name, priority, policy, stackSize)})
{
}

CThread::~CThread()
{
    delete m_internal->m_thread;
    delete m_internal;
}

bool CThread::createThread()
{
    return m_internal->m_thread->createThread();
}

bool CThread::destroyThread()
{
    return m_internal->m_thread->destroyThread();
}

bool CThread::cancelThread()
{
    return m_internal->m_thread->cancelThread();
}

bool CThread::terminateThread()
{
    return m_internal->m_thread->terminateThread();
}

bool CThread::isThreadOver()
{
    return m_internal->m_thread->isThreadOver();
}

int CThread::getThreadID()
{
    return m_internal->m_thread->getThreadID();
}

void CThread::setThreadName(const char* name)
{
    m_internal->m_thread->setThreadName(name);
}

int CThread::shareSocket(int socket)
{
    return m_internal->m_thread->shareSocket(socket);
}

void CThread::setTimeout(int ms)
{
    m_internal->m_thread->setTimeout(ms);
}

void CThread::setTimeout(int ms, unsigned long long now)
{
    m_internal->m_thread->setTimeout(ms, now);
}

bool CThread::isTimeout()
{
    return m_internal->m_thread->isTimeout();
}

bool CThread::looping() const
{
    return m_internal->m_thread->looping();
}

int CThread::getCurrentThreadID()
{
    return General::Ortha::CThread::getCurrentThreadID();
}

bool CThread::setCurrentTimeout(int ms)
{
    return General::Ortha::CThread::setCurrentTimeout(ms);
}

void exitThread()
{
    General::Ortha::Platform::exitCurrentThread();
}

namespace {

class CThreadManager : public IThreadManager
{
public:
    void onCreated() { logTrace("CThreadManager::CThreadManager()>>>>>>>>>\n"); }

    void registerMainThread() override { General::Ortha::CThreadManager::instance()->registerMainThread(); }
    void dumpThreads() override { General::Ortha::CThreadManager::instance()->dumpThreads(); }
    bool resv(int) override { return true; }
};

}  // namespace

IThreadManager::~IThreadManager() = default;

IThreadManager* IThreadManager::instance()
{
    return General::Ortha::Singleton<CThreadManager>::instance();
}
