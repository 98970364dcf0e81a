// flex_string: the string of the library's signatures. Up to 31 characters are held in the object, longer texts in one block.
//
// It has the members, operators and free functions of std::string, and converts to std::string_view.
//
//     string name("Nonamed");              // no allocation up to 31 characters
//     name += "-1";
//     std::string_view view = name;        // valid until `name` changes
//     std::printf("%s\n", name.c_str());   // c_str writes the terminator
//     name.reserve(200);                   // growth takes exactly what is needed: reserve before many appends
//
// Errors: a position or size out of range is a programming error, checked by `assert`; nothing throws but the allocator. Whatever throws
// leaves a valid string.
// Threads: one thread at a time. Reading one string from several threads is safe through begin, end, size and the view; c_str and data
// write the terminator. Copies share nothing.
#pragma once

#include <memory>
#include <string>

#include "ortha/ortha3/detail/allocatorstringstorage.h"
#include "ortha/ortha3/detail/flex_string_operators.h"
#include "ortha/ortha3/detail/flex_string_shell.h"
#include "ortha/ortha3/detail/ministringstorage.h"
#include "ortha/ortha3/detail/smallstringopt.h"

namespace General::Ortha {

template <typename E, typename T = std::char_traits<E>, typename A = std::allocator<E>,
          typename Storage = SmallStringOpt<AllocatorStringStorage<E, A>, 31, E*>>
class flex_string;

template <typename It, typename E = typename std::iterator_traits<It>::value_type>
flex_string(It, It) -> flex_string<E>;

template <typename E>
flex_string(const E*) -> flex_string<E>;

template <typename E>
flex_string(const E*, std::size_t) -> flex_string<E>;

/// The string of the library's signatures.
using string = flex_string<char>;

/// One pointer wide, and without a block while it is empty: for records with many text fields. Every text is on the heap; memory
/// that runs out ends the process.
using mini_string = flex_string<char, std::char_traits<char>, std::allocator<char>, MiniStringStorage<char, std::allocator<char>>>;

// Strings cross the boundary of the library by value: their layout is part of the binary interface.
static_assert(sizeof(string) == 32 && alignof(string) == alignof(char*));
static_assert(sizeof(mini_string) == sizeof(char*));

}  // namespace General::Ortha
