// The system's clocks, moved by hand. For the tests that are linked to the library's objects.
#pragma once

#include <atomic>
#include <cstdint>

#include "Src/Platform/Clock.h"

namespace General::Ortha::Test {

/// Stands in for the system's clocks from its construction to its destruction. Any thread may read and move it.
class ManualClock : public Platform::ClockSource
{
public:
    explicit ManualClock(std::uint64_t frequency = 1000000000) : m_frequency(frequency) { Platform::setClockSource(this); }
    ~ManualClock() override { Platform::setClockSource(nullptr); }

    std::int64_t wallNanoseconds() override { return m_wall; }
    bool setWallNanoseconds(std::int64_t nanoseconds) override
    {
        if (m_refuses)
        {
            return false;
        }
        m_wall = nanoseconds;
        return true;
    }
    std::uint64_t counter() override { return m_counter; }
    std::uint64_t frequency() override { return m_frequency; }

    void setWall(std::int64_t milliSeconds) { m_wall = milliSeconds * 1000000; }
    /// Whether the wall clock can be set through the library.
    void refuse(bool refuses) { m_refuses = refuses; }
    void setCounter(std::uint64_t ticks) { m_counter = ticks; }
    /// Moves both clocks on.
    void advance(std::int64_t milliSeconds)
    {
        m_wall += milliSeconds * 1000000;
        m_counter += static_cast<std::uint64_t>(milliSeconds) * m_frequency / 1000;
    }

private:
    std::atomic<std::int64_t> m_wall{0};
    std::atomic<std::uint64_t> m_counter{0};
    std::atomic<bool> m_refuses{false};
    const std::uint64_t m_frequency;
};

}  // namespace General::Ortha::Test
