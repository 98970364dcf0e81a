// Per-thread pointer slots.
#pragma once

#include <cstdint>

namespace General::Ortha::Platform {

inline constexpr std::uint32_t noThreadSlot = 0xFFFFFFFFu;

/// A new slot, in which every thread's value is null; `noThreadSlot` if the system has none left.
std::uint32_t allocateThreadSlot();
/// Gives a slot back. The values are forgotten; nothing is called for them.
void freeThreadSlot(std::uint32_t slot);
/// Stores the calling thread's value. False if the system could not.
bool setThreadSlot(std::uint32_t slot, const void* value);
/// The calling thread's value.
void* threadSlot(std::uint32_t slot);

}  // namespace General::Ortha::Platform
