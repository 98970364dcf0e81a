// CThread and IThreadManager of the older interface: they hold and reach those of ortha3/Thread.h and ortha3/ThreadManager.h, where each
// operation is told.
//
//     class Poller : public CThread
//     {
//     public:
//         Poller() : CThread("Poller", 64, 0, 0) {}
//         ~Poller() override { destroyThread(); }               // before threadProc and the members that it uses are gone
//     private:
//         void threadProc() override { while (looping()) { poll(); General::Ortha::CThread::sleep(10); } }
//     };
//
// Threads: as the newer classes.
#pragma once

#include "ortha/ortha3/Export.h"

class ORTHA_API CThread
{
public:
    CThread(const char* name, int priority, int policy, int stackSize);
    /// Stops the thread and waits for its end. A subclass must call destroyThread() in its own destructor: here its threadProc is gone.
    virtual ~CThread();
    CThread(const CThread&) = delete;
    CThread& operator=(const CThread&) = delete;

    bool createThread();
    bool destroyThread();
    bool cancelThread();
    bool terminateThread();
    [[nodiscard]] bool isThreadOver();
    [[nodiscard]] int getThreadID();
    void setThreadName(const char* name);
    int shareSocket(int socket);
    void setTimeout(int ms);
    void setTimeout(int ms, unsigned long long now);
    [[nodiscard]] bool isTimeout();
    [[nodiscard]] bool looping() const;

    [[nodiscard]] static int getCurrentThreadID();
    static bool setCurrentTimeout(int ms);

private:
    friend class CThreadDrived;
    virtual void threadProc() = 0;

    struct Internal;
    Internal* m_internal;
};

/// Ends the calling thread, whoever started it, with the exit code 0. The objects on its stack are destroyed on Linux, and not on Windows.
/// Does not return.
[[noreturn]] ORTHA_API void exitThread();

class ORTHA_API IThreadManager
{
public:
    virtual ~IThreadManager();
    virtual void registerMainThread() = 0;
    virtual void dumpThreads() = 0;
    /// Always true, whatever the argument.
    virtual bool resv(int argument) = 0;

    /// The one object of the process.
    static IThreadManager* instance();
};
