// Memory that runs out when a test wants it to. In the tests that are linked to the library's objects it stands before the C runtime's
// malloc and, through Capture.cpp, before operator new, except for memory of more than the usual alignment.
#pragma once

#include <atomic>

namespace General::Ortha::Test {

/// For one thread at a time. Its words are no thread's own: where the compiler makes those of allocated memory, malloc could not ask for
/// them.
struct FailingMemory
{
    /// The allocation of that number fails for this thread, and with `andAfter` all later ones too, until end().
    static void begin(int number, bool andAllAfter);
    static void end() { countdown = 0; }

    static inline std::atomic<int> thread{0}, countdown{0};
    static inline std::atomic<bool> andAfter{false}, failed{false};
    static inline std::atomic<long> blocks{0};  ///< not freed yet, of all threads; only differences count
};

}  // namespace General::Ortha::Test
