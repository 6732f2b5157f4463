#include "display/colour_startup.h"
#include "display/colour_param.h"
#include "display/lut.h"
#include "display/palette.h"
#include "host/startup.h"

void StartupColourTables()
{
    DecideTrueRGB(InitialisationRecord());
    SelectInputLUT(0);
    SelectOutputLUT(0);
    SetDefaultColourSet();
}

void FinishColourTables() { SelectOutputLUT(0); }

void LoadSelectedColourTable() { SelectColourTable(ColourTableNo); }

void ResetColourState()
{
    ResetLUTState();
    ResetPaletteState();
    ResetColourParamState();
}
