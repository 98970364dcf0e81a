// Memory that runs out when a test wants it to. In the tests that are linked to the library's objects it stands before the C runtime's malloc and,
// through Capture.cpp, before operator new, except for memory of more than the usual alignment.
#pragma once

#include <atomic>

namespace General::Ortha::Test {

struct FailingMemory
{
    /// The allocation of that number fails for this thread, and with `andAfter` all later ones too, until `countdown` is set to 0.
    static void begin(int number, bool andAllAfter) { countdown = number, andAfter = andAllAfter, failed = false; }

    static inline thread_local int countdown = 0;
    static inline thread_local bool andAfter = false, failed = false;
    static inline std::atomic<long> blocks{0};  ///< not freed yet, of all threads; only differences count
};

}  // namespace General::Ortha::Test
