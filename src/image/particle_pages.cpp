// The two dialog pages of the particle analysis: the band page with its views, and the
// statistics page with its summary, its list and the selected object.
#include "host/errors.h"
#include "image/particle_state.h"
#include "image/particles.h"
#include "store/data_list.h"
#include "store/image_header.h"
#include "store/units.h"
#include "store/value_text.h"

#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>

namespace {

bool HasPixels(const ImageHeaderType* item)
{
    return item && CheckHeaderIsImageType(item) && item->PixData && item->nx > 0 && item->ny > 0;
}

uint8_t LevelAt(const ImageHeaderType* item, int vx, int vy)
{
    const int x = ViewToPixel(vx, item->nx), y = ViewToPixel(vy, item->ny);
    return item->ImageLUT[item->PixData[static_cast<size_t>(y) * static_cast<size_t>(item->nx) + x] >> 8];
}

// The physical range of the source in the unit that fits it, and the grey scale labels.
void TakeSource(ParticleModule& m, const ImageHeaderType* source)
{
    wint_ParticleParamType& p = m.param;
    const double low = GetImageDataValue(1, 0.0f, source), high = GetImageDataValue(1, 65535.0f, source);
    const DisplayRange range = ChooseDisplayRange(std::fabs(high - low), [source](int e) {
        return GetImageUnitStr(source, e, 0);
    });
    p.ZLow = low / range.divisor;
    p.ZHigh = high / range.divisor;
    std::snprintf(p.ZUnit, sizeof p.ZUnit, "%s", range.unit.c_str());
    for (int i = 0; i < 5; ++i) {
        const double v = p.ZLow + i * (p.ZHigh - p.ZLow) / 4.0;
        std::snprintf(p.ScaleTexts[i], sizeof p.ScaleTexts[i], "%.*f", DecimalsFor(v), v);
    }
    std::memcpy(p.SourceLUT, source->ImageLUT, sizeof p.SourceLUT);
    for (int y = 0; y < TV_PARTICLE_VIEW; ++y)
        for (int x = 0; x < TV_PARTICLE_VIEW; ++x) p.SourceView[y * TV_PARTICLE_VIEW + x] = LevelAt(source, x, y);
    p.HistogramBins = 128;
}

void ClearSelection(ParticleModule& m)
{
    m.selected = -1;
    MarkSelection();
}

void FillBilevelView(ParticleModule& m, const ImageHeaderType* bilevel, const ImageHeaderType* source)
{
    wint_ParticleParamType& p = m.param;
    const ImageHeaderType* shown = bilevel ? bilevel : source;
    if (!HasPixels(shown)) {
        std::memset(p.BilevelView, 0, sizeof p.BilevelView);
        return;
    }
    for (int y = 0; y < TV_PARTICLE_VIEW; ++y) {
        for (int x = 0; x < TV_PARTICLE_VIEW; ++x) {
            const uint8_t level = LevelAt(shown, x, y);
            uint8_t& out = p.BilevelView[y * TV_PARTICLE_VIEW + x];
            if (bilevel) out = level;
            else out = level >= p.LowLevel && level <= p.HighLevel ? 255 : 0;
        }
    }
}

} // namespace

int16_t GetParticleParam(wint_ParticleParamType* param)
{
    ParticleModule& m = Particles();
    if (!param) {
        ProgramError("dl_GetParticleParam");
        return static_cast<int16_t>(m.connectivity);
    }
    if (param->Initialise) {
        ImageHeaderType* current = CurrentItem;
        if (!HasPixels(current)) {
            Error(ERR_NO_IMAGES);
            return static_cast<int16_t>(m.connectivity);
        }
        m.source.Set(current);
        TakeSource(m, current);
        m.bilevel = HeldItem{};
        m.lowMade = m.highMade = -1;
        ClearSelection(m);
    }
    ImageHeaderType* bilevel = m.bilevel.Get();
    const bool isBilevel = bilevel && IsBilevel(bilevel, false);
    if (isBilevel && (static_cast<int>(m.param.LowLevel) != m.lowMade || static_cast<int>(m.param.HighLevel) != m.highMade)) {
        FreeParticleStats(&m.stats);
        EraseItem(bilevel);
        m.bilevel = HeldItem{};
        bilevel = nullptr;
        m.lowMade = m.highMade = -1;
        ClearSelection(m);
    }
    wint_ParticleParamType& p = m.param;
    for (int i = 0; i < 9; ++i) p.ButtonStates[i] = TV_PARTICLE_ENABLED;
    for (int i = 0; i < 3; ++i) p.MoreStates[i] = TV_PARTICLE_ENABLED;
    if (bilevel && IsBilevel(bilevel, false)) {
        p.MoreStates[2] = TV_PARTICLE_DISABLED;
    } else {
        bilevel = nullptr;
        for (int i = 0; i < 9; ++i)
            if (i != 1) p.ButtonStates[i] = TV_PARTICLE_DISABLED;
        p.MoreStates[1] = TV_PARTICLE_DISABLED;
    }
    FillBilevelView(m, bilevel, m.source.Get());
    DisplayParticleHistogram();
    p.Initialise = 0;
    p.Connectivity = static_cast<int16_t>(m.connectivity);
    std::memcpy(param, &p, sizeof p);
    return static_cast<int16_t>(m.connectivity);
}

void SetParticleParam(const wint_ParticleParamType* param)
{
    ParticleModule& m = Particles();
    if (!param) {
        ProgramError("dl_SetParticleParam");
        return;
    }
    std::memcpy(&m.param, param, sizeof m.param);
    wint_ParticleParamType& p = m.param;
    if (p.HistogramBins < 4) p.HistogramBins = 3;
    if (p.HistogramBins > 128) p.HistogramBins = 128;
    if (p.LowLevel > 255) p.LowLevel = 255;
    if (p.HighLevel > 255) p.HighLevel = 255;
    m.connectivity = p.Connectivity == 8 ? 8 : 4;
    p.Connectivity = static_cast<int16_t>(m.connectivity);
}

void GetParticleSttsParam(wint_ParticleSttsParamType* param, int16_t init, int16_t fin)
{
    ParticleModule& m = Particles();
    if (m.started && (fin || init)) {
        FreeParticleStats(&m.stats);
        m.selected = -1;
        m.started = false;
    }
    if (!m.started && init) {
        ImageHeaderType* source = m.source.Get();
        if (!source) {
            Error(ERR_NO_IMAGES);
        } else if (ImageHeaderType* made = MakeBilevel(source, static_cast<int>(m.param.LowLevel),
                                                       static_cast<int>(m.param.HighLevel))) {
            m.bilevel.Set(made);
            m.lowMade = static_cast<int>(m.param.LowLevel);
            m.highMade = static_cast<int>(m.param.HighLevel);
            CurrentItem = source;
            RefreshStatistics(made);
            m.started = true;
            ComputeSummaryLines();
        }
    } else if (m.started && !init && !fin) {
        RefreshStatistics(m.bilevel.Get());
        ComputeSummaryLines();
    }
    if (param) std::memcpy(param, &m.stts, sizeof m.stts);
}

void SetParticleSttsParam(const wint_ParticleSttsParamType* param)
{
    ParticleModule& m = Particles();
    if (!param) {
        ProgramError("dl_SetParticleSttsParam");
        return;
    }
    ImageHeaderType* bilevel = m.bilevel.Get();
    std::memcpy(&m.stts, param, sizeof m.stts);
    m.stts.FileName[sizeof m.stts.FileName - 1] = '\0';
    for (auto& line : m.stts.SummaryLines) line[sizeof line - 1] = '\0';
    const int row = param->SelectedRow;
    if (bilevel && IsBilevel(bilevel, false) && row >= 1 && row <= m.stats.ObjectCount) {
        m.selected = m.stats.Order[row - 1];
        SortParticles(&m.stats, m.stts.SortKey);
    } else {
        if (bilevel && IsBilevel(bilevel, false)) SortParticles(&m.stats, m.stts.SortKey);
        m.selected = -1;
    }
    MarkSelection();
}

int32_t ParticleSttsGetDesc(int16_t row, char texts[5][TV_PARTICLE_DESC_TEXT])
{
    const ParticleModule& m = Particles();
    if (row < 1 || row > m.stats.ObjectCount) return 4;
    const int index = m.stats.Order[row - 1];
    const ParticleObject& o = m.stats.Objects[index];
    if (texts) {
        std::snprintf(texts[0], TV_PARTICLE_DESC_TEXT, "%3d)", row);
        std::snprintf(texts[1], TV_PARTICLE_DESC_TEXT, "%10.2f", o.Area);
        std::snprintf(texts[2], TV_PARTICLE_DESC_TEXT, "%8d", static_cast<int>(o.Pixels));
        std::snprintf(texts[3], TV_PARTICLE_DESC_TEXT, "%10.3f", o.Perimeter);
        std::snprintf(texts[4], TV_PARTICLE_DESC_TEXT, "%10.3f", ParticleShape(o));
    }
    if (index == m.selected || (m.selected < 0 && row == 1)) return 1;
    return 2;
}
