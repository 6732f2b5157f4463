// The methods of the multi-spectra object as script entry points: each takes the one object of
// dl_GetMultiSpecDisp(); an item is named by its place in the list, from 0. The parameter
// record is read and set field by field; its item list stays the object's own.
#pragma once

#include "script_values.h"
#include "tavrin/tavrin.h"

template <> const RecordFields* FieldsOf<wint_MultiSpecParamType>();
template <> const RecordFields* FieldsOf<MultiSpecParam_ItemType>();

// Initialise(id, lowest, highest); answers the number of items.
int32_t ScriptMultiSpecInitialise(int32_t id, int32_t lowest, int32_t highest);
void ScriptMultiSpecFinish(int16_t release);
// The parameter record in use; answers its number of items.
int32_t ScriptMultiSpecGetParam(wint_MultiSpecParamType* param);
// CopyParams2DLLAndAllocateMemAndPlot with the fields given and the object's own items.
int32_t ScriptMultiSpecSetParamAndPlot(wint_MultiSpecParamType* param);
// Item i of the list; 0 for a place outside the list.
int32_t ScriptMultiSpecGetItem(int32_t i, MultiSpecParam_ItemType* item);
// Sets what the user chooses of item i: Selected, Colour, the shifts and gains.
int32_t ScriptMultiSpecSetItem(int32_t i, MultiSpecParam_ItemType* item);
int32_t ScriptMultiSpecSelectedForDisplay(int32_t i);
double ScriptMultiSpecConvertX(int32_t i, double x);
double ScriptMultiSpecConvertY(int32_t i, double y);
int32_t ScriptMultiSpecGetLowestID();
int32_t ScriptMultiSpecGetHighestID();
void ScriptMultiSpecMultiPlot(int32_t vfs);
void ScriptMultiSpecUpdateLineMarkerData();
int32_t ScriptMultiSpecSave(const char* path);
int32_t ScriptMultiSpecLoad(const char* path);
int32_t ScriptMultiSpecExport(const char* path);
