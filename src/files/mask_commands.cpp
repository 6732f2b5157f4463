#include "files/mask_commands.h"

#include "files/mask_file.h"
#include "host/error_numbers.h"
#include "host/errors.h"
#include "image/fft_commands.h"
#include "image/fft_mask.h"
#include "store/data_list.h"

void FFTWinOpen(const char* path)
{
    if (!FFTWinOpenChecks()) return;
    const ImageHeaderType* item = CurrentItem;
    if (!GetMaskMem(item->nx, item->ny)) return;
    if (LoadMask(path, MaskWidth(), MaskHeight(), MaskData())) {
        FreeMask();
        return;
    }
    ShowMask(true, true, FFTWinParam().MaskZoom);
}

void FFTWinSave(const char* path)
{
    if (!MaskExists()) {
        Error(ERR_NO_WINDOW);
        return;
    }
    SaveMask(path, MaskWidth(), MaskHeight(), MaskData());
}
