#include "Src/Platform/Module.h"

#include <cstring>
#include <string>

#include "Src/Platform/win32/Windows.h"

namespace General::Ortha::Platform {

const char* const moduleSuffix = ".dll";

namespace {

// The directory of a module's file, with its separator; of the program's for null. Empty if it cannot be told.
std::string directoryOf(HMODULE module)
{
    std::string path(MAX_PATH, 0);
    for (;;)
    {
        const DWORD length = GetModuleFileNameA(module, path.data(), static_cast<DWORD>(path.size()));
        if (length == 0)
        {
            return {};
        }
        if (length < path.size())
        {
            path.resize(length);
            return path.substr(0, path.find_last_of("\\/") + 1);
        }
        path.resize(path.size() * 2);
    }
}

HMODULE thisLibrary()
{
    HMODULE module = nullptr;
    constexpr DWORD flags = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    return GetModuleHandleExA(flags, reinterpret_cast<const char*>(&moduleSuffix), &module) ? module : nullptr;
}

}  // namespace

void* loadModule(const char* fileName)
{
    if (*fileName == 0 || std::strpbrk(fileName, "/\\:"))
    {
        return nullptr;
    }
    for (const std::string& directory : {directoryOf(nullptr), directoryOf(thisLibrary())})
    {
        const std::string path = directory + fileName;
        if (directory.empty() || GetFileAttributesA(path.c_str()) == INVALID_FILE_ATTRIBUTES)
        {
            continue;
        }
        if (void* const module = LoadLibraryA(path.c_str()))
        {
            return module;
        }
    }
    return LoadLibraryExA(fileName, nullptr, LOAD_LIBRARY_SEARCH_DEFAULT_DIRS);
}

void* findSymbol(void* module, const char* name)
{
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(module), name));
}

}  // namespace General::Ortha::Platform
