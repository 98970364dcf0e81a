// CSha1: the SHA-1 message digest (FIPS 180-1), 20 bytes. For compatibility: SHA-1 does not protect against somebody who wants two messages
// of one digest.
//
//     CSha1 sha1;
//     sha1.update(data, length);          // in any number of pieces
//     char text[41];
//     sha1.hex(text, sizeof(text));       // or final()
//
// The first final() or hex() finishes the message; further ones give the same digest. An update() with data then begins a new message.
//
// Threads: one thread at a time.
#pragma once

#include <cstddef>

#include "ortha/ortha3/Export.h"

namespace General::Utils {

class ORTHA_API CSha1
{
public:
    static constexpr std::size_t digestSize = 20;

    /// Begins a message. Throws std::bad_alloc.
    CSha1();
    /// Wipes what it holds.
    ~CSha1();
    CSha1(const CSha1&) = delete;
    CSha1& operator=(const CSha1&) = delete;

    /// Adds bytes, of one call at most 4294967295: `length` is taken modulo 2^32. Null or 0 changes nothing.
    void update(const unsigned char* data, std::size_t length);
    /// Gives the 20 bytes of the digest. Null, or a `length` below 20, logs an error, and the message stays open.
    void final(unsigned char* hash, std::size_t length);
    /// Gives 40 lower-case hexadecimal digits, and a terminator if `length` is above 40. Null, or a `length` below 40, logs an error, and
    /// the message stays open.
    void hex(char* text, std::size_t length);

private:
    struct Internal;
    Internal* m_internal;
};

}  // namespace General::Utils
