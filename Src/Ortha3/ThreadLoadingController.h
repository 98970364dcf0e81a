// Keeps a pair of shares for each of some threads, and two counters that advance in their ratio. Nothing is done to the threads.
#pragma once

#include <cstdint>
#include <map>

#include "ortha/ortha3/Mutex.h"
#include "ortha/ortha3/Thread.h"

#include "Src/Ortha3/Singleton.h"

namespace General::Ortha {

class CThreadLoadingController : public CThread
{
public:
    struct Load
    {
        std::int32_t m_shareA;
        std::int32_t m_shareB;
        std::int32_t m_countA = 0;
        std::int32_t m_countB = 0;
    };

    static CThreadLoadingController* instance() { return Singleton<CThreadLoadingController>::instance(); }

    /// Sets the shares of a thread, and its counters to 0. The first entry starts the controller's thread.
    void setThreadLoad(std::uint64_t key, unsigned int shareA, unsigned int shareB);
    /// Takes a thread out. With the last one the controller's thread ends.
    void clearThreadLoad(std::uint64_t key);

    /// One step of all counters, as the thread makes it every millisecond.
    void pass();
    /// A copy of an entry; shares of 0 if there is none.
    Load getThreadLoad(std::uint64_t key);

private:
    friend class Singleton<CThreadLoadingController>;

    CThreadLoadingController();
    ~CThreadLoadingController() override;

    void threadProc() override;

    CMutex m_mutex;  // not held while the thread is started, ended, or asleep
    std::map<std::uint64_t, Load> m_loads ORTHA_GUARDED_BY(m_mutex);
};

}  // namespace General::Ortha
