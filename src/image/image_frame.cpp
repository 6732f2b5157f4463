#include "image/image_frame.h"
#include "display/display_param.h"
#include "display/placement.h"
#include "display/vfs.h"
#include "host/errors.h"
#include "host/log.h"
#include "host/text.h"
#include "host/wait.h"
#include "store/data_list.h"
#include "store/duplicate.h"
#include "store/history.h"
#include "store/image_header.h"

#include <cstdarg>

namespace {

int RowsWidth(const ImageCommand& command, const ImageHeaderType* result)
{
    return command.rowsWidth > 0 ? command.rowsWidth : result->nx;
}

int RowsHeight(const ImageCommand& command, const ImageHeaderType* result)
{
    return command.rowsHeight > 0 ? command.rowsHeight : result->ny;
}

} // namespace

void ShowCommandRow(const ImageHeaderType* result, int line, int width)
{
    if (width <= 0) width = result->nx;
    ShowDisplayRow(line, result->PixData + static_cast<size_t>(line) * static_cast<size_t>(width));
}

ImageHeaderType* CheckImageCommand(const ImageCommand& command)
{
    ImageHeaderType* source = CurrentItem;
    // A spectrum or a record without pixels is no image to work on.
    if (!source || !CheckHeaderIsImageType(source) || !source->PixData || source->nx <= 0 || source->ny <= 0) {
        Error(ERR_NO_IMAGES);
        return nullptr;
    }
    if (command.below > 0 && (source->nx >= command.below || source->ny >= command.below)) {
        Error(ERR_IMAGE_TOO_LARGE);
        return nullptr;
    }
    if (command.refuseSpecial && source->FFTData) {
        Error(ERR_FFT_IMAGE);
        return nullptr;
    }
    if (command.refuseSpecial && source->CITSHeader) {
        Error(ERR_MAPPING_IMAGE);
        return nullptr;
    }
    return source;
}

ImageHeaderType* MakeCommandResult(const ImageCommand& command, ImageHeaderType* source)
{
    if (command.shape == ResultShape::Resized) return DuplicateResized(source, command.nx, command.ny);
    return DuplicateForResult(source);
}

void BeginCommandRows(const ImageCommand& command, const ImageHeaderType* source, const ImageHeaderType* result)
{
    if (command.wait) ShowWait("%s", command.wait);
    BeginRowDisplay(RowsWidth(command, result), RowsHeight(command, result), source);
}

void FinishImageCommand(const ImageCommand& command, ImageHeaderType* result, const char* logText)
{
    CurrentItem = result;
    AddImProc2List(result, command.code);
    FinishRowDisplay(result->nx, result->ny);
    RegisterImageRegion(result);
    EndRowDisplay();
    if (logText) Log("%s", logText);
    if (command.registerTwice)
        RegisterImageRegion(result);
    else
        ShowParameterText(result);
    if (command.wait) HideWait();
}

void ShowImageForPointing(ImageHeaderType* image)
{
    if (!FSState.DisplayBusy || Display.FullDisplayOn) DisplayImage(image, 0, 1);
}

const char* CommandLogText(const char* format, ...)
{
    static char text[512];
    va_list args;
    va_start(args, format);
    FormatInto(text, sizeof text, format, args);
    va_end(args);
    return text;
}
