// Extract and replace: a rectangle of the image is cut out into a copy of the image's size
// (zeros around it) that remembers where it came from; after processing that copy, the
// rectangle is put back into a copy of an image of the same size.
#include "image/regions.h"
#include "image/image_frame.h"
#include "display/selection.h"
#include "host/errors.h"
#include "store/data_list.h"
#include "store/data_list_select.h"

#include <algorithm>
#include <cstring>

int16_t ExtractPointsX[2], ExtractPointsY[2];

namespace {

constexpr int kExtractCode = 87;
constexpr int kReplaceCode = 88;
constexpr int kSelectExtract = 9;
constexpr int kRectangleRegion = 2;
constexpr int kExtractCursor = 2;
constexpr const char* kExtractLog = "Extract area from '%s'\n";

// The current image, when there is one and it is no FFT image.
ImageHeaderType* CheckExtractImage()
{
    ImageCommand check;
    check.refuseSpecial = false;
    ImageHeaderType* image = CheckImageCommand(check);
    if (image && image->FFTData) {
        Error(ERR_FFT_IMAGE);
        return nullptr;
    }
    return image;
}

// The remembered rectangle of an extract: non-negative, of more than one point each way, and
// inside the image.
bool HoldsExtractRectangle(const ImageHeaderType* image)
{
    return image->ExtractX2 > 0 && image->ExtractY2 > 0 && image->ExtractX2 > image->ExtractX1 &&
           image->ExtractY2 > image->ExtractY1 && image->ExtractX1 >= 0 && image->ExtractY1 >= 0 &&
           image->ExtractX2 < image->nx && image->ExtractY2 < image->ny;
}

// Columns x1 to x2 of rows y1 to y2 from `from` into `to` (both nx wide), clipped to the image.
void CopyRectangleRows(const ImageHeaderType* from, ImageHeaderType* to, int x1, int y1, int x2, int y2)
{
    const int nx = from->nx;
    x1 = std::max(x1, 0);
    y1 = std::max(y1, 0);
    x2 = std::min(x2, nx - 1);
    y2 = std::min(y2, from->ny - 1);
    if (x2 < x1) return;
    for (int y = y1; y <= y2; ++y) {
        const size_t at = static_cast<size_t>(y) * nx + x1;
        std::memcpy(to->PixData + at, from->PixData + at, static_cast<size_t>(x2 - x1 + 1) * sizeof(uint16_t));
    }
}

int ExtractSelected(int buttons) { return ExtractArea(buttons); }

} // namespace

void StartExtractArea()
{
    ImageHeaderType* image = CheckExtractImage();
    if (!image) return;
    ShowImageForPointing(image);
    SelectImagePoints(kSelectExtract, 2, ExtractPointsX, ExtractPointsY, kRectangleRegion, 0, 0, 0, 0, 0, 0,
                      kExtractCursor, ExtractSelected);
}

int ExtractArea(int status)
{
    if (!(status & 1)) return 1;
    if (ExtractPointsX[0] == ExtractPointsX[1] && ExtractPointsY[0] == ExtractPointsY[1]) {
        Error(ERR_INVALID_ENTRY);
        return 1;
    }
    const int x1 = std::min(ExtractPointsX[0], ExtractPointsX[1]), x2 = std::max(ExtractPointsX[0], ExtractPointsX[1]);
    const int y1 = std::min(ExtractPointsY[0], ExtractPointsY[1]), y2 = std::max(ExtractPointsY[0], ExtractPointsY[1]);
    ImageCommand command;
    command.refuseSpecial = false;
    command.code = kExtractCode;
    RunImageCommand(
        command,
        [=](const ImageHeaderType* source, ImageHeaderType* result) {
            result->ExtractX1 = static_cast<int16_t>(x1);
            result->ExtractX2 = static_cast<int16_t>(x2);
            result->ExtractY1 = static_cast<int16_t>(y1);
            result->ExtractY2 = static_cast<int16_t>(y2);
            std::memset(result->PixData, 0, static_cast<size_t>(source->nx) * source->ny * sizeof(uint16_t));
            CopyRectangleRows(source, result, x1, y1, x2, y2);
            for (int y = 0; y < result->ny; ++y) ShowCommandRow(result, y);
        },
        kExtractLog);
    return 1;
}

void ReplaceArea()
{
    ImageHeaderType* extract = CheckExtractImage();
    if (!extract) return;
    if (!HoldsExtractRectangle(extract)) {
        Error(ERR_NOT_EXTRACT);
        return;
    }
    const ImageHeaderType* target = SelectDataByHost(1, SELECT_SAME_SOURCE);
    if (!target) return;
    if (!target->PixData || target->nx != extract->nx || target->ny != extract->ny) {
        Error(ERR_SAME_PIXEL_COUNT);
        return;
    }
    ImageCommand command;
    command.refuseSpecial = false;
    command.code = kReplaceCode;
    ImageHeaderType* result = MakeCommandResult(command, extract);
    if (!result) return;
    BeginCommandRows(command, extract, result);
    std::memcpy(result->PixData, target->PixData, static_cast<size_t>(extract->nx) * extract->ny * sizeof(uint16_t));
    CopyRectangleRows(extract, result, extract->ExtractX1, extract->ExtractY1, extract->ExtractX2, extract->ExtractY2);
    result->ExtractX1 = result->ExtractX2 = result->ExtractY1 = result->ExtractY2 = 0;
    for (int y = 0; y < result->ny; ++y) ShowCommandRow(result, y);
    FinishImageCommand(command, result, CommandLogText(kExtractLog, result->Title));
}

void ResetRegionState()
{
    std::memset(ExtractPointsX, 0, sizeof ExtractPointsX);
    std::memset(ExtractPointsY, 0, sizeof ExtractPointsY);
}
