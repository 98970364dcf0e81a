#include "ortha/ortha3/Thread.h"

#include <algorithm>

#include "ortha/ortha3/Time.h"

#include "Src/Ortha3/Log.h"
#include "Src/Ortha3/ThreadInternal.h"

namespace General::Ortha {

namespace {

constexpr const char* unnamed = "Nonamed";
constexpr int policyRealTime = 1;

}  // namespace

ThreadInternal::ThreadInternal(CThread* owner, const char* name, int priority, int policy, int stackSize)
    : m_policy(policy),
      m_priority(priority),
      m_stackSize(stackSize),
      m_name(name ? name : unnamed),
      m_owner(owner),
      m_registry(ThreadManagerInternal::instance()->registry())
{
}

int ThreadInternal::platformPriority() const
{
    const long long value = m_policy == policyRealTime ? 15 : 15 - ((m_priority - 1LL) * 30) / 126;
    if (value >= 15)
    {
        return 15;
    }
    if (value <= -15)
    {
        return -15;
    }
    return value >= 2 ? 2 : value <= -2 ? -2 : static_cast<int>(value);
}

bool ThreadInternal::timedOut(std::uint64_t now) const
{
    const std::uint64_t deadline = m_deadline.load(std::memory_order_relaxed);
    return deadline != 0 && deadline < now;
}

void ThreadInternal::setDeadline(int ms, std::uint64_t now)
{
    m_deadline.store(ms != 0 ? now + static_cast<std::uint64_t>(static_cast<std::int64_t>(ms)) : 0, std::memory_order_relaxed);
}

void ThreadInternal::body(void* record)
{
    ThreadInternal& thread = *static_cast<ThreadInternal*>(record);
    {
        CGuard guard(thread.m_mutex);
        thread.m_running = 1;
        thread.m_id = CThread::getCurrentThreadID();
    }
    Platform::setSystemThreadName(thread.m_id, thread.m_name.copy().text);
    thread.m_registry.addThread(&thread);
    ORTHA_LOG(levelTrace, "ThreadBody Enter name:%s, id:%d, prior:%s%d, stack:%p\n", thread.m_name.copy().text, thread.m_id.load(),
              thread.m_policy == policyRealTime ? "R" : "N", thread.m_priority, static_cast<const void*>(&record));
    thread.m_owner->threadProc();
    ORTHA_LOG(levelTrace, "ThreadBody leave name:%s, id:%d \n", thread.m_name.copy().text, thread.m_id.load());
}

void ThreadInternal::ended(void* record)
{
    ThreadInternal& thread = *static_cast<ThreadInternal*>(record);
    thread.m_registry.removeThread(&thread);
    const bool orphaned = thread.m_orphaned;
    thread.m_loop = false;
    thread.m_running = 0;
    // From here on the object and the record may be gone.
    if (orphaned)
    {
        delete &thread;
    }
}

CThread::CThread(const char* name, int priority, int policy, int stackSize)
    : m_internal(new ThreadInternal(this, name, priority, policy, stackSize))
{
}

CThread::~CThread()
{
    bool loop;
    {
        CGuard guard(m_internal->m_mutex);
        loop = m_internal->m_loop;
    }
    if (loop)
    {
        destroyThread();
    }
    if (m_internal->isCurrent())
    {
        // The thread itself ends the process, or its own object, from within its body: it would wait for itself.
        m_internal->m_orphaned = true;
        return;
    }
    m_internal->waitForEnd();
    delete m_internal;
}

bool ThreadInternal::isCurrent() const
{
    return m_running != 0 && m_id == CThread::getCurrentThreadID();
}

void ThreadInternal::waitForEnd()
{
    Platform::NativeThread handle;
    {
        CGuard guard(m_mutex);
        handle = m_handle;
    }
    for (unsigned long long times = 1; m_running != 0 && handle.exitCode() == Platform::NativeThread::stillActive; ++times)
    {
        CThread::sleep(1);
        if (times % 100 == 0)
        {
            ORTHA_LOG(levelDebug, "this:%p CThread::~CThread:%s wait for thread over, times:%llu\n", static_cast<void*>(m_owner),
                      m_name.copy().text, times);
        }
    }
}

bool CThread::createThread()
{
    const int error = m_internal->start();
    if (error == ThreadInternal::stillRunning)
    {
        ORTHA_LOG(levelWarn, "this:%p CThread::CreateThread() thread:%s is still running!\n", static_cast<void*>(this),
                  m_internal->m_name.copy().text);
    }
    else if (error != 0)
    {
        ORTHA_LOG(levelError, "this:%p create thread failed, errno:%d\n", static_cast<void*>(this), error);
    }
    return error == 0;
}

int ThreadInternal::start()
{
    CGuard guard(m_mutex);
    if (m_loop)
    {
        return stillRunning;
    }
    m_handle.close();
    while (m_running != 0 && !m_loop)
    {
        m_mutex.leave();
        CThread::sleep(1);
        m_mutex.enter();
    }
    if (m_loop)
    {
        return stillRunning;
    }

    m_loop = true;
    m_id = -1;
    m_destroying = false;
    m_deadline = 0;
    int error = m_handle.start(static_cast<std::size_t>(std::max(m_stackSize, 0)), &ThreadInternal::body, &ThreadInternal::ended, this);
    if (error == 0)
    {
        error = m_handle.setPriority(platformPriority());
    }
    if (error != 0)
    {
        // A thread that has started but did not get its priority runs its body, which sees looping() false.
        m_loop = false;
        return error;
    }
    m_running = m_loop ? 1 : 0;
    return 0;
}

bool CThread::destroyThread()
{
    ThreadInternal& thread = *m_internal;
    const char* refusal = nullptr;
    Platform::NativeThread handle;
    {
        CGuard guard(thread.m_mutex);
        if (thread.m_destroying)
        {
            refusal = "has been destroyed!";
        }
        else if (isThreadOver())
        {
            refusal = "has exited!";
        }
        else
        {
            thread.m_loop = false;
            thread.m_destroying = true;
            handle = thread.m_handle;
        }
    }
    if (refusal)
    {
        ORTHA_LOG(levelWarn, "this:%p CThread::DestroyThread() thread:%s %s\n", static_cast<void*>(this), thread.m_name.copy().text,
                  refusal);
        return false;
    }
    if (!handle.valid())
    {
        ORTHA_LOG(levelWarn, "this:%p CThread::DestroyThread() thread handle has been invalid!\n", static_cast<void*>(this));
        return false;
    }
    if (thread.m_id == getCurrentThreadID())
    {
        return true;
    }
    constexpr std::uint32_t waitStep = 50;
    while (thread.m_running != 0 && !handle.waitForEnd(waitStep) && thread.m_destroying)
    {
    }
    return true;
}

bool CThread::cancelThread()
{
    bool looped;
    {
        CGuard guard(m_internal->m_mutex);
        looped = m_internal->m_loop.exchange(false);
    }
    if (!looped)
    {
        ORTHA_LOG(levelWarn, "this:%p CThread::cancelThread() thread:%s not exist!\n", static_cast<void*>(this),
                  m_internal->m_name.copy().text);
    }
    return looped;
}

bool CThread::terminateThread()
{
    destroyThread();
    Platform::NativeThread handle;
    {
        CGuard guard(m_internal->m_mutex);
        handle = m_internal->m_handle;
    }
    if (!handle.valid())
    {
        ORTHA_LOG(levelError, "this:%p handle is null, can't be terminated\n", static_cast<void*>(this));
        return false;
    }
    return handle.terminate();
}

bool CThread::isThreadOver()
{
    return m_internal->m_running == 0 && !m_internal->m_loop;
}

bool CThread::looping() const
{
    return m_internal->m_loop.load(std::memory_order_relaxed);
}

int CThread::getThreadID()
{
    return m_internal->m_id.load(std::memory_order_relaxed);
}

const char* CThread::getThreadName()
{
    return m_internal->m_name.text();
}

void CThread::setThreadName(const char* name)
{
    m_internal->m_name.set(name ? name : unnamed);
    const int id = getThreadID();
    if (id != -1 && m_internal->m_running != 0)
    {
        Platform::setSystemThreadName(id, m_internal->m_name.copy().text);
    }
}

void CThread::setTimeout(int ms)
{
    setTimeout(ms, ms != 0 ? CTime::getCurrentMilliSecond() : 0);
}

void CThread::setTimeout(int ms, unsigned long long now)
{
    m_internal->setDeadline(ms, now);
}

bool CThread::isTimeout()
{
    CGuard guard(m_internal->m_mutex);
    return m_internal->timedOut(CTime::getCurrentMilliSecond());
}

void CThread::enableStackSize()
{
    m_internal->m_stackSizeEnabled = true;
}

int CThread::shareSocket(int socket)
{
    return socket;
}

int CThread::getCurrentThreadID()
{
    return Platform::currentThreadId();
}

bool CThread::setCurrentTimeout(int ms)
{
    ThreadInternal* thread = ThreadManagerInternal::instance()->registry().getThread(getCurrentThreadID());
    if (!thread)
    {
        return false;
    }
    CGuard guard(thread->m_mutex);
    thread->setDeadline(ms, CTime::getCurrentMilliSecond());
    return true;
}

void CThread::sleep(int ms)
{
    Platform::sleepMilliseconds(static_cast<std::uint32_t>(ms > 0 ? ms : 0));
}

void CThread::load(int percent)
{
    if (percent < 1 || percent > 100)
    {
        ORTHA_LOG(levelError, "thread load percent:%d is invalid!\n", percent);
    }
}

CThreadLite::CThreadLite(TFunction1<void, CThreadLite&> proc, const char* name, int priority, int policy, int stackSize)
    : CThread(name, priority, policy, stackSize), m_proc(new TFunction1<void, CThreadLite&>(proc))
{
}

CThreadLite::~CThreadLite()
{
    if (!isThreadOver())
    {
        destroyThread();
    }
    ThreadInternal& thread = ThreadInternal::of(*this);
    if (!thread.isCurrent())
    {
        thread.waitForEnd();  // somebody else may have stopped it, without a wait
    }
    delete m_proc;
}

void CThreadLite::threadProc()
{
    (*m_proc)(*this);
}

}  // namespace General::Ortha
