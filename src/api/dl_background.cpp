// Entry points: background subtraction.
#include "tavrin/dl_background.h"
#include "host/trace.h"
#include "image/subt_back.h"

TAVRIN_API void dl_GetSubtBckgrndParam(wint_SubtBckgrndParamType* param, int32_t finish)
{
    TraceEntry("dl_GetSubtBckgrndParam: %d", finish);
    SubtBack().GetParam(param, finish);
}

TAVRIN_API uint32_t dl_SetSubtBckgrndParam(const wint_SubtBckgrndParamType* param)
{
    TraceEntry("dl_SetSubtBckgrndParam");
    return SubtBack().SetParam(param);
}

TAVRIN_API void dl_SubtBackUpdateImageDisplay(uint32_t flags)
{
    TraceEntry("dl_SubtBackUpdateImageDisplay: %u", flags);
    SubtBack().UpdateImageDisplay(flags);
}

TAVRIN_API void dl_pb_SubtBckgrnd(void)
{
    TraceEntry("dl_pb_SubtBckgrnd");
}
