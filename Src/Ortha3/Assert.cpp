#include "ortha/ortha3/Assert.h"

#include <cstdio>
#include <cstdlib>

#include "ortha/ortha3/PrintLog.h"

namespace General::Ortha::Detail {

namespace {

[[noreturn]] void custom_abort()
{
    ::logInfo("custom_abort");
    std::abort();
}

}  // namespace

void assertionFailed(const char* expression, const char* function, const char* file, long line)
{
    std::fprintf(stderr, "***** Internal Program Error - assertion (%s) failed in %s: %s(%ld)\n", expression, function, file, line);
    custom_abort();
}

void assertionFailedMsg(const char* expression, const char* message, const char* function, const char* file, long line)
{
    std::fprintf(stderr, "***** Internal Program Error - assertion (%s) failed in %s: %s(%ld): %s\n", expression, function, file, line,
                 message);
    custom_abort();
}

}  // namespace General::Ortha::Detail
