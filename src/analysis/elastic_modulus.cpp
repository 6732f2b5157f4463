// The elastic modulus object: its record, stage flags and point table, and the dialog record.
#include "analysis/elastic_modulus.h"
#include "host/error_numbers.h"
#include "host/errors.h"
#include "host/text.h"
#include "store/data_list.h"
#include "store/image_header.h"
#include "store/memory.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>

ElasticModulusState& ElasticModulus()
{
    static ElasticModulusState state = [] {
        ElasticModulusState s;
        DefaultElasticModulusParam(&s.Param);
        return s;
    }();
    return state;
}

void DefaultElasticModulusParam(wint_ElasticModulusType* param)
{
    std::memset(param, 0, sizeof *param);
    param->SmoothPoints = 9;
    param->ContactMethod = 1;
    param->RampLimit = 1000.0;
    param->SpringConstant = 1.0;
    param->TipRadius = 2.0;
    param->PoissonRatio = 0.3;
    param->FCStatus = 2;
    param->CalcStatus = 2;
    param->Apply1Status = 2;
    param->Apply2Status = 2;
}

void ResetElasticTable()
{
    ElasticModulusState& s = ElasticModulus();
    const size_t points = static_cast<size_t>(kElasticTableSize) * kElasticTableSize;
    // One block for the life of the process, outside the registry of the data blocks.
    if (!s.Table) {
        s.Table = static_cast<ElasticPointType*>(std::calloc(points, sizeof(ElasticPointType)));
        if (!s.Table) Error(ERR_NO_MEMORY);
    } else std::memset(static_cast<void*>(s.Table), 0, points * sizeof(ElasticPointType));
}

void FreeElasticArrays()
{
    ElasticModulusState& s = ElasticModulus();
    for (float** array : {&s.XDeflec, &s.YDeflec, &s.XForce, &s.YForce}) {
        efree(*array);
        *array = nullptr;
    }
}

void ResetElasticModulus()
{
    ElasticModulusState& s = ElasticModulus();
    FreeElasticArrays();
    if (s.Table) ResetElasticTable();
    DefaultElasticModulusParam(&s.Param);
    s.CalcDone = s.Apply1Done = s.Apply2Done = s.Apply3Done = false;
    s.Minimum = s.Maximum = s.Average = 0.0f;
    s.cx = s.cy = s.ni = 0;
    s.FCNumber = -1;
}

namespace {

ImageHeaderType* CurrentImage()
{
    ImageHeaderType* image = CurrentItem;
    if (!image || !CheckHeaderIsImageType(image)) {
        Error(ERR_NO_IMAGES);
        return nullptr;
    }
    return image;
}

int StatusOf(bool done) { return done ? 1 : 2; }

// "All points valid." or the count and share of invalid points of one stage.
void ValidText(char (&text)[80], bool second, const ImageHeaderType* image)
{
    const ElasticModulusState& s = ElasticModulus();
    int invalid = 0;
    for (int y = 0; s.Table && y < s.cy; ++y)
        for (int x = 0; x < s.cx; ++x) {
            const ElasticPointType& p = s.Table[y * kElasticTableSize + x];
            invalid += (second ? p.Valid2 : p.Valid1) ? 0 : 1;
        }
    if (invalid == 0) {
        strncpy0(text, "All points valid.", sizeof text);
        return;
    }
    const double share = image->nx > 0 && image->ny > 0 ? invalid * 100.0 / image->nx / image->ny : 0.0;
    std::snprintf(text, sizeof text, "%d (%.2f%%) invalid points", invalid, share);
}

// A constant that must be positive: the new value, else the stored one, else 1.0.
double PositiveOr(double value, double stored)
{
    if (value > 0.0) return value;
    return stored > 0.0 ? stored : 1.0;
}

} // namespace

int32_t GetElasticModulusParam(wint_ElasticModulusType* param)
{
    ImageHeaderType* image = CurrentImage();
    if (!image || !param) return 0;
    ElasticModulusState& s = ElasticModulus();
    wint_ElasticModulusType& p = s.Param;
    p.FCStatus = StatusOf(s.FCNumber >= 0);
    p.CalcStatus = StatusOf(s.CalcDone);
    p.Apply1Status = StatusOf(s.Apply1Done);
    p.Apply2Status = StatusOf(s.Apply2Done);
    p.ValidText1[0] = p.ValidText2[0] = p.ResultText[0] = '\0';
    if (s.Apply1Done) ValidText(p.ValidText1, false, image);
    if (s.Apply2Done) ValidText(p.ValidText2, true, image);
    if (s.Apply3Done)
        std::snprintf(p.ResultText, sizeof p.ResultText, "Min=%.3f. Max=%.3f. Avrg=%.3f", s.Minimum, s.Maximum,
                      s.Average);
    std::memcpy(param, &p, sizeof p);
    return 1;
}

int32_t SetElasticModulusParam(wint_ElasticModulusType* param)
{
    ImageHeaderType* image = CurrentImage();
    if (!image || !param) return 1;
    if (!image->CITSHeaderPtr) {
        Error(ERR_NOT_MAPPING);
        return 1;
    }
    ElasticModulusState& s = ElasticModulus();
    int smooth = param->SmoothPoints | 1;
    param->SmoothPoints = smooth < 5 ? 5 : smooth > 25 ? 25 : smooth;
    if (!(std::fabs(param->RampLimit - s.Param.RampLimit) <= 0.001) || param->ContactMethod != s.Param.ContactMethod) {
        s.Apply1Done = s.Apply2Done = s.Apply3Done = false;
        ResetElasticTable();
    }
    param->SpringConstant = PositiveOr(param->SpringConstant, s.Param.SpringConstant);
    param->TipRadius = PositiveOr(param->TipRadius, s.Param.TipRadius);
    param->PoissonRatio = PositiveOr(param->PoissonRatio, s.Param.PoissonRatio);
    std::memcpy(&s.Param, param, sizeof s.Param);
    return 0;
}
