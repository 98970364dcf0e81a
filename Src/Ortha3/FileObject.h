// What CFile and CLfsFile are made of.
#pragma once

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstring>
#include <new>

#include "ortha/ortha3/Assert.h"
#include "ortha/ortha3/File.h"
#include "ortha/ortha3/PrintLog.h"
#include "ortha/ortha3/Process.h"

#include "Src/Ortha3/FileDefaultOpt.h"
#include "Src/Platform/FileApi.h"
#include "Src/Platform/NativeThread.h"

namespace General::Ortha {

/// The record of a file object, and its operations. `Kind` tells the width of positions (Position), the operations that tell and set them
/// (tell, seek), the class's name, whether reading and writing go on until all is done (persistent), and whether modeDirect is passed on
/// (direct). `self` is the address that log lines show.
template <class Kind>
class FileObject
{
public:
    using Position = typename Kind::Position;

    explicit FileObject(int encoding) : m_encoding(encoding), m_opt(defaultOpt()) {}
    FileObject(const FileObject&) = delete;
    FileObject& operator=(const FileObject&) = delete;
    ~FileObject() { unload(); }

    bool open(const void* self, const char* path, unsigned int flags)
    {
        unload();
        IFileSystem* const hooked = getFileSystem(path);
        m_opt = hooked != FileDefaultOpt::instance() ? hooked : defaultOpt();
        ORTHA_ASSERT(m_opt);
        char mode[8];
        if (!modeOf(flags, mode))
        {
            ::logError("this:%p %s::open() dwFlags:%d is invalid\n", self, Kind::name, static_cast<int>(flags));
            return false;
        }
        m_file = m_opt->fopen(path, mode);
        if (!m_file)
        {
            return false;
        }
        takePosition();
        FileInfo info;
        const bool emptied = (flags & FileFlags::modeCreate) != 0 && (flags & FileFlags::modeNoTruncate) == 0;
        m_length = !emptied && m_opt->stat(path, info) == 0 ? static_cast<Position>(info.size) : 0;
        return true;
    }

    void close()
    {
        if (!m_file)
        {
            return;
        }
        m_opt->fclose(m_file);
        m_file = nullptr;
        m_length = m_position = 0;
        freeBuffer();
        m_opt = defaultOpt();
    }

    void unload()
    {
        close();
        freeBuffer();
    }

    unsigned char* load(const void* self, const char* path)
    {
        if (m_buffer)
        {
            return m_buffer;
        }
        if (!open(self, path, FileFlags::modeNoTruncate))
        {
            return nullptr;
        }
        if (m_length == 0)
        {
            m_length = static_cast<Position>(seek(0, FileTypes::end));
            seek(0, FileTypes::begin);
        }
        if (m_length == 0)
        {
            return nullptr;
        }
        const auto length = static_cast<std::uint64_t>(m_length);
        m_buffer = new (std::nothrow) unsigned char[length];
        seek(0, FileTypes::begin);
        const std::int64_t count = m_buffer ? read(self, m_buffer, length) : 0;
        if (count < 0 || static_cast<std::uint64_t>(count) < length)
        {
            char command[31];
            std::snprintf(command, sizeof(command), "%s%d%s%d", "ls -lh /proc/", Platform::currentThreadId(), "/fd/", descriptor());
            systemCall(command);
            Kind::logShortLoad(self, length, count);
            unload();
            return nullptr;
        }
        return m_buffer;
    }

    std::int64_t read(const void* self, void* buffer, std::uint64_t size)
    {
        if (!m_file)
        {
            return -1;
        }
        const std::uint64_t total = transfer(
            size,
            [&](std::uint64_t done, std::uint64_t count) { return m_opt->fread(static_cast<char*>(buffer) + done, 1, count, m_file); },
            [&](std::uint64_t done, std::uint64_t expected) {
                ::logWarn("this:%p fread get error, total:%lld has read:%lld, expected:%llu return actuallen:%llu\n", self,
                          static_cast<long long>(size), static_cast<long long>(done), static_cast<unsigned long long>(expected), 0ull);
            });
        m_position = static_cast<Position>(m_position + static_cast<Position>(total));
        return static_cast<std::int64_t>(total);
    }

    std::int64_t write(const void* self, const void* buffer, std::uint64_t size)
    {
        if (!m_file)
        {
            return -1;
        }
        const std::uint64_t total = transfer(
            size,
            [&](std::uint64_t done, std::uint64_t count) {
                return m_opt->fwrite(static_cast<const char*>(buffer) + done, 1, count, m_file);
            },
            [&](std::uint64_t done, std::uint64_t expected) {
                ::logWarn("this:%p fwrite get error, total:%lld has write:%lld, expected:%llu return actuallen:%llu, \n", self,
                          static_cast<long long>(size), static_cast<long long>(done), static_cast<unsigned long long>(expected), 0ull);
            });
        if (!Kind::persistent && total < size)
        {
            ::logWarn("fwrite failed, expected:%llu, actual:%llu\n", static_cast<unsigned long long>(size),
                      static_cast<unsigned long long>(total));
        }
        takePosition();
        stretchLength();
        return static_cast<std::int64_t>(total);
    }

    void flush()
    {
        if (m_file)
        {
            m_opt->fflush(m_file);
            takePosition();
            stretchLength();
        }
    }

    std::int64_t seek(std::int64_t offset, int from)
    {
        if (!m_file)
        {
            return 0;
        }
        const std::int64_t base = from == FileTypes::current ? position()
                                  : from == FileTypes::end   ? static_cast<std::int64_t>(m_length)
                                                             : 0;
        const bool known = from == FileTypes::begin || from == FileTypes::current || from == FileTypes::end;
        const std::int64_t target = known ? base + offset : 0;
        if (target == position() && from != FileTypes::end)
        {
            return target;
        }
        if (Kind::seek(*m_opt, m_file, offset, known ? from : 0) < 0)
        {
            return 0;
        }
        takePosition();
        return position();
    }

    std::int64_t position() const { return m_file ? static_cast<std::int64_t>(m_position) : 0; }

    std::int64_t length()
    {
        if (!m_file)
        {
            return 0;
        }
        if (m_length == 0)
        {
            const std::int64_t before = position();
            m_length = static_cast<Position>(seek(0, FileTypes::end));
            seek(before, FileTypes::begin);
        }
        return static_cast<std::int64_t>(m_length);
    }

    char* gets(char* buffer, std::uint64_t size)
    {
        char* const line = m_file ? m_opt->fgets(buffer, static_cast<int>(std::min<std::uint64_t>(size, INT_MAX)), m_file) : nullptr;
        if (line)
        {
            m_position = static_cast<Position>(m_position + static_cast<Position>(std::strlen(line)));
        }
        return line;
    }

    /// What fputs gave; 0 if closed.
    int puts(const char* text)
    {
        if (!m_file)
        {
            return 0;
        }
        const int result = m_opt->fputs(text, m_file);
        if (result != -1)
        {
            m_position = static_cast<Position>(m_position + static_cast<Position>(std::strlen(text)));
        }
        stretchLength();
        return result;
    }

    bool isOpen() const { return m_file != nullptr; }

    std::int64_t writev(const io_vec* vec, int count)
    {
        const std::int64_t result = m_file ? m_opt->writev(descriptor(), vec, count) : -1;
        if (result > 0)
        {
            m_position = static_cast<Position>(m_position + static_cast<Position>(result));
            stretchLength();
        }
        return result;
    }

    bool setvbuf(char* buffer, int mode, std::size_t size)
    {
        if (!m_file)
        {
            ::logWarn("CFile::setvbuf failed, file has not been opened!\n");
            return false;
        }
        if (!isRuntimeStream() || std::setvbuf(static_cast<std::FILE*>(m_file), buffer, mode, size) != 0)
        {
            ::logWarn("CFile::setvbuf failed\n");
            return false;
        }
        return true;
    }

private:
    IFileSystem* defaultOpt() const
    {
        return m_encoding == pathEncodingUtf8 ? FileDefaultOptUTF8toWchar::instance() : FileDefaultOpt::instance();
    }

    static bool modeOf(unsigned int flags, char* mode)
    {
        const bool create = (flags & FileFlags::modeCreate) != 0;
        const bool append = (flags & FileFlags::modeNoTruncate) != 0;
        switch (flags & 0xF)
        {
        case FileFlags::modeRead:
            std::strcpy(mode, "rb");
            break;
        case FileFlags::modeWrite:
            std::strcpy(mode, append ? "ab" : "wb");
            break;
        case FileFlags::modeReadWrite:
            std::strcpy(mode, !create ? "rb+" : append ? "ab+" : "wb+");
            break;
        default:
            return false;
        }
        std::strcat(mode, (flags & FileFlags::modeNoInherit) != 0 ? "e" : "");
        std::strcat(mode, Kind::direct && (flags & FileFlags::modeDirect) != 0 ? "d" : "");
        return true;
    }

    // Has `step` move bytes, once or until all are moved; `stuck` is told of a step that moved none. The bytes moved.
    template <class Step, class Stuck>
    static std::uint64_t transfer(std::uint64_t size, Step step, Stuck stuck)
    {
        std::uint64_t total = 0;
        do
        {
            const std::uint64_t expected = std::min<std::uint64_t>(size - total, INT64_MAX);
            const std::uint64_t count = step(total, expected);
            total += count;
            if (Kind::persistent && count == 0 && expected != 0)
            {
                stuck(total, expected);
                break;
            }
        } while (Kind::persistent && total < size);
        return total;
    }

    // A stream of a hooked file system is nothing that the C runtime knows.
    bool isRuntimeStream() const { return dynamic_cast<const FileDefaultOpt*>(m_opt) != nullptr; }
    int descriptor() const { return isRuntimeStream() ? Platform::descriptorOf(static_cast<std::FILE*>(m_file)) : -1; }

    void takePosition() { m_position = static_cast<Position>(std::max<std::int64_t>(Kind::tell(*m_opt, m_file), 0)); }
    void stretchLength() { m_length = std::max(m_length, m_position); }
    void freeBuffer()
    {
        delete[] m_buffer;
        m_buffer = nullptr;
    }

    void* m_file = nullptr;
    unsigned char* m_buffer = nullptr;
    Position m_length = 0;  // 0: not known
    Position m_position = 0;
    const int m_encoding;
    IFileSystem* m_opt;
};

}  // namespace General::Ortha
