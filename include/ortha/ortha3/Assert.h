// ORTHA_ASSERT: ends the process, with a report, when an internal invariant fails.
//
//     ORTHA_ASSERT(m_internal);
//
// The report goes straight to standard error, so neither log level nor filter can hold it back:
//     ***** Internal Program Error - assertion (m_internal) failed in void CDoor::open(): Src\Door(42)
// The check is made in every build; a false condition is never skipped. No destructor and no exit handler runs afterwards.
//
// Threads: any thread.
#pragma once

#include "ortha/ortha3/Export.h"
#include "ortha/ortha3/detail/source_text.h"

namespace General::Ortha::Detail {

/// Reports a failed assertion and ends the process.
[[noreturn]] ORTHA_API void assertionFailed(const char* expression, const char* function, const char* file, long line);
/// The same with a message, which the report prints last.
[[noreturn]] ORTHA_API void assertionFailedMsg(const char* expression, const char* message, const char* function, const char* file,
                                               long line);

}  // namespace General::Ortha::Detail

#if defined(_MSC_VER)
#define ORTHA_FUNCTION_SIGNATURE __FUNCSIG__
#else
#define ORTHA_FUNCTION_SIGNATURE __PRETTY_FUNCTION__
#endif

/// Ends the process with the assertion report if `condition` is false.
#define ORTHA_ASSERT(condition)                                                                                          \
    do                                                                                                                   \
    {                                                                                                                    \
        if (!(condition))                                                                                                \
        {                                                                                                                \
            static constexpr ::General::Ortha::Detail::SourceText<sizeof(__FILE__)> orthaSource(__FILE__);               \
            ::General::Ortha::Detail::assertionFailed(#condition, ORTHA_FUNCTION_SIGNATURE, orthaSource.text, __LINE__); \
        }                                                                                                                \
    } while (false)
