// CMutex and CGuard of the older interface: a mutex of the system's, which knows its owner. New code uses ortha3/Mutex.h, which is faster.
//
//     CMutex mutex;
//     {
//         CGuard guard(mutex);                // entered here
//         ...
//     }                                       // left here, on every way out
//
// The owner may enter again, and gives the mutex up with the same number of leaves. If a thread ends while it owns the mutex, the next one
// gets it.
//
// Threads: every operation may be called from any thread on one object. Assignment, construction and destruction must not race with use.
#pragma once

#include "ortha/ortha3/Export.h"

class ORTHA_CAPABILITY("mutex") ORTHA_API CMutex
{
public:
    /// Without effect: all are the same mutex.
    enum Type : int
    {
        typeDefault = 0,
        typeRecursive = 1
    };

    /// Asserts that the system gave a mutex, as every operation does.
    explicit CMutex(Type type = typeDefault);
    /// Shares the mutex; the last object that has it frees it.
    CMutex(const CMutex& other);
    /// The same, and gives up the old one.
    CMutex& operator=(const CMutex& other);
    ~CMutex();

    /// Waits, without limit, until the calling thread owns the mutex. True when it does.
    bool Enter() ORTHA_ACQUIRE();
    /// Takes the mutex if no other thread owns it, and never waits. True if the calling thread owns it now; each success needs its Leave().
    [[nodiscard]] bool TryEnter() ORTHA_TRY_ACQUIRE(true);
    /// Gives up one enter. False, and nothing changes, if the calling thread does not own the mutex.
    bool Leave() ORTHA_RELEASE();

private:
    struct Internal;
    Internal* m_internal;
};

/// Holds a CMutex from its construction to its destruction.
class ORTHA_SCOPED_CAPABILITY ORTHA_API CGuard
{
public:
    explicit CGuard(CMutex& mutex) ORTHA_ACQUIRE(mutex);
    ~CGuard() ORTHA_RELEASE();
    CGuard(const CGuard&) = delete;
    CGuard& operator=(const CGuard&) = delete;

private:
    CMutex& m_mutex;
};
