// Fuzz target: spectra of any length from 1 to 5000 points whose f32 planes are the input's
// bytes (so NaN, infinities, 1e38 and denormals all occur), of any spectrum class, through the
// plot with any settings and through every spectrum command, with the constant of the
// arithmetic and the second spectrum of the two-spectrum operations taken from the input and
// one allocation failure placed by it; and AutoScale on pairs from the input. Each command must
// leave its source untouched and the list with at most its own new items; at the end every
// block is freed.
#include "fuzz_support.h"
#include "display/plot.h"
#include "display/plot_spectrum.h"
#include "display/vfs.h"
#include "host/ap_callbacks.h"
#include "spectro/spectro.h"
#include "store/memory.h"

#include <cmath>
#include <cstring>
#include <vector>

namespace {

using fuzzsupport::Reader;

constexpr uint32_t kClasses[] = {2, 3, 4, 5, 7, 8, 9};
const char* const kConstants[] = {"0", "1", "-2.5", "1e38", "nan", "1e-40", "inf", "3"};

const char* g_constant = "1";
int16_t g_select = 0;

int16_t EnterConstant(const char*, const char*, const char*, char* buffer, uint16_t length)
{
    if (buffer && length) std::snprintf(buffer, length, "%s", g_constant);
    return 1;
}
int16_t SelectSecond(uint16_t, uint16_t) { return g_select; }

float FloatAt(const Reader& in, size_t from, size_t i)
{
    const size_t left = in.size > from ? in.size - from : 0;
    if (left < 4) return static_cast<float>(i);
    uint8_t bytes[4];
    for (size_t b = 0; b < 4; ++b) bytes[b] = in.data[from + (4 * i + b) % (left - left % 4)];
    float v;
    std::memcpy(&v, bytes, 4);
    return v;
}

ImageHeaderType* MakeSpectrum(int n, uint32_t type, uint32_t acq, const Reader& in, size_t from)
{
    ImageHeaderType* item = AllocateListItem(CurrentItem);
    fuzzsupport::Check(item != nullptr, "spectrum item");
    float* samples = AllocSpecMem(n);
    fuzzsupport::Check(samples != nullptr, "spectrum samples");
    InitImageHeader(item, n, 1);
    item->ImType1 = type;
    item->AcqMode = acq;
    item->PixHandle = 1;
    item->PixData = reinterpret_cast<uint16_t*>(samples);
    for (int i = 0; i < 2 * n; ++i) samples[i] = FloatAt(in, from, static_cast<size_t>(i));
    std::snprintf(item->Title, sizeof item->Title, "fuzz %d", n);
    CurrentItem = item;
    return item;
}

std::vector<uint32_t> Bits(const ImageHeaderType* item)
{
    std::vector<uint32_t> v(static_cast<size_t>(item->nx) * 2);
    std::memcpy(v.data(), item->PixData, v.size() * 4);
    return v;
}

// After a command: the two sources as they were; every other item erased, A current again.
void Settle(ImageHeaderType* a, ImageHeaderType* b, const std::vector<uint32_t>& bitsA, const std::vector<uint32_t>& bitsB)
{
    fuzzsupport::Check(Bits(a) == bitsA && Bits(b) == bitsB, "the sources are untouched");
    fuzzsupport::ReadAndEraseResults(
        a, b, [](const ImageHeaderType* p) { return p->PixData != nullptr && p->nx > 0; }, "a result has samples");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzzsupport::StartOnce();
    Reader in{data, size};
    const int na = 1 + static_cast<int>(in.Word() % 5000), nb = 1 + static_cast<int>(in.Word() % 5000);
    const uint32_t type = kClasses[in.Byte() % 7];
    const uint32_t acq = in.Byte();
    const unsigned failAt = in.Byte();          // 0: none; else the command and allocation that fail
    const unsigned settings = in.Byte();        // log, box, grid and auto bits of the plot
    const int smooth = static_cast<int>(in.Byte() % 30);
    const int window = static_cast<int>(in.Byte() % 30);
    g_constant = kConstants[in.Byte() % 8];
    float pair[4];
    for (float& f : pair) {
        uint32_t bits = in.Word() | (in.Word() << 16);
        std::memcpy(&f, &bits, 4);
    }

    std::vector<uint8_t> frame(512 * 512), rgb(512 * 512 * 3);
    uint8_t* buffers[2] = {frame.data(), rgb.data()};
    fuzzsupport::Check(OpenFrameStore(buffers, 1, nullptr) == 0, "frame store opens");
    Ap.ap_EnterString = EnterConstant;
    Ap.ap_SelectDataDialog = SelectSecond;
    const size_t blocks = LiveBlockCount();

    // AutoScale on pairs of the input: any answer, no fault.
    for (int k = 0; k < 2; ++k) {
        float lo = pair[2 * k], hi = pair[2 * k + 1], tick = 0;
        AutoScale(&lo, &hi, &tick);
    }

    wint_PlotParamType p;
    GetPlotParam(&p);
    p.LogAxisX = settings & 1, p.LogAxisY = (settings >> 1) & 1, p.BoxAxes = (settings >> 2) & 1;
    p.GridX = p.GridY = (settings >> 3) & 1;
    p.AutoAxes = (settings >> 4) & 3;
    p.MinX = pair[0], p.MaxX = pair[1], p.MinY = pair[2], p.MaxY = pair[3];
    p.TickStepX = pair[1] - pair[0], p.TickStepY = pair[3] - pair[2];
    p.PlotWidth = 16 + static_cast<int>((settings * 37u) % 600);
    p.PlotHeight = 16 + static_cast<int>((settings * 53u) % 600);
    SetPlotParam(&p);

    ImageHeaderType* a = MakeSpectrum(na, type, acq, in, in.at);
    ImageHeaderType* b = MakeSpectrum(nb, kClasses[(type + 1) % 7], acq, in, in.at + 3);
    CurrentItem = a;
    const std::vector<uint32_t> bitsA = Bits(a), bitsB = Bits(b);
    g_select = 2;   // a, the new item, b

    struct Step {
        void (*run)(int);
        int arg;
    };
    static int s_smooth, s_window;
    s_smooth = smooth, s_window = window;
    const Step steps[] = {
        {[](int) { DisplaySpectrum(CurrentItem); }, 0},
        {[](int) { SmoothSpectrum(s_smooth); }, 0},
        {[](int) { MedianSpectrum(s_smooth); }, 0},
        {[](int mode) {
             wint_DiffSpecParamType d{static_cast<uint32_t>(mode), static_cast<int16_t>(s_window)};
             SetDiffSpecParam(&d);
             DiffSpecCommand();
         }, 1},
        {[](int mode) {
             wint_DiffSpecParamType d{static_cast<uint32_t>(mode), static_cast<int16_t>(s_window)};
             SetDiffSpecParam(&d);
             DiffSpecCommand();
         }, 4},
        {[](int op) { SpecMath(0, op); }, 1}, {[](int op) { SpecMath(0, op); }, 3}, {[](int op) { SpecMath(0, op); }, 4},
        {[](int op) { SpecMath(0, op); }, 8}, {[](int op) { SpecMath(1, op); }, 2}, {[](int op) { SpecMath(1, op); }, 4},
        {[](int op) { SpecMath(1, op); }, 5}, {[](int op) { SpecMath(1, op); }, 6}, {[](int op) { SpecMath(1, op); }, 7},
        {[](int op) { SpecMath(1, op); }, 8}, {[](int op) { DoubleSpecMath(op); }, 1},
        {[](int op) { DoubleSpecMath(op); }, 3}, {[](int op) { DoubleSpecMath(op); }, 5},
        {[](int op) { DoubleSpecMath(op); }, 6}, {[](int) { RemoveDCBias(); }, 0},
        {[](int) { SeparateRampDirections(); }, 0},
    };
    constexpr int kSteps = static_cast<int>(sizeof steps / sizeof steps[0]);
    for (int s = 0; s < kSteps; ++s) {
        if (failAt && static_cast<int>(failAt % kSteps) == s) FailAllocationsForTests(1, static_cast<int>((failAt >> 5) % 4));
        steps[s].run(steps[s].arg);
        FailAllocationsForTests(0);
        Settle(a, b, bitsA, bitsB);
    }

    EraseItem(b);
    CurrentItem = a;
    EraseItem(a);
    VFS_close_vfs(1);
    fuzzsupport::Check(LiveBlockCount() <= blocks, "every block is freed");
    ResetProcessState();
    return 0;
}

extern "C" void TavrinFuzzSeeds(const char* directory)
{
    const std::string dir = directory;
    auto seed = [&](const char* name, int na, int nb, unsigned type, unsigned acq, unsigned failAt, unsigned settings,
                    const std::vector<float>& values) {
        std::string bytes;
        auto word = [&](unsigned v) {
            bytes += static_cast<char>(v & 0xff);
            bytes += static_cast<char>((v >> 8) & 0xff);
        };
        word(static_cast<unsigned>(na - 1));
        word(static_cast<unsigned>(nb - 1));
        for (unsigned v : {type, acq, failAt, settings, 7u, 9u, 2u}) bytes += static_cast<char>(v);
        const float pair[4] = {-3, 7, 0, 100};
        for (float f : pair) {
            uint32_t bits;
            std::memcpy(&bits, &f, 4);
            word(bits & 0xffff);
            word(bits >> 16);
        }
        for (float f : values) bytes.append(reinterpret_cast<const char*>(&f), 4);
        fuzzsupport::WriteBytes(dir + "/" + name, bytes);
    };
    std::vector<float> ramp;
    for (int i = 0; i < 64; ++i) ramp.push_back(static_cast<float>(i % 40) - 20.0f);
    seed("seed_ramp", 64, 64, 0, 15, 0, 0x30, ramp);
    seed("seed_specials", 40, 33, 2, 12, 0, 0x33,
         {NAN, INFINITY, -INFINITY, 1e38f, -1e38f, 1e-40f, 0.0f, -0.0f, 9.999e30f, -9.999e30f, 1.0f, 2.0f});
    seed("seed_one", 1, 1, 3, 0, 0, 0x07, {5.0f});
    seed("seed_long", 5000, 4999, 1, 51, 0, 0x3c, ramp);
    seed("seed_fail", 300, 20, 0, 21, 0x27, 0x11, ramp);
    seed("seed_log_positive", 100, 100, 0, 12, 0, 0x33, {0.002f, 0.5f, 3.0f, 700.0f, 1e6f});
}
