// Fuzz target: a spectrum of 1 to 5000 points whose f32 planes are the input's bytes (so NaN,
// infinities, 1e38 and denormals all occur) through the polynomial fit (any degree, with and
// without its plot), the zoom into a box from the input, the magnitude spectrum under any
// window number and its plot, with one allocation failure placed by the input. The source must
// stay untouched, the zoom may add only its own item, and at the end every block is freed.
#include "fuzz_support.h"
#include "display/plot_spectrum.h"
#include "display/vfs.h"
#include "image/poly_regression.h"
#include "spectro/spectrum_tools.h"
#include "store/memory.h"

#include <cmath>
#include <cstring>
#include <vector>

namespace {

using fuzzsupport::Reader;

float FloatFrom(Reader& in)
{
    const uint32_t bits = in.Word() | (in.Word() << 16);
    float v;
    std::memcpy(&v, &bits, 4);
    return v;
}

std::vector<uint32_t> Bits(const ImageHeaderType* item)
{
    std::vector<uint32_t> v(static_cast<size_t>(item->nx) * 2);
    std::memcpy(v.data(), item->PixData, v.size() * 4);
    return v;
}

// The source as it was, a zoom result read through and erased, the source current again.
void Settle(ImageHeaderType* source, const std::vector<uint32_t>& bits)
{
    fuzzsupport::Check(Bits(source) == bits, "the source is untouched");
    fuzzsupport::ReadAndEraseResults(
        source, source, [source](const ImageHeaderType* p) { return p->nx == source->nx && p->PixData != nullptr; },
        "a zoom keeps the number of points");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzzsupport::StartOnce();
    Reader in{data, size};
    const int n = 1 + static_cast<int>(in.Word() % 5000);
    const int degree = static_cast<int>(in.Byte() % 22);   // 0 and 20, 21 are refused
    const int window = static_cast<int>(in.Byte() % 7);     // 0 and 6 are program errors
    const unsigned failAt = in.Byte();                      // 0: none; else the step and allocation
    float box[4];
    for (float& f : box) f = FloatFrom(in);

    std::vector<uint8_t> frame(512 * 512), rgb(512 * 512 * 3);
    uint8_t* buffers[2] = {frame.data(), rgb.data()};
    fuzzsupport::Check(OpenFrameStore(buffers, 1, nullptr) == 0, "frame store opens");
    const size_t blocks = LiveBlockCount();

    ImageHeaderType* item = AllocateListItem(CurrentItem);
    fuzzsupport::Check(item != nullptr, "spectrum item");
    float* samples = AllocSpecMem(n);
    fuzzsupport::Check(samples != nullptr, "spectrum samples");
    InitImageHeader(item, n, 1);
    item->ImType1 = IMTYPE_SPECTRUM;
    item->AcqMode = 12;
    item->PixHandle = 1;
    item->PixData = reinterpret_cast<uint16_t*>(samples);
    for (int i = 0; i < 2 * n; ++i) samples[i] = in.More() ? FloatFrom(in) : static_cast<float>(i % 97) - 40.0f;
    std::snprintf(item->Title, sizeof item->Title, "fuzz %d", n);
    CurrentItem = item;
    const std::vector<uint32_t> bits = Bits(item);

    struct Step {
        void (*run)(ImageHeaderType*);
    };
    static int s_degree, s_window;
    static float s_box[4];
    s_degree = degree, s_window = window;
    std::memcpy(s_box, box, sizeof box);
    const Step steps[] = {
        {[](ImageHeaderType* s) {
             std::vector<float> m(static_cast<size_t>(s->nx / 2 + 1));
             SpectrumMagnitudes(reinterpret_cast<const float*>(s->PixData), s->nx, s_window, m.data());
         }},
        {[](ImageHeaderType*) { ShowSpecFFT(s_window); }},
        {[](ImageHeaderType* s) {
             SpecFitWork work{};
             if (!AllocateSpecFitWork(s->nx, &work)) return;
             PolyRegressionStats stats;
             DisplaySpectrum(s);
             FitSpectrumPolynomial(s, s_degree, 1, work, &stats);
             FitSpectrumPolynomial(s, s_degree, 0, work, &stats);
             FreeSpecFitWork(&work);
         }},
        {[](ImageHeaderType* s) {
             std::vector<double> x(static_cast<size_t>(s->nx)), y(x.size()), fitted(x.size()), residual(x.size());
             const float* f = reinterpret_cast<const float*>(s->PixData);
             for (int i = 0; i < s->nx; ++i) y[static_cast<size_t>(i)] = f[i], x[static_cast<size_t>(i)] = f[s->nx + i];
             PolyRegressionStats stats;
             PolyRegression(x.data(), y.data(), s->nx, s_degree, fitted.data(), residual.data(), &stats);
         }},
        {[](ImageHeaderType* s) { ZoomSpectrum(s, s_box[0], s_box[1], s_box[2], s_box[3]); }},
    };
    constexpr int kSteps = static_cast<int>(sizeof steps / sizeof steps[0]);
    for (int s = 0; s < kSteps; ++s) {
        if (failAt && static_cast<int>(failAt % kSteps) == s) FailAllocationsForTests(1, static_cast<int>((failAt >> 4) % 4));
        steps[s].run(item);
        FailAllocationsForTests(0);
        Settle(item, bits);
    }

    EraseItem(item);
    VFS_close_vfs(1);
    fuzzsupport::Check(LiveBlockCount() <= blocks, "every block is freed");
    ResetProcessState();
    return 0;
}

extern "C" void TavrinFuzzSeeds(const char* directory)
{
    const std::string dir = directory;
    auto seed = [&](const char* name, int n, unsigned degree, unsigned window, unsigned failAt, const float box[4],
                    const std::vector<float>& values) {
        std::string bytes;
        auto word = [&](unsigned v) {
            bytes += static_cast<char>(v & 0xff);
            bytes += static_cast<char>((v >> 8) & 0xff);
        };
        word(static_cast<unsigned>(n - 1));
        for (unsigned v : {degree, window, failAt}) bytes += static_cast<char>(v);
        for (int k = 0; k < 4; ++k) {
            uint32_t b;
            std::memcpy(&b, &box[k], 4);
            word(b & 0xffff);
            word(b >> 16);
        }
        for (float f : values) {
            uint32_t b;
            std::memcpy(&b, &f, 4);
            word(b & 0xffff);
            word(b >> 16);
        }
        fuzzsupport::WriteBytes(dir + "/" + name, bytes);
    };
    // Y then X of a line over 64 points.
    std::vector<float> line;
    for (int i = 0; i < 64; ++i) line.push_back(0.5f * static_cast<float>(i) - 3.0f);
    for (int i = 0; i < 64; ++i) line.push_back(static_cast<float>(i));
    const float inside[4] = {5, 40, -10, 30}, outside[4] = {100, 200, 0, 1}, narrow[4] = {10, 25, -10, 30};
    seed("seed_line", 64, 3, 4, 0, inside, line);
    seed("seed_outside", 64, 19, 1, 0, outside, line);
    seed("seed_narrow", 64, 5, 5, 0, narrow, line);
    seed("seed_two", 2, 1, 2, 0, inside, {1.0f, 2.0f, 0.0f, 1.0f});
    seed("seed_specials", 8, 2, 3, 0, inside, {NAN, INFINITY, -INFINITY, 1e38f, -1e38f, 1e-40f, 0.0f, -0.0f,
                                               0, 1, 2, 3, 4, 5, 6, 7});
    seed("seed_fail", 64, 4, 2, 0x23, inside, line);
}
