// The data directories and the paths of the settings.
#include "support/test_host.h"
#include "files/data_directories.h"
#include "host/globals.h"
#include "settings/user_settings.h"

#include <filesystem>

class DataDirectoryTest : public LibraryTest {
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        ASSERT_EQ(host.Start(), 0);
        host.ClearCalls();
    }

    static std::string Stored(const char* key)
    {
        char value[260];
        return LoadSettingString(key, value, sizeof value, "") < 0 ? std::string("<missing>") : std::string(value);
    }

    static bool Contains(const std::string& text, const std::string& part)
    {
        return text.find(part) != std::string::npos;
    }
};

TEST_F(DataDirectoryTest, WithoutADataPathTheDirectoryIsTheBaseDirectoryAndTheUserName)
{
    std::filesystem::remove_all(home + "INIT");
    char path[260] = "junk";
    const char* name = dl_InitializeDataDirectoryName(path);
    EXPECT_EQ(std::string(name), home + "Admin");
    EXPECT_STREQ(path, name);
    for (int selector = 0; selector < 3; ++selector)
        EXPECT_EQ(std::string(dl_GetDataDirectoryName(selector, 0)), home + "Admin") << selector;
    EXPECT_TRUE(std::filesystem::is_directory(home + "INIT"));
}

TEST_F(DataDirectoryTest, TheDataPathKeyGivesTheDirectory)
{
    ASSERT_TRUE(SaveSettingString("Data Path", "/srv/spm"));
    EXPECT_STREQ(dl_InitializeDataDirectoryName(nullptr), "/srv/spm");
    EXPECT_STREQ(dl_GetDataDirectoryName(0, 0), "/srv/spm");
    EXPECT_STREQ(dl_GetDataDirectoryName(1, 0), "/srv/spm");
}

TEST_F(DataDirectoryTest, SettingRemovesThePartAndTheTrailingSeparatorAndMakesTheDirectory)
{
    dl_InitializeDataDirectoryName(nullptr);
    const std::string file = data + "new/sub/scan.tif";
    dl_SetDataDirectoryName(file.c_str(), "scan.tif", 0, 0);
    EXPECT_EQ(std::string(dl_GetDataDirectoryName(0, 0)), data + "new/sub");
    EXPECT_TRUE(std::filesystem::is_directory(data + "new/sub"));
    EXPECT_EQ(std::string(dl_GetDataDirectoryName(1, 0)), home + "Admin");
    EXPECT_EQ(Stored("Load Data Path"), "<missing>");
}

TEST_F(DataDirectoryTest, ThePartRemovedIsItsLastOccurrence)
{
    const std::string path = data + "a.tif/b/a.tif";
    dl_SetDataDirectoryName(path.c_str(), "a.tif", 1, 0);
    EXPECT_EQ(std::string(dl_GetDataDirectoryName(1, 0)), data + "a.tif/b");
}

TEST_F(DataDirectoryTest, StoringWritesTheKeyOfTheSelector)
{
    dl_SetDataDirectoryName((data + "saves\\").c_str(), nullptr, 1, 1);
    EXPECT_EQ(std::string(dl_GetDataDirectoryName(1, 0)), data + "saves");
    EXPECT_EQ(Stored("Save Data Path"), data + "saves");
    EXPECT_EQ(Stored("Load Data Path"), "<missing>");
    EXPECT_EQ(Stored("Data Path"), "<missing>");
}

TEST_F(DataDirectoryTest, TheDataDirectorySetsAndStoresAllThree)
{
    dl_SetDataDirectoryName((data + "all/").c_str(), nullptr, 2, 1);
    for (int selector = 0; selector < 3; ++selector)
        EXPECT_EQ(std::string(dl_GetDataDirectoryName(selector, 0)), data + "all") << selector;
    EXPECT_EQ(Stored("Load Data Path"), data + "all");
    EXPECT_EQ(Stored("Save Data Path"), data + "all");
    EXPECT_EQ(Stored("Data Path"), data + "all");
}

TEST_F(DataDirectoryTest, RefreshTakesANonEmptyStoredValue)
{
    dl_SetDataDirectoryName((data + "one").c_str(), nullptr, 0, 0);
    ASSERT_TRUE(SaveSettingString("Load Data Path", "/elsewhere"));
    EXPECT_EQ(std::string(dl_GetDataDirectoryName(0, 0)), data + "one");
    EXPECT_STREQ(dl_GetDataDirectoryName(0, 1), "/elsewhere");
    ASSERT_TRUE(SaveSettingString("Save Data Path", ""));
    dl_SetDataDirectoryName((data + "two").c_str(), nullptr, 1, 0);
    EXPECT_EQ(std::string(dl_GetDataDirectoryName(1, 1)), data + "two");
}

TEST_F(DataDirectoryTest, AnotherSelectorIsAProgramError)
{
    dl_SetDataDirectoryName("/x", nullptr, 3, 1);
    EXPECT_STREQ(dl_GetDataDirectoryName(-1, 0), "");
    const std::string log = ReadFileBytes(home + "TavrinProc310.log");
    EXPECT_TRUE(Contains(log, "ERROR : Program error - SetDataDirectoryName 3"));
    EXPECT_TRUE(Contains(log, "ERROR : Program error - GetDataDirectoryName -1"));
    EXPECT_EQ(Stored("Data Path"), "<missing>");
}

TEST_F(DataDirectoryTest, TheSettingsFilesAreThoseOfTheUser)
{
    char path[260];
    dl_GetInitFileName(path);
    EXPECT_EQ(std::string(path), home + "INIT/UserInfo.ini");
    dl_GetUserFileName(path);
    EXPECT_EQ(std::string(path), home + "INIT/TavrinProc310-Admin.ini");
    dl_UserID("bob");
    dl_GetUserFileName(path);
    EXPECT_EQ(std::string(path), home + "INIT/TavrinProc310-bob.ini");
}

TEST_F(DataDirectoryTest, TheColourAndCantileverDirectories)
{
    std::string dataDir = data;
    dataDir.pop_back();
    EXPECT_EQ(std::string(dl_GetColorDataDirectoryName()), dataDir + "/Col");
    EXPECT_FALSE(std::filesystem::exists(home + "Cantilevers"));
    EXPECT_EQ(std::string(dl_GetCantiDataDirectoryName()), home + "Cantilevers");
    EXPECT_TRUE(std::filesystem::is_directory(home + "Cantilevers"));
}
