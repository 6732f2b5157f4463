// Fuzz target of the frequency domain's loaders. The first byte chooses:
//   even: the bytes are a mask file, loaded for a 128, 256 or 512 image (second byte); a
//         failed load leaves the caller's buffer as it was, a loaded one holds only 0 and 255;
//   odd:  the bytes are an image file; when it loads with complex data, a mask (all passing
//         but a stop circle from the next bytes) is applied and the image transformed back.
// Nothing may leak: the list is emptied and every block freed after each input.
#include "fuzz_support.h"
#include "files/mask_file.h"
#include "files/tiff_read.h"
#include "image/fft_commands.h"
#include "image/fft_image.h"
#include "image/fft_mask.h"

#include <vector>

namespace {

void LoadMaskInput(const uint8_t* data, size_t size)
{
    fuzzsupport::Reader in{data, size};
    const int sides[3] = {128, 256, 512};
    const unsigned choice = in.Byte();
    const int width = sides[choice % 3], height = sides[(choice / 3) % 3];
    std::vector<uint8_t> mask(static_cast<size_t>(width) * height, 7);
    const uint8_t* body = data + in.at;
    const size_t bodySize = size - in.at;
    if (LoadMaskBytes(body, bodySize, width, height, mask.data()) != 0) {
        for (uint8_t b : mask) fuzzsupport::Check(b == 7, "failed load leaves the buffer");
        return;
    }
    for (uint8_t b : mask) fuzzsupport::Check(b == 0 || b == 255, "loaded mask holds 0 and 255");
}

void TransformInput(const uint8_t* data, size_t size)
{
    fuzzsupport::Reader in{data, size};
    const int cx = static_cast<int>(in.Word() % 600), cy = static_cast<int>(in.Word() % 600);
    const int rx = static_cast<int>(in.Word() % 600), ry = static_cast<int>(in.Word() % 600);
    const int zoom = static_cast<int>(in.Byte() % 4) + 1;
    const std::string path = fuzzsupport::WriteInput(data + in.at, size - in.at);
    if (LoadImageFile(path.c_str(), 0, 0, 1) != 0) return;
    ImageHeaderType* item = CurrentItem;
    if (item->FFTData && GetMaskMem(item->nx, item->ny)) {
        for (int i = 0; i < MaskWidth() * MaskHeight(); ++i) MaskData()[i] = 255;
        AddMaskCircle(cx, cy, rx, ry, zoom, 0);
        ApplyMask();
    }
    InverseFFTCommand();
    FreeMask();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzzsupport::StartOnce();
    if (size == 0) return 0;
    const size_t blocks = LiveBlockCount();
    if (data[0] % 2 == 0)
        LoadMaskInput(data + 1, size - 1);
    else
        TransformInput(data + 1, size - 1);
    EraseAllItems();
    fuzzsupport::Check(FirstItem == nullptr, "list emptied");
    fuzzsupport::Check(!MaskExists(), "no mask left");
    fuzzsupport::Check(LiveBlockCount() == blocks, "every block freed");
    return 0;
}

extern "C" void TavrinFuzzSeeds(const char* directory)
{
    ResetProcessState();
    const std::string dir = directory;
    // A mask file of 128 by 128, with its choice byte (0) and the mode byte (even) in front.
    std::vector<uint8_t> mask(128 * 128, 0);
    for (int i = 0; i < 128 * 128; i += 3) mask[static_cast<size_t>(i)] = 255;
    const std::string maskPath = dir + "/mask.bin";
    if (SaveMask(maskPath.c_str(), 128, 128, mask.data()) == 0) {
        FILE* f = std::fopen(maskPath.c_str(), "rb");
        std::string bytes("\x00\x00", 2);
        int c;
        while (f && (c = std::fgetc(f)) != EOF) bytes += static_cast<char>(c);
        if (f) std::fclose(f);
        fuzzsupport::WriteBytes(dir + "/seed_mask.bin", bytes);
    }
    // An image of 32 by 32 with complex data, behind the mode byte and the circle's 9 bytes.
    ImageHeaderType* image = fuzzsupport::SeedImage(32, 5);
    if (!image) return;
    CurrentItem = image;
    if (ImageHeaderType* spectrum = ForwardFFT()) {
        const std::string tif = dir + "/fft32.tif";
        saveTiffImage(spectrum, tif.c_str(), 0);
        FILE* f = std::fopen(tif.c_str(), "rb");
        std::string bytes("\x01\x10\x00\x10\x00\x18\x00\x10\x00\x02", 10);
        int c;
        while (f && (c = std::fgetc(f)) != EOF) bytes += static_cast<char>(c);
        if (f) std::fclose(f);
        fuzzsupport::WriteBytes(dir + "/seed_fft32.bin", bytes);
    }
    EraseAllItems();
}
