// StringSearch: the members of flex_string that only read its text and answer with a position or an order.
//
// Each has the meaning of its namesake in std::string. Every text is looked at through a std::basic_string_view, so that one overload
// serves strings of either storage, standard strings and views alike.
#pragma once

#include <algorithm>
#include <string_view>
#include <type_traits>

#include "ortha/ortha3/detail/flex_string_block.h"

namespace General::Ortha::Detail {

/// Enables a template for what reads as a string view, except for pointers, which have overloads of their own.
template <typename V, typename E, typename T>
using IfViewLike =
    std::enable_if_t<std::is_convertible_v<const V&, std::basic_string_view<E, T>> && !std::is_convertible_v<const V&, const E*>, int>;

/// `Derived` converts to `std::basic_string_view<E, T>`.
template <typename Derived, typename E, typename T>
class StringSearch
{
    using View = std::basic_string_view<E, T>;
    template <typename V>
    using IfView = IfViewLike<V, E, T>;

public:
    using size_type = std::size_t;
    static constexpr size_type npos = View::npos;

    size_type find(const E* s, size_type pos, size_type n) const noexcept { return text().find(s, pos, n); }
    size_type find(const E* s, size_type pos = 0) const noexcept { return text().find(s, pos); }
    size_type find(E c, size_type pos = 0) const noexcept { return text().find(c, pos); }
    template <typename V, IfView<V> = 0>
    size_type find(const V& v, size_type pos = 0) const noexcept
    {
        return text().find(View(v), pos);
    }

    size_type rfind(const E* s, size_type pos, size_type n) const noexcept { return text().rfind(s, pos, n); }
    size_type rfind(const E* s, size_type pos = npos) const noexcept { return text().rfind(s, pos); }
    size_type rfind(E c, size_type pos = npos) const noexcept { return text().rfind(c, pos); }
    template <typename V, IfView<V> = 0>
    size_type rfind(const V& v, size_type pos = npos) const noexcept
    {
        return text().rfind(View(v), pos);
    }

    size_type find_first_of(const E* s, size_type pos, size_type n) const noexcept { return text().find_first_of(s, pos, n); }
    size_type find_first_of(const E* s, size_type pos = 0) const noexcept { return text().find_first_of(s, pos); }
    size_type find_first_of(E c, size_type pos = 0) const noexcept { return text().find_first_of(c, pos); }
    template <typename V, IfView<V> = 0>
    size_type find_first_of(const V& v, size_type pos = 0) const noexcept
    {
        return text().find_first_of(View(v), pos);
    }

    size_type find_last_of(const E* s, size_type pos, size_type n) const noexcept { return text().find_last_of(s, pos, n); }
    size_type find_last_of(const E* s, size_type pos = npos) const noexcept { return text().find_last_of(s, pos); }
    size_type find_last_of(E c, size_type pos = npos) const noexcept { return text().find_last_of(c, pos); }
    template <typename V, IfView<V> = 0>
    size_type find_last_of(const V& v, size_type pos = npos) const noexcept
    {
        return text().find_last_of(View(v), pos);
    }

    size_type find_first_not_of(const E* s, size_type pos, size_type n) const noexcept { return text().find_first_not_of(s, pos, n); }
    size_type find_first_not_of(const E* s, size_type pos = 0) const noexcept { return text().find_first_not_of(s, pos); }
    size_type find_first_not_of(E c, size_type pos = 0) const noexcept { return text().find_first_not_of(c, pos); }
    template <typename V, IfView<V> = 0>
    size_type find_first_not_of(const V& v, size_type pos = 0) const noexcept
    {
        return text().find_first_not_of(View(v), pos);
    }

    size_type find_last_not_of(const E* s, size_type pos, size_type n) const noexcept { return text().find_last_not_of(s, pos, n); }
    size_type find_last_not_of(const E* s, size_type pos = npos) const noexcept { return text().find_last_not_of(s, pos); }
    size_type find_last_not_of(E c, size_type pos = npos) const noexcept { return text().find_last_not_of(c, pos); }
    template <typename V, IfView<V> = 0>
    size_type find_last_not_of(const V& v, size_type pos = npos) const noexcept
    {
        return text().find_last_not_of(View(v), pos);
    }

    bool starts_with(View v) const noexcept { return text().substr(0, v.size()) == v; }
    bool starts_with(E c) const noexcept { return starts_with(View(&c, 1)); }
    bool starts_with(const E* s) const noexcept { return starts_with(View(s)); }

    bool ends_with(View v) const noexcept { return v.size() <= text().size() && text().substr(text().size() - v.size()) == v; }
    bool ends_with(E c) const noexcept { return ends_with(View(&c, 1)); }
    bool ends_with(const E* s) const noexcept { return ends_with(View(s)); }

    /// The three-way order, by the character traits. A position beyond the end is an assertion.
    template <typename V, IfView<V> = 0>
    int compare(const V& v) const noexcept
    {
        return text().compare(View(v));
    }
    template <typename V, IfView<V> = 0>
    int compare(size_type pos, size_type n, const V& v) const noexcept
    {
        return part(pos, n).compare(View(v));
    }
    template <typename V, IfView<V> = 0>
    int compare(size_type pos1, size_type n1, const V& v, size_type pos2, size_type n2 = npos) const noexcept
    {
        return part(pos1, n1).compare(partOf(v, pos2, n2));
    }
    int compare(const E* s) const noexcept { return text().compare(s); }
    int compare(size_type pos, size_type n, const E* s) const noexcept { return part(pos, n).compare(s); }
    int compare(size_type pos, size_type n1, const E* s, size_type n2) const noexcept { return part(pos, n1).compare(View(s, n2)); }

protected:
    View text() const noexcept { return static_cast<const Derived&>(*this); }

    /// At most `n` characters of `v` from `pos` on, which is checked like every position.
    static View partOf(View v, size_type pos, size_type n) noexcept
    {
        pos = enforcePosition(pos, v.size());
        return View(v.data() + pos, std::min(n, v.size() - pos));
    }

    View part(size_type pos, size_type n) const noexcept { return partOf(text(), pos, n); }
};

}  // namespace General::Ortha::Detail
