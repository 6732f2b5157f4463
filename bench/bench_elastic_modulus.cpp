// Speed of the elastic modulus stages: Apply 1 to 3 over a force-curve mapping of 64 by 64
// pixels and 512 displacements (two ramps of 256), against one pass that reads every pixel of
// every image of the set as a value. The ratio counter says how many read passes the three
// stages take.
#include <benchmark/benchmark.h>

#include <cstdlib>

#include "bench_support.h"
#include "analysis/elastic_modulus.h"
#include "mapping/cits.h"
#include "store/data_list.h"

namespace {

constexpr int kSide = 64;
constexpr int kHalf = 256;
constexpr int kImages = 2 * kHalf;
constexpr double kTravel = 100.0;

// Signal of a contact line of 0.05 V/nm up to a contact that moves with the pixel, with a
// pull-off of 3 nm on the way out.
double Signal(int x, int y, double X, bool approach)
{
    const double contact = 40.0 + 0.2 * x + 0.1 * y;
    const double limit = approach ? contact : contact + 3.0;
    return X < limit ? 0.05 * (contact - X) : 0.0;
}

double RampX(int k) { return k < kHalf ? kTravel * (kHalf - 1 - k) / (kHalf - 1) : kTravel * (k - kHalf) / (kHalf - 1); }

void Prepare()
{
    static bool ready = false;
    if (ready) return;
    ready = true;
    ImageHeaderType* item = bench::MakeTestImage(kSide, 1);
    CITSHeaderType* set = AllocateCITSDataSet(kImages, kSide, kSide);
    if (!set) std::abort();
    for (int k = 0; k < kImages; ++k) {
        CITSImageEntryType* e = CITSEntry(set, k);
        e->adc_gain = 1;
        e->i_divider = 1;
        e->voltage = static_cast<float>(RampX(k));
        e->z_low = -1.0f;
        e->z_high = 4.0f;
        e->data_type = 4;
        uint16_t* p = CITSPixels(e);
        for (int i = 0; i < kSide * kSide; ++i)
            p[i] = static_cast<uint16_t>((Signal(i % kSide, i / kSide, RampX(k), k < kHalf) + 1.0) / 5.0 * 65535.0);
    }
    SetCITSBlock(item, set);
    item->MapType = 15;
    ElasticModulusState& s = ElasticModulus();
    s.Param.SlopeOutIn = s.Param.SlopeInOut = 0.05;
    s.Param.TipRadius = 20.0;
}

void Stages()
{
    ElasticModulusState& s = ElasticModulus();
    s.CalcDone = true;
    ImageHeaderType* map = CurrentItem;
    for (int stage = 1; stage <= 3; ++stage)
        if (ElasticModulusApply(stage) != 0) std::abort();
    // Apply 3 leaves its image current: drop it, the mapping current again.
    EraseItem(CurrentItem);
    CurrentItem = map;
}

void ReadPass()
{
    const CITSHeaderType* set = CurrentItem->CITSHeaderPtr;
    double sum = 0.0;
    for (int k = 0; k < set->ni; ++k) {
        const CITSImageEntryType* e = CITSEntry(set, k);
        for (int y = 0; y < set->cy; ++y) {
            const uint16_t* row = GetCITSImagePtr(set, k, static_cast<uint32_t>(y));
            for (int x = 0; x < set->cx; ++x) sum += CITSData2Current(e, row[x]);
        }
    }
    benchmark::DoNotOptimize(sum);
}

void BM_ElasticModulusStagesRatio(benchmark::State& state) { bench::Ratio(state, Prepare, Stages, ReadPass, false); }

} // namespace

BENCHMARK(BM_ElasticModulusStagesRatio)->Unit(benchmark::kMillisecond)->Iterations(3);

