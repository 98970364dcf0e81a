// The system's threads.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace General::Ortha::Platform {

#ifdef _WIN32
/// The calling thread's system id, positive.
int currentThreadId();
#else
namespace Detail {
/// The calling thread's id once it has been read, else 0.
extern constinit thread_local int cachedThreadId;
int readThreadId();
}  // namespace Detail

/// The calling thread's system id, positive. Read once a thread, and again in the child of a fork.
inline int currentThreadId()
{
    return Detail::cachedThreadId != 0 ? Detail::cachedThreadId : Detail::readThreadId();
}
#endif

/// Sleeps; 0 gives the processor to another thread that can run.
void sleepMilliseconds(std::uint32_t milliseconds);

/// Ends the calling thread, where the system can with the objects on its stack destroyed.
[[noreturn]] void exitCurrentThread();

/// Lets the system's tools show a name, cut to what they take (15 bytes on Linux), for a thread of this process. A thread that has ended is
/// passed over.
void setSystemThreadName(int threadId, const char* name);

/// A handle on a thread. Copies share it; the thread goes on when the last copy is gone. Any thread may use a handle; one object, one
/// thread at a time.
class NativeThread
{
public:
    using Routine = void (*)(void* argument);
    static constexpr unsigned int stillActive = 259;

    /// Holds no thread.
    NativeThread() = default;

    /// Starts a thread that runs `routine`, and knows its id before this returns. `ended` is called once behind it, also if the thread is
    /// terminated: on the thread itself, or, where that is gone at once, on the one that terminated it. `stackSize` is in bytes, 0 for the
    /// default, and is raised to what the system needs at least. 0, or the system's error code, and then no thread is held. A former thread
    /// is let go.
    int start(std::size_t stackSize, Routine routine, Routine ended, void* argument);

    /// True if a thread is held, running or ended.
    [[nodiscard]] bool valid() const { return m_record != nullptr; }
    /// Lets the thread go.
    void close() { m_record.reset(); }

    /// Waits for the thread's end; true if it has ended within the time.
    [[nodiscard]] bool waitForEnd(std::uint32_t milliseconds) const;
    /// `stillActive` until the thread has ended, then 0. Without a thread 0.
    [[nodiscard]] unsigned int exitCode() const;
    /// Sets one of the seven priorities 15, 2, 1, 0, -1, -2, -15. 0, or the system's error code; a refusal for lack of privilege counts as
    /// success.
    int setPriority(int priority) const;
    /// Ends the thread: where the system can, at its next wait and with the objects on its stack destroyed; else at once, and what it holds
    /// stays held. On the thread itself at once, and does not return. True if the thread has ended or the request was taken.
    bool terminate() const;

private:
#ifdef _WIN32
    friend void exitCurrentThread();
    static void endCurrent();
#endif

    struct Record;
    std::shared_ptr<Record> m_record;
};

}  // namespace General::Ortha::Platform
