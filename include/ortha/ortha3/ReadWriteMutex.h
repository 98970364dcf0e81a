// CReadWriteMutex: many readers or one writer.
//
//     CReadWriteMutex lock;
//     {
//         CReadGuard guard(lock);             // or CWriteGuard
//         ...
//     }                                       // lock.leave(): the same operation ends a read hold and a write hold
//
// Two modes, chosen at construction:
// - priorityDefault, for short read holds: a writer that has come keeps later readers and writers out, and gives its time slice away in a
// loop
//   until the readers inside have left.
// - priorityWriter, for long holds and many writers: everybody sleeps. A reader that comes while a writer waits or holds the lock waits. A
// leaving
//   writer hands the lock to a waiting writer before any reader, so a steady stream of writers keeps readers out; the last reader hands it to
//   a waiting writer. Readers are let in together.
//
// | Held by          | enterReading                         | enterWriting | leave              |
// |------------------|--------------------------------------|--------------|--------------------|
// | nobody           | enters                               | enters       | false              |
// | readers          | enters, unless a writer is waiting   | waits        | one reader leaves  |
// | a writer         | waits                                | waits        | the writer leaves  |
//
// The lock does not know who holds it: `leave` goes by its counters alone. It is not recursive, and a reader cannot become a writer:
// enterWriting while holding read access waits for itself. In writer-first mode at most 65535 readers may hold it.
//
// Threads: every operation may be called from any thread on one object; a hold is given up by the thread that took it. Construction and
// destruction must not race with use.
#pragma once

#include "ortha/ortha3/Export.h"

namespace General::Ortha {

enum RWPriority : int
{
    priorityDefault = 0,  ///< spin mode
    priorityWriter = 1    ///< writer-first mode
};

class ORTHA_API CReadWriteMutex
{
public:
    /// The default mode.
    CReadWriteMutex();
    /// A value other than the two is logged and gives the default mode.
    CReadWriteMutex(RWPriority priority);
    /// In the default mode logs a hold that was never given up.
    ~CReadWriteMutex();
    CReadWriteMutex(const CReadWriteMutex&) = delete;
    CReadWriteMutex& operator=(const CReadWriteMutex&) = delete;

    /// Waits until read access is held. Always true.
    bool enterReading();
    /// Waits until write access is held. Always true.
    bool enterWriting();
    /// Gives up one hold. False if nobody holds the lock, in the default mode with a log line.
    bool leave();

private:
    struct RWMutexInternal;
    RWMutexInternal* m_internal;
};

/// Holds read access from its construction to its destruction.
class CReadGuard
{
public:
    explicit CReadGuard(CReadWriteMutex& mutex) : m_mutex(mutex) { m_mutex.enterReading(); }
    ~CReadGuard() { m_mutex.leave(); }
    CReadGuard(const CReadGuard&) = delete;
    CReadGuard& operator=(const CReadGuard&) = delete;

private:
    CReadWriteMutex& m_mutex;
};

/// Holds write access from its construction to its destruction.
class CWriteGuard
{
public:
    explicit CWriteGuard(CReadWriteMutex& mutex) : m_mutex(mutex) { m_mutex.enterWriting(); }
    ~CWriteGuard() { m_mutex.leave(); }
    CWriteGuard(const CWriteGuard&) = delete;
    CWriteGuard& operator=(const CWriteGuard&) = delete;

private:
    CReadWriteMutex& m_mutex;
};

}  // namespace General::Ortha
