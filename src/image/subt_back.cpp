#include "image/subt_back.h"
#include "image/background_methods.h"
#include "image/fit.h"
#include "display/colour_param.h"
#include "display/contents_grid.h"
#include "display/default_tables.h"
#include "display/frame_commands.h"
#include "display/lut.h"
#include "display/palette.h"
#include "display/placement.h"
#include "display/vfs.h"
#include "host/ap_callbacks.h"
#include "host/errors.h"
#include "host/log.h"
#include "platform/platform_table.h"
#include "store/data_list.h"
#include "store/duplicate.h"
#include "store/history.h"
#include "store/image_header.h"
#include "store/memory.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <set>

namespace {

constexpr int kFirstLevel = 35, kLastLevel = 162;
constexpr int kLowMark = 1;     // blue: codes below the low threshold
constexpr int kHighMark = 4;    // red: codes above the high threshold
constexpr uint16_t kPreviewLow = 1024, kPreviewHigh = 64256;

int CurrentStore() { return CurrentVFS ? CurrentVFS->VFSNo : -1; }

void SelectStore(int number)
{
    if (number >= 0 && FindVFS(number) && CurrentStore() != number) VFS_set_current_vfs(number);
}

// A header copy of `source` outside the data list, with `bytesPerPixel` of pixel storage.
ImageHeaderType* BareItem(const ImageHeaderType* source, size_t bytesPerPixel)
{
    ImageHeaderType* item = AllocateHeader();
    if (!item) return nullptr;
    if (CopyImageHeader(item, source, 0) != 0) {
        FreeHeader(item);
        return nullptr;
    }
    item->FFTData = 0;
    item->FFTDataPtr = nullptr;
    item->CITSHeader = 0;
    item->CITSHeaderPtr = nullptr;
    item->SPSRefDataPtr = nullptr;
    item->Next = item->Prev = nullptr;
    MemHandleType pair{};
    if (!AllocateMem(static_cast<size_t>(source->nx) * static_cast<size_t>(source->ny), bytesPerPixel, &pair)) {
        FreeHeader(item);
        return nullptr;
    }
    item->PixHandle = pair.Handle;
    item->PixData = static_cast<uint16_t*>(pair.Ptr);
    return item;
}

void FreeBareItem(ImageHeaderType*& item)
{
    if (!item) return;
    if (item->PixData) FreeMem(item->PixHandle, item->PixData);
    item->PixData = nullptr;
    FreeHeader(item);
    item = nullptr;
}

// The stored fields a method changes, back to the source's before each run.
void TakeZRange(ImageHeaderType* item, const ImageHeaderType* source)
{
    if (!item) return;
    item->Zlo = source->Zlo;
    item->Zhi = source->Zhi;
    item->DataScale = source->DataScale;
}

// Shows a bare item at the cursor without the parameter text, then lets go of the frame
// region so that no grid keeps it.
void ShowBare(ImageHeaderType* item)
{
    DisplayImage(item, 0, 0);
    RemoveFromFS(item);
}

void PlaceAtOrigin()
{
    FSState.CursorX = FSState.CursorY = 0;
    FSState.RowHeight = 0;
}

} // namespace

CSubtBack::CSubtBack() : Param(DefaultSubtBckgrndParam()) {}

CSubtBack& SubtBack()
{
    // Constructed once and never destroyed: the record outlives every use of the tool.
    static CSubtBack* tool = new CSubtBack;
    return *tool;
}

void CSubtBack::FreeBuffers()
{
    FreeBareItem(PreviewItem);
    FreeBareItem(ResultItem);
    FreeBareItem(BackgroundItem);
    efree(Scratch);
    Scratch = nullptr;
    Source = nullptr;
}

int CSubtBack::Initialise(ImageHeaderType* source)
{
    if (Source || Scratch || PreviewItem || ResultItem || BackgroundItem || SourceStore != -1 || ResultStore != -1 ||
        SavedDisplaySize != 65535 || RegionOverlayOn != 0 || !source || !CheckHeaderIsImageType(source) ||
        !source->PixData || source->nx <= 0 || source->ny <= 0) {
        ProgramError("CSubtBack Initialise %d %d %d %d. Ptrs %p %p %p %p %p %p", SourceStore, ResultStore,
                     static_cast<int16_t>(SavedDisplaySize), RegionOverlayOn, static_cast<void*>(Source), Scratch,
                     static_cast<void*>(PreviewItem), static_cast<void*>(ResultItem),
                     static_cast<void*>(BackgroundItem), static_cast<void*>(source));
        return 1;
    }
    const size_t pixels = static_cast<size_t>(source->nx) * static_cast<size_t>(source->ny);
    Scratch = emalloc(pixels * 8);
    if (!Scratch) Error(ERR_NO_MEMORY);
    if (Scratch) PreviewItem = BareItem(source, 2);
    if (PreviewItem) ResultItem = BareItem(source, 2);
    if (ResultItem) BackgroundItem = BareItem(source, 8);
    if (!BackgroundItem) {
        FreeBuffers();
        return 1;
    }
    Source = source;
    for (int i = 0; i < 256; ++i) PreviewItem->ImageLUT[i] = static_cast<uint8_t>(i);
    std::memcpy(PreviewItem->PixData, source->PixData, pixels * sizeof(uint16_t));

    std::memset(SavedColours, 0, sizeof SavedColours);
    std::memset(ThresholdColours, 0, sizeof ThresholdColours);
    GetOutputLUT(CurrentOutputLUT(), SavedColours[0], SavedColours[1], SavedColours[2]);

    // The second store: the host opens one under a number of its choice while we wait.
    SourceStore = CurrentStore();
    std::set<int> before;
    for (VFSDataType* v = FirstVFS; v; v = v->Next) before.insert(v->VFSNo);
    Ap.ap_OpenGraphWindow(kSubtBackTitle);
    for (VFSDataType* v = FirstVFS; v; v = v->Next)
        if (!before.count(v->VFSNo)) ResultStore = v->VFSNo;
    if (ResultStore >= 0) {
        SelectStore(ResultStore);
        ClearFrameStore();
    }
    SelectStore(SourceStore);

    if (CurrentVFS) {
        SavedDisplaySize = static_cast<uint16_t>(FSState.ImageDisplaySize);
        SavedCursorX = FSState.CursorX;
        SavedCursorY = FSState.CursorY;
        FSState.ImageDisplaySize = 512;
        PlaceAtOrigin();
    }
    ShowThresholds();
    UpdateResult();
    return 0;
}

void CSubtBack::ShowThresholds()
{
    if (!IsOpen()) return;
    const bool ownColours = TrueRGB && ColourSource == kColourSourceImage;
    std::memset(ThresholdColours, 0, sizeof ThresholdColours);
    for (int i = kFirstLevel; i <= kLastLevel; ++i) {
        const int from = i == kFirstLevel ? kLowMark : i == kLastLevel ? kHighMark : i;
        if (ownColours) {
            ThresholdColours[0][i] = PreviewItem->LutRed[from];
            ThresholdColours[1][i] = PreviewItem->LutGreen[from];
            ThresholdColours[2][i] = PreviewItem->LutBlue[from];
        } else {
            for (int c = 0; c < 3; ++c) ThresholdColours[c][i] = SavedColours[c][from];
        }
    }
    for (int i = 0; i < kFixedColours; ++i) {
        uint8_t r, g, b;
        FixedColour(i, &r, &g, &b);
        ThresholdColours[0][i] = r;
        ThresholdColours[1][i] = g;
        ThresholdColours[2][i] = b;
    }
    int low = 0, high = 65535;
    if (Param.UseThreshold && Param.Method != TV_SUBT_PLANE3 && Param.Method != TV_SUBT_MANUAL) {
        low = Param.LowThreshold;
        high = Param.HighThreshold;
    }
    const size_t pixels = static_cast<size_t>(Source->nx) * static_cast<size_t>(Source->ny);
    for (size_t i = 0; i < pixels; ++i) {
        const int p = Source->PixData[i];
        uint16_t code;
        if (p < low) code = 0;
        else if (p > high) code = 65535;
        else code = static_cast<uint16_t>(p < kPreviewLow ? kPreviewLow : p > kPreviewHigh ? kPreviewHigh : p);
        PreviewItem->PixData[i] = code;
    }
    if (SourceStore < 0) return;
    SelectStore(SourceStore);
    SetOutputLUT(CurrentOutputLUT(), ThresholdColours[0], ThresholdColours[1], ThresholdColours[2]);
    const int32_t source = ColourSource;
    if (ColourSource == kColourSourceImage) ColourSource = 0;   // the frame store's table, forced
    PlaceAtOrigin();
    ShowBare(PreviewItem);
    ColourSource = source;
}

void CSubtBack::UpdateResult()
{
    if (!IsOpen()) return;
    TakeZRange(ResultItem, Source);
    TakeZRange(BackgroundItem, Source);
    const BackgroundJob job{Source, ResultItem, BackgroundItem, Scratch};
    const int status = BackgroundHistoryCode(Param.Method) ? RunBackgroundMethod(job, Param, false) : -2;
    if (ResultStore < 0) return;
    SelectStore(ResultStore);
    SetOutputLUT(CurrentOutputLUT(), SavedColours[0], SavedColours[1], SavedColours[2]);
    const int32_t size = FSState.ImageDisplaySize;
    if (status == -2) {
        ClearFrameStore();   // a method outside the table: an empty preview
        TwoImageLayout = false;
    } else if (Param.ShowBackground) {
        if (!TwoImageLayout) ClearFrameStore();
        FSState.ImageDisplaySize = 256;
        PlaceAtOrigin();
        ShowBare(ResultItem);
        ShowBare(BackgroundItem);
        TwoImageLayout = true;
    } else {
        FSState.ImageDisplaySize = 512;
        PlaceAtOrigin();
        ShowBare(ResultItem);
        TwoImageLayout = false;
    }
    FSState.ImageDisplaySize = size;
    SelectStore(SourceStore);
}

void CSubtBack::SwitchOverlay(bool on)
{
    SelectStore(SourceStore);
    int16_t r[6];
    RecordPoints(Param, offsetof(wint_SubtBckgrndParamType, RegionPoints), r);
    const double abx = r[2] - r[0], aby = r[3] - r[1], acx = r[4] - r[0], acy = r[5] - r[1];
    constexpr double kDegrees = 57.29577951308232;
    PlatformShowRegionOverlay(on, Param.RegionOption, r[0], r[1], std::hypot(abx, aby), std::hypot(acx, acy),
                              std::atan2(aby, abx) * kDegrees, std::atan2(acy, acx) * kDegrees);
    RegionOverlayOn = on ? 1 : 0;
}

void CSubtBack::GetParam(wint_SubtBckgrndParamType* param, int finish)
{
    if (!IsOpen()) Initialise(CurrentItem);
    if (param) {
        *param = Param;
        param->ManualSlopeX = std::clamp<int32_t>(param->ManualSlopeX, -65535, 65535);
        param->ManualSlopeY = std::clamp<int32_t>(param->ManualSlopeY, -65535, 65535);
    }
    if (finish != 0) {
        Finish(finish);
        return;
    }
    if (IsOpen() && WantsRegionOverlay(Param) != (RegionOverlayOn != 0)) SwitchOverlay(WantsRegionOverlay(Param));
}

uint32_t CSubtBack::SetParam(const wint_SubtBckgrndParamType* param)
{
    if (!IsOpen() || !param) {
        ProgramError("dl_SetSubtBckgrndParam not initialised");
        return 0;
    }
    const uint32_t bits = CompareSubtBckgrndParam(Param, *param);
    Param = *param;
    ClipSubtBckgrndParam(&Param);
    return bits;
}

void CSubtBack::UpdateImageDisplay(uint32_t flags)
{
    if (!IsOpen()) return;
    if (flags & TV_SUBT_THRESHOLDS) ShowThresholds();
    if (flags & TV_SUBT_RESULT) UpdateResult();
}

void CSubtBack::Finish(int finish)
{
    if (!IsOpen()) return;
    if (RegionOverlayOn) SwitchOverlay(false);
    ImageHeaderType* source = Source;
    FreeBuffers();
    CurrentItem = source;
    SelectStore(SourceStore);
    if (SourceStore >= 0 && FindVFS(SourceStore))
        SetOutputLUT(CurrentOutputLUT(), SavedColours[0], SavedColours[1], SavedColours[2]);
    Ap.ap_CloseGraphWindow();
    SelectStore(SourceStore);
    if (SavedDisplaySize != 65535 && CurrentVFS) {
        FSState.ImageDisplaySize = static_cast<int16_t>(SavedDisplaySize);
        FSState.CursorX = SavedCursorX;
        FSState.CursorY = SavedCursorY;
    }
    SavedDisplaySize = 65535;
    SourceStore = ResultStore = -1;
    TwoImageLayout = false;
    std::memset(SavedColours, 0, sizeof SavedColours);
    std::memset(ThresholdColours, 0, sizeof ThresholdColours);
    if (finish == TV_SUBT_APPLY && CurrentItem) Apply(CurrentItem);
}

void CSubtBack::Apply(ImageHeaderType* source)
{
    if (!BackgroundHistoryCode(Param.Method)) {
        ProgramError("Suibtrack background e=%d", static_cast<int>(Param.Method));
        return;
    }
    void* scratch = emalloc(static_cast<size_t>(source->nx) * static_cast<size_t>(source->ny) * 8);
    if (!scratch) {
        Error(ERR_NO_MEMORY);
        return;
    }
    ImageHeaderType* result = DuplicateForResult(source);
    if (!result) {
        efree(scratch);
        return;
    }
    const int status = RunBackgroundMethod(BackgroundJob{source, result, nullptr, scratch}, Param, true);
    efree(scratch);
    if (status != 0) {
        FreeResultItem(result);
        return;
    }
    AddImProc2List(result, BackgroundHistoryCode(Param.Method));
    Log("%s", BackgroundLogText(Param, result->Title));
    CurrentItem = result;
    DisplayImage(result, 0, 1);
}

void CSubtBack::Reset()
{
    FreeBuffers();
    Param = DefaultSubtBckgrndParam();
    SourceStore = ResultStore = -1;
    SavedDisplaySize = 65535;
    RegionOverlayOn = 0;
    TwoImageLayout = false;
    std::memset(SavedColours, 0, sizeof SavedColours);
    std::memset(ThresholdColours, 0, sizeof ThresholdColours);
}

void ResetSubtBackState() { SubtBack().Reset(); }
