#include "Src/Ortha3/LineFormat.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <string>

using General::Ortha::Detail::formatMessage;

namespace {

// Both formatters on one call's arguments, in buffers of one size. The format is no literal, so that the compiler leaves odd ones alone.
void expectSame(std::size_t size, const char* format, ...)
{
    std::string ours(size, '#');
    std::string theirs(size, '#');
    va_list args;
    va_list again;
    va_start(args, format);
    va_copy(again, args);
    const int count = formatMessage(ours.data(), size, format, args);
    EXPECT_EQ(count, std::vsnprintf(theirs.data(), size, format, again)) << format;
    va_end(again);
    va_end(args);
    EXPECT_STREQ(ours.c_str(), theirs.c_str()) << format << " in " << size;
}

}  // namespace

TEST(LineFormat, AnswersAsTheRuntimeDoesInWhateverRoom)
{
    const char* const noText = nullptr;
    for (const std::size_t size : {1u, 2u, 7u, 20u, 200u})
    {
        expectSame(size, "no conversion at all");
        expectSame(size, "");
        expectSame(size, "%d|%i|%d|%d", 0, -1, INT_MAX, INT_MIN);
        expectSame(size, "%u|%lu|%llu|%zu", UINT_MAX, ULONG_MAX, ULLONG_MAX, SIZE_MAX);
        expectSame(size, "%ld|%lld|%zd", LONG_MIN, LLONG_MIN, PTRDIFF_MIN);
        expectSame(size, "%s is %c%c, 100%%", "the value", 'o', 'k');
        expectSame(size, "%s", "");
        // From the first of these on the runtime takes over, with all arguments.
        expectSame(size, "%d then %5d|%-4s|%+d", 1, 2, "three", 4);
        expectSame(size, "%s %.*s %x %p", "one", 2, "two", 255u, static_cast<const void*>(&size));
        expectSame(size, "%d %.2f %hd %ls", 1, 2.5, 3, L"wide");
        expectSame(size, "%s %s", "text", noText);
        errno = ENOENT;
        expectSame(size, "%d %m", 1);
    }
}
