// The recursive directory operations of CFile.
#include <cstdio>
#include <cstring>
#include <string>

#include "ortha/ortha3/File.h"
#include "ortha/ortha3/FileFind.h"
#include "ortha/ortha3/PrintLog.h"

namespace General::Ortha {

namespace {

bool isPath(const char* path)
{
    if (path && *path != 0)
    {
        return true;
    }
    ::logWarn("the path is unvalid");
    return false;
}

bool isDots(const std::string& name)
{
    return name == "." || name == "..";
}

}  // namespace

bool CFile::makeDirectoryRecursively(const char* path)
{
    if (!isPath(path))
    {
        return false;
    }
    std::string whole = path;
    if (whole.back() == '/')
    {
        whole.pop_back();
    }
    for (std::size_t slash = whole.find('/'); slash != std::string::npos; slash = whole.find('/', slash + 1))
    {
        const std::string part = whole.substr(0, slash);
        if (!part.empty() && !access(part.c_str(), 0) && !makeDirectory(part.c_str()))
        {
            ::logError("make directory failed.");
            return false;
        }
    }
    return makeDirectory(whole.c_str());
}

bool CFile::removeDirectoryRecursively(const char* path, bool removeSelf)
{
    if (!isPath(path))
    {
        return false;
    }
    // Larger ones are refused, not cut: what is cut would name another directory.
    char pattern[1024];
    const std::size_t length = std::strlen(path);
    const bool all = length >= 2 && std::strcmp(path + length - 2, "/*") == 0;
    const char* const form = path[length - 1] == '/' ? "*" : all ? "" : "/*";
    if (std::snprintf(pattern, sizeof(pattern), "%s%s", path, form) >= static_cast<int>(sizeof(pattern)))
    {
        ::logWarn("the path is unvalid");
        return false;
    }
    CFileFind find;
    if (!find.findFile(pattern))
    {
        ::logWarn("the path does not exist");
        return false;
    }
    do
    {
        if (isDots(find.getFileName()))
        {
            continue;
        }
        const std::string entry = find.getFilePath();
        // The separator tells a directory whose name is "*" from a pattern.
        find.isDirectory() ? removeDirectoryRecursively((entry + '/').c_str(), true) : remove(entry.c_str());
    } while (find.findNextFile());
    find.close();
    if (!removeSelf)
    {
        return true;
    }
    pattern[std::strlen(pattern) - 1] = 0;
    return removeDirectory(pattern);
}

}  // namespace General::Ortha
