// The cantilever record: its layout, defaults, store, and the calibration in force.
#include "support/test_host.h"
#include "host/reset.h"
#include "settings/cantilever.h"
#include "settings/configuration.h"
#include "settings/user_settings.h"
#include "store/image_header.h"
#include "store/memory.h"
#include "store/units.h"

#include <cstring>
#include <memory>
#include <string>

namespace {

// A record whose every byte is 0x5A, so that untouched bytes show.
wint_CantileverParamType Scribbled()
{
    wint_CantileverParamType r;
    std::memset(&r, 0x5A, sizeof r);
    return r;
}

double DoubleAt(const void* record, size_t offset)
{
    double v;
    std::memcpy(&v, static_cast<const char*>(record) + offset, sizeof v);
    return v;
}

uint16_t WordAt(const void* record, size_t offset)
{
    uint16_t v;
    std::memcpy(&v, static_cast<const char*>(record) + offset, sizeof v);
    return v;
}

bool SameBytes(const void* a, const void* b, size_t n) { return std::memcmp(a, b, n) == 0; }

// A record with every field set to something other than its default.
wint_CantileverParamType CustomRecord()
{
    wint_CantileverParamType r;
    std::memset(&r, 0, sizeof r);
    std::strcpy(r.Name, "Tip 7 NCH");
    r.ForceOn = 1;
    r.ForceK = 42.0;
    r.ForceSens = 0.05;
    r.ForceOffset = -0.3;
    r.FrictionOn = 1;
    r.FrictionOffset = 0.1;
    r.FrictionA = 2.0;
    r.FrictionB = 0.002;
    r.FrictionC = 20.0;
    r.AmpOn = 1;
    r.AmpA = 3e-6;
    r.AmpB = 4.0;
    r.AmpC = 1.5;
    r.AmpD = 2.5;
    r.ExtraOn = 1;
    r.ExtraValue = 9.0;
    r.Reserved364[0] = 0x11;
    r.Reserved364[59] = 0x22;
    return r;
}

} // namespace

class CantileverTest : public LibraryTest {
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        ASSERT_EQ(host.Start(), 0);
    }
    bool Reported(const std::string& text) const
    {
        return ReadLog().find("Program error - " + text) != std::string::npos;
    }
};

TEST_F(CantileverTest, RecordsHaveTheirStoredSizes)
{
    EXPECT_EQ(sizeof(wint_CantileverParamType), 424u);
    EXPECT_EQ(sizeof(wint_SPMCalType), 104u);
}

TEST_F(CantileverTest, DefaultsLandAtTheirByteOffsets)
{
    wint_CantileverParamType r = Scribbled();
    dl_SetDefaultCantiParam(&r);
    EXPECT_STREQ(reinterpret_cast<const char*>(&r), "No Name");
    for (size_t i = 8; i < 260; ++i) ASSERT_EQ(reinterpret_cast<const uint8_t*>(&r)[i], 0) << i;
    EXPECT_EQ(WordAt(&r, 260), 0);
    EXPECT_EQ(DoubleAt(&r, 262), 1.0);
    EXPECT_EQ(DoubleAt(&r, 270), 1.0);
    EXPECT_EQ(DoubleAt(&r, 278), 2.0);
    EXPECT_EQ(WordAt(&r, 286), 0);
    EXPECT_EQ(DoubleAt(&r, 288), 0.0);
    EXPECT_EQ(DoubleAt(&r, 296), 1e-6);
    EXPECT_EQ(DoubleAt(&r, 304), 0.001);
    EXPECT_EQ(DoubleAt(&r, 312), 40.0);
    EXPECT_EQ(WordAt(&r, 320), 0);
    EXPECT_EQ(DoubleAt(&r, 322), 1e-6);
    EXPECT_EQ(DoubleAt(&r, 330), 3.0);
    EXPECT_EQ(WordAt(&r, 354), 0);
    EXPECT_EQ(DoubleAt(&r, 356), 8.0);
}

TEST_F(CantileverTest, DefaultsLeaveAmpCAndAmpDAsTheCallerHeldThem)
{
    wint_CantileverParamType r = Scribbled();
    r.AmpC = 7.5;
    r.AmpD = -2.0;
    dl_SetDefaultCantiParam(&r);
    EXPECT_EQ(r.AmpC, 7.5);
    EXPECT_EQ(r.AmpD, -2.0);
    EXPECT_EQ(r.AmpB, 3.0);

    wint_CantileverParamType s = Scribbled();
    dl_SetDefaultCantiParam(&s);
    const wint_CantileverParamType pattern = Scribbled();
    EXPECT_TRUE(SameBytes(reinterpret_cast<const char*>(&s) + 338, reinterpret_cast<const char*>(&pattern) + 338, 16));
}

TEST_F(CantileverTest, MissingKeyReadsAsDefaultsAndLeavesAmpCAndAmpDUntouched)
{
    ASSERT_TRUE(DeleteSettingKey(kCantileverKey));
    wint_CantileverParamType r = Scribbled();
    r.AmpC = 11.0;
    r.AmpD = 12.0;
    dl_GetCantiParam(&r);
    EXPECT_STREQ(r.Name, "No Name");
    EXPECT_EQ(r.ForceOffset, 2.0);
    EXPECT_EQ(r.FrictionC, 40.0);
    EXPECT_EQ(r.AmpB, 3.0);
    EXPECT_EQ(r.ExtraValue, 8.0);
    EXPECT_EQ(r.AmpC, 11.0);
    EXPECT_EQ(r.AmpD, 12.0);
}

TEST_F(CantileverTest, DamagedStoredBlockReadsAsDefaults)
{
    const wint_CantileverParamType custom = CustomRecord();
    dl_SetCantiParam(&custom);
    ASSERT_TRUE(SaveSettingString(kCantileverKey, "0102"));
    wint_CantileverParamType r = Scribbled();
    dl_GetCantiParam(&r);
    EXPECT_STREQ(r.Name, "No Name");
    EXPECT_EQ(r.ForceK, 1.0);
    const wint_CantileverParamType pattern = Scribbled();
    EXPECT_TRUE(SameBytes(reinterpret_cast<const char*>(&r) + 338, reinterpret_cast<const char*>(&pattern) + 338, 16));
}

TEST_F(CantileverTest, SetStoresTheWholeRecordAndGetReadsItBack)
{
    const wint_CantileverParamType custom = CustomRecord();
    dl_SetCantiParam(&custom);
    wint_CantileverParamType r = Scribbled();
    dl_GetCantiParam(&r);
    EXPECT_TRUE(SameBytes(&r, &custom, sizeof r));

    char hex[1024] = "";
    ASSERT_GT(LoadSettingString(kCantileverKey, hex, sizeof hex, ""), 0);
    EXPECT_EQ(std::strlen(hex), 2 * 424u + 2);
}

TEST_F(CantileverTest, SetMakesTheCalibrationTheOneInForce)
{
    const wint_CantileverParamType custom = CustomRecord();
    dl_SetCantiParam(&custom);
    wint_SPMCalType cal;
    dl_GetSPMCalParam(&cal);
    EXPECT_TRUE(SameBytes(&cal, reinterpret_cast<const char*>(&custom) + 260, sizeof cal));
    EXPECT_EQ(cal.ForceK, 42.0);
    EXPECT_EQ(cal.AmpD, 2.5);
    EXPECT_EQ(cal.ExtraValue, 9.0);
}

// In debug mode every entry point logs its trace text.
class CantileverDebugTest : public LibraryTest {
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        ASSERT_EQ(host.Start("tavrin.exe /DBG"), 0);
    }
};

TEST_F(CantileverDebugTest, SetTracesUnderTheGetName)
{
    const size_t before = ReadLog().size();
    const wint_CantileverParamType custom = CustomRecord();
    dl_SetCantiParam(&custom);
    const std::string added = ReadLog().substr(before);
    EXPECT_NE(added.find("dl_GetCantiParam"), std::string::npos);
    EXPECT_EQ(added.find("dl_SetCantiParam"), std::string::npos);
}

TEST_F(CantileverTest, SetCalibrationChangesConversionsAtOnceButNothingOnDisk)
{
    ASSERT_TRUE(DeleteSettingKey(kCantileverKey));
    const std::string fileBefore = ReadFileBytes(UserSettingsFileName());

    std::unique_ptr<ImageHeaderType, void (*)(ImageHeaderType*)> r(AllocateHeader(), FreeHeader);
    r->SPMData = 1;
    r->DataSource = 8;
    r->Zlo = 0.0f;
    r->Zhi = 10.0f;
    EXPECT_EQ(GetImageDataValue(1, 65535.0f, r.get()), 10.0f);
    EXPECT_STREQ(GetImageUnitStr(r.get(), 0, 0), "V");

    wint_SPMCalType cal;
    dl_GetSPMCalParam(&cal);
    cal.ForceOn = 1;
    cal.ForceK = 2.0;
    cal.ForceSens = 3.0;
    cal.ForceOffset = 1.0;
    dl_SetSPMCalParam(&cal);
    EXPECT_FLOAT_EQ(GetImageDataValue(1, 65535.0f, r.get()), 2.0f * 3.0f * (10.0f - 1.0f));
    EXPECT_STREQ(GetImageUnitStr(r.get(), 0, 0), "nN");

    EXPECT_EQ(ReadFileBytes(UserSettingsFileName()), fileBefore);
    wint_CantileverParamType stored = Scribbled();
    dl_GetCantiParam(&stored);
    EXPECT_EQ(stored.ForceOn, 0);
}

TEST_F(CantileverTest, TheBuiltInCalibrationHasZeroAmpCAndAmpD)
{
    wint_SPMCalType cal;
    dl_GetSPMCalParam(&cal);
    EXPECT_EQ(cal.ForceOn, 0);
    EXPECT_EQ(cal.ForceK, 1.0);
    EXPECT_EQ(cal.ForceOffset, 2.0);
    EXPECT_EQ(cal.FrictionC, 40.0);
    EXPECT_EQ(cal.AmpB, 3.0);
    EXPECT_EQ(cal.AmpC, 0.0);
    EXPECT_EQ(cal.AmpD, 0.0);
    EXPECT_EQ(cal.ExtraValue, 8.0);
}

TEST_F(CantileverTest, ProcessResetRestoresTheBuiltInCalibration)
{
    const wint_CantileverParamType custom = CustomRecord();
    dl_SetCantiParam(&custom);
    ResetProcessState();
    wint_SPMCalType cal;
    dl_GetSPMCalParam(&cal);
    EXPECT_EQ(cal.ForceOn, 0);
    EXPECT_EQ(cal.ForceK, 1.0);
    EXPECT_EQ(cal.AmpC, 0.0);
}

TEST_F(CantileverTest, StoredConfigurationCarriesTheCalibrationAndKeepsTheName)
{
    const wint_CantileverParamType custom = CustomRecord();
    dl_SetCantiParam(&custom);
    wint_SPMCalType cal;
    dl_GetSPMCalParam(&cal);
    cal.ForceK = 5.0;
    cal.AmpOn = 0;
    dl_SetSPMCalParam(&cal);

    StoreConfiguration();
    wint_CantileverParamType stored = Scribbled();
    dl_GetCantiParam(&stored);
    EXPECT_STREQ(stored.Name, "Tip 7 NCH");
    EXPECT_EQ(stored.ForceK, 5.0);
    EXPECT_EQ(stored.AmpOn, 0);
    EXPECT_EQ(stored.Reserved364[59], 0x22);

    ResetCantileverState();
    RetrieveConfiguration();
    wint_SPMCalType back;
    dl_GetSPMCalParam(&back);
    EXPECT_TRUE(SameBytes(&back, &cal, sizeof cal));
}

TEST_F(CantileverTest, FirstStartStoresTheDefaultRecord)
{
    wint_CantileverParamType stored = Scribbled();
    ASSERT_TRUE(LoadSettingStruct(kCantileverKey, &stored, sizeof stored));
    EXPECT_STREQ(stored.Name, "No Name");
    EXPECT_EQ(stored.ForceOffset, 2.0);
    EXPECT_EQ(stored.AmpC, 0.0);
}

TEST_F(CantileverTest, NullRecordsAreReported)
{
    dl_GetCantiParam(nullptr);
    EXPECT_TRUE(Reported("dl_GetCantiParam"));
    dl_SetCantiParam(nullptr);
    EXPECT_TRUE(Reported("dl_SetCantiParam"));
    dl_SetDefaultCantiParam(nullptr);
    EXPECT_TRUE(Reported("dl_SetDefaultCantiParam"));
    dl_GetSPMCalParam(nullptr);
    EXPECT_TRUE(Reported("dl_GetSPMCalParam"));
    dl_SetSPMCalParam(nullptr);
    EXPECT_TRUE(Reported("dl_SetSPMCalParam"));
    wint_SPMCalType cal;
    dl_GetSPMCalParam(&cal);
    EXPECT_EQ(cal.ForceK, 1.0);
}
