#include "Src/Platform/FileApi.h"

#include <direct.h>
#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <new>
#include <string>

#include "Src/Platform/win32/Windows.h"

namespace General::Ortha::Platform {

static_assert(openWriteOnly == _O_WRONLY && openReadWrite == _O_RDWR && openAppend == _O_APPEND && openNoInherit == _O_NOINHERIT &&
              openCreate == _O_CREAT && openTruncate == _O_TRUNC && openBinary == _O_BINARY);

namespace {

int wideLength(const char* text)
{
    return MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text, -1, nullptr, 0);
}

std::wstring wide(const char* text)
{
    std::wstring result(static_cast<std::size_t>(std::max(wideLength(text), 1)), 0);
    MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text, -1, result.data(), static_cast<int>(result.size()));
    result.pop_back();
    return result;
}

// The result of the narrow operation on a native path, or of the wide one on a UTF-8 path.
template <class Narrow, class Wide, class... Arguments>
int inForm(PathForm form, Narrow narrow, Wide wideForm, const char* path, Arguments... arguments)
try
{
    return form == PathForm::native ? narrow(path, arguments...) : wideForm(wide(path).c_str(), arguments...);
}
catch (const std::bad_alloc&)
{
    errno = ENOMEM;
    return -1;
}

DWORD attributesOf(const char* path, PathForm form)
try
{
    return form == PathForm::native ? GetFileAttributesA(path) : GetFileAttributesW(wide(path).c_str());
}
catch (const std::bad_alloc&)
{
    return INVALID_FILE_ATTRIBUTES;
}

}  // namespace

bool isUtf8Path(const char* path)
{
    return wideLength(path) != 0;
}

int openFile(const char* path, PathForm form, int flags)
{
    return inForm(
        form, [](const char* name, int how) { return _open(name, how, _S_IREAD | _S_IWRITE); },
        [](const wchar_t* name, int how) { return _wopen(name, how, _S_IREAD | _S_IWRITE); }, path, flags);
}

std::FILE* openStream(int descriptor, const char* mode)
{
    std::FILE* const stream = _fdopen(descriptor, mode);
    if (!stream)
    {
        const int error = errno;
        _close(descriptor);
        errno = error;
    }
    return stream;
}

// The runtime's own open knows no mode for it in all its versions.
std::FILE* openPrivateStream(const char* path, const char* mode)
{
    const auto has = [mode](char letter) { return std::strchr(mode, letter) != nullptr; };
    int flags = _O_BINARY | _O_NOINHERIT | (has('r') ? 0 : _O_CREAT);
    flags |= has('+') ? _O_RDWR : has('r') ? _O_RDONLY : _O_WRONLY;
    flags |= (has('a') ? _O_APPEND : 0) | (has('w') ? _O_TRUNC : 0) | (has('x') ? _O_EXCL : 0);
    const int descriptor = openFile(path, PathForm::native, flags);
    const char streamMode[] = {mode[0], 'b', has('+') ? '+' : char(0), 0};
    return descriptor == -1 ? nullptr : openStream(descriptor, streamMode);
}

int descriptorOf(std::FILE* stream)
{
    return _fileno(stream);
}

std::size_t readStream(void* buffer, std::size_t size, std::size_t count, std::FILE* stream, bool& failed)
{
    std::clearerr(stream);
    const std::size_t actual = std::fread(buffer, size, count, stream);
    failed = std::ferror(stream) != 0;
    return actual;
}

std::size_t writeStream(const void* buffer, std::size_t size, std::size_t count, std::FILE* stream, bool& failed)
{
    std::clearerr(stream);
    const std::size_t actual = std::fwrite(buffer, size, count, stream);
    failed = std::ferror(stream) != 0;
    return actual;
}

int flushStream(std::FILE* stream)
{
    return std::fflush(stream);
}

int seekStream(std::FILE* stream, std::int64_t offset, int whence)
{
    return _fseeki64(stream, offset, whence);
}

std::int64_t tellStream(std::FILE* stream)
{
    return _ftelli64(stream);
}

namespace {

// The part of a file's last change that the runtime's record leaves out.
std::int32_t writtenNanoseconds(const char* path, PathForm form)
{
    WIN32_FILE_ATTRIBUTE_DATA data;
    const int found = inForm(
        form, [&](const char* name) { return static_cast<int>(GetFileAttributesExA(name, GetFileExInfoStandard, &data)); },
        [&](const wchar_t* name) { return static_cast<int>(GetFileAttributesExW(name, GetFileExInfoStandard, &data)); }, path);
    if (found != TRUE)
    {
        return 0;
    }
    const std::uint64_t units = static_cast<std::uint64_t>(data.ftLastWriteTime.dwHighDateTime) << 32 | data.ftLastWriteTime.dwLowDateTime;
    return static_cast<std::int32_t>(units % 10000000 * 100);
}

}  // namespace

int statFile(const char* path, PathForm form, FileStatus& status)
{
    struct _stat64 found;
    const int result = inForm(
        form, [&](const char* name) { return _stat64(name, &found); }, [&](const wchar_t* name) { return _wstat64(name, &found); }, path);
    if (result != 0)
    {
        return -1;
    }
    status = {found.st_mode,
              found.st_ctime,
              found.st_atime,
              found.st_mtime,
              static_cast<std::uint64_t>(found.st_size),
              writtenNanoseconds(path, form),
              (found.st_mode & _S_IFMT) == _S_IFDIR};
    return 0;
}

int accessFile(const char* path, PathForm form, int mode)
{
    return inForm(form, _access, _waccess, path, mode);
}

int renameFile(const char* from, const char* to, PathForm form)
try
{
    return form == PathForm::native ? std::rename(from, to) : _wrename(wide(from).c_str(), wide(to).c_str());
}
catch (const std::bad_alloc&)
{
    errno = ENOMEM;
    return -1;
}

int removeFile(const char* path, PathForm form)
{
    // A link to a directory is removed as a directory is, which leaves what it points at alone.
    constexpr DWORD link = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT;
    const DWORD attributes = attributesOf(path, form);
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & link) == link)
    {
        return removeDirectory(path, form);
    }
    return inForm(
        form, [](const char* name) { return std::remove(name); }, _wremove, path);
}

int makeDirectory(const char* path, PathForm form)
{
    return inForm(form, _mkdir, _wmkdir, path);
}

int removeDirectory(const char* path, PathForm form)
{
    return inForm(form, _rmdir, _wrmdir, path);
}

int diskSpace(const char* path, DiskSpace& space)
{
    ULARGE_INTEGER freeToCaller;
    ULARGE_INTEGER total;
    ULARGE_INTEGER totalFree;
    if (!GetDiskFreeSpaceExA(path, &freeToCaller, &total, &totalFree))
    {
        errno = GetLastError() == ERROR_ACCESS_DENIED ? EACCES : ENOENT;
        return -1;
    }
    space = {freeToCaller.QuadPart, total.QuadPart, totalFree.QuadPart};
    return 0;
}

struct FileSearch
{
    std::intptr_t handle;
    PathForm form;
};

namespace {

void copyName(FoundFile& found, const char* name)
{
    std::strncpy(found.name, name, FoundFile::maxName - 1);
    found.name[FoundFile::maxName - 1] = 0;
}

// In UTF-8, cut between two characters.
void copyName(FoundFile& found, const wchar_t* name)
{
    char bytes[3 * FoundFile::maxName];
    WideCharToMultiByte(CP_UTF8, 0, name, -1, bytes, sizeof(bytes), nullptr, nullptr);
    std::size_t length = std::strlen(bytes);
    if (length >= FoundFile::maxName)
    {
        length = FoundFile::maxName - 1;
        while ((bytes[length] & 0xC0) == 0x80)
        {
            --length;
        }
        bytes[length] = 0;
    }
    std::memcpy(found.name, bytes, length + 1);
}

template <class Data>
void fill(FoundFile& found, const Data& data)
{
    copyName(found, data.name);
    found.readOnly = (data.attrib & _A_RDONLY) != 0;
    found.hidden = (data.attrib & _A_HIDDEN) != 0;
    found.directory = (data.attrib & _A_SUBDIR) != 0 && (data.attrib & FILE_ATTRIBUTE_REPARSE_POINT) == 0;
    found.changed = data.time_create;
    found.accessed = data.time_access;
    found.written = data.time_write;
    found.size = static_cast<std::uint64_t>(data.size);
}

std::intptr_t beginSearch(const std::string& pattern, PathForm form, FoundFile& first)
{
    std::intptr_t handle = -1;
    if (form == PathForm::native)
    {
        __finddata64_t data;
        handle = _findfirst64(pattern.c_str(), &data);
        handle != -1 ? fill(first, data) : void();
    }
    else
    {
        _wfinddata64_t data;
        handle = _wfindfirst64(wide(pattern.c_str()).c_str(), &data);
        handle != -1 ? fill(first, data) : void();
    }
    return handle;
}

}  // namespace

FileSearch* openSearch(const char* pattern, PathForm form, FoundFile& first)
try
{
    std::string whole = pattern;
    if (!whole.empty() && (whole.back() == '/' || whole.back() == '\\'))
    {
        whole += '*';
    }
    auto search = std::make_unique<FileSearch>(FileSearch{-1, form});
    search->handle = beginSearch(whole, form, first);
    return search->handle == -1 ? nullptr : search.release();
}
catch (const std::bad_alloc&)
{
    errno = ENOMEM;
    return nullptr;
}

int nextFound(FileSearch& search, FoundFile& next)
{
    const auto found = [&](auto& data, int result) {
        result == 0 ? fill(next, data) : void();
        return result;
    };
    if (search.form == PathForm::native)
    {
        __finddata64_t data;
        return found(data, _findnext64(search.handle, &data));
    }
    _wfinddata64_t data;
    return found(data, _wfindnext64(search.handle, &data));
}

int closeSearch(FileSearch* search)
{
    const int result = _findclose(search->handle);
    delete search;
    return result;
}

}  // namespace General::Ortha::Platform
