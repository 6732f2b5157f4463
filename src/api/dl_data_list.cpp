// Entry points: the data list.
#include "tavrin/dl_data_list.h"
#include "host/trace.h"
#include "store/data_list.h"
#include "store/data_list_commands.h"
#include "store/data_list_select.h"

static_assert(TV_SELECT_ALL == SELECT_ALL && TV_SELECT_FRAME_STORE == SELECT_FRAME_STORE, "selection modes");
static_assert(TV_DATA_OWNED_SPECTRUM == DATA_OWNED_SPECTRUM && TV_DATA_SAME_CLASS_BEHIND == DATA_SAME_CLASS_BEHIND,
              "data type bits");

TAVRIN_API ImageHeaderType* dl_GetCurrentImagePtr(void)
{
    TraceEntry("dl_GetCurrentImagePtr");
    return CurrentItem;
}

TAVRIN_API void dl_SetCurrentImagePtr(ImageHeaderType* item)
{
    TraceEntry("dl_SetCurrentImagePtr");
    SetCurrentItemFromHost(item);
}

TAVRIN_API int16_t dl_GetDataDescriptor(int16_t n, char* text, int16_t ms, int16_t md)
{
    // The trace shows the answer and the text, so it follows the work.
    const int answer = GetDataDescriptor(text, n, ms, md);
    TraceEntry("%d=dl_GetDataDesc(%d,%s)  (n=%d ms=%d md=%d)", answer, n, text ? text : "", n, ms, md);
    return static_cast<int16_t>(answer);
}

TAVRIN_API void dl_SetDataItem(int16_t n)
{
    TraceEntry("SetDataItem %d", n);
    SelectDataItem(n, 0, SELECT_ALL);
}

TAVRIN_API void dl_NextData1(void)
{
    TraceEntry("dl_NextData1");
    StepData(StepDirection::Forward);
}

TAVRIN_API void dl_PreviousData1(void)
{
    TraceEntry("dl_PreviousData1");
    StepData(StepDirection::Backward);
}

TAVRIN_API void dl_NextDataType1(void)
{
    TraceEntry("dl_NextDataType1");
    StepDataType(StepDirection::Forward);
}

TAVRIN_API void dl_PreviousDataType1(void)
{
    TraceEntry("dl_PreviousDataType1");
    StepDataType(StepDirection::Backward);
}

TAVRIN_API void dl_EraseDataNext(void)
{
    TraceEntry("dl_EraseDataNext");
    EraseCurrentData(StepDirection::Forward);
}

TAVRIN_API void dl_EraseDataPrevious(void)
{
    TraceEntry("dl_EraseDataPrevious");
    EraseCurrentData(StepDirection::Backward);
}

TAVRIN_API void dl_EraseAllData(void)
{
    TraceEntry("DLL_EraseAllData");
    EraseAllData();
}

TAVRIN_API void dl_EraseAllDataExceptCurrent(void)
{
    TraceEntry("dl_EraseAllDataExceptCurrent");
    EraseAllDataExceptCurrent();
}

TAVRIN_API int32_t dl_IsCurrentDataTypeImage(void)
{
    TraceEntry("dl_IsCurrentDataTypeImage");
    return CurrentDataTypeBits();
}
