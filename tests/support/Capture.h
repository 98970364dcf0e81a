// What a piece of code writes, how it ends, and how often it allocates.
#pragma once

#include <functional>
#include <string>

namespace General::Ortha::Test {

/// What `body` writes to standard output, as a file, caught at its descriptor.
std::string captureOutput(const std::function<void()>& body);

/// What `body` writes to standard output, as a terminal that passes every byte through. The body runs in a forked child.
std::string captureTerminal(const std::function<void()>& body);

struct ChildResult
{
    int status;  ///< as waitpid gives it; 0 when the child left by exit(0)
    std::string output;
    std::string errors;
};

/// Runs `body` in a forked child, which then leaves by exit(0), so that its exit handlers run. To be called while there is one thread.
ChildResult runInChild(const std::function<void()>& body);

/// Calls of operator new so far, by all threads. Linking Capture.cpp replaces the global one.
unsigned long allocationCount();

}  // namespace General::Ortha::Test
