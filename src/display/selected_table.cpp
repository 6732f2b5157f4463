#include "display/selected_table.h"
#include "display/lut.h"

void SelectedColourTable(uint16_t red[256], uint16_t green[256], uint16_t blue[256])
{
    GetOutputLUT(CurrentOutputLUT(), red, green, blue);
}
