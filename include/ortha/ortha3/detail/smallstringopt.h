// SmallStringOpt: string storage that holds short texts in the object and hands longer ones to a nested storage.
//
// The last element of `buf_` is the control character; the object is in one of two modes:
//
//   control               mode    meaning
//   0 to maxSmallString   small   the text stands in buf_; its length is maxSmallString - control
//   magic                 big     buf_ begins with a Storage that holds the text
//
// Invariants:
// - A text of exactly maxSmallString characters has control 0, which terminates it. Other texts are terminated by c_str only.
// - A text longer than maxSmallString is big. A shorter one may be: reserve makes room ahead of the text, and a copy of such a
//   string is big with a block that just holds the text.
// - resize, and with it whatever shortens a text to maxSmallString or less, goes back to small mode and frees the block.
#pragma once

#include <limits>
#include <new>
#include <utility>

#include "ortha/ortha3/detail/flex_string_block.h"

namespace General::Ortha {

template <typename Storage, unsigned int threshold, typename Align = typename Storage::value_type*>
class SmallStringOpt
{
public:
    using value_type = typename Storage::value_type;
    using iterator = value_type*;
    using const_iterator = const value_type*;
    using allocator_type = typename Storage::allocator_type;
    using size_type = std::size_t;

    explicit SmallStringOpt(const allocator_type& = allocator_type()) noexcept { setSmallSize(0); }

    SmallStringOpt(const SmallStringOpt& rhs)
    {
        if (rhs.Small())
        {
            copyObject(rhs);
        }
        else
        {
            becomeBig(Storage(rhs.GetStorage()));
        }
    }

    /// Takes the block of a big string; `rhs` is left empty and small.
    SmallStringOpt(SmallStringOpt&& rhs) noexcept { take(rhs); }

    SmallStringOpt(const value_type* s, size_type length, const allocator_type& a = allocator_type())
    {
        if (length <= smallCapacity)
        {
            Detail::copyShort<smallCapacity>(buf_, s, length);
            setSmallSize(length);
        }
        else
        {
            becomeBig(Storage(s, length, a));
        }
    }

    SmallStringOpt(size_type length, value_type c, const allocator_type& a = allocator_type())
    {
        if (length <= smallCapacity)
        {
            std::fill_n(buf_, length, c);
            setSmallSize(length);
        }
        else
        {
            becomeBig(Storage(length, c, a));
        }
    }

    ~SmallStringOpt() { destroy(); }

    SmallStringOpt& operator=(const SmallStringOpt& rhs)
    {
        if (this == &rhs)
        {
            return *this;
        }
        if (rhs.Small())
        {
            destroy();
            copyObject(rhs);
        }
        else if (Small())
        {
            becomeBig(Storage(rhs.GetStorage()));
        }
        else
        {
            GetStorage() = rhs.GetStorage();
        }
        return *this;
    }

    SmallStringOpt& operator=(SmallStringOpt&& rhs) noexcept
    {
        if (this != &rhs)
        {
            destroy();
            take(rhs);
        }
        return *this;
    }

    iterator begin() noexcept { return Small() ? buf_ : GetStorage().begin(); }
    const_iterator begin() const noexcept { return Small() ? buf_ : GetStorage().begin(); }
    iterator end() noexcept { return Small() ? buf_ + smallSize() : GetStorage().end(); }
    const_iterator end() const noexcept { return Small() ? buf_ + smallSize() : GetStorage().end(); }

    size_type size() const noexcept
    {
        assert(!Small() || maxSmallString >= buf_[maxSmallString]);
        return Small() ? smallSize() : GetStorage().size();
    }

    size_type max_size() const noexcept { return Storage(get_allocator()).max_size(); }
    size_type capacity() const noexcept { return Small() ? smallCapacity : GetStorage().capacity(); }

    /// Makes room for `res_arg` characters. More than maxSmallString make the string big, however short its text is; nothing makes
    /// it small again here. Unchanged when the allocator throws.
    void reserve(size_type res_arg)
    {
        if (!Small())
        {
            GetStorage().reserve(res_arg);
        }
        else if (res_arg > smallCapacity)
        {
            becomeBig(bigCopy(res_arg));
        }
        assert(capacity() >= res_arg);
    }

    /// Adds [`b`, `e`), which must not lie inside a big string that has to grow. Unchanged when the allocator throws.
    void append(const value_type* b, const value_type* e)
    {
        if (!Small())
        {
            GetStorage().append(b, e);
            return;
        }
        const auto length = static_cast<size_type>(e - b);
        const size_type needed = smallSize() + length;
        if (needed <= smallCapacity)
        {
            Detail::copyShort<smallCapacity>(buf_ + smallSize(), b, length);
            setSmallSize(needed);
            return;
        }
        Storage longer = bigCopy(needed);
        longer.append(b, e);
        becomeBig(std::move(longer));
    }

    /// Cuts or extends the text to `n` characters, new ones being `c`, and picks the mode that `n` asks for. Unchanged when the
    /// allocator throws; with `n` up to maxSmallString it allocates nothing.
    void resize(size_type n, value_type c)
    {
        if (n > smallCapacity)
        {
            resizeToBig(n, c);
        }
        else if (Small())
        {
            if (n > smallSize())
            {
                std::fill_n(buf_ + smallSize(), n - smallSize(), c);
            }
            setSmallSize(n);
        }
        else
        {
            resizeBigToSmall(n, c);
        }
    }

    /// Exchanges the texts; no characters of a big side are copied.
    void swap(SmallStringOpt& rhs) noexcept
    {
        if (Small() == rhs.Small())
        {
            Small() ? swapObjects(rhs) : GetStorage().swap(rhs.GetStorage());
            return;
        }
        SmallStringOpt& small = Small() ? *this : rhs;
        SmallStringOpt& big = Small() ? rhs : *this;
        const SmallStringOpt kept(small);
        small.becomeBig(Storage(get_allocator()));
        small.GetStorage().swap(big.GetStorage());
        big.destroy();
        big.copyObject(kept);
    }

    const value_type* c_str() const noexcept
    {
        if (!Small())
        {
            return GetStorage().c_str();
        }
        buf_[smallSize()] = value_type();
        return buf_;
    }

    const value_type* data() const noexcept { return begin(); }

    /// A default-built one: a small string has no place for another.
    allocator_type get_allocator() const noexcept { return allocator_type(); }

private:
    // A nested storage must leave the control character alone.
    static constexpr size_type storageLength = (sizeof(Storage) + sizeof(value_type) - 1) / sizeof(value_type);
    static constexpr size_type smallCapacity = threshold > storageLength ? threshold : storageLength;
    static_assert(smallCapacity < static_cast<size_type>(std::numeric_limits<value_type>::max()),
                  "the control character holds every length");
    static_assert(alignof(Storage) <= alignof(Align), "the buffer must be aligned for the nested storage");

    static constexpr int maxSmallString = static_cast<int>(smallCapacity);
    static constexpr int magic = maxSmallString + 1;

    bool Small() const noexcept { return buf_[maxSmallString] != magic; }

    Storage& GetStorage() noexcept
    {
        assert(buf_[maxSmallString] == magic);
        return *std::launder(reinterpret_cast<Storage*>(buf_));
    }

    const Storage& GetStorage() const noexcept
    {
        assert(buf_[maxSmallString] == magic);
        return *std::launder(reinterpret_cast<const Storage*>(buf_));
    }

    // Small mode only.
    size_type smallSize() const noexcept { return static_cast<size_type>(maxSmallString - buf_[maxSmallString]); }
    void setSmallSize(size_type n) noexcept { buf_[maxSmallString] = static_cast<value_type>(smallCapacity - n); }

    // The object holds no storage yet; `storage` is complete, so that nothing can fail half-way.
    void becomeBig(Storage&& storage) noexcept
    {
        ::new (static_cast<void*>(buf_)) Storage(std::move(storage));
        buf_[maxSmallString] = static_cast<value_type>(magic);
    }

    // The text of a small string in a storage with room for `n` characters.
    Storage bigCopy(size_type n) const
    {
        Storage storage(get_allocator());
        storage.reserve(n);
        storage.append(buf_, buf_ + smallSize());
        return storage;
    }

    void resizeToBig(size_type n, value_type c)
    {
        if (!Small())
        {
            GetStorage().resize(n, c);
            return;
        }
        Storage longer = bigCopy(n);
        longer.resize(n, c);
        becomeBig(std::move(longer));
    }

    void resizeBigToSmall(size_type n, value_type c) noexcept
    {
        // The block of a copied string may be shorter than `buf_`, and `n` may then lie beyond it. All others are longer.
        if (capacity() > smallCapacity)
        {
            assert(capacity() > n);
        }
        SmallStringOpt shorter(GetStorage().data(), std::min(n, size()));
        shorter.resize(n, c);
        swap(shorter);
    }

    // The object holds no storage yet.
    void take(SmallStringOpt& rhs) noexcept
    {
        if (rhs.Small())
        {
            copyObject(rhs);
        }
        else
        {
            becomeBig(std::move(rhs.GetStorage()));
            rhs.destroy();
        }
        rhs.setSmallSize(0);
    }

    // Copies all of a small object in one piece: cheaper than asking for the length.
    void copyObject(const SmallStringOpt& rhs) noexcept { std::memcpy(buf_, rhs.buf_, sizeof(buf_)); }

    void swapObjects(SmallStringOpt& rhs) noexcept
    {
        unsigned char kept[sizeof(buf_)];
        std::memcpy(kept, buf_, sizeof(buf_));
        std::memcpy(buf_, rhs.buf_, sizeof(buf_));
        std::memcpy(rhs.buf_, kept, sizeof(buf_));
    }

    void destroy() noexcept
    {
        if (!Small())
        {
            GetStorage().~Storage();
        }
    }

    // c_str of a constant string writes the terminator.
    union
    {
        mutable value_type buf_[smallCapacity + 1];
        Align align_;
    };
};

}  // namespace General::Ortha
