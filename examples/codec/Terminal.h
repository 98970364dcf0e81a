// The standard streams. One implementation a system, in posix/ and win32/.
#pragma once

namespace Codec {

/// Has standard input and output pass bytes as they are.
void useBytes();
/// Whether a person reads the messages.
bool isTerminal();

}  // namespace Codec
