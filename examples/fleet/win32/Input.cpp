#include "../Input.h"

#include <windows.h>

namespace Fleet {

void prepareInput()
{
    // Nothing is in the way of reading.
}

int readInput(char* to, std::size_t size, int milliseconds)
{
    const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
    DWORD count = 0;
    // A pipe cannot be waited for, but asked; anything else is ready when the wait is over.
    if (GetFileType(input) == FILE_TYPE_PIPE)
    {
        if (!PeekNamedPipe(input, nullptr, 0, nullptr, &count, nullptr))
        {
            return -1;
        }
        if (count == 0)
        {
            Sleep(static_cast<DWORD>(milliseconds));
            return 0;
        }
    }
    else if (WaitForSingleObject(input, static_cast<DWORD>(milliseconds)) == WAIT_TIMEOUT)
    {
        return 0;
    }
    return ReadFile(input, to, static_cast<DWORD>(size), &count, nullptr) && count != 0 ? static_cast<int>(count) : -1;
}

}  // namespace Fleet
