#include "ortha/ortha3/File.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

#include "support/LogLines.h"
#include "support/ScratchDirectory.h"

namespace General::Ortha {
namespace {

using namespace Test;

template <class File>
struct EitherFile : testing::Test
{
    using Count = decltype(File().getLength());

    std::string content(const std::string& path)
    {
        std::ifstream stream(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    ScratchDirectory scratch;
    LogLines lines;
    File m_file;
    char bytes[64] = {};
    static constexpr bool large = std::is_same_v<File, CLfsFile>;
};
using Files = testing::Types<CFile, CLfsFile>;
TYPED_TEST_SUITE(EitherFile, Files);

TYPED_TEST(EitherFile, IsOpenedWithTheContentsLengthAndPositionThatItsFlagsTell)
{
    const std::string path = this->scratch / "file";
    using F = TypeParam;
    const struct
    {
        unsigned int flags;
        const char* before;  // null: no file
        bool opens;
        const char* after;  // writing "new"
        int length;         // before writing
    } cases[] = {{F::modeRead, nullptr, false, "", 0},
                 {F::modeReadWrite, nullptr, false, "", 0},
                 {F::modeWrite, "longer", true, "new", 0},
                 {F::modeWrite | F::modeNoTruncate, "longer", true, "longernew", 6},
                 {F::modeReadWrite, "longer", true, "newger", 6},
                 {F::modeReadWrite | F::modeCreate, "longer", true, "new", 0},
                 {F::modeReadWrite | F::modeCreate | F::modeNoTruncate, nullptr, true, "new", 0},
                 {F::modeRead | F::modeCreate | F::modeNoInherit, "longer", true, "longer", 6}};
    for (const auto& test : cases)
    {
        std::filesystem::remove(path);
        if (test.before)
        {
            std::ofstream(path) << test.before;
        }
        ASSERT_EQ(this->m_file.open(path.c_str(), test.flags), test.opens) << test.flags;
        if (test.opens)
        {
            EXPECT_EQ(this->m_file.getLength(), static_cast<typename TestFixture::Count>(test.length)) << test.flags;
            char text[] = "new";
            this->m_file.write(text, 3);
            this->m_file.close();
            EXPECT_EQ(this->content(path), test.after) << test.flags;
        }
    }
    this->lines.bare();
    EXPECT_TRUE(this->m_file.open(path.c_str(), F::modeRead) && !this->m_file.open(path.c_str(), 3) && !this->m_file.isOpen());
    EXPECT_EQ(this->lines.bare(), std::string(this->large ? "CLfsFile" : "CFile") + "::open() dwFlags:3 is invalid\n");
}

TYPED_TEST(EitherFile, KeepsPositionAndLengthThroughWhatIsDoneToIt)
{
    using F = TypeParam;
    F& file = this->m_file;
    const std::string path = this->scratch / "file";
    char text[] = "first\nsecond\n";
    const auto at = [&](int position, int length) {
        return file.getPosition() == static_cast<typename TestFixture::Count>(position) &&
               file.getLength() == static_cast<typename TestFixture::Count>(length);
    };
    const auto puts = [&](const char* line) { return this->large ? file.puts(line) >= 0 : file.puts(line) == 4; };  // the runtime's result
    EXPECT_TRUE(file.read(text, 1) == -1 && file.write(text, 1) == -1 && !file.gets(text, 5) && file.puts(text) == 0 && at(0, 0));
    EXPECT_TRUE(file.seek(5, F::begin) == 0 && file.writev(nullptr, 0) == -1 && this->lines.bare().empty());
    ASSERT_TRUE(file.open(path.c_str(), F::modeReadWrite | F::modeCreate));
    EXPECT_TRUE(file.write(text, 13) == 13 && at(13, 13));
    EXPECT_TRUE(file.seek(2, F::begin) == 2 && file.seek(4, F::current) == 6 && file.seek(-3, F::end) == 10 && at(10, 13));
    EXPECT_TRUE(file.seek(0, F::current) == 10 && file.seek(-1, F::begin) == 0 && at(10, 13));
    EXPECT_TRUE(file.seek(0, F::begin) == 0 && file.gets(this->bytes, 64) == this->bytes && at(6, 13));
    EXPECT_STREQ(this->bytes, "first\n");
    EXPECT_TRUE(file.seek(0, F::end) == 13 && puts("tail") && at(17, 17));
    file.flush();
    EXPECT_TRUE(at(17, 17) && file.seek(12, F::begin) == 12 && file.read(this->bytes, 5) == 5 && at(17, 17));
    EXPECT_EQ(this->lines.bare(), "");
    EXPECT_EQ(file.read(this->bytes, 5), 0);
    EXPECT_EQ(this->lines.bare(), this->large ? "fread get error, total:5 has read:0, expected:5 return actuallen:0\n" : "");
    EXPECT_TRUE(file.setvbuf(this->bytes, F::bufferFull, 64));
    file.close();
    EXPECT_FALSE(file.setvbuf(this->bytes, F::bufferFull, 64));
    EXPECT_EQ(this->lines.bare(), "CFile::setvbuf failed, file has not been opened!\n");
}

TYPED_TEST(EitherFile, LoadsAWholeFileAndKeepsItUntilItIsClosed)
{
    TypeParam& file = this->m_file;
    const std::string path = this->scratch / "file", empty = this->scratch / "empty";
    std::string data(100000, 'x');
    data.back() = 'y';
    std::ofstream(path) << data;
    std::ofstream(empty).flush();
    EXPECT_TRUE(file.load((this->scratch / "missing").c_str()) == nullptr && !file.isOpen());
    EXPECT_TRUE(file.load(empty.c_str()) == nullptr && file.isOpen());
    unsigned char* const loaded = file.load(path.c_str());
    ASSERT_TRUE(loaded && std::memcmp(loaded, data.data(), data.size()) == 0 && file.load(empty.c_str()) == loaded);
    file.unload();
    EXPECT_FALSE(file.isOpen());
}

TEST(LargeFile, TellsSizesBeyondFourGigabytesAndItsCopiesShareIt)
{
    ScratchDirectory scratch;
    const std::string path = scratch / "large";
    constexpr long long size = 5000000001;
    char last[] = "z";
    CLfsFile file;
    ASSERT_TRUE(file.open(path.c_str(), CLfsFile::modeReadWrite | CLfsFile::modeCreate));
    EXPECT_TRUE(file.seek(size - 1, CLfsFile::begin) == size - 1 && file.write(last, 1) == 1 && file.getLength() == size);
    {
        const CLfsFile copy(file);
        CLfsFile other;
        other = copy;
        EXPECT_EQ(other.seek(-1, CLfsFile::end), size - 1);
    }
    EXPECT_TRUE(file.getPosition() == size - 1 && file.read(last, 1) == 1 && *last == 'z');
}

}  // namespace
}  // namespace General::Ortha
