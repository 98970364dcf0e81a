// The zone of the C runtime, and the library's own view of zone and daylight saving, for the files that implement CTime.
#pragma once

#include <atomic>
#include <cstdint>

namespace General::Ortha {

/// Seconds west of UTC by the C runtime; 0 once CTime::disableTimezone() was called.
std::int64_t zoneOffset() noexcept;

/// What local time is in terms of UTC. Plain words: set at start-up, but for the flag, which changes with daylight saving.
struct ZoneView
{
    static constexpr std::int32_t unsetZone = 0xFFFFFFF;
    static constexpr std::int32_t unsetDst = -1;

    std::atomic<std::int32_t> timeZone{unsetZone};  // seconds east of UTC
    std::atomic<std::int32_t> dst{unsetDst};        // 1 in daylight-saving time
};

extern ZoneView zoneView;

}  // namespace General::Ortha
