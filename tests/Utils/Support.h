// What the tests of the utilities share. Bytes are kept as strings.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>
#include <string>

#include "support/LogLines.h"

namespace General::Utils::Test {

/// A pointer to whatever a function wants.
struct At
{
    char* to = nullptr;
    template <class T>
    operator T*() const
    {
        return reinterpret_cast<T*>(to);
    }
};

inline At at(const std::string& bytes, std::size_t position = 0)
{
    return {const_cast<char*>(bytes.data()) + position};
}

/// A number below `limit`, of a fixed sequence.
inline std::size_t below(std::size_t limit)
{
    static std::mt19937 engine(20);
    return engine() % limit;
}

inline std::string randomBytes(std::size_t size)
{
    std::string bytes(size, ' ');
    std::generate(bytes.begin(), bytes.end(), [] { return static_cast<char>(below(256)); });
    return bytes;
}

/// What `body(destination)` leaves in memory that held `before`; nothing around it may change.
template <class Body>
std::string room(const std::string& before, Body body)
{
    const std::string canary(16, '\xA5');
    const std::string memory = canary + before + canary;
    body(at(memory, 16));
    EXPECT_EQ(memory.substr(0, 16) + memory.substr(16 + before.size()), canary + canary);
    return memory.substr(16, before.size());
}

/// What `body` logs: the texts, after a letter for the level each.
inline std::string logged(const std::function<void()>& body)
{
    Ortha::Test::LogLines lines;
    body();
    std::string all;
    for (const std::string& line : lines.take())
    {
        const std::size_t text = line.find(']') + 1, object = line.compare(text, 5, "this:") == 0 ? line.find(' ', text) + 1 : text;
        all += line[0] == '[' ? line[10] + (" " + line.substr(object)) : line;  // what goes on in an open line has no level
    }
    return all;
}

}  // namespace General::Utils::Test
