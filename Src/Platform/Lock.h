// The lock that every other lock of the library is built on, and the system's own.
#pragma once

#include <atomic>
#include <cstdint>

namespace General::Ortha::Platform {

/// A re-entrant lock: its owner may enter again, and gives it up with the same number of leaves. Not fair: a thread that comes while a sleeper is being
/// woken may go first. A thread that must wait sleeps.
/// What a back end must give: enter is an acquire, leave a release operation; nothing allocates; destruction of a lock that nobody holds or waits for
/// needs no call, so that a lock may be a static object that other threads still use while the process exits.
class alignas(64) CriticalSection  // alone in its cache line: contenders do not slow down whoever works beside it
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
    void enterContended(std::uint32_t self);

    std::atomic<std::uint32_t> m_word{0};  // 0 free; else the owner's thread id, and the mark that somebody may sleep
    std::uint32_t m_nested = 0;            // enters of the owner beyond the first; the owner's alone
};

/// A re-entrant lock of the system's, which knows its owner. If a thread ends while it owns the lock, the next one that enters gets it.
class KernelMutex
{
public:
    KernelMutex();
    ~KernelMutex();
    KernelMutex(const KernelMutex&) = delete;
    KernelMutex& operator=(const KernelMutex&) = delete;

    /// False if the system refused; then no other operation may be called.
    [[nodiscard]] bool valid() const { return m_handle != nullptr; }
    /// Waits without limit. True when the calling thread owns the lock.
    bool enter();
    /// False at once if another thread owns the lock.
    bool tryEnter();
    /// Gives up one enter. False if the calling thread does not own the lock.
    bool leave();

private:
    void* m_handle;
};

}  // namespace General::Ortha::Platform
