// The register of threads behind CThreadManager.
#pragma once

#include <atomic>
#include <list>

#include "ortha/ortha3/FlexString.h"
#include "ortha/ortha3/Mutex.h"
#include "ortha/ortha3/ThreadManager.h"

namespace General::Ortha {

struct ThreadInternal;

class ThreadManagerInternal
{
public:
    // The list outlives the manager: threads may end, and thread objects may be destroyed, while or after the exit handlers run.
    struct Registry
    {
        void addThread(ThreadInternal* thread);
        void removeThread(ThreadInternal* thread);
        /// The newest thread with this id, or null. The lock is released on return, so the result is safe to use on that very thread only.
        ThreadInternal* getThread(int id);

        CMutex mutex;                                            // taken before a thread's own m_mutex, never after it
        ThreadInternal* head ORTHA_GUARDED_BY(mutex) = nullptr;  // newest first; entries are linked while their body runs
    };

    static ThreadManagerInternal* instance();

    [[nodiscard]] Registry& registry() { return m_registry; }

    void registerMainThread();
    void dumpThreads();
    bool getThreadNameByID(int id, string& name);
    bool getTimeOutThreads(string& names);
    bool hasThread(int id);
    bool getThreadsInfo(std::list<CThreadManager::ThreadInfo>& infos);

private:
    friend class Singleton<ThreadManagerInternal>;
    ThreadManagerInternal();

    Registry& m_registry;
    std::atomic<int> m_mainThreadID{-1};  // -1 until registerMainThread
};

}  // namespace General::Ortha
