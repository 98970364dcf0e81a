// CFile and CLfsFile: buffered files. CLfsFile is for files of any size and can take UTF-8 paths; CFile counts positions and lengths in 32
// bits.
//
//     CFile file;
//     if (file.open("devices.csv", CFile::modeRead))
//     {
//         char line[256];
//         while (file.gets(line, sizeof(line))) { ... }
//     }
//     unsigned char* all = file.load("picture.bin");      // or a whole file at once: file.getLength() bytes
//
// Every access goes through the IFileSystem that is hooked for the path (FileSystem.h). Position and length are kept by the object: asking
// for them, and a seek to where it stands, cost nothing. A closed file gives -1 for reading and writing, 0 or null for the rest, and logs
// nothing unless it is told here. What the file system cannot do it logs itself.
//
// Threads: one thread at a time. Constructors and the recursive operations throw std::bad_alloc without memory; nothing else throws.
#pragma once

#include <cstdint>
#include <cstdio>

#include "ortha/ortha3/Export.h"
#include "ortha/ortha3/FileSystem.h"

namespace General::Ortha {

/// How a file is opened: one of the first three, and what is added to it.
struct FileFlags
{
    enum : unsigned int
    {
        modeRead = 0,             ///< the file must be there; other flags but modeNoInherit change nothing
        modeWrite = 1,            ///< creates it, and empties it unless modeNoTruncate says to append
        modeReadWrite = 2,        ///< the file must be there, unless modeCreate is given: then as modeWrite, with reading
        modeNoInherit = 0x80,     ///< child processes do not get it
        modeCreate = 0x1000,      ///< with modeReadWrite
        modeNoTruncate = 0x2000,  ///< append to what is there
        modeDirect = 0x10000      ///< of CFile; without effect on this system
    };
};

/// What the two classes have in common beside their operations.
struct FileTypes : FileFlags
{
    enum SeekPosition : int
    {
        begin = 0,
        current = 1,
        end = 2
    };

    /// The C runtime's buffering modes.
    enum IOMode : int
    {
        bufferFull = _IOFBF,
        bufferLine = _IOLBF,
        bufferNone = _IONBF
    };
};

class ORTHA_API CFile : public FileTypes
{
public:
    CFile();
    /// Closes the file and frees what was loaded.
    virtual ~CFile();
    CFile(const CFile&) = delete;
    CFile& operator=(const CFile&) = delete;

    /// Closes what was open, and opens a file. False if it cannot be opened, or, with an error line, if the low four bits of the flags are
    /// above 2.
    virtual bool open(const char* path, unsigned int dwFlags);
    /// Closes the file and frees what was loaded.
    virtual void close();
    /// Opens a file for reading and reads it whole: getLength() bytes, which stay the object's until it is closed or opened anew. With
    /// something loaded already gives that, whatever the path. Null if the file cannot be opened, or, with the file open, is empty; null
    /// and closed, with a warning, if it ends early or there is no memory.
    virtual unsigned char* load(const char* path);
    virtual void unload();
    /// Bytes read, fewer at the end.
    virtual long read(void* buffer, std::size_t size);
    /// Bytes written; fewer, with a warning, on failure.
    virtual long write(void* buffer, std::size_t size);
    virtual void flush();
    /// The new position; 0 on failure.
    virtual unsigned long long seek(long offset, SeekPosition from);
    virtual unsigned long long getPosition();
    /// A length that is not known, or 0, is measured.
    virtual unsigned long long getLength();
    /// A line with its newline, or as much of it as there is room for in `size` bytes with the terminating zero. Null at the end.
    virtual char* gets(char* buffer, std::size_t size);
    /// The length of the text; -1 on failure.
    virtual long puts(const char* text);
    virtual bool isOpen();
    /// -1: the default operations have none.
    virtual long writev(const io_vec* vec, int count);
    /// Gives the open stream a buffer, which stays the caller's until the file is closed. False, with a warning, if that fails or there is
    /// no stream of the C runtime.
    virtual bool setvbuf(char* buffer, IOMode mode, std::size_t size);
    /// Not on this platform: false, with an error line.
    virtual bool fallocate(int mode, long long offset, long long length);
    virtual bool fstat(FileInfoEx& info);
    virtual bool resv3();
    virtual bool resv4();

    // Single paths, each through the IFileSystem hooked for it (rename: for the first). True on success.

    static bool rename(const char* oldName, const char* newName);
    static bool remove(const char* path);
    static bool makeDirectory(const char* path);
    static bool removeDirectory(const char* path);
    static bool statFS(const char* path, unsigned long long& freeToCaller, unsigned long long& total, unsigned long long& totalFree);
    /// `mode` as in IFileSystem.
    static bool access(const char* path, int mode);
    static bool stat(const char* path, FileInfo& info);
    /// Makes a directory with all that lead to it; the separator is "/". False, with a log line, if that is not possible, and false for one
    /// that is there already.
    static bool makeDirectoryRecursively(const char* path);
    /// Removes all that is in a directory, and with `removeSelf` the directory; `path` may end in "/" or "/*". A symbolic link is removed,
    /// not what it points at. What cannot be removed stays, and the walk goes on; the result is that of removing the directory itself.
    /// False, with a warning, if it does not exist or its path is longer than 1021 characters.
    static bool removeDirectoryRecursively(const char* path, bool removeSelf);
    /// Always false.
    static bool changeFileFlags(const char* path, bool set, unsigned int flags);

private:
    struct Internal;
    Internal* m_internal;
};

class ORTHA_API CLfsFile : public FileTypes
{
public:
    CLfsFile();
    explicit CLfsFile(PathEncoding encoding);
    /// Shares the open file, position included; the last one closes it.
    CLfsFile(const CLfsFile& file);
    CLfsFile& operator=(const CLfsFile& file);
    virtual ~CLfsFile();

    // As CFile, with 64-bit sizes. What differs is told.

    virtual bool open(const char* path, unsigned int dwFlags);
    virtual void close();
    virtual unsigned char* load(const char* path);
    virtual void unload();
    /// Reads until `size` bytes have come; a file that ends before leaves a warning.
    virtual long long read(void* buffer, long long size);
    virtual long long write(void* buffer, long long size);
    virtual void flush();
    virtual long long seek(long long offset, SeekPosition from);
    virtual long long getPosition();
    virtual long long getLength();
    /// Null, with a warning, from 0x80000000 on.
    virtual char* gets(char* buffer, long long size);
    /// What the C runtime's fputs gives: not negative, or -1 on failure.
    virtual long long puts(const char* text);
    virtual bool isOpen();
    virtual long long writev(const io_vec* vec, int count);
    virtual bool setvbuf(char* buffer, IOMode mode, std::size_t size);
    virtual bool fallocate(int mode, long long offset, long long length);
    virtual bool fstat(FileInfoEx& info);
    virtual bool resv3();
    virtual bool resv4();

    static bool rename(const char* oldName, const char* newName);
    static bool remove(const char* path);
    static bool makeDirectory(const char* path);
    static bool removeDirectory(const char* path);
    static bool statFS(const char* path, unsigned long long& freeToCaller, unsigned long long& total, unsigned long long& totalFree);
    static bool access(const char* path, int mode);
    static bool stat(const char* path, FileInfo& info);

private:
    struct Internal;
    Internal* m_internal;
};

}  // namespace General::Ortha
