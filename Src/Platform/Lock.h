// The lock that every other lock of the library is built on, and the system's own.
#pragma once

#include <atomic>
#include <cstdint>

namespace General::Ortha::Platform {

/// A re-entrant lock: its owner may enter again, and gives it up with the same number of leaves. Not fair: a thread that comes while a
/// sleeper is being woken may go first. A thread that must wait sleeps.
/// What a back end must give: enter is an acquire, leave a release operation; construction does not fail, and none of the three allocates.
class alignas(64) CriticalSection  // alone in its cache line: contenders do not slow down whoever works beside it
{
public:
    CriticalSection();
    ~CriticalSection();
    CriticalSection(const CriticalSection&) = delete;
    CriticalSection& operator=(const CriticalSection&) = delete;

    void enter();
    /// False at once if another thread owns the lock.
    bool tryEnter();
    /// Precondition: the calling thread owns the lock.
    void leave();

private:
#ifdef _WIN32
    alignas(void*) unsigned char m_native[40];  // the system's own
#else
    void enterContended(std::uint32_t self);

    std::atomic<std::uint32_t> m_word{0};  // 0 free; else the owner's thread id, and the mark that somebody may sleep
    std::uint32_t m_nested = 0;            // enters of the owner beyond the first; the owner's alone
#endif
};

#ifndef _WIN32
inline CriticalSection::CriticalSection() = default;
inline CriticalSection::~CriticalSection() = default;
#endif

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
