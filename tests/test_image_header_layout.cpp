// The stored layout of the image record: every named field at its documented offset and
// width, checked at compile time and again on a record written byte by byte.
#include "support/test_host.h"
#include "tavrin/image_header.h"

#include <cstddef>
#include <cstring>
#include <vector>

#define FIELD(name, offset, width)                                                  \
    static_assert(offsetof(ImageHeaderType, name) == (offset), #name " offset");    \
    static_assert(sizeof(ImageHeaderType::name) == (width), #name " width");

FIELD(RevNo, 0, 2)
FIELD(OldFileName, 2, 26)
FIELD(MontageShiftX, 28, 4)
FIELD(MontageShiftY, 32, 4)
FIELD(MontageNx, 36, 2)
FIELD(MontageNy, 38, 2)
FIELD(MontageOrder, 40, 4)
FIELD(MontageImageNo, 44, 2)
FIELD(MontageValid, 46, 4)
FIELD(MontageEnable, 50, 1)
FIELD(nx, 82, 2)
FIELD(ny, 84, 2)
FIELD(ImageSizeX, 86, 4)
FIELD(ImageSizeY, 90, 4)
FIELD(Zlo, 94, 4)
FIELD(Zhi, 98, 4)
FIELD(RawLow, 102, 2)
FIELD(RawHigh, 104, 2)
FIELD(DataScale, 106, 4)
FIELD(Title, 110, 40)
FIELD(GeneralText, 150, 200)
FIELD(ProcessList, 350, 49)
FIELD(ProcessListOff, 399, 1)
FIELD(SPMData, 400, 2)
FIELD(BiasVoltage, 402, 4)
FIELD(TunnelCurrent, 406, 4)
FIELD(OldImageType, 411, 1)
FIELD(CreatedDate, 412, 5)
FIELD(SavedDate, 417, 5)
FIELD(CreatedTime, 422, 4)
FIELD(SavedTime, 426, 4)
FIELD(ImageLUT, 430, 256)
FIELD(FFTData, 686, 4)
FIELD(ColourImage, 690, 2)
FIELD(OldDataKind, 692, 1)
FIELD(OldAdcOffset, 693, 2)
FIELD(OldAdcGain, 695, 2)
FIELD(OldIDivider, 697, 2)
FIELD(Compression, 700, 1)
FIELD(BitsPerPixel, 701, 1)
FIELD(CITSHeader, 702, 4)
FIELD(BiasVoltage2, 706, 4)
FIELD(STSPosX, 710, 2)
FIELD(STSPosY, 712, 2)
FIELD(SelPointX, 714, 10)
FIELD(SelPointY, 724, 10)
FIELD(ScanSpeedX, 734, 4)
FIELD(ScanSpeedY, 738, 4)
FIELD(OldGainX, 742, 4)
FIELD(OldOffsetX, 746, 4)
FIELD(OldGainY, 750, 4)
FIELD(OldOffsetY, 754, 4)
FIELD(ScanMode, 782, 2)
FIELD(ClockSpeed, 784, 4)
FIELD(ImageAngle, 788, 4)
FIELD(FeedbackFilter, 792, 4)
FIELD(ZFilter, 796, 4)
FIELD(PreampFilter, 800, 4)
FIELD(PreampGain, 804, 4)
FIELD(LoopGain, 808, 2)
FIELD(ImageOffsetX, 810, 4)
FIELD(ImageOffsetY, 814, 4)
FIELD(ReservedParam, 818, 20)
FIELD(AcqMode, 838, 4)
FIELD(OldAdcSrc, 842, 2)
FIELD(OldBlockFlag, 844, 4)
FIELD(FileName, 848, 260)
FIELD(OldAdcSel, 1108, 4)
FIELD(OldOscFrequency, 1116, 4)
FIELD(OldLowPass, 1120, 2)
FIELD(OldHighPass, 1122, 2)
FIELD(OldOscEnable, 1126, 2)
FIELD(AFMMode, 1130, 4)
FIELD(OldRmsDcOutput, 1134, 2)
FIELD(OldParamA, 1146, 4)
FIELD(MFMFlag, 1150, 4)
FIELD(AdcSrc, 1154, 4)
FIELD(OldLapFlag, 1158, 2)
FIELD(MapType, 1160, 4)
FIELD(OldOutputAmp, 1164, 8)
FIELD(OldCenterFreq, 1172, 8)
FIELD(OldPhaseShift, 1180, 4)
FIELD(OldPhasePolarity, 1186, 2)
FIELD(OldPllExcitation, 1188, 2)
FIELD(OldAddOsc, 1190, 2)
FIELD(OldRmsFilter, 1192, 2)
FIELD(OldLoopGain2, 1196, 2)
FIELD(OldBeatNoise, 1200, 2)
FIELD(OldDynRange, 1204, 4)
FIELD(OldPeakFreq, 1208, 4)
FIELD(OldQFactor, 1212, 4)
FIELD(BiasSelect, 1216, 4)
FIELD(LutRed, 1226, 256)
FIELD(LutGreen, 1482, 256)
FIELD(LutBlue, 1738, 256)
FIELD(SubRevNo, 1994, 4)
FIELD(ImType1, 1998, 4)
FIELD(DataSource, 2002, 4)
FIELD(DisplayMode, 2006, 4)
FIELD(CreatedFileTime, 2010, 8)
FIELD(SavedFileTime, 2018, 8)
FIELD(ProfileBlock, 2026, 254)
FIELD(View3DBlock, 2280, 446)
FIELD(Brightness, 2726, 4)
FIELD(Contrast, 2730, 4)
FIELD(ScanRevNo, 2734, 2)
FIELD(ExtractX1, 2740, 2)
FIELD(ExtractX2, 2742, 2)
FIELD(ExtractY1, 2744, 2)
FIELD(ExtractY2, 2746, 2)
FIELD(DataType, 2748, 4)
FIELD(AdcOffset, 2752, 4)
FIELD(AdcGain, 2756, 2)
FIELD(IDivider, 2758, 2)
FIELD(Gamma, 2760, 4)
FIELD(nSPSRefData, 2764, 2)
FIELD(SPSRefData, 2766, 4)
FIELD(RouteEndX, 2770, 2)
FIELD(RouteEndY, 2772, 2)
FIELD(ScanDirection, 2774, 2)
FIELD(LIAModel, 2778, 2)
FIELD(LIAEnable, 2780, 2)
FIELD(LIASensitivity, 2786, 8)
FIELD(LIATimeConstant, 2794, 8)
FIELD(LIARefPhase, 2802, 8)
FIELD(LIAModFrequency, 2810, 8)
FIELD(LIAModAmplitude, 2818, 8)
FIELD(LIAOutputType, 2826, 4)
FIELD(LIARefSource, 2852, 2)
FIELD(TempEnable, 2914, 2)
FIELD(TempHolder, 2916, 2)
FIELD(TempUnit, 2918, 2)
FIELD(TempStop, 2920, 2)
FIELD(TempGainP, 2922, 4)
FIELD(TempGainI, 2926, 4)
FIELD(TempGainD, 2930, 4)
FIELD(TempOffset, 2934, 4)
FIELD(TempSpecimen, 2938, 4)
FIELD(TempTarget, 2942, 4)
FIELD(AFMSignalEnable, 2946, 2)
FIELD(AFMConversion, 2948, 8)
FIELD(CantileverAmplitude, 2956, 8)
FIELD(StdFrequencySignal, 2964, 8)
FIELD(TwistForceOn, 2972, 1)
FIELD(TwistForceCalib, 2973, 1)
FIELD(LMCScale, 2974, 8)
FIELD(TwistK1, 2982, 8)
FIELD(TwistK2, 2990, 8)
FIELD(TwistK3, 2998, 8)
FIELD(TwistK4, 3006, 8)
FIELD(LMCMode, 3014, 4)
FIELD(LMFrequency, 3018, 8)
FIELD(LMAmplitude, 3026, 8)
FIELD(PeakFrequency, 3034, 4)
FIELD(QFactor, 3038, 4)
FIELD(NewOscBlock, 3042, 2)
FIELD(OscEnable, 3044, 2)
FIELD(AddOsc, 3046, 2)
FIELD(LapFlag, 3048, 2)
FIELD(RmsDcOutput, 3050, 2)
FIELD(RmsFilter, 3052, 2)
FIELD(CenterFrequency, 3054, 8)
FIELD(OutputAmp, 3062, 8)
FIELD(PhaseShifter, 3070, 8)
FIELD(PhasePolarity, 3078, 2)
FIELD(PllExcitation, 3080, 2)
FIELD(BeatNoise, 3082, 2)
FIELD(LowPassFilter, 3084, 2)
FIELD(HighPassFilter, 3086, 2)
FIELD(PllLoopGain, 3088, 2)
FIELD(DynamicRange, 3090, 2)
FIELD(FeedbackPolarity, 3092, 2)
FIELD(BandPassOn, 3094, 2)
FIELD(PllOn, 3102, 2)
FIELD(AgcOn, 3104, 2)
FIELD(PllFilterKind, 3106, 2)
FIELD(ABSignalGain, 3108, 2)
FIELD(BandPassFilter, 3112, 4)
FIELD(DynamicRangeCode, 3116, 2)
FIELD(PhaseDetectorGain, 3118, 4)
FIELD(AgcReference, 3122, 8)
FIELD(AgcGain, 3130, 2)
FIELD(LagLeadIndex, 3132, 2)
FIELD(FitFrequency, 3162, 8)
FIELD(FitSpringConstant, 3170, 8)
FIELD(FitQ, 3178, 8)
FIELD(FitNoise, 3186, 8)
FIELD(FitConversion, 3194, 8)
FIELD(FitTemperature, 3238, 8)
FIELD(LMCThreshold1On, 3246, 1)
FIELD(LMCThreshold2On, 3247, 1)
FIELD(LMCThreshold1, 3248, 8)
FIELD(LMCThreshold2, 3256, 8)
FIELD(LMCThreshold1Dir, 3264, 4)
FIELD(LMCThreshold2Dir, 3268, 4)
FIELD(LMCSearchFrom, 3272, 4)
FIELD(LMCSearchTo, 3276, 4)
FIELD(CrossSectionTopo, 3308, 2)
FIELD(LMCPoints, 3326, 2)
FIELD(LMCSweepType, 3328, 4)
FIELD(LMCThresholdHitDataPtr, 3392, 4)
FIELD(OldSpare, 3400, 32)
FIELD(SpecXTitle, 3432, 80)
FIELD(SpecYTitle, 3512, 80)
FIELD(CITSDisplayOption, 6088, 2)

static_assert(offsetof(ImageHeaderType, SPSOwnerId) == TAVRIN_HEADER_STORED_BYTES,
              "the run-time part follows the 6090 stored bytes");

namespace {

struct FieldPlace {
    const char* name;
    size_t offset;
    size_t width;
    const void* (*address)(const ImageHeaderType&);
};

#define PLACE(name, offset, width) \
    {#name, offset, width, [](const ImageHeaderType& r) -> const void* { return reinterpret_cast<const char*>(&r) + offsetof(ImageHeaderType, name); }},

const FieldPlace kPlaces[] = {
    PLACE(RevNo, 0, 2)
    PLACE(OldFileName, 2, 26)
    PLACE(MontageShiftX, 28, 4)
    PLACE(MontageShiftY, 32, 4)
    PLACE(MontageNx, 36, 2)
    PLACE(MontageNy, 38, 2)
    PLACE(MontageOrder, 40, 4)
    PLACE(MontageImageNo, 44, 2)
    PLACE(MontageValid, 46, 4)
    PLACE(MontageEnable, 50, 1)
    PLACE(nx, 82, 2)
    PLACE(ny, 84, 2)
    PLACE(ImageSizeX, 86, 4)
    PLACE(ImageSizeY, 90, 4)
    PLACE(Zlo, 94, 4)
    PLACE(Zhi, 98, 4)
    PLACE(RawLow, 102, 2)
    PLACE(RawHigh, 104, 2)
    PLACE(DataScale, 106, 4)
    PLACE(Title, 110, 40)
    PLACE(GeneralText, 150, 200)
    PLACE(ProcessList, 350, 49)
    PLACE(ProcessListOff, 399, 1)
    PLACE(SPMData, 400, 2)
    PLACE(BiasVoltage, 402, 4)
    PLACE(TunnelCurrent, 406, 4)
    PLACE(OldImageType, 411, 1)
    PLACE(CreatedDate, 412, 5)
    PLACE(SavedDate, 417, 5)
    PLACE(CreatedTime, 422, 4)
    PLACE(SavedTime, 426, 4)
    PLACE(ImageLUT, 430, 256)
    PLACE(FFTData, 686, 4)
    PLACE(ColourImage, 690, 2)
    PLACE(OldDataKind, 692, 1)
    PLACE(OldAdcOffset, 693, 2)
    PLACE(OldAdcGain, 695, 2)
    PLACE(OldIDivider, 697, 2)
    PLACE(Compression, 700, 1)
    PLACE(BitsPerPixel, 701, 1)
    PLACE(CITSHeader, 702, 4)
    PLACE(BiasVoltage2, 706, 4)
    PLACE(STSPosX, 710, 2)
    PLACE(STSPosY, 712, 2)
    PLACE(SelPointX, 714, 10)
    PLACE(SelPointY, 724, 10)
    PLACE(ScanSpeedX, 734, 4)
    PLACE(ScanSpeedY, 738, 4)
    PLACE(OldGainX, 742, 4)
    PLACE(OldOffsetX, 746, 4)
    PLACE(OldGainY, 750, 4)
    PLACE(OldOffsetY, 754, 4)
    PLACE(ScanMode, 782, 2)
    PLACE(ClockSpeed, 784, 4)
    PLACE(ImageAngle, 788, 4)
    PLACE(FeedbackFilter, 792, 4)
    PLACE(ZFilter, 796, 4)
    PLACE(PreampFilter, 800, 4)
    PLACE(PreampGain, 804, 4)
    PLACE(LoopGain, 808, 2)
    PLACE(ImageOffsetX, 810, 4)
    PLACE(ImageOffsetY, 814, 4)
    PLACE(ReservedParam, 818, 20)
    PLACE(AcqMode, 838, 4)
    PLACE(OldAdcSrc, 842, 2)
    PLACE(OldBlockFlag, 844, 4)
    PLACE(FileName, 848, 260)
    PLACE(OldAdcSel, 1108, 4)
    PLACE(OldOscFrequency, 1116, 4)
    PLACE(OldLowPass, 1120, 2)
    PLACE(OldHighPass, 1122, 2)
    PLACE(OldOscEnable, 1126, 2)
    PLACE(AFMMode, 1130, 4)
    PLACE(OldRmsDcOutput, 1134, 2)
    PLACE(OldParamA, 1146, 4)
    PLACE(MFMFlag, 1150, 4)
    PLACE(AdcSrc, 1154, 4)
    PLACE(OldLapFlag, 1158, 2)
    PLACE(MapType, 1160, 4)
    PLACE(OldOutputAmp, 1164, 8)
    PLACE(OldCenterFreq, 1172, 8)
    PLACE(OldPhaseShift, 1180, 4)
    PLACE(OldPhasePolarity, 1186, 2)
    PLACE(OldPllExcitation, 1188, 2)
    PLACE(OldAddOsc, 1190, 2)
    PLACE(OldRmsFilter, 1192, 2)
    PLACE(OldLoopGain2, 1196, 2)
    PLACE(OldBeatNoise, 1200, 2)
    PLACE(OldDynRange, 1204, 4)
    PLACE(OldPeakFreq, 1208, 4)
    PLACE(OldQFactor, 1212, 4)
    PLACE(BiasSelect, 1216, 4)
    PLACE(LutRed, 1226, 256)
    PLACE(LutGreen, 1482, 256)
    PLACE(LutBlue, 1738, 256)
    PLACE(SubRevNo, 1994, 4)
    PLACE(ImType1, 1998, 4)
    PLACE(DataSource, 2002, 4)
    PLACE(DisplayMode, 2006, 4)
    PLACE(CreatedFileTime, 2010, 8)
    PLACE(SavedFileTime, 2018, 8)
    PLACE(ProfileBlock, 2026, 254)
    PLACE(View3DBlock, 2280, 446)
    PLACE(Brightness, 2726, 4)
    PLACE(Contrast, 2730, 4)
    PLACE(ScanRevNo, 2734, 2)
    PLACE(ExtractX1, 2740, 2)
    PLACE(ExtractX2, 2742, 2)
    PLACE(ExtractY1, 2744, 2)
    PLACE(ExtractY2, 2746, 2)
    PLACE(DataType, 2748, 4)
    PLACE(AdcOffset, 2752, 4)
    PLACE(AdcGain, 2756, 2)
    PLACE(IDivider, 2758, 2)
    PLACE(Gamma, 2760, 4)
    PLACE(nSPSRefData, 2764, 2)
    PLACE(SPSRefData, 2766, 4)
    PLACE(RouteEndX, 2770, 2)
    PLACE(RouteEndY, 2772, 2)
    PLACE(ScanDirection, 2774, 2)
    PLACE(LIAModel, 2778, 2)
    PLACE(LIAEnable, 2780, 2)
    PLACE(LIASensitivity, 2786, 8)
    PLACE(LIATimeConstant, 2794, 8)
    PLACE(LIARefPhase, 2802, 8)
    PLACE(LIAModFrequency, 2810, 8)
    PLACE(LIAModAmplitude, 2818, 8)
    PLACE(LIAOutputType, 2826, 4)
    PLACE(LIARefSource, 2852, 2)
    PLACE(TempEnable, 2914, 2)
    PLACE(TempHolder, 2916, 2)
    PLACE(TempUnit, 2918, 2)
    PLACE(TempStop, 2920, 2)
    PLACE(TempGainP, 2922, 4)
    PLACE(TempGainI, 2926, 4)
    PLACE(TempGainD, 2930, 4)
    PLACE(TempOffset, 2934, 4)
    PLACE(TempSpecimen, 2938, 4)
    PLACE(TempTarget, 2942, 4)
    PLACE(AFMSignalEnable, 2946, 2)
    PLACE(AFMConversion, 2948, 8)
    PLACE(CantileverAmplitude, 2956, 8)
    PLACE(StdFrequencySignal, 2964, 8)
    PLACE(TwistForceOn, 2972, 1)
    PLACE(TwistForceCalib, 2973, 1)
    PLACE(LMCScale, 2974, 8)
    PLACE(TwistK1, 2982, 8)
    PLACE(TwistK2, 2990, 8)
    PLACE(TwistK3, 2998, 8)
    PLACE(TwistK4, 3006, 8)
    PLACE(LMCMode, 3014, 4)
    PLACE(LMFrequency, 3018, 8)
    PLACE(LMAmplitude, 3026, 8)
    PLACE(PeakFrequency, 3034, 4)
    PLACE(QFactor, 3038, 4)
    PLACE(NewOscBlock, 3042, 2)
    PLACE(OscEnable, 3044, 2)
    PLACE(AddOsc, 3046, 2)
    PLACE(LapFlag, 3048, 2)
    PLACE(RmsDcOutput, 3050, 2)
    PLACE(RmsFilter, 3052, 2)
    PLACE(CenterFrequency, 3054, 8)
    PLACE(OutputAmp, 3062, 8)
    PLACE(PhaseShifter, 3070, 8)
    PLACE(PhasePolarity, 3078, 2)
    PLACE(PllExcitation, 3080, 2)
    PLACE(BeatNoise, 3082, 2)
    PLACE(LowPassFilter, 3084, 2)
    PLACE(HighPassFilter, 3086, 2)
    PLACE(PllLoopGain, 3088, 2)
    PLACE(DynamicRange, 3090, 2)
    PLACE(FeedbackPolarity, 3092, 2)
    PLACE(BandPassOn, 3094, 2)
    PLACE(PllOn, 3102, 2)
    PLACE(AgcOn, 3104, 2)
    PLACE(PllFilterKind, 3106, 2)
    PLACE(ABSignalGain, 3108, 2)
    PLACE(BandPassFilter, 3112, 4)
    PLACE(DynamicRangeCode, 3116, 2)
    PLACE(PhaseDetectorGain, 3118, 4)
    PLACE(AgcReference, 3122, 8)
    PLACE(AgcGain, 3130, 2)
    PLACE(LagLeadIndex, 3132, 2)
    PLACE(FitFrequency, 3162, 8)
    PLACE(FitSpringConstant, 3170, 8)
    PLACE(FitQ, 3178, 8)
    PLACE(FitNoise, 3186, 8)
    PLACE(FitConversion, 3194, 8)
    PLACE(FitTemperature, 3238, 8)
    PLACE(LMCThreshold1On, 3246, 1)
    PLACE(LMCThreshold2On, 3247, 1)
    PLACE(LMCThreshold1, 3248, 8)
    PLACE(LMCThreshold2, 3256, 8)
    PLACE(LMCThreshold1Dir, 3264, 4)
    PLACE(LMCThreshold2Dir, 3268, 4)
    PLACE(LMCSearchFrom, 3272, 4)
    PLACE(LMCSearchTo, 3276, 4)
    PLACE(CrossSectionTopo, 3308, 2)
    PLACE(LMCPoints, 3326, 2)
    PLACE(LMCSweepType, 3328, 4)
    PLACE(LMCThresholdHitDataPtr, 3392, 4)
    PLACE(OldSpare, 3400, 32)
    PLACE(SpecXTitle, 3432, 80)
    PLACE(SpecYTitle, 3512, 80)
    PLACE(CITSDisplayOption, 6088, 2)
};

} // namespace

TEST(ImageHeaderLayout, EveryNamedFieldReadsTheBytesAtItsDocumentedOffset)
{
    // A record written byte by byte: byte i holds a pattern that differs from its neighbours.
    std::vector<unsigned char> bytes(sizeof(ImageHeaderType));
    for (size_t i = 0; i < TAVRIN_HEADER_STORED_BYTES; ++i) bytes[i] = static_cast<unsigned char>((i * 7 + i / 251) & 0xFF);
    ImageHeaderType record;
    std::memcpy(&record, bytes.data(), sizeof record);
    for (const FieldPlace& f : kPlaces) {
        EXPECT_EQ(std::memcmp(f.address(record), bytes.data() + f.offset, f.width), 0) << f.name;
    }
    EXPECT_EQ(sizeof kPlaces / sizeof kPlaces[0], 205u);
}

namespace {

template <typename T>
void PutAt(unsigned char* bytes, size_t offset, T value)
{
    std::memcpy(bytes + offset, &value, sizeof value);
}

} // namespace

TEST(ImageHeaderLayout, TypedValuesWrittenAtOffsetsReadBackFieldByField)
{
    unsigned char bytes[TAVRIN_HEADER_STORED_BYTES] = {};
    PutAt<int16_t>(bytes, 0, 700);
    PutAt<int16_t>(bytes, 82, 512);
    PutAt<int16_t>(bytes, 84, 256);
    PutAt<float>(bytes, 86, 1500.5f);
    PutAt<float>(bytes, 94, -2.25f);
    PutAt<float>(bytes, 98, 7.75f);
    std::memcpy(bytes + 110, "Si(111) 7x7", 12);
    bytes[350] = 38;
    bytes[351] = 22;
    PutAt<uint8_t>(bytes, 412, 22);
    PutAt<uint8_t>(bytes, 413, 11);
    PutAt<uint16_t>(bytes, 414, 2026);
    PutAt<uint8_t>(bytes, 416, 0);
    PutAt<uint8_t>(bytes, 422, 14);
    PutAt<uint8_t>(bytes, 425, 25);
    PutAt<int32_t>(bytes, 686, 1);
    PutAt<int8_t>(bytes, 701, 16);
    PutAt<uint32_t>(bytes, 838, 51);
    std::memcpy(bytes + 848, "/data/a.tif", 12);
    PutAt<double>(bytes, 1164, 0.125);
    PutAt<int32_t>(bytes, 1994, 42);
    PutAt<uint32_t>(bytes, 1998, 2);
    PutAt<uint32_t>(bytes, 2002, 27);
    PutAt<uint64_t>(bytes, 2010, 0x01DB0123456789ABull);
    PutAt<double>(bytes, 3122, -1.0);
    PutAt<uint32_t>(bytes, 3328, 2);
    std::memcpy(bytes + 3512, "Current [nA]", 13);
    PutAt<uint16_t>(bytes, 6088, 0xBEEF);

    ImageHeaderType r;
    std::memset(&r, 0, sizeof r);
    std::memcpy(&r, bytes, sizeof bytes);
    EXPECT_EQ(r.RevNo, 700);
    EXPECT_EQ(r.nx, 512);
    EXPECT_EQ(r.ny, 256);
    EXPECT_EQ(r.ImageSizeX, 1500.5f);
    EXPECT_EQ(r.Zlo, -2.25f);
    EXPECT_EQ(r.Zhi, 7.75f);
    EXPECT_STREQ(r.Title, "Si(111) 7x7");
    EXPECT_EQ(r.ProcessList[0], 38);
    EXPECT_EQ(r.ProcessList[1], 22);
    EXPECT_EQ(r.CreatedDate.day, 22);
    EXPECT_EQ(r.CreatedDate.month, 11);
    EXPECT_EQ(r.CreatedDate.year, 2026);
    EXPECT_EQ(r.CreatedDate.dayofweek, 0);
    EXPECT_EQ(r.CreatedTime.hour, 14);
    EXPECT_EQ(r.CreatedTime.hsecond, 25);
    EXPECT_EQ(r.FFTData, 1);
    EXPECT_EQ(r.BitsPerPixel, 16);
    EXPECT_EQ(r.AcqMode, 51u);
    EXPECT_STREQ(r.FileName, "/data/a.tif");
    EXPECT_EQ(r.OldOutputAmp, 0.125);
    EXPECT_EQ(r.SubRevNo, 42);
    EXPECT_EQ(r.ImType1, 2u);
    EXPECT_EQ(r.DataSource, 27u);
    EXPECT_EQ(r.CreatedFileTime, 0x01DB0123456789ABull);
    EXPECT_EQ(r.AgcReference, -1.0);
    EXPECT_EQ(r.LMCSweepType, 2u);
    EXPECT_STREQ(r.SpecYTitle, "Current [nA]");
    EXPECT_EQ(r.CITSDisplayOption, 0xBEEF);
}
