// Entry points: the multi-spectra display object.
#include "tavrin/dl_multispec.h"
#include "analysis/multispec.h"
#include "host/trace.h"

TAVRIN_API CMultiSpecDisp* dl_GetMultiSpecDisp(void)
{
    TraceEntry("dl_GetMultiSpecDisp");
    return MultiSpecDisp();
}
