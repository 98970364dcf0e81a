// The record behind a CTimer.
#pragma once

#include <atomic>
#include <cstdint>

#include "ortha/ortha3/Function.h"

#include "Src/Ortha3/SharedName.h"

namespace General::Ortha {

class CTimerThread;

/// Guarded by the timer lock (TimerState), but for the name and the three flags, which are read without it.
struct TimerInternal
{
    explicit TimerInternal(const char* name) : m_name(name) {}

    std::uint64_t m_usedTime = 0;                 // microseconds in callbacks, while statistics were on
    std::uint64_t m_nextTime = 0;                 // due time in milliseconds of the manager's clock
    std::uint64_t m_callTime = 0;                 // the manager's clock at the last dispatch
    std::uint32_t m_period = 0;                   // milliseconds; 0 for one-shot
    std::uint32_t m_timeout = 0;                  // watchdog time of a call in milliseconds; 0 for none
    TFunction1<void, unsigned long> m_procUlong;  // one of the two is empty
    TFunction1<void, void*> m_procPtr;
    std::uint64_t m_param = 0;
    SharedName m_name;
    std::atomic<bool> m_started{false};  // is in the queue
    std::atomic<bool> m_called{false};   // one-shot, and dispatched since its last start
    std::atomic<bool> m_statEnabled{false};
    std::atomic<CTimerThread*> m_thread{nullptr};  // runs the callback now

    // The queue's own.
    std::uint64_t m_sequence = 0;
    TimerInternal* m_child = nullptr;
    TimerInternal* m_sibling = nullptr;
    TimerInternal* m_back = nullptr;  // the sibling before, or the parent of a first child
};

}  // namespace General::Ortha
