// CMd5: the MD5 message digest (RFC 1321), 16 bytes. For compatibility: MD5 does not protect against somebody who wants two messages of one
// digest.
//
//     CMd5 md5;
//     md5.update(data, length);           // in any number of pieces
//     unsigned char digest[16];
//     md5.final(digest);                  // or hex()
//
// The first final() or hex() finishes the message; further ones give the same digest. An update() with data then begins a new message.
//
// Threads: one thread at a time.
#pragma once

#include <cstddef>

#include "ortha/ortha3/Export.h"

namespace General::Utils {

class ORTHA_API CMd5
{
public:
    static constexpr std::size_t digestSize = 16;

    /// Begins a message. Throws std::bad_alloc.
    CMd5();
    /// Wipes what it holds.
    ~CMd5();
    CMd5(const CMd5&) = delete;
    CMd5& operator=(const CMd5&) = delete;

    /// Begins a new message.
    void init();
    /// Adds bytes, of one call at most 4294967295: `length` is taken modulo 2^32. Null or 0 changes nothing.
    void update(const unsigned char* data, std::size_t length);
    /// Gives the 16 bytes of the digest. Null logs an error, and the message stays open.
    void final(unsigned char* digest);
    /// Gives 32 lower-case hexadecimal digits, without a terminator. Null as above.
    void hex(char* hash);

private:
    struct Internal;
    Internal* m_internal;
};

}  // namespace General::Utils
