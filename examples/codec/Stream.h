// A file, or the standard stream where none is named.
#pragma once

#include <ortha/ortha3/File.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <utility>

#include "Terminal.h"

namespace Codec {

struct Failure : std::runtime_error
{
    using std::runtime_error::runtime_error;
};

class Stream
{
public:
    Stream(const std::string& path, bool writing) : m_name(path)
    {
        std::error_code ignored;
        if (path.empty())
        {
            m_name = writing ? "standard output" : "standard input";
            return;
        }
        // Only a regular file has a length, by which an end is told from a failure.
        require(writing || !std::filesystem::exists(path, ignored) || std::filesystem::is_regular_file(path, ignored),
                "no regular file; standard input takes anything");
        const bool opened = m_file.open(path.c_str(), writing ? m_file.modeWrite : m_file.modeRead);
        require(opened, std::strerror(errno));
        // Neither flush() nor close() tells of a full disk; what is not buffered needs neither.
        writing ? void(m_file.setvbuf(nullptr, m_file.bufferNone, 0)) : void(m_length = m_file.getLength());
    }

    /// Fewer bytes than asked for only at the end. On a terminal tells of a large input how far it is.
    long long read(void* to, long long size)
    {
        constexpr long long step = 1 << 24;
        const long long wanted = std::min(size, m_length - m_read);
        const long long count = !m_file.isOpen() ? static_cast<long long>(std::fread(to, 1, static_cast<std::size_t>(size), stdin))
                                : wanted > 0     ? m_file.read(to, wanted)
                                                 : 0;
        require(m_file.isOpen() ? count == std::max(wanted, 0LL) : std::ferror(stdin) == 0, "cannot be read to its end");
        const long long before = std::exchange(m_read, m_read + count);
        if (std::max(m_length, m_read) > 4 * step && (count < size || before / step != m_read / step) && isTerminal())
        {
            std::fprintf(stderr, "\r%s: %lld MiB%s", m_name.c_str(), m_read >> 20, count < size ? "\n" : "");
        }
        return count;
    }

    /// All of them are written when it returns.
    void write(void* from, std::size_t size)
    {
        require(m_file.isOpen() ? m_file.write(from, static_cast<long long>(size)) == static_cast<long long>(size)
                                : std::fwrite(from, 1, size, stdout) == size && std::fflush(stdout) == 0,
                "cannot be written");
    }

private:
    void require(bool condition, const char* text) const
    {
        if (!condition)
        {
            throw Failure(m_name + ": " + text);
        }
    }

    std::string m_name;
    General::Ortha::CLfsFile m_file;
    long long m_length = 0;
    long long m_read = 0;
};

}  // namespace Codec
