// The record as JSON, and the field table it rests on.
#include "support/test_host.h"
#include "store/header_fields.h"
#include "store/header_json.h"
#include "store/image_header.h"
#include "store/memory.h"

#include <cfloat>
#include <cmath>
#include <cstdlib>
#include <cstring>

class HeaderJsonTest : public LibraryTest {
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        record = AllocateHeader();
        InitImageHeader(record, 256, 256);
    }
    void TearDown() override
    {
        FreeHeader(record);
        LibraryTest::TearDown();
    }
    // The text after "name": up to the next ", \"" at the top level (good enough for fields
    // whose values hold no such sequence).
    std::string Value(const std::string& json, const std::string& name)
    {
        std::string key = "\"" + name + "\": ";
        size_t at = json.find(key);
        if (at == std::string::npos) return "<missing>";
        at += key.size();
        int depth = 0;
        bool quoted = false;
        size_t i = at;
        for (; i < json.size(); ++i) {
            char c = json[i];
            if (quoted) {
                if (c == '\\') ++i;
                else if (c == '"') quoted = false;
                continue;
            }
            if (c == '"') quoted = true;
            else if (c == '[' || c == '{') ++depth;
            else if (c == ']' || c == '}') {
                if (depth == 0) break;
                --depth;
            } else if (c == ',' && depth == 0) break;
        }
        return json.substr(at, i - at);
    }
    ImageHeaderType* record = nullptr;
};

TEST_F(HeaderJsonTest, EveryNamedFieldIsListedOnceAndNoReservedRange)
{
    EXPECT_EQ(kHeaderFieldCount, 205u);
    std::string json = HeaderToJson(record);
    for (size_t i = 0; i < kHeaderFieldCount; ++i) EXPECT_NE(Value(json, kHeaderFields[i].name), "<missing>");
    // Reserved ranges have no name; ReservedParam is a named field.
    EXPECT_EQ(json.find("\"Reserved51\""), std::string::npos);
    EXPECT_EQ(json.find("\"Reserved3592\""), std::string::npos);
    EXPECT_NE(json.find("\"ReservedParam\""), std::string::npos);
    EXPECT_EQ(json.front(), '{');
    EXPECT_EQ(json.back(), '}');
}

TEST_F(HeaderJsonTest, F32FieldsReadBackToTheSameValue)
{
    record->Zhi = 0.1f;
    record->Zlo = 16777217.0f;
    record->ImageSizeX = 1e-30f;
    std::string json = HeaderToJson(record);
    EXPECT_EQ(Value(json, "Zhi"), "0.1");
    EXPECT_EQ(std::strtof(Value(json, "Zlo").c_str(), nullptr), record->Zlo);
    EXPECT_EQ(std::strtof(Value(json, "ImageSizeX").c_str(), nullptr), 1e-30f);
    EXPECT_EQ(Value(json, "Contrast"), "128");
}

TEST_F(HeaderJsonTest, F64FieldsReadBackToTheSameValue)
{
    record->LIASensitivity = 0.1;
    record->AgcReference = 1.0 / 3.0;
    std::string json = HeaderToJson(record);
    EXPECT_EQ(Value(json, "LIASensitivity"), "0.1");
    EXPECT_EQ(std::strtod(Value(json, "AgcReference").c_str(), nullptr), 1.0 / 3.0);
}

TEST_F(HeaderJsonTest, NanAndInfinitiesAreStrings)
{
    record->Zlo = NAN;
    record->Zhi = INFINITY;
    record->ClockSpeed = -INFINITY;
    record->OldOutputAmp = NAN;
    std::string json = HeaderToJson(record);
    EXPECT_EQ(Value(json, "Zlo"), "\"nan\"");
    EXPECT_EQ(Value(json, "Zhi"), "\"inf\"");
    EXPECT_EQ(Value(json, "ClockSpeed"), "\"-inf\"");
    EXPECT_EQ(Value(json, "OldOutputAmp"), "\"nan\"");
    EXPECT_EQ(json.find("nan,"), std::string::npos);
}

TEST_F(HeaderJsonTest, TheFourBlockWordsAppearAsZeroOrOne)
{
    record->FFTData = 0x12345678;
    record->CITSHeader = 0;
    record->SPSRefData = 0xFFFFFFFF;
    record->LMCThresholdHitDataPtr = 7;
    std::string json = HeaderToJson(record);
    EXPECT_EQ(Value(json, "FFTData"), "1");
    EXPECT_EQ(Value(json, "CITSHeader"), "0");
    EXPECT_EQ(Value(json, "SPSRefData"), "1");
    EXPECT_EQ(Value(json, "LMCThresholdHitDataPtr"), "1");
}

TEST_F(HeaderJsonTest, TextsStopAtTheFirstNulAndBytesAbove127AreLatin1)
{
    std::memcpy(record->Title, "Cu\xB5" "m \"x\"\0hidden", 15);
    std::strcpy(record->GeneralText[0], "line one");
    std::strcpy(record->GeneralText[1], "a\\b");
    std::string json = HeaderToJson(record);
    EXPECT_EQ(Value(json, "Title"), "\"Cu\xC2\xB5m \\\"x\\\"\"");
    EXPECT_EQ(Value(json, "GeneralText"), "[\"line one\", \"a\\\\b\", \"\", \"\", \"\"]");
}

TEST_F(HeaderJsonTest, AFullTextFieldWithoutTerminatorStopsAtItsSize)
{
    std::memset(record->OldSpare, 'q', sizeof record->OldSpare);
    std::string json = HeaderToJson(record);
    EXPECT_EQ(Value(json, "OldSpare"), "\"" + std::string(32, 'q') + "\"");
}

TEST_F(HeaderJsonTest, DatesAndTimesAreObjectsOfTheirFields)
{
    std::string json = HeaderToJson(record);
    EXPECT_EQ(Value(json, "CreatedDate"), "{\"day\": 22, \"month\": 11, \"year\": 2026, \"dayofweek\": 0}");
    EXPECT_EQ(Value(json, "SavedTime"), "{\"hour\": 14, \"minute\": 5, \"second\": 9, \"hsecond\": 25}");
}

TEST_F(HeaderJsonTest, TablesAndArraysAreArraysOfNumbers)
{
    record->ReservedParam[2] = -3.4028235e38f;
    std::string json = HeaderToJson(record);
    std::string lut = Value(json, "ImageLUT");
    EXPECT_EQ(lut.substr(0, 12), "[0, 1, 2, 3,");
    EXPECT_EQ(lut.substr(lut.size() - 9), "254, 255]");
    EXPECT_EQ(Value(json, "ReservedParam"), "[0, 0, -3.4028235e+38, 0, 0]");
    EXPECT_EQ(Value(json, "RevNo"), "700");
    EXPECT_EQ(Value(json, "CreatedFileTime"), std::to_string(record->CreatedFileTime));
}

TEST_F(HeaderJsonTest, FindHeaderFieldByName)
{
    const HeaderField* f = FindHeaderField("LMCSweepType");
    ASSERT_NE(f, nullptr);
    EXPECT_EQ(f->offset, 3328u);
    EXPECT_EQ(f->kind, FieldKind::U32);
    EXPECT_EQ(FindHeaderField("Reserved51"), nullptr);
    EXPECT_EQ(FindHeaderField(nullptr), nullptr);
}
