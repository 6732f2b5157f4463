#include "files/old_revisions.h"
#include "files/mapping_entry_sources.h"
#include "files/old_revision_tables.h"
#include "files/record_bytes.h"
#include "host/errors.h"
#include "platform/clock.h"
#include "store/image_header.h"
#include "store/memory.h"

#include <cfloat>
#include <cstddef>
#include <cstring>
#include <iterator>

namespace {

using namespace record_bytes;

// The record on its way through the chain.
struct Upgrade {
    ImageHeaderType* record;
    bool isSpectrum;
    float spectrumDivisor;
};

// Older than revision `rev`, sub-revision `sub`.
bool OlderThan(const ImageHeaderType* r, int rev, int sub)
{
    return r->RevNo < rev || (r->RevNo == rev && r->SubRevNo < sub);
}

// ---- Places that old layouts name by offset only -------------------------------------------

// Within View3DBlock (2280 to 2725).
constexpr size_t kView3DColour = 2448;          // u32
constexpr size_t kView3DWord178 = 2458;         // u32
constexpr size_t kView3DScaleA = 2462;          // f32
constexpr size_t kView3DScaleB = 2466;          // f32
constexpr size_t kView3DLight = 2470;           // f32
constexpr size_t kView3DSwitches = 2474;        // i16[3]
constexpr size_t kView3DWord200 = 2480;         // u32
constexpr size_t kView3DFloat28 = 2308;         // f32
constexpr size_t kView3DFloat32 = 2312;         // f32
static_assert(kView3DColour == offsetof(ImageHeaderType, View3DBlock) + 168);
static_assert(kView3DWord200 == offsetof(ImageHeaderType, View3DBlock) + 200);

// The 3-D block of the oldest 4xx layouts stood 146 bytes earlier, inside the profile block.
constexpr size_t kOldView3DBlock = 2134;
constexpr size_t kView3DBytes = sizeof(ImageHeaderType::View3DBlock);

// Within ProfileBlock (2026 to 2279), the head of the profile record as stored with the image:
// behind the first rectangle (four i32 words at its start) come five profile lines of four
// 16-bit coordinate words each, their five 16-bit show flags, and three more 16-bit words.
constexpr size_t kProfileLines = 2026 + 16;     // 5 x 4 x i16
constexpr size_t kProfileLineBytes = 5 * 4 * 2;
constexpr size_t kProfileFlags = kProfileLines + kProfileLineBytes;   // 5 x i16
constexpr size_t kProfileMore = kProfileFlags + 5 * 2;                // 3 x i16
constexpr size_t kProfileWordsA = 2102;         // 3 x i16
constexpr size_t kProfileWordsB = 2154;         // 3 x i16
constexpr size_t kProfileByte = 2160;           // u8
constexpr size_t kProfileWord201 = 2227;        // i16
static_assert(kProfileMore + 3 * 2 <= kProfileWordsA);

// Blocks of revisions below 520/37 that moved when 4 bytes were put in at 2910.
constexpr size_t kOldTemperatureBlock = 2910, kTemperatureBlock = 2914, kTemperatureBytes = 32;
constexpr size_t kOldAfmSignalBlock = 2642, kAfmSignalBlock = 2946, kAfmSignalBytes = 26;
constexpr size_t kOldTwistBlock = 2968, kTwistBlock = 2972, kTwistBytes = 62;
static_assert(kTemperatureBlock == offsetof(ImageHeaderType, TempEnable));
static_assert(kAfmSignalBlock == offsetof(ImageHeaderType, AFMSignalEnable));
static_assert(kTwistBlock == offsetof(ImageHeaderType, TwistForceOn));

// LMC thresholds: 62 bytes from LMCThreshold1On up to the cross section block.
constexpr size_t kThresholdBlock = 3246, kThresholdBytes = 62;
// Cross section block: 84 bytes from CrossSectionTopo up to the hit data flag.
constexpr size_t kCrossSectionBlock = 3308, kCrossSectionBytes = 84;
static_assert(kThresholdBlock == offsetof(ImageHeaderType, LMCThreshold1On));
static_assert(kCrossSectionBlock == offsetof(ImageHeaderType, CrossSectionTopo));
static_assert(kThresholdBlock + kThresholdBytes == kCrossSectionBlock);
static_assert(kCrossSectionBlock + kCrossSectionBytes == offsetof(ImageHeaderType, LMCThresholdHitDataPtr));

// The old spare words behind the hit data flag.
constexpr size_t kSpareFrom3396 = 3396, kSpareBytes = 32;
// The montage fields and the reserved bytes behind them.
constexpr size_t kMontageBlock = 28, kMontageBytes = 82 - 28;
static_assert(kMontageBlock == offsetof(ImageHeaderType, MontageShiftX));
static_assert(kMontageBlock + kMontageBytes == offsetof(ImageHeaderType, nx));
// Oscillator words from FeedbackPolarity to the reserved word at 3110, all -1 on upgrade.
constexpr size_t kOscWords = 3092, kOscWordBytes = 3112 - 3092;
static_assert(kOscWords == offsetof(ImageHeaderType, FeedbackPolarity));
// The tail of the record that no old revision used.
constexpr size_t kReservedTail = 3592, kReservedTailBytes = 6088 - 3592;
static_assert(kReservedTail == offsetof(ImageHeaderType, Reserved3592));

// ---- Small actions shared by steps and entry rows ------------------------------------------

void SetIdentityImageLUT(Upgrade& u)
{
    for (int i = 0; i < 256; ++i) u.record->ImageLUT[i] = static_cast<uint8_t>(i);
}

void SetSixteenBitsPerPixel(Upgrade& u) { u.record->BitsPerPixel = 16; }

void ZeroScanSpeeds(Upgrade& u)
{
    u.record->ScanSpeedX = 0.0f;
    u.record->ScanSpeedY = 0.0f;
}

void ClearOldBlockFlagAndTail(Upgrade& u)
{
    u.record->OldBlockFlag = 0;
    Zero<kReservedTail, kReservedTailBytes>(u.record);
}

// The colour table and the class defaults that every record below 405 needs: its colour
// planes were cut at byte 1872 on reading, and its class and source were never stored.
void InstallColoursAndClassDefaults(Upgrade& u)
{
    SetDefaultRecordColours(u.record);
    u.record->ImType1 = u.isSpectrum ? IMTYPE_SPECTRUM : IMTYPE_IMAGE;
    u.record->DataSource = 1;
}

void ClearRouteEnd(Upgrade& u)
{
    u.record->RouteEndX = -1;
    u.record->RouteEndY = -1;
}

void ClearSpareFrom3396(Upgrade& u) { Zero<kSpareFrom3396, kSpareBytes>(u.record); }

void SetView3DDefaults(Upgrade& u) { DefaultView3DBlock(u.record->View3DBlock); }

void SetDisplayDefaults(Upgrade& u)
{
    u.record->Brightness = 0.0f;
    u.record->Contrast = 128.0f;
}

// The source words of the mapping's image entries.
void ChangeEntrySources(Upgrade& u, uint32_t (*change)(uint32_t word, const Upgrade& u))
{
    struct Visit {
        Upgrade* upgrade;
        uint32_t (*change)(uint32_t, const Upgrade&);
    } visit{&u, change};
    ForEachMappingSourceWord(
        u.record,
        [](uint32_t* word, void* context) {
            auto* v = static_cast<Visit*>(context);
            *word = v->change(*word, *v->upgrade);
        },
        &visit);
}

// ---- The steps, in chain order -------------------------------------------------------------

// The display table and the pixel depth in memory.
void ResetLookUpTableAndDepth(Upgrade& u)
{
    SetIdentityImageLUT(u);
    SetSixteenBitsPerPixel(u);
}

// The image types of the first releases.
void MapOldImageTypes(Upgrade& u)
{
    u.record->BiasVoltage2 = FLT_MAX;
    u.record->OldImageType = UpgradedOldImageType(u.record->OldImageType, u.isSpectrum);
}

// Sizes, and the heights of height data, from Angstrom to nm.
void ConvertAngstromToNm(Upgrade& u)
{
    ImageHeaderType* r = u.record;
    r->ImageSizeX /= 10.0f;
    r->ImageSizeY /= 10.0f;
    const uint8_t type = r->OldImageType;
    if (type == 0 || type == 6 || type == 13 || type == 15) {
        r->Zlo /= 10.0f;
        r->Zhi /= 10.0f;
    }
    if (type == 6 || type == 13 || type == 15) u.spectrumDivisor = 0.1f;
    r->STSPosX = -1;
    r->STSPosY = -1;
    ZeroScanSpeeds(u);
}

// The acquisition mode and source, and the scan parameters that were not recorded.
void SetAcquisitionDefaults(Upgrade& u)
{
    ImageHeaderType* r = u.record;
    r->OldGainX = 1.0f;
    r->OldOffsetX = 0.0f;
    r->OldGainY = 1.0f;
    r->OldOffsetY = 0.0f;
    std::memset(r->Reserved758, 0, sizeof r->Reserved758);
    r->ScanMode = 2;
    if (u.isSpectrum) {
        if (auto mode = SpectrumAcqModeFromType(static_cast<int>(r->OldImageType) - 6)) {
            r->AcqMode = *mode;
        } else {
            r->AcqMode = 12;
            r->OldImageType = 12;
        }
    } else {
        r->AcqMode = ImageAcqModeFromWidth(r->nx);
    }
    r->OldAdcSrc = OldAdcSrcFromType(r->OldImageType);
    r->ClockSpeed = kNotRecorded;
    r->ImageAngle = kNotRecorded;
    r->FeedbackFilter = kNotRecorded;
    r->ZFilter = kNotRecorded;
    r->PreampFilter = kNotRecorded;
    r->PreampGain = kNotRecorded;
    r->LoopGain = -32768;
    r->ImageOffsetX = kNotRecorded;
    r->ImageOffsetY = kNotRecorded;
    for (int i = 0; i < 5; ++i) r->ReservedParam[i] = kNotRecorded;
    ClearOldBlockFlagAndTail(u);
}

// The file name field of the first layout, and the oscillator words it did not have.
void MoveFileNameAndClearOscillator(Upgrade& u)
{
    ImageHeaderType* r = u.record;
    const size_t nameLength = strnlen(r->OldFileName, sizeof r->OldFileName);
    std::memcpy(r->FileName, r->OldFileName, nameLength);
    r->FileName[nameLength] = '\0';
    std::memset(r->OldFileName, 0, sizeof r->OldFileName);
    r->OldAdcSel = static_cast<uint32_t>(static_cast<int32_t>(r->OldAdcSrc));
    Zero<1112, 8>(r);      // reserved word, OldOscFrequency
    Zero<1120, 6>(r);      // OldLowPass, OldHighPass, reserved word
    r->OldRmsDcOutput = 0;
    Zero<1126, 4>(r);      // OldOscEnable, reserved word
    r->AFMMode = 1;
    Zero<1138, 8>(r);
    SetDefaultRecordColours(r);
    r->OldParamA = 1;
    r->MFMFlag = 1;
    r->SubRevNo = -1;
}

uint32_t LinearOrLogCurrent(uint32_t source, const Upgrade& u)
{
    if (source != 2) return source;
    return u.record->OldAdcSel == 8 ? 8 : 4;
}

// The class of the item and what its values are, from the old image type.
void ClassifyItemAndSource(Upgrade& u)
{
    InstallColoursAndClassDefaults(u);
    ImageHeaderType* r = u.record;
    if (!OlderThan(r, 405, 47)) return;
    const int type = r->OldImageType;
    if (auto itemClass = ImType1FromType(type)) {
        r->ImType1 = *itemClass;
    } else {
        ProgramError("UpdateOldImageHeader rev=%d imtype=%d", r->RevNo, type);
        r->ImType1 = u.isSpectrum ? IMTYPE_SPECTRUM : IMTYPE_IMAGE;
    }
    if (r->OldAdcSrc == 0) r->OldAdcSrc = 1;
    if (r->CITSHeader) r->AcqMode = 11;
    DataSourceRule source = DataSourceFromType(type);
    if (source.kind == DataSourceRule::Value)
        r->DataSource = source.value;
    else if (source.kind == DataSourceRule::FromOldAdcSrc)
        r->DataSource = AdcSrc2DataSource(static_cast<uint32_t>(static_cast<int32_t>(r->OldAdcSrc)));
    r->OldAdcSrc = static_cast<int16_t>(LinearOrLogCurrent(static_cast<uint32_t>(static_cast<int32_t>(r->OldAdcSrc)), u));
    ChangeEntrySources(u, LinearOrLogCurrent);
}

// How the item opens, its file times, and the profile lines.
void StampTimesAndClearProfiles(Upgrade& u)
{
    ImageHeaderType* r = u.record;
    r->DisplayMode = 1;
    if (OlderThan(r, 406, 1)) {
        const uint64_t now = LocalTimeToFileTime(GetLocalTime());
        r->CreatedFileTime = now;
        r->SavedFileTime = now;
    }
    Zero<kProfileLines, kProfileLineBytes>(r);
    Zero<kProfileFlags, 5 * 2>(r);
    Zero<kProfileMore, 3 * 2>(r);
}

// The 3-D and profile blocks through their sub-revisions, the data type words, the mapping
// type and the loop gain code.
void UpgradeDisplayBlocks(Upgrade& u)
{
    ImageHeaderType* r = u.record;
    if (OlderThan(r, 407, 1)) SetView3DDefaults(u);
    const int sub = r->SubRevNo;
    if (sub < 2) {
        Move<kOldView3DBlock, offsetof(ImageHeaderType, View3DBlock), kView3DBytes>(r);
        Zero<kOldView3DBlock, 20>(r);
    }
    if (sub < 3) Put<uint32_t, kView3DWord178>(r, 0);
    if (sub < 7) {
        Put<uint32_t, kView3DWord178>(r, 0);
        Put<uint32_t, kView3DColour>(r, 0xFFFFFF);
        Put<float, kView3DScaleA>(r, 0.75f);
    }
    if (sub < 11) {
        Put<float, kView3DLight>(r, 0.3f);
        Put<float, kView3DScaleB>(r, 0.75f);
        SetDisplayDefaults(u);
    }
    if (sub < 18) Zero<offsetof(ImageHeaderType, ScanRevNo), 6>(r);
    if (sub < 23) {
        Put<int16_t, kView3DSwitches>(r, 1);
        Put<int16_t, kView3DSwitches + 2>(r, 0);
        Put<int16_t, kView3DSwitches + 4>(r, 1);
        Put<int16_t, kProfileWordsA>(r, 1);
        Put<int16_t, kProfileWordsA + 2>(r, 1);
        Put<int16_t, kProfileWordsA + 4>(r, 1);
        Put<int16_t, kProfileWordsB>(r, 1);
        Put<int16_t, kProfileWordsB + 2>(r, 1);
        Put<int16_t, kProfileWordsB + 4>(r, 1);
    }
    if (sub < 24) {
        r->AdcSrc = static_cast<uint32_t>(static_cast<int32_t>(r->OldAdcSrc));
        r->OldLapFlag = 1;
        Move<offsetof(ImageHeaderType, OldDataKind), offsetof(ImageHeaderType, ExtractX1), 8>(r);
        r->DataType = r->OldDataKind;
        r->AdcOffset = static_cast<uint32_t>(static_cast<int32_t>(r->OldAdcOffset));
        r->AdcGain = r->OldAdcGain;
        r->IDivider = r->OldIDivider;
    }
    if (sub < 25) Put<uint8_t, kProfileByte>(r, 1);
    if (auto mapType = MapTypeFromAcqMode(static_cast<int64_t>(r->AcqMode) - 10)) r->MapType = *mapType;
    r->LoopGain = LoopGainFromCode(r->LoopGain);
    SetView3DDefaults(u);
    SetDisplayDefaults(u);
    r->Gamma = 1.0f;
}

uint32_t RecodeBits(uint32_t word, const Upgrade&) { return NewBitCode(word); }

// The data type and source words get the bit codes of revision 500.
void RecodeSourceBits(Upgrade& u)
{
    ImageHeaderType* r = u.record;
    if (!OlderThan(r, 500, 20)) return;
    r->DataType = NewBitCode(r->DataType);
    r->AdcSrc = NewBitCode(r->AdcSrc);
    ChangeEntrySources(u, RecodeBits);
    r->Gamma = 1.0f;
    Put<int16_t, kProfileWord201>(r, 0);
}

// Attached spectra did not exist yet; nor did scan routes.
void DetachSpectraAndRoutes(Upgrade& u)
{
    ImageHeaderType* r = u.record;
    if (OlderThan(r, 500, 29)) {
        r->nSPSRefData = 0;
        r->SPSRefData = 0;
        r->SPSOwnerId = -1;
    }
    ClearRouteEnd(u);
}

// The switches of the lock-in, temperature and AFM signal blocks.
void ClearLockInTempAndAfmSwitches(Upgrade& u)
{
    ImageHeaderType* r = u.record;
    r->ScanDirection = 0;
    r->Reserved2776 = 0;
    r->LIAEnable = 0;
    r->TempEnable = 0;
    r->AFMSignalEnable = 0;
    r->AFMConversion = 0.0;
    r->CantileverAmplitude = 0.0;
    r->StdFrequencySignal = 0.0;
}

// The temperature, AFM signal and twist blocks to their present places, and the LMC
// thresholds of the records that had none.
void MoveTemperatureAndAfmBlocks(Upgrade& u)
{
    ImageHeaderType* r = u.record;
    if (OlderThan(r, 520, 10)) Put<uint32_t, kView3DWord200>(r, 1);
    if (r->SubRevNo < 37) {
        // Each block moves as it stood before the move: the twist block first, since the AFM
        // signal block lands on its first bytes.
        Move<kOldTwistBlock, kTwistBlock, kTwistBytes>(r);
        Move<kOldAfmSignalBlock, kAfmSignalBlock, kAfmSignalBytes>(r);
        Move<kOldTemperatureBlock, kTemperatureBlock, kTemperatureBytes>(r);
        r->Reserved2910 = 0;
    }
    if (r->SubRevNo < 21) {
        Zero<kThresholdBlock, kThresholdBytes>(r);
        r->LMCMode = 0;
    }
}

// The oscillator fields of the present layout, from the old ones.
void FillOscillatorFields(Upgrade& u)
{
    ImageHeaderType* r = u.record;
    if (r->AcqMode == 21 && r->nx == 2048) r->OldLapFlag = 1;
    r->CenterFrequency = (r->AFMMode == 4 ? r->OldCenterFreq : static_cast<double>(r->OldOscFrequency)) / 1000.0;
    if (auto range = DynamicRangeFromCode(r->OldDynRange)) r->DynamicRange = *range;
    r->OutputAmp = r->OldOutputAmp;
    r->PhaseShifter = r->OldPhaseShift;
    r->PhasePolarity = static_cast<int16_t>(r->OldPhasePolarity);
    r->PllExcitation = static_cast<int16_t>(r->OldPllExcitation);
    r->AddOsc = static_cast<int16_t>(r->OldAddOsc);
    r->RmsFilter = static_cast<int16_t>(r->OldRmsFilter);
    r->PllLoopGain = static_cast<int16_t>(r->OldLoopGain2);
    r->BeatNoise = static_cast<int16_t>(r->OldBeatNoise);
    r->PeakFrequency = r->OldPeakFreq;
    r->QFactor = r->OldQFactor;
    r->LowPassFilter = static_cast<int16_t>(r->OldLowPass);
    r->HighPassFilter = static_cast<int16_t>(r->OldHighPass);
    r->OscEnable = static_cast<int16_t>(r->OldOscEnable);
    r->RmsDcOutput = static_cast<int16_t>(r->OldRmsDcOutput);
    r->LapFlag = static_cast<int16_t>(r->OldLapFlag);
    r->NewOscBlock = 0;
    Fill<kOscWords, kOscWordBytes>(r, 0xFF);
    r->BandPassFilter = -1;
    r->DynamicRangeCode = -1;
    r->AgcGain = -1;
    r->LagLeadIndex = -1;
    r->PhaseDetectorGain = -1.0f;
    r->AgcReference = -1.0;
}

// The curve fit results.
void ClearCurveFit(Upgrade& u)
{
    ImageHeaderType* r = u.record;
    r->FitFrequency = 0.0;
    r->FitSpringConstant = 0.0;
    r->FitQ = 0.0;
    r->FitNoise = 0.0;
    r->FitConversion = 0.0;
    r->FitTemperature = 0.0;
    r->BiasSelect = 0;
}

// The LMC thresholds of sub-revisions before 18.
void ClearLmcThresholds(Upgrade& u)
{
    ImageHeaderType* r = u.record;
    if (r->SubRevNo >= 18) return;
    Zero<kThresholdBlock, kThresholdBytes>(r);
    r->LMCThreshold1Dir = 3;
    r->LMCThreshold2Dir = 3;
}

// The cross section block and the hit data of records that had neither.
void ClearCrossSectionBlock(Upgrade& u)
{
    ImageHeaderType* r = u.record;
    const bool hasBlock = r->RevNo == 603 && r->SubRevNo >= 18;
    if (OlderThan(r, 605, 5) && !hasBlock) {
        Zero<kCrossSectionBlock, kCrossSectionBytes>(r);
        FreeHitData(r);   // the stored flag and any block read for it
    }
    ClearSpareFrom3396(u);
}

// The sweep type, the mapping display word, and the montage block.
void SetSweepTypeAndMontage(Upgrade& u)
{
    ImageHeaderType* r = u.record;
    if (r->LMCSweepType == 0) r->LMCSweepType = 1;
    if (r->RevNo == 700) {
        if (r->SubRevNo < 7) {
            r->CITSDisplayOption = 0;
            r->Reserved3332 = 0;
        }
        if (r->SubRevNo >= 13 && r->SubRevNo <= 19 && Get<float, kView3DFloat28>(r) == 0.0f &&
            Get<float, kView3DFloat32>(r) == 0.0f)
            SetView3DDefaults(u);
    }
    if (OlderThan(r, 700, 20)) Zero<kMontageBlock, kMontageBytes>(r);
}

// Finally: the height range of old topography mappings starts at 0; the record is current.
void FinishRevision(Upgrade& u)
{
    ImageHeaderType* r = u.record;
    if (OlderThan(r, 700, 36) && r->DataSource == 1 && r->AcqMode == 11) {
        r->Zhi = r->Zhi - r->Zlo;
        r->Zlo = 0.0f;
    }
    r->RevNo = kCurrentRevision;
    r->SubRevNo = kCurrentSubRevision;
}

// ---- The chain and its entry rows ----------------------------------------------------------

using Action = void (*)(Upgrade&);

enum Step {
    LookUpTable, ImageTypes, AngstromToNm, AcquisitionDefaults, FileNameAndOscillatorWords, ItemClassAndSource,
    TimesAndProfiles, DisplayBlocks, SourceBits, SpectraAndRoutes, SignalSwitches, BlockMoves, OscillatorFields,
    CurveFit, LmcThresholds, CrossSection, SweepTypeAndMontage, Finish,
};

struct ChainStep {
    Step step;
    Action run;
};

// The chain, in the order the layout grew.
constexpr ChainStep kChain[] = {
    {LookUpTable, ResetLookUpTableAndDepth},
    {ImageTypes, MapOldImageTypes},
    {AngstromToNm, ConvertAngstromToNm},
    {AcquisitionDefaults, SetAcquisitionDefaults},
    {FileNameAndOscillatorWords, MoveFileNameAndClearOscillator},
    {ItemClassAndSource, ClassifyItemAndSource},
    {TimesAndProfiles, StampTimesAndClearProfiles},
    {DisplayBlocks, UpgradeDisplayBlocks},
    {SourceBits, RecodeSourceBits},
    {SpectraAndRoutes, DetachSpectraAndRoutes},
    {SignalSwitches, ClearLockInTempAndAfmSwitches},
    {BlockMoves, MoveTemperatureAndAfmBlocks},
    {OscillatorFields, FillOscillatorFields},
    {CurveFit, ClearCurveFit},
    {LmcThresholds, ClearLmcThresholds},
    {CrossSection, ClearCrossSectionBlock},
    {SweepTypeAndMontage, SetSweepTypeAndMontage},
    {Finish, FinishRevision},
};

constexpr bool ChainInStepOrder()
{
    for (size_t i = 0; i < std::size(kChain); ++i)
        if (kChain[i].step != static_cast<Step>(i)) return false;
    return std::size(kChain) == Finish + 1;
}
static_assert(ChainInStepOrder(), "every step once, in the order of the enumeration");

struct EntryRow {
    int first;          // RevNo range, inclusive
    int last;
    Action before;      // an action of the row's own before the chain, or null
    Step start;
};

constexpr EntryRow kEntryRows[] = {
    {0, 0, nullptr, LookUpTable},
    {100, 102, nullptr, LookUpTable},
    {103, 103, SetSixteenBitsPerPixel, ImageTypes},         // the pixel depth, not the display table
    {104, 105, nullptr, ImageTypes},
    {200, 200, nullptr, AngstromToNm},
    {201, 204, ZeroScanSpeeds, AcquisitionDefaults},
    {205, 206, nullptr, AcquisitionDefaults},
    {300, 300, nullptr, ImageTypes},
    {301, 303, ClearOldBlockFlagAndTail, FileNameAndOscillatorWords},
    {304, 306, nullptr, FileNameAndOscillatorWords},
    {307, 310, nullptr, ItemClassAndSource},
    {400, 400, nullptr, ItemClassAndSource},
    {401, 404, InstallColoursAndClassDefaults, TimesAndProfiles},
    {405, 405, nullptr, TimesAndProfiles},
    {406, 406, nullptr, DisplayBlocks},
    {407, 407, nullptr, SourceBits},
    {500, 500, nullptr, SpectraAndRoutes},
    {501, 501, ClearRouteEnd, SignalSwitches},
    {510, 510, ClearRouteEnd, SignalSwitches},
    {511, 511, nullptr, SignalSwitches},
    {520, 520, nullptr, BlockMoves},
    {600, 600, nullptr, CurveFit},
    {603, 603, nullptr, LmcThresholds},
    {604, 605, nullptr, CrossSection},
    {606, 607, ClearSpareFrom3396, SweepTypeAndMontage},
    {700, 700, nullptr, SweepTypeAndMontage},
};

const EntryRow* FindEntryRow(int revision)
{
    for (const EntryRow& row : kEntryRows)
        if (revision >= row.first && revision <= row.last) return &row;
    return nullptr;
}

} // namespace

float UpdateOldImageHeader(ImageHeaderType* record, int isSpectrum)
{
    if (!record) {
        ProgramError("UpdateOldImageHeader");
        return 1.0f;
    }
    const EntryRow* row = FindEntryRow(record->RevNo);
    if (!row) {
        ProgramError("UpdateOldImageHeader %d", record->RevNo);
        return 1.0f;
    }
    Upgrade u{record, isSpectrum != 0, 1.0f};
    if (row->before) row->before(u);
    for (size_t step = row->start; step < std::size(kChain); ++step) kChain[step].run(u);
    return u.spectrumDivisor;
}
