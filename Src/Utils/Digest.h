// What the digests share: collecting bytes into blocks of 64, padding, and the life of a message.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "Src/Utils/Bytes.h"

namespace General::Utils {

/// `Algorithm` has State (words), begin(State&), process(State&, data, blocks), storeLength(bytes, bits) and storeDigest(digest, State).
template <class Algorithm, std::size_t DigestSize>
class Digest
{
public:
    Digest() { begin(); }
    Digest(const Digest&) = delete;
    Digest& operator=(const Digest&) = delete;
    ~Digest() { wipe(this, sizeof(*this)); }

    void begin()
    {
        Algorithm::begin(m_state);
        m_length = 0;
        m_finished = false;
        std::memset(m_digest, 0, sizeof(m_digest));
    }

    void update(const unsigned char* data, std::size_t length)
    {
        std::size_t left = static_cast<std::uint32_t>(length);
        if (!data || left == 0)
        {
            return;
        }
        if (m_finished)
        {
            begin();
        }
        const std::size_t held = static_cast<std::size_t>(m_length % blockSize);
        m_length += left;
        if (held != 0)
        {
            const std::size_t taken = std::min(left, blockSize - held);
            std::memcpy(m_buffer + held, data, taken);
            if (held + taken < blockSize)
            {
                return;
            }
            Algorithm::process(m_state, m_buffer, 1);
            data += taken;
            left -= taken;
        }
        if (const std::size_t blocks = left / blockSize)
        {
            Algorithm::process(m_state, data, blocks);
            data += blocks * blockSize;
            left -= blocks * blockSize;
        }
        std::memcpy(m_buffer, data, left);
    }

    /// The digest, of a message that is finished now.
    const unsigned char* finish()
    {
        if (!m_finished)
        {
            std::size_t held = static_cast<std::size_t>(m_length % blockSize);
            m_buffer[held++] = 0x80;
            if (held > lengthAt)
            {
                std::memset(m_buffer + held, 0, blockSize - held);
                Algorithm::process(m_state, m_buffer, 1);
                held = 0;
            }
            std::memset(m_buffer + held, 0, lengthAt - held);
            Algorithm::storeLength(m_buffer + lengthAt, m_length * 8);
            Algorithm::process(m_state, m_buffer, 1);
            Algorithm::storeDigest(m_digest, m_state);
            wipe(&m_state, sizeof(m_state));
            wipe(m_buffer, sizeof(m_buffer));
            m_length = 0;
            m_finished = true;
        }
        return m_digest;
    }

private:
    static constexpr std::size_t blockSize = 64;
    static constexpr std::size_t lengthAt = 56;

    typename Algorithm::State m_state;
    std::uint64_t m_length;  // bytes
    unsigned char m_buffer[blockSize];
    unsigned char m_digest[DigestSize];
    bool m_finished;
};

}  // namespace General::Utils
