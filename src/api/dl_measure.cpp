// Entry points: the measuring object.
#include "tavrin/dl_measure.h"
#include "analysis/measure.h"
#include "host/trace.h"

TAVRIN_API CMeasure* dl_GetMeasureClass(void)
{
    TraceEntry("dl_GetMeasureClass");
    return MeasureObject();
}
