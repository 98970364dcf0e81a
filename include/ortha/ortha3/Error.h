// The last error, one code per thread, and the table of error texts, one per process.
//
//     setErrMsg(0x10001234, "the door is locked");
//     setLastError(0x10001234);
//     logWarn("%s\n", getErrMsg(getLastError()));               // the door is locked
//
// 0 means no error. The library's own codes are 0x1000nnnn for time and memory and 0x1003nnnn for components; whoever owns a range of codes
// registers its texts.
//
// Threads: every function may be called from any thread.
#pragma once

#include "ortha/ortha3/Export.h"
#include "ortha/ortha3/FlexString.h"

namespace General::Ortha {

/// Stores the calling thread's last error.
ORTHA_API void setLastError(int code);
/// The calling thread's last error; 0 if it never set one.
[[nodiscard]] ORTHA_API int getLastError();

/// Sets the text of `code`, replacing an older one. The text is copied; null counts as empty.
ORTHA_API void setErrMsg(int code, const char* text);
/// The text of `code`, empty if it has none, never null. Valid until this code's text is set again, or the process exits; a thread that
/// cannot rule that out takes a copy with getErrorMessage.
[[nodiscard]] ORTHA_API const char* getErrMsg(int code);

/// As setErrMsg. The text ends at its first zero character.
ORTHA_API void setErrorMessage(int code, const string& text);
/// A copy of the text of `code`, empty if it has none.
[[nodiscard]] ORTHA_API string getErrorMessage(int code);

}  // namespace General::Ortha
