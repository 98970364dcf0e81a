#include "support/Capture.h"

#include <gtest/gtest.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <new>

namespace General::Ortha::Test {

static std::atomic<unsigned long> s_allocations{0};

std::string captureOutput(const std::function<void()>& body)
{
    ::testing::internal::CaptureStdout();
    body();
    return ::testing::internal::GetCapturedStdout();
}

std::string captureTerminal(const std::function<void()>& body)
{
    termios raw{};
    cfmakeraw(&raw);
    int screen = -1;
    const pid_t child = forkpty(&screen, nullptr, &raw, nullptr);
    if (child == 0)
    {
        body();
        std::exit(0);
    }
    std::string text;
    for (char c = 0; read(screen, &c, 1) == 1;)
    {
        text += c;
    }
    close(screen);
    waitpid(child, nullptr, 0);
    return text;
}

ChildResult runInChild(const std::function<void()>& body)
{
    ChildResult result{-1, "", ""};
    ::testing::internal::CaptureStdout();
    ::testing::internal::CaptureStderr();
    const pid_t child = fork();
    if (child == 0)
    {
        body();
        std::exit(0);
    }
    waitpid(child, &result.status, 0);
    result.output = ::testing::internal::GetCapturedStdout();
    result.errors = ::testing::internal::GetCapturedStderr();
    return result;
}

unsigned long allocationCount()
{
    return s_allocations;
}

}  // namespace General::Ortha::Test

void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    ++General::Ortha::Test::s_allocations;
    return std::malloc(size);
}

void* operator new(std::size_t size)
{
    void* const memory = operator new(size, std::nothrow);
    return memory ? memory : throw std::bad_alloc();
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}
