// Old record revisions brought to 700/42.
//
// Every record here is built byte by byte at the offsets of the old layouts in a zeroed buffer
// (the stored part first filled with a fixed pseudo-random pattern, so that a byte the upgrade
// must leave alone is never 0 by chance). The expected record is a copy of the input changed
// step by step from the rules, with literal offsets, and all 6090 stored bytes are compared.
// Each test also checks its key values by name with hand-computed numbers.
#include "support/test_host.h"
#include "files/mapping_entry_sources.h"
#include "files/old_revisions.h"
#include "files/tiff_read.h"
#include "store/data_list.h"
#include "store/image_header.h"
#include "store/memory.h"

#include <cfloat>
#include <chrono>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

namespace {

// Offsets of the stored record, as the record table gives them.
namespace at {
constexpr size_t RevNo = 0, OldFileName = 2, Montage = 28, nx = 82, ny = 84, ImageSizeX = 86, ImageSizeY = 90,
                 Zlo = 94, Zhi = 98, OldImageType = 411, ImageLUT = 430, OldDataKind = 692, OldAdcOffset = 693,
                 OldAdcGain = 695, OldIDivider = 697, BitsPerPixel = 701, CITSHeader = 702, BiasVoltage2 = 706,
                 STSPosX = 710, STSPosY = 712, ScanSpeedX = 734, ScanSpeedY = 738, OldGainX = 742,
                 OldOffsetX = 746, OldGainY = 750, OldOffsetY = 754, ScanMode = 782, ClockSpeed = 784,
                 LoopGain = 808, ImageOffsetX = 810, ImageOffsetY = 814, ReservedParam = 818, AcqMode = 838,
                 OldAdcSrc = 842, OldBlockFlag = 844, FileName = 848, OldAdcSel = 1108, OldOscFrequency = 1116,
                 OldLowPass = 1120, OldHighPass = 1122, OldOscEnable = 1126, AFMMode = 1130, OldRmsDcOutput = 1134,
                 OldParamA = 1146, MFMFlag = 1150, AdcSrc = 1154, OldLapFlag = 1158, MapType = 1160,
                 OldOutputAmp = 1164, OldCenterFreq = 1172, OldPhaseShift = 1180, OldPhasePolarity = 1186,
                 OldPllExcitation = 1188, OldAddOsc = 1190, OldRmsFilter = 1192, OldLoopGain2 = 1196,
                 OldBeatNoise = 1200, OldDynRange = 1204, OldPeakFreq = 1208, OldQFactor = 1212, BiasSelect = 1216,
                 LutRed = 1226, LutGreen = 1482, LutBlue = 1738, SubRevNo = 1994, ImType1 = 1998,
                 DataSource = 2002, DisplayMode = 2006, CreatedFileTime = 2010, SavedFileTime = 2018,
                 View3D = 2280, Brightness = 2726, Contrast = 2730, ScanRevNo = 2734, ExtractX1 = 2740,
                 DataType = 2748, AdcOffset = 2752, AdcGain = 2756, IDivider = 2758, Gamma = 2760,
                 nSPSRefData = 2764, SPSRefData = 2766, RouteEndX = 2770, RouteEndY = 2772, ScanDirection = 2774,
                 LIAEnable = 2780, TempEnable = 2914, AFMSignalEnable = 2946, AFMConversion = 2948,
                 CantileverAmplitude = 2956, StdFrequencySignal = 2964, TwistForceOn = 2972, LMCMode = 3014,
                 PeakFrequency = 3034, QFactor = 3038, NewOscBlock = 3042, OscEnable = 3044, AddOsc = 3046,
                 LapFlag = 3048, RmsDcOutput = 3050, RmsFilter = 3052, CenterFrequency = 3054, OutputAmp = 3062,
                 PhaseShifter = 3070, PhasePolarity = 3078, PllExcitation = 3080, BeatNoise = 3082,
                 LowPassFilter = 3084, HighPassFilter = 3086, PllLoopGain = 3088, DynamicRange = 3090,
                 FeedbackPolarity = 3092, BandPassFilter = 3112, DynamicRangeCode = 3116,
                 PhaseDetectorGain = 3118, AgcReference = 3122, AgcGain = 3130, LagLeadIndex = 3132,
                 FitFrequency = 3162, FitTemperature = 3238, LMCThreshold1On = 3246, LMCThreshold1Dir = 3264,
                 LMCThreshold2Dir = 3268, CrossSectionTopo = 3308, LMCSweepType = 3328, Reserved3332 = 3332,
                 HitDataFlag = 3392, Spare3396 = 3396, ReservedTail = 3592, CITSDisplayOption = 6088;
} // namespace at

constexpr size_t kStored = 6090;
constexpr float kNotRecordedMark = -3.4028235e38f;

// The fixed clock of the test host, Sunday 22 November 2026, 14:05:09.250, as a FILETIME.
uint64_t FixedClockFileTime()
{
    using namespace std::chrono;
    const int64_t days = (sys_days{year{2026} / 11 / 22} - sys_days{year{1601} / 1 / 1}).count();
    const int64_t seconds = days * 86400 + 14 * 3600 + 5 * 60 + 9;
    return static_cast<uint64_t>(seconds) * 10000000ULL + 250ULL * 10000ULL;
}

// A record buffer: the stored bytes and a zeroed run-time part.
struct Rec {
    alignas(8) unsigned char b[sizeof(ImageHeaderType)] = {};

    ImageHeaderType* r() { return reinterpret_cast<ImageHeaderType*>(b); }
    const ImageHeaderType* r() const { return reinterpret_cast<const ImageHeaderType*>(b); }
    template <typename T>
    void Set(size_t offset, T value)
    {
        std::memcpy(b + offset, &value, sizeof value);
    }
    template <typename T>
    T Get(size_t offset) const
    {
        T value;
        std::memcpy(&value, b + offset, sizeof value);
        return value;
    }
    void Zero(size_t offset, size_t count) { std::memset(b + offset, 0, count); }
    void Fill(size_t offset, size_t count, uint8_t v) { std::memset(b + offset, v, count); }
    void Move(size_t from, size_t to, size_t count) { std::memmove(b + to, b + from, count); }
    void Text(size_t offset, const char* text) { std::memcpy(b + offset, text, std::strlen(text) + 1); }
    std::string TextAt(size_t offset, size_t size) const
    {
        return std::string(reinterpret_cast<const char*>(b + offset), strnlen(reinterpret_cast<const char*>(b + offset), size));
    }
};

// The stored part filled with a fixed pattern in which no byte is 0.
Rec PatternRecord(uint32_t seed)
{
    Rec rec;
    uint32_t state = seed * 2654435761u + 12345u;
    for (size_t i = 0; i < kStored; ++i) {
        state = state * 1103515245u + 12345u;
        rec.b[i] = static_cast<uint8_t>(1 + (state >> 16) % 255);
    }
    return rec;
}

// Sets every field that steers a step or is read as a number, to plain values; the rest of the
// record keeps the pattern.
Rec OldRecord(int16_t rev, int32_t sub, int16_t nx, uint8_t oldImageType, uint32_t seed = 1)
{
    Rec in = PatternRecord(seed + static_cast<uint32_t>(rev));
    in.Set<int16_t>(at::RevNo, rev);
    in.Set<int32_t>(at::SubRevNo, sub);
    in.Set<int16_t>(at::nx, nx);
    in.Set<int16_t>(at::ny, nx);
    in.b[at::OldImageType] = oldImageType;
    in.Set<float>(at::ImageSizeX, 5000.0f);
    in.Set<float>(at::ImageSizeY, 2500.0f);
    in.Set<float>(at::Zlo, -30.0f);
    in.Set<float>(at::Zhi, 170.0f);
    in.Set<uint32_t>(at::CITSHeader, 0);
    in.Set<float>(at::ScanSpeedX, 7.5f);
    in.Set<float>(at::ScanSpeedY, 8.5f);
    in.Set<int16_t>(at::LoopGain, 3);
    in.Set<uint32_t>(at::AcqMode, 3);
    in.Set<int16_t>(at::OldAdcSrc, 4);
    in.Set<uint32_t>(at::OldAdcSel, 4);
    in.Set<float>(at::OldOscFrequency, 150000.0f);
    in.Set<uint32_t>(at::AFMMode, 2);
    in.Set<uint32_t>(at::AdcSrc, 4);
    in.Set<uint32_t>(at::DataType, 1024);
    in.b[at::OldDataKind] = 4;
    in.Set<uint32_t>(at::DataSource, 2);
    in.Set<double>(at::OldOutputAmp, 0.25);
    in.Set<double>(at::OldCenterFreq, 300000.0);
    in.Set<float>(at::OldPhaseShift, 12.5f);
    in.Set<uint32_t>(at::OldDynRange, 2);
    in.Set<float>(at::OldPeakFreq, 160.5f);
    in.Set<float>(at::OldQFactor, 420.0f);
    in.Set<float>(at::Brightness, 3.0f);
    in.Set<float>(at::Contrast, 90.0f);
    in.Set<float>(at::Gamma, 2.0f);
    in.Set<uint32_t>(at::LMCSweepType, 2);
    in.Set<uint32_t>(at::HitDataFlag, 0);
    in.Set<float>(at::View3D + 28, 4.5f);
    in.Set<float>(at::View3D + 32, 5.5f);
    return in;
}

// The expected record, changed step by step from the rules with literal offsets. Where a step
// looks a code up in a table, the test passes the value it reads off the table by hand.
class Want {
public:
    Want(const Rec& input, bool spectrum) : e(input), spectrum_(spectrum) {}

    Rec e;

    int Rev() const { return e.Get<int16_t>(at::RevNo); }
    int Sub() const { return e.Get<int32_t>(at::SubRevNo); }
    bool OlderThan(int rev, int sub) const { return Rev() < rev || (Rev() == rev && Sub() < sub); }

    // LookUpTable: identity display table, 16 bits per pixel.
    void LookUpTable()
    {
        for (int i = 0; i < 256; ++i) e.b[at::ImageLUT + i] = static_cast<uint8_t>(i);
        e.b[at::BitsPerPixel] = 16;
    }
    // ImageTypes: second bias "none", the old image type mapped.
    void ImageTypes(uint8_t newType)
    {
        e.Set<float>(at::BiasVoltage2, 3.4028235e38f);
        e.b[at::OldImageType] = newType;
    }
    // AngstromToNm: sizes / 10; heights of type 0, 6, 13, 15 / 10; positions -1, speeds 0.
    void AngstromToNm()
    {
        e.Set<float>(at::ImageSizeX, e.Get<float>(at::ImageSizeX) / 10.0f);
        e.Set<float>(at::ImageSizeY, e.Get<float>(at::ImageSizeY) / 10.0f);
        const uint8_t t = e.b[at::OldImageType];
        if (t == 0 || t == 6 || t == 13 || t == 15) {
            e.Set<float>(at::Zlo, e.Get<float>(at::Zlo) / 10.0f);
            e.Set<float>(at::Zhi, e.Get<float>(at::Zhi) / 10.0f);
        }
        e.Set<int16_t>(at::STSPosX, -1);
        e.Set<int16_t>(at::STSPosY, -1);
        ScanSpeedsZero();
    }
    void ScanSpeedsZero()
    {
        e.Set<float>(at::ScanSpeedX, 0.0f);
        e.Set<float>(at::ScanSpeedY, 0.0f);
    }
    // AcquisitionDefaults.
    void AcquisitionDefaults(uint32_t acqMode, int16_t oldAdcSrc, std::optional<uint8_t> typeAfter = std::nullopt)
    {
        e.Set<float>(at::OldGainX, 1.0f);
        e.Set<float>(at::OldOffsetX, 0.0f);
        e.Set<float>(at::OldGainY, 1.0f);
        e.Set<float>(at::OldOffsetY, 0.0f);
        e.Zero(758, 24);
        e.Set<int16_t>(at::ScanMode, 2);
        e.Set<uint32_t>(at::AcqMode, acqMode);
        if (typeAfter) e.b[at::OldImageType] = *typeAfter;
        e.Set<int16_t>(at::OldAdcSrc, oldAdcSrc);
        for (size_t o = at::ClockSpeed; o < at::LoopGain; o += 4) e.Set<float>(o, kNotRecordedMark);
        e.Set<int16_t>(at::LoopGain, -32768);
        e.Set<float>(at::ImageOffsetX, kNotRecordedMark);
        e.Set<float>(at::ImageOffsetY, kNotRecordedMark);
        for (int i = 0; i < 5; ++i) e.Set<float>(at::ReservedParam + 4 * i, kNotRecordedMark);
        OldBlockAndTailZero();
    }
    void OldBlockAndTailZero()
    {
        e.Set<uint32_t>(at::OldBlockFlag, 0);
        e.Zero(at::ReservedTail, 6088 - 3592);
    }
    // FileNameAndOscillatorWords.
    void FileNameAndOscillatorWords()
    {
        const std::string name = e.TextAt(at::OldFileName, 26);
        std::memcpy(e.b + at::FileName, name.c_str(), name.size() + 1);
        e.Zero(at::OldFileName, 26);
        e.Set<int32_t>(at::OldAdcSel, e.Get<int16_t>(at::OldAdcSrc));
        e.Zero(1112, 8);
        e.Zero(1120, 6);
        e.Zero(at::OldRmsDcOutput, 2);
        e.Zero(1126, 4);
        e.Set<uint32_t>(at::AFMMode, 1);
        e.Zero(1138, 8);
        Colours();
        e.Set<uint32_t>(at::OldParamA, 1);
        e.Set<uint32_t>(at::MFMFlag, 1);
        e.Set<int32_t>(at::SubRevNo, -1);
    }
    void Colours()
    {
        Rec scratch;
        SetDefaultRecordColours(scratch.r());
        std::memcpy(e.b + at::LutRed, scratch.b + at::LutRed, 768);
    }
    // The colour table and class defaults of ItemClassAndSource (the whole action of rows 401 to 404).
    void ColoursAndClassDefaults()
    {
        Colours();
        e.Set<uint32_t>(at::ImType1, spectrum_ ? 2 : 1);
        e.Set<uint32_t>(at::DataSource, 1);
    }
    // ItemClassAndSource with the values read off its tables.
    void ItemClassAndSource(uint32_t imType1, uint32_t dataSource, int16_t oldAdcSrcAfter)
    {
        ColoursAndClassDefaults();
        e.Set<uint32_t>(at::ImType1, imType1);
        if (e.Get<uint32_t>(at::CITSHeader)) e.Set<uint32_t>(at::AcqMode, 11);
        e.Set<uint32_t>(at::DataSource, dataSource);
        e.Set<int16_t>(at::OldAdcSrc, oldAdcSrcAfter);
    }
    // TimesAndProfiles.
    void TimesAndProfiles()
    {
        e.Set<uint32_t>(at::DisplayMode, 1);
        if (OlderThan(406, 1)) {
            e.Set<uint64_t>(at::CreatedFileTime, FixedClockFileTime());
            e.Set<uint64_t>(at::SavedFileTime, FixedClockFileTime());
        }
        e.Zero(2026 + 16, 40 + 10 + 6);   // five lines of four words, five flags, three words
    }
    // DisplayBlocks, with the mapping type and loop gain read off their tables.
    void DisplayBlocks(std::optional<uint32_t> mapType, int16_t loopGain)
    {
        if (OlderThan(407, 1)) View3DDefaults();
        const int sub = Sub();
        if (sub < 2) {
            e.Move(2134, 2280, 446);
            e.Zero(2134, 20);
        }
        if (sub < 3) e.Set<uint32_t>(2458, 0);
        if (sub < 7) {
            e.Set<uint32_t>(2458, 0);
            e.Set<uint32_t>(2448, 0xFFFFFF);
            e.Set<float>(2462, 0.75f);
        }
        if (sub < 11) {
            e.Set<float>(2470, 0.3f);
            e.Set<float>(2466, 0.75f);
            e.Set<float>(at::Contrast, 128.0f);
            e.Set<float>(at::Brightness, 0.0f);
        }
        if (sub < 18) e.Zero(2734, 6);
        if (sub < 23) {
            e.Set<int16_t>(2474, 1);
            e.Set<int16_t>(2476, 0);
            e.Set<int16_t>(2478, 1);
            for (size_t o : {2102, 2104, 2106, 2154, 2156, 2158}) e.Set<int16_t>(o, 1);
        }
        if (sub < 24) {
            e.Set<int32_t>(at::AdcSrc, e.Get<int16_t>(at::OldAdcSrc));
            e.Set<uint16_t>(at::OldLapFlag, 1);
            std::memcpy(e.b + at::ExtractX1, e.b + 692, 8);
            e.Set<uint32_t>(at::DataType, e.b[at::OldDataKind]);
            e.Set<int32_t>(at::AdcOffset, e.Get<int16_t>(at::OldAdcOffset));
            e.Set<uint16_t>(at::AdcGain, e.Get<uint16_t>(at::OldAdcGain));
            e.Set<uint16_t>(at::IDivider, e.Get<uint16_t>(at::OldIDivider));
        }
        if (sub < 25) e.b[2160] = 1;
        if (mapType) e.Set<uint32_t>(at::MapType, *mapType);
        e.Set<int16_t>(at::LoopGain, loopGain);
        View3DDefaults();
        e.Set<float>(at::Brightness, 0.0f);
        e.Set<float>(at::Contrast, 128.0f);
        e.Set<float>(at::Gamma, 1.0f);
    }
    void View3DDefaults()
    {
        uint8_t block[446];
        DefaultView3DBlock(block);
        std::memcpy(e.b + at::View3D, block, sizeof block);
    }
    // SourceBits with the new bit codes read off the table.
    void SourceBits(uint32_t dataType, uint32_t adcSrc)
    {
        if (!OlderThan(500, 20)) return;
        e.Set<uint32_t>(at::DataType, dataType);
        e.Set<uint32_t>(at::AdcSrc, adcSrc);
        e.Set<float>(at::Gamma, 1.0f);
        e.Set<int16_t>(2227, 0);
    }
    // SpectraAndRoutes (the run-time SPSOwnerId is checked by the tests themselves).
    void SpectraAndRoutes()
    {
        if (OlderThan(500, 29)) {
            e.Set<int16_t>(at::nSPSRefData, 0);
            e.Set<uint32_t>(at::SPSRefData, 0);
        }
        RouteEndNone();
    }
    void RouteEndNone()
    {
        e.Set<int16_t>(at::RouteEndX, -1);
        e.Set<int16_t>(at::RouteEndY, -1);
    }
    // SignalSwitches.
    void SignalSwitches()
    {
        e.Zero(at::ScanDirection, 4);
        e.Zero(at::LIAEnable, 2);
        e.Zero(at::TempEnable, 2);
        e.Zero(at::AFMSignalEnable, 2);
        e.Zero(at::AFMConversion, 24);
    }
    // BlockMoves: each block moves as it stood before the moves.
    void BlockMoves()
    {
        if (OlderThan(520, 10)) e.Set<uint32_t>(2480, 1);
        if (Sub() < 37) {
            const Rec before = e;
            std::memcpy(e.b + 2914, before.b + 2910, 32);
            std::memcpy(e.b + 2946, before.b + 2642, 26);
            std::memcpy(e.b + 2972, before.b + 2968, 62);
            e.Set<uint32_t>(2910, 0);
        }
        if (Sub() < 21) {
            e.Zero(3246, 62);
            e.Set<uint32_t>(at::LMCMode, 0);
        }
    }
    // The oscillator fields after BlockMoves, the dynamic range read off its table (none: kept).
    void Oscillator(std::optional<int16_t> dynamicRange)
    {
        if (e.Get<uint32_t>(at::AcqMode) == 21 && e.Get<int16_t>(at::nx) == 2048) e.Set<uint16_t>(at::OldLapFlag, 1);
        const double hz = e.Get<uint32_t>(at::AFMMode) == 4 ? e.Get<double>(at::OldCenterFreq)
                                                             : static_cast<double>(e.Get<float>(at::OldOscFrequency));
        e.Set<double>(at::CenterFrequency, hz / 1000.0);
        if (dynamicRange) e.Set<int16_t>(at::DynamicRange, *dynamicRange);
        e.Set<double>(at::OutputAmp, e.Get<double>(at::OldOutputAmp));
        e.Set<double>(at::PhaseShifter, static_cast<double>(e.Get<float>(at::OldPhaseShift)));
        e.Set<uint16_t>(at::PhasePolarity, e.Get<uint16_t>(at::OldPhasePolarity));
        e.Set<uint16_t>(at::PllExcitation, e.Get<uint16_t>(at::OldPllExcitation));
        e.Set<uint16_t>(at::AddOsc, e.Get<uint16_t>(at::OldAddOsc));
        e.Set<uint16_t>(at::RmsFilter, e.Get<uint16_t>(at::OldRmsFilter));
        e.Set<uint16_t>(at::PllLoopGain, e.Get<uint16_t>(at::OldLoopGain2));
        e.Set<uint16_t>(at::BeatNoise, e.Get<uint16_t>(at::OldBeatNoise));
        e.Set<float>(at::PeakFrequency, e.Get<float>(at::OldPeakFreq));
        e.Set<float>(at::QFactor, e.Get<float>(at::OldQFactor));
        e.Set<uint16_t>(at::LowPassFilter, e.Get<uint16_t>(at::OldLowPass));
        e.Set<uint16_t>(at::HighPassFilter, e.Get<uint16_t>(at::OldHighPass));
        e.Set<uint16_t>(at::OscEnable, e.Get<uint16_t>(at::OldOscEnable));
        e.Set<uint16_t>(at::RmsDcOutput, e.Get<uint16_t>(at::OldRmsDcOutput));
        e.Set<uint16_t>(at::LapFlag, e.Get<uint16_t>(at::OldLapFlag));
        e.Set<uint16_t>(at::NewOscBlock, 0);
        e.Fill(at::FeedbackPolarity, 3112 - 3092, 0xFF);
        e.Set<int32_t>(at::BandPassFilter, -1);
        e.Set<int16_t>(at::DynamicRangeCode, -1);
        e.Set<int16_t>(at::AgcGain, -1);
        e.Set<int16_t>(at::LagLeadIndex, -1);
        e.Set<float>(at::PhaseDetectorGain, -1.0f);
        e.Set<double>(at::AgcReference, -1.0);
    }
    // CurveFit.
    void CurveFit()
    {
        e.Zero(at::FitFrequency, 40);
        e.Zero(at::FitTemperature, 8);
        e.Zero(at::BiasSelect, 4);
    }
    // LmcThresholds.
    void LmcThresholds()
    {
        if (Sub() >= 18) return;
        e.Zero(3246, 62);
        e.Set<uint32_t>(at::LMCThreshold1Dir, 3);
        e.Set<uint32_t>(at::LMCThreshold2Dir, 3);
    }
    // CrossSection.
    void CrossSection()
    {
        if (OlderThan(605, 5) && !(Rev() == 603 && Sub() >= 18)) {
            e.Zero(3308, 84);
            e.Zero(at::HitDataFlag, 4);
        }
        e.Zero(at::Spare3396, 32);
    }
    // SweepTypeAndMontage.
    void SweepTypeAndMontage()
    {
        if (e.Get<uint32_t>(at::LMCSweepType) == 0) e.Set<uint32_t>(at::LMCSweepType, 1);
        if (Rev() == 700) {
            if (Sub() < 7) {
                e.Zero(at::CITSDisplayOption, 2);
                e.Zero(at::Reserved3332, 4);
            }
            if (Sub() >= 13 && Sub() <= 19 && e.Get<float>(2308) == 0.0f && e.Get<float>(2312) == 0.0f)
                View3DDefaults();
        }
        if (OlderThan(700, 20)) e.Zero(at::Montage, 82 - 28);
    }
    // Finally.
    void Finish()
    {
        if (OlderThan(700, 36) && e.Get<uint32_t>(at::DataSource) == 1 && e.Get<uint32_t>(at::AcqMode) == 11) {
            e.Set<float>(at::Zhi, e.Get<float>(at::Zhi) - e.Get<float>(at::Zlo));
            e.Set<float>(at::Zlo, 0.0f);
        }
        e.Set<int16_t>(at::RevNo, 700);
        e.Set<int32_t>(at::SubRevNo, 42);
    }
    // CurveFit to the end.
    void FromCurveFit()
    {
        CurveFit();
        LmcThresholds();
        CrossSection();
        SweepTypeAndMontage();
        Finish();
    }
    // SpectraAndRoutes to the end, with the dynamic range of the oscillator step.
    void FromSpectraAndRoutes(std::optional<int16_t> dynamicRange)
    {
        SpectraAndRoutes();
        SignalSwitches();
        BlockMoves();
        Oscillator(dynamicRange);
        FromCurveFit();
    }

private:
    bool spectrum_;
};

// All 6090 stored bytes equal; a failure lists the offsets that differ.
::testing::AssertionResult SameStoredBytes(const Rec& actual, const Rec& expected)
{
    std::string diff;
    int count = 0;
    for (size_t i = 0; i < kStored; ++i) {
        if (actual.b[i] == expected.b[i]) continue;
        if (++count <= 24)
            diff += " @" + std::to_string(i) + ":" + std::to_string(actual.b[i]) + "!=" + std::to_string(expected.b[i]);
    }
    if (count == 0) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << count << " bytes differ:" << diff;
}

// A mapping set stand-in whose image entries are plain source words.
struct FakeMapping {
    std::vector<uint32_t> entryWords;
};

void WalkFakeMapping(ImageHeaderType* record, MappingSourceVisitor visit, void* context)
{
    auto* mapping = reinterpret_cast<FakeMapping*>(record->CITSHeaderPtr);
    for (uint32_t& word : mapping->entryWords) visit(&word, context);
}

class WalkerScope {
public:
    explicit WalkerScope(MappingEntryWalker walker) : previous_(SetMappingEntryWalker(walker)) {}
    ~WalkerScope() { SetMappingEntryWalker(previous_); }

private:
    MappingEntryWalker previous_;
};

} // namespace

class OldRevisionTest : public LibraryTest {
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        ASSERT_EQ(host.Start(), 0);
    }
    int Logged(const std::string& text) const
    {
        const std::string log = ReadLog();
        int n = 0;
        for (size_t p = log.find(text); p != std::string::npos; p = log.find(text, p + 1)) ++n;
        return n;
    }
    // Runs the routine on a copy of the input.
    Rec Upgraded(const Rec& in, bool spectrum, float* divisor = nullptr)
    {
        Rec out = in;
        const float d = UpdateOldImageHeader(out.r(), spectrum ? 1 : 0);
        if (divisor) *divisor = d;
        return out;
    }
};

// ---- Edge cases -------------------------------------------------------------------------------

TEST_F(OldRevisionTest, CurrentRecordComesThroughWithOnlyTheSweepTypeChanged)
{
    Rec in = OldRecord(700, 42, 256, 0);
    in.Set<uint32_t>(at::LMCSweepType, 0);
    in.Set<uint32_t>(at::AcqMode, 11);
    in.Set<uint32_t>(at::DataSource, 1);
    float divisor = 0;
    Rec out = Upgraded(in, false, &divisor);
    EXPECT_EQ(divisor, 1.0f);
    EXPECT_EQ(out.r()->LMCSweepType, 1u);
    Rec expected = in;
    expected.Set<uint32_t>(at::LMCSweepType, 1);
    EXPECT_TRUE(SameStoredBytes(out, expected));
    EXPECT_EQ(std::memcmp(out.b + kStored, in.b + kStored, sizeof(ImageHeaderType) - kStored), 0);
}

TEST_F(OldRevisionTest, CurrentRecordWithASweepTypeSetComesThroughUnchanged)
{
    Rec in = OldRecord(700, 42, 256, 0);
    in.Set<uint32_t>(at::LMCSweepType, 2);
    Rec out = Upgraded(in, true);
    EXPECT_EQ(std::memcmp(out.b, in.b, sizeof(ImageHeaderType)), 0);
}

TEST_F(OldRevisionTest, Revision650IsReportedAndKeepsAllItsFields)
{
    Rec in = OldRecord(650, 3, 256, 0);
    float divisor = 0;
    Rec out = Upgraded(in, false, &divisor);
    EXPECT_EQ(divisor, 1.0f);
    EXPECT_EQ(std::memcmp(out.b, in.b, sizeof(ImageHeaderType)), 0);
    EXPECT_EQ(Logged("Program error - UpdateOldImageHeader 650"), 1);
}

TEST_F(OldRevisionTest, EveryRevisionOutsideTheEntryTableIsReportedAndLeftAlone)
{
    for (int16_t rev : {-1, 1, 99, 106, 199, 207, 299, 311, 399, 408, 499, 502, 509, 512, 519, 521, 599, 601, 602,
                        608, 699, 701, 32767}) {
        Rec in = OldRecord(rev, 0, 256, 0);
        float divisor = 0;
        Rec out = Upgraded(in, false, &divisor);
        EXPECT_EQ(divisor, 1.0f) << rev;
        EXPECT_EQ(std::memcmp(out.b, in.b, sizeof(ImageHeaderType)), 0) << rev;
        EXPECT_EQ(Logged("Program error - UpdateOldImageHeader " + std::to_string(rev) + " "), 1) << rev;
    }
}

TEST_F(OldRevisionTest, NullRecordIsReportedAndAnswersOne)
{
    EXPECT_EQ(UpdateOldImageHeader(nullptr, 0), 1.0f);
    EXPECT_EQ(Logged("Program error - UpdateOldImageHeader "), 1);
}

TEST_F(OldRevisionTest, Revisions101And102TakeThePathOfRevision100)
{
    Rec in100 = OldRecord(100, 9, 256, 2);
    Rec out100 = Upgraded(in100, false);
    for (int16_t rev : {101, 102}) {
        Rec in = in100;
        in.Set<int16_t>(at::RevNo, rev);
        Rec out = Upgraded(in, false);
        EXPECT_TRUE(SameStoredBytes(out, out100)) << rev;
        EXPECT_EQ(out.r()->ImageLUT[0x80], 0x80) << rev;
        EXPECT_EQ(out.r()->RevNo, 700) << rev;
    }
}

TEST_F(OldRevisionTest, Revision510TakesThePathOfItsRow)
{
    // 501 and 510: RouteEnd -1, then SignalSwitches. The spectra count of SpectraAndRoutes stays.
    for (int16_t rev : {501, 510}) {
        Rec in = OldRecord(rev, 3, 256, 0);
        in.Set<int16_t>(at::nSPSRefData, 2);
        in.Set<uint32_t>(at::SPSRefData, 1);
        in.Set<int16_t>(at::RouteEndX, 17);
        in.Set<int16_t>(at::RouteEndY, 18);
        Rec out = Upgraded(in, false);
        Want want(in, false);
        want.RouteEndNone();
        want.SignalSwitches();
        want.BlockMoves();
        want.Oscillator(152);
        want.FromCurveFit();
        EXPECT_TRUE(SameStoredBytes(out, want.e)) << rev;
        EXPECT_EQ(out.r()->RouteEndX, -1) << rev;
        EXPECT_EQ(out.r()->RouteEndY, -1) << rev;
        EXPECT_EQ(out.r()->nSPSRefData, 2) << rev;
        EXPECT_EQ(out.r()->SPSRefData, 1u) << rev;
        EXPECT_EQ(out.r()->ScanDirection, 0) << rev;
    }
}

// ---- One test or more for each entry row --------------------------------------------------------

TEST_F(OldRevisionTest, Revision0ImageRunsEveryStep)
{
    Rec in = OldRecord(0, 77, 256, 2);
    in.Text(at::OldFileName, "STM00017.IMG");
    in.b[at::OldDataKind] = 8;
    in.Set<uint32_t>(at::OldDynRange, 4);
    in.Set<uint32_t>(at::AcqMode, 99);
    float divisor = 0;
    Rec out = Upgraded(in, false, &divisor);

    Want want(in, false);
    want.LookUpTable();
    want.ImageTypes(1);            // image type 2 -> 1
    want.AngstromToNm();
    want.AcquisitionDefaults(4, 4);         // nx 256 -> Image(256); type 1 -> source 4
    want.FileNameAndOscillatorWords();
    want.ItemClassAndSource(1, 2, 4);      // type 1: image, Linear Current
    want.TimesAndProfiles();
    want.DisplayBlocks(std::nullopt, 1);   // AcqMode 4: no map type; loop gain -32768 -> 1
    want.SourceBits(4, 8);         // data type 8 -> 4; source 4 -> 8
    want.FromSpectraAndRoutes(305);
    EXPECT_TRUE(SameStoredBytes(out, want.e));

    const ImageHeaderType* r = out.r();
    EXPECT_EQ(divisor, 1.0f);
    EXPECT_EQ(r->ImageLUT[200], 200);
    EXPECT_EQ(r->BitsPerPixel, 16);
    EXPECT_EQ(r->BiasVoltage2, FLT_MAX);
    EXPECT_EQ(r->OldImageType, 1);
    EXPECT_EQ(r->ImageSizeX, 500.0f);
    EXPECT_EQ(r->ImageSizeY, 250.0f);
    EXPECT_EQ(r->Zlo, -30.0f);
    EXPECT_EQ(r->Zhi, 170.0f);
    EXPECT_EQ(r->STSPosX, -1);
    EXPECT_EQ(r->ScanSpeedX, 0.0f);
    EXPECT_EQ(r->OldGainX, 1.0f);
    EXPECT_EQ(r->ScanMode, 2);
    EXPECT_EQ(r->AcqMode, 4u);
    EXPECT_EQ(r->ClockSpeed, kNotRecorded);
    EXPECT_EQ(r->ReservedParam[4], kNotRecorded);
    EXPECT_EQ(r->LoopGain, 1);
    EXPECT_STREQ(r->FileName, "STM00017.IMG");
    EXPECT_EQ(r->OldFileName[0], 0);
    EXPECT_EQ(r->OldAdcSel, 4u);
    EXPECT_EQ(r->AFMMode, 1u);
    EXPECT_EQ(r->OldParamA, 1u);
    EXPECT_EQ(r->MFMFlag, 1u);
    EXPECT_EQ(r->ImType1, 1u);
    EXPECT_EQ(r->DataSource, 2u);
    EXPECT_EQ(r->DisplayMode, 1u);
    EXPECT_EQ(r->CreatedFileTime, FixedClockFileTime());
    EXPECT_EQ(r->SavedFileTime, FixedClockFileTime());
    EXPECT_EQ(r->AdcSrc, 8u);
    EXPECT_EQ(r->DataType, 4u);
    EXPECT_EQ(r->ExtractX1, in.Get<int16_t>(692));
    EXPECT_EQ(r->Gamma, 1.0f);
    EXPECT_EQ(r->Contrast, 128.0f);
    EXPECT_EQ(r->Brightness, 0.0f);
    EXPECT_EQ(r->RouteEndX, -1);
    EXPECT_EQ(r->nSPSRefData, 0);
    EXPECT_EQ(r->SPSOwnerId, -1);
    EXPECT_EQ(r->CenterFrequency, 0.0);   // OldOscFrequency was cleared in FileNameAndOscillatorWords
    EXPECT_EQ(r->DynamicRange, 305);
    EXPECT_EQ(r->OutputAmp, 0.25);
    EXPECT_EQ(r->PhaseShifter, 12.5);
    EXPECT_EQ(r->PeakFrequency, 160.5f);
    EXPECT_EQ(r->FeedbackPolarity, 0xFFFF);
    EXPECT_EQ(r->BandPassFilter, -1);
    EXPECT_EQ(r->AgcReference, -1.0);
    EXPECT_EQ(r->LMCThreshold1Dir, 3u);
    EXPECT_EQ(r->CrossSectionTopo, 0);
    EXPECT_EQ(r->LMCSweepType, 1u);
    EXPECT_EQ(r->MontageNx, 0);
    EXPECT_EQ(r->RevNo, 700);
    EXPECT_EQ(r->SubRevNo, 42);
    EXPECT_EQ(CheckHeaderIsImageType(r), 1);
}

TEST_F(OldRevisionTest, Revision100SpectrumOfHeightsGivesTheTenthFactor)
{
    Rec in = OldRecord(100, 0, 200, 0);
    in.Text(at::OldFileName, "IVCURVE.DAT");
    in.b[at::OldDataKind] = 1;
    float divisor = 0;
    Rec out = Upgraded(in, true, &divisor);

    Want want(in, true);
    want.LookUpTable();
    want.ImageTypes(13);               // spectrum type 0 -> 13
    want.AngstromToNm();                 // heights / 10
    want.AcquisitionDefaults(13, 1);            // 13 - 6 = 7: S-V Curve; type 13: source 1
    want.FileNameAndOscillatorWords();
    want.ItemClassAndSource(2, 1, 1);          // type 13: spectrum, Topography
    want.TimesAndProfiles();
    want.DisplayBlocks(std::nullopt, 1);  // 13 - 10 = 3 is not in the map type table
    want.SourceBits(1, 1);
    want.FromSpectraAndRoutes(152);
    EXPECT_TRUE(SameStoredBytes(out, want.e));

    const ImageHeaderType* r = out.r();
    EXPECT_EQ(divisor, 0.1f);
    EXPECT_EQ(r->Zlo, -3.0f);
    EXPECT_EQ(r->Zhi, 17.0f);
    EXPECT_EQ(r->ImageSizeX, 500.0f);
    EXPECT_EQ(r->AcqMode, 13u);
    EXPECT_EQ(r->OldImageType, 13);
    EXPECT_EQ(r->ImType1, 2u);
    EXPECT_EQ(r->DataSource, 1u);
    EXPECT_STREQ(r->FileName, "IVCURVE.DAT");
    EXPECT_EQ(CheckHeaderIsSpecType(r), 1);
}

TEST_F(OldRevisionTest, Revision103KeepsItsDisplayTableAndSetsSixteenBits)
{
    Rec in = OldRecord(103, 0, 256, 2);
    in.b[at::BitsPerPixel] = 8;
    in.b[at::ImageLUT + 5] = 77;
    Rec out = Upgraded(in, false);

    Want want(in, false);
    want.e.b[at::BitsPerPixel] = 16;
    want.ImageTypes(1);
    want.AngstromToNm();
    want.AcquisitionDefaults(4, 4);
    want.FileNameAndOscillatorWords();
    want.ItemClassAndSource(1, 2, 4);
    want.TimesAndProfiles();
    want.DisplayBlocks(std::nullopt, 1);
    want.SourceBits(8, 8);
    want.FromSpectraAndRoutes(152);
    EXPECT_TRUE(SameStoredBytes(out, want.e));
    EXPECT_EQ(out.r()->BitsPerPixel, 16);
    EXPECT_EQ(out.r()->ImageLUT[5], 77);
    EXPECT_EQ(std::memcmp(out.r()->ImageLUT, in.b + at::ImageLUT, 256), 0);
    EXPECT_EQ(out.r()->OldImageType, 1);

    // The same record as revision 100 differs only by the identity table.
    Rec as100 = in;
    as100.Set<int16_t>(at::RevNo, 100);
    Rec out100 = Upgraded(as100, false);
    for (int i = 0; i < 256; ++i) out.b[at::ImageLUT + i] = static_cast<uint8_t>(i);
    EXPECT_TRUE(SameStoredBytes(out100, out));
}

TEST_F(OldRevisionTest, Revisions104And105StartAtTheImageTypes)
{
    Rec in = OldRecord(104, 0, 128, 9);
    Rec out104 = Upgraded(in, false);

    Want want(in, false);
    want.ImageTypes(10);               // image type 9 -> 10
    want.AngstromToNm();
    want.AcquisitionDefaults(5, 4);             // nx 128 -> Image(128); type 10 -> source 4
    want.FileNameAndOscillatorWords();
    want.ItemClassAndSource(3, 2, 4);          // type 10: class 3, Linear Current
    want.TimesAndProfiles();
    want.DisplayBlocks(std::nullopt, 1);
    want.SourceBits(8, 8);
    want.FromSpectraAndRoutes(152);
    EXPECT_TRUE(SameStoredBytes(out104, want.e));
    EXPECT_EQ(out104.r()->OldImageType, 10);
    EXPECT_EQ(out104.r()->AcqMode, 5u);
    EXPECT_EQ(out104.r()->ImType1, 3u);
    // LookUpTable did not run.
    EXPECT_EQ(std::memcmp(out104.r()->ImageLUT, in.b + at::ImageLUT, 256), 0);
    EXPECT_EQ(out104.b[at::BitsPerPixel], in.b[at::BitsPerPixel]);

    Rec in105 = in;
    in105.Set<int16_t>(at::RevNo, 105);
    EXPECT_TRUE(SameStoredBytes(Upgraded(in105, false), want.e));
}

TEST_F(OldRevisionTest, Revision300StartsAtTheImageTypesLikeRevision104)
{
    Rec in = OldRecord(300, 0, 512, 7);
    Rec out = Upgraded(in, false);
    Want want(in, false);
    want.ImageTypes(7);                // image type 7 stays 7
    want.AngstromToNm();
    want.AcquisitionDefaults(3, 4);             // nx 512 -> Image(512); type 7 -> source 4
    want.FileNameAndOscillatorWords();
    want.ItemClassAndSource(3, 2, 4);          // type 7: class 3, Linear Current
    want.TimesAndProfiles();
    want.DisplayBlocks(std::nullopt, 1);
    want.SourceBits(8, 8);
    want.FromSpectraAndRoutes(152);
    EXPECT_TRUE(SameStoredBytes(out, want.e));
    EXPECT_EQ(out.r()->BiasVoltage2, FLT_MAX);

    Rec as104 = in;
    as104.Set<int16_t>(at::RevNo, 104);
    EXPECT_TRUE(SameStoredBytes(Upgraded(as104, false), out));
}

TEST_F(OldRevisionTest, Revision200StartsAtTheAngstromStep)
{
    Rec in = OldRecord(200, 0, 512, 2);
    const float biasBefore = in.Get<float>(at::BiasVoltage2);
    float divisor = 0;
    Rec out = Upgraded(in, false, &divisor);
    Want want(in, false);
    want.AngstromToNm();                 // type 2: sizes only
    want.AcquisitionDefaults(3, 8);             // type 2 -> source 8
    want.FileNameAndOscillatorWords();
    want.ItemClassAndSource(1, 3, 8);          // type 2: image, Log Current
    want.TimesAndProfiles();
    want.DisplayBlocks(std::nullopt, 1);
    want.SourceBits(8, 4);             // data kind 4 -> 8; source 8 -> 4
    want.FromSpectraAndRoutes(152);
    EXPECT_TRUE(SameStoredBytes(out, want.e));
    EXPECT_EQ(divisor, 1.0f);
    EXPECT_EQ(out.r()->ImageSizeX, 500.0f);
    EXPECT_EQ(out.r()->Zhi, 170.0f);
    EXPECT_EQ(out.r()->OldImageType, 2);
    EXPECT_EQ(out.r()->DataSource, 3u);
    EXPECT_EQ(out.r()->BiasVoltage2, biasBefore);
}

TEST_F(OldRevisionTest, Revision200SpectraOfTypes6And15GiveTheTenthFactor)
{
    struct Case {
        uint8_t type;
        uint32_t acqMode, imType1, dataSource;
        int16_t source;
    };
    // 6: 6 - 6 = 0 -> I-V... mode 3; source 1; class 3; Topography.
    // 15: 15 - 6 = 9 -> mode 14; source 4; class 2; Linear Current.
    for (Case c : {Case{6, 3, 3, 1, 1}, Case{15, 14, 2, 2, 4}}) {
        Rec in = OldRecord(200, 0, 300, c.type);
        float divisor = 0;
        Rec out = Upgraded(in, true, &divisor);
        Want want(in, true);
        want.AngstromToNm();
        want.AcquisitionDefaults(c.acqMode, c.source);
        want.FileNameAndOscillatorWords();
        want.ItemClassAndSource(c.imType1, c.dataSource, c.source);
        want.TimesAndProfiles();
        want.DisplayBlocks(c.acqMode == 14 ? std::optional<uint32_t>(16) : std::nullopt, 1);
        want.SourceBits(8, c.source == 4 ? 8 : 1);
        want.FromSpectraAndRoutes(152);
        EXPECT_TRUE(SameStoredBytes(out, want.e)) << int(c.type);
        EXPECT_EQ(divisor, 0.1f) << int(c.type);
        EXPECT_EQ(out.r()->Zlo, -3.0f) << int(c.type);
        EXPECT_EQ(out.r()->Zhi, 17.0f) << int(c.type);
        EXPECT_EQ(out.r()->AcqMode, c.acqMode) << int(c.type);
    }
}

TEST_F(OldRevisionTest, Revisions201To204ZeroTheScanSpeedsThenStartAtTheAcquisitionDefaults)
{
    for (int16_t rev = 201; rev <= 204; ++rev) {
        Rec in = OldRecord(rev, 0, 128, 0);
        Rec out = Upgraded(in, false);
        Want want(in, false);
        want.ScanSpeedsZero();
        want.AcquisitionDefaults(5, 1);             // nx 128 -> Image(128); type 0 -> source 1
        want.FileNameAndOscillatorWords();
        want.ItemClassAndSource(1, 1, 1);          // type 0: image, Topography
        want.TimesAndProfiles();
        want.DisplayBlocks(std::nullopt, 1);
        want.SourceBits(8, 1);
        want.FromSpectraAndRoutes(152);
        EXPECT_TRUE(SameStoredBytes(out, want.e)) << rev;
        EXPECT_EQ(out.r()->ScanSpeedX, 0.0f) << rev;
        EXPECT_EQ(out.r()->ScanSpeedY, 0.0f) << rev;
        EXPECT_EQ(out.r()->ImageSizeX, 5000.0f) << rev;   // AngstromToNm did not run
        EXPECT_EQ(out.r()->STSPosX, in.Get<int16_t>(at::STSPosX)) << rev;
        EXPECT_EQ(out.r()->AcqMode, 5u) << rev;
    }
}

TEST_F(OldRevisionTest, Revision204SpectrumOfAnUnlistedTypeBecomesAnIVCurve)
{
    Rec in = OldRecord(204, 0, 300, 30);
    Rec out = Upgraded(in, true);
    Want want(in, true);
    want.ScanSpeedsZero();
    want.AcquisitionDefaults(12, 4, 12);        // 30 - 6 = 24 is not listed: mode 12, type 12; type 12 -> source 4
    want.FileNameAndOscillatorWords();
    want.ItemClassAndSource(2, 2, 4);          // type 12: spectrum, Linear Current
    want.TimesAndProfiles();
    want.DisplayBlocks(14, 1);            // 12 - 10 = 2 -> I-S Mapping
    want.SourceBits(8, 8);
    want.FromSpectraAndRoutes(152);
    EXPECT_TRUE(SameStoredBytes(out, want.e));
    EXPECT_EQ(out.r()->AcqMode, 12u);
    EXPECT_EQ(out.r()->OldImageType, 12);
    EXPECT_EQ(out.r()->MapType, 14u);
}

TEST_F(OldRevisionTest, Revisions205And206StartAtTheAcquisitionDefaults)
{
    for (int16_t rev : {205, 206}) {
        Rec in = OldRecord(rev, 0, 256, 1);
        Rec out = Upgraded(in, false);
        Want want(in, false);
        want.AcquisitionDefaults(4, 4);             // type 1 -> source 4
        want.FileNameAndOscillatorWords();
        want.ItemClassAndSource(1, 2, 4);
        want.TimesAndProfiles();
        want.DisplayBlocks(std::nullopt, 1);
        want.SourceBits(8, 8);
        want.FromSpectraAndRoutes(152);
        EXPECT_TRUE(SameStoredBytes(out, want.e)) << rev;
        EXPECT_EQ(out.r()->ScanSpeedX, 7.5f) << rev;
        EXPECT_EQ(out.r()->OldGainY, 1.0f) << rev;
        EXPECT_EQ(out.r()->ImageOffsetY, kNotRecorded) << rev;
    }
}

TEST_F(OldRevisionTest, Revisions301To303ClearTheBlockFlagThenStartAtTheFileNameStep)
{
    for (int16_t rev = 301; rev <= 303; ++rev) {
        Rec in = OldRecord(rev, 0, 256, 3);
        in.Text(at::OldFileName, "A:\\SCAN3.TOP");
        Rec out = Upgraded(in, false);
        Want want(in, false);
        want.OldBlockAndTailZero();
        want.FileNameAndOscillatorWords();
        want.ItemClassAndSource(1, 7, 4);          // type 3: image, Voltage
        want.TimesAndProfiles();
        want.DisplayBlocks(std::nullopt, 4);  // loop gain code 3 -> 4
        want.SourceBits(8, 8);
        want.FromSpectraAndRoutes(152);
        EXPECT_TRUE(SameStoredBytes(out, want.e)) << rev;
        EXPECT_EQ(out.r()->OldBlockFlag, 0u) << rev;
        EXPECT_EQ(out.r()->Reserved3592[0], 0) << rev;
        EXPECT_EQ(out.r()->Reserved3592[2495], 0) << rev;
        EXPECT_STREQ(out.r()->FileName, "A:\\SCAN3.TOP") << rev;
        EXPECT_EQ(out.r()->AcqMode, 3u) << rev;
        EXPECT_EQ(out.r()->LoopGain, 4) << rev;
        EXPECT_EQ(out.r()->DataSource, 7u) << rev;
    }
}

TEST_F(OldRevisionTest, Revisions304To306StartAtTheFileNameStep)
{
    for (int16_t rev = 304; rev <= 306; ++rev) {
        Rec in = OldRecord(rev, 0, 256, 14);
        in.Text(at::OldFileName, "ABCDEFGHIJKLMNOPQRSTUVWXY");   // 25 characters and its end
        Rec out = Upgraded(in, true);
        Want want(in, true);
        want.FileNameAndOscillatorWords();
        want.ItemClassAndSource(2, 4, 4);          // type 14: spectrum, LIA1(Aux1)
        want.TimesAndProfiles();
        want.DisplayBlocks(std::nullopt, 4);
        want.SourceBits(8, 8);
        want.FromSpectraAndRoutes(152);
        EXPECT_TRUE(SameStoredBytes(out, want.e)) << rev;
        EXPECT_STREQ(out.r()->FileName, "ABCDEFGHIJKLMNOPQRSTUVWXY") << rev;
        EXPECT_EQ(out.r()->OldBlockFlag, in.Get<uint32_t>(at::OldBlockFlag)) << rev;
        EXPECT_EQ(out.r()->SubRevNo, 42) << rev;
    }
}

TEST_F(OldRevisionTest, OldFileNameOfAllTwentySixCharactersIsCopiedWhole)
{
    Rec in = OldRecord(304, 0, 256, 0);
    std::memcpy(in.b + at::OldFileName, "ABCDEFGHIJKLMNOPQRSTUVWXYZ", 26);   // no end in the field
    Rec out = Upgraded(in, false);
    EXPECT_STREQ(out.r()->FileName, "ABCDEFGHIJKLMNOPQRSTUVWXYZ");
    for (int i = 0; i < 26; ++i) EXPECT_EQ(out.r()->OldFileName[i], 0) << i;
}

TEST_F(OldRevisionTest, Revisions307To310And400StartAtTheItemClass)
{
    for (int16_t rev : {307, 308, 309, 310, 400}) {
        Rec in = OldRecord(rev, 0, 256, 26);
        in.Set<int16_t>(at::OldAdcSrc, 2);
        in.Set<uint32_t>(at::OldAdcSel, 8);
        Rec out = Upgraded(in, false);
        Want want(in, false);
        want.ItemClassAndSource(1, 11, 8);         // type 26: image, Phase; source 2 with log selection -> 8
        want.TimesAndProfiles();
        want.DisplayBlocks(std::nullopt, 4);
        want.SourceBits(8, 4);             // source 8 -> 4
        want.FromSpectraAndRoutes(152);
        EXPECT_TRUE(SameStoredBytes(out, want.e)) << rev;
        EXPECT_EQ(out.r()->ImType1, 1u) << rev;
        EXPECT_EQ(out.r()->DataSource, 11u) << rev;
        EXPECT_EQ(out.r()->OldAdcSrc, 8) << rev;
        EXPECT_EQ(out.r()->AdcSrc, 4u) << rev;
        EXPECT_EQ(std::memcmp(out.b + at::OldFileName, in.b + at::OldFileName, 26), 0) << rev;   // FileNameAndOscillatorWords did not run
        EXPECT_EQ(out.r()->CreatedFileTime, FixedClockFileTime()) << rev;
    }
}

TEST_F(OldRevisionTest, MappingRecordOfRevision400RecodesItsEntriesAndStartsItsRangeAtZero)
{
    FakeMapping mapping{{2, 1, 1024, 3, 8}};
    WalkerScope scope(WalkFakeMapping);
    Rec in = OldRecord(400, 0, 128, 0);
    in.Set<uint32_t>(at::CITSHeader, 1);
    in.r()->CITSHeaderPtr = reinterpret_cast<CITSHeaderType*>(&mapping);
    in.Set<int16_t>(at::OldAdcSrc, 2);
    in.Set<uint32_t>(at::OldAdcSel, 4);
    Rec out = Upgraded(in, false);

    Want want(in, false);
    want.ItemClassAndSource(1, 1, 4);          // type 0: image, Topography; source 2 with linear selection -> 4
    want.TimesAndProfiles();
    want.DisplayBlocks(13, 4);            // AcqMode 11 -> S-V Mapping
    want.SourceBits(8, 8);
    want.FromSpectraAndRoutes(152);
    EXPECT_TRUE(SameStoredBytes(out, want.e));
    EXPECT_EQ(out.r()->AcqMode, 11u);
    EXPECT_EQ(out.r()->MapType, 13u);
    EXPECT_EQ(out.r()->Zlo, 0.0f);
    EXPECT_EQ(out.r()->Zhi, 200.0f);
    // Entries: 2 -> 4 (linear), then the bit codes: 4 -> 8, 1 -> 1, 1024 -> 0x1000, 3 -> 1, 8 -> 4.
    EXPECT_EQ(mapping.entryWords, (std::vector<uint32_t>{8, 1, 0x1000, 1, 4}));
}

TEST_F(OldRevisionTest, MappingEntriesOfLogCurrentBecomeTheLogCode)
{
    FakeMapping mapping{{2, 2}};
    WalkerScope scope(WalkFakeMapping);
    Rec in = OldRecord(307, 0, 128, 0);
    in.Set<uint32_t>(at::CITSHeader, 1);
    in.r()->CITSHeaderPtr = reinterpret_cast<CITSHeaderType*>(&mapping);
    in.Set<uint32_t>(at::OldAdcSel, 8);
    Upgraded(in, false);
    // 2 -> 8 (log), then the bit code of 8 is 4.
    EXPECT_EQ(mapping.entryWords, (std::vector<uint32_t>{4, 4}));
}

TEST_F(OldRevisionTest, WithoutAMappingSetNoEntryIsVisited)
{
    FakeMapping mapping{{2}};
    WalkerScope scope(WalkFakeMapping);
    Rec in = OldRecord(307, 0, 128, 0);
    in.r()->CITSHeaderPtr = reinterpret_cast<CITSHeaderType*>(&mapping);   // stored flag 0
    Rec out = Upgraded(in, false);
    EXPECT_EQ(mapping.entryWords, (std::vector<uint32_t>{2}));
    EXPECT_EQ(out.r()->AcqMode, 3u);
}

TEST_F(OldRevisionTest, UnknownOldImageTypeIsReportedAndTakesTheClassOfTheCaller)
{
    Rec image = OldRecord(310, 0, 256, 50);
    Rec outImage = Upgraded(image, false);
    EXPECT_EQ(outImage.r()->ImType1, 1u);
    EXPECT_EQ(outImage.r()->DataSource, 1u);
    Rec spectrum = OldRecord(310, 0, 256, 50);
    Rec outSpectrum = Upgraded(spectrum, true);
    EXPECT_EQ(outSpectrum.r()->ImType1, 2u);
    EXPECT_EQ(Logged("Program error - UpdateOldImageHeader rev=310 imtype=50"), 2);

    Want want(image, false);
    want.ItemClassAndSource(1, 1, 4);
    want.TimesAndProfiles();
    want.DisplayBlocks(std::nullopt, 4);
    want.SourceBits(8, 8);
    want.FromSpectraAndRoutes(152);
    EXPECT_TRUE(SameStoredBytes(outImage, want.e));
}

TEST_F(OldRevisionTest, Revisions401To404InstallColoursAndClassDefaultsThenStartAtTheTimesAndProfiles)
{
    for (int16_t rev = 401; rev <= 404; ++rev) {
        for (bool spectrum : {false, true}) {
            Rec in = OldRecord(rev, 0, 256, 6);
            in.Set<int16_t>(at::OldAdcSrc, 2);
            in.Set<uint32_t>(at::OldAdcSel, 8);
            Rec out = Upgraded(in, spectrum);
            Want want(in, spectrum);
            want.ColoursAndClassDefaults();
            want.TimesAndProfiles();
            want.DisplayBlocks(std::nullopt, 4);
            want.SourceBits(8, 2);             // source 2 was not resolved: bit code 2
            want.FromSpectraAndRoutes(152);
            EXPECT_TRUE(SameStoredBytes(out, want.e)) << rev << spectrum;
            // The type table of ItemClassAndSource did not run: type 6 would give class 3.
            EXPECT_EQ(out.r()->ImType1, spectrum ? 2u : 1u) << rev;
            EXPECT_EQ(out.r()->DataSource, 1u) << rev;
            EXPECT_EQ(out.r()->OldAdcSrc, 2) << rev;
            EXPECT_EQ(out.r()->DisplayMode, 1u) << rev;
        }
    }
}

TEST_F(OldRevisionTest, Revision405StartsAtTheTimesAndProfilesAndKeepsItsColours)
{
    Rec in = OldRecord(405, 50, 256, 6);
    Rec out = Upgraded(in, false);
    Want want(in, false);
    want.TimesAndProfiles();                 // 405 is older than 406/1: file times now
    want.DisplayBlocks(std::nullopt, 4);  // sub-revision 50: none of the sub-revision parts
    want.SourceBits(0x1000, 8);        // data type 1024 -> 0x1000
    want.FromSpectraAndRoutes(152);
    EXPECT_TRUE(SameStoredBytes(out, want.e));
    EXPECT_EQ(std::memcmp(out.b + at::LutRed, in.b + at::LutRed, 768), 0);
    EXPECT_EQ(out.r()->ImType1, in.Get<uint32_t>(at::ImType1));
    EXPECT_EQ(out.r()->CreatedFileTime, FixedClockFileTime());
    EXPECT_EQ(out.r()->ScanRevNo, in.Get<int16_t>(at::ScanRevNo));
    EXPECT_EQ(out.r()->DataType, 0x1000u);
}

TEST_F(OldRevisionTest, Revision406OfSubRevision0RunsEveryDisplayBlockPart)
{
    Rec in = OldRecord(406, 0, 256, 0);
    in.b[at::OldDataKind] = 2;
    in.Set<int16_t>(at::OldAdcOffset, -1500);
    in.Set<uint16_t>(at::OldAdcGain, 20);
    in.Set<uint16_t>(at::OldIDivider, 10);
    in.Set<uint32_t>(at::AcqMode, 15);
    Rec out = Upgraded(in, false);
    Want want(in, false);
    want.DisplayBlocks(15, 4);            // AcqMode 15 - 10 = 5 -> Force Curve Mapping
    want.SourceBits(2, 8);             // data kind 2 keeps code 2; source 4 -> 8
    want.FromSpectraAndRoutes(152);
    EXPECT_TRUE(SameStoredBytes(out, want.e));

    const ImageHeaderType* r = out.r();
    EXPECT_EQ(r->DisplayMode, in.Get<uint32_t>(at::DisplayMode));          // TimesAndProfiles did not run
    EXPECT_EQ(r->CreatedFileTime, in.Get<uint64_t>(at::CreatedFileTime));
    for (int i = 0; i < 20; ++i) EXPECT_EQ(out.b[2134 + i], 0) << i;
    EXPECT_EQ(out.Get<int16_t>(2102), 1);
    EXPECT_EQ(out.Get<int16_t>(2158), 1);
    EXPECT_EQ(out.b[2160], 1);
    EXPECT_EQ(r->ScanRevNo, 0);
    EXPECT_EQ(r->AdcSrc, 8u);
    EXPECT_EQ(r->OldLapFlag, 1);
    EXPECT_EQ(r->ExtractX1, in.Get<int16_t>(692));
    EXPECT_EQ(r->ExtractY2, in.Get<int16_t>(698));
    EXPECT_EQ(r->DataType, 2u);
    EXPECT_EQ(r->AdcOffset, static_cast<uint32_t>(-1500));
    EXPECT_EQ(r->AdcGain, 20);
    EXPECT_EQ(r->IDivider, 10);
    EXPECT_EQ(r->MapType, 15u);
    EXPECT_EQ(r->LoopGain, 4);
    uint8_t defaults[446];
    DefaultView3DBlock(defaults);
    EXPECT_EQ(std::memcmp(r->View3DBlock, defaults, 446), 0);
    EXPECT_EQ(r->Contrast, 128.0f);
    EXPECT_EQ(r->Gamma, 1.0f);
}

TEST_F(OldRevisionTest, Revision406OfALaterSubRevisionSkipsTheSubRevisionParts)
{
    Rec in = OldRecord(406, 30, 256, 0);
    Rec out = Upgraded(in, false);
    Want want(in, false);
    want.DisplayBlocks(std::nullopt, 4);
    want.SourceBits(0x1000, 8);
    want.FromSpectraAndRoutes(152);
    EXPECT_TRUE(SameStoredBytes(out, want.e));
    EXPECT_EQ(out.r()->ScanRevNo, in.Get<int16_t>(at::ScanRevNo));
    EXPECT_EQ(out.r()->ExtractX1, in.Get<int16_t>(at::ExtractX1));
    EXPECT_EQ(std::memcmp(out.b + 2134, in.b + 2134, 20), 0);
}

TEST_F(OldRevisionTest, MapTypeAndLoopGainCodesOfTheDisplayStep)
{
    struct Case {
        uint32_t acqMode;
        std::optional<uint32_t> mapType;
    };
    for (Case c : {Case{10, 12}, Case{11, 13}, Case{12, 14}, Case{13, std::nullopt}, Case{14, 16}, Case{15, 15},
                   Case{16, std::nullopt}, Case{3, std::nullopt}}) {
        Rec in = OldRecord(406, 30, 256, 0);
        in.Set<uint32_t>(at::AcqMode, c.acqMode);
        Rec out = Upgraded(in, false);
        EXPECT_EQ(out.r()->MapType, c.mapType.value_or(in.Get<uint32_t>(at::MapType))) << c.acqMode;
    }
    const int16_t codes[][2] = {{2, 2}, {3, 4}, {4, 8}, {1, 1}, {0, 1}, {5, 1}, {8, 1}, {-32768, 1}};
    for (const auto& code : codes) {
        Rec in = OldRecord(406, 30, 256, 0);
        in.Set<int16_t>(at::LoopGain, code[0]);
        EXPECT_EQ(Upgraded(in, false).r()->LoopGain, code[1]) << code[0];
    }
}

TEST_F(OldRevisionTest, Revision407StartsAtTheBitCodes)
{
    Rec in = OldRecord(407, 0, 256, 0);
    in.Set<uint32_t>(at::DataType, 0x20000);
    in.Set<uint32_t>(at::AdcSrc, 256);
    Rec out = Upgraded(in, false);
    Want want(in, false);
    want.SourceBits(0x40, 0x10);
    want.FromSpectraAndRoutes(152);
    EXPECT_TRUE(SameStoredBytes(out, want.e));
    EXPECT_EQ(out.r()->DataType, 0x40u);
    EXPECT_EQ(out.r()->AdcSrc, 0x10u);
    EXPECT_EQ(out.r()->Gamma, 1.0f);
    EXPECT_EQ(out.Get<int16_t>(2227), 0);
    EXPECT_EQ(out.r()->LoopGain, 3);    // DisplayBlocks did not run
    // DisplayBlocks did not reset the 3-D block; only BlockMoves sets its word at 2480 (block offset 200).
    EXPECT_EQ(std::memcmp(out.r()->View3DBlock, in.b + at::View3D, 200), 0);
    EXPECT_EQ(out.Get<uint32_t>(2480), 1u);
    EXPECT_EQ(std::memcmp(out.r()->View3DBlock + 204, in.b + at::View3D + 204, 446 - 204), 0);
}

TEST_F(OldRevisionTest, BitCodeTableOfEveryListedCodeAndOthers)
{
    const uint32_t table[][2] = {
        {0, 0}, {1, 1}, {2, 2}, {4, 8}, {8, 4}, {32, 0x20000}, {64, 0x400}, {128, 0x800}, {256, 0x10},
        {1024, 0x1000}, {2048, 0x40000}, {4096, 0x80000}, {8192, 0x200}, {16384, 0x20}, {32768, 0x10000},
        {0x10000, 0x100000}, {0x20000, 0x40}, {0x40000, 0x80}, {0x80000, 0x100}, {0x100000, 0x2000},
        {0x200000, 0x4000}, {0x400000, 0x8000}, {0x800000, 0x200000},
        // Not in the table: 1.
        {3, 1}, {16, 1}, {512, 1}, {0x1000000, 1}, {0xFFFFFFFF, 1},
    };
    for (const auto& row : table) {
        Rec in = OldRecord(407, 0, 256, 0);
        in.Set<uint32_t>(at::DataType, row[0]);
        in.Set<uint32_t>(at::AdcSrc, row[0]);
        Rec out = Upgraded(in, false);
        EXPECT_EQ(out.r()->DataType, row[1]) << row[0];
        EXPECT_EQ(out.r()->AdcSrc, row[1]) << row[0];
    }
}

TEST_F(OldRevisionTest, Revision500StartsAtTheSpectraAndRoutesAndDetachesSpectraBelowSubRevision29)
{
    Rec in = OldRecord(500, 10, 256, 0);
    in.Set<int16_t>(at::nSPSRefData, 3);
    in.Set<uint32_t>(at::SPSRefData, 1);
    in.r()->SPSOwnerId = 5;
    Rec out = Upgraded(in, false);
    Want want(in, false);
    want.FromSpectraAndRoutes(152);
    EXPECT_TRUE(SameStoredBytes(out, want.e));
    EXPECT_EQ(out.r()->nSPSRefData, 0);
    EXPECT_EQ(out.r()->SPSRefData, 0u);
    EXPECT_EQ(out.r()->SPSOwnerId, -1);
    EXPECT_EQ(out.r()->RouteEndX, -1);
    EXPECT_EQ(out.r()->DataType, 1024u);    // SourceBits did not run

    Rec later = in;
    later.Set<int32_t>(at::SubRevNo, 29);
    Rec outLater = Upgraded(later, false);
    Want wantLater(later, false);
    wantLater.FromSpectraAndRoutes(152);
    EXPECT_TRUE(SameStoredBytes(outLater, wantLater.e));
    EXPECT_EQ(outLater.r()->nSPSRefData, 3);
    EXPECT_EQ(outLater.r()->SPSOwnerId, 5);
    EXPECT_EQ(outLater.r()->RouteEndY, -1);
}

TEST_F(OldRevisionTest, Revision511StartsAtTheSignalSwitchesAndKeepsItsRoute)
{
    Rec in = OldRecord(511, 3, 256, 0);
    in.Set<int16_t>(at::RouteEndX, 40);
    in.Set<int16_t>(at::RouteEndY, 41);
    Rec out = Upgraded(in, false);
    Want want(in, false);
    want.SignalSwitches();
    want.BlockMoves();
    want.Oscillator(152);
    want.FromCurveFit();
    EXPECT_TRUE(SameStoredBytes(out, want.e));
    EXPECT_EQ(out.r()->RouteEndX, 40);
    EXPECT_EQ(out.r()->RouteEndY, 41);
    EXPECT_EQ(out.r()->LIAEnable, 0);
    EXPECT_EQ(out.r()->ScanDirection, 0);
}

namespace {

// A revision 520 record with distinct values in the blocks that moved at 520/37.
Rec Revision520(int32_t sub)
{
    Rec in = OldRecord(520, sub, 256, 0);
    in.Set<int16_t>(2910, 1);            // old TempEnable
    in.Set<float>(2910 + 28, 55.5f);     // old TempTarget
    in.Set<uint16_t>(2642, 1);           // old AFMSignalEnable
    in.Set<double>(2642 + 2, 2.5);       // old AFMConversion
    in.b[2968] = 1;                      // old TwistForceOn
    in.b[2969] = 1;                      // old TwistForceCalib
    in.Set<double>(2968 + 2, 3.0);       // old LMCScale
    in.Set<uint32_t>(2968 + 42, 8);      // old LMCMode
    in.Set<double>(2968 + 54, 1.25);     // old LMAmplitude
    return in;
}

} // namespace

TEST_F(OldRevisionTest, Revision520BelowSubRevision21MovesTheBlocksAndClearsTheLmcFields)
{
    Rec in = Revision520(5);
    Rec out = Upgraded(in, false);
    Want want(in, false);
    want.BlockMoves();
    want.Oscillator(152);
    want.FromCurveFit();
    EXPECT_TRUE(SameStoredBytes(out, want.e));
    const ImageHeaderType* r = out.r();
    EXPECT_EQ(out.Get<uint32_t>(2480), 1u);
    EXPECT_EQ(r->Reserved2910, 0u);
    EXPECT_EQ(r->TempEnable, 1);
    EXPECT_EQ(r->TempTarget, 55.5f);
    EXPECT_EQ(r->AFMSignalEnable, 1);
    EXPECT_EQ(r->AFMConversion, 2.5);
    EXPECT_EQ(r->TwistForceOn, 1);
    EXPECT_EQ(r->TwistForceCalib, 1);
    EXPECT_EQ(r->LMCScale, 3.0);
    EXPECT_EQ(r->LMAmplitude, 1.25);
    EXPECT_EQ(r->LMCMode, 0u);
    EXPECT_EQ(r->LMCThreshold1On, 0);
    EXPECT_EQ(r->LMCThreshold1Dir, 3u);
    EXPECT_EQ(r->LMCSearchTo, 0u);
}

TEST_F(OldRevisionTest, Revision520BelowSubRevision37MovesTheBlocksAndKeepsTheLmcFields)
{
    Rec in = Revision520(30);
    in.b[at::LMCThreshold1On] = 1;
    in.Set<uint32_t>(at::LMCThreshold1Dir, 2);
    Rec out = Upgraded(in, false);
    Want want(in, false);
    want.BlockMoves();
    want.Oscillator(152);
    want.FromCurveFit();
    EXPECT_TRUE(SameStoredBytes(out, want.e));
    EXPECT_EQ(out.Get<uint32_t>(2480), in.Get<uint32_t>(2480));
    EXPECT_EQ(out.r()->LMCMode, 8u);
    EXPECT_EQ(out.r()->TempTarget, 55.5f);
    EXPECT_EQ(out.r()->LMCThreshold1On, 1);
    EXPECT_EQ(out.r()->LMCThreshold1Dir, 2u);
}

TEST_F(OldRevisionTest, Revision520FromSubRevision37KeepsItsBlocks)
{
    Rec in = Revision520(40);
    Rec out = Upgraded(in, false);
    Want want(in, false);
    want.BlockMoves();
    want.Oscillator(152);
    want.FromCurveFit();
    EXPECT_TRUE(SameStoredBytes(out, want.e));
    EXPECT_EQ(std::memcmp(out.b + 2910, in.b + 2910, 2946 - 2910), 0);
    EXPECT_EQ(out.r()->TwistForceOn, in.b[2972]);
}

TEST_F(OldRevisionTest, OscillatorFieldsComeFromTheOldOnes)
{
    Rec in = OldRecord(520, 40, 2048, 0);
    in.Set<uint32_t>(at::AcqMode, 21);
    in.Set<uint32_t>(at::AFMMode, 4);
    in.Set<uint16_t>(at::OldLapFlag, 0);
    in.Set<uint32_t>(at::OldDynRange, 8);
    in.Set<uint16_t>(at::OldLowPass, 5);
    in.Set<uint16_t>(at::OldHighPass, 6);
    in.Set<uint16_t>(at::OldOscEnable, 1);
    in.Set<uint16_t>(at::OldRmsDcOutput, 7);
    in.Set<uint16_t>(at::OldPhasePolarity, 1);
    in.Set<uint16_t>(at::OldPllExcitation, 9);
    in.Set<uint16_t>(at::OldAddOsc, 1);
    in.Set<uint16_t>(at::OldRmsFilter, 1);
    in.Set<uint16_t>(at::OldLoopGain2, 11);
    in.Set<uint16_t>(at::OldBeatNoise, 12);
    Rec out = Upgraded(in, true);
    Want want(in, true);
    want.BlockMoves();
    want.Oscillator(610);
    want.FromCurveFit();
    EXPECT_TRUE(SameStoredBytes(out, want.e));

    const ImageHeaderType* r = out.r();
    EXPECT_EQ(r->OldLapFlag, 1);
    EXPECT_EQ(r->LapFlag, 1);
    EXPECT_EQ(r->CenterFrequency, 300.0);     // OldCenterFreq 300000 Hz with NC-AFM
    EXPECT_EQ(r->DynamicRange, 610);
    EXPECT_EQ(r->OutputAmp, 0.25);
    EXPECT_EQ(r->PhaseShifter, 12.5);
    EXPECT_EQ(r->PhasePolarity, 1);
    EXPECT_EQ(r->PllExcitation, 9);
    EXPECT_EQ(r->AddOsc, 1);
    EXPECT_EQ(r->RmsFilter, 1);
    EXPECT_EQ(r->PllLoopGain, 11);
    EXPECT_EQ(r->BeatNoise, 12);
    EXPECT_EQ(r->PeakFrequency, 160.5f);
    EXPECT_EQ(r->QFactor, 420.0f);
    EXPECT_EQ(r->LowPassFilter, 5);
    EXPECT_EQ(r->HighPassFilter, 6);
    EXPECT_EQ(r->OscEnable, 1);
    EXPECT_EQ(r->RmsDcOutput, 7);
    EXPECT_EQ(r->NewOscBlock, 0);
    EXPECT_EQ(r->FeedbackPolarity, 0xFFFF);
    EXPECT_EQ(r->PllOn, -1);
    EXPECT_EQ(r->ABSignalGain, -1);
    EXPECT_EQ(r->Reserved3110, -1);
    EXPECT_EQ(r->BandPassFilter, -1);
    EXPECT_EQ(r->DynamicRangeCode, -1);
    EXPECT_EQ(r->AgcGain, -1);
    EXPECT_EQ(r->LagLeadIndex, -1);
    EXPECT_EQ(r->PhaseDetectorGain, -1.0f);
    EXPECT_EQ(r->AgcReference, -1.0);
}

TEST_F(OldRevisionTest, OscillatorCentreFrequencyOutsideNcAfmAndDynamicRangeCodes)
{
    const uint32_t codes[][2] = {{1, 76}, {2, 152}, {4, 305}, {8, 610}};
    for (const auto& code : codes) {
        Rec in = OldRecord(520, 40, 256, 0);
        in.Set<uint32_t>(at::OldDynRange, code[0]);
        Rec out = Upgraded(in, false);
        EXPECT_EQ(out.r()->DynamicRange, static_cast<int16_t>(code[1])) << code[0];
        EXPECT_EQ(out.r()->CenterFrequency, 150.0);   // OldOscFrequency 150000 Hz, AFMMode 2
        EXPECT_EQ(out.r()->LapFlag, in.Get<int16_t>(at::OldLapFlag));
    }
    // A code outside the table leaves the field as it was.
    Rec in = OldRecord(520, 40, 256, 0);
    in.Set<uint32_t>(at::OldDynRange, 3);
    in.Set<int16_t>(at::DynamicRange, 999);
    EXPECT_EQ(Upgraded(in, false).r()->DynamicRange, 999);
}

TEST_F(OldRevisionTest, Revision600StartsAtTheCurveFit)
{
    Rec in = OldRecord(600, 10, 256, 0);
    in.Set<double>(at::FitFrequency, 5.0);
    in.Set<int32_t>(at::BiasSelect, 2);
    Rec out = Upgraded(in, false);
    Want want(in, false);
    want.FromCurveFit();
    EXPECT_TRUE(SameStoredBytes(out, want.e));
    EXPECT_EQ(out.r()->FitFrequency, 0.0);
    EXPECT_EQ(out.r()->FitConversion, 0.0);
    EXPECT_EQ(out.r()->FitTemperature, 0.0);
    EXPECT_EQ(out.r()->BiasSelect, 0);
    EXPECT_EQ(out.r()->LMCThreshold2Dir, 3u);
    EXPECT_EQ(out.r()->CrossSectionTopo, 0);
    EXPECT_EQ(out.r()->NewOscBlock, in.Get<uint16_t>(at::NewOscBlock));   // oscillator step did not run
}

TEST_F(OldRevisionTest, Revision603StartsAtTheThresholdsAndKeepsItsCrossSectionFromSubRevision18)
{
    Rec early = OldRecord(603, 10, 256, 0);
    early.Set<double>(at::FitFrequency, 5.0);
    Rec outEarly = Upgraded(early, false);
    Want wantEarly(early, false);
    wantEarly.LmcThresholds();
    wantEarly.CrossSection();
    wantEarly.SweepTypeAndMontage();
    wantEarly.Finish();
    EXPECT_TRUE(SameStoredBytes(outEarly, wantEarly.e));
    EXPECT_EQ(outEarly.r()->FitFrequency, 5.0);   // CurveFit did not run
    EXPECT_EQ(outEarly.r()->LMCThreshold1Dir, 3u);
    EXPECT_EQ(outEarly.r()->CrossSectionTopo, 0);

    Rec late = OldRecord(603, 18, 256, 0);
    Rec outLate = Upgraded(late, false);
    Want wantLate(late, false);
    wantLate.LmcThresholds();
    wantLate.CrossSection();
    wantLate.SweepTypeAndMontage();
    wantLate.Finish();
    EXPECT_TRUE(SameStoredBytes(outLate, wantLate.e));
    EXPECT_EQ(std::memcmp(outLate.b + 3246, late.b + 3246, 3396 - 3246), 0);
    for (int i = 0; i < 32; ++i) EXPECT_EQ(outLate.b[3396 + i], 0) << i;
}

TEST_F(OldRevisionTest, Revisions604And605StartAtTheCrossSectionBlock)
{
    struct Case {
        int16_t rev;
        int32_t sub;
        bool cleared;
    };
    for (Case c : {Case{604, 50, true}, Case{605, 4, true}, Case{605, 5, false}}) {
        Rec in = OldRecord(c.rev, c.sub, 256, 0);
        Rec out = Upgraded(in, false);
        Want want(in, false);
        want.CrossSection();
        want.SweepTypeAndMontage();
        want.Finish();
        EXPECT_TRUE(SameStoredBytes(out, want.e)) << c.rev << "/" << c.sub;
        EXPECT_EQ(out.r()->CrossSectionTopo == 0 && out.r()->LMCPoints == 0, c.cleared) << c.rev << "/" << c.sub;
        EXPECT_EQ(out.r()->LMCThreshold1Dir, in.Get<uint32_t>(at::LMCThreshold1Dir));   // LmcThresholds did not run
        EXPECT_EQ(out.r()->Reserved3396, 0u);
    }
}

TEST_F(OldRevisionTest, CrossSectionStepFreesHitDataThatWasReadForTheOldFlag)
{
    Rec in = OldRecord(604, 0, 16, 0);
    const size_t before = LiveBlockCount();
    ASSERT_TRUE(AllocateHitRecords(in.r(), 16, 16));
    ASSERT_NE(in.r()->LMCHitDataPtr, nullptr);
    ASSERT_NE(in.r()->LMCThresholdHitDataPtr, 0u);
    UpdateOldImageHeader(in.r(), 0);
    EXPECT_EQ(in.r()->LMCThresholdHitDataPtr, 0u);
    EXPECT_EQ(in.r()->LMCHitDataPtr, nullptr);
    EXPECT_EQ(LiveBlockCount(), before);
}

TEST_F(OldRevisionTest, Revisions606And607ClearTheSpareWordsThenStartAtTheSweepType)
{
    for (int16_t rev : {606, 607}) {
        Rec in = OldRecord(rev, 0, 256, 0);
        Rec out = Upgraded(in, false);
        Want want(in, false);
        want.e.Zero(3396, 32);
        want.SweepTypeAndMontage();
        want.Finish();
        EXPECT_TRUE(SameStoredBytes(out, want.e)) << rev;
        EXPECT_EQ(out.r()->Reserved3396, 0u) << rev;
        EXPECT_EQ(out.r()->OldSpare[27], 0) << rev;
        EXPECT_EQ(static_cast<uint8_t>(out.r()->OldSpare[28]), in.b[3428]) << rev;
        EXPECT_EQ(out.r()->CrossSectionTopo, in.Get<int16_t>(at::CrossSectionTopo)) << rev;
        EXPECT_EQ(out.r()->MontageNx, 0) << rev;
    }
}

TEST_F(OldRevisionTest, Revision700BelowSubRevision7ClearsTheMappingDisplayWords)
{
    Rec in = OldRecord(700, 5, 256, 0);
    Rec out = Upgraded(in, false);
    Want want(in, false);
    want.SweepTypeAndMontage();
    want.Finish();
    EXPECT_TRUE(SameStoredBytes(out, want.e));
    EXPECT_EQ(out.r()->CITSDisplayOption, 0);
    EXPECT_EQ(out.r()->Reserved3332, 0u);
    EXPECT_EQ(out.r()->MontageShiftX, 0.0f);
    EXPECT_EQ(out.r()->MontageEnable, 0);
    EXPECT_EQ(out.r()->Reserved51[30], 0);
}

TEST_F(OldRevisionTest, Revision700OfSubRevisions13To19GetsDefault3DSettingsWhenBothFloatsAreZero)
{
    uint8_t defaults[446];
    DefaultView3DBlock(defaults);
    for (int32_t sub : {12, 13, 19, 20}) {
        Rec in = OldRecord(700, sub, 256, 0);
        in.Set<float>(2308, 0.0f);
        in.Set<float>(2312, 0.0f);
        Rec out = Upgraded(in, false);
        Want want(in, false);
        want.SweepTypeAndMontage();
        want.Finish();
        EXPECT_TRUE(SameStoredBytes(out, want.e)) << sub;
        const bool defaulted = sub >= 13 && sub <= 19;
        EXPECT_EQ(std::memcmp(out.r()->View3DBlock, defaults, 446) == 0, defaulted) << sub;
        EXPECT_EQ(out.r()->MontageNx == 0, sub < 20) << sub;
    }
    Rec oneSet = OldRecord(700, 15, 256, 0);
    oneSet.Set<float>(2308, 0.0f);
    Rec out = Upgraded(oneSet, false);
    EXPECT_EQ(std::memcmp(out.r()->View3DBlock, oneSet.b + at::View3D, 446), 0);
}

TEST_F(OldRevisionTest, Revision700BelowSubRevision36StartsTheTopographyMappingRangeAtZero)
{
    for (int32_t sub : {30, 35, 36}) {
        Rec in = OldRecord(700, sub, 256, 0);
        in.Set<uint32_t>(at::DataSource, 1);
        in.Set<uint32_t>(at::AcqMode, 11);
        Rec out = Upgraded(in, false);
        Want want(in, false);
        want.SweepTypeAndMontage();
        want.Finish();
        EXPECT_TRUE(SameStoredBytes(out, want.e)) << sub;
        if (sub < 36) {
            EXPECT_EQ(out.r()->Zlo, 0.0f) << sub;
            EXPECT_EQ(out.r()->Zhi, 200.0f) << sub;
        } else {
            EXPECT_EQ(out.r()->Zlo, -30.0f) << sub;
            EXPECT_EQ(out.r()->Zhi, 170.0f) << sub;
        }
    }
    // Not a topography mapping: no shift.
    Rec in = OldRecord(700, 30, 256, 0);
    in.Set<uint32_t>(at::AcqMode, 11);
    EXPECT_EQ(Upgraded(in, false).r()->Zlo, -30.0f);
}

// ---- Whole tables through the routine ------------------------------------------------------

namespace {

// The image type mapping of ImageTypes, written from the rule.
uint8_t ImageTypeAfterS2(int t)
{
    switch (t) {
    case 0: return 0;
    case 2: case 3: return 1;
    case 4: return 4;
    case 5: return 6;
    case 6: return 9;
    case 7: case 8: return 7;
    case 9: return 10;
    default: return 3;
    }
}

uint8_t SpectrumTypeAfterS2(int t)
{
    switch (t) {
    case 0: return 13;
    case 2: case 3: return 12;
    case 5: return 6;
    case 6: return 9;
    case 7: case 8: return 7;
    case 9: return 10;
    default: return static_cast<uint8_t>(t);
    }
}

// AcqMode of a spectrum in AcquisitionDefaults from type - 6; 0 for "not listed".
uint32_t SpectrumModeFor(int t)
{
    switch (t - 6) {
    case 0: case 1: case 2: case 3: return 3;
    case 4: case 5: return 11;
    case 6: case 8: return 12;
    case 7: return 13;
    case 9: case 10: return 14;
    default: return 0;
    }
}

int16_t SourceFor(int t)
{
    switch (t) {
    case 0: case 6: case 13: return 1;
    case 1: case 4: case 7: case 10: case 12: case 15: return 4;
    case 2: case 5: case 8: case 11: return 8;
    default: return 1024;
    }
}

// ImType1 of ItemClassAndSource; 0 for "not listed".
uint32_t ClassFor(int t)
{
    if ((t >= 0 && t <= 5) || t == 18 || t == 19 || t == 26 || t == 29 || (t >= 40 && t <= 44) || t == 106) return 1;
    if ((t >= 6 && t <= 11) || t == 20 || t == 21 || t == 27 || t == 30 || (t >= 100 && t <= 105)) return 3;
    if ((t >= 12 && t <= 17) || t == 22 || t == 24 || t == 25 || t == 31) return 2;
    if (t == 23) return 5;
    if (t == 32) return 4;
    return 0;
}

// DataSource of ItemClassAndSource with OldAdcSrc 8 (which gives Log Current, 3); 0 for "not listed".
uint32_t SourceKindFor(int t)
{
    switch (t) {
    case 0: case 6: case 13: case 25: return 1;
    case 1: case 4: case 7: case 10: case 12: case 15: case 24: return 2;
    case 2: case 5: case 8: case 11: return 3;
    case 3: case 9: return 7;
    case 14: case 16: return 4;
    case 17: case 18: case 19: case 20: case 21: case 22: return 8;
    case 23: case 32: return 3;
    case 26: case 27: case 28: return 11;
    case 29: case 30: case 31: return 10;
    case 40: case 100: return 12;
    case 41: case 101: return 13;
    case 42: case 102: return 14;
    case 43: case 103: return 15;
    case 44: case 104: return 16;
    case 105: case 106: return 20;
    default: return 0;
    }
}

} // namespace

TEST_F(OldRevisionTest, ImageTypeTableOfEveryCode)
{
    for (int t = 0; t < 256; ++t) {
        Rec in = OldRecord(104, 0, 256, static_cast<uint8_t>(t));
        EXPECT_EQ(Upgraded(in, false).r()->OldImageType, ImageTypeAfterS2(t)) << t;
    }
}

TEST_F(OldRevisionTest, SpectrumTypeTableOfEveryCode)
{
    for (int t = 0; t < 256; ++t) {
        Rec in = OldRecord(104, 0, 256, static_cast<uint8_t>(t));
        const uint8_t mapped = SpectrumTypeAfterS2(t);
        const uint8_t expected = SpectrumModeFor(mapped) ? mapped : 12;   // AcquisitionDefaults makes unlisted ones 12
        EXPECT_EQ(Upgraded(in, true).r()->OldImageType, expected) << t;
    }
}

TEST_F(OldRevisionTest, SpectrumModeAndSourceTablesOfEveryCode)
{
    for (int t = 0; t < 256; ++t) {
        Rec in = OldRecord(205, 0, 256, static_cast<uint8_t>(t));
        Rec out = Upgraded(in, true);
        const uint32_t mode = SpectrumModeFor(t);
        EXPECT_EQ(out.r()->AcqMode, mode ? mode : 12u) << t;
        EXPECT_EQ(out.r()->OldImageType, mode ? t : 12) << t;
        EXPECT_EQ(out.r()->OldAdcSrc, SourceFor(mode ? t : 12)) << t;
    }
    // Images take their mode from the width.
    const int16_t widths[][2] = {{128, 5}, {256, 4}, {512, 3}, {64, 3}, {1024, 3}};
    for (const auto& w : widths) {
        Rec in = OldRecord(205, 0, w[0], 0);
        EXPECT_EQ(Upgraded(in, false).r()->AcqMode, static_cast<uint32_t>(w[1])) << w[0];
    }
}

TEST_F(OldRevisionTest, ItemClassAndDataSourceTablesOfEveryCode)
{
    int unknown = 0;
    for (int t = 0; t < 256; ++t) {
        Rec in = OldRecord(307, 0, 256, static_cast<uint8_t>(t));
        in.Set<int16_t>(at::OldAdcSrc, 8);
        Rec out = Upgraded(in, true);
        const uint32_t itemClass = ClassFor(t);
        if (!itemClass) ++unknown;
        EXPECT_EQ(out.r()->ImType1, itemClass ? itemClass : 2u) << t;
        const uint32_t kind = SourceKindFor(t);
        EXPECT_EQ(out.r()->DataSource, kind ? kind : 1u) << t;
    }
    EXPECT_EQ(Logged("Program error - UpdateOldImageHeader rev=307 imtype="), unknown);
    // 23 and 32 read OldAdcSrc, after 0 became 1: Topography.
    for (uint8_t t : {23, 32}) {
        Rec in = OldRecord(307, 0, 256, t);
        in.Set<int16_t>(at::OldAdcSrc, 0);
        EXPECT_EQ(Upgraded(in, false).r()->DataSource, 1u) << int(t);
    }
}

// ---- Sub-revision boundaries -------------------------------------------------------------------

TEST_F(OldRevisionTest, DisplayBlockPartsStopAtTheirSubRevisions)
{
    // The parts whose effect outlasts the final reset of the 3-D block: the 20 bytes at 2134
    // (below 2), the 6 bytes at 2734 (below 18), the profile words (below 23), the old source
    // and data words (below 24) and the byte at 2160 (below 25).
    for (int32_t sub : {1, 2, 17, 18, 22, 23, 24, 25}) {
        Rec in = OldRecord(406, sub, 256, 0);
        in.Set<int16_t>(at::ScanRevNo, 5);
        in.Set<int16_t>(2102, 7);
        in.Set<int16_t>(2158, 7);
        in.b[2160] = 9;
        in.Set<uint32_t>(at::AdcSrc, 2048);
        Rec out = Upgraded(in, false);
        Want want(in, false);
        want.DisplayBlocks(std::nullopt, 4);
        want.SourceBits(sub < 24 ? 8 : 0x1000, sub < 24 ? 8 : 0x40000);
        want.FromSpectraAndRoutes(152);
        EXPECT_TRUE(SameStoredBytes(out, want.e)) << sub;
        EXPECT_EQ(out.b[2134] == 0 && out.b[2153] == 0, sub < 2) << sub;
        EXPECT_EQ(out.r()->ScanRevNo, sub < 18 ? 0 : 5) << sub;
        EXPECT_EQ(out.Get<int16_t>(2102), sub < 23 ? 1 : 7) << sub;
        EXPECT_EQ(out.Get<int16_t>(2158), sub < 23 ? 1 : 7) << sub;
        EXPECT_EQ(out.r()->AdcSrc, sub < 24 ? 8u : 0x40000u) << sub;   // old source 4, or 2048 kept
        EXPECT_EQ(out.r()->DataType, sub < 24 ? 8u : 0x1000u) << sub;
        EXPECT_EQ(out.b[2160], sub < 25 ? 1 : 9) << sub;
    }
}

TEST_F(OldRevisionTest, BlockMovePartsStopAtTheirSubRevisions)
{
    for (int32_t sub : {9, 10, 20, 21, 36, 37}) {
        Rec in = Revision520(sub);
        in.Set<uint32_t>(2480, 0x55);
        in.b[at::LMCThreshold1On] = 1;
        Rec out = Upgraded(in, false);
        Want want(in, false);
        want.BlockMoves();
        want.Oscillator(152);
        want.FromCurveFit();
        EXPECT_TRUE(SameStoredBytes(out, want.e)) << sub;
        EXPECT_EQ(out.Get<uint32_t>(2480), sub < 10 ? 1u : 0x55u) << sub;
        if (sub < 37) {
            EXPECT_EQ(out.r()->TempTarget, 55.5f) << sub;
        } else {
            EXPECT_EQ(out.Get<float>(2938), in.Get<float>(2938)) << sub;
        }
        EXPECT_EQ(out.r()->LMCThreshold1On, sub < 21 ? 0 : 1) << sub;
        EXPECT_EQ(out.r()->LMCMode, sub < 21 ? 0u : sub < 37 ? 8u : in.Get<uint32_t>(at::LMCMode)) << sub;
    }
}

TEST_F(OldRevisionTest, MappingDisplayWordsOfRevision700StopAtSubRevision7)
{
    for (int32_t sub : {6, 7}) {
        Rec in = OldRecord(700, sub, 256, 0);
        Rec out = Upgraded(in, false);
        EXPECT_EQ(out.r()->CITSDisplayOption, sub < 7 ? 0 : in.Get<uint16_t>(at::CITSDisplayOption)) << sub;
        EXPECT_EQ(out.r()->Reserved3332, sub < 7 ? 0u : in.Get<uint32_t>(at::Reserved3332)) << sub;
    }
}

// ---- Old plain files loaded through the image file reader -----------------------------------

namespace {

constexpr int kSide = 16;

// Delta rows as the old packing wrote them: per row the first value as a byte, then 4-bit
// symbols, high nibble first: 1 to 15 add (symbol - 8) to the value; 0 starts a literal whose
// 8 bits follow in the next two nibbles (0 in a high nibble) or in the next whole byte (0 in a
// low nibble). A code is its value shifted left by the shift of the file.
struct DeltaStream {
    std::string bytes;
    int highLiterals = 0;
    int lowLiterals = 0;
};

void EncodeDeltaRow(const std::vector<int>& values, DeltaStream& out)
{
    out.bytes.push_back(static_cast<char>(values[0]));
    bool high = true;
    auto put = [&](int nibble) {
        if (high)
            out.bytes.push_back(static_cast<char>(nibble << 4));
        else
            out.bytes.back() = static_cast<char>(static_cast<uint8_t>(out.bytes.back()) | nibble);
        high = !high;
    };
    for (size_t i = 1; i < values.size(); ++i) {
        const int diff = values[i] - values[i - 1];
        if (diff >= -7 && diff <= 7) {
            put(diff + 8);
        } else if (high) {
            put(0);
            put(values[i] >> 4);
            put(values[i] & 15);
            ++out.highLiterals;
        } else {
            put(0);
            out.bytes.push_back(static_cast<char>(values[i]));
            ++out.lowLiterals;
        }
    }
}

// A row with small steps and jumps, whose literals fall in both nibble positions.
const std::vector<int> kHandRow = {5, 6, 100, 98, 97, 20, 27, 27, 255, 248, 249, 0, 3, 3, 10, 2};
// The same row packed by hand, byte by byte.
const std::vector<uint8_t> kHandRowBytes = {0x05, 0x90, 0x64, 0x67, 0x01, 0x4F, 0x80,
                                            0xFF, 0x19, 0x00, 0x0B, 0x8F, 0x00, 0x20};

// The values of a delta-packed test image: row 0 is the hand row, the others mix steps of
// -7 to 7 with jumps.
std::vector<std::vector<int>> DeltaImageValues()
{
    std::vector<std::vector<int>> rows{kHandRow};
    for (int y = 1; y < kSide; ++y) {
        std::vector<int> row;
        for (int x = 0; x < kSide; ++x) row.push_back(x % 5 == 4 ? (y * 53 + x * 31) & 0xFF : (y * 9 + x * 3) & 0xFF);
        rows.push_back(row);
    }
    return rows;
}

// A zeroed old record: an image of type 0 (topography), 16 by 16, with its packing.
Rec PlainOldRecord(int16_t rev, int8_t compression, int8_t bitsPerPixel)
{
    Rec rec;
    rec.Set<int16_t>(at::RevNo, rev);
    rec.Set<int16_t>(at::nx, kSide);
    rec.Set<int16_t>(at::ny, kSide);
    rec.b[700] = static_cast<uint8_t>(compression);
    rec.b[at::BitsPerPixel] = static_cast<uint8_t>(bitsPerPixel);
    rec.Set<float>(at::ImageSizeX, 1000.0f);
    rec.Set<float>(at::ImageSizeY, 1000.0f);
    rec.Set<float>(at::Zhi, 50.0f);
    return rec;
}

// Header bytes a plain file of the revision holds.
size_t StoredBy(int rev) { return rev <= 303 ? 902 : rev <= 404 ? 1872 : 6090; }

} // namespace

class OldRevisionFileTest : public OldRevisionTest {
protected:
    // Writes the file, loads it quietly and answers the new current item (null on failure).
    ImageHeaderType* Load(const Rec& header, const std::string& pixels, const std::string& name)
    {
        const int rev = header.Get<int16_t>(at::RevNo);
        path_ = Path(name);
        WriteFileBytes(path_, std::string(reinterpret_cast<const char*>(header.b), StoredBy(rev)) + pixels);
        blocksBefore_ = LiveBlockCount();
        if (LoadImageFile(path_.c_str(), 0, 1, 1) != 0) return nullptr;
        return CurrentItem;
    }
    // The item is a current image of 16 by 16 at 700/42 named by its path; erasing it frees
    // every block the load took.
    void ExpectUpgradedImageAndErase(ImageHeaderType* item)
    {
        ASSERT_NE(item, nullptr);
        EXPECT_EQ(item->nx, kSide);
        EXPECT_EQ(item->ny, kSide);
        EXPECT_EQ(item->RevNo, 700);
        EXPECT_EQ(item->SubRevNo, 42);
        EXPECT_EQ(item->ImType1, 1u);
        EXPECT_EQ(item->DisplayMode, 1u);
        EXPECT_STREQ(item->FileName, path_.c_str());
        EXPECT_EQ(Logged("Load " + path_), 1);
        EraseItem(item);
        EXPECT_EQ(LiveBlockCount(), blocksBefore_);
    }
    std::string path_;
    size_t blocksBefore_ = 0;
};

TEST_F(OldRevisionFileTest, DeltaEncoderOfTheTestsPacksTheHandRowByteForByte)
{
    DeltaStream stream;
    EncodeDeltaRow(kHandRow, stream);
    EXPECT_EQ(stream.bytes, std::string(kHandRowBytes.begin(), kHandRowBytes.end()));
    EXPECT_EQ(stream.highLiterals, 3);   // 20, 0 and 2
    EXPECT_EQ(stream.lowLiterals, 2);    // 100 and 255
}

TEST_F(OldRevisionFileTest, Revision0FileOf8BitPixelsLoads)
{
    Rec header = PlainOldRecord(0, 0, 0);
    std::string pixels;
    for (int i = 0; i < kSide * kSide; ++i) pixels.push_back(static_cast<char>((i * 37 + 11) & 0xFF));
    ImageHeaderType* item = Load(header, pixels, "rev0.img");
    ASSERT_NE(item, nullptr);
    for (int i = 0; i < kSide * kSide; ++i) ASSERT_EQ(item->PixData[i], ((i * 37 + 11) & 0xFF) << 8) << i;
    EXPECT_EQ(item->ImageSizeX, 100.0f);   // Angstrom to nm
    EXPECT_EQ(item->ImageLUT[17], 17);
    EXPECT_EQ(item->DataSource, 1u);
    EXPECT_EQ(item->BitsPerPixel, 16);   // set by the upgrade up to revision 103
    ExpectUpgradedImageAndErase(item);
}

TEST_F(OldRevisionFileTest, Revision100FileOfDeltaRowsWithTheOldShiftLoads)
{
    // Compression 1 up to revision 103: shift 1 + 7 = 8.
    Rec header = PlainOldRecord(100, 1, 8);
    const auto values = DeltaImageValues();
    DeltaStream stream;
    for (const auto& row : values) EncodeDeltaRow(row, stream);
    ASSERT_GT(stream.highLiterals, 0);
    ASSERT_GT(stream.lowLiterals, 0);
    ImageHeaderType* item = Load(header, stream.bytes, "rev100.img");
    ASSERT_NE(item, nullptr);
    for (int y = 0; y < kSide; ++y)
        for (int x = 0; x < kSide; ++x)
            ASSERT_EQ(item->PixData[y * kSide + x], values[y][x] << 8) << x << "," << y;
    EXPECT_EQ(item->BitsPerPixel, 16);   // set by the upgrade up to revision 103
    ExpectUpgradedImageAndErase(item);
}

TEST_F(OldRevisionFileTest, Revision103FileOf8BitPixelsKeepsItsDisplayTable)
{
    Rec header = PlainOldRecord(103, 0, 8);
    for (int i = 0; i < 256; ++i) header.b[at::ImageLUT + i] = static_cast<uint8_t>(255 - i);
    std::string pixels;
    for (int i = 0; i < kSide * kSide; ++i) pixels.push_back(static_cast<char>(255 - i));
    ImageHeaderType* item = Load(header, pixels, "rev103.img");
    ASSERT_NE(item, nullptr);
    for (int i = 0; i < kSide * kSide; ++i) ASSERT_EQ(item->PixData[i], (255 - i) << 8) << i;
    EXPECT_EQ(item->ImageLUT[0], 255);
    EXPECT_EQ(item->BitsPerPixel, 16);   // set by the upgrade up to revision 103
    ExpectUpgradedImageAndErase(item);
}

TEST_F(OldRevisionFileTest, Revision104FileOfDeltaRowsWithTheNewShiftLoads)
{
    // Compression 9 from revision 104 on: shift 9 - 1 = 8.
    Rec header = PlainOldRecord(104, 9, 16);
    const auto values = DeltaImageValues();
    DeltaStream stream;
    for (const auto& row : values) EncodeDeltaRow(row, stream);
    ImageHeaderType* item = Load(header, stream.bytes, "rev104.img");
    ASSERT_NE(item, nullptr);
    for (int y = 0; y < kSide; ++y)
        for (int x = 0; x < kSide; ++x)
            ASSERT_EQ(item->PixData[y * kSide + x], values[y][x] << 8) << x << "," << y;
    ExpectUpgradedImageAndErase(item);
}

TEST_F(OldRevisionFileTest, Revision300FileOfBilevelPixelsLoads)
{
    Rec header = PlainOldRecord(300, 16, 16);
    auto set = [](int i) { return (i % 3 == 0) || (i / kSide == 5); };
    std::string bits((kSide * kSide + 7) / 8, '\0');
    for (int i = 0; i < kSide * kSide; ++i)
        if (set(i)) bits[i / 8] = static_cast<char>(static_cast<uint8_t>(bits[i / 8]) | (1 << (i % 8)));
    ImageHeaderType* item = Load(header, bits, "rev300.img");
    ASSERT_NE(item, nullptr);
    for (int i = 0; i < kSide * kSide; ++i) ASSERT_EQ(item->PixData[i], set(i) ? 65535 : 0) << i;
    EXPECT_EQ(item->BiasVoltage2, FLT_MAX);
    ExpectUpgradedImageAndErase(item);
}

TEST_F(OldRevisionFileTest, Revision404FileOfDeltaRowsWithAShiftOf2Loads)
{
    // Compression 3 from revision 104 on: shift 2. Header of 1872 bytes.
    Rec header = PlainOldRecord(404, 3, 16);
    const auto values = DeltaImageValues();
    DeltaStream stream;
    for (const auto& row : values) EncodeDeltaRow(row, stream);
    ImageHeaderType* item = Load(header, stream.bytes, "rev404.img");
    ASSERT_NE(item, nullptr);
    for (int y = 0; y < kSide; ++y)
        for (int x = 0; x < kSide; ++x)
            ASSERT_EQ(item->PixData[y * kSide + x], values[y][x] << 2) << x << "," << y;
    // The colour planes were cut at 1872 and come back as the default table.
    Rec colours;
    SetDefaultRecordColours(colours.r());
    EXPECT_EQ(std::memcmp(item->LutRed, colours.b + at::LutRed, 768), 0);
    ExpectUpgradedImageAndErase(item);
}

TEST_F(OldRevisionFileTest, Revision405FileOf8BitPixelsLoads)
{
    Rec header = PlainOldRecord(405, 0, 8);
    header.Set<uint32_t>(at::ImType1, 1);
    header.Set<uint32_t>(at::DataSource, 1);
    header.Set<int32_t>(at::SubRevNo, 50);
    std::string pixels;
    for (int i = 0; i < kSide * kSide; ++i) pixels.push_back(static_cast<char>(i * 7));
    ImageHeaderType* item = Load(header, pixels, "rev405.img");
    ASSERT_NE(item, nullptr);
    for (int i = 0; i < kSide * kSide; ++i) ASSERT_EQ(item->PixData[i], ((i * 7) & 0xFF) << 8) << i;
    EXPECT_EQ(item->CreatedFileTime, FixedClockFileTime());
    EXPECT_EQ(item->ImageSizeX, 1000.0f);   // no Angstrom step from 405
    ExpectUpgradedImageAndErase(item);
}
