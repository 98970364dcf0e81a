// What daylight saving by the library does to this year: its two dates, and the local times around them.
#pragma once

namespace Fleet {

/// Logs it, for a zone one hour east of UTC where daylight saving lasts from the last Sunday of March, 02:00, to the last Sunday of
/// October, 03:00. The machine's clock stays: what sets it is replaced first, until the process ends. Start-up. Throws std::runtime_error.
void rehearseDst();

}  // namespace Fleet
