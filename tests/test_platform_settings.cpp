// The settings store.
#include "support/test_host.h"
#include "platform/settings_store.h"

#include <cstring>

class SettingsStoreTest : public LibraryTest {
protected:
    std::string file() const { return Path("test.ini"); }
};

TEST_F(SettingsStoreTest, StringsAreWrittenAsSectionsAndKeys)
{
    ASSERT_TRUE(ProfileWriteString("Main", "Revision", "310", file()));
    ASSERT_TRUE(ProfileWriteString("Main", "Data Path", "/x/y", file()));
    ASSERT_TRUE(ProfileWriteString("Other", "A", "1", file()));
    ASSERT_TRUE(ProfileWriteString("Main", "Revision", "311", file()));
    EXPECT_EQ(ReadFileBytes(file()), "[Main]\r\nRevision=311\r\nData Path=/x/y\r\n[Other]\r\nA=1\r\n");
    char buffer[16];
    bool found = false;
    EXPECT_EQ(ProfileGetString("main", "REVISION", "d", buffer, sizeof buffer, file(), &found), 3u);
    EXPECT_TRUE(found);
    EXPECT_STREQ(buffer, "311");
}

TEST_F(SettingsStoreTest, AMissingKeyCopiesTheDefault)
{
    char buffer[16];
    bool found = true;
    EXPECT_EQ(ProfileGetString("Main", "None", "default", buffer, sizeof buffer, file(), &found), 7u);
    EXPECT_FALSE(found);
    EXPECT_STREQ(buffer, "default");
    EXPECT_EQ(ProfileGetString("Main", "None", "longer default", buffer, 5, file()), 4u);
    EXPECT_STREQ(buffer, "long");
}

TEST_F(SettingsStoreTest, NullValueRemovesTheKeyAndNullKeyTheSection)
{
    ProfileWriteString("S", "a", "1", file());
    ProfileWriteString("S", "b", "2", file());
    ProfileWriteString("T", "c", "3", file());
    ProfileWriteString("S", "a", nullptr, file());
    EXPECT_EQ(ReadFileBytes(file()), "[S]\r\nb=2\r\n[T]\r\nc=3\r\n");
    ProfileWriteString("S", nullptr, nullptr, file());
    EXPECT_EQ(ReadFileBytes(file()), "[T]\r\nc=3\r\n");
}

TEST_F(SettingsStoreTest, StructsAreHexBytesWithAOneByteSum)
{
    const unsigned char bytes[4] = {0x01, 0xAB, 0xFF, 0x10};
    ASSERT_TRUE(ProfileWriteStruct("S", "Block", bytes, 4, file()));
    // Sum 0x01 + 0xAB + 0xFF + 0x10 = 0x1BB: the low byte BB.
    EXPECT_EQ(ReadFileBytes(file()), "[S]\r\nBlock=01ABFF10BB\r\n");
    unsigned char back[4] = {};
    EXPECT_TRUE(ProfileGetStruct("S", "Block", back, 4, file()));
    EXPECT_EQ(std::memcmp(back, bytes, 4), 0);
}

TEST_F(SettingsStoreTest, AStructWithAWrongSumOrSizeIsNotRead)
{
    WriteFileBytes(file(), "[S]\r\nBad=01ABFF10BC\r\nGood=010203040A\r\n");
    unsigned char back[4] = {9, 9, 9, 9};
    EXPECT_FALSE(ProfileGetStruct("S", "Bad", back, 4, file()));
    EXPECT_EQ(back[0], 9);
    EXPECT_FALSE(ProfileGetStruct("S", "Good", back, 3, file()));
    EXPECT_TRUE(ProfileGetStruct("S", "Good", back, 4, file()));
    EXPECT_FALSE(ProfileGetStruct("S", "Missing", back, 4, file()));
}

TEST_F(SettingsStoreTest, FilesWithLineFeedsOnlyAreRead)
{
    WriteFileBytes(file(), "[S]\nKey = some value \n; comment\n");
    char buffer[32];
    ProfileGetString("S", "Key", "", buffer, sizeof buffer, file());
    EXPECT_STREQ(buffer, "some value");
    ProfileWriteString("S", "New", "1", file());
    EXPECT_EQ(ReadFileBytes(file()), "[S]\r\nKey=some value\r\n; comment\r\nNew=1\r\n");
}
