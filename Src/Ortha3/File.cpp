#include "ortha/ortha3/File.h"

#include <utility>

#include "ortha/ortha3/AtomicCount.h"

#include "Src/Ortha3/FileObject.h"

namespace General::Ortha {

namespace {

struct SmallFile
{
    using Position = std::uint32_t;
    static constexpr const char* name = "CFile";
    static constexpr bool persistent = false;
    static constexpr bool direct = true;

    static std::int64_t tell(IFileSystem& opt, void* stream) { return opt.ftell(stream); }
    static int seek(IFileSystem& opt, void* stream, std::int64_t offset, int from)
    {
        return opt.fseek(stream, static_cast<long>(offset), from);
    }
    static void logShortLoad(const void* self, std::uint64_t length, std::int64_t count)
    {
        ::logWarn("this:%p CFile::load() length:%d, ret:%d\n", self, static_cast<int>(length), static_cast<int>(count));
    }
};

struct LargeFile
{
    using Position = std::int64_t;
    static constexpr const char* name = "CLfsFile";
    static constexpr bool persistent = true;
    static constexpr bool direct = false;

    static std::int64_t tell(IFileSystem& opt, void* stream) { return opt.ftell64(stream); }
    static int seek(IFileSystem& opt, void* stream, std::int64_t offset, int from) { return opt.fseek64(stream, offset, from); }
    static void logShortLoad(const void* self, std::uint64_t length, std::int64_t count)
    {
        ::logWarn("this:%p CLfsFile::load() length:%llu, ret:%lld\n", self, static_cast<unsigned long long>(length),
                  static_cast<long long>(count));
    }
};

}  // namespace

struct CFile::Internal : FileObject<SmallFile>
{
    using FileObject::FileObject;
};

struct CLfsFile::Internal : FileObject<LargeFile>
{
    using FileObject::FileObject;

    Detail::atomic_count holders{1};
};

CFile::CFile() : m_internal(new Internal(pathEncodingNative)) {}

CFile::~CFile()
{
    delete m_internal;
}

bool CFile::open(const char* path, unsigned int dwFlags)
{
    return m_internal->open(this, path, dwFlags);
}

void CFile::close()
{
    m_internal->close();
}

unsigned char* CFile::load(const char* path)
{
    return m_internal->load(this, path);
}

void CFile::unload()
{
    m_internal->unload();
}

long CFile::read(void* buffer, std::size_t size)
{
    return static_cast<long>(m_internal->read(this, buffer, size));
}

long CFile::write(void* buffer, std::size_t size)
{
    return static_cast<long>(m_internal->write(this, buffer, size));
}

void CFile::flush()
{
    m_internal->flush();
}

unsigned long long CFile::seek(long offset, SeekPosition from)
{
    return static_cast<unsigned long long>(m_internal->seek(offset, from));
}

unsigned long long CFile::getPosition()
{
    return static_cast<unsigned long long>(m_internal->position());
}

unsigned long long CFile::getLength()
{
    return static_cast<unsigned long long>(m_internal->length());
}

char* CFile::gets(char* buffer, std::size_t size)
{
    return m_internal->gets(buffer, size);
}

long CFile::puts(const char* text)
{
    const int result = m_internal->puts(text);
    return result == -1 ? -1 : isOpen() ? static_cast<long>(std::strlen(text)) : 0;
}

bool CFile::isOpen()
{
    return m_internal->isOpen();
}

long CFile::writev(const io_vec* vec, int count)
{
    return static_cast<long>(m_internal->writev(vec, count));
}

bool CFile::setvbuf(char* buffer, IOMode mode, std::size_t size)
{
    return m_internal->setvbuf(buffer, mode, size);
}

bool CFile::fallocate(int, long long, long long)
{
    ::logError("this platform CFile::fallocate not support.\n");
    return false;
}

bool CFile::fstat(FileInfoEx&)
{
    ::logError("this platform CFile::fstat not support.\n");
    return false;
}

bool CFile::resv3()
{
    return false;
}

bool CFile::resv4()
{
    return false;
}

bool CFile::rename(const char* oldName, const char* newName)
{
    return getFileSystem(oldName)->rename(oldName, newName) == 0;
}

bool CFile::remove(const char* path)
{
    return getFileSystem(path)->remove(path) == 0;
}

bool CFile::makeDirectory(const char* path)
{
    return getFileSystem(path)->mkdir(path) == 0;
}

bool CFile::removeDirectory(const char* path)
{
    return getFileSystem(path)->rmdir(path) == 0;
}

bool CFile::statFS(const char* path, unsigned long long& freeToCaller, unsigned long long& total, unsigned long long& totalFree)
{
    return getFileSystem(path)->statfs(path, freeToCaller, total, totalFree) == 0;
}

bool CFile::access(const char* path, int mode)
{
    return getFileSystem(path)->access(path, mode) == 0;
}

bool CFile::stat(const char* path, FileInfo& info)
{
    return getFileSystem(path)->stat(path, info) == 0;
}

bool CFile::changeFileFlags(const char*, bool, unsigned int)
{
    return false;
}

CLfsFile::CLfsFile() : CLfsFile(pathEncodingNative) {}

CLfsFile::CLfsFile(PathEncoding encoding) : m_internal(new Internal(encoding)) {}

CLfsFile::CLfsFile(const CLfsFile& file) : m_internal(file.m_internal)
{
    ++m_internal->holders;
}

CLfsFile& CLfsFile::operator=(const CLfsFile& file)
{
    CLfsFile copy(file);
    std::swap(m_internal, copy.m_internal);
    return *this;
}

CLfsFile::~CLfsFile()
{
    if (--m_internal->holders == 0)
    {
        delete m_internal;
    }
}

bool CLfsFile::open(const char* path, unsigned int dwFlags)
{
    return m_internal->open(this, path, dwFlags);
}

void CLfsFile::close()
{
    m_internal->close();
}

unsigned char* CLfsFile::load(const char* path)
{
    return m_internal->load(this, path);
}

void CLfsFile::unload()
{
    m_internal->unload();
}

long long CLfsFile::read(void* buffer, long long size)
{
    return m_internal->read(this, buffer, static_cast<std::uint64_t>(std::max(size, 0ll)));
}

long long CLfsFile::write(void* buffer, long long size)
{
    return m_internal->write(this, buffer, static_cast<std::uint64_t>(std::max(size, 0ll)));
}

void CLfsFile::flush()
{
    m_internal->flush();
}

long long CLfsFile::seek(long long offset, SeekPosition from)
{
    return m_internal->seek(offset, from);
}

long long CLfsFile::getPosition()
{
    return m_internal->position();
}

long long CLfsFile::getLength()
{
    return m_internal->length();
}

char* CLfsFile::gets(char* buffer, long long size)
{
    if (isOpen() && size >= 0x80000000ll)
    {
        ::logWarn("this:%p Bytes need to be seeked has been over the _MAX_INT_VALUE.\n", static_cast<void*>(this));
        return nullptr;
    }
    return m_internal->gets(buffer, static_cast<std::uint64_t>(std::max(size, 0ll)));
}

long long CLfsFile::puts(const char* text)
{
    return m_internal->puts(text);
}

bool CLfsFile::isOpen()
{
    return m_internal->isOpen();
}

long long CLfsFile::writev(const io_vec* vec, int count)
{
    return m_internal->writev(vec, count);
}

bool CLfsFile::setvbuf(char* buffer, IOMode mode, std::size_t size)
{
    return m_internal->setvbuf(buffer, mode, size);
}

bool CLfsFile::fallocate(int, long long, long long)
{
    ::logError("this platform CLfsFile::fallocate not support.\n");
    return false;
}

bool CLfsFile::fstat(FileInfoEx&)
{
    ::logError("this platform CLfsFile::fstat not support.\n");
    return false;
}

bool CLfsFile::resv3()
{
    return false;
}

bool CLfsFile::resv4()
{
    return false;
}

bool CLfsFile::rename(const char* oldName, const char* newName)
{
    return CFile::rename(oldName, newName);
}

bool CLfsFile::remove(const char* path)
{
    return CFile::remove(path);
}

bool CLfsFile::makeDirectory(const char* path)
{
    return CFile::makeDirectory(path);
}

bool CLfsFile::removeDirectory(const char* path)
{
    return CFile::removeDirectory(path);
}

bool CLfsFile::statFS(const char* path, unsigned long long& freeToCaller, unsigned long long& total, unsigned long long& totalFree)
{
    return CFile::statFS(path, freeToCaller, total, totalFree);
}

bool CLfsFile::access(const char* path, int mode)
{
    return CFile::access(path, mode);
}

bool CLfsFile::stat(const char* path, FileInfo& info)
{
    return CFile::stat(path, info);
}

}  // namespace General::Ortha
