#include "display/selected_table.h"
#include "display/default_tables.h"

void SelectedColourTable(uint16_t red[256], uint16_t green[256], uint16_t blue[256])
{
    // The colour tables of the frame stores are not built yet: the table in force is the
    // default one, number 3.
    BuildDefaultColourTable(3, red, green, blue);
}
