// The lock that every other lock of the library is built on.
#pragma once

#include <atomic>
#include <cstdint>

namespace General::Ortha::Platform {

/// A re-entrant lock: its owner may enter again, and gives it up with the same number of leaves. Not fair: a thread that comes while a sleeper is being
/// woken may go first. A thread that must wait spins for about a microsecond, then sleeps.
/// What a back end must give: enter is an acquire, leave a release operation; nothing allocates; destruction of a lock that nobody holds or waits for
/// needs no call, so that a lock may be a static object that other threads still use while the process exits.
class CriticalSection
{
public:
    constexpr CriticalSection() = default;
    CriticalSection(const CriticalSection&) = delete;
    CriticalSection& operator=(const CriticalSection&) = delete;

    void enter();
    /// False at once if another thread owns the lock.
    bool tryEnter();
    /// Precondition: the calling thread owns the lock.
    void leave();

private:
    void enterContended();

    std::atomic<std::uint32_t> m_word{0};       // 0 free, 1 owned, 2 owned and somebody may sleep: the owner wakes one when it leaves
    std::uint32_t m_nested = 0;                 // enters of the owner beyond the first; the owner's alone
    std::atomic<const void*> m_owner{nullptr};  // a thread finds its own mark here only if it put it there
};

}  // namespace General::Ortha::Platform
