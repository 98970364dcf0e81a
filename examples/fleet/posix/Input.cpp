#include "../Input.h"

#include <poll.h>
#include <unistd.h>

#include <csignal>

namespace Fleet {

void prepareInput()
{
    std::signal(SIGTTIN, SIG_IGN);  // in the background of a terminal there is nothing to read, which must not stop the program
}

int readInput(char* to, std::size_t size, int milliseconds)
{
    pollfd input{STDIN_FILENO, POLLIN, 0};
    if (poll(&input, 1, milliseconds) <= 0)
    {
        return 0;
    }
    const ssize_t count = read(STDIN_FILENO, to, size);
    return count > 0 ? static_cast<int>(count) : -1;
}

}  // namespace Fleet
