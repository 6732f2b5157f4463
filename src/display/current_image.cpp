#include "display/current_image.h"
#include "host/errors.h"
#include "store/data_list.h"
#include "store/image_header.h"

#include <cstring>

bool IsReadableImage(const ImageHeaderType* item)
{
    return item && CheckHeaderIsImageType(item) && item->PixData && item->nx > 0 && item->ny > 0;
}

ImageHeaderType* RequireReadableImage()
{
    if (IsReadableImage(CurrentItem)) return CurrentItem;
    Error(ERR_NO_IMAGES);
    return nullptr;
}

const char* TitleText(const ImageHeaderType* item, TitleBuffer& text)
{
    std::memcpy(text, item->Title, sizeof item->Title);
    text[sizeof item->Title] = '\0';
    return text;
}
