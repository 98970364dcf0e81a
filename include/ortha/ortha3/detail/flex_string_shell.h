// flex_string: the interface of the standard string over a storage policy, which holds the characters.
//
// A storage offers begin, end, size, max_size, capacity, reserve, resize, append (from a pointer range), swap, c_str, data,
// get_allocator, copy and move, and construction from an allocator, from pointer and length, and from count and character.
//
// Members keep the names and meanings of std::basic_string. They differ in this:
// - Nothing is thrown but what the allocator throws; a position or a size out of range is an assertion, `at` and `substr` included.
// - Growing takes exactly the memory that is needed. Who appends often reserves first.
// - An argument may be any part of the string itself, everywhere.
// - The terminator is written when it is asked for, by c_str, data and the element at size(), on a constant string too: these are
//   writes for other threads. begin, end and the conversion to a view write nothing.
// - The allocator is a type, not a state: get_allocator gives a default-built one.
#pragma once

#include <algorithm>
#include <cassert>
#include <initializer_list>
#include <iterator>
#include <string_view>
#include <type_traits>
#include <utility>

#include "ortha/ortha3/detail/flex_string_block.h"
#include "ortha/ortha3/detail/flex_string_search.h"

namespace General::Ortha {

template <typename E, typename T, typename A, typename Storage>
class flex_string : public Detail::StringSearch<flex_string<E, T, A, Storage>, E, T>
{
    static_assert(std::is_trivial_v<E>, "characters are copied byte by byte");

    using Search = Detail::StringSearch<flex_string, E, T>;
    using View = std::basic_string_view<E, T>;
    template <typename V>
    using IfView = Detail::IfViewLike<V, E, T>;
    template <typename It>
    using IfInput =
        std::enable_if_t<std::is_convertible_v<typename std::iterator_traits<It>::iterator_category, std::input_iterator_tag>, int>;

    // An iterator argument. Iterators are pointers, and a plain pointer parameter would take the literal 0 away from the overloads
    // for positions.
    struct Position
    {
        template <typename P, std::enable_if_t<std::is_same_v<P, E*> || std::is_same_v<P, const E*>, int> = 0>
        Position(P place) noexcept : at(place)
        {
        }
        const E* at;
    };

    struct PointerRange
    {
        PointerRange(const E* first, const E* last) noexcept : m_first(first), m_last(last) {}
        const E* begin() const noexcept { return m_first; }
        const E* end() const noexcept { return m_last; }

    private:
        const E* m_first;
        const E* m_last;
    };

    // What an iterator pair reads, as a pointer range. Pointers are taken as they are; anything else is read into a string first, for
    // it may read from this very string in an order of its own.
    template <typename It>
    static constexpr bool isCharPointer = std::is_same_v<It, E*> || std::is_same_v<It, const E*>;
    template <typename It>
    using Range = std::conditional_t<isCharPointer<It>, const PointerRange, const flex_string>;

public:
    using traits_type = T;
    using value_type = E;
    using allocator_type = A;
    using size_type = typename Search::size_type;
    using difference_type = std::ptrdiff_t;
    using reference = E&;
    using const_reference = const E&;
    using pointer = E*;
    using const_pointer = const E*;
    using iterator = E*;
    using const_iterator = const E*;
    using reverse_iterator = std::reverse_iterator<iterator>;
    using const_reverse_iterator = std::reverse_iterator<const_iterator>;

    using Search::npos;

    flex_string() noexcept(noexcept(A())) = default;
    explicit flex_string(const A& a) noexcept : storage_(a) {}
    flex_string(const flex_string&) = default;
    /// Takes the text of `str`, which is left empty. A long text keeps its place in memory.
    flex_string(flex_string&& str) noexcept = default;
    flex_string(const flex_string& str, const A&) : flex_string(str) {}
    flex_string(flex_string&& str, const A&) noexcept : flex_string(std::move(str)) {}
    flex_string(const E* s, size_type n, const A& a = A()) : storage_(s, n, a) {}
    flex_string(const E* s, const A& a = A()) : storage_(s, T::length(s), a) {}
    flex_string(size_type n, E c, const A& a = A()) : storage_(n, c, a) {}
    flex_string(std::initializer_list<E> chars, const A& a = A()) : storage_(chars.begin(), chars.size(), a) {}
    template <typename It, IfInput<It> = 0>
    flex_string(It first, It last, const A& a = A()) : storage_(a)
    {
        readFrom(first, last);
    }
    template <typename V, IfView<V> = 0>
    explicit flex_string(const V& v, const A& a = A()) : flex_string(View(v), 0, npos, a)
    {
    }
    /// At most `n` characters of `v` from `pos` on; `pos` beyond the end is an assertion.
    template <typename V, IfView<V> = 0>
    flex_string(const V& v, size_type pos, size_type n = npos, const A& a = A()) : storage_(a)
    {
        append(v, pos, n);
    }
    flex_string(const flex_string& str, size_type pos, const A& a) : flex_string(str, pos, npos, a) {}
    ~flex_string() = default;

    flex_string& operator=(const flex_string&) = default;
    /// Takes the text of `str`, which is left empty.
    flex_string& operator=(flex_string&& str) noexcept = default;
    flex_string& operator=(const E* s) { return assign(s); }
    flex_string& operator=(E c) { return assign(1, c); }
    flex_string& operator=(std::initializer_list<E> chars) { return assign(chars); }
    template <typename V, IfView<V> = 0>
    flex_string& operator=(const V& v)
    {
        return assign(v);
    }

    iterator begin() noexcept { return storage_.begin(); }
    const_iterator begin() const noexcept { return storage_.begin(); }
    const_iterator cbegin() const noexcept { return begin(); }
    iterator end() noexcept { return storage_.end(); }
    const_iterator end() const noexcept { return storage_.end(); }
    const_iterator cend() const noexcept { return end(); }
    reverse_iterator rbegin() noexcept { return reverse_iterator(end()); }
    const_reverse_iterator rbegin() const noexcept { return const_reverse_iterator(end()); }
    const_reverse_iterator crbegin() const noexcept { return rbegin(); }
    reverse_iterator rend() noexcept { return reverse_iterator(begin()); }
    const_reverse_iterator rend() const noexcept { return const_reverse_iterator(begin()); }
    const_reverse_iterator crend() const noexcept { return rend(); }

    size_type size() const noexcept { return storage_.size(); }
    size_type length() const noexcept { return size(); }
    [[nodiscard]] bool empty() const noexcept { return size() == 0; }
    size_type max_size() const noexcept { return storage_.max_size(); }
    size_type capacity() const noexcept { return storage_.capacity(); }

    /// Makes room for exactly `res_arg` characters if there is less, and never gives any back. More than max_size() is an assertion.
    void reserve(size_type res_arg = 0)
    {
        Detail::enforce(res_arg <= max_size());
        storage_.reserve(res_arg);
    }

    /// Cuts or extends the text. A string with a buffer of its own gives up its block when the new length fits in that buffer.
    void resize(size_type n, E c = E())
    {
        Detail::enforce(n <= max_size());
        storage_.resize(n, c);
    }

    void shrink_to_fit()
    {
        if (size() < capacity())
        {
            flex_string(begin(), size()).swap(*this);
        }
    }

    void clear() noexcept { storage_.resize(0, E()); }

    /// The element at `pos`, up to and including size(), where the terminator stands.
    const_reference operator[](size_type pos) const noexcept { return (pos < size() ? begin() : c_str())[pos]; }
    reference operator[](size_type pos) noexcept { return const_cast<reference>(std::as_const(*this)[pos]); }

    /// The element at `pos`; from size() on an assertion.
    const_reference at(size_type pos) const noexcept
    {
        Detail::enforce(pos < size());
        return begin()[pos];
    }
    reference at(size_type pos) noexcept { return const_cast<reference>(std::as_const(*this).at(pos)); }

    reference front() noexcept { return *begin(); }
    const_reference front() const noexcept { return *begin(); }
    reference back() noexcept { return *(end() - 1); }
    const_reference back() const noexcept { return *(end() - 1); }

    /// The text with its terminator, which is written by this call. Valid until the string is changed.
    const E* c_str() const noexcept { return storage_.c_str(); }
    const E* data() const noexcept { return c_str(); }
    E* data() noexcept { return const_cast<E*>(c_str()); }

    /// The text without a terminator. Valid until the string is changed.
    operator View() const noexcept { return View(begin(), size()); }

    A get_allocator() const noexcept { return A(); }

    flex_string& append(const E* s, size_type n)
    {
        if (n != 0 && IsAliased(s))
        {
            const auto offset = s - begin();
            reserve(size() + n);
            s = c_str() + offset;  // which may reach to the terminator
        }
        storage_.append(s, s + n);
        return *this;
    }
    flex_string& append(const E* s) { return append(s, T::length(s)); }
    flex_string& append(size_type n, E c)
    {
        Detail::enforce(n <= max_size() - size());
        resize(size() + n, c);
        return *this;
    }
    flex_string& append(std::initializer_list<E> chars) { return append(chars.begin(), chars.size()); }
    template <typename It, IfInput<It> = 0>
    flex_string& append(It first, It last)
    {
        const Range<It> range(first, last);
        return append(range.begin(), static_cast<size_type>(range.end() - range.begin()));
    }
    template <typename V, IfView<V> = 0>
    flex_string& append(const V& v, size_type pos = 0, size_type n = npos)
    {
        const View text = Search::partOf(v, pos, n);
        return append(text.data(), text.size());
    }

    flex_string& operator+=(E c) { return append(&c, 1); }
    flex_string& operator+=(const E* s) { return append(s); }
    flex_string& operator+=(std::initializer_list<E> chars) { return append(chars); }
    template <typename V, IfView<V> = 0>
    flex_string& operator+=(const V& v)
    {
        return append(v);
    }
    void push_back(E c) { append(&c, 1); }
    void pop_back() noexcept { storage_.resize(size() - 1, E()); }

    /// Unchanged when the allocator throws, as with append, insert and erase.
    flex_string& assign(const E* s, size_type n)
    {
        if (n > capacity())
        {
            flex_string(s, n).swap(*this);
            return *this;
        }
        const size_type overwritten = std::min(n, size());
        Detail::copyChars(begin(), s, overwritten);
        if (overwritten < n)
        {
            storage_.append(s + overwritten, s + n);
        }
        else
        {
            storage_.resize(n, E());
        }
        return *this;
    }
    flex_string& assign(const E* s) { return assign(s, T::length(s)); }
    flex_string& assign(size_type n, E c)
    {
        resize(n);
        std::fill_n(begin(), n, c);
        return *this;
    }
    flex_string& assign(std::initializer_list<E> chars) { return assign(chars.begin(), chars.size()); }
    flex_string& assign(flex_string&& str) noexcept { return *this = std::move(str); }
    template <typename It, IfInput<It> = 0>
    flex_string& assign(It first, It last)
    {
        const Range<It> range(first, last);
        return assign(range.begin(), static_cast<size_type>(range.end() - range.begin()));
    }
    template <typename V, IfView<V> = 0>
    flex_string& assign(const V& v, size_type pos = 0, size_type n = npos)
    {
        const View text = Search::partOf(v, pos, n);
        return assign(text.data(), text.size());
    }

    flex_string& insert(size_type pos, const E* s, size_type n)
    {
        pos = Detail::enforcePosition(pos, size());
        insertRange(begin() + pos, s, s + n);
        return *this;
    }
    flex_string& insert(size_type pos, const E* s) { return insert(pos, s, T::length(s)); }
    flex_string& insert(size_type pos, size_type n, E c)
    {
        pos = Detail::enforcePosition(pos, size());
        const size_type tail = size() - pos;
        append(n, c);
        Detail::copyChars(begin() + pos + n, begin() + pos, tail);
        std::fill_n(begin() + pos, n, c);
        return *this;
    }
    template <typename V, IfView<V> = 0>
    flex_string& insert(size_type pos, const V& v, size_type pos2 = 0, size_type n = npos)
    {
        const View text = Search::partOf(v, pos2, n);
        return insert(pos, text.data(), text.size());
    }
    iterator insert(Position position, E c) { return insert(position, 1, c); }
    iterator insert(Position position, size_type n, E c)
    {
        const size_type pos = offsetOf(position);
        insert(pos, n, c);
        return begin() + pos;
    }
    iterator insert(Position position, std::initializer_list<E> chars) { return insert(position, chars.begin(), chars.end()); }
    template <typename It, IfInput<It> = 0>
    iterator insert(Position position, It first, It last)
    {
        const Range<It> range(first, last);
        return insertRange(position, range.begin(), range.end());
    }

    /// Removes up to `n` characters from `pos` on; `pos` beyond the end is an assertion. The mode changes as with resize.
    flex_string& erase(size_type pos = 0, size_type n = npos)
    {
        pos = Detail::enforcePosition(pos, size());
        n = std::min(n, size() - pos);
        const size_type tail = size() - pos - n;
        Detail::copyChars(begin() + pos, begin() + pos + n, tail);
        storage_.resize(pos + tail, E());
        return *this;
    }
    iterator erase(Position position) { return erase(position, position.at + 1); }
    iterator erase(Position first, Position last)
    {
        const size_type pos = offsetOf(first);
        erase(pos, static_cast<size_type>(last.at - first.at));
        return begin() + pos;
    }

    /// Unchanged when the allocator throws.
    flex_string& replace(size_type pos, size_type n1, const E* s, size_type n2)
    {
        const View old = Search::part(pos, n1);
        return replaceRange(old.data(), old.data() + old.size(), s, s + n2);
    }
    flex_string& replace(size_type pos, size_type n1, const E* s) { return replace(pos, n1, s, T::length(s)); }
    flex_string& replace(size_type pos, size_type n1, size_type n2, E c)
    {
        const flex_string chars(n2, c);
        return replace(pos, n1, chars.begin(), n2);
    }
    template <typename V, IfView<V> = 0>
    flex_string& replace(size_type pos, size_type n1, const V& v, size_type pos2 = 0, size_type n2 = npos)
    {
        const View text = Search::partOf(v, pos2, n2);
        return replace(pos, n1, text.data(), text.size());
    }
    flex_string& replace(Position i1, Position i2, const E* s, size_type n) { return replaceRange(i1.at, i2.at, s, s + n); }
    flex_string& replace(Position i1, Position i2, const E* s) { return replace(i1, i2, s, T::length(s)); }
    flex_string& replace(Position i1, Position i2, size_type n, E c)
    {
        const flex_string chars(n, c);
        return replaceRange(i1.at, i2.at, chars.begin(), chars.end());
    }
    flex_string& replace(Position i1, Position i2, std::initializer_list<E> chars)
    {
        return replaceRange(i1.at, i2.at, chars.begin(), chars.end());
    }
    template <typename V, IfView<V> = 0>
    flex_string& replace(Position i1, Position i2, const V& v)
    {
        const View text(v);
        return replace(i1, i2, text.data(), text.size());
    }
    template <typename It, IfInput<It> = 0>
    flex_string& replace(Position i1, Position i2, It first, It last)
    {
        const Range<It> range(first, last);
        return replaceRange(i1.at, i2.at, range.begin(), range.end());
    }

    /// A new string of at most `n` characters from `pos` on; `pos` beyond the end is an assertion.
    flex_string substr(size_type pos = 0, size_type n = npos) const { return flex_string(*this, pos, n); }

    size_type copy(E* to, size_type n, size_type pos = 0) const noexcept
    {
        const View text = Search::part(pos, n);
        Detail::copyChars(to, text.data(), text.size());
        return text.size();
    }

    void swap(flex_string& str) noexcept { storage_.swap(str.storage_); }

private:
    // Fills a new string.
    template <typename It>
    void readFrom(It first, It last)
    {
        if constexpr (isCharPointer<It>)
        {
            storage_.append(first, last);
        }
        else
        {
            if constexpr (std::is_convertible_v<typename std::iterator_traits<It>::iterator_category, std::forward_iterator_tag>)
            {
                reserve(static_cast<size_type>(std::distance(first, last)));
            }
            E chunk[64];
            for (size_type n; first != last; storage_.append(chunk, chunk + n))
            {
                for (n = 0; n < std::size(chunk) && first != last; ++first)
                {
                    chunk[n++] = static_cast<E>(*first);
                }
            }
        }
    }

    size_type offsetOf(Position position) const noexcept { return static_cast<size_type>(position.at - begin()); }

    // The terminator counts as a part of the string: whoever called c_str may pass it on.
    bool IsAliased(const E* s) const noexcept { return Detail::le(begin(), s) && Detail::le(s, end()); }
    bool IsAliasedRange(const E* s1, const E* s2) const noexcept { return s1 < s2 && IsAliased(s1); }

    iterator insertRange(Position position, const E* s1, const E* s2)
    {
        const size_type pos = offsetOf(position);
        if (s1 == s2)
        {
            return begin() + pos;
        }
        if (IsAliasedRange(s1, s2))
        {
            const flex_string part(s1, s2);
            return insertRange(position, part.begin(), part.end());
        }
        const difference_type n2 = std::distance(s1, s2);
        assert(n2 >= 0);
        assert(pos <= size());
        const auto count = static_cast<size_type>(n2);
        if (capacity() - size() < count)
        {
            assert(!IsAliasedRange(s1, s2));
            reserve(size() + count);
        }
        fillGap(pos, s1, s2);
        return begin() + pos;
    }

    // Opens a gap at `pos` and copies [`s1`, `s2`) into it; there is room for it.
    void fillGap(size_type pos, const E* s1, const E* s2)
    {
        const size_type oldSize = size();
        const size_type tail = oldSize - pos;
        const auto count = static_cast<size_type>(s2 - s1);
        const iterator place = begin() + pos;  // stands, as nothing below takes a new block
        const iterator oldEnd = end();
        if (count <= tail)
        {
            storage_.append(oldEnd - count, oldEnd);
            Detail::copyChars(place + count, place, tail - count);
            Detail::copyChars(place, s1, count);
            return;
        }
        // The range reaches past the old end: what lies there is appended before the tail.
        const E* const t = s1 + tail;
        assert(std::distance(t, s2) >= 0);
        storage_.append(t, s2);
        storage_.append(place, oldEnd);
        Detail::copyChars(place, s1, tail);
    }

    flex_string& replaceRange(const_iterator i1, const_iterator i2, const E* s1, const E* s2)
    {
        assert(i1 <= i2);
        assert(begin() <= i1 && i1 <= end());
        assert(begin() <= i2 && i2 <= end());
        const difference_type n1 = i2 - i1;
        assert(n1 >= 0);
        const difference_type n2 = std::distance(s1, s2);
        assert(n2 >= 0);
        if (IsAliasedRange(s1, s2))
        {
            flex_string whole;
            whole.reserve(size() + static_cast<size_type>(n2) - static_cast<size_type>(n1));
            whole.append(cbegin(), i1).append(s1, s2).append(i2, cend());
            swap(whole);
            return *this;
        }
        const size_type pos = offsetOf(i1);
        const auto overwritten = static_cast<size_type>(std::min(n1, n2));
        if (n1 < n2)
        {
            reserve(size() + static_cast<size_type>(n2 - n1));  // before anything is overwritten: it may throw
        }
        Detail::copyChars(begin() + pos, s1, overwritten);
        if (n1 <= n2)
        {
            insertRange(begin() + pos + overwritten, s1 + overwritten, s2);
        }
        else
        {
            erase(pos + overwritten, static_cast<size_type>(n1 - n2));
        }
        return *this;
    }

    Storage storage_;
};

}  // namespace General::Ortha
