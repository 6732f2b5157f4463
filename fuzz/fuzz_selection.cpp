// Fuzz target: any sequence of pick-mode events (type, position, buttons, handle) over a small
// image shown at any display size, for selections of any type, count, shape and flags, with
// handlers that end or keep the selection, and the rotation and translation commands. Nothing
// may be written outside the frame buffer or the selection's save buffer.
#include "fuzz_support.h"
#include "tavrin/dl_selection.h"
#include "display/placement.h"
#include "display/selection.h"
#include "display/vfs.h"
#include "image/geometry.h"

#include <vector>

namespace {

using fuzzsupport::Reader;

int g_answer = 1;
int Handler(int) { return g_answer; }

int16_t g_xs[16], g_ys[16];

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzzsupport::StartOnce();
    Reader in{data, size};
    // The frame store's buffers, exactly 512 by 512 (and 3 bytes a pixel for the 24-bit layer).
    std::vector<uint8_t> frame(512 * 512), rgb(512 * 512 * 3);
    uint8_t* buffers[2] = {frame.data(), rgb.data()};
    fuzzsupport::Check(OpenFrameStore(buffers, 1, nullptr) == 0, "frame store opens");

    const int n = 1 + static_cast<int>(in.Byte() % 64);
    ImageHeaderType* image = fuzzsupport::SeedImage(n, in.Byte());
    fuzzsupport::Check(image != nullptr, "image");
    static const int kSizes[] = {0, 16, 64, 100, 256, 400, 512};
    FSState.ImageDisplaySize = kSizes[in.Byte() % 7];
    DisplayImage(image, 0, 1);

    while (in.More()) {
        const unsigned op = in.Byte() % 8;
        if (op == 0) {
            static const int kTypes[] = {1, 7, 16, 25, 9, 33};
            const int type = kTypes[in.Byte() % 6];
            const int count = 1 + static_cast<int>(in.Byte() % 12);
            const int region = static_cast<int>(in.Byte() % 8);
            const unsigned flags = in.Byte();
            g_answer = (flags & 0x80) ? 0 : 1;
            SelectImagePoints(type, count, g_xs, g_ys, region, flags & 1, 0, 0, in.SignedWord() % 600, (flags >> 1) & 1,
                              (flags >> 2) & 1, 2, Handler);
            SelectionState.AutoRepeat = static_cast<int16_t>((flags >> 3) & 1);
        } else if (op == 1) {
            if (in.Byte() & 1) RotateImageA(); else ImageTranslate();
            if (CurrentItem != image) CurrentItem = image;
        } else {
            const int type = static_cast<int16_t>(in.Byte() % 40);
            const int x = in.SignedWord(), y = in.SignedWord();
            const int buttons = static_cast<int>(in.Byte() % 8);
            dl_SelectPointInVFS_Callback(static_cast<int16_t>(type), static_cast<int16_t>(x), static_cast<int16_t>(y),
                                         static_cast<int16_t>(buttons), in.SignedWord());
        }
        // A command may have left its result current; the events go on over the source.
        CurrentItem = image;
    }
    ResetProcessState();
    return 0;
}

extern "C" void TavrinFuzzSeeds(const char* directory)
{
    const std::string dir = directory;
    auto seed = [&](const char* name, std::vector<uint8_t> bytes) {
        fuzzsupport::WriteBytes(dir + "/" + name, std::string(bytes.begin(), bytes.end()));
    };
    // A rectangle at display size 256 over a 32-point image: start, two clicks.
    seed("seed_rectangle", {31, 7, 4, 0, 0, 1, 2, 2, 0, 0, 2, 1, 10, 0, 10, 0, 1, 0, 0, 2, 1, 10, 0, 10, 0, 0, 0, 0,
                            2, 1, 200, 0, 150, 0, 1, 0, 0});
    // A circle that stays open (handler answers 0), three shapes, then the right button.
    seed("seed_circles", {63, 3, 6, 0, 2, 1, 6, 0x80, 0, 0, 2, 2, 0, 1, 0, 1, 1, 0, 0, 2, 2, 255, 1, 0, 1, 1, 0, 0,
                          2, 2, 250, 1, 0, 1, 0, 0, 0, 2, 2, 5, 0, 5, 0, 4, 0, 0});
    // Rotation through the pick mode on a 64-point image at 512.
    seed("seed_rotation", {63, 9, 6, 1, 1, 2, 1, 100, 0, 100, 0, 1, 0, 0, 2, 1, 200, 0, 100, 0, 1, 0, 0, 2, 1, 200,
                           0, 200, 0, 1, 0, 0});
    // A polyline of twelve points with early end, and events of unknown types.
    seed("seed_polyline", {15, 1, 2, 0, 5, 11, 1, 6, 0, 0, 2, 5, 1, 0, 1, 0, 1, 0, 0, 2, 5, 9, 0, 3, 0, 1, 0, 0, 2,
                           33, 2, 0, 9, 0, 2, 0, 0, 2, 39, 255, 127, 255, 127, 7, 0, 0});
}
