#include "Src/Platform/Module.h"

#include <dlfcn.h>
#include <unistd.h>

#include <cstring>
#include <string>

namespace General::Ortha::Platform {

const char* const moduleSuffix = ".so";

namespace {

// A path up to and with its last separator.
std::string directoryOf(const std::string& path)
{
    return path.substr(0, path.rfind('/') + 1);
}

std::string programDirectory()
{
    std::string path(256, 0);
    for (;;)
    {
        const ssize_t length = readlink("/proc/self/exe", path.data(), path.size());
        if (length < 0)
        {
            return {};
        }
        if (static_cast<std::size_t>(length) < path.size())
        {
            path.resize(static_cast<std::size_t>(length));
            return directoryOf(path);
        }
        path.resize(path.size() * 2);
    }
}

std::string libraryDirectory()
{
    Dl_info info;
    const bool found = dladdr(&moduleSuffix, &info) != 0 && info.dli_fname && info.dli_fname[0] == '/';
    return found ? directoryOf(info.dli_fname) : std::string();
}

}  // namespace

void* loadModule(const char* fileName)
{
    if (*fileName == 0 || std::strchr(fileName, '/'))
    {
        return nullptr;
    }
    for (const std::string& directory : {programDirectory(), libraryDirectory()})
    {
        if (directory.empty())
        {
            continue;
        }
        const std::string path = directory + fileName;
        if (access(path.c_str(), F_OK) != 0)
        {
            continue;
        }
        if (void* const module = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL))
        {
            return module;
        }
    }
    return dlopen(fileName, RTLD_NOW | RTLD_LOCAL);
}

void* findSymbol(void* module, const char* name)
{
    return dlsym(module, name);
}

}  // namespace General::Ortha::Platform
