// The default table of file operations: the C runtime's, on native and on UTF-8 paths.
#pragma once

#include <cstdio>
#include <map>
#include <memory>
#include <unordered_map>

#include "ortha/ortha3/FileSystem.h"
#include "ortha/ortha3/Mutex.h"

#include "Src/Platform/FileApi.h"

namespace General::Ortha {

/// What a file object or search on `path` goes through: who hooked a prefix of it, or the operations on native paths.
IFileSystem* getFileSystem(const char* path);

/// On native paths.
class FileDefaultOpt : public IFileSystem
{
public:
    /// Never destroyed: files are closed until the very end.
    static FileDefaultOpt* instance();

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
    int writev(int fd, const io_vec* vec, int count) override;
    int fseek64(void* stream, long long offset, int whence) override;
    long long ftell64(void* stream) override;

protected:
    FileDefaultOpt() = default;

    // Both forms of paths share these. A failure is logged where the native form does so.
    enum class Failure
    {
        logged,
        silent
    };
    void giveBuffer(std::FILE* stream);
    void* open(const char* path, Platform::PathForm form, const char* mode, Failure failure);
    int renameFile(const char* oldName, const char* newName, Platform::PathForm form);
    int removeFile(const char* path, Platform::PathForm form);
    int makeDirectory(const char* path, Platform::PathForm form, Failure failure);
    int removeDirectory(const char* path, Platform::PathForm form, Failure failure);
    int statFile(const char* path, Platform::PathForm form, FileInfo& info, Failure failure);
    long beginSearch(const char* pattern, Platform::PathForm form, FileInfo& info);

private:
    CMutex m_mutex;  // not held during a call of the system
    std::map<long, Platform::FileSearch*> m_searches ORTHA_GUARDED_BY(m_mutex);
    std::unordered_map<void*, std::unique_ptr<char[]>> m_buffers ORTHA_GUARDED_BY(m_mutex);  // of the open streams
};

/// On UTF-8 paths, but for statfs.
class FileDefaultOptUTF8toWchar : public FileDefaultOpt
{
public:
    static FileDefaultOptUTF8toWchar* instance();

    void* fopen(const char* path, const char* mode) override;
    int rename(const char* oldName, const char* newName) override;
    int remove(const char* path) override;
    long findfirst(const char* pattern, FileInfo& info) override;
    int mkdir(const char* path) override;
    int rmdir(const char* path) override;
    int access(const char* path, int mode) override;
    int stat(const char* path, FileInfo& info) override;

private:
    FileDefaultOptUTF8toWchar() = default;
};

}  // namespace General::Ortha
