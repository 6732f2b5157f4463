#include "image/filter_frame.h"
#include "display/placement.h"
#include "display/vfs.h"
#include "host/errors.h"
#include "host/log.h"
#include "host/wait.h"
#include "image/image_frame.h"
#include "store/data_list.h"
#include "store/duplicate.h"
#include "store/history.h"
#include "store/image_header.h"

ImageHeaderType* FilterSource()
{
    ImageCommand check;
    check.refuseSpecial = false;
    return CheckImageCommand(check);
}

ImageHeaderType* FilterResult(ImageHeaderType* source, bool displayFirst, const FilterFill& fill)
{
    const int nx = source->nx, ny = source->ny;
    if (displayFirst) BeginRowDisplay(nx, ny, source);
    ImageHeaderType* result = DuplicateForResult(source);
    if (!result) {
        if (displayFirst) EndBatch();
        HideWait();
        return nullptr;
    }
    if (!displayFirst) BeginRowDisplay(nx, ny, source);
    ZeroImageData(result);
    // All rows are computed first (on the cores there are), then shown in order here, so the
    // host sees one row after another as from a single pass.
    fill(source->PixData, result->PixData, nx, ny);
    for (int y = 0; y < ny; ++y) ShowCommandRow(result, y);
    FinishRowDisplay(nx, ny);
    CurrentItem = result;
    RegisterImageRegion(result);
    EndRowDisplay();
    return result;
}

void FinishFilterCommand(ImageHeaderType* result, const char* logText, int code)
{
    Log("%s", logText);
    AddImProc2List(result, code);
    ShowParameterText(result);
    HideWait();
}
