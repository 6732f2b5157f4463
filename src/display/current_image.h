// The current item as an image that a command can read: an image record with pixels and a
// size.
#pragma once

#include "tavrin/image_header.h"

bool IsReadableImage(const ImageHeaderType* item);
// The current item when it is a readable image, else null after 33536 "No images in memory".
ImageHeaderType* RequireReadableImage();

// The Title of an item as a terminated text (the field itself need not be terminated).
using TitleBuffer = char[sizeof(ImageHeaderType::Title) + 1];
const char* TitleText(const ImageHeaderType* item, TitleBuffer& text);
