// Paths and byte-stream files.
#include "support/test_host.h"
#include "platform/files.h"
#include "platform/paths.h"

#include <vector>

class PlatformFilesTest : public LibraryTest {};

TEST_F(PlatformFilesTest, DesktopHomeAndDataDirectoriesMapToTheirDirectories)
{
    EXPECT_EQ(TavrinHomeDir(), home);
    EXPECT_EQ(NativePath("C:\\Tavrin\\INIT\\UserInfo.ini"), home + "INIT/UserInfo.ini");
    EXPECT_EQ(NativePath("c:\\tavrin\\Cantilevers"), home + "Cantilevers");
    EXPECT_EQ(NativePath("C:/Tavrin/x.log"), home + "x.log");
    EXPECT_EQ(NativePath("c:\\image\\a.tif"), data + "a.tif");
    EXPECT_EQ(NativePath("c:\\image"), data);
    EXPECT_EQ(NativePath("D:\\scans\\b.tif"), "/scans/b.tif");
    EXPECT_EQ(NativePath("sub\\dir/c.tif"), "sub/dir/c.tif");
    EXPECT_EQ(NativePath("/abs/path.tif"), "/abs/path.tif");
    // A name that only begins like the home directory is not it.
    EXPECT_EQ(NativePath("C:\\TavrinOld\\a"), "/TavrinOld/a");
}

TEST_F(PlatformFilesTest, HomeDefaultsToDotTavrinInTheUsersHome)
{
    unsetenv("TAVRIN_HOME");
    const char* user = std::getenv("HOME");
    ASSERT_NE(user, nullptr);
    EXPECT_EQ(TavrinHomeDir(), std::string(user) + (std::string(user).back() == '/' ? "" : "/") + ".tavrin/");
}

TEST_F(PlatformFilesTest, EveryHelperAcceptsBothSeparators)
{
    EXPECT_TRUE(IsPathSeparator('/'));
    EXPECT_TRUE(IsPathSeparator('\\'));
    EXPECT_EQ(LastSeparator("a\\b/c"), 3u);
    EXPECT_EQ(LastSeparator("a/b\\c"), 3u);
    EXPECT_EQ(LastSeparator("abc"), std::string::npos);
    ASSERT_TRUE(MakeDirectories(data + "x\\y\\z"));
    EXPECT_TRUE(PathIsDirectory(data + "x/y/z"));
}

TEST_F(PlatformFilesTest, ReadsAndWritesGoInPiecesOfAtMost32768Bytes)
{
    std::vector<unsigned char> out(100000);
    for (size_t i = 0; i < out.size(); ++i) out[i] = static_cast<unsigned char>(i * 31);
    FileHandle f = FileCreate(Path("big.bin"));
    ASSERT_NE(f, kInvalidFile);
    EXPECT_EQ(FileWrite(f, out.data(), out.size()), 100000);
    EXPECT_EQ(FileClose(f), 0);
    std::vector<unsigned char> in(100010);
    f = FileOpen(Path("big.bin"), FileMode::Read);
    EXPECT_EQ(FileRead(f, in.data(), in.size()), 100000);   // a short read answers the count
    EXPECT_EQ(FileSeek(f, 0, FileOrigin::Begin), 0);
    EXPECT_EQ(FileRead(f, in.data(), 40000), 40000);
    EXPECT_EQ(FileSeek(f, 0, FileOrigin::Current), 40000);
    EXPECT_EQ(FileSeek(f, -10, FileOrigin::End), 99990);
    FileClose(f);
    EXPECT_TRUE(std::equal(out.begin(), out.begin() + 40000, in.begin()));
}

TEST_F(PlatformFilesTest, FailuresAnswerMinusOne)
{
    EXPECT_EQ(FileOpen(Path("missing.bin"), FileMode::Read), kInvalidFile);
    char buffer[4];
    EXPECT_EQ(FileRead(kInvalidFile, buffer, 4), -1);
    EXPECT_EQ(FileWrite(kInvalidFile, buffer, 4), -1);
    EXPECT_EQ(FileClose(kInvalidFile), -1);
    EXPECT_EQ(FileCreate(data + "no/such/dir/file"), kInvalidFile);
}

TEST_F(PlatformFilesTest, AWriteLimitMakesWritesFallShortAsOnAFullDisk)
{
    FileHandle f = FileCreate(Path("short.bin"));
    std::vector<char> bytes(50000, 'x');
    SetFileWriteLimitForTests(40000);
    EXPECT_EQ(FileWrite(f, bytes.data(), bytes.size()), 40000);
    EXPECT_EQ(FileWrite(f, bytes.data(), 10), 0);
    SetFileWriteLimitForTests(-1);
    FileClose(f);
    EXPECT_EQ(FileSizeOf(Path("short.bin")), 40000);
}

TEST_F(PlatformFilesTest, AReadFailureAnswersMinusOne)
{
    WriteFileBytes(Path("a.bin"), "abcd");
    FileHandle f = FileOpen(Path("a.bin"), FileMode::Read);
    SetFileReadFailureForTests(true);
    char buffer[4];
    EXPECT_EQ(FileRead(f, buffer, 4), -1);
    SetFileReadFailureForTests(false);
    EXPECT_EQ(FileRead(f, buffer, 4), 4);
    FileClose(f);
}

TEST_F(PlatformFilesTest, FileHelpers)
{
    WriteFileBytes(Path("one.txt"), "12345");
    EXPECT_TRUE(PathIsRegularFile(Path("one.txt")));
    EXPECT_FALSE(PathIsRegularFile(data));
    EXPECT_EQ(FileSizeOf(Path("one.txt")), 5);
    EXPECT_EQ(FileSizeOf(Path("none.txt")), -1);
    EXPECT_TRUE(CopyFileOver(Path("one.txt"), Path("two.txt")));
    EXPECT_EQ(ReadFileBytes(Path("two.txt")), "12345");
    EXPECT_TRUE(RemoveFile(Path("one.txt")));
    EXPECT_FALSE(PathExists(Path("one.txt")));
}
