#include "Src/Platform/FileApi.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <memory>
#include <new>
#include <string>

namespace General::Ortha::Platform {

namespace {

int nativeFlags(int flags)
{
    const auto when = [flags](int flag, int native) { return (flags & flag) != 0 ? native : 0; };
    const int access = (flags & openReadWrite) != 0 ? O_RDWR : (flags & openWriteOnly) != 0 ? O_WRONLY : O_RDONLY;
    return access | when(openAppend, O_APPEND) | when(openNoInherit, O_CLOEXEC) | when(openCreate, O_CREAT) | when(openTruncate, O_TRUNC);
}

}  // namespace

bool isUtf8Path(const char* path)
{
    const auto* at = reinterpret_cast<const unsigned char*>(path);
    while (*at != 0)
    {
        const unsigned char lead = *at++;
        const int following = lead < 0x80                   ? 0
                              : lead >= 0xC2 && lead < 0xE0 ? 1
                              : lead >= 0xE0 && lead < 0xF0 ? 2
                              : lead >= 0xF0 && lead < 0xF5 ? 3
                                                            : -1;
        if (following < 0)
        {
            return false;
        }
        // The first byte that follows tells overlong forms, surrogates and what lies beyond the last character.
        const unsigned char low = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
        const unsigned char high = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
        for (int i = 0; i < following; ++i, ++at)
        {
            if (*at < (i == 0 ? low : 0x80) || *at > (i == 0 ? high : 0xBF))
            {
                return false;
            }
        }
    }
    return true;
}

int openFile(const char* path, PathForm, int flags)
{
    const int descriptor = ::open(path, nativeFlags(flags), S_IRUSR | S_IWUSR);
    struct stat status;
    if (descriptor != -1 && fstat(descriptor, &status) == 0 && S_ISDIR(status.st_mode))
    {
        ::close(descriptor);
        errno = EISDIR;
        return -1;
    }
    return descriptor;
}

std::FILE* openStream(int descriptor, const char* mode)
{
    std::FILE* const stream = fdopen(descriptor, mode);
    if (!stream)
    {
        const int error = errno;
        ::close(descriptor);
        errno = error;
    }
    return stream;
}

std::FILE* openPrivateStream(const char* path, const char* mode)
{
    return std::fopen(path, (std::string(mode) + 'e').c_str());
}

int descriptorOf(std::FILE* stream)
{
    return fileno(stream);
}

std::size_t readStream(void* buffer, std::size_t size, std::size_t count, std::FILE* stream, bool& failed)
{
    clearerr_unlocked(stream);
    const std::size_t actual = fread_unlocked(buffer, size, count, stream);
    failed = ferror_unlocked(stream) != 0;
    return actual;
}

std::size_t writeStream(const void* buffer, std::size_t size, std::size_t count, std::FILE* stream, bool& failed)
{
    clearerr_unlocked(stream);
    const std::size_t actual = fwrite_unlocked(buffer, size, count, stream);
    failed = ferror_unlocked(stream) != 0;
    return actual;
}

int flushStream(std::FILE* stream)
{
    return fflush_unlocked(stream);
}

int seekStream(std::FILE* stream, std::int64_t offset, int whence)
{
    return fseeko(stream, offset, whence);
}

std::int64_t tellStream(std::FILE* stream)
{
    return ftello(stream);
}

int statFile(const char* path, PathForm, FileStatus& status)
{
    struct stat found;
    if (::stat(path, &found) != 0)
    {
        return -1;
    }
    status = {static_cast<std::uint16_t>(found.st_mode),
              found.st_ctime,
              found.st_atime,
              found.st_mtime,
              static_cast<std::uint64_t>(found.st_size),
              static_cast<std::int32_t>(found.st_mtim.tv_nsec),
              S_ISDIR(found.st_mode)};
    return 0;
}

int accessFile(const char* path, PathForm, int mode)
{
    return ::access(path, mode);
}

int renameFile(const char* from, const char* to, PathForm)
{
    return std::rename(from, to);
}

int removeFile(const char* path, PathForm)
{
    return ::unlink(path);
}

int makeDirectory(const char* path, PathForm)
{
    return ::mkdir(path, S_IRWXU | S_IRWXG | S_IRWXO);
}

int removeDirectory(const char* path, PathForm)
{
    return ::rmdir(path);
}

int diskSpace(const char* path, DiskSpace& space)
{
    struct statvfs volume;
    if (statvfs(path, &volume) != 0)
    {
        return -1;
    }
    const std::uint64_t block = volume.f_frsize;
    space = {volume.f_bavail * block, volume.f_blocks * block, volume.f_bfree * block};
    return 0;
}

namespace {

// "*" stands for any text, "?" for one byte. What a "*" was taken for is widened as long as the rest does not fit.
bool matches(const char* pattern, const char* name)
{
    const char* star = nullptr;
    const char* widened = nullptr;
    while (*name != 0)
    {
        if (*pattern == '*')
        {
            star = ++pattern;
            widened = name;
        }
        else if (*pattern == '?' || *pattern == *name)
        {
            ++pattern;
            ++name;
        }
        else if (star)
        {
            pattern = star;
            name = ++widened;
        }
        else
        {
            return false;
        }
    }
    while (*pattern == '*')
    {
        ++pattern;
    }
    return *pattern == 0;
}

}  // namespace

struct FileSearch
{
    DIR* directory;
    std::string pattern;
};

FileSearch* openSearch(const char* pattern, PathForm, FoundFile& first)
{
    const char* const separator = std::strrchr(pattern, '/');
    const char* const name = separator ? separator + 1 : pattern;
    try
    {
        const bool all = *name == 0 || std::strcmp(name, "*.*") == 0;
        auto search = std::make_unique<FileSearch>(FileSearch{nullptr, all ? "*" : name});
        search->directory = opendir(separator ? std::string(pattern, name).c_str() : ".");
        if (!search->directory)
        {
            return nullptr;
        }
        if (nextFound(*search, first) == 0)
        {
            return search.release();
        }
        closedir(search->directory);
        errno = ENOENT;
    }
    catch (const std::bad_alloc&)
    {
        errno = ENOMEM;
    }
    return nullptr;
}

int nextFound(FileSearch& search, FoundFile& next)
{
    while (const dirent* const entry = (errno = 0, readdir(search.directory)))
    {
        const char* const name = entry->d_name;
        if (!matches(search.pattern.c_str(), name))
        {
            continue;
        }
        struct stat status;
        if (fstatat(dirfd(search.directory), name, &status, AT_SYMLINK_NOFOLLOW) != 0)
        {
            if (errno == ENOENT)
            {
                continue;
            }
            status = {};  // it is there, but what it is may not be asked
            status.st_mode = S_IRUSR | S_IWUSR | (entry->d_type == DT_DIR ? S_IFDIR : S_IFREG);
        }
        const bool dots = std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0;
        std::strncpy(next.name, name, FoundFile::maxName - 1);
        next.name[FoundFile::maxName - 1] = 0;
        next.readOnly = !S_ISLNK(status.st_mode) && (status.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0;
        next.hidden = name[0] == '.' && !dots;
        next.directory = S_ISDIR(status.st_mode);
        next.changed = status.st_ctime;
        next.accessed = status.st_atime;
        next.written = status.st_mtime;
        next.size = static_cast<std::uint64_t>(status.st_size);
        return 0;
    }
    return -1;
}

int closeSearch(FileSearch* search)
{
    const int result = closedir(search->directory);
    delete search;
    return result;
}

}  // namespace General::Ortha::Platform
