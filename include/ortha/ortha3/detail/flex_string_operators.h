// The free functions of flex_string: concatenation, comparison, streams, erasure, hash.
#pragma once

#include <functional>
#include <istream>
#include <ostream>
#include <string>

#include "ortha/ortha3/detail/flex_string_shell.h"

#if __cplusplus >= 202002L
#include <compare>
#endif

namespace General::Ortha {

namespace Detail {

/// Both texts in a string with room for exactly their sum.
template <typename String>
String concat(std::basic_string_view<typename String::value_type, typename String::traits_type> a,
              std::basic_string_view<typename String::value_type, typename String::traits_type> b)
{
    String result;
    result.reserve(a.size() + b.size());
    result.append(a).append(b);
    return result;
}

/// Runs `read` on a standard string that starts with the text of `str`, and takes the result over, also when `read` throws: the
/// rules of a stream about what is kept of its argument hold as they are.
template <typename String, typename Read>
void readThrough(String& str, Read read)
{
    std::basic_string<typename String::value_type, typename String::traits_type> text(str.begin(), str.end());
    try
    {
        read(text);
    }
    catch (...)
    {
        str.assign(text);
        throw;
    }
    str.assign(text);
}

}  // namespace Detail

template <typename E, typename T, typename A, typename S>
flex_string<E, T, A, S> operator+(const flex_string<E, T, A, S>& a, const flex_string<E, T, A, S>& b)
{
    return Detail::concat<flex_string<E, T, A, S>>(a, b);
}

template <typename E, typename T, typename A, typename S>
flex_string<E, T, A, S> operator+(const flex_string<E, T, A, S>& a, const E* b)
{
    return Detail::concat<flex_string<E, T, A, S>>(a, b);
}

template <typename E, typename T, typename A, typename S>
flex_string<E, T, A, S> operator+(const E* a, const flex_string<E, T, A, S>& b)
{
    return Detail::concat<flex_string<E, T, A, S>>(a, b);
}

template <typename E, typename T, typename A, typename S>
flex_string<E, T, A, S> operator+(const flex_string<E, T, A, S>& a, E b)
{
    return Detail::concat<flex_string<E, T, A, S>>(a, {&b, 1});
}

template <typename E, typename T, typename A, typename S>
flex_string<E, T, A, S> operator+(E a, const flex_string<E, T, A, S>& b)
{
    return Detail::concat<flex_string<E, T, A, S>>({&a, 1}, b);
}

// A temporary operand takes the other one in.

template <typename E, typename T, typename A, typename S>
flex_string<E, T, A, S> operator+(flex_string<E, T, A, S>&& a, const flex_string<E, T, A, S>& b)
{
    return std::move(a.append(b));
}

template <typename E, typename T, typename A, typename S>
flex_string<E, T, A, S> operator+(flex_string<E, T, A, S>&& a, flex_string<E, T, A, S>&& b)
{
    return std::move(a.append(b));
}

template <typename E, typename T, typename A, typename S>
flex_string<E, T, A, S> operator+(flex_string<E, T, A, S>&& a, const E* b)
{
    return std::move(a.append(b));
}

template <typename E, typename T, typename A, typename S>
flex_string<E, T, A, S> operator+(flex_string<E, T, A, S>&& a, E b)
{
    return std::move(a.append(1, b));
}

template <typename E, typename T, typename A, typename S>
flex_string<E, T, A, S> operator+(const flex_string<E, T, A, S>& a, flex_string<E, T, A, S>&& b)
{
    return std::move(b.insert(0, a));
}

template <typename E, typename T, typename A, typename S>
flex_string<E, T, A, S> operator+(const E* a, flex_string<E, T, A, S>&& b)
{
    return std::move(b.insert(0, a));
}

template <typename E, typename T, typename A, typename S>
flex_string<E, T, A, S> operator+(E a, flex_string<E, T, A, S>&& b)
{
    return std::move(b.insert(0, 1, a));
}

// A string and a view compare through the operators of the view.

template <typename E, typename T, typename A, typename S>
bool operator==(const flex_string<E, T, A, S>& a, const flex_string<E, T, A, S>& b) noexcept
{
    return std::basic_string_view<E, T>(a) == std::basic_string_view<E, T>(b);
}

template <typename E, typename T, typename A, typename S>
bool operator==(const flex_string<E, T, A, S>& a, const E* b) noexcept
{
    return std::basic_string_view<E, T>(a) == std::basic_string_view<E, T>(b);
}

#if __cplusplus >= 202002L

template <typename E, typename T, typename A, typename S>
auto operator<=>(const flex_string<E, T, A, S>& a, const flex_string<E, T, A, S>& b) noexcept
{
    return std::basic_string_view<E, T>(a) <=> std::basic_string_view<E, T>(b);
}

template <typename E, typename T, typename A, typename S>
auto operator<=>(const flex_string<E, T, A, S>& a, const E* b) noexcept
{
    return std::basic_string_view<E, T>(a) <=> std::basic_string_view<E, T>(b);
}

#else

template <typename E, typename T, typename A, typename S>
bool operator==(const E* a, const flex_string<E, T, A, S>& b) noexcept
{
    return b == a;
}

template <typename E, typename T, typename A, typename S>
bool operator!=(const flex_string<E, T, A, S>& a, const flex_string<E, T, A, S>& b) noexcept
{
    return !(a == b);
}

template <typename E, typename T, typename A, typename S>
bool operator!=(const flex_string<E, T, A, S>& a, const E* b) noexcept
{
    return !(a == b);
}

template <typename E, typename T, typename A, typename S>
bool operator!=(const E* a, const flex_string<E, T, A, S>& b) noexcept
{
    return !(b == a);
}

template <typename E, typename T, typename A, typename S>
bool operator<(const flex_string<E, T, A, S>& a, const flex_string<E, T, A, S>& b) noexcept
{
    return a.compare(b) < 0;
}

template <typename E, typename T, typename A, typename S>
bool operator<(const flex_string<E, T, A, S>& a, const E* b) noexcept
{
    return a.compare(b) < 0;
}

template <typename E, typename T, typename A, typename S>
bool operator<(const E* a, const flex_string<E, T, A, S>& b) noexcept
{
    return b.compare(a) > 0;
}

template <typename E, typename T, typename A, typename S>
bool operator>(const flex_string<E, T, A, S>& a, const flex_string<E, T, A, S>& b) noexcept
{
    return b < a;
}

template <typename E, typename T, typename A, typename S>
bool operator>(const flex_string<E, T, A, S>& a, const E* b) noexcept
{
    return b < a;
}

template <typename E, typename T, typename A, typename S>
bool operator>(const E* a, const flex_string<E, T, A, S>& b) noexcept
{
    return b < a;
}

template <typename E, typename T, typename A, typename S>
bool operator<=(const flex_string<E, T, A, S>& a, const flex_string<E, T, A, S>& b) noexcept
{
    return !(b < a);
}

template <typename E, typename T, typename A, typename S>
bool operator<=(const flex_string<E, T, A, S>& a, const E* b) noexcept
{
    return !(b < a);
}

template <typename E, typename T, typename A, typename S>
bool operator<=(const E* a, const flex_string<E, T, A, S>& b) noexcept
{
    return !(b < a);
}

template <typename E, typename T, typename A, typename S>
bool operator>=(const flex_string<E, T, A, S>& a, const flex_string<E, T, A, S>& b) noexcept
{
    return !(a < b);
}

template <typename E, typename T, typename A, typename S>
bool operator>=(const flex_string<E, T, A, S>& a, const E* b) noexcept
{
    return !(a < b);
}

template <typename E, typename T, typename A, typename S>
bool operator>=(const E* a, const flex_string<E, T, A, S>& b) noexcept
{
    return !(a < b);
}

#endif

template <typename E, typename T, typename A, typename S>
void swap(flex_string<E, T, A, S>& a, flex_string<E, T, A, S>& b) noexcept
{
    a.swap(b);
}

template <typename E, typename T, typename A, typename S>
std::basic_ostream<E, T>& operator<<(std::basic_ostream<E, T>& os, const flex_string<E, T, A, S>& str)
{
    return os << std::basic_string_view<E, T>(str);
}

template <typename E, typename T, typename A, typename S>
std::basic_istream<E, T>& operator>>(std::basic_istream<E, T>& is, flex_string<E, T, A, S>& str)
{
    Detail::readThrough(str, [&is](auto& text) { is >> text; });
    return is;
}

template <typename E, typename T, typename A, typename S>
std::basic_istream<E, T>& getline(std::basic_istream<E, T>&& is, flex_string<E, T, A, S>& str, E delimiter)
{
    Detail::readThrough(str, [&](auto& text) { std::getline(is, text, delimiter); });
    return is;
}

template <typename E, typename T, typename A, typename S>
std::basic_istream<E, T>& getline(std::basic_istream<E, T>& is, flex_string<E, T, A, S>& str, E delimiter)
{
    return getline(std::move(is), str, delimiter);
}

template <typename E, typename T, typename A, typename S>
std::basic_istream<E, T>& getline(std::basic_istream<E, T>&& is, flex_string<E, T, A, S>& str)
{
    return getline(std::move(is), str, is.widen('\n'));
}

template <typename E, typename T, typename A, typename S>
std::basic_istream<E, T>& getline(std::basic_istream<E, T>& is, flex_string<E, T, A, S>& str)
{
    return getline(std::move(is), str, is.widen('\n'));
}

/// Removes every character for which `unwanted` holds; returns how many there were.
template <typename E, typename T, typename A, typename S, typename Predicate>
std::size_t erase_if(flex_string<E, T, A, S>& str, Predicate unwanted)
{
    const std::size_t oldSize = str.size();
    str.erase(std::remove_if(str.begin(), str.end(), unwanted), str.end());
    return oldSize - str.size();
}

template <typename E, typename T, typename A, typename S, typename U>
std::size_t erase(flex_string<E, T, A, S>& str, const U& unwanted)
{
    return erase_if(str, [&unwanted](const E& c) { return c == unwanted; });
}

}  // namespace General::Ortha

/// Equal to the hash of a standard string or view of the same text.
template <typename E, typename T, typename A, typename S>
struct std::hash<General::Ortha::flex_string<E, T, A, S>>
{
    std::size_t operator()(const General::Ortha::flex_string<E, T, A, S>& str) const noexcept
    {
        return std::hash<std::basic_string_view<E, T>>()(str);
    }
};
