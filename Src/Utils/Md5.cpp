#include "utils/Md5.h"

#include <bit>
#include <cstdint>

#include "ortha/ortha3/PrintLog.h"

#include "Src/Utils/Digest.h"

namespace General::Utils {

namespace {

struct Md5Algorithm
{
    struct State
    {
        std::uint32_t a, b, c, d;
    };

    static void begin(State& state) { state = {0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476}; }
    static void process(State& state, const unsigned char* data, std::size_t blocks);
    static void storeLength(unsigned char* bytes, std::uint64_t bits) { storeLittle(bytes, bits); }
    static void storeDigest(unsigned char* digest, const State& state)
    {
        storeLittle(digest, state.a);
        storeLittle(digest + 4, state.b);
        storeLittle(digest + 8, state.c);
        storeLittle(digest + 12, state.d);
    }
};

// One step of each round. A sum of the parts of round 2 and a select written by an exclusive or need one operation less on the way from b
// to the result.
inline void step1(std::uint32_t& a, std::uint32_t b, std::uint32_t c, std::uint32_t d, std::uint32_t x, int shift, std::uint32_t constant)
{
    a = b + std::rotl(a + x + constant + (d ^ (b & (c ^ d))), shift);
}

inline void step2(std::uint32_t& a, std::uint32_t b, std::uint32_t c, std::uint32_t d, std::uint32_t x, int shift, std::uint32_t constant)
{
    a = b + std::rotl(a + x + constant + (c & ~d) + (b & d), shift);
}

inline void step3(std::uint32_t& a, std::uint32_t b, std::uint32_t c, std::uint32_t d, std::uint32_t x, int shift, std::uint32_t constant)
{
    a = b + std::rotl(a + x + constant + (b ^ (c ^ d)), shift);
}

inline void step4(std::uint32_t& a, std::uint32_t b, std::uint32_t c, std::uint32_t d, std::uint32_t x, int shift, std::uint32_t constant)
{
    a = b + std::rotl(a + x + constant + (c ^ (b | ~d)), shift);
}

// RFC 1321, 3.4.
void Md5Algorithm::process(State& state, const unsigned char* data, std::size_t blocks)
{
    auto [a, b, c, d] = state;
    for (; blocks != 0; --blocks, data += 64)
    {
        const State before = {a, b, c, d};
        const auto x = [data](int i) { return loadLittle<std::uint32_t>(data + 4 * i); };
        step1(a, b, c, d, x(0), 7, 0xd76aa478);
        step1(d, a, b, c, x(1), 12, 0xe8c7b756);
        step1(c, d, a, b, x(2), 17, 0x242070db);
        step1(b, c, d, a, x(3), 22, 0xc1bdceee);
        step1(a, b, c, d, x(4), 7, 0xf57c0faf);
        step1(d, a, b, c, x(5), 12, 0x4787c62a);
        step1(c, d, a, b, x(6), 17, 0xa8304613);
        step1(b, c, d, a, x(7), 22, 0xfd469501);
        step1(a, b, c, d, x(8), 7, 0x698098d8);
        step1(d, a, b, c, x(9), 12, 0x8b44f7af);
        step1(c, d, a, b, x(10), 17, 0xffff5bb1);
        step1(b, c, d, a, x(11), 22, 0x895cd7be);
        step1(a, b, c, d, x(12), 7, 0x6b901122);
        step1(d, a, b, c, x(13), 12, 0xfd987193);
        step1(c, d, a, b, x(14), 17, 0xa679438e);
        step1(b, c, d, a, x(15), 22, 0x49b40821);
        step2(a, b, c, d, x(1), 5, 0xf61e2562);
        step2(d, a, b, c, x(6), 9, 0xc040b340);
        step2(c, d, a, b, x(11), 14, 0x265e5a51);
        step2(b, c, d, a, x(0), 20, 0xe9b6c7aa);
        step2(a, b, c, d, x(5), 5, 0xd62f105d);
        step2(d, a, b, c, x(10), 9, 0x02441453);
        step2(c, d, a, b, x(15), 14, 0xd8a1e681);
        step2(b, c, d, a, x(4), 20, 0xe7d3fbc8);
        step2(a, b, c, d, x(9), 5, 0x21e1cde6);
        step2(d, a, b, c, x(14), 9, 0xc33707d6);
        step2(c, d, a, b, x(3), 14, 0xf4d50d87);
        step2(b, c, d, a, x(8), 20, 0x455a14ed);
        step2(a, b, c, d, x(13), 5, 0xa9e3e905);
        step2(d, a, b, c, x(2), 9, 0xfcefa3f8);
        step2(c, d, a, b, x(7), 14, 0x676f02d9);
        step2(b, c, d, a, x(12), 20, 0x8d2a4c8a);
        step3(a, b, c, d, x(5), 4, 0xfffa3942);
        step3(d, a, b, c, x(8), 11, 0x8771f681);
        step3(c, d, a, b, x(11), 16, 0x6d9d6122);
        step3(b, c, d, a, x(14), 23, 0xfde5380c);
        step3(a, b, c, d, x(1), 4, 0xa4beea44);
        step3(d, a, b, c, x(4), 11, 0x4bdecfa9);
        step3(c, d, a, b, x(7), 16, 0xf6bb4b60);
        step3(b, c, d, a, x(10), 23, 0xbebfbc70);
        step3(a, b, c, d, x(13), 4, 0x289b7ec6);
        step3(d, a, b, c, x(0), 11, 0xeaa127fa);
        step3(c, d, a, b, x(3), 16, 0xd4ef3085);
        step3(b, c, d, a, x(6), 23, 0x04881d05);
        step3(a, b, c, d, x(9), 4, 0xd9d4d039);
        step3(d, a, b, c, x(12), 11, 0xe6db99e5);
        step3(c, d, a, b, x(15), 16, 0x1fa27cf8);
        step3(b, c, d, a, x(2), 23, 0xc4ac5665);
        step4(a, b, c, d, x(0), 6, 0xf4292244);
        step4(d, a, b, c, x(7), 10, 0x432aff97);
        step4(c, d, a, b, x(14), 15, 0xab9423a7);
        step4(b, c, d, a, x(5), 21, 0xfc93a039);
        step4(a, b, c, d, x(12), 6, 0x655b59c3);
        step4(d, a, b, c, x(3), 10, 0x8f0ccc92);
        step4(c, d, a, b, x(10), 15, 0xffeff47d);
        step4(b, c, d, a, x(1), 21, 0x85845dd1);
        step4(a, b, c, d, x(8), 6, 0x6fa87e4f);
        step4(d, a, b, c, x(15), 10, 0xfe2ce6e0);
        step4(c, d, a, b, x(6), 15, 0xa3014314);
        step4(b, c, d, a, x(13), 21, 0x4e0811a1);
        step4(a, b, c, d, x(4), 6, 0xf7537e82);
        step4(d, a, b, c, x(11), 10, 0xbd3af235);
        step4(c, d, a, b, x(2), 15, 0x2ad7d2bb);
        step4(b, c, d, a, x(9), 21, 0xeb86d391);
        a += before.a;
        b += before.b;
        c += before.c;
        d += before.d;
    }
    state = {a, b, c, d};
}

}  // namespace

struct CMd5::Internal : Digest<Md5Algorithm, CMd5::digestSize>
{
};

CMd5::CMd5() : m_internal(new Internal) {}

CMd5::~CMd5()
{
    delete m_internal;
}

void CMd5::init()
{
    m_internal->begin();
}

void CMd5::update(const unsigned char* data, std::size_t length)
{
    m_internal->update(data, length);
}

void CMd5::final(unsigned char* digest)
{
    if (!digest)
    {
        ::logError("digest is NULL\n");
        return;
    }
    std::memcpy(digest, m_internal->finish(), digestSize);
}

void CMd5::hex(char* hash)
{
    if (!hash)
    {
        ::logError("hash is NULL\n");
        return;
    }
    writeHex(hash, m_internal->finish(), digestSize);
}

}  // namespace General::Utils
