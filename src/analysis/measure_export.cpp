// The results of the measuring object as text, the spectra of the markers, their legend, and
// the profile item of a line marker.
#include "analysis/measure.h"

#include <algorithm>
#include <cstdint>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>

#include "analysis/profile.h"
#include "display/clip_line.h"
#include "display/cvfs.h"
#include "display/fonts.h"
#include "display/placement.h"
#include "display/plot.h"
#include "display/plot_spectrum.h"
#include "display/vfs.h"
#include "host/ap_callbacks.h"
#include "host/errors.h"
#include "platform/clock.h"
#include "platform/safe_replace.h"
#include "spectro/spectro.h"
#include "store/data_list.h"
#include "store/image_header.h"
#include "store/memory.h"
#include "store/value_text.h"

namespace {

constexpr const char* kRowFormatHead = "%-16s %16s %16s %16s %16s %16s %16s %16s %16s %16s\n";

void Append(std::string& out, const char* format, ...) __attribute__((format(printf, 2, 3)));
void Append(std::string& out, const char* format, ...)
{
    char line[512];
    va_list args;
    va_start(args, format);
    std::vsnprintf(line, sizeof line, format, args);
    va_end(args);
    out += line;
}

// A statistic as printed: "-" for one that does not exist.
std::string Statistic(float v)
{
    if (v == kNoStatistic || v == -kNoStatistic || !std::isfinite(v)) return "-";
    return Double2Str(v);
}

} // namespace

void AppendMeasureHead(std::string& out, const char* end)
{
    char line[512];
    std::snprintf(line, sizeof line, kRowFormatHead, "", "#", "Min", "Mean", "Max", "RMS", "Ra", "Length/Area",
                  "Surface Len/Area", "Volume/CSA");
    out += line;
    out += end;
}

// One table row: the name, the count, the eight statistics; `point` prints "-" for the
// surface and the volume, which a point has not.
void AppendMeasureRow(std::string& out, const char* name, int32_t number, const float v[8], bool point)
{
    Append(out, "%-16s ", name);
    Append(out, "%16d", number);
    for (int k = 0; k < 8; ++k) {
        const std::string text = point && k >= 6 ? std::string("-") : Statistic(v[k]);
        Append(out, " %16s", text.c_str());
    }
    out += "\n";
}

namespace {

const char* KindName(int32_t type)
{
    switch (type) {
    case TV_MARKER_POINT: return "Point: ";
    case TV_MARKER_LINE: return "Line: ";
    case TV_MARKER_RECT: return "Rectangle: ";
    case TV_MARKER_CIRCLE: return "Circle: ";
    case TV_MARKER_POLYGON: return "Polygon: ";
    default: return "";
    }
}

} // namespace

void AppendMeasureSummary(const CMeasure& ms, std::string& out)
{
    AppendMeasureHead(out, "");
    for (int c = 0; c < 4; ++c) {
        const float v[8] = {ms.Min[c], ms.Mean[c], ms.Max[c], ms.RMS[c], ms.Ra[c], ms.LenArea[c], ms.SurfLenArea[c],
                            ms.VolCSA[c]};
        AppendMeasureRow(out, kMeasureRowNames[c], ms.Number[c], v, c == TV_MEASURE_POINT);
    }
}

// The text table of the results; the file takes it whole or not at all.
int CMeasure::ExportToTXT(const char* file)
{
    if (!file || !*file) return 0;
    try {
        std::string out;
        Append(out, "Tavrin Version %.2lf(%d)\n", 3.1, 18);
        const LocalTime t = GetLocalTime();
        Append(out, "Measure data exported on  %d/%d/%4d at %02d:%02d:%02d\n\n", t.day, t.month, t.year, t.hour,
               t.minute, t.second);
        AppendMeasureSummary(*this, out);
        out += "\n\n";
        for (int i = 0; i < NoOfMarkers && Markers; ++i) {
            const MeasureMarkerType& m = Markers[i];
            if (!OnImage(m)) continue;
            char name[sizeof m.Name + 1] = {};
            std::memcpy(name, m.Name, sizeof m.Name);
            Append(out, "%s \"%s\" ", KindName(m.Type), name);
            for (int k = 0; k < m.NoOfPoints && m.Points; ++k)
                Append(out, "%s(%d,%d)", k ? " - " : "", m.Points[k].x, m.Points[k].y);
            out += "\n";
        }
        AppendMeasureHead(out, "\n");
        for (int i = 0; i < NoOfMarkers && Markers; ++i) {
            const MeasureMarkerType& m = Markers[i];
            if (!OnImage(m)) continue;
            char name[sizeof m.Name + 1] = {};
            std::memcpy(name, m.Name, sizeof m.Name);
            const float v[8] = {m.Min, m.Mean, m.Max, m.RMS, m.Ra, m.LenArea, m.SurfLenArea, m.VolCSA};
            AppendMeasureRow(out, name, m.ID, v, m.Type == TV_MARKER_POINT);
        }
        return FileReplaceWithBytes(file, out.data(), out.size()) == ReplaceOutcome::Done ? 1 : 0;
    } catch (...) {
        return 0;
    }
}

int CMeasure::DifferentiateSPS(const float* xIn, const float* yIn, float* xOut, float* yOut)
{
    const int ni = SetImages();
    if (ni <= 0 || !xIn || !yIn || !xOut || !yOut) return -1;
    switch (DiffType) {
    case 0:
        std::copy(xIn, xIn + ni, xOut);
        std::copy(yIn, yIn + ni, yOut);
        return 0;
    case 1: return DifferentiateData(1, 0, SmoothPoints, ni, xIn, yIn, xOut, yOut);
    case 2: return DifferentiateData(2, 0, SmoothPoints, ni, xIn, yIn, xOut, yOut);
    case 3: return DifferentiateData(1, 1, SmoothPoints, ni, xIn, yIn, xOut, yOut);
    case 4: return DifferentiateData(2, 1, SmoothPoints, ni, xIn, yIn, xOut, yOut);
    default:
        ProgramError("DifferentitateSPS(%d)", DiffType);
        return -1;
    }
}

int CMeasure::DisplaySpectra(int32_t* state, int32_t vfs, const char* title, bool redraw)
{
    const int ni = SetImages();
    if (ni <= 0 || !AveragedY || !SweepX) return 0;
    (void)redraw;
    // The average of the markers' spectra, weighted by their pixels.
    if (!SpectrumValid) {
        const uint32_t start = TickMilliseconds();
        int64_t total = 0;
        std::fill(AveragedY, AveragedY + ni, 0.0f);
        for (int i = 0; i < NoOfMarkers && Markers; ++i) {
            const MeasureMarkerType& m = Markers[i];
            if (state && *state == kCalcInterruptible) {
                if (PeekUserActivity()) {
                    *state = kCalcInterrupted;
                    return 1;
                }
                if (TickMilliseconds() - start >= kCalcGiveWayMs) *state = kCalcRunOn;
            }
            if (!OnImage(m) || !m.SpecY || m.SpecCount <= 0) continue;
            for (int k = 0; k < ni; ++k) AveragedY[k] += m.SpecY[k] * static_cast<float>(m.SpecCount);
            total += m.SpecCount;
        }
        if (total > 0)
            for (int k = 0; k < ni; ++k) AveragedY[k] /= static_cast<float>(total);
        SpectrumValid = 1;
    }
    if (vfs < 0 || !FindVFS(vfs)) return 0;
    float* work = static_cast<float*>(ecalloc(2 * static_cast<size_t>(ni), sizeof(float)));
    if (!work) return 0;
    const int index = DiffSpecType2Index(DiffType);
    float lo = AutoYScale ? YScaleLow[index] : YLow, hi = AutoYScale ? YScaleHigh[index] : YHigh;
    const bool fresh = lo == hi;
    // The Y range widened to hold every curve. A log axis whose low end is not positive is
    // drawn linear; on a log axis the curves take the decade factors of the plot.
    const int32_t logX = PlotParam.LogAxisX, logY = PlotParam.LogAxisY;
    for (int pass = 0; pass < 2; ++pass) {
        if (pass == 1) {
            VFS_set_current_vfs(vfs);
            float xmin = std::min(SweepLow, SweepHigh), xmax = std::max(SweepLow, SweepHigh);
            float ymin = lo, ymax = hi;
            PlotParam.LogAxisX = logX && xmin > 0 ? logX : 0;
            PlotParam.LogAxisY = logY && ymin > 0 ? logY : 0;
            ApplyLogScale(nullptr, nullptr, 0, PlotParam.LogAxisX, PlotParam.LogAxisY, &xmin, &xmax, &ymin, &ymax);
            DrawPlotFrame(xmin, xmax, ymin, ymax, "", title ? title : "", 0);
        }
        for (int i = 0; i < NoOfMarkers && Markers; ++i) {
            const MeasureMarkerType& m = Markers[i];
            if (!OnImage(m) || !m.SpecY || m.SpecCount <= 0) continue;
            if (DifferentiateSPS(SweepX, m.SpecY, work, work + ni) != 0) continue;
            if (pass == 0) {
                for (int k = 0; k < ni; ++k) {
                    if (fresh && i == 0 && k == 0) lo = hi = work[ni + k];
                    lo = std::min(lo, work[ni + k]);
                    hi = std::max(hi, work[ni + k]);
                }
            } else {
                for (int k = 0; k < ni; ++k) work[k] *= LogScaleX, work[ni + k] *= LogScaleY;
                PlotCurve(work, work + ni, ni, 1 + i % 8, 1 + i % 8, 1, 0, 0);
            }
        }
        if (pass == 0) {
            YScaleLow[index] = lo;
            YScaleHigh[index] = hi;
            if (lo == hi) hi = lo + 1.0f;
        }
    }
    PlotParam.LogAxisX = logX;
    PlotParam.LogAxisY = logY;
    LogScaleX = LogScaleY = 1.0f;
    efree(work);
    DisplayIDlist();
    if (ImageVFS >= 0 && FindVFS(ImageVFS)) VFS_set_current_vfs(ImageVFS);
    return 0;
}

void CMeasure::DisplayIDlist()
{
    CVfs* vfs = CurrentVfs();
    if (!vfs || vfs->ClientWidth < 768) return;
    BeginBatch();
    int left, top, right, bottom;
    FSGetClip(&left, &top, &right, &bottom);
    FSSetClip(0, 0, 767, 511);
    int line = 0;
    for (int i = 0; i < NoOfMarkers && Markers; ++i) {
        const MeasureMarkerType& m = Markers[i];
        if (!OnImage(m) || m.SpecCount <= 0) continue;
        char name[sizeof m.Name + 1] = {};
        std::memcpy(name, m.Name, sizeof m.Name);
        char text[96];
        std::snprintf(text, sizeof text, "ID%d:  %s", i + 1, name);
        ++line;
        vfs->AddText(kFrameWidth + 10, 20 * line, NamedFont(FONT_GENERAL), nullptr, text, TextAlignWord(0, 2, 1),
                     static_cast<uint32_t>(m.Colour), kWhite);
    }
    FSSetClip(left, top, right, bottom);
    EndBatch();
}

ImageHeaderType* CMeasure::ExtractLine(int32_t marker)
{
    if (!Image || marker < 0 || marker >= NoOfMarkers || !Markers) return nullptr;
    const MeasureMarkerType& m = Markers[marker];
    if (m.Type != TV_MARKER_LINE || m.NoOfPoints < 2 || !m.Points) return nullptr;
    const POINTs a = m.Points[0], b = m.Points[1];
    // The profile runs over the part of the line inside the image, as the line statistics do;
    // a line wholly outside gives no item. The point count fits the item's width.
    int32_t x1 = a.x, y1 = a.y, x2 = b.x, y2 = b.y;
    if (!ClipLineCohenSutherland(&x1, &y1, &x2, &y2, RECT{0, 0, Nx - 1, Ny - 1})) return nullptr;
    const double length = std::hypot(static_cast<double>(x2) - x1, static_cast<double>(y2) - y1);
    const int n = static_cast<int>(std::min(std::max(4.0, length), static_cast<double>(INT16_MAX)));
    ImageHeaderType* item = AllocateListItem(Image);
    if (!item) return nullptr;
    float* samples = AllocSpecMem(n);
    if (!samples) {
        UnlinkListItem(item);
        return nullptr;
    }
    ImageHeaderType* const next = item->Next;
    ImageHeaderType* const prev = item->Prev;
    const uint32_t id = item->DataId;
    std::memcpy(item, Image, TAVRIN_HEADER_STORED_BYTES);
    // The blocks of the image stay with it.
    item->FFTData = 0;
    item->CITSHeader = 0;
    item->SPSRefData = 0;
    item->LMCThresholdHitDataPtr = 0;
    item->Next = next;
    item->Prev = prev;
    item->DataId = id;
    item->nx = static_cast<int16_t>(n);
    item->ny = 1;
    std::memcpy(item->GeneralText[0], Image->Title, sizeof Image->Title);
    char extracted[80];
    std::snprintf(extracted, sizeof extracted, "Extracted profile (%d,%d)-(%d,%d)", a.x, a.y, b.x, b.y);
    std::snprintf(item->GeneralText[1], sizeof item->GeneralText[1], "%.39s", extracted);
    item->ImageSizeX = item->ImageSizeY = 0.0f;
    item->Zlo = item->Zhi = 0.0f;
    std::snprintf(item->FileName, sizeof item->FileName, "%s", "Software generated");
    item->ImType1 = 3;
    item->PixHandle = 1;
    item->PixData = reinterpret_cast<uint16_t*>(samples);
    ProfileLine(Image, static_cast<float>(x1), static_cast<float>(y1), static_cast<float>(x2), static_cast<float>(y2), 1,
                samples + n, samples, n, true, true);
    if (ProfileVFS < 0 && CurrentVFS) {
        const int before = CurrentVFS->VFSNo;
        if (Ap.ap_OpenGraphWindow) Ap.ap_OpenGraphWindow("Extract profile");
        ProfileVFS = CurrentVFS && CurrentVFS->VFSNo != before ? CurrentVFS->VFSNo : -1;
    }
    if (ProfileVFS >= 0 && FindVFS(ProfileVFS)) {
        VFS_set_current_vfs(ProfileVFS);
        DisplaySpectrum(item);
    }
    if (ImageVFS >= 0 && FindVFS(ImageVFS)) VFS_set_current_vfs(ImageVFS);
    return item;
}
