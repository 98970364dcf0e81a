// CMutex and CRecursiveMutex: mutual exclusion between threads; CGuard and CRecursiveGuard: holding one for a block.
//
//     CMutex mutex;
//     {
//         CGuard guard(mutex);                // entered here
//         ...
//     }                                       // left here, on every way out
//
// Both locks are re-entrant: their owner may enter again, and gives the lock up with the same number of leaves. A
// CRecursiveMutex keeps its own count, so that a nested enter costs no more than an addition; a CMutex can be tried.
//
// Threads: every operation may be called from any thread on one object. Construction and destruction must not race with use.
// Neither lock is fair: a thread that comes while another one is being woken may go first.
#pragma once

#include "ortha/ortha3/Export.h"

namespace General::Ortha {

namespace Platform {
class CriticalSection;
}

class ORTHA_CAPABILITY("mutex") ORTHA_API CMutex
{
public:
    CMutex();
    ~CMutex();
    CMutex(const CMutex&) = delete;
    CMutex& operator=(const CMutex&) = delete;

    /// Waits until the calling thread owns the mutex. Always true.
    bool enter() ORTHA_ACQUIRE();
    /// Takes the mutex if no other thread owns it, and never waits. False if another thread owns it.
    [[nodiscard]] bool tryEnter() ORTHA_TRY_ACQUIRE(true);
    /// Gives up one enter. Always true. Precondition: the calling thread owns the mutex; nothing checks this.
    bool leave() ORTHA_RELEASE();

private:
    Platform::CriticalSection* m_internal;
};

class ORTHA_CAPABILITY("mutex") ORTHA_API CRecursiveMutex
{
public:
    CRecursiveMutex();
    ~CRecursiveMutex();
    CRecursiveMutex(const CRecursiveMutex&) = delete;
    CRecursiveMutex& operator=(const CRecursiveMutex&) = delete;

    /// Waits until the calling thread owns the mutex, and counts the enter. Always true.
    bool enter() ORTHA_ACQUIRE();
    /// Gives up one enter; the last one frees the mutex. Always true. Precondition: the calling thread owns the mutex; nothing checks this.
    bool leave() ORTHA_RELEASE();

private:
    struct Internal;
    Internal* m_internal;
};

/// Holds a CMutex from its construction to its destruction.
class ORTHA_SCOPED_CAPABILITY CGuard
{
public:
    explicit CGuard(CMutex& mutex) ORTHA_ACQUIRE(mutex) : m_mutex(mutex) { m_mutex.enter(); }
    ~CGuard() ORTHA_RELEASE() { m_mutex.leave(); }
    CGuard(const CGuard&) = delete;
    CGuard& operator=(const CGuard&) = delete;

private:
    CMutex& m_mutex;
};

/// Holds a CRecursiveMutex from its construction to its destruction.
class ORTHA_SCOPED_CAPABILITY CRecursiveGuard
{
public:
    explicit CRecursiveGuard(CRecursiveMutex& mutex) ORTHA_ACQUIRE(mutex) : m_mutex(mutex) { m_mutex.enter(); }
    ~CRecursiveGuard() ORTHA_RELEASE() { m_mutex.leave(); }
    CRecursiveGuard(const CRecursiveGuard&) = delete;
    CRecursiveGuard& operator=(const CRecursiveGuard&) = delete;

private:
    CRecursiveMutex& m_mutex;
};

}  // namespace General::Ortha
