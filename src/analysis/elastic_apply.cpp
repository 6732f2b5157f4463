// The stages of the elastic modulus over a whole mapping: deflection against distance
// (Apply 1), force against deformation (Apply 2), and the modulus of every pixel (Apply 3).
#include "analysis/elastic_modulus.h"
#include "host/error_numbers.h"
#include "host/errors.h"
#include "host/progress.h"
#include "image/fit.h"
#include "mapping/cits.h"
#include "spectro/spectro.h"
#include "store/data_list.h"
#include "store/duplicate.h"
#include "store/image_header.h"
#include "store/memory.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <new>
#include <vector>

namespace {

// The mean crossing of the level `level(i)` with the segments i .. i + 1 visited by `next`:
// a segment whose ends lie on both sides of (or on) the level crosses it at the linear
// interpolation of u, or at the midpoint of u when both ends are equal.
struct Crossings {
    double sumU = 0.0, sumLevel = 0.0;
    int count = 0;
    void Add(const float* u, const float* v, int i, double level)
    {
        const double lo = std::min(v[i], v[i + 1]), hi = std::max(v[i], v[i + 1]);
        if (!(level >= lo && level <= hi)) return;
        double at;
        if (v[i + 1] == v[i]) at = (u[i] + u[i + 1]) / 2.0;
        else at = u[i] + (level - v[i]) * (static_cast<double>(u[i + 1]) - u[i]) / (static_cast<double>(v[i + 1]) - v[i]);
        sumU += at;
        sumLevel += level;
        ++count;
    }
};

bool CheckSlopes(const char* stage)
{
    const wint_ElasticModulusType& p = ElasticModulus().Param;
    if (p.SlopeOutIn > 0.0 && p.SlopeInOut > 0.0) return true;
    ProgramError("%s: both Out->In and In->Out must be > zero!", stage);
    return false;
}

float* ResizeArray(float* block, size_t count)
{
    return static_cast<float*>(erealloc(block, count * sizeof(float)));
}

// The arrays of one stage in the size of the set; false after "Not enough memory", with the
// table cleared and all arrays freed.
bool ResizePair(float** a, float** b, size_t count)
{
    float* na = ResizeArray(*a, count);
    if (na) *a = na;
    float* nb = na ? ResizeArray(*b, count) : nullptr;
    if (nb) *b = nb;
    if (na && nb) return true;
    Error(ERR_NO_MEMORY);
    FreeElasticArrays();
    ResetElasticTable();
    return false;
}

bool RowCancelled()
{
    ProcessDialogStep(true);
    return ProcessDialogCancelled() != 0;
}

} // namespace

int ConvertPixelToDeflection(float* x, float* y, ElasticPointType* point)
{
    const wint_ElasticModulusType& p = ElasticModulus().Param;
    const int smooth = p.SmoothPoints;
    const double limit = p.RampLimit;
    if (point->n <= 50 || point->n1 <= 50) return 0;
    // The table's fields are packed: results go through locals.
    float contactOI = 0.0f, contactIO = 0.0f;
    if (CalculateContactPoint(x, y, point->n, 0, smooth, limit, &contactOI) != 0) return 0;
    if (CalculateContactPoint(x, y, point->n, 1, smooth, limit, &contactIO) != 0) return 0;
    point->ContactOI = contactOI;
    point->ContactIO = contactIO;
    int first = 0, count = 0;
    if (!SplitRamp(x, y, point->n, 0, limit, &first, &count)) return 1;
    const float* u = x + first;
    const float* v = y + first;
    const int last = count - 1;
    int a = 0, b = 0;
    while (a < last && u[a] > point->ContactIO) ++a;
    while (b < last && u[b] > point->ContactOI) ++b;
    const int lo = std::min(a, b), hi = std::max(a, b);
    if (hi - lo >= 10) {
        float m = 0.0f, c = 0.0f;
        if (FitLineX(u + lo, v + lo, hi - lo, &m, &c) != 0) return 0;
        point->m = m;
        point->c = c;
    } else {
        double sum = 0.0;
        for (int i = lo; i <= hi; ++i) sum += v[i];
        point->m = 0.0f;
        point->c = static_cast<float>(sum / (hi - lo + 1));
    }
    if (b + 1 > last) return 0;
    int e = b + 1;
    point->Fv0 = v[e];
    point->Z0 = u[e];
    for (int i = b + 2; i <= last; ++i)
        if (v[i] < point->Fv0) {
            point->Fv0 = v[i];
            point->Z0 = u[i];
            e = i;
        }
    if (p.ContactMethod == 2) {
        int down = e;
        while (down > 0 && v[down - 1] > v[down]) --down;
        if (down > 1) {
            e = (down + e) / 2;
            point->Fv0 = v[e];
            point->Z0 = u[e];
        }
    }
    Crossings free;
    for (int i = last - 1; i >= e; --i) free.Add(u, v, i, point->m * (u[i] + u[i + 1]) / 2.0f + point->c);
    if (free.count == 0) return 0;
    point->Zc = static_cast<float>(free.sumU / free.count);
    point->Fv1 = static_cast<float>(free.sumLevel / free.count);
    const double outIn = p.SlopeOutIn != 0.0 ? p.SlopeOutIn : 1.0;
    point->Def0 = static_cast<float>((point->Fv0 - point->Fv1) / outIn);
    const double S = x[1] > x[0] ? p.SlopeOutIn : p.SlopeInOut;
    for (int i = 0; i < point->n; ++i) y[i] = S != 0.0 ? static_cast<float>((y[i] - point->Fv1) / S) : 0.0f;
    point->Ret = 1;
    if (!SplitRamp(x, y, point->n, 1, limit, &first, &count)) return 0;
    u = x + first;
    v = y + first;
    Crossings contact;
    for (int i = 0; i + 1 < count && u[i] < point->ContactIO; ++i) contact.Add(u, v, i, point->Def0);
    if (contact.count == 0) return 0;
    point->ZcIO = static_cast<float>(contact.sumU / contact.count);
    point->Valid1 = 1;
    return 0;
}

int ElasticModulusApply1()
{
    ElasticModulusState& s = ElasticModulus();
    const ImageHeaderType* image = CurrentItem;
    const CITSHeaderType* set = image ? image->CITSHeaderPtr : nullptr;
    if (!set) {
        ProgramError("Apply1 not CITS data");
        return 1;
    }
    const int cx = set->cx, cy = set->cy, ni = set->ni;
    if (static_cast<double>(cx) * cy * ni > 268435456.0 || cx > kElasticTableSize || cy > kElasticTableSize) {
        Error(ERR_NO_MEMORY);
        return 1;
    }
    if (!CheckSlopes("Apply1")) return 1;
    if (!s.CalcDone) {
        ProgramError("Apply1: calculations %d %d", s.FCNumber >= 0 ? 1 : 0, s.CalcDone ? 1 : 0);
        return 1;
    }
    ResetElasticTable();
    if (!s.Table) return 1;
    const size_t total = static_cast<size_t>(cx) * cy * ni;
    if (!ResizePair(&s.XDeflec, &s.YDeflec, total)) return 1;
    s.cx = cx;
    s.cy = cy;
    s.ni = ni;
    std::vector<float> curveX, curveY;
    try {
        curveX.resize(static_cast<size_t>(ni));
        curveY.resize(static_cast<size_t>(ni));
    } catch (const std::bad_alloc&) {
        Error(ERR_NO_MEMORY);
        FreeElasticArrays();
        ResetElasticTable();
        return 1;
    }
    OpenProcessDialog("Conversion to deflection-distance curve");
    ProcessDialogText1("Conversion to deflection-distance curve");
    const double limit = s.Param.RampLimit;
    int result = 0;
    for (int y = 0; y < cy && result == 0; ++y) {
        if (RowCancelled()) {
            result = 2;
            break;
        }
        for (int x = 0; x < cx; ++x) {
            float* X = s.XDeflec + (static_cast<size_t>(y) * cx + x) * ni;
            float* Y = s.YDeflec + (static_cast<size_t>(y) * cx + x) * ni;
            for (int k = 0; k < ni; ++k) {
                const CITSImageEntryType* e = CITSEntry(set, k);
                curveX[static_cast<size_t>(k)] = e->voltage;
                curveY[static_cast<size_t>(k)] = CITSData2Current(e, GetCITSImagePtr(set, k, static_cast<uint32_t>(y))[x]);
            }
            ElasticPointType* point = &s.Table[y * kElasticTableSize + x];
            int f0 = 0, c0 = 0, f1 = 0, c1 = 0;
            if (!SplitRamp(curveX.data(), curveY.data(), ni, 0, limit, &f0, &c0)) c0 = 0;
            if (!SplitRamp(curveX.data(), curveY.data(), ni, 1, limit, &f1, &c1)) c1 = 0;
            std::fill(X, X + ni, 0.0f);
            std::fill(Y, Y + ni, 0.0f);
            std::copy(curveX.begin() + f1, curveX.begin() + f1 + c1, X);
            std::copy(curveY.begin() + f1, curveY.begin() + f1 + c1, Y);
            std::copy(curveX.begin() + f0, curveX.begin() + f0 + c0, X + c1);
            std::copy(curveY.begin() + f0, curveY.begin() + f0 + c0, Y + c1);
            point->n = c0 + c1;
            point->n1 = c1;
            if (ConvertPixelToDeflection(X, Y, point) != 0) {
                result = 1;
                break;
            }
        }
    }
    CloseProcessDialog();
    if (result == 1) {
        FreeElasticArrays();
        ResetElasticTable();
    }
    return result;
}

void DeformPixel(const float* x, const float* y, int n, ElasticPointType* point, float* deformation, float* force)
{
    const wint_ElasticModulusType& p = ElasticModulus().Param;
    if (!point->Valid1) return;
    int first = 0, count = 0;
    if (!SplitRamp(x, y, n, 1, point->ContactIO, &first, &count)) return;
    for (int i = 0; i < count; ++i) {
        const float u = x[first + i], v = y[first + i];
        deformation[i] = (u - point->ZcIO) + (v - point->Def0);
        force[i] = static_cast<float>(v * p.SpringConstant);
    }
    point->n_deform = count;
    point->Valid2 = 1;
    SortPair(deformation, force, count, true);
    point->d0 = point->d1 = deformation[0];
    point->F1 = force[0];
    int i = 0;
    while (i + 1 < count && !(force[i + 1] <= 0.0f && force[i] >= 0.0f)) ++i;
    point->d0 = deformation[i];
    for (int k = 0; k < count; ++k)
        if (force[k] < point->F1) {
            point->F1 = force[k];
            point->d1 = deformation[k];
        }
    if (point->d0 >= point->d1) {
        const float d0 = point->d0;
        point->d0 = point->d1;
        point->d1 = d0;
        point->Valid2 = 0;
    }
}

double ElasticModulusOfPoint(const ElasticPointType& point)
{
    if (!point.Valid2) return 0.0;
    const wint_ElasticModulusType& p = ElasticModulus().Param;
    const double A = std::pow((1.0 + std::cbrt(16.0)) / 3.0, 1.5);
    const double span = static_cast<double>(point.d1) - point.d0;
    return A * -static_cast<double>(point.F1) / std::sqrt(span * span * span * p.TipRadius) * 3.0 *
           (1.0 - p.PoissonRatio * p.PoissonRatio) / 4.0;
}

namespace {

// The checks shared by Apply 2 and 3: a mapping, both slopes, the deflection arrays.
const CITSHeaderType* StageSet(const char* stage)
{
    const ImageHeaderType* image = CurrentItem;
    const CITSHeaderType* set = image ? image->CITSHeaderPtr : nullptr;
    if (!set) {
        ProgramError("%s not CITS data", stage);
        return nullptr;
    }
    if (!CheckSlopes(stage)) return nullptr;
    return set;
}

void ClearSecondHalf(ElasticPointType* point)
{
    point->Valid2 = 0;
    point->n_deform = 0;
    point->d0 = point->d1 = point->F1 = point->ElasticMod = 0.0f;
}

} // namespace

int ElasticModulusApply2()
{
    ElasticModulusState& s = ElasticModulus();
    if (!StageSet("Apply2")) return 1;
    const wint_ElasticModulusType& p = s.Param;
    if (!(p.SpringConstant > 0.0) || !(p.PoissonRatio > 0.0) || !(p.TipRadius > 0.0)) {
        ProgramError("Apply2: Invalid Spring Constant / Poisson Ratio / Tip Radius");
        return 1;
    }
    if (!s.XDeflec || !s.YDeflec || !s.Table) {
        ProgramError("Apply2 x_deflec,y_deflec NULL");
        return 1;
    }
    if (!s.CalcDone || !s.Apply1Done) {
        ProgramError("Apply2: calculations %d %d", s.CalcDone ? 1 : 0, s.Apply1Done ? 1 : 0);
        return 1;
    }
    // The curves keep the size of the set they were made from.
    const int ni = s.ni;
    const size_t total = static_cast<size_t>(s.cx) * s.cy * ni;
    if (!ResizePair(&s.XForce, &s.YForce, total)) return 1;
    std::fill(s.XForce, s.XForce + total, 0.0f);
    std::fill(s.YForce, s.YForce + total, 0.0f);
    OpenProcessDialog("Calculate deformation data");
    ProcessDialogText1("Calculate deformation data");
    int result = 0;
    for (int y = 0; y < s.cy && result == 0; ++y) {
        if (RowCancelled()) result = 2;
        for (int x = 0; x < s.cx && result == 0; ++x) {
            const size_t at = (static_cast<size_t>(y) * s.cx + x) * ni;
            ElasticPointType* point = &s.Table[y * kElasticTableSize + x];
            ClearSecondHalf(point);
            DeformPixel(s.XDeflec + at, s.YDeflec + at, point->n, point, s.XForce + at, s.YForce + at);
        }
    }
    CloseProcessDialog();
    return result;
}

namespace {

// The modulus image of the table: a new image behind the mapping image with its header and
// no set, current. False after a report.
bool MakeModulusImage(ImageHeaderType* mapping)
{
    ElasticModulusState& s = ElasticModulus();
    ImageHeaderType* item = DuplicateResized(mapping, s.cx, s.cy);
    if (!item) return false;
    const float lo = s.Minimum, hi = s.Maximum;
    item->Zlo = lo;
    item->Zhi = hi;
    item->DataSource = 27;
    item->ImType1 = 1;
    item->DataType = CITSEntry(mapping->CITSHeaderPtr, 0)->data_type;
    item->RawLow = 0;
    item->RawHigh = 0;
    const double span = static_cast<double>(hi) - lo;
    const uint16_t floor = static_cast<uint16_t>(std::numeric_limits<uint16_t>::min());
    for (int y = 0; y < s.cy; ++y)
        for (int x = 0; x < s.cx; ++x) {
            const ElasticPointType& point = s.Table[y * kElasticTableSize + x];
            uint16_t code = floor;
            if (point.Valid2 && span > 0.0)
                code = static_cast<uint16_t>((static_cast<double>(point.ElasticMod) - lo) / span * 65535.0);
            item->PixData[static_cast<size_t>(y) * s.cx + x] = code;
        }
    StampCreated(item);
    StampSaved(item);
    CurrentItem = item;
    return true;
}

} // namespace

int ElasticModulusApply3()
{
    ElasticModulusState& s = ElasticModulus();
    const CITSHeaderType* set = StageSet("Apply3");
    if (!set) return 1;
    const wint_ElasticModulusType& p = s.Param;
    if (!(p.PoissonRatio > 0.0) || !(p.TipRadius > 0.0)) {
        ProgramError("Apply3: Invalid Poisson Ratio / Tip Radius");
        return 1;
    }
    if (!s.XDeflec || !s.YDeflec || !s.Table) {
        ProgramError("Apply3 x_deflec,y_deflec NULL");
        return 1;
    }
    if (!s.CalcDone || !s.Apply1Done || !s.Apply2Done) {
        ProgramError("Apply3: calculations %d %d %d", s.CalcDone ? 1 : 0, s.Apply1Done ? 1 : 0,
                     s.Apply2Done ? 1 : 0);
        return 1;
    }
    ImageHeaderType* mapping = CurrentItem;
    if (s.cx != set->cx || s.cy != set->cy || s.cx > mapping->nx || s.cy > mapping->ny) {
        ProgramError("Apply3: cx,cy,nx,ny");
        return 1;
    }
    OpenProcessDialog("Calculate Elastic Modulus & Adhesive Energy image");
    ProcessDialogText1("Calculate Elastic Modulus & Adhesive Energy image");
    double sum = 0.0;
    int valid = 0;
    float lo = 0.0f, hi = 0.0f;
    int result = 0;
    for (int y = 0; y < s.cy && result == 0; ++y) {
        if (RowCancelled()) result = 2;
        for (int x = 0; x < s.cx && result == 0; ++x) {
            ElasticPointType& point = s.Table[y * kElasticTableSize + x];
            point.ElasticMod = static_cast<float>(ElasticModulusOfPoint(point));
            if (!point.Valid2) continue;
            if (valid == 0 || point.ElasticMod < lo) lo = point.ElasticMod;
            if (valid == 0 || point.ElasticMod > hi) hi = point.ElasticMod;
            sum += point.ElasticMod;
            ++valid;
        }
    }
    CloseProcessDialog();
    if (result != 0) return result;
    s.Minimum = lo;
    s.Maximum = hi;
    s.Average = valid > 0 ? static_cast<float>(sum / valid) : 0.0f;
    return MakeModulusImage(mapping) ? 0 : 1;
}
