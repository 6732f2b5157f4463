// Fuzz target: every geometry command on an image of any size from 1 to 600 points a side and
// any codes, with any points for the two selection commands, and with an allocation failure
// placed by the input. Each command must leave the source untouched, make at most one new item
// of the size its rules give, and leave no block alive once its result is erased; a failed
// command must leave the list as it was.
#include "fuzz_support.h"
#include "image/convert_size.h"
#include "image/geometry.h"

#include <vector>

namespace {

using fuzzsupport::Reader;

// After a command on `source`: the source as it was; a result, if any, directly behind it, of
// `nx` by `ny`, current; erased again.
void CheckAndErase(ImageHeaderType* source, const std::vector<uint16_t>& before, int nx, int ny)
{
    fuzzsupport::Check(FirstItem == source, "the source stays first");
    fuzzsupport::Check(std::equal(before.begin(), before.end(), source->PixData), "the source is untouched");
    ImageHeaderType* result = source->Next;
    if (result) {
        fuzzsupport::Check(result->Next == nullptr && CurrentItem == result, "one new current item");
        fuzzsupport::Check(result->nx == nx && result->ny == ny, "result size");
        volatile uint32_t sum = 0;
        for (size_t i = 0; i < static_cast<size_t>(nx) * ny; ++i) sum = sum + result->PixData[i];
        EraseItem(result);
    } else {
        fuzzsupport::Check(CurrentItem == source, "a failed command keeps the current item");
    }
    CurrentItem = source;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzzsupport::StartOnce();
    Reader in{data, size};
    const int nx = 1 + static_cast<int>(in.Word() % 600), ny = 1 + static_cast<int>(in.Word() % 600);
    const unsigned failAt = in.Byte();   // 0: no failure, else the allocation (1 to 4) that fails
    int16_t points[6];
    for (int16_t& p : points) p = static_cast<int16_t>(static_cast<int>(in.Word() % 1400) - 400);

    const size_t blocks = LiveBlockCount();
    ImageHeaderType* source = fuzzsupport::ImageOfTheRestOfTheInput(nx, ny, in);
    const std::vector<uint16_t> before(source->PixData, source->PixData + static_cast<size_t>(nx) * ny);

    struct Step {
        void (*run)();
        int nx, ny;
    };
    const Step steps[] = {
        {ImageMirrorX, nx, ny},   {ImageMirrorY, nx, ny},    {TransposeImage, nx, ny},
        {RotateImage90, nx, ny},  {RotateImage180, nx, ny},  {RotateImage270, nx, ny},
        {[] { PadToPoints(256); }, 256, 256},  {[] { PadToPoints(512); }, 512, 512},
        {[] { InterpolateTo(128); }, 128, 128}, {[] { InterpolateTo(256); }, 256, 256},
        {[] { InterpolateTo(512); }, 512, 512},
    };
    for (const Step& step : steps) {
        if (failAt) FailAllocationsForTests(1, static_cast<int>((failAt - 1) % 4));
        step.run();
        FailAllocationsForTests(0);
        CheckAndErase(source, before, step.nx, step.ny);
    }

    // Rotation by an angle: the command holds its item, the continuation fills or frees it.
    if (failAt) FailAllocationsForTests(1, static_cast<int>((failAt - 1) % 4));
    RotateImageA();
    FailAllocationsForTests(0);
    for (int i = 0; i < 3; ++i) {
        RotatePointsX[i] = points[2 * i];
        RotatePointsY[i] = points[2 * i + 1];
    }
    if (RotateHeldItem) RotateImageA_Continue((failAt & 0x80) ? 0 : 1);
    fuzzsupport::Check(RotateHeldItem == nullptr, "the held rotation is settled");
    CheckAndErase(source, before, nx, ny);

    TranslatePointsX[0] = points[0], TranslatePointsY[0] = points[1];
    TranslatePointsX[1] = points[2], TranslatePointsY[1] = points[3];
    if (failAt) FailAllocationsForTests(1, static_cast<int>((failAt - 1) % 4));
    ImageTranslate_Continue(1);
    FailAllocationsForTests(0);
    CheckAndErase(source, before, nx, ny);

    // The cross-section resampler on the same codes.
    if (ImageHeaderType* gaps = ConvertImageSizeKeepGaps(source, 1 + static_cast<int>(points[4] & 511), 0))
        EraseItem(gaps);
    CurrentItem = source;

    EraseItem(source);
    ResetProcessState();
    fuzzsupport::Check(LiveBlockCount() == blocks, "every block is freed");
    return 0;
}

extern "C" void TavrinFuzzSeeds(const char* directory)
{
    const std::string dir = directory;
    auto seed = [&](const char* name, int nx, int ny, unsigned failAt, std::vector<int> pts) {
        std::string bytes;
        auto word = [&](unsigned v) {
            bytes += static_cast<char>(v & 0xff);
            bytes += static_cast<char>(v >> 8);
        };
        word(static_cast<unsigned>(nx - 1));
        word(static_cast<unsigned>(ny - 1));
        bytes += static_cast<char>(failAt);
        for (int p : pts) word(static_cast<unsigned>(p + 400));
        for (int i = 0; i < 97; ++i) word(static_cast<unsigned>(i * 2654435761u >> 16));
        fuzzsupport::WriteBytes(dir + "/" + name, bytes);
    };
    seed("seed_wide", 256, 128, 0, {64, 64, 200, 64, 100, 120});
    seed("seed_tall", 128, 256, 0, {10, 10, 10, 10, 30, 10});
    seed("seed_one", 1, 1, 0, {0, 0, 1, 0, 0, 1});
    seed("seed_square_shift", 100, 100, 0, {0, 0, 150, -20, 5, 5});
    seed("seed_fail_pixels", 37, 300, 2, {5, 5, 9, 9, 9, 2});
    seed("seed_large_dropped", 600, 599, 0x80, {300, 300, 500, 300, 300, 500});
}
