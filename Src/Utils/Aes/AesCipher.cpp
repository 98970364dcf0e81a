#include "Src/Utils/Aes/AesCipher.h"

#include <array>
#include <bit>

#include "Src/Utils/Bytes.h"

namespace General::Utils::AES {

namespace {

using Bytes = std::array<std::uint8_t, 256>;
using Words = std::array<std::uint32_t, 256>;

// Multiplication in the field of 256 elements with the polynomial x^8 + x^4 + x^3 + x + 1.
constexpr std::uint8_t multiply(unsigned int a, unsigned int b)
{
    unsigned int product = 0;
    for (; b != 0; b >>= 1)
    {
        product ^= (b & 1) != 0 ? a : 0;
        a = a << 1 ^ ((a & 0x80) != 0 ? 0x11B : 0);
    }
    return static_cast<std::uint8_t>(product);
}

constexpr Bytes makeSubstitution()
{
    Bytes box{};
    // 3 generates the field's elements but 0, and 0xF6 is its inverse: p runs through them, and q through their inverses.
    std::uint8_t p = 1;
    std::uint8_t q = 1;
    do
    {
        p = multiply(p, 3);
        q = multiply(q, 0xF6);
        box[p] = static_cast<std::uint8_t>(q ^ std::rotl(q, 1) ^ std::rotl(q, 2) ^ std::rotl(q, 3) ^ std::rotl(q, 4) ^ 0x63);
    } while (p != 1);
    box[0] = 0x63;
    return box;
}

constexpr Bytes makeInverse(const Bytes& box)
{
    Bytes inverse{};
    for (std::size_t i = 0; i < 256; ++i)
    {
        inverse[box[i]] = static_cast<std::uint8_t>(i);
    }
    return inverse;
}

constexpr Bytes substitution = makeSubstitution();
constexpr Bytes inverseSubstitution = makeInverse(substitution);

// Substitution and mixing of a column in one step, for the byte of the first row; those of the other rows are rotations.
constexpr Words makeRound(const Bytes& box, std::uint8_t a, std::uint8_t b, std::uint8_t c, std::uint8_t d)
{
    Words words{};
    for (std::size_t i = 0; i < 256; ++i)
    {
        const unsigned int byte = box[i];
        words[i] = std::uint32_t{multiply(byte, a)} << 24 | std::uint32_t{multiply(byte, b)} << 16 | std::uint32_t{multiply(byte, c)} << 8 |
                   multiply(byte, d);
    }
    return words;
}

constexpr std::array<Words, 4> makeRounds(const Words& first)
{
    std::array<Words, 4> rounds{};
    for (std::size_t row = 0; row < 4; ++row)
    {
        for (std::size_t i = 0; i < 256; ++i)
        {
            rounds[row][i] = std::rotr(first[i], static_cast<int>(8 * row));
        }
    }
    return rounds;
}

constexpr std::array<Words, 4> forward = makeRounds(makeRound(substitution, 2, 1, 1, 3));
constexpr std::array<Words, 4> backward = makeRounds(makeRound(inverseSubstitution, 14, 9, 13, 11));

constexpr std::size_t byteOf(std::uint32_t word, int row)
{
    return word >> (24 - 8 * row) & 0xFF;
}

std::uint32_t substitute(const Bytes& box, std::uint32_t a, std::uint32_t b, std::uint32_t c, std::uint32_t d)
{
    return std::uint32_t{box[byteOf(a, 0)]} << 24 | std::uint32_t{box[byteOf(b, 1)]} << 16 | std::uint32_t{box[byteOf(c, 2)]} << 8 |
           box[byteOf(d, 3)];
}

std::uint32_t mix(const std::array<Words, 4>& tables, std::uint32_t a, std::uint32_t b, std::uint32_t c, std::uint32_t d)
{
    return tables[0][byteOf(a, 0)] ^ tables[1][byteOf(b, 1)] ^ tables[2][byteOf(c, 2)] ^ tables[3][byteOf(d, 3)];
}

using State = std::uint32_t[4];

void load(State& state, const unsigned char* block)
{
    for (int i = 0; i < 4; ++i)
    {
        state[i] = loadBig<std::uint32_t>(block + 4 * i);
    }
}

void exclusiveOr(State& state, const std::uint32_t* words)
{
    for (int i = 0; i < 4; ++i)
    {
        state[i] ^= words[i];
    }
}

void store(unsigned char* block, const State& state)
{
    for (int i = 0; i < 4; ++i)
    {
        storeBig(block + 4 * i, state[i]);
    }
}

// Rows move to the left when encrypting, by their number, and to the right when decrypting.
template <int Direction>
void transform(const Schedule& schedule, const std::array<Words, 4>& tables, const Bytes& box, State& state)
{
    constexpr int second = Direction & 3;
    constexpr int fourth = -Direction & 3;
    const std::uint32_t* key = schedule.keys;
    State next;
    exclusiveOr(state, key);
    key += 4;
    const auto round = [&](auto step, State& to, const State& from) {
        to[0] = step(from[0], from[second], from[2], from[fourth]) ^ key[0];
        to[1] = step(from[1], from[(1 + second) & 3], from[3], from[(1 + fourth) & 3]) ^ key[1];
        to[2] = step(from[2], from[(2 + second) & 3], from[0], from[(2 + fourth) & 3]) ^ key[2];
        to[3] = step(from[3], from[(3 + second) & 3], from[1], from[(3 + fourth) & 3]) ^ key[3];
        key += 4;
    };
    const auto inner = [&](std::uint32_t a, std::uint32_t b, std::uint32_t c, std::uint32_t d) { return mix(tables, a, b, c, d); };
    const auto outer = [&](std::uint32_t a, std::uint32_t b, std::uint32_t c, std::uint32_t d) { return substitute(box, a, b, c, d); };
    for (int pairs = schedule.rounds / 2 - 1; pairs != 0; --pairs)
    {
        round(inner, next, state);
        round(inner, state, next);
    }
    round(inner, next, state);
    round(outer, state, next);
}

void storeBytes(Schedule& schedule)
{
    for (std::size_t i = 0; i < 60; ++i)
    {
        storeBig(schedule.bytes + 4 * i, schedule.keys[i]);
    }
}

}  // namespace

bool makeEncryptSchedule(Schedule& schedule, const unsigned char* key, int bits)
{
    if (bits != 128 && bits != 192 && bits != 256)
    {
        return false;
    }
    const int words = bits / 32;
    schedule.rounds = words + 6;
    const int total = 4 * (schedule.rounds + 1);
    for (int i = 0; i < words; ++i)
    {
        schedule.keys[i] = loadBig<std::uint32_t>(key + 4 * i);
    }
    std::uint8_t constant = 1;
    for (int i = words; i < total; ++i)
    {
        std::uint32_t word = schedule.keys[i - 1];
        if (i % words == 0)
        {
            word = std::rotl(word, 8);
            word = substitute(substitution, word, word, word, word) ^ std::uint32_t{constant} << 24;
            constant = multiply(constant, 2);
        }
        else if (words == 8 && i % words == 4)
        {
            word = substitute(substitution, word, word, word, word);
        }
        schedule.keys[i] = schedule.keys[i - words] ^ word;
    }
    storeBytes(schedule);
    return true;
}

void makeDecryptSchedule(Schedule& schedule, const Schedule& encrypting)
{
    schedule.rounds = encrypting.rounds;
    for (int round = 0; round <= schedule.rounds; ++round)
    {
        for (int i = 0; i < 4; ++i)
        {
            const std::uint32_t word = encrypting.keys[4 * (schedule.rounds - round) + i];
            const std::uint32_t box = substitute(substitution, word, word, word, word);
            schedule.keys[4 * round + i] = round == 0 || round == schedule.rounds ? word : mix(backward, box, box, box, box);
        }
    }
    storeBytes(schedule);
}

void encryptBlock(const Schedule& schedule, unsigned char* output, const unsigned char* input)
{
    State state;
    load(state, input);
    transform<1>(schedule, forward, substitution, state);
    store(output, state);
}

void encryptChained(const Schedule& schedule, unsigned char* iv, unsigned char* output, const unsigned char* input, std::size_t blocks)
{
    // From block to block in registers: the chain is what takes the time.
    State state;
    load(state, iv);
    for (; blocks != 0; --blocks, output += blockSize, input += blockSize)
    {
        State block;
        load(block, input);
        exclusiveOr(state, block);
        transform<1>(schedule, forward, substitution, state);
        store(output, state);
    }
    store(iv, state);
}

void decryptBlock(const Schedule& schedule, unsigned char* output, const unsigned char* input)
{
    State state;
    load(state, input);
    transform<-1>(schedule, backward, inverseSubstitution, state);
    store(output, state);
}

}  // namespace General::Utils::AES
