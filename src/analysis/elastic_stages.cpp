// The stages of the Elastic Modulus dialog: the reference curve, the sensitivities, Apply 1 to
// 3 with their order, and the end of the dialog.
#include "analysis/elastic_modulus.h"
#include "host/ap_callbacks.h"
#include "host/errors.h"
#include "host/globals.h"
#include "host/text.h"
#include "spectro/spectro.h"
#include "store/data_list.h"
#include "store/data_list_select.h"
#include "store/image_header.h"

#include <cstdio>

namespace {

// Picker type of the reference curve: the items the frame store filter accepts.
constexpr int kReferencePicker = SELECT_FRAME_STORE;
// "Elastic Modulus: slope not found on Out->In", "... on In->Out".
constexpr unsigned kSlopeNotFoundOutIn = 33287;
constexpr unsigned kSlopeNotFoundInOut = 33288;

void ClearApplyStages()
{
    ElasticModulusState& s = ElasticModulus();
    s.Apply1Done = s.Apply2Done = s.Apply3Done = false;
}

// The reference curve when it is still a spectrum of the list.
ImageHeaderType* ReferenceCurve()
{
    const ElasticModulusState& s = ElasticModulus();
    if (s.FCNumber < 0) return nullptr;
    ImageHeaderType* item = FindItemById(s.FCDataId);
    return item && CheckHeaderIsSpecType(item) && item->PixData ? item : nullptr;
}

} // namespace

int32_t ElasticModulusSelectFC(char* text)
{
    ElasticModulusState& s = ElasticModulus();
    s.CalcDone = false;
    ClearApplyStages();
    ResetElasticTable();
    s.FCNumber = -1;
    if (!CurrentItem) return -1;
    const int n = Ap.ap_SelectDataDialog(0, kReferencePicker);
    if (n < 0) return -1;
    ImageHeaderType* item = GetPtrData2DataItem(n, 0, kReferencePicker, 0, 0, CurrentItem);
    if (!item || !CheckHeaderIsSpecType(item) || !item->PixData || item->nx < 1) return -1;
    s.FCNumber = n;
    s.FCDataId = item->DataId;
    const float* x = SpecX(item);
    float largest = x[0];
    for (int i = 1; i < item->nx; ++i)
        if (x[i] > largest) largest = x[i];
    s.Param.RampLimit = largest;
    if (text) {
        char title[48];
        std::snprintf(text, 80, "%d) %s", n, ItemTitle(item, title));
    }
    return n;
}

int32_t ElasticModulusCalculate()
{
    ElasticModulusState& s = ElasticModulus();
    s.CalcDone = false;
    ClearApplyStages();
    ResetElasticTable();
    ImageHeaderType* curve = ReferenceCurve();
    if (!curve) {
        Error(kSlopeNotFoundOutIn);
        return 1;
    }
    const float* x = SpecX(curve);
    const float* y = SpecY(curve);
    const wint_ElasticModulusType& p = s.Param;
    double outIn = 0.0, inOut = 0.0;
    if (CalculateSlope(x, y, curve->nx, 0, p.SmoothPoints, p.RampLimit, &outIn) != 0) {
        Error(kSlopeNotFoundOutIn);
        return 1;
    }
    if (CalculateSlope(x, y, curve->nx, 1, p.SmoothPoints, p.RampLimit, &inOut) != 0) {
        Error(kSlopeNotFoundInOut);
        return 1;
    }
    s.Param.SlopeOutIn = outIn;
    s.Param.SlopeInOut = inOut;
    s.CalcDone = true;
    return 0;
}

int32_t ElasticModulusApply(int stage)
{
    ElasticModulusState& s = ElasticModulus();
    const bool ready = stage == 1 ? s.CalcDone : stage == 2 ? s.CalcDone && s.Apply1Done
                                                            : s.CalcDone && s.Apply1Done && s.Apply2Done;
    if (!ready) return -1;
    int result = 1;
    if (stage == 1) {
        ClearApplyStages();
        result = ElasticModulusApply1();
        s.Apply1Done = result == 0;
    } else if (stage == 2) {
        s.Apply2Done = s.Apply3Done = false;
        result = ElasticModulusApply2();
        s.Apply2Done = result == 0;
    } else {
        s.Apply3Done = false;
        result = ElasticModulusApply3();
        s.Apply3Done = result == 0;
    }
    return result;
}

void ElasticModulusCloseDlg()
{
    FreeElasticArrays();
    ResetElasticTable();
    ClearApplyStages();
}
