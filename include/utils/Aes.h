// CAes: encryption with AES (FIPS 197) in five modes of operation (NIST SP 800-38A).
//
//     CAes aes(CAes::encModeCTR, key, CAes::keyBits256, iv);
//     if (!aes.encrypt(output, input, length)) { ... }
//
// | Mode   | Length         | Kept between calls                         | Of use when                                                             |
// |--------|----------------|--------------------------------------------|-------------------------------------------------------------------------|
// | ECB    | multiple of 16 | nothing                                    | single blocks; equal blocks stay equal, so not for messages             |
// | CBC    | multiple of 16 | the last block of ciphertext               | whole messages                                                          |
// | CFB8   | any            | the last 16 bytes of ciphertext            | a peer wants it; it costs one block for each byte                       |
// | CFB128 | any            | the register, and the place in it          | streams                                                                 |
// | CTR    | any            | the counter, the block of the key stream, the place in it | streams; never use a key with one counter twice          |
//
// A message may come in pieces, which give what the whole gives. What is kept between calls is one thing for both directions: an object
// encrypts a message or decrypts one. A new message needs a new object. No mode tells whether a message was changed on its way.
//
// Threads: one thread at a time.
#pragma once

#include <cstddef>

#include "ortha/ortha3/Export.h"

namespace General::Utils {

class AesInternal;

class ORTHA_API CAes
{
public:
    enum EncMode : int
    {
        encModeECB = 0,
        encModeCBC = 1,
        encModeCFB8 = 2,
        encModeCFB128 = 3,
        encModeCTR = 4
    };
    enum KeyBits : int
    {
        keyBits128 = 128,
        keyBits192 = 192,
        keyBits256 = 256
    };

    /// Takes a key of that many bits, and an initial vector, register or counter of 16 bytes; null stands for zeros, and ECB needs none.
    /// Nothing of both is referred to later. A null key logs an error. An object without a valid mode and key refuses to work.
    CAes(EncMode mode, const unsigned char* key, KeyBits bits, const unsigned char* iv);
    /// The last of the objects that share a key wipes it.
    ~CAes();
    /// Shares key and state with the other object.
    CAes(const CAes& other);
    CAes& operator=(const CAes& other);

    /// Writes `length` bytes to `output`, which may be `input` itself but must not overlap it otherwise. False, with nothing written, if
    /// the object is not usable (an error is logged), or for a length that the mode does not take.
    bool encrypt(unsigned char* output, const unsigned char* input, std::size_t length);
    /// As encrypt().
    bool decrypt(unsigned char* output, const unsigned char* input, std::size_t length);

private:
    AesInternal* m_internal;
};

}  // namespace General::Utils
