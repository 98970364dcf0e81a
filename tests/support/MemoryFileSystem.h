// A file system in memory, to stand behind CFile, CLfsFile and CFileFind for a part of the paths.
//
//     MemoryFileSystem files("/mem");
//     hookFileSystem("/mem", &files);  // no "/" at its end: makeDirectoryRecursively() asks for the root too, which must not reach the disk
//     CFile::makeDirectoryRecursively("/mem/logs/today");
//     ...
//     hookFileSystem("/mem", nullptr);
//
// A file that is removed while it is open lives until it is closed. It has one time, that of its last change.
//
// Threads: any thread; a stream and a search one thread at a time. Writing fails if no memory is left; for names there must be some.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <ctime>
#include <map>
#include <memory>
#include <mutex>
#include <new>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "ortha/ortha3/FileSystem.h"

namespace General::Ortha::Test {

class MemoryFileSystem : public IFileSystem
{
public:
    /// `root` is a directory that is always there; all others are made in it. `capacity` is what the files may hold together, in bytes.
    explicit MemoryFileSystem(const std::string& root, std::size_t capacity = 1 << 30) : m_root(normal(root)), m_capacity(capacity)
    {
        m_nodes[m_root] = makeNode(true);
    }
    /// The next call of the operation of that name fails and has no effect, except that fclose closes all the same.
    void failNext(const char* operation) { Call(*this, "").files.m_failing = operation; }

    void* fopen(const char* path, const char* mode) override
    {
        const auto has = [mode](char letter) { return std::strchr(mode, letter) != nullptr; };
        const Call call(*this, "fopen");
        const NodePtr node = !call ? nullptr : at(path) || has('r') ? at(path) : add(path, false);
        if (!node || node->directory)
        {
            return nullptr;
        }
        node->bytes.resize(has('w') ? 0 : node->bytes.size());
        return new Stream{node, has('a') ? node->bytes.size() : 0, has('r') || has('+'), !has('r') || has('+'), has('a')};
    }
    int fclose(void* stream) override
    {
        const Call call(*this, "fclose");
        delete static_cast<Stream*>(stream);
        return call ? 0 : -1;
    }
    std::size_t fread(void* buffer, std::size_t size, std::size_t count, void* stream) override
    {
        return size != 0 && Call(*this, "fread") ? read(stream, static_cast<char*>(buffer), size * count) / size : 0;
    }
    std::size_t fwrite(const void* buffer, std::size_t size, std::size_t count, void* stream) override
    {
        return size != 0 && Call(*this, "fwrite") ? write(stream, static_cast<const char*>(buffer), size * count) / size : 0;
    }
    int fflush(void*) override { return Call(*this, "fflush") ? 0 : -1; }
    int fseek(void* stream, long offset, int whence) override { return Call(*this, "fseek") ? seek(stream, offset, whence) : -1; }
    long ftell(void* stream) override { return Call(*this, "ftell") ? tell(stream) : -1; }
    char* fgets(char* buffer, int size, void* stream) override
    {
        const Call call(*this, "fgets");
        int length = 0;
        while (call && length < size - 1 && (length == 0 || buffer[length - 1] != '\n') && read(stream, buffer + length, 1) == 1)
        {
            buffer[++length] = 0;
        }
        return length > 0 ? buffer : nullptr;
    }
    int fputs(const char* text, void* stream) override
    {
        return Call(*this, "fputs") && write(stream, text, std::strlen(text)) == std::strlen(text) ? 0 : -1;
    }
    int rename(const char* oldName, const char* newName) override
    {
        const Call call(*this, "rename");
        const std::string from = normal(oldName), to = normal(newName);
        const NodePtr node = at(from), there = at(to);
        const bool fits = node && (!there || there == node || (there->directory == node->directory && isEmpty(to)));
        if (!call || !fits || !isInDirectory(to) || to.starts_with(from + '/'))
        {
            return -1;
        }
        auto nodes = m_nodes;
        for (const auto& [path, moved] : m_nodes)
        {
            if (path == from || path.starts_with(from + '/'))
            {
                nodes.erase(path);
                nodes[to + path.substr(from.size())] = moved;
            }
        }
        m_nodes.swap(nodes);
        return 0;
    }
    int remove(const char* path) override
    {
        return Call(*this, "remove") && at(path) && !at(path)->directory && m_nodes.erase(normal(path)) ? 0 : -1;
    }
    long findfirst(const char* pattern, FileInfo& info) override
    {
        const Call call(*this, "findfirst");
        // Directories report these two, or removeDirectoryRecursively() takes an empty one for missing.
        Search search{parentOf(pattern), std::string(pattern).substr(std::string(pattern).rfind('/') + 1), {".", ".."}};
        for (const auto& [path, node] : m_nodes)
        {
            if (path != m_root && parentOf(path) == normal(search.directory))
            {
                search.names.push_back(path.substr(path.rfind('/') + 1));
            }
        }
        return call && next(search, info) == 0 ? (m_searches[++m_lastSearch] = std::move(search), m_lastSearch) : -1;
    }
    int findnext(long handle, FileInfo& info) override
    {
        return Call(*this, "findnext") && m_searches.contains(handle) ? next(m_searches[handle], info) : -1;
    }
    int findclose(long handle) override { return Call(*this, "findclose") && m_searches.erase(handle) ? 0 : -1; }
    int mkdir(const char* path) override { return Call(*this, "mkdir") && add(path, true) ? 0 : -1; }
    int rmdir(const char* path) override
    {
        const std::string name = normal(path);
        return name != m_root && Call(*this, "rmdir") && at(name) && at(name)->directory && isEmpty(name) && m_nodes.erase(name) ? 0 : -1;
    }
    int statfs(const char* path, unsigned long long& freeToCaller, unsigned long long& total, unsigned long long& totalFree) override
    {
        const Call call(*this, "statfs");
        freeToCaller = totalFree = m_capacity - used();
        total = m_capacity;
        return call && at(path) ? 0 : -1;
    }
    int access(const char* path, int) override { return Call(*this, "access") && at(path) ? 0 : -1; }
    int stat(const char* path, FileInfo& info) override
    {
        return Call(*this, "stat") && at(path) ? at(path)->describe(info, path, 0040700, 0100600) : -1;
    }
    int writev(int, const io_vec*, int) override { return -1; }
    int fseek64(void* stream, long long offset, int whence) override { return Call(*this, "fseek64") ? seek(stream, offset, whence) : -1; }
    long long ftell64(void* stream) override { return Call(*this, "ftell64") ? tell(stream) : -1; }

private:
    // Holds the lock during an operation, or as long as the expression it stands in. False if the operation is to fail.
    struct Call
    {
        Call(MemoryFileSystem& own, const char* operation) : files(own), guard(own.m_mutex), refused(own.m_failing == operation)
        {
            if (refused)
            {
                files.m_failing.clear();
            }
        }
        explicit operator bool() const { return !refused; }

        MemoryFileSystem& files;
        const std::lock_guard<std::mutex> guard;
        const bool refused;
    };

    struct Node
    {
        int describe(FileInfo& info, const std::string& name, int directoryBits, int fileBits) const
        {
            info = {{}, static_cast<std::uint16_t>(directory ? directoryBits : fileBits), changed, changed, changed, bytes.size()};
            name.copy(info.name, sizeof(info.name) - 1);
            return 0;
        }

        bool directory;
        std::int64_t changed;
        std::string bytes;
    };
    using NodePtr = std::shared_ptr<Node>;

    struct Stream
    {
        NodePtr node;
        std::size_t position;
        bool reads, writes, appends;
    };

    struct Search
    {
        std::string directory, pattern;
        std::vector<std::string> names;  // not looked at yet
    };

    // Paths as keys have one separator between their parts and none at the end.
    static std::string normal(const std::string& path)
    {
        std::istringstream parts(path);
        std::string whole;
        for (std::string part; std::getline(parts, part, '/');)
        {
            whole += part.empty() || part == "." ? "" : (whole.empty() && path[0] != '/' ? "" : "/") + part;
        }
        return whole;
    }
    static std::string parentOf(const std::string& path) { return path.substr(0, std::min(path.rfind('/'), path.size())); }
    static NodePtr makeNode(bool directory) { return std::make_shared<Node>(Node{directory, std::time(nullptr), {}}); }
    static bool matches(const char* pattern, const char* name)
    {
        return *pattern == '*' ? matches(pattern + 1, name) || (*name != 0 && matches(pattern, name + 1))
               : *name == 0    ? *pattern == 0
                               : (*pattern == '?' || *pattern == *name) && matches(pattern + 1, name + 1);
    }

    // With the lock held:

    NodePtr at(const std::string& path) const
    {
        const auto found = m_nodes.find(normal(path));
        return found == m_nodes.end() ? nullptr : found->second;
    }
    bool isInDirectory(const std::string& path) const { return at(parentOf(path)) && at(parentOf(path))->directory; }
    bool isEmpty(const std::string& path) const
    {
        return std::none_of(m_nodes.begin(), m_nodes.end(), [&](const auto& node) { return node.first.starts_with(path + '/'); });
    }
    NodePtr add(const std::string& path, bool directory)
    {
        const std::string name = normal(path);
        return at(name) || !isInDirectory(name) ? nullptr : m_nodes[name] = makeNode(directory);
    }
    std::size_t used() const
    {
        std::size_t sum = 0;
        for (const auto& [path, node] : m_nodes)
        {
            sum += node->bytes.size();
        }
        return sum;
    }

    static long tell(void* stream) { return static_cast<long>(static_cast<Stream*>(stream)->position); }
    static int seek(void* stream, long long offset, int whence)
    {
        Stream& moved = *static_cast<Stream*>(stream);
        const std::size_t base = whence == 1 ? moved.position : whence == 2 ? moved.node->bytes.size() : 0;
        const bool valid = whence >= 0 && whence <= 2 && offset >= -static_cast<long long>(base);
        moved.position = valid ? base + static_cast<std::size_t>(offset) : moved.position;
        return valid ? 0 : -1;
    }
    static std::size_t read(void* stream, char* buffer, std::size_t size)
    {
        Stream& from = *static_cast<Stream*>(stream);
        const std::string& bytes = from.node->bytes;
        const std::size_t length = from.reads && from.position < bytes.size() ? bytes.copy(buffer, size, from.position) : 0;
        from.position += length;
        return length;
    }
    std::size_t write(void* stream, const char* text, std::size_t size)
    try
    {
        Stream& to = *static_cast<Stream*>(stream);
        const std::size_t before = to.node->bytes.size(), limit = before + m_capacity - used();
        to.position = to.appends ? before : to.position;
        const std::size_t length = to.writes && to.position < limit ? std::min(size, limit - to.position) : 0;
        to.node->bytes.resize(std::max(before, length == 0 ? 0 : to.position + length));
        to.node->bytes.replace(length == 0 ? 0 : to.position, length, text, length);
        to.node->changed = std::time(nullptr);
        to.position += length;
        return length;
    }
    catch (const std::bad_alloc&)
    {
        return 0;
    }
    int next(Search& search, FileInfo& info) const
    {
        const bool all = search.pattern.empty() || search.pattern == "*.*";
        while (!search.names.empty())
        {
            const std::string name = std::move(search.names.back());
            search.names.pop_back();
            const NodePtr node = at(search.directory + '/' + name);
            if (node && (all || matches(search.pattern.c_str(), name.c_str())))
            {
                return node->describe(info, name, 16, 0);
            }
        }
        return -1;
    }

    std::mutex m_mutex;
    const std::string m_root;
    const std::size_t m_capacity;
    std::map<std::string, NodePtr> m_nodes;  // files and directories by path
    std::map<long, Search> m_searches;
    long m_lastSearch = 0;
    std::string m_failing;
};

}  // namespace General::Ortha::Test
