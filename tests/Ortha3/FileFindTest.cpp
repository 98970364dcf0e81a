#include "ortha/ortha3/FileFind.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <string>

#include "ortha/ortha3/File.h"

#include "support/Host.h"
#include "support/LogLines.h"
#include "support/ScratchDirectory.h"

namespace General::Ortha {
namespace {

using namespace Test;

struct Directories : testing::Test
{
    Directories() { std::filesystem::current_path(scratch / ""); }

    static bool exists(const std::string& path) { return CFile::access(path.c_str(), 0); }
    static void make(const std::string& path) { EXPECT_TRUE(std::filesystem::create_directory(path)) << path; }

    ScratchDirectory scratch;
    LogLines lines;
};

template <class Find>
std::set<std::string> paths(Find& find, const char* pattern)
{
    std::set<std::string> paths;
    for (bool found = find.findFile(pattern); found; found = find.findNextFile())
    {
        EXPECT_TRUE(paths.insert(find.getFilePath().c_str()).second);
    }
    return paths;
}

TEST_F(Directories, ASearchGivesPathsAsItsPatternHasThemAndEndsTheOneBefore)
{
    CFileFind find;
    CFileFindEx findEx;
    make("d");
    std::ofstream("d/a.txt") << "four";
    std::ofstream("b.txt") << "";
    for (const auto& [pattern, expected] : {std::pair("d/*.txt", "d/a.txt"), std::pair("*.txt", "b.txt"), std::pair("./d/a*", "./d/a.txt")})
    {
        EXPECT_EQ(paths(find, pattern), std::set<std::string>{expected});
        EXPECT_EQ(paths(findEx, pattern), std::set<std::string>{expected});
    }
    EXPECT_EQ(paths(find, "d/*"), (std::set<std::string>{"d/.", "d/..", "d/a.txt"}));
    EXPECT_TRUE(find.findFile("d/a.txt") && find.getLength() == 4 && find.isNormal() && find.getFileName() == "a.txt");
    EXPECT_TRUE(find.findFile("d") && find.isDirectory() && !find.isNormal() && !find.findNextFile());
    find.close();
    EXPECT_TRUE(!find.findNextFile() && lines.bare().empty());
    EXPECT_FALSE(find.findFile("missing/*"));
    EXPECT_NE(lines.bare().find("_findfirst failed, errno:2"), std::string::npos);
}

TEST_F(Directories, AreMadeAndRemovedWithAllThatIsInThemButNotWhatALinkPointsAt)
{
    for (const char* const path : {"a/b/c", "a/b/d/", "./e", "a//f"})
    {
        EXPECT_TRUE(CFile::makeDirectoryRecursively(path)) << path;
        EXPECT_TRUE(exists(path) && !CFile::makeDirectoryRecursively(path)) << path;
    }
    EXPECT_EQ(lines.bare(), "");
    const std::string odd = std::string("a/") + patternName;
    make("kept");
    std::ofstream("kept/file") << "kept";
    std::ofstream("a/file") << "";
    EXPECT_FALSE(CFile::makeDirectoryRecursively("a/file/g/h"));
    EXPECT_TRUE(lines.bare().find("make directory failed.") != std::string::npos && !CFile::makeDirectoryRecursively(""));
    EXPECT_EQ(lines.bare(), "the path is unvalid");
    for (const auto& [path, removeSelf] : {std::pair("a", false), std::pair("a/", true), std::pair("a/*", true), std::pair("a", true)})
    {
        CFile::makeDirectoryRecursively("a/b/c");
        const bool linked = makeLink("../../kept", "a/b/link") && makeLink("../kept/file", "a/.link");
        EXPECT_TRUE(linked || !hasLinks);
        make(odd);  // which is no pattern
        make(odd + "/b");
        EXPECT_TRUE(CFile::removeDirectoryRecursively(path, removeSelf)) << path;
        EXPECT_TRUE(exists("a") != removeSelf && !exists("a/b") && exists("kept/file")) << path;
    }
    EXPECT_EQ(lines.bare(), "");
    EXPECT_FALSE(CFile::removeDirectoryRecursively("a", true));
    EXPECT_NE(lines.bare().find("the path does not exist"), std::string::npos);
    EXPECT_FALSE(CFile::removeDirectoryRecursively(("kept/" + std::string(1020, '/')).c_str(), true));
    EXPECT_TRUE(lines.bare() == "the path is unvalid" && exists("kept/file"));
}

}  // namespace
}  // namespace General::Ortha
