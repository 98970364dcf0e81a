// Files and directories.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>

namespace General::Ortha::Platform {

/// What separates the parts of a path.
#ifdef _WIN32
inline constexpr const char* pathSeparators = "\\/";
#else
inline constexpr const char* pathSeparators = "/";
#endif

/// How a path is written. Native paths are the system's own narrow text. UTF-8 paths were checked with isUtf8Path(), and name the same
/// files.
enum class PathForm
{
    native,
    utf8
};

/// Whether a text can be a UTF-8 path: valid UTF-8, without overlong forms and surrogates.
bool isUtf8Path(const char* path);

// A failure of the operations below is told by the result, with its cause in errno (ENOENT for a missing file, EEXIST for one that is
// there).

enum OpenFlag : int
{
    openWriteOnly = 0x1,
    openReadWrite = 0x2,
    openAppend = 0x8,      ///< every write goes to the end
    openNoInherit = 0x80,  ///< child processes do not get the descriptor
    openCreate = 0x100,    ///< readable and writable by the owner alone
    openTruncate = 0x200,
    openBinary = 0x8000  ///< no translation of line ends
};

/// Opens a file; without openWriteOnly and openReadWrite for reading. A directory is refused. The descriptor, which the caller closes, or
/// -1.
int openFile(const char* path, PathForm form, int flags);
/// Makes a stream of a descriptor, which then belongs to it; null, with the descriptor closed, on failure.
std::FILE* openStream(int descriptor, const char* mode);
/// As fopen; child processes do not get the descriptor.
std::FILE* openPrivateStream(const char* path, const char* mode);
int descriptorOf(std::FILE* stream);
/// As fread, fwrite and fflush on a stream that no other thread uses. `failed` tells whether the system reported an error.
std::size_t readStream(void* buffer, std::size_t size, std::size_t count, std::FILE* stream, bool& failed);
std::size_t writeStream(const void* buffer, std::size_t size, std::size_t count, std::FILE* stream, bool& failed);
int flushStream(std::FILE* stream);
/// As fseek and ftell, with 64 bits.
int seekStream(std::FILE* stream, std::int64_t offset, int whence);
std::int64_t tellStream(std::FILE* stream);

struct FileStatus
{
    std::uint16_t mode;  ///< type and permissions in the system's own bits
    std::int64_t changed;
    std::int64_t accessed;
    std::int64_t written;
    std::uint64_t size;
    std::int32_t writtenNanoseconds;  ///< of the second
    bool directory;
};

// 0, or -1.

int statFile(const char* path, PathForm form, FileStatus& status);
/// The test of `mode`: 0 that it exists, 2 that it can be written, 4 that it can be read, 6 both.
int accessFile(const char* path, PathForm form, int mode);
int renameFile(const char* from, const char* to, PathForm form);
/// A directory is refused.
int removeFile(const char* path, PathForm form);
int makeDirectory(const char* path, PathForm form);
/// An empty one only.
int removeDirectory(const char* path, PathForm form);

struct DiskSpace
{
    std::uint64_t freeToCaller;
    std::uint64_t total;
    std::uint64_t totalFree;
};

/// Bytes on the volume of a native path.
int diskSpace(const char* path, DiskSpace& space);

struct FoundFile
{
    static constexpr std::size_t maxName = 260;

    char name[maxName];  ///< cut to fit, and terminated
    bool readOnly;       ///< nobody may write it
    bool hidden;
    bool directory;  ///< a symbolic link is none, whatever it points at
    std::int64_t changed;
    std::int64_t accessed;
    std::int64_t written;
    std::uint64_t size;
};

/// A search that is under way.
struct FileSearch;

/// Looks for the files of a directory whose names match the last part of the pattern: "*" stands for any text, "?" for one character, and
/// "*.*" matches every name. A pattern that ends in a separator matches all. "." and ".." are reported where they match. The order is the
/// system's. Null if there is no match, no such directory, or no memory.
FileSearch* openSearch(const char* pattern, PathForm form, FoundFile& first);
/// The next match; -1 at the end. A file that vanished meanwhile is passed over, unless the system has read ahead.
int nextFound(FileSearch& search, FoundFile& next);
/// Ends the search and frees it.
int closeSearch(FileSearch* search);

}  // namespace General::Ortha::Platform
