// The started timers in the order of their due times.
#pragma once

#include <cstdint>
#include <vector>

#include "Src/Ortha3/TimerInternal.h"

namespace General::Ortha {

/// Ascending due times; among equal ones the last inserted comes first. A pairing heap through the records themselves (Fredman, Sedgewick,
/// Sleator, Tarjan, "The pairing heap", 1986): nothing is allocated, insertion is constant, as is the removal of a timer that has not come
/// near the front; taking the head is logarithmic, amortised. The caller holds the timer lock.
class TimerQueue
{
public:
    /// The timer with the lowest due time, or null.
    [[nodiscard]] TimerInternal* head() const { return m_root; }
    /// Precondition: the timer is in no queue.
    void insert(TimerInternal& timer);
    /// Precondition: the timer is in this queue.
    void remove(TimerInternal& timer);
    /// All timers, head first.
    [[nodiscard]] std::vector<TimerInternal*> sorted() const;

private:
    TimerInternal* m_root = nullptr;
    std::uint64_t m_sequence = 0;
};

}  // namespace General::Ortha
