#include "display/display_param.h"
#include "display/full_display.h"
#include "display/render.h"
#include "display/view3d.h"

void ResetImageDisplayState()
{
    ResetRowWriter();
    ResetDisplaySettings();
    ResetFullDisplayState();
    ResetView3DState();
}
