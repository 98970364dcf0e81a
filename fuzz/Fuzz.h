// What the harnesses share: taking an input apart, and buffers that are exactly as large as the library is told, so that the address
// sanitizer sees each access beyond them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "ortha/ortha3/PrintLog.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace Fuzz {

/// Warnings about wrong input are what the harnesses provoke all the time.
inline const bool quiet = (General::Ortha::setPrintLogLevel(0), true);

/// Not assert(), which a build may leave out.
inline void require(bool condition)
{
    if (!condition)
    {
        std::abort();
    }
}

class Input
{
public:
    Input(const std::uint8_t* data, std::size_t size) : m_at(data), m_left(size) {}

    /// 0 at the end.
    unsigned int byte() { return m_left != 0 ? (--m_left, *m_at++) : 0u; }
    [[nodiscard]] bool atEnd() const { return m_left == 0; }

    /// What is left, cut to whole elements. With a terminator, that is one element more.
    template <class Element>
    std::vector<Element> rest(bool terminated = false)
    {
        std::vector<Element> elements(m_left / sizeof(Element) + (terminated ? 1 : 0));
        if (m_left >= sizeof(Element))
        {
            std::memcpy(elements.data(), m_at, m_left / sizeof(Element) * sizeof(Element));
        }
        return elements;
    }

private:
    const std::uint8_t* m_at;
    std::size_t m_left;
};

/// The size of a container for functions that count in int.
template <class Container>
int count(const Container& container)
{
    return static_cast<int>(container.size());
}

}  // namespace Fuzz
