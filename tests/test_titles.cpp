// Titles of items, the long type description, and the names of modes and bias sides.
#include "support/test_host.h"
#include "settings/cantilever.h"
#include "store/image_header.h"
#include "store/memory.h"
#include "store/titles.h"

#include <cstring>
#include <memory>
#include <string>

namespace {

using RecordPtr = std::unique_ptr<ImageHeaderType, void (*)(ImageHeaderType*)>;

// A new image record: ImType1 1, DataSource 1, no scan direction.
RecordPtr NewRecord() { return RecordPtr(AllocateHeader(), FreeHeader); }

std::string TypeText(const ImageHeaderType* r)
{
    char text[512];
    std::memset(text, 'z', sizeof text);
    GetImageTypeStr(r, text, sizeof text);
    return text;
}

void SetFrictionSwitch(bool on)
{
    wint_SPMCalType c = CantileverCalibration();
    c.FrictionOn = on;
    SetCantileverCalibration(c);
}

} // namespace

class TitlesTest : public LibraryTest {
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
    bool AnyProgramError() const { return ReadLog().find("Program error") != std::string::npos; }
};

// ---- titles -------------------------------------------------------------------------------

TEST_F(TitlesTest, ImageTitleIsTheNameOfItsSource)
{
    const char* names[] = {
        nullptr,
        "Topography",
        "Linear Current",
        "Log Current",
        "LIA1(Aux1)",
        "LIA2(Aux2)",
        "CPD(Aux3)",
        "Voltage",
        "Force",
        "Force",
        "Friction Force",
        "Phase",
        "Magnetic",
        "Elasticity",
        "Viscosity",
        "FFM Friction",
        "Surface Potential",
        "Pre-scan",
        "Amplitude",
        "Frequency",
        "Capacitance Force",
        "Bias Voltage",
        "Numerical Calculation",
        "Suface Electrical Potential(Calc.)",
        "Adhesive Force(Calc.)",
        "Noise",
        "Threshold",
        "Elastic Modulus",
    };
    RecordPtr r = NewRecord();
    for (uint32_t source = 1; source <= 27; ++source) {
        r->DataSource = source;
        EXPECT_STREQ(GetImageTitleStr(r.get()), names[source]) << source;
    }
    EXPECT_FALSE(AnyProgramError());
}

TEST_F(TitlesTest, SpectrumOfTopographyIsTipDisplacementImageIsTopography)
{
    RecordPtr r = NewRecord();
    EXPECT_STREQ(GetImageTitleStr(r.get()), "Topography");
    r->ImType1 = IMTYPE_SPECTRUM;
    EXPECT_STREQ(GetImageTitleStr(r.get()), "Tip Displacement");
    r->ImType1 = IMTYPE_SCAN_LINE;
    EXPECT_STREQ(GetImageTitleStr(r.get()), "Tip Displacement");
    r->ImType1 = IMTYPE_FREQUENCY_SWEEP;
    EXPECT_STREQ(GetImageTitleStr(r.get()), "Tip Displacement");
}

TEST_F(TitlesTest, ProfileAppendsProfileWithoutASpace)
{
    RecordPtr r = NewRecord();
    r->ImType1 = IMTYPE_PROFILE;
    EXPECT_STREQ(GetImageTitleStr(r.get()), "TopographyProfile");
    r->DataSource = 2;
    EXPECT_STREQ(GetImageTitleStr(r.get()), "Linear CurrentProfile");
}

TEST_F(TitlesTest, ScanDirectionComesLastAfterProfile)
{
    RecordPtr r = NewRecord();
    r->ScanDirection = 1;
    EXPECT_STREQ(GetImageTitleStr(r.get()), "Topography(FW)");
    r->ScanDirection = 2;
    EXPECT_STREQ(GetImageTitleStr(r.get()), "Topography(BW)");
    r->ScanDirection = 3;
    EXPECT_STREQ(GetImageTitleStr(r.get()), "Topography");
    r->ImType1 = IMTYPE_PROFILE;
    r->ScanDirection = 1;
    EXPECT_STREQ(GetImageTitleStr(r.get()), "TopographyProfile(FW)");
    r->ScanDirection = 2;
    EXPECT_STREQ(GetImageTitleStr(r.get()), "TopographyProfile(BW)");
}

TEST_F(TitlesTest, UnknownSourceIsUnknownImageType)
{
    RecordPtr r = NewRecord();
    r->DataSource = 99;
    EXPECT_STREQ(GetImageTitleStr(r.get()), "Unknown image type");
    r->DataSource = 0;
    EXPECT_STREQ(GetImageTitleStr(r.get()), "Unknown image type");
}

TEST_F(TitlesTest, TwistForceTitleNeedsTheForceMappingAndBothTwistFields)
{
    RecordPtr r = NewRecord();
    r->DataSource = 4;
    r->AcqMode = 11;
    r->LMCMode = 8;
    r->TwistForceOn = 1;
    r->TwistForceCalib = 1;
    EXPECT_STREQ(GetImageTitleStr(r.get()), "Twist Force");
    r->AcqMode = 51;
    r->LMCMode = 1;
    EXPECT_STREQ(GetImageTitleStr(r.get()), "Twist Force");
    r->TwistForceCalib = 0;
    EXPECT_STREQ(GetImageTitleStr(r.get()), "LIA1(Aux1)");
    r->TwistForceCalib = 1;
    r->AcqMode = 11;
    r->LMCMode = 0;
    EXPECT_STREQ(GetImageTitleStr(r.get()), "LIA1(Aux1)");
}

TEST_F(TitlesTest, FrictionCurveSpectrumOfAux2FollowsTheFrictionSwitch)
{
    RecordPtr r = NewRecord();
    r->ImType1 = IMTYPE_SPECTRUM;
    r->AcqMode = 16;
    r->DataSource = 5;
    SetFrictionSwitch(true);
    EXPECT_STREQ(GetImageTitleStr(r.get()), "Friction Force");
    SetFrictionSwitch(false);
    EXPECT_STREQ(GetImageTitleStr(r.get()), "Aux2");
    r->ImType1 = IMTYPE_SCAN_LINE2;
    EXPECT_STREQ(GetImageTitleStr(r.get()), "Aux2");
    r->ImType1 = IMTYPE_IMAGE;
    EXPECT_STREQ(GetImageTitleStr(r.get()), "LIA2(Aux2)");
}

TEST_F(TitlesTest, ForceCurveSpectrumOfFrictionIsFrictionForce)
{
    RecordPtr r = NewRecord();
    r->ImType1 = IMTYPE_SPECTRUM;
    r->AcqMode = 15;
    r->DataSource = 10;
    EXPECT_STREQ(GetImageTitleStr(r.get()), "Friction Force");
    r->ScanDirection = 2;
    EXPECT_STREQ(GetImageTitleStr(r.get()), "Friction Force(BW)");
}

TEST_F(TitlesTest, HistogramAndPhaseCurveHaveFixedTitles)
{
    RecordPtr r = NewRecord();
    r->ImType1 = IMTYPE_HISTOGRAM;
    EXPECT_STREQ(GetImageTitleStr(r.get()), "Grey level histogram");
    r->ImType1 = IMTYPE_PHASE_SHIFT;
    EXPECT_STREQ(GetImageTitleStr(r.get()), "RMS-DC(phase shift)");
    r->ScanDirection = 1;
    EXPECT_STREQ(GetImageTitleStr(r.get()), "RMS-DC(phase shift)(FW)");
}

TEST_F(TitlesTest, ClassSixIsReportedAndGivesAnEmptyTitle)
{
    RecordPtr r = NewRecord();
    r->ImType1 = 6;
    r->ScanDirection = 1;
    EXPECT_STREQ(GetImageTitleStr(r.get()), "");
    EXPECT_TRUE(Reported("GetImageTitleStr ImType1=6"));
}

TEST_F(TitlesTest, TitleLivesInOneProcessWideBuffer)
{
    RecordPtr a = NewRecord();
    RecordPtr b = NewRecord();
    b->DataSource = 2;
    const char* first = GetImageTitleStr(a.get());
    const char* second = GetImageTitleStr(b.get());
    EXPECT_EQ(first, second);
    EXPECT_STREQ(first, "Linear Current");
}

TEST_F(TitlesTest, NullRecordIsReportedWithAnEmptyTitle)
{
    EXPECT_STREQ(GetImageTitleStr(nullptr), "");
    EXPECT_TRUE(Reported("GetImageTitleStr"));
}

// ---- names of modes -----------------------------------------------------------------------

TEST_F(TitlesTest, ScanModeNames)
{
    EXPECT_STREQ(GetScanModeStr(2, 0), "STM");
    EXPECT_STREQ(GetScanModeStr(2, 4), "STM");
    EXPECT_STREQ(GetScanModeStr(1, 1), "AFM Contact");
    EXPECT_STREQ(GetScanModeStr(1, 2), "AFM AC");
    EXPECT_STREQ(GetScanModeStr(1, 4), "NC-AFM");
    EXPECT_STREQ(GetScanModeStr(1, 8), "AFM FMS");
    EXPECT_STREQ(GetScanModeStr(1, 16), "AFM Phase");
    EXPECT_STREQ(GetScanModeStr(1, 3), "");
    EXPECT_STREQ(GetScanModeStr(0, 1), "");
    EXPECT_STREQ(GetScanModeStr(3, 1), "");
}

TEST_F(TitlesTest, BiasSideNamesAndTheReportOfOthers)
{
    EXPECT_STREQ(GetBiasSelectStr(0), "");
    EXPECT_STREQ(GetBiasSelectStr(1), "(Tip)");
    EXPECT_STREQ(GetBiasSelectStr(2), "(Sample)");
    EXPECT_FALSE(AnyProgramError());
    EXPECT_STREQ(GetBiasSelectStr(3), "");
    EXPECT_TRUE(Reported("GetBiasSelectStr 3"));
    EXPECT_STREQ(GetBiasSelectStr(-1), "");
    EXPECT_TRUE(Reported("GetBiasSelectStr -1"));
}

TEST_F(TitlesTest, AcquisitionModeNames)
{
    struct Row {
        uint32_t mode;
        const char* name;
    };
    const Row rows[] = {
        {1, "Line(1024)"},       {2, "Mirror Image"},   {3, "Image(512)"},          {4, "Image(256)"},
        {5, "Image(128)"},       {6, "Line(512)"},      {7, "Line(256)"},           {8, "Line(128)"},
        {9, "2 Inputs"},         {10, "4 Inputs"},      {11, "SPS Mapping"},        {12, "I-V Curve"},
        {13, "S-V Curve"},       {14, "I-S Curve"},     {15, "Force Curve"},        {16, "Friction Force Curve"},
        {17, "Montage(128)"},    {18, "Montage(256)"},  {19, "Single SPS"},         {20, "Prepare for SPS"},
        {21, "Frequency Sweep"}, {22, "Image(512)"},    {23, "VE-AFM"},             {24, "MFM(P-P)"},
        {25, "LM-FFM"},          {26, "SKPM"},          {27, "FFM"},                {28, "Image(1024)"},
        {29, "2 Inputs(512)"},   {30, "SCFM"},          {31, "MFM(L-L)"},           {32, "Image(64)"},
        {40, "Phase Shift"},     {41, "Line Trace Measurement"}, {50, "Coarse Stage Scan"},
        {52, "DPAT Measurement"}, {60, "F-V Curve"},    {70, "Numerical Calculation"},
        {71, "FFT Analysis Curve"}, {33, ""},           {0, ""},                    {99, ""},
    };
    RecordPtr r = NewRecord();
    for (const Row& row : rows) {
        r->AcqMode = row.mode;
        EXPECT_STREQ(AcqModeName(r.get()), row.name) << row.mode;
    }
}

TEST_F(TitlesTest, AcquisitionNamesThatDependOnOtherFields)
{
    RecordPtr r = NewRecord();
    r->AcqMode = 11;
    r->MapType = 51;
    EXPECT_STREQ(AcqModeName(r.get()), "LMC-FC Mapping");
    r->AcqMode = 24;
    r->MFMFlag = 128;
    EXPECT_STREQ(AcqModeName(r.get()), "MFM(L-L)");
    r->MFMFlag = 64;
    EXPECT_STREQ(AcqModeName(r.get()), "MFM(P-P)");
    r->AcqMode = 51;
    const char* lmc[] = {"", "LMC-Force Curve", "LMC-Frequency Sweep", "", "LMC-Amplitude Sweep", "", "", "",
                         "LMC-FC Mapping"};
    for (uint32_t mode = 0; mode <= 8; ++mode) {
        r->LMCMode = mode;
        EXPECT_STREQ(AcqModeName(r.get()), lmc[mode]) << mode;
    }
}

TEST_F(TitlesTest, MappingKindNames)
{
    EXPECT_STREQ(MapTypeName(12), "I-V Mapping(CITS)");
    EXPECT_STREQ(MapTypeName(13), "S-V Mapping");
    EXPECT_STREQ(MapTypeName(14), "I-S Mapping");
    EXPECT_STREQ(MapTypeName(15), "Force Curve Mapping");
    EXPECT_STREQ(MapTypeName(51), "Force Curve Mapping");
    EXPECT_STREQ(MapTypeName(16), "Friction Force Curve Mapping");
    EXPECT_STREQ(MapTypeName(60), "F-V Mapping");
    EXPECT_STREQ(MapTypeName(71), "FFT Analysis Mapping");
    EXPECT_STREQ(MapTypeName(0), "");
}

// ---- type text ----------------------------------------------------------------------------

TEST_F(TitlesTest, TypeTextOfAnImage)
{
    RecordPtr r = NewRecord();
    r->AcqMode = 4;
    r->ScanMode = 1;
    r->AFMMode = 1;
    EXPECT_EQ(TypeText(r.get()), "Image(256):AFM Contact:Topography");
    r->FFTData = 1;
    EXPECT_EQ(TypeText(r.get()), "Image(256):AFM Contact:FFT of Topography");
}

TEST_F(TitlesTest, TypeTextUsesTheTitleTextNotTheTitleField)
{
    RecordPtr r = NewRecord();
    r->AcqMode = 3;
    r->ScanMode = 2;
    r->ScanDirection = 1;
    std::strcpy(r->Title, "My own title");
    EXPECT_EQ(TypeText(r.get()), "Image(512):STM:Topography(FW)");
}

TEST_F(TitlesTest, TypeTextOfAMappingNamesItsKind)
{
    RecordPtr r = NewRecord();
    r->CITSHeader = 1;
    r->AcqMode = 11;
    r->MapType = 12;
    r->ScanMode = 2;
    r->DataSource = 2;
    EXPECT_EQ(TypeText(r.get()), "SPS Mapping:STM:I-V Mapping(CITS)Linear Current");
    r->FFTData = 1;
    EXPECT_EQ(TypeText(r.get()), "SPS Mapping:STM:FFT of I-V Mapping(CITS)Linear Current");
    r->FFTData = 0;
    r->MapType = 51;
    r->ScanMode = 1;
    r->AFMMode = 2;
    r->DataSource = 1;
    EXPECT_EQ(TypeText(r.get()), "LMC-FC Mapping:AFM AC:Force Curve MappingTopography");
}

TEST_F(TitlesTest, FrequencySweepAndPhaseShiftStandAlone)
{
    RecordPtr r = NewRecord();
    r->ImType1 = IMTYPE_FREQUENCY_SWEEP;
    r->ScanMode = 1;
    r->AFMMode = 2;
    r->AcqMode = 21;
    EXPECT_EQ(TypeText(r.get()), "Frequency Sweep");
    r->ImType1 = IMTYPE_PHASE_SHIFT;
    r->AcqMode = 40;
    EXPECT_EQ(TypeText(r.get()), "Phase Shift");
    r->AcqMode = 51;   // the LMC sweep is not one of the two
    r->LMCMode = 2;
    EXPECT_EQ(TypeText(r.get()), "LMC-Frequency Sweep:AFM AC:RMS-DC(phase shift)");
}

TEST_F(TitlesTest, LmcModeWithoutANameLeavesTheAcquisitionFieldEmpty)
{
    RecordPtr r = NewRecord();
    r->AcqMode = 51;
    r->LMCMode = 3;
    r->ScanMode = 2;
    EXPECT_EQ(TypeText(r.get()), ":STM:Topography");
}

TEST_F(TitlesTest, TypeTextIsCutToTheBufferAndTerminated)
{
    RecordPtr r = NewRecord();
    r->AcqMode = 4;
    r->ScanMode = 1;
    r->AFMMode = 1;
    char small[12];
    std::memset(small, 'z', sizeof small);
    GetImageTypeStr(r.get(), small, sizeof small);
    EXPECT_STREQ(small, "Image(256):");
}

TEST_F(TitlesTest, TypeTextOfANullRecordIsEmptyAndReported)
{
    char text[40] = "old";
    GetImageTypeStr(nullptr, text, sizeof text);
    EXPECT_STREQ(text, "");
    EXPECT_TRUE(Reported("GetImageTypeStr"));
}
