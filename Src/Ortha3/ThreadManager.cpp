#include "ortha/ortha3/ThreadManager.h"

#include <cstdio>
#include <cstring>

#include "ortha/ortha3/Time.h"

#include "Src/Ortha3/Log.h"
#include "Src/Ortha3/Singleton.h"
#include "Src/Ortha3/ThreadInternal.h"
#include "Src/Ortha3/ThreadManagerInternal.h"

namespace General::Ortha {

void ThreadManagerInternal::Registry::addThread(ThreadInternal* thread)
{
    CGuard guard(mutex);
    thread->m_prev = nullptr;
    thread->m_next = head;
    if (head)
    {
        head->m_prev = thread;
    }
    head = thread;
}

void ThreadManagerInternal::Registry::removeThread(ThreadInternal* thread)
{
    CGuard guard(mutex);
    if (head != thread && !thread->m_prev)
    {
        return;  // it was terminated before it came into the list
    }
    (thread->m_prev ? thread->m_prev->m_next : head) = thread->m_next;
    if (thread->m_next)
    {
        thread->m_next->m_prev = thread->m_prev;
    }
    thread->m_prev = thread->m_next = nullptr;
}

ThreadInternal* ThreadManagerInternal::Registry::getThread(int id)
{
    CGuard guard(mutex);
    ThreadInternal* thread = head;
    while (thread && thread->m_id != id)
    {
        thread = thread->m_next;
    }
    return thread;
}

ThreadManagerInternal::ThreadManagerInternal()
    : m_registry([]() -> Registry& {
          static Registry& registry = *new Registry;
          return registry;
      }())
{
}

ThreadManagerInternal* ThreadManagerInternal::instance()
{
    return Singleton<ThreadManagerInternal>::instance();
}

void ThreadManagerInternal::registerMainThread()
{
    m_mainThreadID = CThread::getCurrentThreadID();
}

void ThreadManagerInternal::dumpThreads()
{
    ORTHA_LOG(levelInfo, "Threads:\n");
    ORTHA_LOG(levelInfo, "               Name            TID  Prior State\n");
    ORTHA_LOG(levelInfo, "_______________________________________________________\n");
    ORTHA_LOG(levelInfo, "%24s   %8d  %3d  %s\n", "Main", m_mainThreadID.load(), 64, "Normal");
    std::list<CThreadManager::ThreadInfo> infos;
    getThreadsInfo(infos);
    for (const CThreadManager::ThreadInfo& info : infos)
    {
        ORTHA_LOG(levelInfo, "%24s   %8u  %3u  %s\n", info.name, static_cast<unsigned int>(info.id),
                  static_cast<unsigned int>(info.priority), info.isTimeout ? "Timeout" : "Normal");
    }
    ORTHA_LOG(levelInfo, "\n");
}

bool ThreadManagerInternal::getThreadNameByID(int id, string& name)
{
    CGuard guard(m_registry.mutex);
    for (ThreadInternal* thread = m_registry.head; thread; thread = thread->m_next)
    {
        if (thread->m_id == id)
        {
            name = thread->m_name.copy().text;
            return true;
        }
    }
    return false;
}

bool ThreadManagerInternal::getTimeOutThreads(string& names)
{
    CGuard guard(m_registry.mutex);
    names.resize(0);
    const unsigned long long now = CTime::getCurrentMilliSecond();
    for (ThreadInternal* thread = m_registry.head; thread; thread = thread->m_next)
    {
        CGuard threadGuard(thread->m_mutex);
        if (thread->timedOut(now))
        {
            char id[16];
            std::snprintf(id, sizeof(id), "(%d)", thread->m_id.load());
            names.append(thread->m_name.copy().text).append(id);
        }
    }
    return !names.empty();
}

bool ThreadManagerInternal::hasThread(int id)
{
    return m_registry.getThread(id) != nullptr;
}

bool ThreadManagerInternal::getThreadsInfo(std::list<CThreadManager::ThreadInfo>& infos)
{
    CGuard guard(m_registry.mutex);
    for (ThreadInternal* thread = m_registry.head; thread; thread = thread->m_next)
    {
        CThreadManager::ThreadInfo& info = infos.emplace_back();
        std::memcpy(info.name, thread->m_name.copy().text, sizeof(info.name));
        info.id = thread->m_id;
        info.stackSize = thread->m_stackSize;
        info.priority = static_cast<unsigned int>(thread->m_priority) & 127u;
        info.policy = static_cast<unsigned int>(thread->m_policy) & 1u;
        info.isTimeout = thread->m_deadline != 0 && thread->timedOut(CTime::getCurrentMilliSecond());
    }
    return m_registry.head != nullptr;
}

CThreadManager::CThreadManager() : m_internal(ThreadManagerInternal::instance()) {}

CThreadManager::~CThreadManager() = default;

CThreadManager* CThreadManager::instance()
{
    return Singleton<CThreadManager>::instance();
}

void CThreadManager::registerMainThread()
{
    m_internal->registerMainThread();
}

void CThreadManager::dumpThreads()
{
    m_internal->dumpThreads();
}

bool CThreadManager::getThreadNameByID(int id, string& name)
{
    return m_internal->getThreadNameByID(id, name);
}

bool CThreadManager::getTimeOutThreads(string& names)
{
    return m_internal->getTimeOutThreads(names);
}

bool CThreadManager::hasThread(int id)
{
    return m_internal->hasThread(id);
}

bool CThreadManager::getThreadsInfo(std::list<ThreadInfo>& infos)
{
    return m_internal->getThreadsInfo(infos);
}

}  // namespace General::Ortha
