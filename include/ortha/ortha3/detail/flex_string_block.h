// What the string storages share: the heap block of characters, and growing it by exactly what is needed.
#pragma once

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <cstring>
#include <functional>
#include <limits>

namespace General::Ortha::Detail {

/// Head of a heap block of characters. The characters start at `buffer_` and run past the end of the record; the one element
/// that the record itself has is the room for the terminator.
template <typename E>
struct StringBlock
{
    E* pEnd_;       // one past the last character
    E* pEndOfMem_;  // one past the last usable character; the terminator may still stand there
    E buffer_[1];   // start of the characters

    /// Largest capacity whose block takes no more than `byteLimit` bytes.
    static constexpr std::size_t capacityWithin(std::size_t byteLimit) noexcept { return (byteLimit - sizeof(StringBlock)) / sizeof(E); }

    /// Bytes of a block with room for `capacity` characters and a terminator. A capacity that no block can have gives the
    /// largest number, for the allocator to refuse.
    static constexpr std::size_t bytesFor(std::size_t capacity) noexcept
    {
        constexpr std::size_t largest = std::numeric_limits<std::size_t>::max();
        return capacity <= capacityWithin(largest) ? sizeof(StringBlock) + capacity * sizeof(E) : largest;
    }

    void setExtent(std::size_t size, std::size_t capacity) noexcept
    {
        pEnd_ = buffer_ + size;
        pEndOfMem_ = buffer_ + capacity;
    }
};

/// The check of arguments that come from outside: positions and sizes.
inline void enforce(bool condition) noexcept
{
    if (!condition)
    {
        assert(0);
    }
}

/// `pos`, which must be at most `size`. Where the assertion is compiled out, the position is cut to the end of the text.
inline std::size_t enforcePosition(std::size_t pos, std::size_t size) noexcept
{
    enforce(pos <= size);
    return std::min(pos, size);
}

/// `a <= b` for pointers that need not point into one array.
template <typename E>
bool le(const E* a, const E* b) noexcept
{
    return !std::less<const E*>()(b, a);
}

/// Copies `n` characters; the two ranges may overlap, and both may be null when `n` is 0.
template <typename E>
void copyChars(E* to, const E* from, std::size_t n) noexcept
{
    if (n != 0)
    {
        std::memmove(to, from, n * sizeof(E));
    }
}

/// Copies `n` characters, `width <= n <= 2 * width`, as one piece at each end. The pieces may overlap.
template <std::size_t width, typename E>
void copyEnds(E* to, const E* from, std::size_t n) noexcept
{
    E head[width];
    E tail[width];
    std::memcpy(head, from, sizeof(head));
    std::memcpy(tail, from + (n - width), sizeof(tail));
    std::memcpy(to, head, sizeof(head));
    std::memcpy(to + (n - width), tail, sizeof(tail));
}

/// copyChars for at most `limit` characters. Where the limit is low enough it takes no call: the length picks two fixed-size moves.
template <std::size_t limit, typename E>
void copyShort(E* to, const E* from, std::size_t n) noexcept
{
    if constexpr (limit > 32 || sizeof(E) > 1)
    {
        copyChars(to, from, n);
    }
    else if (n >= 16)
    {
        copyEnds<16>(to, from, n);
    }
    else if (n >= 8)
    {
        copyEnds<8>(to, from, n);
    }
    else if (n >= 4)
    {
        copyEnds<4>(to, from, n);
    }
    else if (n >= 2)
    {
        copyEnds<2>(to, from, n);
    }
    else if (n == 1)
    {
        *to = *from;
    }
}

/// What a storage over one block does alike, wherever the block comes from. `Storage` has begin, end, size, capacity, reserve
/// and `setSize(n)`, which moves the end of the text within a block.
///
/// There is no geometric growth: a block is as long as the text that asked for it, for most strings are never extended.
template <typename Storage, typename E>
class ExactGrowth
{
public:
    /// Adds [`b`, `e`), which must not lie inside the string when the block has to grow: the text would be pulled away from it.
    void append(const E* b, const E* e)
    {
        const std::size_t needed = self().size() + static_cast<std::size_t>(e - b);
        if (self().capacity() < needed)
        {
            assert(!(le(begin(), &*b) && le(&*b, end())));
            self().reserve(needed);
        }
        if (b != e)
        {
            copyChars(self().end(), b, static_cast<std::size_t>(e - b));
            self().setSize(needed);
        }
    }

    /// Cuts the text to `n` characters, or extends it to `n` with `c`. The block never shrinks.
    void resize(std::size_t n, E c)
    {
        const std::size_t oldSize = self().size();
        self().reserve(n);
        if (n > oldSize)
        {
            std::fill_n(self().end(), n - oldSize, c);
        }
        if (self().capacity() != 0)
        {
            self().setSize(n);
        }
    }

protected:
    /// Takes over the text of another storage, in the present block if it is long enough.
    void assignText(const Storage& rhs)
    {
        self().reserve(rhs.size());
        copyChars(self().begin(), rhs.begin(), rhs.size());
        if (self().capacity() != 0)
        {
            self().setSize(rhs.size());
        }
    }

private:
    Storage& self() noexcept { return static_cast<Storage&>(*this); }
    const E* begin() noexcept { return self().begin(); }
    const E* end() noexcept { return self().end(); }
};

}  // namespace General::Ortha::Detail
