// CSemaphore of the older interface: a counting semaphore. Mind the results, which are the system's own: 0 tells success of Pend, but
// failure of Post.
//
//     CSemaphore ready(0);
//     if (ready.Pend() == 0) { ... }
//
// Threads: every operation may be called from any thread on one object. Construction and destruction must not race with use.
#pragma once

#include "ortha/ortha3/Export.h"

class ORTHA_API CSemaphore
{
public:
    /// Starts at `initialCount`, 0 to 0x7FFFFFFF. Asserts that the system gave a semaphore, which it does not for a negative count.
    explicit CSemaphore(int initialCount = 0);
    ~CSemaphore();
    CSemaphore(const CSemaphore&) = delete;
    CSemaphore& operator=(const CSemaphore&) = delete;

    /// Takes one from the count, waiting without limit. 0 when taken, else not.
    int Pend();
    /// Adds one to the count. Not 0 when it rose; 0, the count unchanged, at 0x7FFFFFFF.
    int Post();

private:
    struct Internal;
    Internal* m_internal;
};
