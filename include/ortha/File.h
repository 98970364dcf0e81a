// CFile, CFileFind and the file hook of the older interface: they forward to those of ortha3/File.h, ortha3/FileFind.h and
// ortha3/FileSystem.h, where each operation is told.
//
//     CFile file;
//     if (file.open("devices.csv", CFile::modeRead)) { ... file.read(buffer, sizeof(buffer)) ... }
//     hookFileOperations("/mem", &operations);                      // a table of plain functions for the paths that begin so
//
// Threads: objects one thread at a time; the hook at start-up.
#pragma once

#include <cstddef>
#include <string>

#include "ortha/ortha3/Export.h"
#include "ortha/ortha3/File.h"
#include "ortha/ortha3/FileFind.h"
#include "ortha/ortha3/FileSystem.h"

using FileInfo = General::Ortha::FileInfo;

class ORTHA_API CFile : public General::Ortha::FileTypes
{
public:
    CFile();
    virtual ~CFile();
    CFile(const CFile&) = delete;
    CFile& operator=(const CFile&) = delete;

    virtual bool open(const char* path, unsigned int dwFlags);
    virtual void close();
    /// 0 where the newer class gives less, as on a closed file.
    virtual long read(void* buffer, std::size_t size);
    virtual long write(void* buffer, std::size_t size);
    virtual void flush();
    virtual unsigned long long seek(long offset, SeekPosition from);
    virtual unsigned long long getPosition();
    virtual unsigned long long getLength();
    virtual char* gets(char* buffer, std::size_t size);
    virtual long puts(const char* text);
    virtual bool isOpen();
    unsigned char* load(const char* path);
    void unload();

    static bool rename(const char* oldName, const char* newName);
    static bool remove(const char* path);
    static bool makeDirectory(const char* path);
    static bool removeDirectory(const char* path);
    static bool statFS(const char* path, unsigned long long& freeToCaller, unsigned long long& total, unsigned long long& totalFree);
    static bool access(const char* path, int mode);
    static bool stat(const char* path, FileInfo& info);

private:
    General::Ortha::CFile* m_internal;
};

class ORTHA_API CFileFind
{
public:
    CFileFind();
    virtual ~CFileFind();
    CFileFind(const CFileFind&) = delete;
    CFileFind& operator=(const CFileFind&) = delete;

    virtual bool findFile(const char* pattern);
    virtual bool findNextFile();
    virtual void close();
    [[nodiscard]] unsigned long long getLength() const;
    [[nodiscard]] std::string getFileName() const;
    [[nodiscard]] std::string getFilePath() const;
    [[nodiscard]] bool isReadOnly() const;
    [[nodiscard]] bool isDirectory() const;
    [[nodiscard]] bool isHidden() const;
    [[nodiscard]] bool isNormal() const;

private:
    General::Ortha::CFileFind* m_internal;
};

/// The operations of an IFileSystem as plain functions, each with the arguments and results of its namesake. None may be null.
struct FileOperations
{
    void* (*fopen)(const char* path, const char* mode);
    int (*fclose)(void* stream);
    std::size_t (*fread)(void* buffer, std::size_t size, std::size_t count, void* stream);
    std::size_t (*fwrite)(const void* buffer, std::size_t size, std::size_t count, void* stream);
    int (*fflush)(void* stream);
    int (*fseek)(void* stream, long offset, int whence);
    long (*ftell)(void* stream);
    char* (*fgets)(char* buffer, int size, void* stream);
    int (*fputs)(const char* text, void* stream);
    int (*rename)(const char* oldName, const char* newName);
    int (*remove)(const char* path);
    long (*findfirst)(const char* pattern, FileInfo& info);
    int (*findnext)(long handle, FileInfo& info);
    int (*findclose)(long handle);
    int (*mkdir)(const char* path);
    int (*rmdir)(const char* path);
    int (*statfs)(const char* path, unsigned long long& freeToCaller, unsigned long long& total, unsigned long long& totalFree);
    int (*access)(const char* path, int mode);
    int (*stat)(const char* path, FileInfo& info);
};

/// A FileOperations as a file system. It has no 64-bit positions: a CLfsFile on it stands at 0 after open().
class ORTHA_API CFSOperation : public General::Ortha::IFileSystem
{
public:
    explicit CFSOperation(const FileOperations& operations);

    void* fopen(const char* path, const char* mode) override;
    int fclose(void* stream) override;
    std::size_t fread(void* buffer, std::size_t size, std::size_t count, void* stream) override;
    std::size_t fwrite(const void* buffer, std::size_t size, std::size_t count, void* stream) override;
    int fflush(void* stream) override;
    int fseek(void* stream, long offset, int whence) override;
    long ftell(void* stream) override;
    char* fgets(char* buffer, int size, void* stream) override;
    int fputs(const char* text, void* stream) override;
    int rename(const char* oldName, const char* newName) override;
    int remove(const char* path) override;
    long findfirst(const char* pattern, FileInfo& info) override;
    int findnext(long handle, FileInfo& info) override;
    int findclose(long handle) override;
    int mkdir(const char* path) override;
    int rmdir(const char* path) override;
    int statfs(const char* path, unsigned long long& freeToCaller, unsigned long long& total, unsigned long long& totalFree) override;
    int access(const char* path, int mode) override;
    int stat(const char* path, FileInfo& info) override;
    /// Always 0.
    int writev(int fd, const General::Ortha::io_vec* vec, int count) override;

private:
    FileOperations m_operations;
};

/// Has the paths that begin with `prefix` go to a copy of `operations`, for both interfaces, as General::Ortha::hookFileSystem() does; with
/// null they go where they went before. A null prefix does nothing. There is room for 31, as there; a further one is ignored. A prefix is
/// taken out again by its first 31 characters. Throws std::bad_alloc, and then nothing has changed.
ORTHA_API void hookFileOperations(const char* prefix, const FileOperations* operations);
