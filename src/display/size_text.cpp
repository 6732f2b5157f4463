#include "display/size_text.h"

namespace {

constexpr float kMicrometre = 1000.0f;

} // namespace

ScanSizeText ScanSizeForCaption(const ImageHeaderType* image)
{
    if (image->ImageSizeX >= kMicrometre && image->ImageSizeY >= kMicrometre)
        return {image->ImageSizeX / kMicrometre, image->ImageSizeY / kMicrometre, "um"};
    return {image->ImageSizeX, image->ImageSizeY, "nm"};
}
