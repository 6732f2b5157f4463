#include "analysis/multispec.h"
#include "display/frame_commands.h"
#include "display/palette.h"
#include "display/plot.h"
#include "display/plot_buffer.h"
#include "display/plot_spectrum.h"
#include "display/vfs.h"
#include "store/units.h"
#include "host/ap_callbacks.h"
#include "host/errors.h"
#include "host/prompts.h"
#include "host/text.h"
#include "platform/clock.h"
#include "spectro/spectro.h"
#include "store/data_list.h"
#include "store/image_header.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <map>
#include <utility>

namespace {

constexpr double kFileVersion = 3.1;
constexpr int kFileBuild = 18;
constexpr double kOldestVersion = 3.095;   // 3.10 with room for its decimal rounding
constexpr int32_t kNoPrimaryAcqMode = 12;
constexpr int32_t kNoPrimaryDataSource = 2;
constexpr int kLegendColour = 25;
constexpr int kLegendTop = 20;
constexpr int kLegendStep = 16;
constexpr int kLegendGap = 8;
constexpr int kLegendStrip = 256;
const char* const kWindowTitle = "Multi Spectra Display";
// Colours of new items by their place, red in the low byte.
constexpr uint32_t kItemColours[8] = {0x0000FF, 0x00A000, 0xFF0000, 0x00A0A0, 0xA000A0, 0xA0A000, 0x404040, 0x0080FF};

bool IsSpectrumItem(const ImageHeaderType* p) { return p && p->ImType1 != IMTYPE_IMAGE && p->PixData && p->nx > 0; }

// The turn of a two-way spectrum, 0 for a one-way one.
int TurnOf(const ImageHeaderType* p)
{
    return IsLapSpec(p) ? TurningPoint(reinterpret_cast<const float*>(p->PixData) + p->nx, p->nx) : 0;
}

void CopyText(char* dst, size_t size, const char* src, size_t srcSize)
{
    const size_t n = std::min(strnlen(src, srcSize), size - 1);
    std::memcpy(dst, src, n);
    dst[n] = '\0';
}

} // namespace

std::string MultiSpecFileName(const char* name)
{
    std::string path(name, strnlen(name, 260));
    const size_t slash = path.find_last_of("\\/");
    if (path.find('.', slash == std::string::npos ? 0 : slash) == std::string::npos) path += ".spc";
    std::string out;
    for (char c : path) {
        out += c;
        if (c == '\\') out += '\\';
    }
    return out;
}

namespace {

std::string UndoubleBackslashes(const std::string& text)
{
    std::string out;
    for (size_t i = 0; i < text.size(); ++i) {
        out += text[i];
        if (text[i] == '\\' && i + 1 < text.size() && text[i + 1] == '\\') ++i;
    }
    return out;
}

// The values of one item as the settings file holds them.
struct FileItem {
    std::string path;
    int selected = 0;
    uint32_t colour = 0;
    double shift[2] = {0, 0}, gain[2] = {1, 1};
};

} // namespace

const char* CurveDirection(const ImageHeaderType* p)
{
    const int n = p->nx;
    const float* x = reinterpret_cast<const float*>(p->PixData) + n;
    const int turn = TurnOf(p);
    const bool firstHigher = turn > 0 ? x[0] > x[turn] : x[0] > x[n - 1];
    if (p->AcqMode == 14 || p->AcqMode == 15) {
        if (turn > 0) return firstHigher ? "Out->In->Out" : "In->Out->In";
        return firstHigher ? "Out->In" : "In->Out";
    }
    if (p->AcqMode == 16) {
        if (turn > 0) return firstHigher ? "Left->Right->Left" : "Right->Left->Right";
        return firstHigher ? "Left->Right" : "Right->Left";
    }
    if (turn > 0) return firstHigher ? "Up->Down->Up" : "Down->Up->Down";
    return firstHigher ? "Up->Down" : "Down->Up";
}

CMultiSpecDisp::CMultiSpecDisp() { InitMultiSpecParamType(&param_); }

CMultiSpecDisp::~CMultiSpecDisp() = default;

void CMultiSpecDisp::Reset()
{
    InitMultiSpecParamType(&param_);
    items_.clear();
    oldItems_.clear();
    SyncParam();
    returnStore_ = -1;
    havePlot_ = false;
    markerData_.clear();
    for (bool& known : markerKnown_) known = false;
}

void CMultiSpecDisp::InitMultiSpecParamType(wint_MultiSpecParamType* p)
{
    *p = wint_MultiSpecParamType{};
    p->LockGain = 1;
    p->ShowAverages = 1;
    p->AutoAxisX = p->AutoAxisY = 1;
    const double axis[3] = {-3.0, 3.0, 0.1};
    std::memcpy(p->AxisX, axis, sizeof axis);
    std::memcpy(p->AxisY, axis, sizeof axis);
    p->DisplayUnitsX = p->DisplayUnitsY = 1;
    const double pos[4] = {128, 384, 128, 384};
    for (int i = 0; i < 4; ++i) {
        p->MarkerOn[i] = 1;
        p->MarkerPos[i] = pos[i];
        p->MarkerColour[i] = 255;
    }
    p->PrimaryID = -1;
    p->LockShift = 4;
}

void CMultiSpecDisp::SyncParam()
{
    param_.NoOfItems = static_cast<int32_t>(items_.size());
    param_.Items = items_.empty() ? nullptr : items_.data();
}

void CMultiSpecDisp::SetItemParams(MultiSpecParam_ItemType* item, const ImageHeaderType* p, bool second)
{
    item->ID = static_cast<int32_t>(p->DataId);
    CopyText(item->Title, sizeof item->Title, p->Title, sizeof p->Title);
    const char* name = p->FileName;
    const char* base = std::max(std::strrchr(name, '/'), std::strrchr(name, '\\'));
    std::string file = base ? base + 1 : name;
    const size_t dot = file.rfind('.');
    if (dot != std::string::npos) file.resize(dot);
    CopyText(item->File, sizeof item->File, file.c_str(), file.size() + 1);
    const std::string dir = base ? std::string(name, static_cast<size_t>(base - name)) : std::string();
    CopyText(item->Directory, sizeof item->Directory, dir.c_str(), dir.size() + 1);
    CopyText(item->Description, sizeof item->Description, p->GeneralText[0], sizeof p->GeneralText[0]);
    const char* direction = CurveDirection(p);
    CopyText(item->Direction, sizeof item->Direction, direction, std::strlen(direction) + 1);
    const int n = p->nx, turn = TurnOf(p);
    int from = 0;
    if (second) {
        item->Np = n - turn - 1;
        item->Ramp = 2;
        from = turn + 1;
    } else {
        item->Np = turn > 0 ? turn + 1 : n;
        item->Ramp = turn > 0 ? 1 : 0;
    }
    const float* y = reinterpret_cast<const float*>(p->PixData) + from;
    const float* x = reinterpret_cast<const float*>(p->PixData) + n + from;
    item->MinX = item->MinY = 3.4028235e38f;
    item->MaxX = item->MaxY = -3.4028235e38f;
    for (int i = 0; i < item->Np; ++i) {
        item->MinX = std::min(item->MinX, x[i]);
        item->MaxX = std::max(item->MaxX, x[i]);
        item->MinY = std::min(item->MinY, y[i]);
        item->MaxY = std::max(item->MaxY, y[i]);
    }
}

void CMultiSpecDisp::Initialise(int32_t id, int32_t lowest, int32_t highest)
{
    if (lowest == -1) lowest = 0;
    if (highest == -1) highest = 0x7FFFFFFF;
    if (!FindItemById(static_cast<uint32_t>(id)) && CurrentItem) id = static_cast<int32_t>(CurrentItem->DataId);
    if (!items_.empty()) oldItems_ = items_;
    items_.clear();
    // The plot and the strip of its legends on the right.
    Ap.ap_OpenPlotWindow(kMultiPlotSize + kLegendStrip, kMultiPlotSize, kWindowTitle);
    returnStore_ = CurrentVFS ? CurrentVFS->VFSNo : -1;
    int place = 0;
    for (ImageHeaderType* p = FirstItem; p; p = p->Next) {
        const int32_t number = static_cast<int32_t>(p->DataId);
        if (!IsSpectrumItem(p) || number < lowest || number > highest) continue;
        const int ramps = TurnOf(p) > 0 ? 2 : 1;
        for (int r = 0; r < ramps; ++r) {
            MultiSpecParam_ItemType item{};
            item.GainX = item.GainY = 1.0;
            item.Colour = kItemColours[place % 8];
            SetItemParams(&item, p, r == 1);
            for (const MultiSpecParam_ItemType& old : oldItems_)
                if (old.ID == number && (old.Ramp == 2) == (r == 1)) {
                    item.ShiftX = old.ShiftX, item.ShiftY = old.ShiftY, item.GainX = old.GainX, item.GainY = old.GainY;
                    item.Colour = old.Colour;
                    item.Selected = old.Selected;
                    break;
                }
            if (number == id) item.Selected = 1;
            items_.push_back(item);
        }
        ++place;
    }
    SyncParam();
    MatchSpectra(&param_);
}

void CMultiSpecDisp::Finish(bool release)
{
    if (release) {
        items_.clear();
        oldItems_.clear();
        SyncParam();
    }
    returnStore_ = -1;
}

bool CMultiSpecDisp::CopyParamsAndAllocateMem(wint_MultiSpecParamType* dst, const wint_MultiSpecParamType* src)
{
    if (!dst || !src) return false;
    std::vector<MultiSpecParam_ItemType> copy;
    try {
        if (src->Items && src->NoOfItems > 0) copy.assign(src->Items, src->Items + src->NoOfItems);
    } catch (const std::bad_alloc&) {
        Error(ERR_NO_MEMORY);
        return false;
    }
    *dst = *src;
    if (dst == &param_) {
        items_ = std::move(copy);
        SyncParam();
    }
    return true;
}

void CMultiSpecDisp::MatchSpectra(wint_MultiSpecParamType* p)
{
    const ImageHeaderType* primary = p->PrimaryID >= 0 ? FindItemById(static_cast<uint32_t>(p->PrimaryID)) : nullptr;
    refAcqMode_ = primary ? primary->AcqMode : kNoPrimaryAcqMode;
    refDataSource_ = primary ? primary->DataSource : kNoPrimaryDataSource;
    for (MultiSpecParam_ItemType& item : items_) {
        const ImageHeaderType* s = FindItemById(static_cast<uint32_t>(item.ID));
        item.Matched = s && !(p->MatchScanMode && s->AcqMode != refAcqMode_) &&
                       !(p->MatchYUnits && s->DataSource != refDataSource_);
    }
}

bool CMultiSpecDisp::SelectedForDisplay(const MultiSpecParam_ItemType& item) const { return item.Selected && item.Matched; }

double CMultiSpecDisp::ConvertX(int i, double x) const
{
    const MultiSpecParam_ItemType& item = items_.at(static_cast<size_t>(i));
    return (x + item.ShiftX) * item.GainX;
}

double CMultiSpecDisp::ConvertY(int i, double y) const
{
    const MultiSpecParam_ItemType& item = items_.at(static_cast<size_t>(i));
    return (y + item.ShiftY) * item.GainY;
}

int CMultiSpecDisp::GetIndexFromId(int32_t id) const
{
    for (size_t i = 0; i < items_.size(); ++i)
        if (items_[i].ID == id && items_[i].Ramp < 2) return static_cast<int>(i);
    return -1;
}

int CMultiSpecDisp::GetMax_np() const
{
    int most = 0;
    for (const MultiSpecParam_ItemType& item : items_) {
        const ImageHeaderType* s = FindItemById(static_cast<uint32_t>(item.ID));
        most = std::max({most, item.Np, s ? static_cast<int>(s->nx) : 0});
    }
    return most;
}

int32_t CMultiSpecDisp::GetLowestID(const wint_MultiSpecParamType* p) const
{
    if (!p || !p->Items || p->NoOfItems <= 0) return -1;
    int32_t low = p->Items[0].ID;
    for (int i = 1; i < p->NoOfItems; ++i) low = std::min(low, p->Items[i].ID);
    return low;
}

int32_t CMultiSpecDisp::GetHighestID(const wint_MultiSpecParamType* p) const
{
    if (!p || !p->Items || p->NoOfItems <= 0) return -1;
    int32_t high = p->Items[0].ID;
    for (int i = 1; i < p->NoOfItems; ++i) high = std::max(high, p->Items[i].ID);
    return high;
}

bool CMultiSpecDisp::GetSpec_Nx_Nx1_Ofs(int i, const ImageHeaderType** spectrum, int* from, int* count) const
{
    const MultiSpecParam_ItemType& item = items_.at(static_cast<size_t>(i));
    const ImageHeaderType* s = FindItemById(static_cast<uint32_t>(item.ID));
    if (!IsSpectrumItem(s)) return false;
    const int turn = TurnOf(s);
    *spectrum = s;
    *from = item.Ramp == 2 ? turn + 1 : 0;
    *count = item.Ramp == 2 ? s->nx - turn - 1 : item.Ramp == 1 ? turn + 1 : s->nx;
    *count = std::clamp(*count, 0, s->nx - *from);
    return true;
}

void CMultiSpecDisp::MultiPlot(int vfs)
{
    const SavedPlotSettings saved = SavePlotSettings();
    const PlotSettings kept = PlotParam;
    PlotParam.AutoAxes = static_cast<uint16_t>((param_.AutoAxisX ? 1 : 0) | (param_.AutoAxisY ? 2 : 0));
    PlotParam.MinX = static_cast<float>(param_.AxisX[0]);
    PlotParam.MaxX = static_cast<float>(param_.AxisX[1]);
    PlotParam.TickStepX = static_cast<float>(param_.AxisX[2]);
    PlotParam.MinY = static_cast<float>(param_.AxisY[0]);
    PlotParam.MaxY = static_cast<float>(param_.AxisY[1]);
    PlotParam.TickStepY = static_cast<float>(param_.AxisY[2]);
    auto restore = [&] {
        PlotParam = kept;
        RestorePlotSettings(saved);
    };
    const size_t most = static_cast<size_t>(std::max(GetMax_np(), 1));
    PlotBuffer px(most), py(most);
    if (!px.Ok() || !py.Ok()) {
        restore();
        return;
    }
    const int store = vfs >= 0 ? vfs : returnStore_;
    if (store >= 0) VFS_set_current_vfs(store);
    MatchSpectra(&param_);
    double xlo = 3.4e38, xhi = -3.4e38, ylo = 3.4e38, yhi = -3.4e38;
    bool any = false;
    for (int i = 0; i < ItemCount(); ++i) {
        const MultiSpecParam_ItemType& item = items_[static_cast<size_t>(i)];
        if (!SelectedForDisplay(item)) continue;
        any = true;
        xlo = std::min({xlo, ConvertX(i, item.MinX), ConvertX(i, item.MaxX)});
        xhi = std::max({xhi, ConvertX(i, item.MinX), ConvertX(i, item.MaxX)});
        ylo = std::min({ylo, ConvertY(i, item.MinY), ConvertY(i, item.MaxY)});
        yhi = std::max({yhi, ConvertY(i, item.MinY), ConvertY(i, item.MaxY)});
    }
    ClearFrameStore();
    const ImageHeaderType* primary = param_.PrimaryID >= 0 ? FindItemById(static_cast<uint32_t>(param_.PrimaryID)) : nullptr;
    if (!any || !primary) {
        restore();
        return;
    }
    if (xlo <= 0) PlotParam.LogAxisX = 0;
    if (ylo <= 0) PlotParam.LogAxisY = 0;
    if (PlotParam.LogAxisX) PlotParam.AutoAxes |= 1;
    if (PlotParam.LogAxisY) PlotParam.AutoAxes |= 2;
    if (!(PlotParam.AutoAxes & 1)) xlo = PlotParam.MinX, xhi = PlotParam.MaxX;
    if (!(PlotParam.AutoAxes & 2)) ylo = PlotParam.MinY, yhi = PlotParam.MaxY;
    PlotParam.PlotWidth = PlotParam.PlotHeight = kMultiPlotSize;
    char xtitle[80] = "", ytitle[48] = "";
    if (param_.DisplayUnitsX) XTitle(primary->ImType1, primary, xtitle, sizeof xtitle);
    if (param_.DisplayUnitsY) CopyText(ytitle, sizeof ytitle, primary->Title, sizeof primary->Title);
    float fx0 = static_cast<float>(xlo), fx1 = static_cast<float>(xhi), fy0 = static_cast<float>(ylo), fy1 = static_cast<float>(yhi);
    if (PlotParam.LogAxisX || PlotParam.LogAxisY) {
        float dummy = 0;
        ApplyLogScale(&dummy, &dummy, 0, PlotParam.LogAxisX, PlotParam.LogAxisY, &fx0, &fx1, &fy0, &fy1);
    } else {
        LogScaleX = LogScaleY = 1.0f;
    }
    DrawPlotFrame(fx0, fx1, fy0, fy1, xtitle, ytitle, 0);
    havePlot_ = true;
    plotArea_ = CurrentPlotArea();
    plotLogScale_[0] = LogScaleX;
    plotLogScale_[1] = LogScaleY;
    const uint8_t savedRed = PaletteRed[kMultiCurvePaletteEntry], savedGreen = PaletteGreen[kMultiCurvePaletteEntry],
                  savedBlue = PaletteBlue[kMultiCurvePaletteEntry];
    BeginBatch();
    for (int i = 0; i < ItemCount(); ++i) {
        const MultiSpecParam_ItemType& item = items_[static_cast<size_t>(i)];
        const ImageHeaderType* s = nullptr;
        int from = 0, count = 0;
        if (!SelectedForDisplay(item) || !GetSpec_Nx_Nx1_Ofs(i, &s, &from, &count) || count <= 0) continue;
        const float* y = reinterpret_cast<const float*>(s->PixData) + from;
        const float* x = reinterpret_cast<const float*>(s->PixData) + s->nx + from;
        for (int k = 0; k < count; ++k) {
            px.Data()[k] = static_cast<float>(ConvertX(i, x[k])) * LogScaleX;
            py.Data()[k] = static_cast<float>(ConvertY(i, ImageDataValue2Calibrated(s, y[k], 0))) * LogScaleY;
        }
        SetPaletteEntryColour(kMultiCurvePaletteEntry, item.Colour);
        if (s->ImType1 == 4)
            PlotBars(px.Data(), py.Data(), count, 0.0f, kMultiCurvePaletteEntry, 0);
        else
            PlotCurve(px.Data(), py.Data(), count, kMultiCurvePaletteEntry, kMultiCurvePaletteEntry, 1, 0, 0);
    }
    DrawLineMarkers();
    PaletteRed[kMultiCurvePaletteEntry] = savedRed;
    PaletteGreen[kMultiCurvePaletteEntry] = savedGreen;
    PaletteBlue[kMultiCurvePaletteEntry] = savedBlue;
    UpdateLineMarkerData();
    DrawLegends();
    EndBatchAndShow(0, 0, PlotParam.PlotWidth + kLegendStrip - 1, PlotParam.PlotHeight - 1);
    restore();
}

void CMultiSpecDisp::DrawLegends()
{
    FSSetClip(0, 0, kMultiPlotSize + kLegendStrip - 1, kMultiPlotSize - 1);
    FSSetTextColour(kLegendColour);
    FSSetTextAlign(TextAlignWord(0, 2, 0));
    char line[96];
    int row = kLegendTop, shown = 0;
    for (int i = 0; i < ItemCount(); ++i) {
        const MultiSpecParam_ItemType& item = items_[static_cast<size_t>(i)];
        if (!SelectedForDisplay(item)) continue;
        std::snprintf(line, sizeof line, "Plot%d:  %s", ++shown, item.Title);
        FSTextOut(kMultiPlotSize + kLegendGap, row, line);
        row += kLegendStep;
    }
    static const char kMarkerAxis[4] = {'Y', 'X', 'Y', 'X'};
    static const int kMarkerNumber[4] = {1, 1, 2, 2};
    for (int m = 0; m < 4; ++m) {
        double at = 0;
        if (!param_.MarkerOn[m] || !MarkerValue(m, &at)) continue;
        char value[32];
        std::snprintf(value, sizeof value, "%g", at);
        std::snprintf(line, sizeof line, "Marker Position %c%d: %c=%s", kMarkerAxis[m], kMarkerNumber[m], kMarkerAxis[m], value);
        FSTextOut(kMultiPlotSize + kLegendGap, row, line);
        row += kLegendStep;
    }
}

void CMultiSpecDisp::WriteFileHead(FILE* f) const
{
    const LocalTime t = GetLocalTime();
    std::fprintf(f, "Tavrin Version %.2lf(%d)\n", kFileVersion, kFileBuild);
    std::fprintf(f, "Multi Spectra Display settings saved on  %d/%d/%4d at %02d:%02d:%02d\n", t.day, t.month, t.year,
                 t.hour, t.minute, t.second);
    std::fprintf(f, "\n");
}

std::vector<int> CMultiSpecDisp::FileNumbers() const
{
    std::vector<int> numbers(items_.size(), 0);
    int number = 0;
    for (size_t k = 0; k < items_.size(); ++k) {
        if (!FindItemById(static_cast<uint32_t>(items_[k].ID))) continue;
        if (items_[k].Ramp != 2) ++number;
        numbers[k] = number;
    }
    return numbers;
}

bool CMultiSpecDisp::CopyParams2DLLAndAllocateMemAndPlot(wint_MultiSpecParamType p)
{
    if (!CopyParamsAndAllocateMem(&param_, &p)) return false;
    MultiPlot(-1);
    return true;
}

int CMultiSpecDisp::SaveMultiSpecData(const char* path)
{
    FILE* f = path ? std::fopen(path, "w") : nullptr;
    if (!f) return 0;
    const wint_MultiSpecParamType& p = param_;
    WriteFileHead(f);
    std::fprintf(f, "Match Y units=%d\n", p.MatchYUnits);
    std::fprintf(f, "Match Scan Mode=%d\n", p.MatchScanMode);
    std::fprintf(f, "Lock gain and shifts=%d %d\n", p.LockGain, p.LockShift);
    std::fprintf(f, "Show Averages=%d\n", p.ShowAverages);
    std::fprintf(f, "Auto Axes=%d %d\n", p.AutoAxisX, p.AutoAxisY);
    std::fprintf(f, "Display Units=%d %d\n", p.DisplayUnitsX, p.DisplayUnitsY);
    std::fprintf(f, "Axes X=%lf %lf %lf\n", p.AxisX[0], p.AxisX[1], p.AxisX[2]);
    std::fprintf(f, "Axes y=%lf %lf %lf\n", p.AxisY[0], p.AxisY[1], p.AxisY[2]);
    std::fprintf(f, "Line markers=");
    for (int i = 0; i < 4; ++i) std::fprintf(f, "%d %lf ", p.MarkerOn[i], p.MarkerPos[i]);
    std::fprintf(f, "\n\n");
    // Spectra still in the list, counted whole: a second ramp shares its spectrum's number.
    int primary = -1, spectra = 0;
    for (const MultiSpecParam_ItemType& item : items_) {
        if (item.Ramp == 2 || !FindItemById(static_cast<uint32_t>(item.ID))) continue;
        if (item.ID == p.PrimaryID) primary = spectra;
        ++spectra;
    }
    std::fprintf(f, "Primary Index=%d\n", primary);
    std::fprintf(f, "Number of Spectra=%d\n\n", spectra);
    const std::vector<int> numbers = FileNumbers();
    for (size_t k = 0; k < items_.size(); ++k) {
        const MultiSpecParam_ItemType& item = items_[k];
        const ImageHeaderType* s = FindItemById(static_cast<uint32_t>(item.ID));
        if (!s) continue;
        const int number = numbers[k];
        const std::string name = MultiSpecFileName(s->FileName);
        std::fprintf(f, "Filename %d.%d=%s\n", number, item.Ramp, name.c_str());
        std::fprintf(f, "Selected %d.%d=%d\n", number, item.Ramp, item.Selected);
        std::fprintf(f, "Colour %d.%d=%u\n", number, item.Ramp, item.Colour);
        std::fprintf(f, "Shifts and gains %d.%d=%lf %lf %lf %lf\n", number, item.Ramp, item.ShiftX, item.ShiftY,
                     item.GainX, item.GainY);
    }
    const bool ok = !std::ferror(f);
    return std::fclose(f) == 0 && ok ? 1 : 0;
}

int CMultiSpecDisp::LoadMultiSpecData(const char* path)
{
    FILE* f = path ? std::fopen(path, "r") : nullptr;
    if (!f) return 0;
    wint_MultiSpecParamType p = param_;
    std::map<std::pair<int, int>, FileItem> files;
    int primaryIndex = -1, declared = 0, lineNo = 0;
    char line[1024];
    bool ok = true;
    while (ok && std::fgets(line, sizeof line, f)) {
        ++lineNo;
        std::string text(line);
        while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.pop_back();
        const char* s = text.c_str();
        int a = 0, b = 0, i = 0, r = 0, used = 0;
        double v = 0, sg[4] = {0, 0, 1, 1};
        unsigned colour = 0;
        bool good = true;
        if (text.empty() || text.rfind("Multi Spectra Display settings saved on", 0) == 0) {
        } else if (std::sscanf(s, "Tavrin Version %lf(%d)%n", &v, &a, &used) == 2 && s[used] == '\0') {
            good = v >= kOldestVersion;
        } else if (std::sscanf(s, "Match Y units=%d%n", &a, &used) == 1 && !s[used]) {
            p.MatchYUnits = static_cast<int16_t>(a);
        } else if (std::sscanf(s, "Match Scan Mode=%d%n", &a, &used) == 1 && !s[used]) {
            p.MatchScanMode = static_cast<int16_t>(a);
        } else if (std::sscanf(s, "Lock gain and shifts=%d %d%n", &a, &b, &used) == 2 && !s[used]) {
            p.LockGain = static_cast<int16_t>(a), p.LockShift = static_cast<int16_t>(b);
        } else if (std::sscanf(s, "Show Averages=%d%n", &a, &used) == 1 && !s[used]) {
            p.ShowAverages = static_cast<int16_t>(a);
        } else if (std::sscanf(s, "Auto Axes=%d %d%n", &a, &b, &used) == 2 && !s[used]) {
            p.AutoAxisX = static_cast<int16_t>(a), p.AutoAxisY = static_cast<int16_t>(b);
        } else if (std::sscanf(s, "Display Units=%d %d%n", &a, &b, &used) == 2 && !s[used]) {
            p.DisplayUnitsX = static_cast<int16_t>(a), p.DisplayUnitsY = static_cast<int16_t>(b);
        } else if (std::sscanf(s, "Axes X=%lf %lf %lf%n", &p.AxisX[0], &p.AxisX[1], &p.AxisX[2], &used) == 3 && !s[used]) {
        } else if (std::sscanf(s, "Axes y=%lf %lf %lf%n", &p.AxisY[0], &p.AxisY[1], &p.AxisY[2], &used) == 3 && !s[used]) {
        } else if (text.rfind("Line markers=", 0) == 0) {
            int on[4];
            double pos[4];
            good = std::sscanf(s, "Line markers=%d %lf %d %lf %d %lf %d %lf %n", &on[0], &pos[0], &on[1], &pos[1], &on[2],
                               &pos[2], &on[3], &pos[3], &used) == 8 && !s[used];
            for (int k = 0; good && k < 4; ++k) p.MarkerOn[k] = static_cast<int16_t>(on[k]), p.MarkerPos[k] = pos[k];
        } else if (std::sscanf(s, "Primary Index=%d%n", &a, &used) == 1 && !s[used]) {
            primaryIndex = a;
        } else if (std::sscanf(s, "Number of Spectra=%d%n", &a, &used) == 1 && !s[used]) {
            declared = a;
        } else if (std::sscanf(s, "Filename %d.%d=%n", &i, &r, &used) == 2 && used > 0) {
            files[{i, r}].path = UndoubleBackslashes(s + used);
        } else if (std::sscanf(s, "Selected %d.%d=%d%n", &i, &r, &a, &used) == 3 && !s[used]) {
            files[{i, r}].selected = a;
        } else if (std::sscanf(s, "Colour %d.%d=%u%n", &i, &r, &colour, &used) == 3 && !s[used]) {
            files[{i, r}].colour = colour;
        } else if (std::sscanf(s, "Shifts and gains %d.%d=%lf %lf %lf %lf%n", &i, &r, &sg[0], &sg[1], &sg[2], &sg[3],
                               &used) == 6 && !s[used]) {
            FileItem& item = files[{i, r}];
            item.shift[0] = sg[0], item.shift[1] = sg[1], item.gain[0] = sg[2], item.gain[1] = sg[3];
        } else {
            good = false;
        }
        if (!good) {
            char message[64];
            std::snprintf(message, sizeof message, "Error at line %d.", lineNo);
            ok = AskOkCancel(message, true) == 1;
        }
    }
    std::fclose(f);
    if (!ok) return 0;
    (void)declared;

    // Each file to the spectrum of the data list loaded from it; a file not in the list fails
    // alone.
    std::vector<MultiSpecParam_ItemType> old;
    int32_t primaryId = -1, lowest = 0x7FFFFFFF, highest = -1;
    for (const auto& [key, item] : files) {
        const ImageHeaderType* s = nullptr;
        for (const ImageHeaderType* q = FirstItem; q && !s; q = q->Next)
            if (IsSpectrumItem(q) && MultiSpecFileName(q->FileName) == MultiSpecFileName(item.path.c_str()) && !item.path.empty()) s = q;
        if (!s) continue;
        MultiSpecParam_ItemType o{};
        o.ID = static_cast<int32_t>(s->DataId);
        o.Ramp = static_cast<int16_t>(key.second);
        o.Selected = static_cast<uint16_t>(item.selected);
        o.Colour = item.colour;
        o.ShiftX = item.shift[0], o.ShiftY = item.shift[1], o.GainX = item.gain[0], o.GainY = item.gain[1];
        old.push_back(o);
        if (key.first - 1 == primaryIndex && key.second < 2) primaryId = o.ID;
        lowest = std::min(lowest, o.ID);
        highest = std::max(highest, o.ID);
    }
    param_ = p;
    param_.PrimaryID = primaryId;
    oldItems_ = old;
    items_.clear();
    if (!old.empty()) Initialise(primaryId, lowest, highest);
    // The selection of each item is the file's, not Initialise's choice.
    for (MultiSpecParam_ItemType& item : items_)
        for (const MultiSpecParam_ItemType& o : old)
            if (o.ID == item.ID && (o.Ramp == 2) == (item.Ramp == 2)) item.Selected = o.Selected;
    SyncParam();
    return 1;
}

CMultiSpecDisp* MultiSpecDisp()
{
    static CMultiSpecDisp object;
    return &object;
}

void ResetMultiSpecState() { MultiSpecDisp()->Reset(); }
