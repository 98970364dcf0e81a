#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "ortha/ortha3/File.h"
#include "ortha/ortha3/FileFind.h"

#include "support/Capture.h"
#include "support/DifficultFiles.h"

namespace General::Ortha {
namespace {

using namespace Test;

TEST_F(DifficultFiles, AreNamedByAnyBytesAndByPathsLongerThanWhatDescribesThem)
{
    std::string bytes, folder = scratch / "";
    for (int byte = 1; byte < 256; ++byte)
    {
        bytes += byte == '/' ? "" : std::string(1, static_cast<char>(byte));
    }
    folder += std::string(200, 'd') + "/" + std::string(255, '\xFF');
    EXPECT_TRUE(CFile::makeDirectoryRecursively(folder.c_str()));
    const std::string longest(255, 'n');
    for (const std::string& directory : {scratch / "", folder + "/"})
    {
        for (const std::string& name : {bytes, longest, std::string("\\"), std::string("*")})
        {
            const std::string path = directory + name, other = directory + "other";
            char text[] = "text";
            CFile file;
            CLfsFile large;
            CFileFind find;
            FileInfo info;
            EXPECT_TRUE(file.open(path.c_str(), CFile::modeWrite) && file.write(text, 4) == 4);
            file.close();
            EXPECT_TRUE(large.open(path.c_str(), CLfsFile::modeRead) && large.getLength() == 4 && CFile::access(path.c_str(), 6));
            large.close();
            EXPECT_TRUE(CFile::stat(path.c_str(), info) && info.size == 4 && info.name == path.substr(0, 259));
            EXPECT_TRUE(CFile::rename(path.c_str(), other.c_str()) && CLfsFile::rename(other.c_str(), path.c_str()));
            std::set<std::string> found;
            for (bool more = find.findFile((directory + "*").c_str()); more; more = find.findNextFile())
            {
                found.insert(find.getFilePath());
            }
            EXPECT_TRUE(found.contains(path) && CFile::remove(path.c_str()) && !CFile::access(path.c_str(), 0));
        }
    }
    EXPECT_FALSE(CFile::makeDirectory((scratch / (longest + "n")).c_str()));
    EXPECT_EQ(lines.bare(), "mkdir failed, errno:36, errmsg:File name too long\n");
    make(folder + "/file");
    EXPECT_TRUE(CFile::removeDirectoryRecursively((scratch / std::string(200, 'd')).c_str(), true) && lines.bare().empty());
}

TEST_F(DifficultFiles, WithoutPermissionAreRefusedWithTheCause)
{
    const std::string shut = scratch / "shut", open = scratch / "open", file = open + "/file", fresh = open + "/new";
    ASSERT_TRUE(CFile::makeDirectoryRecursively((shut + "/a").c_str()) && CFile::makeDirectory(open.c_str()));
    make(file);
    ASSERT_TRUE(!chmod(shut.c_str(), 0) && !chmod(open.c_str(), 0555) && !chmod(file.c_str(), 0) && !chmod((scratch / "").c_str(), 0555));
    const ChildResult child = runInChild([&] {
        const bool root = geteuid() == 0;
        const bool other = !root || (setegid(65534) == 0 && seteuid(65534) == 0);
        FileInfo info;
        int done = CFile().open(file.c_str(), CFile::modeRead) || CLfsFile().open(file.c_str(), CLfsFile::modeReadWrite);
        done += CFile().open(fresh.c_str(), CFile::modeWrite) || CFile().load(file.c_str()) || CFile::remove(file.c_str());
        done += CFile::rename(file.c_str(), fresh.c_str()) || CFile::makeDirectory(fresh.c_str());
        done += CFile::removeDirectory(shut.c_str()) || CFile::stat((shut + "/a").c_str(), info);
        done += CFileFind().findFile((shut + "/*").c_str()) || CFile::makeDirectoryRecursively((shut + "/b/c").c_str());
        done += CFile::removeDirectoryRecursively(shut.c_str(), true);
        const std::vector<std::string> told = lines.take();
        const auto because = std::count_if(told.begin(), told.end(), [](auto& line) { return line.find("errno:13") != line.npos; });
        const bool described = CFile::stat(file.c_str(), info) && info.size == 4;
        // The user comes back for the sanitizers, which look at the process when it ends.
        const bool back = !root || (seteuid(0) == 0 && setegid(0) == 0 && prctl(PR_SET_DUMPABLE, 1) == 0);
        std::printf(other ? "%d done, %td of %zu denied, %d, %d" : "same user", done, because, told.size(), described, back);
    });
    EXPECT_TRUE(!chmod((scratch / "").c_str(), 0755) && !chmod(shut.c_str(), 0755) && !chmod(open.c_str(), 0755));
    if (child.output == "same user")
    {
        GTEST_SKIP() << "the user's rights cannot be put off";
    }
    EXPECT_EQ(child.output, "0 done, 12 of 14 denied, 1, 1");  // the other two are those of the recursive operations
    EXPECT_EQ(child.code, 0);
}

template <class File>
void expectToldOfAFullDevice(LogLines& lines)
{
    const std::string cause = ", errno:28, errmsg:No space left on device\n";
    std::string text(40000, 'x');
    File file;
    ASSERT_TRUE(file.open("/dev/full", File::modeWrite));
    EXPECT_EQ(file.write(text.data(), 16000), 16000);  // the buffer is one of 16384 bytes
    EXPECT_EQ(lines.bare(), "");
    file.flush();
    ASSERT_TRUE(file.open("/dev/full", File::modeWrite));
    EXPECT_TRUE(file.write(text.data(), 3) == 3 && lines.bare().empty());
    EXPECT_LT(file.write(text.data(), 40000), 40000);
    EXPECT_NE(lines.bare().find(cause), std::string::npos);
    ASSERT_TRUE(file.open("/dev/full", File::modeWrite));
    EXPECT_TRUE(file.puts(text.c_str()) == -1 && file.getPosition() == 0);
    EXPECT_EQ(lines.bare(), "fputs failed" + cause);
}

TEST_F(DifficultFiles, OnAFullDeviceTakeWhatTheirBufferHoldsAndTellOfTheRest)
{
    expectToldOfAFullDevice<CFile>(lines);
    expectToldOfAFullDevice<CLfsFile>(lines);
}

}  // namespace
}  // namespace General::Ortha
