#include "script_multispec.h"
#include "record_fields.h"

#include "analysis/multispec.h"

#include <string>

namespace {

CMultiSpecDisp& Disp() { return *dl_GetMultiSpecDisp(); }

void NeedItem(int32_t i)
{
    if (i < 0 || i >= Disp().ItemCount())
        throw ScriptError("no multi-spectra item " + std::to_string(i) + " (there are " +
                          std::to_string(Disp().ItemCount()) + ")");
}

} // namespace

// Arrays field by field: AxisX0 .. AxisX2 (low, high, step), MarkerOn0 .. MarkerOn3 (Y1, X1, Y2,
// X2) and so on; the item pointer is not a script field.
template <>
const RecordFields* FieldsOf<wint_MultiSpecParamType>()
{
    using P = wint_MultiSpecParamType;
#define ELEM(array, i, kind) \
    RecordField { #array #i, offsetof(P, array) + (i) * sizeof(P::array[0]), sizeof(P::array[0]), RecordField::kind }
    static const RecordField fields[] = {
        TAVRIN_RECORD_FIELD(P, MatchYUnits), TAVRIN_RECORD_FIELD(P, MatchScanMode), TAVRIN_RECORD_FIELD(P, LockGain),
        TAVRIN_RECORD_FIELD(P, ShowAverages), TAVRIN_RECORD_FIELD(P, AutoAxisX), TAVRIN_RECORD_FIELD(P, AutoAxisY),
        ELEM(AxisX, 0, F64), ELEM(AxisX, 1, F64), ELEM(AxisX, 2, F64), ELEM(AxisY, 0, F64), ELEM(AxisY, 1, F64),
        ELEM(AxisY, 2, F64), TAVRIN_RECORD_FIELD(P, DisplayUnitsX), TAVRIN_RECORD_FIELD(P, DisplayUnitsY),
        ELEM(MarkerOn, 0, I16), ELEM(MarkerOn, 1, I16), ELEM(MarkerOn, 2, I16), ELEM(MarkerOn, 3, I16),
        ELEM(MarkerPos, 0, F64), ELEM(MarkerPos, 1, F64), ELEM(MarkerPos, 2, F64), ELEM(MarkerPos, 3, F64),
        ELEM(MarkerColour, 0, U32), ELEM(MarkerColour, 1, U32), ELEM(MarkerColour, 2, U32),
        ELEM(MarkerColour, 3, U32), TAVRIN_RECORD_FIELD(P, PrimaryID), TAVRIN_RECORD_FIELD(P, LockShift),
        TAVRIN_RECORD_FIELD(P, NoOfItems),
    };
#undef ELEM
    static const RecordFields table = {"MultiSpecParam", fields, sizeof fields / sizeof fields[0]};
    return &table;
}

template <>
const RecordFields* FieldsOf<MultiSpecParam_ItemType>()
{
    using I = MultiSpecParam_ItemType;
    static const RecordField fields[] = {
        TAVRIN_RECORD_FIELD(I, ID),     TAVRIN_RECORD_FIELD(I, Ramp),        TAVRIN_RECORD_FIELD(I, Matched),
        TAVRIN_RECORD_FIELD(I, Selected), TAVRIN_RECORD_FIELD(I, Colour),    TAVRIN_RECORD_FIELD(I, Title),
        TAVRIN_RECORD_FIELD(I, File),   TAVRIN_RECORD_FIELD(I, Directory),   TAVRIN_RECORD_FIELD(I, Description),
        TAVRIN_RECORD_FIELD(I, Direction), TAVRIN_RECORD_FIELD(I, Np),       TAVRIN_RECORD_FIELD(I, MinX),
        TAVRIN_RECORD_FIELD(I, MaxX),   TAVRIN_RECORD_FIELD(I, MinY),        TAVRIN_RECORD_FIELD(I, MaxY),
        TAVRIN_RECORD_FIELD(I, ShiftX), TAVRIN_RECORD_FIELD(I, ShiftY),      TAVRIN_RECORD_FIELD(I, GainX),
        TAVRIN_RECORD_FIELD(I, GainY),
    };
    static const RecordFields table = {"MultiSpecItem", fields, sizeof fields / sizeof fields[0]};
    return &table;
}

int32_t ScriptMultiSpecInitialise(int32_t id, int32_t lowest, int32_t highest)
{
    Disp().Initialise(id, lowest, highest);
    return Disp().ItemCount();
}

void ScriptMultiSpecFinish(int16_t release) { Disp().Finish(release != 0); }

int32_t ScriptMultiSpecGetParam(wint_MultiSpecParamType* param)
{
    *param = Disp().Param();
    return param->NoOfItems;
}

int32_t ScriptMultiSpecSetParamAndPlot(wint_MultiSpecParamType* param)
{
    wint_MultiSpecParamType p = *param;
    p.Items = Disp().Items();
    p.NoOfItems = Disp().ItemCount();
    return Disp().CopyParams2DLLAndAllocateMemAndPlot(p) ? 1 : 0;
}

int32_t ScriptMultiSpecGetItem(int32_t i, MultiSpecParam_ItemType* item)
{
    if (i < 0 || i >= Disp().ItemCount()) return 0;
    *item = Disp().Items()[i];
    return 1;
}

int32_t ScriptMultiSpecSetItem(int32_t i, MultiSpecParam_ItemType* item)
{
    if (i < 0 || i >= Disp().ItemCount()) return 0;
    MultiSpecParam_ItemType& mine = Disp().Items()[i];
    mine.Selected = item->Selected;
    mine.Colour = item->Colour;
    mine.ShiftX = item->ShiftX, mine.ShiftY = item->ShiftY, mine.GainX = item->GainX, mine.GainY = item->GainY;
    return 1;
}

int32_t ScriptMultiSpecSelectedForDisplay(int32_t i)
{
    NeedItem(i);
    return Disp().SelectedForDisplay(Disp().Items()[i]) ? 1 : 0;
}

double ScriptMultiSpecConvertX(int32_t i, double x)
{
    NeedItem(i);
    return Disp().ConvertX(i, x);
}

double ScriptMultiSpecConvertY(int32_t i, double y)
{
    NeedItem(i);
    return Disp().ConvertY(i, y);
}

int32_t ScriptMultiSpecGetLowestID() { return Disp().GetLowestID(&Disp().Param()); }
int32_t ScriptMultiSpecGetHighestID() { return Disp().GetHighestID(&Disp().Param()); }
void ScriptMultiSpecMultiPlot(int32_t vfs) { Disp().MultiPlot(vfs); }
void ScriptMultiSpecUpdateLineMarkerData() { Disp().UpdateLineMarkerData(); }
int32_t ScriptMultiSpecSave(const char* path) { return Disp().SaveMultiSpecData(path); }
int32_t ScriptMultiSpecLoad(const char* path) { return Disp().LoadMultiSpecData(path); }
int32_t ScriptMultiSpecExport(const char* path) { return Disp().ExportMultiSpecData(path); }
