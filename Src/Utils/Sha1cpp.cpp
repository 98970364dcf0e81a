#include <bit>
#include <cstdint>

#include "ortha/ortha3/PrintLog.h"
#include "utils/Sha1.h"

#include "Src/Utils/Digest.h"
#include "Src/Utils/Sha1Blocks.h"

namespace General::Utils {

namespace {

struct Sha1Algorithm
{
    using State = Sha1State;

    static void begin(State& state) { state = {{0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476, 0xc3d2e1f0}}; }
    static void process(State& state, const unsigned char* data, std::size_t blocks)
    {
        static const Sha1Blocks s_blocks = sha1Hardware() ? sha1Hardware() : sha1Portable;
        s_blocks(state, data, blocks);
    }
    static void storeLength(unsigned char* bytes, std::uint64_t bits) { storeBig(bytes, bits); }
    static void storeDigest(unsigned char* digest, const State& state)
    {
        for (std::size_t i = 0; i < 5; ++i)
        {
            storeBig(digest + 4 * i, state.words[i]);
        }
    }
};

// The words of the message schedule, of which the last 16 are kept. FIPS 180-1, section 7 and 8.
class Schedule
{
public:
    explicit Schedule(const unsigned char* block)
    {
        for (std::size_t i = 0; i < 16; ++i)
        {
            m_words[i] = loadBig<std::uint32_t>(block + 4 * i);
        }
    }

    template <int Step>
    std::uint32_t word()
    {
        std::uint32_t& word = m_words[Step % 16];
        if constexpr (Step >= 16)
        {
            word = std::rotl(m_words[(Step + 13) % 16] ^ m_words[(Step + 8) % 16] ^ m_words[(Step + 2) % 16] ^ word, 1);
        }
        return word;
    }

private:
    std::uint32_t m_words[16];
};

template <int Step>
inline std::uint32_t mixed(std::uint32_t b, std::uint32_t c, std::uint32_t d)
{
    if constexpr (Step < 20)
    {
        return (d ^ (b & (c ^ d))) + 0x5a827999;
    }
    else if constexpr (Step < 40)
    {
        return (b ^ c ^ d) + 0x6ed9eba1;
    }
    else if constexpr (Step < 60)
    {
        return (b & c) + (d & (b ^ c)) + 0x8f1bbcdc;
    }
    else
    {
        return (b ^ c ^ d) + 0xca62c1d6;
    }
}

// Steps with the registers renamed instead of moved.
template <int Step>
inline void steps(Schedule& schedule, std::uint32_t& a, std::uint32_t& b, std::uint32_t& c, std::uint32_t& d, std::uint32_t& e)
{
    if constexpr (Step < 80)
    {
        e += std::rotl(a, 5) + mixed<Step>(b, c, d) + schedule.word<Step>();
        b = std::rotl(b, 30);
        steps<Step + 1>(schedule, e, a, b, c, d);
    }
}

}  // namespace

void sha1Portable(Sha1State& state, const unsigned char* data, std::size_t blocks)
{
    auto [a, b, c, d, e] = state.words;
    for (; blocks != 0; --blocks, data += 64)
    {
        Schedule schedule(data);
        const std::uint32_t before[] = {a, b, c, d, e};
        steps<0>(schedule, a, b, c, d, e);
        a += before[0];
        b += before[1];
        c += before[2];
        d += before[3];
        e += before[4];
        wipe(&schedule, sizeof(schedule));
    }
    state = {{a, b, c, d, e}};
}

struct CSha1::Internal : Digest<Sha1Algorithm, CSha1::digestSize>
{
};

CSha1::CSha1() : m_internal(new Internal) {}

CSha1::~CSha1()
{
    delete m_internal;
}

void CSha1::update(const unsigned char* data, std::size_t length)
{
    m_internal->update(data, length);
}

void CSha1::final(unsigned char* hash, std::size_t length)
{
    if (!hash)
    {
        ::logError("hash is NULL!\n");
        return;
    }
    if (length < digestSize)
    {
        ::logError("len:%u is invalid!\n", static_cast<unsigned int>(length));
        return;
    }
    std::memcpy(hash, m_internal->finish(), digestSize);
}

void CSha1::hex(char* text, std::size_t length)
{
    constexpr std::size_t textSize = 2 * digestSize;
    if (!text)
    {
        ::logError("str is NULL!\n");
        return;
    }
    if (length < textSize)
    {
        ::logError("len:%u is invalid!\n", static_cast<unsigned int>(length));
        return;
    }
    writeHex(text, m_internal->finish(), digestSize);
    if (length > textSize)
    {
        text[textSize] = 0;
    }
}

}  // namespace General::Utils
