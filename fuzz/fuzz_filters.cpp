// Fuzz target: every filter command on images of 1 to 64 pixels a side, with user kernels of
// any 16-bit values. Input: nx, ny (one byte each), the derivative angle (two bytes), the four
// user kernels (68 values of two bytes), then the codes (two bytes each, repeated to fill).
// Checks: the source stays as it was, each command makes one new current item of the same
// size, the border rule holds, medians lie within their neighbourhood, and one and two threads
// give the same bytes.
#include "fuzz_support.h"
#include "image/filter_bands.h"
#include "image/filter_kernels.h"
#include "image/filter_rows.h"
#include "image/filters.h"
#include "store/duplicate.h"
#include "tavrin/dl_filters.h"

#include <algorithm>
#include <vector>

namespace {

struct Reader {
    const uint8_t* data;
    size_t size;
    size_t at = 0;
    uint16_t Next16()
    {
        if (size == 0) return 0;
        const uint16_t v = static_cast<uint16_t>(data[at % size] | (data[(at + 1) % size] << 8));
        at += 2;
        return v;
    }
};

ImageHeaderType* MakeImage(int nx, int ny, Reader& in)
{
    ImageHeaderType* item = fuzzsupport::NewImageItem(CurrentItem, nx, ny);
    for (int i = 0; i < nx * ny; ++i) item->PixData[i] = in.Next16();
    CurrentItem = item;
    return item;
}

std::vector<uint16_t> Pixels(const ImageHeaderType* image)
{
    return {image->PixData, image->PixData + static_cast<size_t>(image->nx) * image->ny};
}

// Runs one command on `source` and checks the frame around it; answers the result's pixels.
template <class Command>
std::vector<uint16_t> Run(ImageHeaderType* source, const std::vector<uint16_t>& before, Command command)
{
    CurrentItem = source;
    command();
    ImageHeaderType* result = CurrentItem;
    fuzzsupport::Check(result != source && source->Next == result, "a new current item behind the source");
    fuzzsupport::Check(result->nx == source->nx && result->ny == source->ny, "same size");
    fuzzsupport::Check(Pixels(source) == before, "source untouched");
    std::vector<uint16_t> pixels = Pixels(result);
    FreeResultItem(result);
    CurrentItem = source;
    return pixels;
}

void CheckBorder(const std::vector<uint16_t>& in, const std::vector<uint16_t>& out, int nx, int ny, int h, bool keep)
{
    for (int y = 0; y < ny; ++y)
        for (int x = 0; x < nx; ++x) {
            if (x >= h && y >= h && x < nx - h && y < ny - h) continue;
            const size_t i = static_cast<size_t>(y) * nx + x;
            fuzzsupport::Check(out[i] == (keep ? in[i] : 0), "border rule");
        }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzzsupport::StartOnce();
    if (size < 4) return 0;
    Reader in{data, size};
    const int nx = 1 + data[0] % 64, ny = 1 + data[1] % 64;
    in.at = 2;
    const int angle = static_cast<int16_t>(in.Next16());
    std::vector<int16_t> user(68);
    for (auto& v : user) v = static_cast<int16_t>(in.Next16());
    dl_Set3x3KernelParam(6, user.data());
    dl_Set3x3KernelParam(7, user.data() + 9);
    dl_Set5x5KernelParam(6, user.data() + 18);
    dl_Set5x5KernelParam(7, user.data() + 43);
    ImageHeaderType* source = MakeImage(nx, ny, in);
    const std::vector<uint16_t> before = Pixels(source);

    struct Family {
        void (*command)(int16_t);
        KernelFamily family;
        int count;
    };
    const Family families[] = {{dl_Convolve3x3, KernelFamily::Square3, 7},
                               {dl_Convolve5x5, KernelFamily::Square5, 7},
                               {dl_EdgeEnhance3x3, KernelFamily::Edge3, 5}};
    for (const Family& f : families)
        for (int index = 1; index <= f.count; ++index) {
            const FilterKernel* kernel = FindKernel(f.family, index);
            SetFilterThreads(1);
            const auto one = Run(source, before, [&] { f.command(static_cast<int16_t>(index)); });
            SetFilterThreads(2);
            const auto two = Run(source, before, [&] { f.command(static_cast<int16_t>(index)); });
            fuzzsupport::Check(one == two, "one and two threads agree");
            CheckBorder(before, one, nx, ny, kernel->size / 2, KernelSum(kernel->values, kernel->size) != 0);
        }
    int8_t derivative[9];
    DerivativeKernel(angle, derivative);
    const auto diff = Run(source, before, [&] { ApplyKernel3x3(source, derivative); });
    CheckBorder(before, diff, nx, ny, 1, false);
    for (int points : {5, 9}) {
        const auto median = Run(source, before, [&] { points == 5 ? dl_ImageMedianFilter5() : dl_ImageMedianFilter9(); });
        CheckBorder(before, median, nx, ny, 1, true);
        for (int y = 1; y < ny - 1; ++y)
            for (int x = 1; x < nx - 1; ++x) {
                uint16_t lo = 65535, hi = 0;
                for (int dy = -1; dy <= 1; ++dy)
                    for (int dx = -1; dx <= 1; ++dx) {
                        const uint16_t v = before[static_cast<size_t>(y + dy) * nx + x + dx];
                        lo = std::min(lo, v);
                        hi = std::max(hi, v);
                    }
                const uint16_t m = median[static_cast<size_t>(y) * nx + x];
                fuzzsupport::Check(m >= lo && m <= hi, "median within its neighbourhood");
            }
    }
    SetFilterThreads(0);
    EraseAllItems();
    CurrentItem = nullptr;
    ResetFilterKernels();
    return 0;
}

// Seeds: a 1 by 1 image, a 2-row image, a 4-wide image for the 5x5 border, a 64 by 64 image of
// varied codes, and extreme user kernels.
extern "C" void TavrinFuzzSeeds(const char* directory)
{
    const std::string dir = directory;
    auto seed = [&dir](const char* name, int nx, int ny, int16_t kernelValue, size_t codes, uint8_t fill) {
        std::string bytes;
        bytes += static_cast<char>(nx - 1);
        bytes += static_cast<char>(ny - 1);
        bytes += std::string("\x2d\x00", 2);   // 45 degrees
        for (int i = 0; i < 68; ++i) {
            bytes += static_cast<char>(kernelValue & 0xff);
            bytes += static_cast<char>((kernelValue >> 8) & 0xff);
        }
        for (size_t i = 0; i < codes; ++i) bytes += static_cast<char>(fill + i * 37);
        fuzzsupport::WriteBytes(dir + "/" + name, bytes);
    };
    seed("seed_1x1", 1, 1, 1, 2, 7);
    seed("seed_2rows", 9, 2, -1, 36, 200);
    seed("seed_narrow", 4, 12, 127, 96, 3);
    seed("seed_64", 64, 64, -128, 8192, 11);
    seed("seed_wrap", 17, 33, 200, 50, 255);
}
