// A short name that one thread may change while others read it.
#pragma once

#include <atomic>
#include <cstdint>
#include <cstring>

namespace General::Ortha {

/// At most 31 characters. A reader may see a mixture of two names, but always a terminated text and never a data race.
class SharedName
{
public:
    static constexpr std::size_t size = 32;

    explicit SharedName(const char* name) { set(name); }

    /// Longer names are cut.
    void set(const char* name)
    {
        std::uint64_t words[wordCount] = {};
        std::strncpy(reinterpret_cast<char*>(words), name, size - 1);
        for (std::size_t i = 0; i < wordCount; ++i)
        {
            std::atomic_ref(m_words[i]).store(words[i], std::memory_order_relaxed);
        }
    }

    struct Copy
    {
        char text[size];
    };

    [[nodiscard]] Copy copy() const
    {
        std::uint64_t words[wordCount];
        for (std::size_t i = 0; i < wordCount; ++i)
        {
            words[i] = std::atomic_ref(m_words[i]).load(std::memory_order_relaxed);
        }
        Copy copy;
        std::memcpy(copy.text, words, size);
        return copy;
    }

    /// The characters themselves, for a caller who knows that nobody is changing them.
    [[nodiscard]] const char* text() const { return reinterpret_cast<const char*>(m_words); }

private:
    static constexpr std::size_t wordCount = size / sizeof(std::uint64_t);

    mutable std::uint64_t m_words[wordCount] = {};
};

}  // namespace General::Ortha
