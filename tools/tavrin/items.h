// Opening, showing and saving items from the host's commands.
#pragma once

#include <cstddef>
#include <string>

#include "tavrin/tavrin.h"

// The bytes of the item's data block: nx by ny codes of an image (u16), or nx f32 Y values
// then nx f32 X values of a spectrum.
size_t DataBlockBytes(const ImageHeaderType* item);

// Opens the file with dl_OpenSTMData; answers the new current item, or null (with "not opened"
// on standard error) when no new item came. Texts the library reports meanwhile are warnings
// about the file; the command goes on.
ImageHeaderType* OpenItem(const std::string& path);

// The save type that the extension of `path` names (".tif" 16 bits, or 8 with `eightBit`;
// ".bin", ".bft", ".asc", ".aft", ".spc", ".dat", ".hdr"), 0 for an unknown extension.
wint_SaveFileType SaveTypeFor(const std::string& path, bool eightBit);

// Saves the current item with dl_SaveData, overwriting without a question; false on failure.
bool SaveCurrentItem(const std::string& path, bool eightBit);

// How an image is shown: display mode 0 to 4, display size (0: its own size up to 512),
// colour table 0 to 7 (-1: the one in force), and the full display.
struct ShowOptions {
    int mode = 0;
    int size = -1;
    int table = -1;
    bool full = false;
};

// Clears the current frame store and shows the current item in it with the options.
void ShowCurrentItem(const ShowOptions& options);

// The output of an image command: ".png" for the picture of the result, or a 16-bit ".tif".
bool IsImageResultPath(const std::string& path);
// Opens the file for an image command and shows its image; answers it, or null after a message
// on standard error when the file does not open or holds no image.
const ImageHeaderType* OpenImageForCommand(const char* command, const std::string& path);
// After an image command on `source`: 1 when it reported an error or made no new item; else the
// new current item goes to `out` (its picture for ".png", the file for ".tif"), its name is
// printed, and the answer is 0.
int WriteImageResult(const ImageHeaderType* source, const std::string& out);
