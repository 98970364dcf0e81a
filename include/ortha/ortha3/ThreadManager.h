// CThreadManager: the register of all threads that run the body of a CThread.
//
//     CThreadManager::instance()->registerMainThread();
//     CThreadManager::instance()->dumpThreads();                // the thread table, through the log at level 4
//
// A thread is listed from the moment its body begins to the moment it ends. The main thread is never listed; it has a row of its own in
// the table. Threads that were not started through CThread do not appear.
//
// Threads: every operation from any thread. The register's lock is not held while rows are printed.
#pragma once

#include <list>

#include "ortha/ortha3/Export.h"
#include "ortha/ortha3/FlexString.h"

namespace General::Ortha {

class ThreadManagerInternal;
template <class T>
class Singleton;

class ORTHA_API CThreadManager
{
public:
    /// One thread, as it stood when it was asked for.
    struct ThreadInfo
    {
        char name[32];               ///< terminated
        int id;                      ///< the system's thread id
        int stackSize;               ///< bytes, as given to the constructor; 0 for the system's default
        unsigned int priority : 7;   ///< 1 to 127
        unsigned int policy : 1;     ///< 1 for real-time
        unsigned int isTimeout : 1;  ///< 1 if its watchdog deadline has passed
    };

    /// The one register of the process.
    static CThreadManager* instance();

    /// Tells that the calling thread is the main thread, for the table.
    void registerMainThread();
    /// Logs the thread table at level 4: name, id, priority, "Timeout" or "Normal"; the newest thread first.
    void dumpThreads();
    /// The name of the newest thread with this id. False, and `name` untouched, if there is none.
    bool getThreadNameByID(int id, string& name);
    /// Replaces `names` by the threads whose deadline has passed, "name(id)" each, one behind the other, newest first. False if there is
    /// none.
    bool getTimeOutThreads(string& names);
    /// True if a thread with this id is listed.
    [[nodiscard]] bool hasThread(int id);
    /// Appends one entry a thread, newest first. False, and `infos` untouched, if no thread is listed.
    bool getThreadsInfo(std::list<ThreadInfo>& infos);

private:
    friend class Singleton<CThreadManager>;
    CThreadManager();
    ~CThreadManager();

    ThreadManagerInternal* m_internal;
};

}  // namespace General::Ortha
