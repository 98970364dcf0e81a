// CSemaphore: a counting semaphore.
//
// A thread takes one from the count with pend() and sleeps while the count is 0; post() adds one and wakes a sleeper.
//
//     CSemaphore ready;                       // starts at 0
//     CThreadLite worker(...);                // its procedure calls ready.post() when it is done
//     if (ready.pend(500) != 0) { /* not within 500 milliseconds */ }
//
// Threads: every operation may be called from any thread on one object. Construction and destruction must not race with use.
#pragma once

#include "ortha/ortha3/Export.h"

namespace General::Ortha {

class ORTHA_API CSemaphore
{
public:
    /// Starts at `initialCount`, 0 to 0x7FFFFFFF. Asserts that the system gave a semaphore, which it does not for a negative count.
    explicit CSemaphore(int initialCount = 0);
    ~CSemaphore();
    CSemaphore(const CSemaphore&) = delete;
    CSemaphore& operator=(const CSemaphore&) = delete;

    /// Takes one from the count, waiting without limit. 0 when taken, -1 on failure.
    int pend();
    /// Takes one from the count, waiting at most `timeout` milliseconds. 0 when taken; -1 on time-out or failure, the count unchanged.
    int pend(unsigned int timeout);
    /// Takes one from the count if it is above 0, and never waits. 0 when taken, -1 otherwise.
    int tryPend();
    /// Adds one to the count. 0 when it rose; -1, the count unchanged, at 0x7FFFFFFF.
    int post();

private:
    struct Internal;
    Internal* m_internal;
};

}  // namespace General::Ortha
