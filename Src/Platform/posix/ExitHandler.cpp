#include "Src/Platform/ExitHandler.h"

#include <cstdlib>

namespace General::Ortha::Platform {

bool callAtExit(void (*handler)())
{
    return std::atexit(handler) == 0;
}

}  // namespace General::Ortha::Platform
