#include "ortha/ortha3/FileSystem.h"

#include <cstring>

#include "ortha/ortha3/PrintLog.h"

#include "Src/Ortha3/FileDefaultOpt.h"

namespace General::Ortha {

namespace {

constexpr std::size_t prefixSize = 256;

struct Hook
{
    char prefix[prefixSize];  // empty in a row that is free
    IFileSystem* opts;
};

// Set at start-up, read without a lock.
Hook s_hooks[31];

}  // namespace

IFileSystem::~IFileSystem() = default;

int IFileSystem::fseek64(void*, long long, int)
{
    return -1;
}

long long IFileSystem::ftell64(void*)
{
    return -1;
}

void hookFileSystem(const char* prefix, IFileSystem* opts)
{
    ::logInfo("hookFileSystem called!, CFile/CLfsFile member function may be hooked!\n");
    for (Hook& hook : s_hooks)
    {
        if (opts && hook.prefix[0] == 0)
        {
            std::strncpy(hook.prefix, prefix, prefixSize - 1);
            hook.opts = opts;
            return;
        }
        if (!opts && hook.prefix[0] != 0 && std::strncmp(hook.prefix, prefix, prefixSize) == 0)
        {
            std::memset(hook.prefix, 0, prefixSize);
            hook.opts = nullptr;
            return;
        }
    }
}

IFileSystem* getFileSystem(const char* path)
{
    for (const Hook& hook : s_hooks)
    {
        if (hook.prefix[0] != 0 && std::strncmp(path, hook.prefix, std::strlen(hook.prefix)) == 0)
        {
            return hook.opts;
        }
    }
    return FileDefaultOpt::instance();
}

}  // namespace General::Ortha
