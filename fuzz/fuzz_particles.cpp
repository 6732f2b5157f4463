// Fuzz target: the particle analysis on images of 1 to 300 pixels a side. Input: nx and ny
// (two bytes each), the band (two bytes), the connectivity, a fill density, then a program of
// commands (one byte each, with their arguments): erode, dilate, isolate with a size, shoot and
// choose at a point, toggle the connectivity, sort and select a row, a refresh, the histogram,
// the statistics file, and allocation failures placed before the next command.
// Checks: the bilevel item stays bilevel, no item appears or goes but through the pages, every
// object lies inside the image with a pixel count of at least 1, the list order is a
// permutation, and a refresh after any command measures the same as a fresh measurement.
#include "fuzz_support.h"
#include "host/ap_callbacks.h"
#include "image/particle_measure.h"
#include "image/particle_state.h"
#include "image/particles.h"
#include "tavrin/dl_data_list.h"
#include "tavrin/dl_particles.h"

#include <algorithm>
#include <memory>
#include <vector>

namespace {

using fuzzsupport::Check;

// The host's answer to the size prompt of the size filter; -2 cancels.
int32_t g_size = 1;
int16_t AnswerSize(int32_t, const char*, const char*, int32_t* result, uint16_t)
{
    if (g_size == -2) return 0;
    *result = g_size;
    return 1;
}

void CheckStats(const ImageHeaderType* item)
{
    const ParticleStats& stats = CurrentParticleStats();
    std::vector<int32_t> order(stats.Order, stats.Order + stats.ObjectCount);
    std::sort(order.begin(), order.end());
    for (int i = 0; i < stats.ObjectCount; ++i) {
        Check(order[static_cast<size_t>(i)] == i, "the order is a permutation");
        const ParticleObject& o = stats.Objects[i];
        Check(o.Pixels >= 1, "an object has a pixel");
        Check(o.X1 >= 0 && o.Y1 >= 0 && o.X2 < item->nx && o.Y2 < item->ny && o.X1 <= o.X2 && o.Y1 <= o.Y2,
              "the box lies inside the image");
        Check(o.Perimeter >= 0.0, "no negative perimeter");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzzsupport::StartOnce();
    if (size < 7) return 0;
    fuzzsupport::Reader in{data, size};
    const int nx = 1 + static_cast<int>(in.Word() % 300), ny = 1 + static_cast<int>(in.Word() % 300);
    const unsigned low = in.Byte(), high = in.Byte();
    const int connectivity = in.Byte() & 1 ? 8 : 4;
    const unsigned density = in.Byte();
    ImageHeaderType* source = fuzzsupport::NewImageItem(nullptr, nx, ny);
    source->ImageSizeX = static_cast<float>(nx) * 2.0f;
    source->ImageSizeY = static_cast<float>(ny) * 3.0f;
    uint32_t state = density * 2654435761u + static_cast<uint32_t>(size);
    for (int i = 0; i < nx * ny; ++i) {
        state = state * 1664525u + 1013904223u;
        const unsigned byte = in.More() && (i % 8 == 0) ? in.Byte() : (state >> 24);
        source->PixData[i] = static_cast<uint16_t>(byte << 8 | (state & 0xff));
    }
    CurrentItem = source;

    auto p = std::make_unique<wint_ParticleParamType>();
    *p = {};
    p->Initialise = 1;
    dl_GetParticleParam(p.get());
    p->LowLevel = low;
    p->HighLevel = high;
    p->Connectivity = static_cast<int16_t>(connectivity);
    dl_SetParticleParam(p.get());
    dl_GetParticleParam(p.get());
    wint_ParticleSttsParamType stts{};
    dl_GetParticleSttsParam(&stts, 1, 0);
    ImageHeaderType* bilevel = ParticleBilevelItem();
    Check(bilevel != nullptr, "the bilevel item");
    const int items = CountItems();
    const std::string statsPath = fuzzsupport::WorkDirectory() + "/stats.txt";
    char texts[5][TV_PARTICLE_DESC_TEXT];
    for (int step = 0; step < 24 && in.More(); ++step) {
        const unsigned command = in.Byte();
        switch (command % 12) {
        case 0: dl_ErodeBilevelImage(); break;
        case 1: dl_DilateBilevelImage(); break;
        case 2:
            g_size = static_cast<int32_t>(in.Byte()) - 2;
            Ap.ap_EnterInteger = AnswerSize;
            dl_IsolateBilevelImage();
            break;
        case 3: dl_ParticlePointer_Callback(18, static_cast<int32_t>(in.Byte()) - 8, static_cast<int32_t>(in.Byte()), 1); break;
        case 4: dl_ParticlePointer_Callback(26, static_cast<int32_t>(in.Byte()), static_cast<int32_t>(in.Byte()) + 8, 1); break;
        case 5: dl_ToggleConnectivity(); break;
        case 6:
            stts.SortKey = in.Byte() % 6;
            stts.SelectedRow = static_cast<int16_t>(in.SignedWord());
            dl_SetParticleSttsParam(&stts);
            break;
        case 7: dl_GetParticleSttsParam(&stts, 0, 0); break;
        case 8:
            p->HistogramKind = 1u << (in.Byte() % 4);
            p->HistogramBins = static_cast<int16_t>(in.SignedWord());
            dl_SetParticleParam(p.get());
            dl_pb_DisplayParticleHist();
            break;
        case 9: dl_WriteObjectStatistics(statsPath.c_str()); break;
        case 10: FailAllocationsForTests(1, static_cast<int>(in.Byte() % 4)); break;
        default:
            dl_ParticleSttsGetDesc(static_cast<int16_t>(in.SignedWord()), texts);
            dl_ParticlePointer_Callback(static_cast<int32_t>(in.Byte()), 0, 0, 1);
            break;
        }
        FailAllocationsForTests(0);
        Check(ParticleBilevelItem() == bilevel, "the bilevel item stays");
        Check(CodesAreBilevel(bilevel->PixData, bilevel->nx, bilevel->ny), "the item stays bilevel");
        Check(CountItems() == items, "no item made or lost");
        CheckStats(bilevel);
    }
    // A refresh measures as a fresh measurement of the codes does.
    dl_GetParticleSttsParam(&stts, 0, 0);
    std::vector<uint16_t> codes(bilevel->PixData, bilevel->PixData + static_cast<size_t>(nx) * ny);
    ParticleStats fresh;
    Check(MeasureAllObjects(codes.data(), nx, ny, ParticleFrame(bilevel), &fresh), "a fresh measurement");
    Check(fresh.ObjectCount == CurrentParticleStats().ObjectCount, "refresh and fresh agree");
    for (int i = 0; i < fresh.ObjectCount; ++i)
        Check(fresh.Objects[i].Pixels == CurrentParticleStats().Objects[i].Pixels, "same pixels");
    FreeParticleStats(&fresh);
    dl_GetParticleSttsParam(&stts, 0, 1);
    EraseAllItems();
    CurrentItem = nullptr;
    ResetParticleState();
    return 0;
}

// Seeds: a 1 by 1 image, a thin row, a 40 by 30 image with every command, and a large sparse one.
extern "C" void TavrinFuzzSeeds(const char* directory)
{
    const std::string dir = directory;
    auto seed = [&dir](const char* name, int nx, int ny, int low, int high, int eight, const std::string& program) {
        std::string bytes;
        bytes += static_cast<char>((nx - 1) & 0xff);
        bytes += static_cast<char>((nx - 1) >> 8);
        bytes += static_cast<char>((ny - 1) & 0xff);
        bytes += static_cast<char>((ny - 1) >> 8);
        bytes += static_cast<char>(low);
        bytes += static_cast<char>(high);
        bytes += static_cast<char>(eight);
        bytes += static_cast<char>(77);
        bytes += program;
        fuzzsupport::WriteBytes(dir + "/" + name, bytes);
    };
    seed("seed_1x1", 1, 1, 0, 255, 0, std::string("\x00\x01\x03\x10\x10\x07", 6));
    seed("seed_row", 300, 1, 128, 255, 1, std::string("\x03\x80\x00\x04\x40\x00\x07\x09", 8));
    seed("seed_all", 40, 30, 100, 200, 0,
         std::string("\x00\x01\x02\x03\x20\x30\x04\x60\x60\x05\x06\x02\x02\x00\x07\x08\x00\x05\x00\x09\x0a\x01\x07\x0b\x01\x00\x12", 27));
    seed("seed_sparse", 300, 300, 250, 255, 1, std::string("\x07\x0a\x00\x07\x0a\x02\x01\x07\x09", 9));
}
