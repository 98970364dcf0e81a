// CThread: a named thread that can be started, stopped and started again; CThreadLite: the same with a function object as its body.
//
//     class Poller : public CThread
//     {
//     public:
//         Poller() : CThread("Poller", 64, 0, 0) {}
//         ~Poller() override { destroyThread(); }               // before the members that threadProc uses are gone
//     private:
//         void threadProc() override { while (looping()) { poll(); sleep(10); } }
//     };
//
// Stopping is cooperative: destroyThread() and cancelThread() make looping() false, and threadProc returns when it sees that. While its
// body runs, a thread is listed in the CThreadManager, with its watchdog deadline if it set one.
//
// Priorities run from 1, the highest, to 127; 64 is normal. Policy 1 is real-time, which overrides the priority; any other is normal. On
// Linux they become a nice value from -15 to 19, as far as the user's privileges go.
//
// | State    | looping() | isThreadOver() | createThread        | cancelThread    | destroyThread from another thread             |
// |----------|-----------|----------------|---------------------|-----------------|-----------------------------------------------|
// | Created  | false     | true           | Running             | false           | false, "has exited!"                          |
// | Running  | true      | false          | false               | Stopping, true  | waits: Over, true                             |
// | Stopping | false     | false          | waits, then Running | false           | waits: Over, true; a second time false        |
// | Over     | false     | true           | Running             | false           | false, "has exited!" or "has been destroyed!" |
//
// A thread goes to Over when threadProc returns. Every refusal leaves a log line. destroyThread from the thread itself returns true at once
// and the state is Stopping. Each start gets a new system thread, a new id and a cleared deadline; name, priority and stack size stay.
//
// Threads: createThread, destroyThread, cancelThread, terminateThread and isTimeout from any thread on one object. The other operations
// take no lock: a reader sees the value before or after a concurrent change, of a name possibly a mixture. Construction and destruction
// must not race with use. threadProc must not throw.
#pragma once

#include "ortha/ortha3/Export.h"
#include "ortha/ortha3/Function.h"

namespace General::Ortha {

struct ThreadInternal;

class ORTHA_API CThread
{
public:
    /// Stores the arguments; nothing starts. `name` is cut to 31 characters, null becomes "Nonamed". `stackSize` is in bytes, 0 for the
    /// system's default.
    CThread(const char* name, int priority, int policy, int stackSize);
    /// Stops the thread as destroyThread does and waits for its end. A subclass whose threadProc uses its own members must call
    /// destroyThread in its own destructor: here they are gone. Must not run on the thread itself.
    virtual ~CThread();
    CThread(const CThread&) = delete;
    CThread& operator=(const CThread&) = delete;

    /// Starts the thread; first waits for the end of an earlier run that is still stopping. False, with a log line, if it is running
    /// already or the system refused.
    bool createThread();
    /// Asks the thread to stop and waits for its end, without limit. On the thread itself returns true without waiting. False, with a log
    /// line, if there was nothing to stop.
    bool destroyThread();
    /// Asks the thread to stop and returns at once. False, with a log line, if it was not running or is stopping already.
    bool cancelThread();
    /// Calls destroyThread, with the wait that this implies, then ends what is still running the hard way: on Linux the thread ends
    /// at its next system wait (sleep, input), with its C++ objects destroyed; on Windows at once, without, and its locks stay held. Called
    /// on the thread itself it does not return. True if the thread has ended or will; false if it was never started.
    bool terminateThread();

    /// True if the thread is not running: never started, or ended.
    [[nodiscard]] bool isThreadOver();
    /// True from createThread until a stop is asked for or threadProc has returned: the loop condition of every threadProc.
    [[nodiscard]] bool looping() const;
    /// The system's thread id; -1 until the body has begun. It stays after the body ended.
    [[nodiscard]] int getThreadID();

    /// The name, valid as long as the object; the text changes with setThreadName.
    [[nodiscard]] const char* getThreadName();
    /// Changes the name, also in the system's own tools, which show its first 15 characters. Null becomes "Nonamed".
    void setThreadName(const char* name);

    /// Sets the watchdog deadline `ms` milliseconds from now; 0 removes it. Nothing happens at a deadline but that isTimeout and the
    /// thread table tell it.
    void setTimeout(int ms);
    /// The same with a reading of CTime::getCurrentMilliSecond that the caller already has.
    void setTimeout(int ms, unsigned long long now);
    /// True if a deadline is set and has passed.
    [[nodiscard]] bool isTimeout();

    /// Remembers that the stack size given to the constructor is meant; nothing depends on it.
    void enableStackSize();
    /// Gives its argument back.
    int shareSocket(int socket);

    /// The calling thread's system id.
    [[nodiscard]] static int getCurrentThreadID();
    /// As setTimeout, for the calling thread. False if no CThread runs on it.
    static bool setCurrentTimeout(int ms);
    /// Sleeps `ms` milliseconds; 0 gives the processor to another thread. A negative value counts as 0.
    static void sleep(int ms);
    /// Checks a load percentage, 1 to 100; any other value leaves a log line. Nothing is throttled.
    static void load(int percent);

private:
    virtual void threadProc() = 0;

    friend struct ThreadInternal;
    ThreadInternal* m_internal;
};

class ORTHA_API CThreadLite : public CThread
{
public:
    /// As CThread. `proc` is copied, and gets this object: it runs for as long as it likes, and can test looping() on it. Nothing starts.
    CThreadLite(TFunction1<void, CThreadLite&> proc, const char* name, int priority, int policy, int stackSize);
    /// Stops the thread and waits for its end.
    ~CThreadLite() override;

private:
    void threadProc() override;

    TFunction1<void, CThreadLite&>* m_proc;
};

}  // namespace General::Ortha
