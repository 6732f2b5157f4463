// Fuzz target: an image file of any bytes (and so any ImageLUT, size, source and Z range)
// through every command on the level table and on the codes: the transform through the table,
// equalisation, both normalisations, the table operations, arithmetic on one and two images,
// the removal of the colour ramp, the histogram item, and both slider dialogues with any values
// (not-a-number too) and any state word. An allocation failure is placed by the input. Each
// command must leave the loaded image untouched; every item made is erased again and no block
// stays alive.
//
// Input: 24 control bytes, then the file.
#include "fuzz_support.h"
#include "display/histogram_display.h"
#include "files/tiff_read.h"
#include "host/ap_callbacks.h"
#include "image/contrast.h"
#include "image/image_math.h"

#include <cmath>
#include <cstring>
#include <vector>

namespace {

using fuzzsupport::Reader;

constexpr size_t kControlBytes = 24;

int32_t g_integer = 0;
char g_text[16] = "";

int16_t EnterInteger(int32_t, const char*, const char*, int32_t* result, uint16_t)
{
    *result = g_integer;
    return 1;
}

int16_t EnterString(const char*, const char*, const char*, char* buffer, uint16_t length)
{
    if (length) std::snprintf(buffer, length, "%s", g_text);
    return 1;
}

int16_t SelectFirst(uint16_t, uint16_t) { return 0; }

std::string ReadAll(const std::string& path)
{
    std::string bytes;
    if (FILE* f = std::fopen(path.c_str(), "rb")) {
        char buffer[4096];
        size_t n;
        while ((n = std::fread(buffer, 1, sizeof buffer, f)) > 0) bytes.append(buffer, n);
        std::fclose(f);
    }
    return bytes;
}

float RawFloat(Reader& in)
{
    uint32_t bits = in.Word() | (in.Word() << 16);
    float v;
    std::memcpy(&v, &bits, sizeof v);
    return v;
}

// After a command: the image as loaded, and nothing else left on the list.
void Settle(ImageHeaderType* source, const std::vector<uint16_t>& before)
{
    FailAllocationsForTests(0);
    if (LutDialogueRunning()) AdjustContrast(0.0f, 128.0f, 1.0f, 2);
    fuzzsupport::Check(IsInList(source), "the image stays on the list");
    if (!before.empty())
        fuzzsupport::Check(std::equal(before.begin(), before.end(), source->PixData), "the image is untouched");
    EraseAllItems(source);
    fuzzsupport::Check(FirstItem == source && source->Next == nullptr, "only the image is left");
    CurrentItem = source;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzzsupport::StartOnce();
    if (size < kControlBytes) return 0;
    Reader in{data, kControlBytes};
    const unsigned failAt = in.Byte();          // 0: none, else the allocation that fails
    const int lutOp = static_cast<int>(in.Byte() % 10);
    const int singleOp = static_cast<int>(in.Byte() % 11) - 1;
    const int doubleOp = static_cast<int>(in.Byte() % 13) - 1;
    g_integer = in.SignedWord() * static_cast<int>(in.Byte());
    const int low = static_cast<int>(in.Byte()), high = static_cast<int>(in.Byte());
    const int state = static_cast<int>(in.Byte() % 4);
    std::snprintf(g_text, sizeof g_text, "%d.%u", static_cast<int>(static_cast<int8_t>(in.Byte())), in.Byte());
    const float brightness = RawFloat(in), contrast = RawFloat(in), gamma = RawFloat(in);

    const size_t blocks = LiveBlockCount();
    const std::string path = fuzzsupport::WriteInput(data + kControlBytes, size - kControlBytes);
    if (LoadImageFile(path.c_str(), 0, 0, 1) != 0) {
        fuzzsupport::Check(FirstItem == nullptr, "a failed load leaves no item");
        ResetProcessState();
        fuzzsupport::Check(LiveBlockCount() == blocks, "a failed load leaves no block");
        return 0;
    }
    Ap.ap_EnterInteger = EnterInteger;
    Ap.ap_EnterString = EnterString;
    Ap.ap_SelectDataDialog = SelectFirst;
    ImageHeaderType* source = CurrentItem;
    std::vector<uint16_t> before;
    if (source && CheckHeaderIsImageType(source) && source->PixData && source->nx > 0 && source->ny > 0)
        before.assign(source->PixData, source->PixData + static_cast<size_t>(source->nx) * source->ny);

    using Step = void (*)(int lutOp, int singleOp, int doubleOp, int low, int high, int state, float b, float c,
                          float g);
    const Step steps[] = {
        [](int, int, int, int, int, int, float, float, float) { TransformThroughLUT(); },
        [](int, int, int, int, int, int, float, float, float) { HistEqualise(); },
        [](int, int, int, int, int, int, float, float, float) { NormaliseImage(); },
        [](int, int, int, int, int, int, float, float, float) { NormaliseSD(); },
        [](int op, int, int, int, int, int, float, float, float) { MathLUT(op); },
        [](int, int, int, int, int, int, float, float, float) { LineariseImageLUT(); },
        [](int, int op, int, int, int, int, float, float, float) { SingleImageMath(op); },
        [](int, int, int op, int, int, int, float, float, float) { DoubleImageMath(op); },
        [](int, int, int, int, int, int, float, float, float) { RemoveLUTColours(); },
        [](int, int, int, int, int, int, float, float, float) { DisplayHistogram(); },
        [](int, int, int, int, int, int, float, float, float) { DisplayImageLUT(); },
        [](int, int, int, int, int, int s, float b, float c, float g) {
            AdjustContrast(b, c, g, 0);
            AdjustContrast(b, c, g, s);
        },
        [](int, int, int, int lo, int hi, int s, float, float, float) {
            AdjustThresholds(lo, hi, 0);
            AdjustThresholds(lo, hi, s);
        },
    };
    for (const Step step : steps) {
        if (failAt) FailAllocationsForTests(1, static_cast<int>((failAt - 1) % 6));
        step(lutOp, singleOp, doubleOp, low, high, state, brightness, contrast, gamma);
        Settle(source, before);
    }
    if (!std::isnan(brightness)) (void)ThresholdLevel(source, brightness);

    EraseAllItems();
    ResetProcessState();
    fuzzsupport::Check(LiveBlockCount() == blocks, "every block is freed");
    return 0;
}

extern "C" void TavrinFuzzSeeds(const char* directory)
{
    ResetProcessState();
    const std::string dir = directory;
    auto seed = [&](const char* name, const std::string& control, int n, int lutKind, int colour) {
        ImageHeaderType* image = fuzzsupport::SeedImage(n, static_cast<uint32_t>(n * 7 + lutKind));
        if (!image) return;
        image->SPMData = 1;
        image->Zlo = -2.0f;
        image->Zhi = 5.0f;
        image->ColourImage = static_cast<uint16_t>(colour);
        for (int i = 0; i < 256; ++i)
            image->ImageLUT[i] = static_cast<uint8_t>(lutKind == 0 ? i : lutKind == 1 ? 255 - i : (i * 37) & 255);
        const std::string file = dir + "/" + name;
        saveTiffImage(image, file.c_str(), 0);
        const std::string bytes = ReadAll(file);
        fuzzsupport::WriteBytes(file, control + bytes);
        EraseAllItems();
    };
    auto control = [](std::initializer_list<int> bytes) {
        std::string c(kControlBytes, '\0');
        size_t i = 0;
        for (int b : bytes) c[i++] = static_cast<char>(b);
        return c;
    };
    // failAt, lutOp, singleOp + 1, doubleOp + 1, constant (word, factor), low, high, state, text
    // bytes, then three f32 of brightness, contrast, gamma.
    seed("seed_identity", control({0, 8, 4, 3, 5, 0, 1, 40, 120, 1, 3, 0, 0, 0, 0, 0, 0, 0, 0x80, 0x3f}), 16, 0, 0);
    seed("seed_reversed", control({0, 2, 9, 11, 0xff, 0xff, 2, 200, 20, 2, 0, 0}), 32, 1, 0);
    seed("seed_colour", control({0, 7, 3, 10, 0, 0, 0, 90, 90, 1, 255, 9}), 24, 2, 1);
    seed("seed_fail", control({3, 3, 8, 2, 7, 0, 5, 10, 250, 1, 1, 0}), 20, 2, 0);
    ResetProcessState();
}
