// The library's files and directories beside others. Rows are named file/operation/arguments/place/who, with the wall time of an operation.
//
// A place is a disk, whose cache in the system is what is measured, or a file system in memory.
#include <cstdio>
#include <cstring>
#include <fstream>
#include <functional>
#include <memory>

#include "ortha/ortha3/File.h"
#include "ortha/ortha3/FileFind.h"

#ifdef ORTHA_BENCH_HAS_POCO
#include <Poco/DirectoryIterator.h>
#include <Poco/File.h>
#include <Poco/FileStream.h>
#endif

#include "native.h"
#include "support.h"

namespace {

namespace fs = std::filesystem;
using General::Ortha::CFile;
using General::Ortha::CFileFind;
using General::Ortha::CFileFindEx;
using General::Ortha::CLfsFile;

using Block = std::vector<char>;

constexpr std::size_t kib = 1024;
constexpr std::size_t fileSize = 64 * kib * kib;

// What a search has seen. Sizes are those of the files.
struct Seen
{
    std::uint64_t entries = 0, directories = 0, readOnly = 0, bytes = 0, nameBytes = 0;

    void add(std::size_t nameLength, bool directory, bool locked, std::uint64_t size)
    {
        ++entries;
        directories += directory ? 1 : 0;
        readOnly += locked ? 1 : 0;
        bytes += directory ? 0 : size;
        nameBytes += nameLength;
    }
    bool operator==(const Seen&) const = default;
};

bool isDots(const char* name)
{
    return std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0;
}

bool makeFile(const std::string& path, bool readOnly, std::size_t size)
{
    std::error_code error;
    if (!std::ofstream(path))
    {
        return false;
    }
    if (size != 0)
    {
        fs::resize_file(path, size, error);
    }
    if (readOnly && !error)
    {
        constexpr fs::perms writable = fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
        fs::permissions(path, writable, fs::perm_options::remove, error);
    }
    return !error;
}

// A directory that rows use, and what they find there. That is made when the first row needs it.
struct Place
{
    std::string name;
    Bench::Scratch scratch;
    Seen content;  // of directory()

    // Whether it is what its name says.
    [[nodiscard]] bool usable() const { return scratch.made() && Bench::isInMemory(scratch.file("")) == (name == "memory"); }

    // A file of fileSize bytes.
    [[nodiscard]] std::string file() const
    {
        const std::string path = scratch.file("full");
        if (!fs::exists(path))
        {
            std::ofstream(path, std::ios::binary) << std::string(fileSize, 'x');
        }
        return path;
    }

    // A directory of 10,000 entries. Of every hundred one is a directory, and nine are read-only files.
    std::string directory()
    {
        const std::string path = scratch.file("entries");
        for (std::size_t i = 0, count = fs::create_directory(path) ? 10000 : 0; i < count; ++i)
        {
            const std::string bare = "recording-" + std::to_string(i) + ".dat", entry = path + "/" + bare;
            const bool isDirectory = i % 100 == 0, readOnly = !isDirectory && i % 10 == 0;
            if (isDirectory ? fs::create_directory(entry) : makeFile(entry, readOnly, i * 11))
            {
                content.add(bare.size(), isDirectory, readOnly, i * 11);
            }
        }
        return path;
    }
};

void add(std::string_view operation, const Place& place, const char* who, std::function<void(benchmark::State&)> function)
{
    constexpr double seconds = 0.05;  // what prepares the steps and clears away after them takes many times as long
    Bench::row(Bench::nameOf({"file", operation, place.name, who}), std::move(function))
        ->UseRealTime()
        ->Unit(benchmark::kMicrosecond)
        ->MinTime(seconds);
}

// Files as the rows use them: the constructor opens one to be written anew, or to be read; the destructor closes it.
// write() tells whether all was taken, read() how much came.

template <class File>
struct Ours
{
    File file;

    Ours(const std::string& path, bool writing) { file.open(path.c_str(), writing ? File::modeWrite : File::modeRead); }

    bool write(Block& block) { return file.write(block.data(), block.size()) == static_cast<long>(block.size()); }
    std::size_t read(Block& block) { return std::size_t(file.read(block.data(), block.size())); }
};

// With the buffer that the C library takes, or with one of a size.
template <std::size_t bufferSize>
struct Stdio
{
    Block buffer;
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> file;

    Stdio(const std::string& path, bool writing) : buffer(bufferSize), file(std::fopen(path.c_str(), writing ? "wb" : "rb"), &std::fclose)
    {
        if (file && bufferSize != 0)
        {
            std::setvbuf(file.get(), buffer.data(), _IOFBF, bufferSize);
        }
    }

    bool write(const Block& block) { return file && std::fwrite(block.data(), 1, block.size(), file.get()) == block.size(); }
    std::size_t read(Block& block) { return file ? std::fread(block.data(), 1, block.size(), file.get()) : 0; }
};

template <class Stream>
struct Streamed
{
    Stream stream;

    Streamed(const std::string& path, bool writing)
        : stream(path, std::ios::binary | (writing ? std::ios::out | std::ios::trunc : std::ios::in))
    {
    }

    bool write(const Block& block) { return stream.write(block.data(), std::streamsize(block.size())).good(); }
    std::size_t read(Block& block) { return std::size_t(stream.read(block.data(), std::streamsize(block.size())).gcount()); }
};

constexpr auto nothing = [] { return true; };

// Times `step` alone. `prepare` comes before it; `right` tells after it whether it did its work, and clears away.
template <class Prepare, class Step, class Right>
void repeat(benchmark::State& state, Prepare prepare, Step step, Right right)
{
    for (auto _ : state)
    {
        state.PauseTiming();
        const bool prepared = prepare();
        state.ResumeTiming();
        step();
        state.PauseTiming();
        if (!prepared || !right())
        {
            return state.SkipWithError("not all was done");
        }
        state.ResumeTiming();
    }
}

template <class File>
void write(benchmark::State& state, const Place& place, std::size_t callSize)
{
    const std::string path = place.scratch.file("written");
    Block block(callSize, 'x');
    std::size_t calls = 0;
    const auto step = [&] {
        File file(path, true);
        for (calls = 0; calls < fileSize / callSize && file.write(block); ++calls)
        {
        }
    };
    const auto right = [&] { return calls == fileSize / callSize && fs::file_size(path) == fileSize && fs::remove(path); };
    repeat(state, nothing, step, right);
}

template <class File>
void read(benchmark::State& state, const Place& place, std::size_t callSize)
{
    const std::string path = place.file();
    Block block(callSize);
    for (auto _ : state)
    {
        std::size_t total = 0;
        {
            File file(path, false);
            for (std::size_t done = 0; done < fileSize; done += callSize)
            {
                total += file.read(block);
                benchmark::ClobberMemory();
            }
        }
        if (total != fileSize || block.back() != 'x')
        {
            return state.SkipWithError("not all was read");
        }
    }
}

template <class File>
void addFile(const Place& place, const char* who)
{
    for (const std::size_t size : {kib, 64 * kib})
    {
        const std::string calls = std::to_string(size / kib) + "-KiB";
        add("write/" + calls, place, who, [&place, size](benchmark::State& state) { write<File>(state, place, size); });
        add("read/" + calls, place, who, [&place, size](benchmark::State& state) { read<File>(state, place, size); });
    }
}

template <class Find>
void searchOurs(const std::string& directory, Seen& seen)
{
    Find find;
    for (bool found = find.findFile((directory + "/*").c_str()); found; found = find.findNextFile())
    {
        const auto name = find.getFileName();
        if (!isDots(name.c_str()))
        {
            seen.add(std::strlen(name.c_str()), find.isDirectory(), find.isReadOnly(), find.getLength());
        }
    }
}

void searchNative(const std::string& directory, Seen& seen)
{
    Bench::Native::searchDirectory(directory, [&seen](const char* name, bool isDirectory, bool readOnly, auto size) {
        seen.add(std::strlen(name), isDirectory, readOnly, static_cast<std::uint64_t>(size));
    });
}

// Without permissions, whether an entry is a directory is known before its status is asked for.
template <bool permissions>
void searchStd(const std::string& directory, Seen& seen)
{
    constexpr fs::perms writable = fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
    for (const fs::directory_entry& entry : fs::directory_iterator(directory))
    {
        const fs::file_status status = permissions ? entry.status() : fs::file_status();
        const bool isDirectory = permissions ? fs::is_directory(status) : entry.is_directory();
        const std::string name = entry.path().filename().string();
        seen.add(name.size(), isDirectory, (status.permissions() & writable) == fs::perms::none, isDirectory ? 0 : entry.file_size());
    }
}

#ifdef ORTHA_BENCH_HAS_POCO
template <bool permissions>
void searchPoco(const std::string& directory, Seen& seen)
{
    const Poco::DirectoryIterator end;
    for (Poco::DirectoryIterator entry(directory); entry != end; ++entry)
    {
        seen.add(entry.name().size(), entry->isDirectory(), permissions && !entry->canWrite(), entry->getSize());
    }
}
#endif

// `permissions`: whether the search tells what is read-only.
void addSearch(Place& place, const char* who, bool permissions, void (*search)(const std::string&, Seen&))
{
    add("search/10000-entries", place, who, [&place, permissions, search](benchmark::State& state) {
        const std::string directory = place.directory();
        Seen content = place.content;
        content.readOnly = permissions ? content.readOnly : 0;
        for (auto _ : state)
        {
            Seen seen;
            search(directory, seen);
            if (seen != content || seen.entries != 10000)
            {
                return state.SkipWithError("not all was found");
            }
        }
    });
}

// In memory only: a disk's file system may pass over every entry that was deleted lately when it looks for a free one, and the time is then
// that of what ran before.
void addMake(const Place& place, const char* who, void (*make)(const std::string&))
{
    if (place.name != "memory")
    {
        return;
    }
    add("make-recursively/10-levels", place, who, [&place, make](benchmark::State& state) {
        const std::string first = place.scratch.file("1"), all = first + "/2/3/4/5/6/7/8/9/10";
        const auto right = [&] { return fs::is_directory(all) && fs::remove_all(first) == 10; };
        const auto step = [&] { make(all); };
        repeat(state, nothing, step, right);
    });
}

void addRemove(const Place& place, const char* who, void (*remove)(const std::string&))
{
    add("remove-recursively/1000-files", place, who, [&place, remove](benchmark::State& state) {
        const std::string directory = place.scratch.file("removed");
        const auto prepare = [&] {
            bool made = fs::create_directory(directory);
            for (int i = 0; i < 1000; ++i)
            {
                made = makeFile(directory + "/recording-" + std::to_string(i) + ".dat", false, 0) && made;
            }
            return made;
        };
        const auto right = [&] { return !fs::exists(directory); };
        const auto step = [&] { remove(directory); };
        repeat(state, prepare, step, right);
    });
}

void addRows(Place& place)
{
    addFile<Ours<CFile>>(place, "ortha");
    addFile<Ours<CLfsFile>>(place, "ortha-lfs");
    addFile<Stdio<0>>(place, "stdio");
    addFile<Stdio<16 * kib>>(place, "stdio-16-KiB");
    addFile<Streamed<std::fstream>>(place, "fstream");
    addSearch(place, "ortha", true, searchOurs<CFileFind>);
    addSearch(place, "ortha-ex", true, searchOurs<CFileFindEx>);
    addSearch(place, "std", true, searchStd<true>);
    addSearch(place, "std-sizes", false, searchStd<false>);
    addSearch(place, Bench::Native::searchedBy, true, searchNative);
    addMake(place, "ortha", [](const std::string& path) { CFile::makeDirectoryRecursively(path.c_str()); });
    addMake(place, "std", [](const std::string& path) { fs::create_directories(path); });
    addRemove(place, "ortha", [](const std::string& path) { CFile::removeDirectoryRecursively(path.c_str(), true); });
    addRemove(place, "std", [](const std::string& path) { fs::remove_all(path); });
#ifdef ORTHA_BENCH_HAS_POCO
    addFile<Streamed<Poco::FileStream>>(place, "poco");
    addSearch(place, "poco", true, searchPoco<true>);
    addSearch(place, "poco-sizes", false, searchPoco<false>);
    addMake(place, "poco", [](const std::string& path) { Poco::File(path).createDirectories(); });
    addRemove(place, "poco", [](const std::string& path) { Poco::File(path).remove(true); });
#endif
}

}  // namespace

int main(int argc, char** argv)
{
    Place places[] = {{"disk", Bench::Scratch(fs::temp_directory_path()), {}}, {"memory", Bench::Scratch(Bench::memoryDirectory), {}}};
    for (Place& place : places)
    {
        if (place.usable())
        {
            addRows(place);
        }
    }
    return Bench::run(argc, argv);
}
