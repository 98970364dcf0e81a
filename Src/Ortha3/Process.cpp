#include "ortha/ortha3/Process.h"

#include <cstring>

#include "ortha/ortha3/PrintLog.h"

#include "Src/Platform/ChildProcess.h"

namespace General::Ortha {

int systemCall(const char* command)
{
    constexpr std::size_t lengthLimit = 260;
    if (!command)
    {
        return 1;
    }
    if (std::strlen(command) >= lengthLimit)
    {
        logError("systemCall's input parameter is too long, command:%s\n", command);
        return -1;
    }
    if (!Platform::runChildProcess(command))
    {
        logWarn("systemCall CreateProcessA cmd:%s failed\n", command);
        return -1;
    }
    return 0;
}

std::uint64_t getCurrectProcessID()
{
    return Platform::currentProcessId();
}

}  // namespace General::Ortha
