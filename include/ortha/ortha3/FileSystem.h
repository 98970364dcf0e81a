// IFileSystem: the table of operations behind every file of the library; hookFileSystem: putting another one in its place for a part of the
// paths.
//
//     class CMemoryFiles : public IFileSystem { ... };
//     CMemoryFiles files;
//     hookFileSystem("/mem", &files);         // CFile, CLfsFile and CFileFind reach paths that begin so through `files`
//     ...
//     hookFileSystem("/mem", nullptr);
//
// The default operations are those of the C runtime, on native paths. They log what fails, except where the table says "silent".
//
// Threads: hookFileSystem at start-up. The default operations from any thread, a stream or a search one thread at a time; an IFileSystem of
// yours is called by every thread that uses a file of its paths. Nothing here throws, and yours must not.
#pragma once

#include <cstddef>
#include <cstdint>

#include "ortha/ortha3/Export.h"

namespace General::Ortha {

/// How paths are written.
enum PathEncoding : int
{
    pathEncodingNative = 0,
    pathEncodingUtf8 = 1
};

/// One file.
struct FileInfo
{
    char name[260];           ///< from a search the bare name, from stat the path; cut to 259 characters
    std::uint16_t attrib;     ///< from a search the sum of 1 read-only, 2 hidden, 16 directory; from stat the file's mode word
    std::int64_t timeCreate;  ///< seconds since 1970 UTC, as the two others; on this system of the last change of the file's description
    std::int64_t timeAccess;
    std::int64_t timeWrite;
    std::uint64_t size;  ///< bytes; from a search the low 32 bits
};

/// What fstat() would fill in; no operation of this library does.
struct FileInfoEx;
/// An element of writev(); no operation of this library reads one.
struct io_vec;

/// Results are the C runtime's: 0 or a count for success, -1 or null for failure. `stream` is what fopen gave, `handle` what findfirst
/// gave.
class ORTHA_API IFileSystem
{
public:
    virtual ~IFileSystem();
    /// Opens a file; modes are the C runtime's, and "e" keeps the file from child processes. Null on failure.
    virtual void* fopen(const char* path, const char* mode) = 0;
    virtual int fclose(void* stream) = 0;
    virtual std::size_t fread(void* buffer, std::size_t size, std::size_t count, void* stream) = 0;
    virtual std::size_t fwrite(const void* buffer, std::size_t size, std::size_t count, void* stream) = 0;
    virtual int fflush(void* stream) = 0;
    /// `whence`: 0 from the begin, 1 from the current position, 2 from the end.
    virtual int fseek(void* stream, long offset, int whence) = 0;
    virtual long ftell(void* stream) = 0;
    virtual char* fgets(char* buffer, int size, void* stream) = 0;
    virtual int fputs(const char* text, void* stream) = 0;
    virtual int rename(const char* oldName, const char* newName) = 0;
    virtual int remove(const char* path) = 0;
    /// Begins a search for the files that match `pattern`, whose last part may hold "*" and "?". The handle, 0 or more, or -1 if there is
    /// none.
    virtual long findfirst(const char* pattern, FileInfo& info) = 0;
    /// -1 when there are no more.
    virtual int findnext(long handle, FileInfo& info) = 0;
    virtual int findclose(long handle) = 0;
    virtual int mkdir(const char* path) = 0;
    virtual int rmdir(const char* path) = 0;
    /// Bytes on the volume of `path`.
    virtual int statfs(const char* path, unsigned long long& freeToCaller, unsigned long long& total, unsigned long long& totalFree) = 0;
    /// `mode`: 0 asks whether the file is there, 2 whether it can be written, 4 read, 6 both.
    virtual int access(const char* path, int mode) = 0;
    virtual int stat(const char* path, FileInfo& info) = 0;
    virtual int writev(int fd, const io_vec* vec, int count) = 0;
    /// As fseek and ftell for files of any size, which CLfsFile uses. -1 if not overridden.
    virtual int fseek64(void* stream, long long offset, int whence);
    virtual long long ftell64(void* stream);
};

/// Has the paths that begin with `prefix` (at most 255 bytes, compared byte for byte) go to `opts`, which stays the caller's and must live
/// until it is taken out again with a null `opts`. Where several prefixes fit, the one hooked first counts. There is room for 31; a further
/// one, and taking out what is not there, change nothing. Each call logs an info line. Start-up.
ORTHA_API void hookFileSystem(const char* prefix, IFileSystem* opts);

}  // namespace General::Ortha
