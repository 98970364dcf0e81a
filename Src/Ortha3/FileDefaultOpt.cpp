#include "Src/Ortha3/FileDefaultOpt.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <new>
#include <string>
#include <utility>

#include "ortha/ortha3/Assert.h"
#include "ortha/ortha3/PrintLog.h"
#include "ortha/ortha3/detail/source_text.h"

namespace General::Ortha {

using Platform::PathForm;

namespace {

std::FILE* streamOf(void* stream)
{
    return static_cast<std::FILE*>(stream);
}

// The C runtime's name for the cause of a failure, of the calling thread.
const char* errorText()
{
    return std::strerror(errno);
}

// Logs that an operation failed, with the cause in errno.
void warn(const void* self, const char* operation)
{
    ::logWarn("this:%p %s failed, errno:%d, errmsg:%s\n", self, operation, errno, errorText());
}

// A line for standard output, as the search operations write it.
void print(const char* text, int line)
{
    static constexpr Detail::SourceText<sizeof(__FILE__)> source(__FILE__);
    std::printf("[%s:%d] Ortha FileDefaultOpt::%s", source.text, line, text);
}

int openFlags(const char* mode)
{
    const auto has = [mode](char letter) { return std::strchr(mode, letter) != nullptr; };
    const bool read = has('r');
    const bool both = has('+');
    const bool write = has('w');
    const bool append = has('a');
    int flags = append ? Platform::openAppend : 0;
    flags |= read ? 0 : Platform::openCreate;
    flags |= both ? Platform::openReadWrite : 0;
    flags |= write ? Platform::openTruncate : 0;
    flags |= !both && !read && (write || append) ? Platform::openWriteOnly : 0;
    flags |= has('b') ? Platform::openBinary : 0;
    flags |= has('e') ? Platform::openNoInherit : 0;
    return flags;
}

void fill(FileInfo& info, const Platform::FoundFile& found)
{
    std::memcpy(info.name, found.name, sizeof(info.name));
    info.attrib = static_cast<std::uint16_t>((found.readOnly ? 1 : 0) + (found.hidden ? 2 : 0) + (found.directory ? 16 : 0));
    info.timeCreate = found.changed;
    info.timeAccess = found.accessed;
    info.timeWrite = found.written;
    info.size = static_cast<std::uint32_t>(found.size);
}

}  // namespace

FileDefaultOpt* FileDefaultOpt::instance()
{
    static FileDefaultOpt* const s_instance = new FileDefaultOpt;
    return s_instance;
}

// The C runtime need not heed the size of a buffer that it makes itself. A stream for which there is no memory has its own choice.
void FileDefaultOpt::giveBuffer(std::FILE* stream)
{
    constexpr std::size_t size = 16384;
    std::unique_ptr<char[]> buffer(new (std::nothrow) char[size]);
    if (!buffer)
    {
        return;
    }
    char* const bytes = buffer.get();
    try
    {
        CGuard guard(m_mutex);
        m_buffers.emplace(stream, std::move(buffer));
    }
    catch (const std::bad_alloc&)
    {
        return;
    }
    std::setvbuf(stream, bytes, _IOFBF, size);
    std::fseek(stream, 0, SEEK_CUR);  // glibc counts positions from here on, and need not ask the system for each ftell
}

void* FileDefaultOpt::open(const char* path, PathForm form, const char* mode, Failure failure)
{
    ORTHA_ASSERT(mode != NULL);
    const std::size_t len = std::strlen(mode);
    ORTHA_ASSERT(len > 0);
    char streamMode[8] = "";
    if (len < sizeof(streamMode))
    {
        std::strcpy(streamMode, mode);
        for (const char letter : {'e', 'd'})
        {
            if (char* const at = std::strchr(streamMode, letter))
            {
                std::memmove(at, at + 1, std::strlen(at));
            }
        }
    }
    const int descriptor = Platform::openFile(path, form, openFlags(mode));
    if (descriptor == -1)
    {
        if (failure == Failure::logged)
        {
            ::logWarn("this:%p _open get error, errno:%d, errmsg:%s\n", static_cast<void*>(this), errno, errorText());
        }
        return nullptr;
    }
    std::FILE* const stream = Platform::openStream(descriptor, streamMode);
    if (!stream)
    {
        if (failure == Failure::logged)
        {
            ::logWarn("this:%p _fdopen get error, errno:%d, errmsg:%s\n", static_cast<void*>(this), errno, errorText());
        }
        return nullptr;
    }
    giveBuffer(stream);
    return stream;
}

void* FileDefaultOpt::fopen(const char* path, const char* mode)
{
    return open(path, PathForm::native, mode, Failure::logged);
}

int FileDefaultOpt::fclose(void* stream)
{
    std::unique_ptr<char[]> buffer;  // goes after the stream, whose address the next one may have
    {
        CGuard guard(m_mutex);
        if (const auto given = m_buffers.find(stream); given != m_buffers.end())
        {
            buffer = std::move(given->second);
            m_buffers.erase(given);
        }
    }
    return std::fclose(streamOf(stream));
}

std::size_t FileDefaultOpt::fread(void* buffer, std::size_t size, std::size_t count, void* stream)
{
    bool failed = false;
    const std::size_t actual = Platform::readStream(buffer, size, count, streamOf(stream), failed);
    if (failed)
    {
        ::logWarn("this:%p fread failed or file is ending, expected:%zu, actual:%zu, errno:%d, errmsg:%s\n", static_cast<void*>(this),
                  count, actual, errno, errorText());
    }
    return actual;
}

std::size_t FileDefaultOpt::fwrite(const void* buffer, std::size_t size, std::size_t count, void* stream)
{
    bool failed = false;
    const std::size_t actual = Platform::writeStream(buffer, size, count, streamOf(stream), failed);
    if (failed)
    {
        ::logWarn("this:%p fwrite failed, expected:%zu, actual:%zu, errno:%d, errmsg:%s\n", static_cast<void*>(this), count, actual, errno,
                  errorText());
        return 0;  // what the runtime counts may never have left its buffer
    }
    return actual;
}

int FileDefaultOpt::fflush(void* stream)
{
    return std::fflush(streamOf(stream));
}

int FileDefaultOpt::fseek(void* stream, long offset, int whence)
{
    return std::fseek(streamOf(stream), offset, whence);
}

long FileDefaultOpt::ftell(void* stream)
{
    return std::ftell(streamOf(stream));
}

char* FileDefaultOpt::fgets(char* buffer, int size, void* stream)
{
    std::clearerr(streamOf(stream));
    char* const line = std::fgets(buffer, size, streamOf(stream));
    if (std::ferror(streamOf(stream)) != 0)
    {
        warn(this, "fgets");
    }
    return line;
}

int FileDefaultOpt::fputs(const char* text, void* stream)
{
    const int result = std::fputs(text, streamOf(stream));
    if (result == -1)
    {
        warn(this, "fputs");
    }
    return result;
}

int FileDefaultOpt::renameFile(const char* oldName, const char* newName, PathForm form)
{
    const int result = Platform::renameFile(oldName, newName, form);
    if (result == -1)
    {
        warn(this, "rename");
    }
    return result;
}

int FileDefaultOpt::rename(const char* oldName, const char* newName)
{
    return renameFile(oldName, newName, PathForm::native);
}

int FileDefaultOpt::removeFile(const char* path, PathForm form)
{
    const int result = Platform::removeFile(path, form);
    if (result == -1 && errno != ENOENT)
    {
        warn(this, "remove");
    }
    return result;
}

int FileDefaultOpt::remove(const char* path)
{
    return removeFile(path, PathForm::native);
}

long FileDefaultOpt::beginSearch(const char* pattern, PathForm form, FileInfo& info)
{
    if (!pattern || *pattern == 0)
    {
        return -1;
    }
    Platform::FoundFile first;
    Platform::FileSearch* const search = Platform::openSearch(pattern, form, first);
    if (!search)
    {
        warn(this, "_findfirst");
        return -1;
    }
    long key = 0;
    {
        CGuard guard(m_mutex);
        for (const auto& open : m_searches)  // the smallest key that none has
        {
            if (open.first != key)
            {
                break;
            }
            ++key;
        }
        try
        {
            m_searches.emplace(key, search);
        }
        catch (const std::bad_alloc&)
        {
            key = -1;
        }
    }
    if (key == -1)
    {
        Platform::closeSearch(search);
        print("findfirst fail!\n", __LINE__);
        return -1;
    }
    fill(info, first);
    return key;
}

long FileDefaultOpt::findfirst(const char* pattern, FileInfo& info)
{
    return beginSearch(pattern, PathForm::native, info);
}

int FileDefaultOpt::findnext(long handle, FileInfo& info)
{
    Platform::FileSearch* search = nullptr;
    {
        CGuard guard(m_mutex);
        const auto open = m_searches.find(handle);
        search = open == m_searches.end() ? nullptr : open->second;
    }
    if (!search)
    {
        print("findnext fail!\n", __LINE__);
        return -1;
    }
    Platform::FoundFile next;
    const int result = Platform::nextFound(*search, next);
    if (result != -1)
    {
        fill(info, next);
    }
    return result;
}

int FileDefaultOpt::findclose(long handle)
{
    Platform::FileSearch* search = nullptr;
    {
        CGuard guard(m_mutex);
        const auto open = m_searches.find(handle);
        if (open != m_searches.end())
        {
            search = open->second;
            m_searches.erase(open);
        }
    }
    if (!search)
    {
        print("findclose fail\n", __LINE__);
        return -1;
    }
    return Platform::closeSearch(search);
}

int FileDefaultOpt::makeDirectory(const char* path, PathForm form, Failure failure)
{
    const int result = Platform::makeDirectory(path, form);
    if (result == -1 && errno != EEXIST && failure == Failure::logged)
    {
        warn(this, "mkdir");
    }
    return result;
}

int FileDefaultOpt::mkdir(const char* path)
{
    return makeDirectory(path, PathForm::native, Failure::logged);
}

int FileDefaultOpt::removeDirectory(const char* path, PathForm form, Failure failure)
{
    const int result = Platform::removeDirectory(path, form);
    if (result == -1 && failure == Failure::logged)
    {
        warn(this, "rmdir");
    }
    return result;
}

int FileDefaultOpt::rmdir(const char* path)
{
    return removeDirectory(path, PathForm::native, Failure::logged);
}

int FileDefaultOpt::statfs(const char* path, unsigned long long& freeToCaller, unsigned long long& total, unsigned long long& totalFree)
{
    Platform::DiskSpace space;
    if (Platform::diskSpace(path, space) != 0)
    {
        warn(this, "statfs");
        return -1;
    }
    freeToCaller = space.freeToCaller;
    total = space.total;
    totalFree = space.totalFree;
    return 0;
}

int FileDefaultOpt::access(const char* path, int mode)
{
    return Platform::accessFile(path, PathForm::native, mode);
}

int FileDefaultOpt::statFile(const char* path, PathForm form, FileInfo& info, Failure failure)
{
    Platform::FileStatus status;
    const int result = Platform::statFile(path, form, status);
    if (result != 0)
    {
        if (failure == Failure::logged)
        {
            warn(this, "stat");
        }
        return result;
    }
    std::strncpy(info.name, path, sizeof(info.name) - 1);
    info.name[sizeof(info.name) - 1] = 0;
    info.attrib = status.mode;
    info.timeCreate = status.changed;
    info.timeAccess = status.accessed;
    info.timeWrite = status.written;
    info.size = status.size;
    return 0;
}

int FileDefaultOpt::stat(const char* path, FileInfo& info)
{
    return statFile(path, PathForm::native, info, Failure::logged);
}

int FileDefaultOpt::writev(int, const io_vec*, int)
{
    return -1;
}

int FileDefaultOpt::fseek64(void* stream, long long offset, int whence)
{
    return Platform::seekStream(streamOf(stream), offset, whence);
}

long long FileDefaultOpt::ftell64(void* stream)
{
    return Platform::tellStream(streamOf(stream));
}

namespace {

// Whether a UTF-8 path can be used; if not, log lines tell.
bool isUsable(const char* path, const char* message)
{
    const bool valid = path && Platform::isUtf8Path(path);
    if (!valid)
    {
        ::logError("get wide char bytes error!\n");
    }
    if (!valid || *path == 0)
    {
        ::logError("%s", message);
        return false;
    }
    return true;
}

constexpr const char* unusablePath = "trans char to wchar failed!";

}  // namespace

FileDefaultOptUTF8toWchar* FileDefaultOptUTF8toWchar::instance()
{
    static FileDefaultOptUTF8toWchar* const s_instance = new FileDefaultOptUTF8toWchar;
    return s_instance;
}

void* FileDefaultOptUTF8toWchar::fopen(const char* path, const char* mode)
{
    return isUsable(path, unusablePath) ? open(path, PathForm::utf8, mode, Failure::silent) : nullptr;
}

int FileDefaultOptUTF8toWchar::rename(const char* oldName, const char* newName)
{
    return isUsable(oldName, "trans oldNameWchar char to wchar failed!") && isUsable(newName, "trans newNameWchar char to wchar failed!")
               ? renameFile(oldName, newName, PathForm::utf8)
               : -1;
}

int FileDefaultOptUTF8toWchar::remove(const char* path)
{
    return isUsable(path, unusablePath) ? removeFile(path, PathForm::utf8) : -1;
}

long FileDefaultOptUTF8toWchar::findfirst(const char* pattern, FileInfo& info)
{
    return isUsable(pattern, unusablePath) ? beginSearch(pattern, PathForm::utf8, info) : -1;
}

int FileDefaultOptUTF8toWchar::mkdir(const char* path)
{
    return isUsable(path, unusablePath) ? makeDirectory(path, PathForm::utf8, Failure::silent) : -1;
}

int FileDefaultOptUTF8toWchar::rmdir(const char* path)
{
    return isUsable(path, unusablePath) ? removeDirectory(path, PathForm::utf8, Failure::silent) : -1;
}

int FileDefaultOptUTF8toWchar::access(const char* path, int mode)
{
    return isUsable(path, unusablePath) ? Platform::accessFile(path, PathForm::utf8, mode) : -1;
}

int FileDefaultOptUTF8toWchar::stat(const char* path, FileInfo& info)
{
    return isUsable(path, unusablePath) ? statFile(path, PathForm::utf8, info, Failure::silent) : -1;
}

}  // namespace General::Ortha
