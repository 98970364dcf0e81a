#include "../Terminal.h"

#include <fcntl.h>
#include <io.h>

#include <cstdio>

namespace Codec {

void useBytes()
{
    _setmode(_fileno(stdin), _O_BINARY);
    _setmode(_fileno(stdout), _O_BINARY);
}

bool isTerminal()
{
    return _isatty(_fileno(stderr)) != 0;
}

}  // namespace Codec
