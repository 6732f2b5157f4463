// Fuzz target: the display of a mapping set with any display block (flags, n, mode, select, the
// explicit list), any entry fields (sweep values, data ranges, raw ranges, data types), any
// frame size word from -1 to 600, over sets of 1 to 300 images of every legal side: the sheet,
// the single image, the paged browser's events and the replay's slider moves, the exchange of
// the display block, with an allocation failure placed by the input. Nothing may be written
// outside the frame buffer, and the pixels of the set stay as they were.
#include "fuzz_support.h"
#include "display/vfs.h"
#include "mapping/cits_display.h"

#include <cstring>
#include <vector>

namespace {

using fuzzsupport::Reader;

constexpr size_t kMostPixels = size_t{1} << 21;   // all planes together, to keep runs fast

float RawFloat(Reader& in)
{
    uint32_t bits = in.Word() | (in.Word() << 16);
    float v;
    std::memcpy(&v, &bits, sizeof v);
    return v;
}

uint64_t Checksum(const CITSHeaderType* set)
{
    uint64_t sum = 0;
    for (int k = 0; k < set->ni; ++k) {
        const uint16_t* p = CITSPixels(CITSEntry(set, k));
        for (int i = 0; p && i < set->cx * set->cy; i += 7) sum = sum * 31 + p[i];
    }
    return sum;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzzsupport::StartOnce();
    Reader in{data, size};
    std::vector<uint8_t> frame(512 * 512), rgb(512 * 512 * 3);
    uint8_t* buffers[2] = {frame.data(), rgb.data()};
    fuzzsupport::Check(OpenFrameStore(buffers, 1, nullptr) == 0, "frame store opens");

    static const int kSides[] = {16, 32, 64, 128, 256, 512};
    const int side = kSides[in.Byte() % 6];
    int ni = 1 + static_cast<int>(in.Word() % 300);
    while (ni > 1 && static_cast<size_t>(ni) * side * side > kMostPixels) ni /= 2;
    ImageHeaderType* image = fuzzsupport::SeedImage(side, in.Byte());
    fuzzsupport::Check(image != nullptr, "image");
    CITSHeaderType* set = AllocateCITSDataSet(ni, static_cast<int16_t>(side), static_cast<int16_t>(side));
    fuzzsupport::Check(set != nullptr, "set");
    SetCITSBlock(image, set);
    image->MapType = static_cast<int16_t>(in.Byte() % 2 ? 12 : 14);
    image->DataSource = in.Byte() % 4 == 0 ? 26 : 1;
    static const uint32_t kTypes[] = {1, 2, 4, 8, 16, 32, 128, 256, 512, 1024, 2048, 4096, 0x20000, 0x40000, 77};
    const unsigned seed = in.Byte();
    for (int k = 0; k < ni; ++k) {
        CITSImageEntryType* e = CITSEntry(set, k);
        e->adc_gain = 1;
        e->i_divider = 1;
        e->voltage = static_cast<float>(k) * 0.01f;
        e->z_low = -1.0f;
        e->z_high = 1.0f;
        e->data_type = 4;
        uint16_t* p = CITSPixels(e);
        for (int i = 0; i < side * side; ++i) p[i] = static_cast<uint16_t>((i * 2654435761u) >> 7) + static_cast<uint16_t>(k * seed);
    }
    // A few entries take fuzzed fields.
    for (int changes = static_cast<int>(in.Byte() % 8); changes > 0; --changes) {
        CITSImageEntryType* e = CITSEntry(set, static_cast<int>(in.Word() % ni));
        e->voltage = RawFloat(in);
        e->z_low = RawFloat(in);
        e->z_high = RawFloat(in);
        e->raw_low = static_cast<int16_t>(in.SignedWord());
        e->raw_high = static_cast<int16_t>(in.SignedWord());
        e->data_type = kTypes[in.Byte() % 15];
    }
    set->disp.flags = static_cast<uint16_t>(in.Word());
    set->disp.n = static_cast<int16_t>(in.SignedWord());
    set->disp.mode = static_cast<uint8_t>(in.Byte() % 8);
    set->disp.select = static_cast<uint8_t>(in.Byte() % 7);
    set->ci = static_cast<int16_t>(in.SignedWord());
    for (int k = 0; k < 64; ++k) set->disp.im_no[k] = static_cast<int16_t>(in.Byte() & 1 ? in.SignedWord() : k);
    FSState.ImageDisplaySize = in.Byte() % 2 ? 0 : 512;
    CurrentItem = image;
    const uint64_t before = Checksum(set);

    while (in.More()) {
        const unsigned op = in.Byte() % 8;
        FailAllocationsForTests(in.Byte() % 16 == 0 ? 1 : 0);
        if (op == 0 || op == 1) {
            const int d = static_cast<int>(in.Word() % 602) - 1;
            FSState.CursorX = static_cast<int16_t>(in.Word() % 512);
            FSState.CursorY = static_cast<int16_t>(in.Word() % 512);
            DisplayCITSDataSet1(image, d);
        } else if (op == 2) {
            DisplayCurrentCITSImage();
        } else if (op == 3) {
            CITSDisplayXxY(in.Byte() % 2 ? 64 : 128);
        } else if (op == 4) {
            DoCITSDisplayXxY(static_cast<int>(in.Byte() % 8), in.SignedWord(), in.SignedWord(),
                             static_cast<int>(static_cast<int8_t>(in.Byte())));
        } else if (op == 5) {
            if (!CITSReplayActive()) CITSRapidReplay();
            DoCITSReplay(RawFloat(in), in.Byte() % 4 == 0);
        } else if (op == 6) {
            wint_CITSDispParamType p;
            GetCITSDispParam(&p);
            p.mode = static_cast<int32_t>(in.Byte() % 6);
            p.labels = static_cast<int32_t>(in.Byte() % 3);
            p.n = static_cast<int16_t>(in.SignedWord());
            p.select = static_cast<int32_t>(in.Byte() % 6);
            p.voltage[in.Byte() % 64] = RawFloat(in);
            SetCITSDispParam(&p);
        } else {
            char out[40];
            CITSGetDesc(in.SignedWord(), out);
            if (in.Byte() & 1) CITSNextCommand(); else CITSPreviousCommand();
        }
        FailAllocationsForTests(0);
        CurrentItem = image;
        fuzzsupport::Check(image->CITSHeaderPtr == set && set->ni == ni, "the set stays");
    }
    if (CITSReplayActive()) DoCITSReplay(0.0f, 1);
    fuzzsupport::Check(Checksum(set) == before, "the pixels of the set are untouched");
    ResetProcessState();
    return 0;
}

extern "C" void TavrinFuzzSeeds(const char* directory)
{
    const std::string dir = directory;
    auto seed = [&](const char* name, std::vector<uint8_t> bytes) {
        fuzzsupport::WriteBytes(dir + "/" + name, std::string(bytes.begin(), bytes.end()));
    };
    // 64 x 64, 16 images, plain sheet with topography and labels, then the single image.
    std::vector<uint8_t> plain = {2, 16, 0, 5, 0, 3, 0, 7, 0, 16, 0, 0, 2, 0, 0};
    plain.resize(plain.size() + 64, 0);
    plain.insert(plain.end(), {0, 0, 0, 0, 0, 0, 0, 0, 0, 2, 0});
    seed("seed_sheet", plain);
    // 256 x 256, 64 images at a fixed 64 in mode 1, then a page turn and a replay.
    std::vector<uint8_t> paged = {4, 64, 0, 9, 0, 1, 0, 2, 0, 64, 0, 1, 2, 0, 0};
    paged.resize(paged.size() + 64, 0);
    paged.insert(paged.end(), {1, 0, 1, 65, 0, 0, 0, 0, 0, 3, 1, 1, 4, 0, 1, 10, 0, 10, 0, 0, 5, 0, 0, 0, 0x40, 0x40, 0});
    seed("seed_paged", paged);
    // 16 x 16, 300 images, mode 3 spread evenly, odd frame words.
    std::vector<uint8_t> spread = {0, 44, 1, 3, 0, 0, 1, 0, 0, 64, 0, 3, 1, 0, 0};
    spread.resize(spread.size() + 64, 0);
    spread.insert(spread.end(), {0, 0, 0x59, 2, 0, 0, 0, 0, 1, 0, 0xFF, 0, 0, 0, 6, 0, 2, 1, 40, 0, 1, 0, 7});
    seed("seed_spread", spread);
}
