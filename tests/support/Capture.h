// What a piece of code writes, how it ends, and how often it allocates.
#pragma once

#include <chrono>
#include <functional>
#include <string>

namespace General::Ortha::Test {

/// What `body` writes to standard output, as a file, caught at its descriptor.
std::string captureOutput(const std::function<void()>& body);

/// What `body` writes to standard output, as a terminal that passes every byte through. The body runs in a forked child. Where there is
/// fork.
std::string captureTerminal(const std::function<void()>& body);

struct ChildResult
{
    int code;      ///< what the child left with, 0 behind `body`; -1 if it was ended from outside
    bool aborted;  ///< it ended by abort()
    std::string output;
    std::string errors;
};

/// Runs `body` in a child, which then leaves by exit(0), so that its exit handlers run; after `limit` it is ended. The child is a fork, or,
/// where there is none, another run of the test that gets to this call. To be called while there is one thread.
ChildResult runInChild(const std::function<void()>& body, std::chrono::seconds limit = std::chrono::seconds(60));

/// Calls of operator new so far, by all threads. Linking Capture.cpp replaces the global one.
unsigned long allocationCount();

}  // namespace General::Ortha::Test
