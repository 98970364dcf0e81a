// The record behind a CThread.
#pragma once

#include <atomic>
#include <cstdint>

#include "ortha/ortha3/Mutex.h"
#include "ortha/ortha3/Thread.h"

#include "Src/Ortha3/SharedName.h"
#include "Src/Ortha3/ThreadManagerInternal.h"
#include "Src/Platform/NativeThread.h"

namespace General::Ortha {

struct ThreadInternal
{
    ThreadInternal(CThread* owner, const char* name, int priority, int policy, int stackSize);

    /// The record of a thread object.
    static ThreadInternal& of(CThread& thread) { return *thread.m_internal; }

    /// Starts the thread. 0, `stillRunning`, or the system's error code.
    int start();
    static constexpr int stillRunning = -1;

    /// Waits until the body has ended. Somebody has told it to.
    void waitForEnd();
    /// This thread is the calling one.
    [[nodiscard]] bool isCurrent() const;

    /// What a new thread runs; `record` is its ThreadInternal.
    static void body(void* record);
    /// What follows it, also if the thread is terminated.
    static void ended(void* record);

    /// The platform's priority for this thread's policy and priority.
    [[nodiscard]] int platformPriority() const;

    /// A deadline is set and lies before `now`.
    [[nodiscard]] bool timedOut(std::uint64_t now) const;
    void setDeadline(int ms, std::uint64_t now);

    const int m_policy;     // 1 is real-time
    const int m_priority;   // 1 to 127
    const int m_stackSize;  // bytes, 0 for the default
    SharedName m_name;
    CThread* const m_owner;
    ThreadManagerInternal::Registry& m_registry;
    bool m_stackSizeEnabled = false;

    // Linked while the body runs, under the registry's lock.
    ThreadInternal* m_prev = nullptr;
    ThreadInternal* m_next = nullptr;

    CMutex m_mutex;  // the innermost lock; held through a start, so that the body begins when all is set
    Platform::NativeThread m_handle ORTHA_GUARDED_BY(m_mutex);  // stays after the end, until the next start

    // Changed under m_mutex while a start or stop is under way, read without it.
    std::atomic<int> m_running{0};          // 1 from a successful start to the body's last step
    std::atomic<int> m_id{-1};              // -1 until the body has begun
    std::atomic<bool> m_loop{false};        // what looping() answers
    std::atomic<bool> m_destroying{false};  // destroyThread was called since the last start
    std::atomic<bool> m_orphaned{false};    // the object was destroyed by its own thread: the body frees the record

    std::atomic<std::uint64_t> m_deadline{0};  // in the milliseconds of CTime; 0 for none
};

}  // namespace General::Ortha
