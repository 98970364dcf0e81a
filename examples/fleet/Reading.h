// What one poll of a device brought, and the signal that hands it on.
#pragma once

#include <ortha/ortha3/Packet.h>
#include <ortha/ortha3/SignalTemplate.h>
#include <ortha/ortha3/Time.h>

#include <cstddef>
#include <string>

namespace Fleet {

struct Reading
{
    bool ok = false;
    General::Memory::CPacket value;  ///< number() in Frame.h reads it; a part of the frame it came in, as the unit is
    General::Memory::CPacket unit;   ///< text() reads it
    General::Ortha::CTime time;      ///< the local time at which the frame arrived; unset if none did
    std::string error;               ///< why there is no value; empty if there is one
    unsigned long long latency = 0;  ///< microseconds from the request, or the connecting before it, to the answer
    bool reconnected = false;        ///< the poll had to connect anew
};

/// The device's place in the list, and its reading. Fired on the threads of the timers.
using ReadingSignal = General::Ortha::TSignal2<std::size_t, const Reading&>;

}  // namespace Fleet
