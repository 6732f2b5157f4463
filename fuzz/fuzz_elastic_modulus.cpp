// Fuzz target: force curves from the input through the elastic modulus. One curve of 1 to 4096
// points (X and Y as f32 bits of the input, or two clean ramps carrying the input's signal, or
// a flat or saturated signal) goes through the split, the sensitivity and the contact point;
// then a mapping of up to 3 by 3 pixels made of such curves goes through Apply 1 to 3 with
// sensitivities, constants and a ramp limit from the input. Every result must stay inside the
// curve, and at the end the list holds only what the stages added, which is erased.
#include "fuzz_support.h"
#include "test_mapping_support.h"
#include "analysis/elastic_modulus.h"

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

// The curve of `n` points in the form the input picks.
void MakeCurve(Reader& in, int form, int n, std::vector<float>* x, std::vector<float>* y)
{
    x->assign(static_cast<size_t>(n), 0.0f);
    y->assign(static_cast<size_t>(n), 0.0f);
    const int half = n / 2 > 0 ? n / 2 : 1;
    for (int i = 0; i < n; ++i) {
        const float ramp = static_cast<float>(i < half ? half - 1 - i : i - half);
        switch (form) {
        case 0: (*x)[i] = FloatFrom(in); (*y)[i] = FloatFrom(in); break;
        case 1: (*x)[i] = ramp; (*y)[i] = static_cast<float>(in.SignedWord()) / 256.0f; break;
        case 2: (*x)[i] = ramp; (*y)[i] = 1.0f; break;
        default: (*x)[i] = ramp; (*y)[i] = ramp < 10.0f ? 5.0f : 10.0f - ramp; break;
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzzsupport::StartOnce();
    Reader in{data, size};
    const int form = static_cast<int>(in.Byte() % 4);
    const int n = 1 + static_cast<int>(in.Word() % 4096);
    const int smooth = 5 + 2 * static_cast<int>(in.Byte() % 11);
    const double limit = FloatFrom(in);
    std::vector<float> x, y;
    MakeCurve(in, form, n, &x, &y);

    int first = -1, count = -1;
    for (int direction : {0, 1}) {
        if (SplitRamp(x.data(), y.data(), n, direction, limit, &first, &count))
            fuzzsupport::Check(first >= 0 && count >= 50 && first + count <= n, "the ramp lies inside the curve");
        double slope = 0.0;
        CalculateSlope(x.data(), y.data(), n, direction, smooth, limit, &slope);
        float z = 0.0f;
        if (CalculateContactPoint(x.data(), y.data(), n, direction, smooth, limit, &z) == 0) {
            // The derivative's X is interpolated between samples: it lies within the curve's X.
            float lo = x[0], hi = x[0];
            for (float v : x) {
                lo = std::fmin(lo, v);
                hi = std::fmax(hi, v);
            }
            fuzzsupport::Check(!(z < lo) && !(z > hi), "the contact point lies within the curve");
        }
    }

    // A mapping of side 1 to 3 whose every pixel holds the curve, its codes from the signal.
    const int side = 1 + static_cast<int>(in.Byte() % 3);
    ImageHeaderType* map = maptest::MakeMappingImage(side, n);
    if (!map) return 0;
    CITSHeaderType* set = map->CITSHeaderPtr;
    for (int k = 0; k < n; ++k) {
        CITSImageEntryType* e = CITSEntry(set, k);
        e->voltage = x[static_cast<size_t>(k)];
        e->z_low = -10.0f;
        e->z_high = 10.0f;
        uint16_t* p = CITSPixels(e);
        for (int i = 0; i < side * side; ++i)
            p[i] = static_cast<uint16_t>(std::isfinite(y[k]) ? std::fmin(std::fmax((y[k] + 10.0f) / 20.0f, 0.0f), 1.0f) * 65535.0f + static_cast<float>(i) : 0.0f);
    }
    CurrentItem = map;
    ElasticModulusState& s = ElasticModulus();
    s.Param.SmoothPoints = smooth;
    s.Param.RampLimit = limit;
    s.Param.ContactMethod = 1 + static_cast<int>(in.Byte() % 2);
    s.Param.SlopeOutIn = FloatFrom(in);
    s.Param.SlopeInOut = FloatFrom(in);
    s.Param.SpringConstant = FloatFrom(in);
    s.Param.TipRadius = FloatFrom(in);
    s.Param.PoissonRatio = FloatFrom(in);
    s.CalcDone = true;
    for (int stage = 1; stage <= 3; ++stage) ElasticModulusApply(stage);
    for (int py = 0; s.Table && py < side; ++py)
        for (int px = 0; px < side; ++px) {
            const ElasticPointType& point = s.Table[py * kElasticTableSize + px];
            const int points = point.n, half = point.n1, deform = point.n_deform;
            fuzzsupport::Check(points >= 0 && points <= n && half >= 0 && half <= points, "point counts");
            fuzzsupport::Check(deform >= 0 && deform <= points, "deformation count");
        }
    wint_ElasticModulusType param;
    GetElasticModulusParam(&param);
    fuzzsupport::Check(std::memchr(param.ValidText1, 0, sizeof param.ValidText1) != nullptr, "texts end");
    ElasticModulusCloseDlg();
    ResetElasticModulus();
    while (FirstItem) EraseItem(FirstItem);
    return 0;
}

extern "C" void TavrinFuzzSeeds(const char* directory)
{
    const std::string dir = directory;
    auto seed = [&](const char* name, unsigned form, unsigned points, float limit, float slope) {
        std::string bytes;
        auto word = [&](unsigned v) {
            bytes += static_cast<char>(v & 0xff);
            bytes += static_cast<char>((v >> 8) & 0xff);
        };
        auto real = [&](float f) {
            uint32_t b;
            std::memcpy(&b, &f, 4);
            word(b & 0xffff);
            word(b >> 16);
        };
        bytes += static_cast<char>(form);
        word(points - 1);
        bytes += static_cast<char>(2);   // 9 points of smoothing
        real(limit);
        for (unsigned i = 0; form == 1 && i < points; ++i) {
            const int half = static_cast<int>(points / 2);
            const int ramp = static_cast<int>(i) < half ? half - 1 - static_cast<int>(i) : static_cast<int>(i) - half;
            word(static_cast<unsigned>(static_cast<int16_t>(ramp < 40 ? (40 - ramp) * 64 : 0)) & 0xffff);
        }
        bytes += static_cast<char>(1);   // 2 by 2 pixels
        bytes += static_cast<char>(0);   // contact method 1
        for (float v : {slope, slope, 1.0f, 20.0f, 0.3f}) real(v);
        fuzzsupport::WriteBytes(dir + "/" + name, bytes);
    };
    seed("contact", 1, 256, 1000.0f, 0.25f);
    seed("flat", 2, 200, 1000.0f, 0.25f);
    seed("saturated", 3, 300, 1000.0f, 0.25f);
    seed("short", 1, 60, 1000.0f, 0.25f);
    seed("no_slope", 1, 256, 1000.0f, 0.0f);
    seed("limited", 1, 256, 30.0f, 0.25f);
}
