#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>

#include "ortha/ortha3/File.h"
#include "ortha/ortha3/FileFind.h"

#include "support/LogLines.h"
#include "support/MemoryFileSystem.h"
#include "support/ScratchDirectory.h"

namespace General::Ortha {
namespace {

using namespace Test;

// A hooked directory. What is done in it must leave nothing on the disk.
struct HookedFiles : testing::Test
{
    HookedFiles() { hookFileSystem(root.c_str(), &files), lines.take(); }
    ~HookedFiles() override
    {
        hookFileSystem(root.c_str(), nullptr);
        EXPECT_TRUE(std::filesystem::is_empty(scratch / ""));
    }
    std::string path(const std::string& name) const { return root + "/" + name; }
    static bool exists(const std::string& path) { return CFile::access(path.c_str(), 0); }
    static bool makeAll(const std::string& path) { return CFile::makeDirectoryRecursively(path.c_str()); }
    static bool removeAll(const std::string& path, bool self) { return CFile::removeDirectoryRecursively(path.c_str(), self); }
    static void make(const std::string& path) { EXPECT_TRUE(CFile().open(path.c_str(), CFile::modeWrite)) << path; }

    ScratchDirectory scratch;
    const std::string root = scratch / "memory";
    MemoryFileSystem files{root, 1000};
    LogLines lines;
    char bytes[1000] = "text";
};

struct Utf8File : CLfsFile
{
    Utf8File() : CLfsFile(pathEncodingUtf8) {}
};

template <class File>
struct EachFile : HookedFiles
{
};
using Files = testing::Types<CFile, CLfsFile, Utf8File>;
TYPED_TEST_SUITE(EachFile, Files);

TYPED_TEST(EachFile, ReachesTheHookWithEveryOperationAndHearsOfItsFailure)
{
    using F = TypeParam;
    constexpr bool large = std::is_base_of_v<CLfsFile, F>;
    F file;
    CFileFind find;
    CFileFindEx findEx;
    FileInfo info;
    unsigned long long caller, total, free;
    char* const text = this->bytes;
    const std::string a = this->path("\xFF"), b = this->path("b"), folder = this->path("folder"), all = this->path("*");
    const char *const name = a.c_str(), *const to = b.c_str(), *const made = folder.c_str(), *const pattern = all.c_str();
    const std::pair<const char*, std::function<bool()>> steps[] = {
        {"fopen", [&] { return file.open(name, F::modeReadWrite | F::modeCreate); }},
        {"fwrite", [&] { return file.write(text, 4) == 4; }},
        {"fputs", [&] { return file.puts("line\nend") == (large ? 0 : 8) && file.getPosition() == 12; }},
        {large ? "fseek64" : "fseek", [&] { return file.seek(-8, F::end) == 4; }},
        {"fgets", [&] { return file.gets(text, 32) && std::string(text) == "line\n" && file.getPosition() == 9; }},
        {"fread", [&] { return file.read(text, 3) == 3 && std::string(text, 3) == "end" && file.getLength() == 12; }},
        {large ? "ftell64" : "ftell", [&] { return file.flush(), file.getPosition() == 12; }},
        {"fread", [&] { return file.load(name) && std::memcmp(file.load(name), "textline\nend", 12) == 0 && file.isOpen(); }},
        {"fopen", [&] { return file.open(name, F::modeWrite | F::modeNoTruncate) && file.puts("+") != -1 && file.getLength() == 13; }},
        {"access", [&] { return F::access(name, 0); }},
        {"stat", [&] { return F::stat(name, info) && info.size == 13 && a == info.name; }},
        {"statfs", [&] { return F::statFS(name, caller, total, free) && total == 1000 && free == 987 && caller == free; }},
        {"rename", [&] { return F::rename(name, to) && !F::access(name, 0) && F::rename(to, name); }},
        {"mkdir", [&] { return F::makeDirectory(made) && !F::makeDirectory(made); }},
        {"findfirst", [&] { return find.findFile(pattern) && find.isNormal() && find.getLength() == 13 && find.getFilePath() == a; }},
        {"findnext", [&] { return find.findNextFile() && find.isDirectory() && find.getFileName() == "folder"; }},
        {"findfirst", [&] { return findEx.findFile(pattern) && findEx.getLength() == 13 && findEx.getFilePath() == name; }},
        {"findnext", [&] { return findEx.findNextFile() && findEx.isDirectory(); }},
        {"rmdir", [&] { return F::removeDirectory(made) && !F::removeDirectory(made); }},
        {"remove", [&] { return F::remove(name) && !F::remove(name); }}};
    for (const auto& [operation, step] : steps)
    {
        this->files.failNext(operation);
        EXPECT_FALSE(step()) << operation;
        EXPECT_TRUE(step()) << operation;
    }
    this->lines.take();
    EXPECT_TRUE(!file.setvbuf(text, F::bufferFull, 32) && file.writev(nullptr, 0) == -1);  // not a stream of the C runtime
    EXPECT_EQ(this->lines.bare(), "CFile::setvbuf failed\n");
}

TYPED_TEST(EachFile, KeepsItsFileSystemWhileItIsOpenWhenTheHookGoes)
{
    using F = TypeParam;
    F file;
    const std::string path = this->path("file");
    ASSERT_TRUE(file.open(path.c_str(), F::modeReadWrite | F::modeCreate) && file.write(this->bytes, 4) == 4);
    hookFileSystem(this->root.c_str(), nullptr);
    EXPECT_TRUE(file.seek(1, F::begin) == 1 && file.read(this->bytes, 2) == 2 && this->bytes[0] == 'e' && file.puts("ture") != -1);
    file.close();
    EXPECT_TRUE(!file.open(path.c_str(), F::modeRead) && CFile::makeDirectory(this->root.c_str()));
    EXPECT_TRUE(file.open(path.c_str(), F::modeWrite) && file.puts("disk") != -1);
    file.close();
    EXPECT_EQ(std::filesystem::file_size(path), 4u);
    EXPECT_TRUE(this->removeAll(this->root, true));
    hookFileSystem(this->root.c_str(), &this->files);
    EXPECT_TRUE(file.open(path.c_str(), F::modeRead) && file.getLength() == 7);
}

TEST_F(HookedFiles, DirectoriesAreMadeAndRemovedWithAllThatIsInThem)
{
    for (const char* const form : {"a", "a/", "a/*"})
    {
        EXPECT_TRUE(makeAll(path("a/b/c")) && makeAll(path("a/empty/")) && !makeAll(path("a/b")));
        make(path("a/b/file")), make(path("a/.file"));
        EXPECT_TRUE(removeAll(path(form), false) && exists(path("a")) && !CFileFind().findFile(path("a/?*e*").c_str())) << form;
        EXPECT_TRUE(removeAll(path(form), true) && !exists(path("a"))) << form;
    }
    EXPECT_TRUE(lines.bare().empty() && makeAll(path("a/b")));
    make(path("a/b/1")), make(path("a/b/2"));
    files.failNext("remove");  // of one of the two: the walk goes on
    EXPECT_TRUE(!removeAll(path("a"), true) && exists(path("a/b/1")) != exists(path("a/b/2")));
}

TEST_F(HookedFiles, WritingStopsWhereTheDiskIsFullAndGoesOnWhenThereIsRoom)
{
    CFile small;
    CLfsFile large;
    const std::string a = path("a"), b = path("b");
    ASSERT_TRUE(small.open(a.c_str(), CFile::modeReadWrite | CFile::modeCreate) && small.write(bytes, 800) == 800);
    ASSERT_TRUE(large.open(b.c_str(), CLfsFile::modeWrite));
    EXPECT_TRUE(large.write(bytes, 800) == 200 && large.getPosition() == 200 && large.getLength() == 200);
    EXPECT_EQ(lines.bare(), "fwrite get error, total:800 has write:200, expected:600 return actuallen:0, \n");
    EXPECT_TRUE(small.write(bytes, 5) == 0 && small.getPosition() == 800);
    EXPECT_EQ(lines.bare(), "fwrite failed, expected:5, actual:0\n");
    EXPECT_TRUE(small.puts("x") == -1 && large.puts("x") == -1 && small.getPosition() == 800 && large.getPosition() == 200);
    EXPECT_TRUE(small.seek(10, CFile::begin) == 10 && small.write(bytes, 20) == 20 && small.getLength() == 800);
    small.close();
    EXPECT_TRUE(CFile::remove(a.c_str()) && large.write(bytes, 600) == 600 && large.getLength() == 800);
}

}  // namespace
}  // namespace General::Ortha
