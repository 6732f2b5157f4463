#include "image/particle_state.h"
#include "display/placement.h"
#include "display/vfs.h"
#include "host/errors.h"
#include "host/log.h"
#include "host/wait.h"
#include "image/particles.h"
#include "store/data_list.h"
#include "store/duplicate.h"
#include "store/history.h"
#include "store/image_header.h"
#include "store/units.h"
#include "store/value_text.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace {

void DefaultRecords(ParticleModule& m)
{
    std::memset(&m.param, 0, sizeof m.param);
    m.param.Connectivity = 4;
    m.param.HistogramKind = TV_PARTICLE_HIST_AREA;
    m.param.HistogramBins = 128;
    m.param.HighLevel = 255;
    std::memset(&m.stts, 0, sizeof m.stts);
    m.stts.SortKey = TV_PARTICLE_SORT_NONE;
}

ParticleModule& Fresh()
{
    static ParticleModule module;
    static bool once = [] {
        DefaultRecords(module);
        return true;
    }();
    (void)once;
    return module;
}

bool HasPixels(const ImageHeaderType* item)
{
    return item && CheckHeaderIsImageType(item) && item->PixData && item->nx > 0 && item->ny > 0;
}

} // namespace

ImageHeaderType* HeldItem::Get() const
{
    if (!item || !IsInList(item) || item->DataId != id) return nullptr;
    return item;
}

void HeldItem::Set(ImageHeaderType* to)
{
    item = to;
    id = to ? to->DataId : 0;
}

ParticleModule& Particles() { return Fresh(); }

bool IsBilevel(const ImageHeaderType* item, bool report)
{
    ParticleModule& m = Particles();
    if (!item) return false;
    if (m.bilevelId == static_cast<int64_t>(item->DataId)) return m.bilevelOK == 1;
    const bool ok = HasPixels(item) && CodesAreBilevel(item->PixData, item->nx, item->ny);
    m.bilevelOK = ok ? 1 : 0;
    m.bilevelId = item->DataId;
    if (!ok && report) Error(ERR_NOT_BILEVEL);
    return ok;
}

void ForgetBilevelTest()
{
    Particles().bilevelOK = -1;
    Particles().bilevelId = -1;
}

ImageHeaderType* MakeBilevel(ImageHeaderType* source, int low, int high)
{
    if (!HasPixels(source)) {
        Error(ERR_NO_IMAGES);
        return nullptr;
    }
    ImageHeaderType* item = DuplicateForResult(source);
    if (!item) return nullptr;
    const size_t count = static_cast<size_t>(source->nx) * static_cast<size_t>(source->ny);
    for (size_t i = 0; i < count; ++i) {
        const int level = source->ImageLUT[source->PixData[i] >> 8];
        item->PixData[i] = level >= low && level <= high ? kObjectCode : 0;
    }
    for (int i = 0; i < 256; ++i) item->ImageLUT[i] = static_cast<uint8_t>(i);
    Log("Generate Bilevel Image '%s'\n", source->Title);
    AddImProc2List(source, kBilevelCode);
    DisplayImage(item, 0, 1);
    return item;
}

int ParticleConnectivity() { return Particles().connectivity; }

void ToggleConnectivity()
{
    ParticleModule& m = Particles();
    m.connectivity = m.connectivity == 4 ? 8 : 4;
    m.param.Connectivity = static_cast<int16_t>(m.connectivity);
    Log("Set connectivity to %d.\n", m.connectivity);
}

ImageHeaderType* ParticleSourceItem() { return Particles().source.Get(); }
ImageHeaderType* ParticleBilevelItem() { return Particles().bilevel.Get(); }

MeasureFrame ParticleFrame(const ImageHeaderType* item)
{
    const float dx = item->ImageSizeX / static_cast<float>(item->nx);
    const float dy = item->ImageSizeY / static_cast<float>(item->ny);
    return MeasureFrame{dx, dy, Particles().connectivity};
}

const ParticleStats& CurrentParticleStats() { return Particles().stats; }
int SelectedParticle() { return Particles().selected; }

bool AnyImageOnDisplay()
{
    if (!CurrentVFS) return false;
    for (const auto& column : FSState.Contents)
        for (const FSContentsType& cell : column)
            if (cell.Image) return true;
    return false;
}

void RefreshStatistics(ImageHeaderType* item)
{
    ParticleModule& m = Particles();
    FreeParticleStats(&m.stats);
    if (!item) {
        Error(ERR_NO_IMAGES);
        return;
    }
    if (!IsBilevel(item, false)) return;
    if (!AnyImageOnDisplay()) DisplayImage(item, 0, 1);
    ap_SetHourGlass(true);
    MeasureAllObjects(item->PixData, item->nx, item->ny, ParticleFrame(item), &m.stats);
    ap_SetHourGlass(false);
    if (m.stats.ObjectCount > 0) {
        SortParticles(&m.stats, m.stts.SortKey);
        m.stts.FileName[0] = '\0';
        if (m.selected >= m.stats.ObjectCount) m.selected = -1;
    }
}

int ViewToPixel(int v, int n)
{
    v = std::clamp(v, 0, 255);
    return static_cast<int>(static_cast<long long>(n - 1) * v / 255);
}

int PixelToView(int p, int n) { return n > 1 ? static_cast<int>(static_cast<long long>(p) * 255 / (n - 1)) : 0; }

void MarkSelection()
{
    ParticleModule& m = Particles();
    const ImageHeaderType* item = m.bilevel.Get();
    wint_ParticleSttsParamType& r = m.stts;
    if (!item || m.selected < 0 || m.selected >= m.stats.ObjectCount) {
        m.selected = -1;
        for (int i = 0; i < 4; ++i) r.SelectedRect[i] = 0;
        m.stts.SelectedColour = 0;
        return;
    }
    const ParticleObject& o = m.stats.Objects[m.selected];
    r.SelectedRect[0] = PixelToView(o.X1, item->nx);
    r.SelectedRect[1] = PixelToView(o.Y1, item->ny);
    r.SelectedRect[2] = PixelToView(o.X2, item->nx);
    r.SelectedRect[3] = PixelToView(o.Y2, item->ny);
    m.stts.SelectedColour = 0xFFFF00;
}

void ComputeSummaryLines()
{
    ParticleModule& m = Particles();
    const ImageHeaderType* item = m.bilevel.Get();
    const int n = m.stats.ObjectCount;
    if (!item || n <= 0) return;
    double area = 0.0, perimeter = 0.0;
    for (int i = 0; i < n; ++i) {
        area += m.stats.Objects[m.stats.Order[i]].Area;
        perimeter += m.stats.Objects[m.stats.Order[i]].Perimeter;
    }
    double s = 1.0;
    const int exponent = ChooseUnitScale(std::min(item->ImageSizeX, item->ImageSizeY), &s);
    const char* length = UnitsZ(exponent, 0);
    char square[32];
    std::snprintf(square, sizeof square, "%s%s", length, AreaUnits());
    char(*lines)[TV_PARTICLE_SUMMARY_TEXT] = m.stts.SummaryLines;
    const double mean = area / s / s / n, total = area / s / s, meanPerimeter = perimeter / s / n;
    std::snprintf(lines[0], sizeof lines[0], "Mean area : %.*f%s", DecimalsFor(mean), mean, square);
    std::snprintf(lines[1], sizeof lines[1], "Total area : %.*f%s", DecimalsFor(total), total, square);
    std::snprintf(lines[2], sizeof lines[2], "Mean perimeter : %.*f%s", DecimalsFor(meanPerimeter), meanPerimeter,
                  length);
    std::snprintf(lines[3], sizeof lines[3], "No of particles : %d", n);
    // A record without a scan size has no areas to compare: its ratio is 0.
    const double scan = static_cast<double>(item->ImageSizeX) * static_cast<double>(item->ImageSizeY);
    std::snprintf(lines[4], sizeof lines[4], "S Ratio : %.3f", scan > 0.0 ? area / scan : 0.0);
}

void ResetParticleState()
{
    ParticleModule& m = Particles();
    FreeParticleStats(&m.stats);
    m.source = HeldItem{};
    m.bilevel = HeldItem{};
    m.lowMade = m.highMade = -1;
    m.connectivity = 4;
    m.selected = -1;
    m.bilevelOK = -1;
    m.bilevelId = -1;
    m.started = false;
    m.pointerDepth = 0;
    DefaultRecords(m);
}
