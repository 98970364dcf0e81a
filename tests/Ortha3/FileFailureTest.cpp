#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <string>

#include "ortha/ortha3/File.h"
#include "ortha/ortha3/FileFind.h"

#include "support/DifficultFiles.h"

namespace General::Ortha {
namespace {

using namespace Test;

TEST_F(DifficultFiles, AnEmptyOneHasNothingAndADirectoryIsNone)
{
    make(scratch / "empty", "");
    CFile file;
    CLfsFile large, utf8(pathEncodingUtf8);
    char text[4];
    const std::string empty = scratch / "empty", folder = scratch / "";
    EXPECT_TRUE(file.open(empty.c_str(), CFile::modeRead) && file.getLength() == 0 && file.read(text, 4) == 0 && !file.gets(text, 4));
    EXPECT_TRUE(file.seek(0, CFile::end) == 0 && file.seek(9, CFile::begin) == 9 && file.read(text, 4) == 0 && lines.bare().empty());
    EXPECT_TRUE(large.open(empty.c_str(), CLfsFile::modeReadWrite) && large.getLength() == 0 && large.read(text, 0) == 0);
    EXPECT_TRUE(large.seek(0, CLfsFile::end) == 0 && lines.bare().empty());
    const unsigned int create = CFile::modeCreate, append = CFile::modeNoTruncate;
    for (const unsigned int flags : {0u, 1u, 2u, 1 | append, 2 | create, 2 | create | append})
    {
        EXPECT_TRUE(!file.open(folder.c_str(), flags) && !file.isOpen() && !large.open(folder.c_str(), flags) && !large.isOpen());
        const std::string line = std::string("_open get error, ") + openedDirectory;
        EXPECT_EQ(lines.bare(), line + line) << flags;
        EXPECT_TRUE(!utf8.open(folder.c_str(), flags) && !utf8.isOpen() && lines.bare().empty()) << flags;
    }
}

TEST_F(DifficultFiles, VanishDuringASearchAndAreLongerThanASearchTells)
{
    std::set<std::string> left;
    for (int i = 0; i < 50; ++i)
    {
        make(scratch / *left.insert("file" + std::to_string(i)).first);
    }
    CFileFind find;
    ASSERT_TRUE(find.findFile((scratch / "file*").c_str()));
    const std::string first = find.getFileName();
    for (const std::string& name : left)
    {
        EXPECT_TRUE(name == first || name == "file7" || CFile::remove((scratch / name).c_str()));
    }
    left = {first};
    while (find.findNextFile())
    {
        EXPECT_TRUE(left.insert(find.getFileName()).second);
    }
    EXPECT_TRUE(left.contains("file7") && (searchesReadAhead || left.size() <= 2) && !find.findNextFile());
    const std::string sparse = scratch / "sparse";
    FileInfo info;
    make(sparse), std::filesystem::resize_file(sparse, 4294967301);
    EXPECT_TRUE(find.findFile(sparse.c_str()) && find.getLength() == 5 && CFile::stat(sparse.c_str(), info) && info.size == 4294967301);
    EXPECT_TRUE(CFile::removeDirectoryRecursively((scratch / "").c_str(), false) && lines.bare().empty());
}

}  // namespace
}  // namespace General::Ortha
