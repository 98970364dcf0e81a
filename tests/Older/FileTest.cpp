#include "ortha/File.h"

#include <gtest/gtest.h>

#include <string>

#include "support/LogLines.h"
#include "support/MemoryFileSystem.h"

namespace {

using General::Ortha::IFileSystem;
namespace Newer = General::Ortha;

// What is done in this directory happens in memory: there is no such directory on the disk.
Newer::Test::MemoryFileSystem files("/nowhere");

template <auto operation>
struct Plain;
template <class R, class... Args, R (IFileSystem::*operation)(Args...)>
struct Plain<operation>
{
    static R call(Args... args) { return (files.*operation)(args...); }
};
template <auto... operation>
constexpr FileOperations table = {&Plain<operation>::call...};
using I = IFileSystem;
constexpr auto& operations =
    table<&I::fopen, &I::fclose, &I::fread, &I::fwrite, &I::fflush, &I::fseek, &I::ftell, &I::fgets, &I::fputs, &I::rename, &I::remove,
          &I::findfirst, &I::findnext, &I::findclose, &I::mkdir, &I::rmdir, &I::statfs, &I::access, &I::stat>;

TEST(OlderFile, ATableOfFunctionsServesBothInterfaces)
{
    Newer::Test::LogLines lines;
    FileOperations own = operations;
    hookFileOperations("/nowhere", &own);
    own = {};
    CFile file;
    Newer::CFile newer;
    Newer::CLfsFile large;
    CFileFind find;
    char text[32] = "text";
    const char *const name = "/nowhere/f", *const to = "/nowhere/g", *const folder = "/nowhere/c";
    EXPECT_TRUE(file.open(name, CFile::modeReadWrite | CFile::modeCreate) && file.write(text, 4) == 4 && file.puts("line\nend") == 8);
    EXPECT_TRUE(file.seek(-8, CFile::end) == 4 && file.gets(text, 32) == text && text[4] == '\n' && file.read(text, 9) == 3);
    EXPECT_TRUE((file.flush(), file.getPosition()) == 12 && file.getLength() == 12 && file.isOpen() && file.load(name)[4] == 'l');
    EXPECT_TRUE(newer.open(name, CFile::modeRead) && newer.getLength() == 12 && newer.writev(nullptr, 0) == 0);
    EXPECT_TRUE(large.open(name, CFile::modeWrite | CFile::modeNoTruncate) && large.getPosition() == 0) << "no 64-bit position";
    EXPECT_TRUE(CFile::makeDirectory(folder) && !CFile::makeDirectory(folder) && !CFile::remove(folder) && !CFile::removeDirectory(name));
    EXPECT_TRUE(find.findFile("/nowhere/*") && find.getFilePath() == name && find.findNextFile() && find.isDirectory());
    EXPECT_TRUE(CFile::removeDirectory(folder) && CFile::rename(name, to) && !CFile::access(name, 0) && CFile::remove(to));
    file.close(), newer.close();
    EXPECT_TRUE(file.read(text, 4) == 0 && file.write(text, 4) == 0 && newer.read(text, 4) == -1 && !file.isOpen());
}

TEST(OlderFile, APrefixIsWholeInTheNewerTableAndCutInItsOwnByWhichItIsTakenOutOfBoth)
{
    Newer::Test::LogLines lines;
    const std::string prefix = "/nowhere/" + std::string(31, 'x'), cut = prefix.substr(0, 31);
    ASSERT_TRUE(files.mkdir(prefix.c_str()) == 0 && files.mkdir(cut.c_str()) == 0 && files.mkdir("/nowhere/41") == 0);
    for (int i = 0; i < 40; ++i)  // more often than there are rows
    {
        hookFileOperations(nullptr, &operations), hookFileOperations(prefix.c_str(), &operations);
        hookFileOperations(prefix.c_str(), nullptr), hookFileOperations("/absent", nullptr);
        ASSERT_TRUE(CFile::access(prefix.c_str(), 0) && !CFile::access(cut.c_str(), 0));
        hookFileOperations(cut.c_str(), nullptr);
        ASSERT_FALSE(CFile::access(prefix.c_str(), 0)) << i;
    }
    for (int i = 10; i < 42; ++i)
    {
        hookFileOperations(("/nowhere/" + std::to_string(i)).c_str(), &operations);
    }
    EXPECT_TRUE(CFile::makeDirectory("/nowhere/40") && !CFile::access("/nowhere/41", 0)) << "the thirty-second has no row";
}

}  // namespace
