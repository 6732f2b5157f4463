// Fuzz target: the whole load of an image file. A failed load must leave the data list empty
// and no block alive; a successful one leaves exactly one item, which is then erased.
#include "fuzz_support.h"
#include "files/tiff_read.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzzsupport::StartOnce();
    fuzzsupport::Check(FirstItem == nullptr, "empty list before the load");
    const size_t blocks = LiveBlockCount();
    const std::string path = fuzzsupport::WriteInput(data, size);
    const int result = LoadImageFile(path.c_str(), 0, 0, 1);
    if (result != 0) {
        fuzzsupport::Check(FirstItem == nullptr && CurrentItem == nullptr, "failed load leaves no item");
        fuzzsupport::Check(LiveBlockCount() == blocks, "failed load leaves no block");
        return 0;
    }
    fuzzsupport::Check(FirstItem != nullptr && FirstItem == CurrentItem && FirstItem->Next == nullptr,
                       "one new current item");
    const ImageHeaderType* item = CurrentItem;
    fuzzsupport::Check(item->PixData != nullptr && CheckValidImageHeader(item) == 1, "item has valid pixels");
    fuzzsupport::Check((item->FFTData != 0) == (item->FFTDataPtr != nullptr), "FFT flag matches its block");
    EraseItem(CurrentItem);
    fuzzsupport::Check(FirstItem == nullptr, "erased");
    fuzzsupport::Check(LiveBlockCount() == blocks, "erase frees every block");
    return 0;
}

extern "C" void TavrinFuzzSeeds(const char* directory) { fuzzsupport::WriteSeeds(directory); }
