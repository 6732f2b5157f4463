// The measuring object: its life, its head, the markers' fill, the unit conversions.
#include "analysis/measure.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "display/display_param.h"
#include "display/placement.h"
#include "display/plot_spectrum.h"
#include "display/vfs.h"
#include "host/ap_callbacks.h"
#include "host/error_numbers.h"
#include "host/errors.h"
#include "mapping/cits.h"
#include "store/data_list.h"
#include "store/image_header.h"
#include "store/memory.h"
#include "store/units.h"

namespace {

CMeasure* g_measure = nullptr;

int CurrentFrameNumber() { return CurrentVFS ? CurrentVFS->VFSNo : -1; }

// The frame store a window of the host opens under `title`, or -1 when the host opened none.
int OpenNamedFrameStore(const char* title, int imageVFS)
{
    if (Ap.ap_OpenGraphWindow) Ap.ap_OpenGraphWindow(title);
    const int now = CurrentFrameNumber();
    return now != imageVFS ? now : -1;
}

void CloseNamedFrameStore(int* vfs)
{
    if (*vfs < 0) return;
    if (FindVFS(*vfs)) VFS_close_vfs(*vfs);
    *vfs = -1;
}

// The colour table entry of a marker in spectroscopy mode: eight distinct curve colours.
int32_t SpectrumColour(int32_t index)
{
    static const int32_t kColours[8] = {0x0000ff, 0x00c000, 0xff0000, 0x00c0c0,
                                        0xc000c0, 0xc0c000, 0x0080ff, 0x808080};
    return kColours[((index % 8) + 8) % 8];
}

} // namespace

CMeasure* MeasureObject()
{
    if (!g_measure) g_measure = new CMeasure();
    return g_measure;
}

void ResetMeasureState()
{
    delete g_measure;
    g_measure = nullptr;
}

void FreeMarker(MeasureMarkerType* m)
{
    if (!m) return;
    efree(m->Points);
    efree(m->SpecY);
    m->Points = nullptr;
    m->SpecY = nullptr;
    m->NoOfPoints = 0;
}

int MarkerFrameX(int x, int nx) { return nx > 0 ? x * kFrameWidth / nx + kFrameWidth / nx / 2 : 0; }
int MarkerFrameY(int y, int ny) { return ny > 0 ? y * kFrameHeight / ny + kFrameHeight / ny / 2 : 0; }

CMeasure::CMeasure() : wint_MeasureParamType{}
{
    hWnd = nullptr;
    mode = 1;
    CurrentMarker = -1;
    NoOfMarkers = 0;
    Markers = nullptr;
    ShowID = 1;
    ReplaceColour = 0;
    Word8 = 0;
    BaseMode = TV_BASE_ABOVE;
    BaseHeight = 0.0f;
    AutoYScale = 1;
    YLow = -3.0f;
    YHigh = 3.0f;
    YStep = 0.1f;
    DiffType = 0;
    SmoothPoints = 5;
    SpectrumMode = 8;
    PlotColour = 255;
    AveragedY = nullptr;
    SpectrumValid = 0;
    NextMarkerID = 1;
    ProfileVFS = -1;
    Spectroscopy = 0;
    Image = nullptr;
    MarkerMask = nullptr;
    IDMask = nullptr;
    MarkersOverlap = 0;
    SweepX = nullptr;
    SweepLow = SweepHigh = kNoStatistic;
    for (int i = 0; i < 5; ++i) YScaleLow[i] = YScaleHigh[i] = kNoStatistic;
    Nx = Ny = 0;
    ImageNo = 0;
    ImageVFS = -1;
    SpectrumVFS = -1;
}

CMeasure::~CMeasure()
{
    for (int i = 0; i < NoOfMarkers && Markers; ++i) FreeMarker(&Markers[i]);
    efree(Markers);
    Markers = nullptr;
    NoOfMarkers = 0;
    FreeMasks();
    efree(SweepX);
    efree(AveragedY);
    efree(LabelRects);
}

void CMeasure::FreeMasks()
{
    efree(MarkerMask);
    efree(IDMask);
    MarkerMask = nullptr;
    IDMask = nullptr;
}

int CMeasure::SetImages() const
{
    if (!Spectroscopy || !Image || !Image->CITSHeaderPtr) return -1;
    return Image->CITSHeaderPtr->ni;
}

void CMeasure::PostRedraw()
{
    ++PostedMessages;
    LastPostedMessage = TV_MEASURE_REDRAW_MESSAGE;
}

bool CMeasure::PeekUserActivity() { return UserActivityProbe && UserActivityProbe(UserActivityContext); }

int CMeasure::MeasureInitialise(bool spectroscopy, void* window)
{
    const int32_t savedSize = FSState.ImageDisplaySize;
    ImageHeaderType* image = CurrentItem;
    if (!image || !image->PixData || !CheckHeaderIsImageType(image)) {
        Error(ERR_NO_IMAGES);
        return 1;
    }
    if (spectroscopy && !image->CITSHeaderPtr) return 1;
    // 1.
    Image = image;
    Nx = image->nx;
    Ny = image->ny;
    ImageNo = static_cast<int32_t>(image->DataId);
    CurrentMarker = -1;
    hWnd = window;
    MarkersOverlap = 0;
    MarkerCalcRuns = 0;
    // 2.
    FreeMasks();
    const size_t pixels = static_cast<size_t>(Nx) * static_cast<size_t>(Ny);
    MarkerMask = static_cast<int16_t*>(ecalloc(pixels, sizeof(int16_t)));
    IDMask = static_cast<int16_t*>(ecalloc(pixels, sizeof(int16_t)));
    if (!MarkerMask || !IDMask) {
        FreeMasks();
        Image = nullptr;
        Nx = Ny = 0;
        Error(ERR_NO_MEMORY);
        return 1;
    }
    // 3.
    ImageVFS = CurrentFrameNumber();
    ProfileVFS = -1;
    if (Ap.ap_MarkVFSActive && ImageVFS >= 0) Ap.ap_MarkVFSActive(static_cast<int16_t>(ImageVFS), 1);
    // 4.
    Spectroscopy = spectroscopy ? 1 : 0;
    if (spectroscopy) {
        SpectrumValid = 0;
        const int ni = image->CITSHeaderPtr->ni;
        efree(AveragedY);
        efree(SweepX);
        AveragedY = static_cast<float*>(ecalloc(static_cast<size_t>(std::max(ni, 1)), sizeof(float)));
        SweepX = static_cast<float*>(ecalloc(static_cast<size_t>(std::max(ni, 1)), sizeof(float)));
        if (!AveragedY || !SweepX) {
            efree(AveragedY);
            efree(SweepX);
            AveragedY = SweepX = nullptr;
            FreeMasks();
            Image = nullptr;
            Nx = Ny = 0;
            Spectroscopy = 0;
            Error(ERR_NO_MEMORY);
            FSState.ImageDisplaySize = savedSize;
            return 1;
        }
        SpectrumVFS = OpenNamedFrameStore("Spectroscopy", ImageVFS);
        if (ImageVFS >= 0 && FindVFS(ImageVFS)) VFS_set_current_vfs(ImageVFS);
        for (int k = 0; k < ni; ++k) SweepX[k] = CITSEntry(image->CITSHeaderPtr, k)->voltage;
        GetCITSVoltageRange(image->CITSHeaderPtr, &SweepLow, &SweepHigh);
        for (int t = 0; t < 5; ++t) ResetYScale(t);
    }
    // 5.
    FSState.ImageDisplaySize = kFrameWidth;
    for (int c = 0; c < 4; ++c) {
        Number[c] = 0;
        Min[c] = Max[c] = Mean[c] = RMS[c] = Ra[c] = LenArea[c] = SurfLenArea[c] = VolCSA[c] = 0.0f;
    }
    for (int i = 0; i < NoOfMarkers && Markers; ++i) Markers[i].CalcValid = 0;
    SpectrumValid = 0;
    // 6.
    AreaStats whole;
    MarkerAreaCalcs(nullptr, true, Image, nullptr, nullptr, whole.Outputs());
    if (whole.count > 0) StoreColumn(TV_MEASURE_WHOLE, whole);
    // 7.
    if (ImageVFS >= 0 && FindVFS(ImageVFS)) {
        VFS_set_current_vfs(ImageVFS);
        DisplayImage(Image, 0, 0);
    }
    FSState.ImageDisplaySize = savedSize;
    return 0;
}

void CMeasure::StoreColumn(int column, const AreaStats& s)
{
    LenArea[column] = s.area;
    SurfLenArea[column] = s.surface;
    VolCSA[column] = s.volume;
    Mean[column] = s.mean;
    Min[column] = s.min;
    Max[column] = s.max;
    Ra[column] = s.ra;
    RMS[column] = s.rms;
}

void CMeasure::MeasureFinish()
{
    if (ProfileVFS >= 0) {
        CloseNamedFrameStore(&ProfileVFS);
        FSState.ImageDisplaySize = kFrameWidth;
    }
    CloseNamedFrameStore(&SpectrumVFS);
    if (Spectroscopy) {
        efree(SweepX);
        efree(AveragedY);
        SweepX = AveragedY = nullptr;
    }
    if (Ap.ap_MarkVFSActive && ImageVFS >= 0) Ap.ap_MarkVFSActive(static_cast<int16_t>(ImageVFS), 0);
    Nx = Ny = 0;
    Image = nullptr;
    FreeMasks();
    FSState.DisplayBusy = 0;
}

void CMeasure::CopyMeasureParamToDlg(wint_MeasureParamType* p)
{
    if (!p) return;
    DisplayImageWithMarkers();
    const int32_t keep = p->CurrentMarker;
    std::memcpy(p, static_cast<wint_MeasureParamType*>(this), sizeof(wint_MeasureParamType));
    p->CurrentMarker = keep;
}

void CMeasure::CopyMeasureParamFromDlg(const wint_MeasureParamType* p)
{
    if (!p) return;
    const bool baseChanged = p->BaseMode != BaseMode || p->BaseHeight != BaseHeight;
    if (baseChanged)
        for (int i = 0; i < p->NoOfMarkers && p->Markers; ++i) p->Markers[i].CalcValid = 0;
    std::memcpy(static_cast<wint_MeasureParamType*>(this), p, sizeof(wint_MeasureParamType));
    if (baseChanged && Image) {
        AreaStats whole;
        MarkerAreaCalcs(nullptr, true, Image, nullptr, nullptr, whole.Outputs());
        if (whole.count > 0) VolCSA[3] = whole.volume;
    }
    // The Y scale put in order.
    if (YLow > YHigh) {
        const float low = YHigh;
        YHigh = YLow;
        YLow = low;
    }
    if (PlotParam.LogAxisY && YLow <= 0.0f) {
        YLow = 0.01f;
        YHigh = 100.0f * YLow;
    }
    if (SmoothPoints % 2 == 0) ++SmoothPoints;
    SmoothPoints = static_cast<int16_t>(std::clamp<int>(SmoothPoints, 5, 25));
    YStep = std::max(YStep, (YHigh - YLow) / 1000.0f);
}

void CMeasure::InitMeasureMarkerType(MeasureMarkerType* m)
{
    if (!m) return;
    std::memset(m, 0, sizeof *m);
    m->ImageNo = ImageNo;
    m->ID = NextMarkerID++;
    m->Colour = SetImages() >= 0 ? SpectrumColour(m->ID - 1) : 255;
    std::snprintf(m->Name, sizeof m->Name, "%d", m->ID);
    const int ni = SetImages();
    if (ni > 0) m->SpecY = static_cast<float*>(ecalloc(static_cast<size_t>(ni), sizeof(float)));
    SpectrumValid = 0;
}

float CMeasure::GetZdata(POINTs p, bool physical) const
{
    if (!Image || !Image->PixData || p.x < 0 || p.y < 0 || p.x >= Nx || p.y >= Ny) return 0.0f;
    const uint16_t raw = Image->PixData[static_cast<size_t>(p.y) * static_cast<size_t>(Nx) + static_cast<size_t>(p.x)];
    return physical ? GetImageDataValue(0, raw, Image) : static_cast<float>(raw);
}

float CMeasure::Convert2UnitsFromNx(int32_t n) const
{
    if (!Image || Nx < 2) return 0.0f;
    const float v = static_cast<float>(n) / static_cast<float>(Nx - 1) * Image->ImageSizeX;
    return std::clamp(v, 0.0f, Image->ImageSizeX);
}

float CMeasure::Convert2UnitsFromNy(int32_t n) const
{
    if (!Image || Ny < 2) return 0.0f;
    const float v = static_cast<float>(n) / static_cast<float>(Ny - 1) * Image->ImageSizeY;
    return std::clamp(v, 0.0f, Image->ImageSizeY);
}

int32_t CMeasure::ConvertUnitsToNx(float v) const
{
    if (!Image || Image->ImageSizeX <= 0.0f) return 0;
    const double n = static_cast<double>(v) / Image->ImageSizeX * Nx;
    if (!(n >= 1.0)) return 0;
    return static_cast<int32_t>(std::min<double>(n, Nx - 1));
}

int32_t CMeasure::ConvertUnitsToNy(float v) const
{
    if (!Image || Image->ImageSizeY <= 0.0f) return 0;
    const double n = static_cast<double>(v) / Image->ImageSizeY * Ny;
    if (!(n >= 1.0)) return 0;
    return static_cast<int32_t>(std::min<double>(n, Ny - 1));
}

int CMeasure::DiffSpecType2Index(int32_t diffType) const
{
    if (diffType >= 0 && diffType <= 4) return diffType;
    ProgramError("DiffSpecType2Index(%d)", diffType);
    return 0;
}

void CMeasure::ResetYScale(int32_t diffType)
{
    const int k = DiffSpecType2Index(diffType);
    YScaleLow[k] = 0.0f;
    YScaleHigh[k] = 0.0f;
}

int32_t CMeasure::CountNoOfMarkers(const ImageHeaderType* image) const
{
    if (!image) return 0;
    int32_t count = 0;
    for (int i = 0; i < NoOfMarkers && Markers; ++i)
        if (Markers[i].ImageNo == static_cast<int32_t>(image->DataId)) ++count;
    return count;
}
