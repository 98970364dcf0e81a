#include "host.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <pthread.h>
#include <sched.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <cstdlib>
#include <ctime>

namespace Bench {

namespace {

double secondsOf(clockid_t clock)
{
    timespec time{};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

}  // namespace

const char* const memoryDirectory = "/dev/shm";
const char* const nullFile = "/dev/null";

std::vector<int> processors()
{
    std::vector<int> numbers;
    cpu_set_t set;
    CPU_ZERO(&set);
    pthread_getaffinity_np(pthread_self(), sizeof(set), &set);
    for (int i = 0; i < CPU_SETSIZE; ++i)
    {
        if (CPU_ISSET(i, &set))
        {
            numbers.push_back(i);
        }
    }
    return numbers;
}

bool runOn(const std::vector<int>& processors)
{
    cpu_set_t set;
    CPU_ZERO(&set);
    for (const int processor : processors)
    {
        CPU_SET(processor, &set);
    }
    return pthread_setaffinity_np(pthread_self(), sizeof(set), &set) == 0;
}

double processorSeconds()
{
    return secondsOf(CLOCK_PROCESS_CPUTIME_ID);
}

double processorSeconds(std::thread& thread)
{
    clockid_t clock{};
    pthread_getcpuclockid(thread.native_handle(), &clock);
    return secondsOf(clock);
}

void setZone(const char* zone)
{
    setenv("TZ", zone, 1);
    tzset();
}

bool isInMemory(const std::string& path)
{
    constexpr auto inMemory = 0x01021994;  // the system's number of such file systems
    struct statfs found;
    return statfs(path.c_str(), &found) == 0 && found.f_type == inMemory;
}

int redirectOutput(const std::string& file)
{
    const int before = dup(STDOUT_FILENO), to = open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    const bool redirected = before >= 0 && to >= 0 && dup2(to, STDOUT_FILENO) >= 0;
    close(to);
    if (!redirected)
    {
        close(before);
    }
    return redirected ? before : -1;
}

void restoreOutput(int before)
{
    dup2(before, STDOUT_FILENO);
    close(before);
}

void* loadFunction(const char* library, const char* name)
{
    void* const loaded = dlopen(library, RTLD_NOW | RTLD_LOCAL);
    return loaded ? dlsym(loaded, name) : nullptr;
}

}  // namespace Bench
