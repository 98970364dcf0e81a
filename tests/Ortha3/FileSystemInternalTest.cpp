#include "ortha/ortha3/FileSystem.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <set>
#include <vector>

#include "Src/Ortha3/FileDefaultOpt.h"
#include "support/Host.h"
#include "support/LogLines.h"
#include "support/ScratchDirectory.h"

namespace General::Ortha {
namespace {

using namespace Test;

struct DefaultFiles : testing::Test
{
    std::set<std::string> found(const std::string& pattern)
    {
        std::set<std::string> names;
        FileInfo info;
        const long handle = files.findfirst(pattern.c_str(), info);
        for (int result = handle == -1 ? -1 : 0; result != -1; result = files.findnext(handle, info))
        {
            names.insert(info.name);
        }
        EXPECT_EQ(handle == -1 ? 0 : files.findclose(handle), 0);
        return names;
    }

    ScratchDirectory scratch;
    LogLines lines;
    FileDefaultOpt& files = *FileDefaultOpt::instance();
};

TEST(FileSystemHooks, TheFirstOfThirtyOnePrefixesThatFitsCounts)
{
    LogLines lines;
    IFileSystem *const standard = FileDefaultOpt::instance(), *const other = FileDefaultOptUTF8toWchar::instance();
    hookFileSystem("/a", standard);
    hookFileSystem("/ab", other);
    EXPECT_TRUE(getFileSystem("/abc") == standard && getFileSystem("/Abc") == standard);  // nobody has the second one
    hookFileSystem("/b", other);
    hookFileSystem("/a", nullptr);
    EXPECT_TRUE(getFileSystem("/abc") == other && getFileSystem("/b") == other && getFileSystem("/a") == standard);
    hookFileSystem("/unknown", nullptr);
    for (int i = 2; i < 32; ++i)
    {
        hookFileSystem(("/row" + std::to_string(i) + "/").c_str(), other);
    }
    EXPECT_TRUE(getFileSystem("/row30/x") == other && getFileSystem("/row31/x") == standard);
    hookFileSystem("/b", nullptr);
    const std::string longest(300, 'p');
    hookFileSystem(longest.c_str(), other);
    EXPECT_TRUE(getFileSystem(longest.substr(0, 255).c_str()) == other && getFileSystem(longest.substr(0, 254).c_str()) == standard);
    EXPECT_EQ(lines.take().size(), 37u);
}

TEST_F(DefaultFiles, AStreamIsOpenedAsItsModeTells)
{
    const std::string path = scratch / "file";
    EXPECT_EQ(files.fopen(path.c_str(), "rb"), nullptr);
    EXPECT_EQ(files.fopen((scratch / "").c_str(), "rb"), nullptr);
    EXPECT_EQ(lines.bare(), "_open get error, errno:2, errmsg:No such file or directory\n_open get error, " + std::string(openedDirectory));
    const auto write = [&](const char* mode, const char* text) {
        void* const stream = files.fopen(path.c_str(), mode);
        EXPECT_EQ(files.fwrite(text, 1, 3, stream), 3u) << mode;
        EXPECT_NE(isInherited(fileno(static_cast<FILE*>(stream))), std::string(mode).find('e') != std::string::npos) << mode;
        EXPECT_EQ(files.fclose(stream), 0);
        std::ifstream file(path);
        return std::string(std::istreambuf_iterator<char>(file), {});
    };
    EXPECT_EQ(write("wbe", "one"), "one");
    EXPECT_EQ(write("ab", "two"), "onetwo");
    EXPECT_EQ(write("rb+", "TWO"), "TWOtwo");
    EXPECT_EQ(write("ab+e", "end"), "TWOtwoend");
    EXPECT_EQ(write("wbd", "new"), "new");
    EXPECT_EQ(static_cast<unsigned int>(std::filesystem::status(path).permissions()), ownersPermissions);
    void* const stream = files.fopen(path.c_str(), "rb");
    EXPECT_EQ(files.fwrite("x", 1, 1, stream), 0u);
    EXPECT_EQ(lines.bare(), "fwrite failed, expected:1, actual:0, errno:9, errmsg:Bad file descriptor\n");
    char text[8];
    EXPECT_TRUE(files.fseek64(stream, 1, 0) == 0 && files.fread(text, 1, 8, stream) == 2 && files.ftell64(stream) == 3);
    files.fclose(stream);
    EXPECT_EQ(lines.bare(), "");
}

TEST_F(DefaultFiles, FailuresLeaveTheirLineUnlessTheyAreExpected)
{
    const std::string missing = scratch / "missing", folder = scratch / "folder", link = scratch / "link";
    IFileSystem& utf8 = *FileDefaultOptUTF8toWchar::instance();
    FileInfo info;
    EXPECT_TRUE(files.mkdir(folder.c_str()) == 0 && files.mkdir(folder.c_str()) == -1 && files.remove(missing.c_str()) == -1);
    EXPECT_TRUE(utf8.rmdir(missing.c_str()) == -1 && utf8.stat(missing.c_str(), info) == -1 && utf8.access(missing.c_str(), 0) == -1);
    EXPECT_EQ(lines.bare(), "");
    EXPECT_EQ(files.remove(folder.c_str()), -1);
    EXPECT_EQ(files.rmdir(missing.c_str()), -1);
    EXPECT_EQ(files.stat(missing.c_str(), info), -1);
    EXPECT_EQ(utf8.rename(missing.c_str(), folder.c_str()), -1);
    EXPECT_EQ(lines.bare(),
              "remove failed, " + std::string(removedDirectory) +
                  "rmdir failed, errno:2, errmsg:No such file or directory\n"
                  "stat failed, errno:2, errmsg:No such file or directory\nrename failed, errno:2, errmsg:No such file or directory\n");
    for (const char* const path : {"\x80", "a\xC0\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xE2\x82"})
    {
        EXPECT_EQ(utf8.mkdir(path), -1);
        EXPECT_EQ(lines.bare(), "get wide char bytes error!\ntrans char to wchar failed!");
    }
    EXPECT_TRUE(utf8.fopen("", "rb") == nullptr && utf8.mkdir((scratch / "\xE2\x82\xAC").c_str()) == 0);
    EXPECT_EQ(lines.bare(), "trans char to wchar failed!");
    unsigned long long caller = 0, total = 0, free = 0;
    EXPECT_TRUE(files.statfs(folder.c_str(), caller, total, free) == 0 && caller <= free && free <= total && total > 0);
}

TEST_F(DefaultFiles, ASearchFindsWhatMatchesAndKeepsApartFromOthers)
{
    for (const char* const name : {"a.txt", "b.txt", "b[1].txt", ".hidden", "noext"})
    {
        std::ofstream(scratch / name) << "text";
    }
    files.mkdir((scratch / "folder").c_str());
    using Names = std::set<std::string>;
    const bool linked = makeLink("folder", scratch / "link.txt");
    EXPECT_TRUE(linked || !hasLinks);
    EXPECT_EQ(found(scratch / "*.txt"), (linked ? Names{"a.txt", "b.txt", "b[1].txt", "link.txt"} : Names{"a.txt", "b.txt", "b[1].txt"}));
    EXPECT_EQ(found(scratch / "?.t*"), (Names{"a.txt", "b.txt"}));
    EXPECT_EQ(found(scratch / "b[1]*"), Names{"b[1].txt"});
    EXPECT_EQ(found(scratch / "*.*").size(), linked ? 9u : 8u);
    EXPECT_EQ(found(scratch / "").size(), linked ? 9u : 8u);
    EXPECT_EQ(found(scratch / "*o*d*"), Names{"folder"});
    EXPECT_EQ(lines.bare(), "");
    EXPECT_TRUE(found(scratch / "none*").empty() && found("").empty());
    EXPECT_EQ(lines.bare(), "_findfirst failed, errno:2, errmsg:No such file or directory\n");

    FileInfo info;
    std::filesystem::permissions(scratch / "noext", std::filesystem::perms(0444));
    hide(scratch / ".hidden");
    for (const auto& [name, attribute] :
         {std::pair("folder", 16), std::pair("link.txt", 0), std::pair(".hidden", 2), std::pair("noext", 1)})
    {
        const long handle = files.findfirst((scratch / name).c_str(), info);
        EXPECT_TRUE(handle == -1 ? name == std::string("link.txt") && !linked : info.attrib == attribute) << name << info.attrib;
        files.findclose(handle);
    }
    const long first = files.findfirst((scratch / "*").c_str(), info), second = files.findfirst((scratch / "*").c_str(), info);
    EXPECT_EQ(files.findclose(first), 0);
    const long third = files.findfirst((scratch / "*").c_str(), info), fourth = files.findfirst((scratch / "*").c_str(), info);
    EXPECT_TRUE(second != third && third != fourth && second != fourth);
    EXPECT_TRUE(files.findclose(second) == 0 && files.findclose(third) == 0 && files.findclose(fourth) == 0);
    EXPECT_TRUE(files.findnext(second, info) == -1 && files.findclose(second) == -1);
}

}  // namespace
}  // namespace General::Ortha
