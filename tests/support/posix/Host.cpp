#include "support/Host.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <malloc.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cstdlib>
#include <ctime>
#include <fstream>

#include "support/Capture.h"

namespace General::Ortha::Test {

namespace {

// The first line of what the system tells about a thread of this process.
std::string systemLine(int threadId, const char* file)
{
    std::string line;
    std::getline(std::ifstream("/proc/self/task/" + std::to_string(threadId) + "/" + file), line);
    return line;
}

}  // namespace

const std::size_t systemNameLength = 15;
const bool terminationUnwinds = true;
const unsigned int ownersPermissions = 0600;
const bool searchesReadAhead = false;
const int fewestDescriptors = 0;
const bool callsLateHandlers = true;
const bool zonesHaveRules = true;
const bool hasLinks = true;
const char* const patternName = "*";
const char* const openedDirectory = "errno:21, errmsg:Is a directory\n";
const char* const removedDirectory = openedDirectory;

void setZone(const char* zone)
{
    setenv("TZ", zone, 1);
    tzset();
}

std::int64_t utcSeconds(std::tm& fields)
{
    return timegm(&fields);
}

std::string assertReport(const std::string& condition)
{
    return "Assertion `" + condition + "' failed";
}

std::string systemName(int threadId)
{
    return systemLine(threadId, "comm");
}

bool isAsleep(int threadId)
{
    return systemLine(threadId, "stat").find(") S ") != std::string::npos;
}

std::size_t openDescriptors()
{
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}));
}

// The bare system call: the sanitizers lose track of a thread that is cancelled in a frame or a call that they watch.
void sleepForAnHour()
{
    static const timespec anHour{3600, 0};
    clock_nanosleep(CLOCK_MONOTONIC, 0, &anHour, nullptr);
}

std::string inheritedDescriptors()
{
    return captureOutput([] { EXPECT_EQ(std::system("ls -l /proc/self/fd"), 0); });
}

bool isInherited(int descriptor)
{
    return fcntl(descriptor, F_GETFD) != FD_CLOEXEC;
}

struct ScarceDescriptors::Taken
{
    rlimit usual;
};

ScarceDescriptors::ScarceDescriptors(int left) : m_taken(new Taken)
{
    getrlimit(RLIMIT_NOFILE, &m_taken->usual);
    const int next = dup(1);
    close(next);
    const rlimit scarce{static_cast<rlim_t>(next + left), m_taken->usual.rlim_max};
    setrlimit(RLIMIT_NOFILE, &scarce);
}

ScarceDescriptors::~ScarceDescriptors()
{
    setrlimit(RLIMIT_NOFILE, &m_taken->usual);
    delete m_taken;
}

void hide(const std::string&)
{
    // Its name does.
}

std::filesystem::path programFile()
{
    return std::filesystem::read_symlink("/proc/self/exe");
}

bool loadLibrary(const std::string& path)
{
    return dlopen(path.c_str(), RTLD_NOW) != nullptr;
}

std::size_t blockSize(void* memory)
{
    return malloc_usable_size(memory);
}

bool makeLink(const std::string& target, const std::string& path)
{
    return symlink(target.c_str(), path.c_str()) == 0;
}

}  // namespace General::Ortha::Test
