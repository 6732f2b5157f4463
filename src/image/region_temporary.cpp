// The temporary item of the region commands that resample their result.
#include "image/regions.h"
#include "image/convert_size.h"
#include "store/data_list.h"
#include "store/duplicate.h"
#include "store/history.h"

ImageHeaderType* ResampleTemporary(ImageHeaderType* temporary, int n, int code)
{
    CurrentItem = temporary;
    ImageHeaderType* result = ConvertImageSize(temporary, n, 1);
    if (result) {
        CurrentItem = result;
        AddImProc2List(result, code);
    }
    ImageHeaderType* const before = PrevItem(temporary);
    const bool stillCurrent = CurrentItem == temporary;
    FreeResultItem(temporary);
    if (stillCurrent) CurrentItem = before;
    return result;
}
