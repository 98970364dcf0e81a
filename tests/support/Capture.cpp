#include "support/Capture.h"

#include <gtest/gtest.h>

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
