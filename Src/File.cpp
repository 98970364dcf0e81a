#include "ortha/File.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <memory>
#include <string>
#include <utility>

#include "ortha/ortha3/Assert.h"

using NewFile = General::Ortha::CFile;
using NewFind = General::Ortha::CFileFind;

CFile::CFile() : m_internal(new NewFile) {}

CFile::~CFile()
{
    delete m_internal;
}

bool CFile::open(const char* path, unsigned int dwFlags)
{
    return m_internal->open(path, dwFlags);
}

void CFile::close()
{
    m_internal->close();
}

long CFile::read(void* buffer, std::size_t size)
{
    return std::max(m_internal->read(buffer, size), 0L);
}

long CFile::write(void* buffer, std::size_t size)
{
    return std::max(m_internal->write(buffer, size), 0L);
}

void CFile::flush()
{
    m_internal->flush();
}

unsigned long long CFile::seek(long offset, SeekPosition from)
{
    return m_internal->seek(offset, from);
}

unsigned long long CFile::getPosition()
{
    return m_internal->getPosition();
}

unsigned long long CFile::getLength()
{
    return m_internal->getLength();
}

char* CFile::gets(char* buffer, std::size_t size)
{
    return m_internal->gets(buffer, size);
}

long CFile::puts(const char* text)
{
    return m_internal->puts(text);
}

bool CFile::isOpen()
{
    return m_internal->isOpen();
}

unsigned char* CFile::load(const char* path)
{
    return m_internal->load(path);
}

void CFile::unload()
{
    m_internal->unload();
}

bool CFile::rename(const char* oldName, const char* newName)
{
    return NewFile::rename(oldName, newName);
}

bool CFile::remove(const char* path)
{
    return NewFile::remove(path);
}

bool CFile::makeDirectory(const char* path)
{
    return NewFile::makeDirectory(path);
}

bool CFile::removeDirectory(const char* path)
{
    return NewFile::removeDirectory(path);
}

bool CFile::statFS(const char* path, unsigned long long& freeToCaller, unsigned long long& total, unsigned long long& totalFree)
{
    return NewFile::statFS(path, freeToCaller, total, totalFree);
}

bool CFile::access(const char* path, int mode)
{
    return NewFile::access(path, mode);
}

bool CFile::stat(const char* path, FileInfo& info)
{
    return NewFile::stat(path, info);
}

CFileFind::CFileFind() : m_internal(new NewFind) {}

CFileFind::~CFileFind()
{
    delete m_internal;
}

bool CFileFind::findFile(const char* pattern)
{
    return m_internal->findFile(pattern);
}

bool CFileFind::findNextFile()
{
    return m_internal->findNextFile();
}

void CFileFind::close()
{
    m_internal->close();
}

unsigned long long CFileFind::getLength() const
{
    return m_internal->getLength();
}

std::string CFileFind::getFileName() const
{
    return m_internal->getFileName();
}

std::string CFileFind::getFilePath() const
{
    return m_internal->getFilePath();
}

bool CFileFind::isReadOnly() const
{
    return m_internal->isReadOnly();
}

bool CFileFind::isDirectory() const
{
    return m_internal->isDirectory();
}

bool CFileFind::isHidden() const
{
    return m_internal->isHidden();
}

bool CFileFind::isNormal() const
{
    return m_internal->isNormal();
}

CFSOperation::CFSOperation(const FileOperations& operations) : m_operations(operations) {}

void* CFSOperation::fopen(const char* path, const char* mode)
{
    return m_operations.fopen(path, mode);
}

int CFSOperation::fclose(void* stream)
{
    return m_operations.fclose(stream);
}

std::size_t CFSOperation::fread(void* buffer, std::size_t size, std::size_t count, void* stream)
{
    return m_operations.fread(buffer, size, count, stream);
}

std::size_t CFSOperation::fwrite(const void* buffer, std::size_t size, std::size_t count, void* stream)
{
    return m_operations.fwrite(buffer, size, count, stream);
}

int CFSOperation::fflush(void* stream)
{
    return m_operations.fflush(stream);
}

int CFSOperation::fseek(void* stream, long offset, int whence)
{
    return m_operations.fseek(stream, offset, whence);
}

long CFSOperation::ftell(void* stream)
{
    return m_operations.ftell(stream);
}

char* CFSOperation::fgets(char* buffer, int size, void* stream)
{
    return m_operations.fgets(buffer, size, stream);
}

int CFSOperation::fputs(const char* text, void* stream)
{
    return m_operations.fputs(text, stream);
}

int CFSOperation::rename(const char* oldName, const char* newName)
{
    return m_operations.rename(oldName, newName);
}

int CFSOperation::remove(const char* path)
{
    return m_operations.remove(path);
}

long CFSOperation::findfirst(const char* pattern, FileInfo& info)
{
    return m_operations.findfirst(pattern, info);
}

int CFSOperation::findnext(long handle, FileInfo& info)
{
    return m_operations.findnext(handle, info);
}

int CFSOperation::findclose(long handle)
{
    return m_operations.findclose(handle);
}

int CFSOperation::mkdir(const char* path)
{
    return m_operations.mkdir(path);
}

int CFSOperation::rmdir(const char* path)
{
    return m_operations.rmdir(path);
}

int CFSOperation::statfs(const char* path, unsigned long long& freeToCaller, unsigned long long& total, unsigned long long& totalFree)
{
    return m_operations.statfs(path, freeToCaller, total, totalFree);
}

int CFSOperation::access(const char* path, int mode)
{
    return m_operations.access(path, mode);
}

int CFSOperation::stat(const char* path, FileInfo& info)
{
    return m_operations.stat(path, info);
}

int CFSOperation::writev(int, const General::Ortha::io_vec*, int)
{
    return 0;
}

namespace {

constexpr std::size_t prefixSize = 32;

// A hook, with the whole prefix that the newer table has it by.
struct HookedOperations
{
    CFSOperation opts;
    std::string prefix;
};

// Set at start-up. Row 0 is not used.
char s_prefixes[32][prefixSize];
HookedOperations* fsOpts[32];

// The first row with a prefix, free ones having an empty one; 0 if there is none.
std::size_t findRow(const char* prefix)
{
    for (std::size_t row = 1; row < std::size(s_prefixes); ++row)
    {
        if (std::strncmp(s_prefixes[row], prefix, prefixSize) == 0)
        {
            return row;
        }
    }
    return 0;
}

}  // namespace

void hookFileOperations(const char* prefix, const FileOperations* operations)
{
    const std::size_t i = !prefix ? 0 : findRow(operations ? "" : prefix);
    if (i == 0)
    {
        return;
    }
    if (!operations)
    {
        const std::unique_ptr<HookedOperations> hooked(std::exchange(fsOpts[i], nullptr));
        std::memset(s_prefixes[i], 0, prefixSize);
        General::Ortha::hookFileSystem(hooked ? hooked->prefix.c_str() : prefix, nullptr);
        return;
    }
    ORTHA_ASSERT(fsOpts[i] == NULL);
    fsOpts[i] = new HookedOperations{CFSOperation(*operations), prefix};
    std::strncpy(s_prefixes[i], prefix, prefixSize - 1);
    General::Ortha::hookFileSystem(prefix, &fsOpts[i]->opts);
}
