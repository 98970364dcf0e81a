#include "../Terminal.h"

#include <unistd.h>

namespace Codec {

void useBytes()
{
    // They do.
}

bool isTerminal()
{
    return isatty(STDERR_FILENO) == 1;
}

}  // namespace Codec
