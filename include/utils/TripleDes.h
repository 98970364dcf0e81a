// CTripleDes: encryption with DES (FIPS 46-3) and its two-key and three-key forms (encrypt, decrypt, encrypt; ANSI X9.52). For
// compatibility: a DES key is found by trying all of them, and blocks of 8 bytes repeat in long messages.
//
//     CTripleDes des(key, 24, CTripleDes::blockType8, iv);
//     if (!des.encrypt(output, input, size)) { ... }         // whole blocks
//
// | Key length | blockType8                    | blockType16                                                     |
// |------------|-------------------------------|-----------------------------------------------------------------|
// | 1 to 8     | DES                           | DES, blocks of 8 bytes                                          |
// | 9 to 16    | two keys, blocks of 8 bytes   | two keys, blocks of 16 bytes: two DES blocks that exchange words between the passes; no standard has it |
// | 17 to 24   | three keys, blocks of 8 bytes | three keys, blocks of 16 bytes                                  |
//
// With an initial vector blocks are chained (CBC), else each stands alone (ECB: equal blocks stay equal). Nothing is kept between calls:
// each begins with the vector of the constructor, so a message is handled in one call.
//
// Threads: any thread, after construction.
#pragma once

#include <cstddef>

#include "ortha/ortha3/Export.h"

namespace General::Utils {

class ORTHA_API CTripleDes
{
public:
    enum BlockType : int
    {
        blockType8 = 0,
        blockType16 = 1
    };

    /// Takes a key, which is not null; missing bytes of 8, 16 or 24 are zeros, and more than 24 are left out. `iv` has as many bytes as a
    /// block; null: no chaining. Throws std::bad_alloc.
    CTripleDes(const unsigned char* key, std::size_t length, BlockType type, const unsigned char* iv);
    /// Wipes the keys.
    ~CTripleDes();
    CTripleDes(const CTripleDes&) = delete;
    CTripleDes& operator=(const CTripleDes&) = delete;

    /// Writes as many bytes as it reads, in whole blocks; the buffers may be the same. False, with an error line, for a key of length 0 and
    /// for a size that is no multiple of the block size; then the whole blocks are processed all the same. A null buffer logs an error and
    /// changes no result.
    bool encrypt(unsigned char* output, const unsigned char* input, std::size_t size);
    bool decrypt(unsigned char* output, const unsigned char* input, std::size_t size);

private:
    struct Internal;
    Internal* m_internal;
};

}  // namespace General::Utils
