// The AES block cipher by tables (FIPS 197).
#pragma once

#include <cstddef>
#include <cstdint>

namespace General::Utils::AES {

constexpr std::size_t blockSize = 16;

/// Round keys, as words whose first byte is the most significant one.
struct Schedule
{
    int rounds = 0;  ///< 10, 12 or 14; 0: none
    std::uint32_t keys[60] = {};
    alignas(16) unsigned char bytes[240] = {};  ///< the same as bytes
};

/// Builds the round keys for encrypting. False for a number of bits other than 128, 192 or 256.
bool makeEncryptSchedule(Schedule& schedule, const unsigned char* key, int bits);
/// Those for decrypting, of the equivalent inverse cipher, from the ones for encrypting.
void makeDecryptSchedule(Schedule& schedule, const Schedule& encrypting);

/// One block; the two may be the same.
void encryptBlock(const Schedule& schedule, unsigned char* output, const unsigned char* input);
void decryptBlock(const Schedule& schedule, unsigned char* output, const unsigned char* input);

/// Cipher block chaining over whole blocks; `iv` becomes the last block of the output, which may be the input.
void encryptChained(const Schedule& schedule, unsigned char* iv, unsigned char* output, const unsigned char* input, std::size_t blocks);

}  // namespace General::Utils::AES
