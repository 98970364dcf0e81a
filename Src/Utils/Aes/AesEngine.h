// The modes of operation over whole blocks, in several forms that give the same: by tables on every machine, and by the processor's own
// instructions.
#pragma once

#include <cstddef>

#include "Src/Utils/Aes/AesCipher.h"

namespace General::Utils::AES {

/// `output` may be `input` itself. Registers (`iv`, `counter`) have 16 bytes and are left as the next block needs them.
struct Engine
{
    using Blocks = void (*)(const Schedule& schedule, unsigned char* output, const unsigned char* input, std::size_t blocks);
    using Chained = void (*)(const Schedule& schedule, unsigned char* iv, unsigned char* output, const unsigned char* input,
                             std::size_t count);

    Blocks encrypt;
    Blocks decrypt;
    Chained cbcEncrypt;
    Chained cbcDecrypt;
    Chained cfb8Encrypt;  ///< `count` is in bytes here
    Chained cfb8Decrypt;
    Chained cfb128Encrypt;
    Chained cfb128Decrypt;
    Chained ctr;
};

extern const Engine portableEngine;

/// What the processor has, or null: its instructions for one block at a time, and those for four.
const Engine* aesNiEngine();
const Engine* vaesEngine();

/// The fastest that the processor has, and the build allows.
const Engine& engine();

}  // namespace General::Utils::AES
