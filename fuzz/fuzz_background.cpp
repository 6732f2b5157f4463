// Fuzz target: the background tool on a small image of any size from 1 to 48 points a side,
// with any 54-byte parameter record through set, update and apply (or leave), and with an
// allocation failure placed by the input. The source must stay untouched and first in the
// list; apply makes at most one new item of the source's size, leaving makes none; once the
// result is erased no block of the tool stays alive.
#include "fuzz_support.h"
#include "tavrin/dl_background.h"
#include "image/subt_back.h"
#include "store/data_list.h"

#include <algorithm>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzzsupport::StartOnce();
    fuzzsupport::Reader in{data, size};
    const int nx = 1 + static_cast<int>(in.Byte() % 48);
    const int ny = 1 + static_cast<int>(in.Byte() % 48);
    const unsigned control = in.Byte();
    wint_SubtBckgrndParamType record;
    auto* bytes = reinterpret_cast<uint8_t*>(&record);
    for (size_t i = 0; i < sizeof record; ++i) bytes[i] = static_cast<uint8_t>(in.Byte());

    ImageHeaderType* source = fuzzsupport::NewImageItem(nullptr, nx, ny);
    for (size_t i = 0; i < static_cast<size_t>(nx) * ny; ++i) source->PixData[i] = static_cast<uint16_t>(in.Word());
    CurrentItem = source;
    const std::vector<uint16_t> before(source->PixData, source->PixData + static_cast<size_t>(nx) * ny);
    const size_t blocks = LiveBlockCount();

    if (control & 0x80) FailAllocationsForTests(1, static_cast<int>(control & 0x0f));
    wint_SubtBckgrndParamType filled;
    dl_GetSubtBckgrndParam(&filled, 0);
    dl_SubtBackUpdateImageDisplay(dl_SetSubtBckgrndParam(&record));
    dl_SubtBackUpdateImageDisplay(control & 3u);
    const bool apply = (control & 0x40) != 0;
    dl_GetSubtBckgrndParam(&filled, apply ? TV_SUBT_APPLY : 1);
    FailAllocationsForTests(0);

    fuzzsupport::Check(!SubtBack().IsOpen(), "the tool is closed");
    fuzzsupport::Check(FirstItem == source, "the source stays first");
    fuzzsupport::Check(std::equal(before.begin(), before.end(), source->PixData), "the source is untouched");
    ImageHeaderType* result = source->Next;
    if (result) {
        fuzzsupport::Check(apply, "leaving makes no item");
        fuzzsupport::Check(result->Next == nullptr && CurrentItem == result, "one new current item");
        fuzzsupport::Check(result->nx == nx && result->ny == ny, "result size");
        EraseItem(result);
    }
    fuzzsupport::Check(LiveBlockCount() == blocks, "no block of the tool stays alive");
    CurrentItem = source;
    EraseItem(source);
    SubtBack().Reset();
    return 0;
}

extern "C" void TavrinFuzzSeeds(const char* directory)
{
    const std::string dir = directory;
    auto seed = [&](const char* name, int nx, int ny, unsigned control, wint_SubtBckgrndParamType p) {
        std::string bytes;
        bytes += static_cast<char>(nx - 1);
        bytes += static_cast<char>(ny - 1);
        bytes += static_cast<char>(control);
        bytes.append(reinterpret_cast<const char*>(&p), sizeof p);
        for (int i = 0; i < nx * ny; ++i) {
            const unsigned v = 20000u + static_cast<unsigned>((i % nx) * 300 + (i / nx) * 100 + (i * 2654435761u >> 24));
            bytes += static_cast<char>(v & 0xff);
            bytes += static_cast<char>(v >> 8);
        }
        fuzzsupport::WriteBytes(dir + "/" + name, bytes);
    };
    for (uint32_t method = 3; method <= 10; ++method) {
        wint_SubtBckgrndParamType p = DefaultSubtBckgrndParam();
        p.Method = method;
        p.ShowBackground = static_cast<int16_t>(method & 1);
        p.UseThreshold = 1;
        p.LowThreshold = 20500;
        p.HighThreshold = 30000;
        p.UseRegion = 1;
        p.ManualSlopeX = 300;
        const std::string name = "seed_method" + std::to_string(method);
        seed(name.c_str(), 24, 17, 0x43, p);
    }
    wint_SubtBckgrndParamType tall = DefaultSubtBckgrndParam();
    tall.DegreeX = 3;
    tall.DegreeY = 5;
    seed("seed_tall_apply", 5, 48, 0x43, tall);
    seed("seed_one_pixel", 1, 1, 0x43, tall);
    seed("seed_fail_open", 16, 16, 0xc2, DefaultSubtBckgrndParam());
}
