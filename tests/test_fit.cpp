// The fitting kernels: the solver on hand-solved systems, the line fits, the polynomial line
// and surface on their edge cases, and the surface fit against the sample topography's model.
#include "test_frame_support.h"

#include "files/sample_data.h"
#include "host/error_numbers.h"
#include "image/fit.h"

#include <cmath>
#include <random>
#include <vector>

namespace {

class FitTest : public FrameStoreTest {
protected:
    // A bare source and result of w by h outside the list, codes from `code`.
    struct Pair {
        ImageHeaderType* source;
        ImageHeaderType* result;
        std::vector<double> residual;
    };
    Pair MakePair(int w, int h, const std::function<uint16_t(int, int)>& code)
    {
        ImageHeaderType* s = AddImage(w, h, code, "Source");
        ImageHeaderType* r = AddImage(w, h, [](int, int) { return uint16_t{7}; }, "Result");
        return {s, r, std::vector<double>(static_cast<size_t>(w) * h)};
    }
};

// Gaussian elimination written here for the reference fits (n up to 16).
std::vector<double> ReferenceSolve(std::vector<std::vector<double>> a, std::vector<double> b)
{
    const size_t n = b.size();
    for (size_t k = 0; k < n; ++k) {
        size_t p = k;
        for (size_t i = k + 1; i < n; ++i)
            if (std::fabs(a[i][k]) > std::fabs(a[p][k])) p = i;
        std::swap(a[k], a[p]);
        std::swap(b[k], b[p]);
        for (size_t i = k + 1; i < n; ++i) {
            const double m = a[i][k] / a[k][k];
            for (size_t j = k; j < n; ++j) a[i][j] -= m * a[k][j];
            b[i] -= m * b[k];
        }
    }
    std::vector<double> x(n);
    for (size_t i = n; i-- > 0;) {
        double s = b[i];
        for (size_t j = i + 1; j < n; ++j) s -= a[i][j] * x[j];
        x[i] = s / a[i][i];
    }
    return x;
}

// Least squares over every pixel of the surface of degrees (dx, dy) in u = (i - w/2) / w.
std::vector<double> ReferenceSurface(const ImageHeaderType* image, int dx, int dy)
{
    const int w = image->nx, h = image->ny, n = (dx + 1) * (dy + 1);
    std::vector<std::vector<double>> a(n, std::vector<double>(n, 0.0));
    std::vector<double> b(n, 0.0), t(n);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            const double ux = double(x - w / 2) / w, uy = double(y - w / 2) / w;
            for (int ay = 0; ay <= dy; ++ay)
                for (int bx = 0; bx <= dx; ++bx) t[ay * (dx + 1) + bx] = std::pow(ux, bx) * std::pow(uy, ay);
            const double p = image->PixData[static_cast<size_t>(y) * w + x];
            for (int i = 0; i < n; ++i) {
                b[i] += p * t[i];
                for (int j = 0; j < n; ++j) a[i][j] += t[i] * t[j];
            }
        }
    return ReferenceSolve(a, b);
}

// Codes of a height map: the lowest height at 2000, the highest at 62000. Answers codes per nm.
double HeightsToCodes(const std::vector<double>& z, int w, int h, std::vector<uint16_t>* codes)
{
    double lo = z[0], hi = z[0];
    for (double v : z) lo = std::min(lo, v), hi = std::max(hi, v);
    const double scale = 60000.0 / (hi - lo);
    codes->resize(static_cast<size_t>(w) * h);
    for (size_t i = 0; i < z.size(); ++i) (*codes)[i] = static_cast<uint16_t>(std::lround(2000 + (z[i] - lo) * scale));
    return scale;
}

// The sample model's tilt and bow (heights in nm, pixels of 500 / 512 nm) plus its noise.
std::vector<double> TiltAndBow(bool bow, uint32_t seed)
{
    using namespace SampleTopography;
    std::mt19937 rng(seed);
    std::normal_distribution<double> noise(0.0, kNoise);
    std::vector<double> z(static_cast<size_t>(kSize) * kSize);
    for (int y = 0; y < kSize; ++y)
        for (int x = 0; x < kSize; ++x) {
            const double xn = x * kSizeNm / kSize, yn = y * kSizeNm / kSize;
            double v = kTiltX * xn + kTiltY * yn + noise(rng);
            if (bow) v += kBow * ((xn - 250) * (xn - 250) + (yn - 250) * (yn - 250)) / (250.0 * 250.0);
            z[static_cast<size_t>(y) * kSize + x] = v;
        }
    return z;
}

} // namespace

// The solver.

TEST_F(FitTest, SolveHandSolvedTwoByTwo)
{
    double a[4] = {2, 1, 1, 3}, b[2] = {3, 5}, x[2];
    int status = -1;
    EXPECT_EQ(SolveLinearSystem(a, x, b, 2, 2, &status), kSolveOk);
    EXPECT_EQ(status, kSolveOk);
    EXPECT_NEAR(x[0], 0.8, 1e-14);
    EXPECT_NEAR(x[1], 1.4, 1e-14);
}

TEST_F(FitTest, SolvePivotsOnLargestAndKeepsFirstRowOnTies)
{
    // A tie of |1| and |-1|: the first row stays the pivot, its multiplier -1 stored below.
    double a[4] = {1, 2, -1, 1}, b[2] = {5, 1}, x[2];
    EXPECT_EQ(SolveLinearSystem(a, x, b, 2, 2, nullptr), kSolveOk);
    EXPECT_EQ(a[0], 1.0);
    EXPECT_EQ(a[1], 2.0);
    EXPECT_EQ(a[2], -1.0);
    EXPECT_EQ(a[3], 3.0);
    EXPECT_NEAR(x[0], 1.0, 1e-14);
    EXPECT_NEAR(x[1], 2.0, 1e-14);
    // A larger value below is swapped up: 0 on the diagonal is no obstacle.
    double c[4] = {0, 1, 1, 0}, d[2] = {4, 9}, y[2];
    EXPECT_EQ(SolveLinearSystem(c, y, d, 2, 2, nullptr), kSolveOk);
    EXPECT_EQ(y[0], 9.0);
    EXPECT_EQ(y[1], 4.0);
}

TEST_F(FitTest, SolveExactZeroPivotIsSingular)
{
    double a[9] = {0, 0, 1, 1, 1, 1, 2, 2, 1}, b[3] = {1, 2, 3}, x[3];
    int status = -1;
    EXPECT_EQ(SolveLinearSystem(a, x, b, 3, 3, &status), kSolveSingular);
    EXPECT_EQ(status, kSolveSingular);
}

TEST_F(FitTest, SolveOneByOneAndUntestedLastDiagonal)
{
    double a[1] = {4}, b[1] = {2}, x[1];
    EXPECT_EQ(SolveLinearSystem(a, x, b, 1, 1, nullptr), kSolveOk);
    EXPECT_EQ(x[0], 0.5);
    // The last diagonal is not tested: 0 there gives a non-finite answer with status 0, which
    // the finite form calls singular.
    double z[1] = {0}, zx[1];
    EXPECT_EQ(SolveLinearSystem(z, zx, b, 1, 1, nullptr), kSolveOk);
    EXPECT_FALSE(std::isfinite(zx[0]));
    double z2[1] = {0};
    EXPECT_EQ(SolveLinearSystemFinite(z2, zx, b, 1, 1), kSolveSingular);
}

TEST_F(FitTest, SolveRowStrideWiderThanTheSystem)
{
    double a[6] = {1, 1, 99, 1, -1, 99}, b[2] = {3, 1}, x[2];
    EXPECT_EQ(SolveLinearSystem(a, x, b, 2, 3, nullptr), kSolveOk);
    EXPECT_NEAR(x[0], 2.0, 1e-14);
    EXPECT_NEAR(x[1], 1.0, 1e-14);
}

TEST_F(FitTest, SolveNoMemoryIsStatusTwo)
{
    double a[4] = {2, 1, 1, 3}, b[2] = {3, 5}, x[2] = {-1, -1};
    FailAllocationsForTests(1);
    EXPECT_EQ(SolveLinearSystem(a, x, b, 2, 2, nullptr), kSolveNoMemory);
    EXPECT_EQ(x[0], -1.0);
}

// Lines.

TEST_F(FitTest, LineXRecoversAnExactLine)
{
    const float x[5] = {0, 1, 2, 3, 4}, y[5] = {1, 3, 5, 7, 9};
    float slope = 0, offset = 0;
    EXPECT_EQ(FitLineX(x, y, 5, &slope, &offset), 0);
    EXPECT_FLOAT_EQ(slope, 2.0f);
    EXPECT_FLOAT_EQ(offset, 1.0f);
}

TEST_F(FitTest, LineXRefusesFewPointsAndGivesNaNOnEqualAbscissae)
{
    const float x[3] = {2, 2, 2}, y[3] = {1, 2, 3};
    float slope = 5, offset = 5;
    EXPECT_EQ(FitLineX(x, y, 2, &slope, &offset), 1);
    EXPECT_TRUE(LogHas("FitLineX"));
    EXPECT_EQ(slope, 5.0f);
    // No guard on the zero denominator: 0 / 0.
    EXPECT_EQ(FitLineX(x, y, 3, &slope, &offset), 0);
    EXPECT_TRUE(std::isnan(slope));
    EXPECT_TRUE(std::isnan(offset));
}

TEST_F(FitTest, LineFTakesTheLineAway)
{
    float in[6], out[6];
    for (int i = 0; i < 6; ++i) in[i] = 3.0f * i - 4.0f + (i == 2 ? 1.0f : 0.0f);
    EXPECT_EQ(FitLineF(in, out, 6), 0);
    double sum = 0, moment = 0;
    for (int i = 0; i < 6; ++i) sum += out[i], moment += i * out[i];
    EXPECT_NEAR(sum, 0.0, 1e-5);      // the residual of a least-squares line has no mean
    EXPECT_NEAR(moment, 0.0, 1e-5);   // and no slope
    EXPECT_GT(out[2], 0.5f);
    EXPECT_EQ(FitLineF(in, out, 2), 1);
    EXPECT_TRUE(LogHas("Program error - FitLineF "));
}

TEST_F(FitTest, PolyLineRecoversAQuadratic)
{
    std::vector<double> x, y;
    for (int i = 0; i < 20; ++i) x.push_back(i), y.push_back(3 - 2 * i + 0.5 * i * i);
    double c[3] = {9, 9, 9};
    EXPECT_EQ(FitPolyLine(x.data(), y.data(), 20, 2, c), 0);
    EXPECT_NEAR(c[0], 3.0, 1e-9);
    EXPECT_NEAR(c[1], -2.0, 1e-9);
    EXPECT_NEAR(c[2], 0.5, 1e-10);
}

TEST_F(FitTest, PolyLineDegreeAboveDistinctAbscissaeIsFitPoly)
{
    // Two distinct abscissae, 0 and 1, for a cubic: the elimination meets an exact zero.
    const double x[4] = {0, 1, 0, 1}, y[4] = {5, 6, 7, 8};
    double c[4] = {9, 9, 9, 9};
    EXPECT_EQ(FitPolyLine(x, y, 4, 3, c), ERR_PROGRAM);
    EXPECT_TRUE(LogHasProgramError("Fit Poly"));
    for (double v : c) EXPECT_EQ(v, 0.0);
}

// The region.

TEST_F(FitTest, RowSpanOfAParallelogram)
{
    // A (10, 10), B (30, 10), C (20, 30): D (40, 30).
    const Parallelogram p = MakeParallelogram(10, 10, 30, 10, 20, 30);
    EXPECT_EQ(p.dx, 40);
    EXPECT_EQ(p.dy, 30);
    EXPECT_EQ(p.cross, 20 * 20);
    int a, b;
    RowSpan(p, 20, 100, &a, &b);
    EXPECT_EQ(a, 15);   // on C-A
    EXPECT_EQ(b, 35);   // on B-D
    RowSpan(p, 5, 100, &a, &b);
    EXPECT_EQ(a, 1);    // no crossing: empty
    EXPECT_EQ(b, 0);
    RowSpan(p, 20, 30, &a, &b);
    EXPECT_EQ(a, 15);
    EXPECT_EQ(b, 29);   // clipped to the image
}

TEST_F(FitTest, SampleStep)
{
    EXPECT_EQ(FitSampleStep(65536), 1);
    EXPECT_EQ(FitSampleStep(512 * 512), 2);
    EXPECT_EQ(FitSampleStep(4096LL * 4096), 16);
    EXPECT_EQ(FitSampleStep(65536 * 4 - 1), 1);
}

// The surface.

TEST_F(FitTest, Poly2DDegreeZeroIsTheMeanWithinThresholds)
{
    Pair p = MakePair(8, 6, [](int x, int y) { return static_cast<uint16_t>(x < 4 ? 1000 + y : 50000); });
    double c[1] = {0};
    const float zlo = p.result->Zlo, zhi = p.result->Zhi, scale = p.result->DataScale;
    EXPECT_EQ(FitPoly2D(p.result, p.source, nullptr, 0, 2000, 0, nullptr, 0, 0, c, p.residual.data()), kSolveOk);
    EXPECT_DOUBLE_EQ(c[0], 1002.5);   // only the codes below 2000
    EXPECT_DOUBLE_EQ(p.residual[0], 1000 - 1002.5);
    EXPECT_EQ(p.result->Zlo, zlo);
    EXPECT_EQ(p.result->Zhi, zhi);
    EXPECT_EQ(p.result->DataScale, scale);
    EXPECT_EQ(p.result->PixData[0], 0);   // the lowest residual
    EXPECT_EQ(p.result->PixData[7], 65535);
}

TEST_F(FitTest, Poly2DLowAboveAllCodesIsSingularAndZero)
{
    Pair p = MakePair(16, 16, [](int x, int y) { return static_cast<uint16_t>(100 * x + 7 * y); });
    double c[4] = {1, 1, 1, 1};
    EXPECT_EQ(FitPoly2D(p.result, p.source, nullptr, 60000, 65535, 0, nullptr, 1, 1, c, p.residual.data()),
              kSolveSingular);
    for (uint16_t v : Pixels(p.result)) ASSERT_EQ(v, 0);
    for (double v : c) EXPECT_EQ(v, 0.0);
}

TEST_F(FitTest, Poly2DZeroAreaRegionIsSingular)
{
    Pair p = MakePair(64, 64, [](int x, int y) { return static_cast<uint16_t>(100 * x + 7 * y); });
    const int16_t line[6] = {0, 0, 100, 100, 200, 200};   // A, B, C on one line
    EXPECT_EQ(FitPoly2D(p.result, p.source, nullptr, 0, 65535, 1, line, 1, 0, nullptr, p.residual.data()),
              kSolveSingular);
    for (uint16_t v : Pixels(p.result)) ASSERT_EQ(v, 0);
}

TEST_F(FitTest, Poly2DRegionRestrictsTheFit)
{
    // Left half a plane in x, right half a wall: a region on the left recovers the plane.
    Pair p = MakePair(64, 64, [](int x, int) { return static_cast<uint16_t>(x < 32 ? 1000 + 10 * x : 60000); });
    const int16_t left[6] = {0, 0, 200, 0, 0, 511};   // x up to 200 * 63 / 511 = 24
    double c[2];
    EXPECT_EQ(FitPoly2D(p.result, p.source, nullptr, 0, 65535, 1, left, 1, 0, c, p.residual.data()), kSolveOk);
    EXPECT_NEAR(c[1], 10.0 * 64, 1e-6);   // slope per unit of u = x / 64
    EXPECT_NEAR(p.residual[5], 0.0, 1e-6);
}

TEST_F(FitTest, Poly2DBadArgumentsAreAProgramError)
{
    Pair p = MakePair(8, 8, [](int, int) { return uint16_t{5}; });
    const auto before = Pixels(p.result);
    EXPECT_EQ(FitPoly2D(p.result, p.source, nullptr, 0, 65535, 0, nullptr, 20, 1, nullptr, p.residual.data()), -1);
    EXPECT_TRUE(LogHas("FitPoly2D imi"));
    EXPECT_EQ(FitPoly2D(p.result, p.source, nullptr, 0, 65535, 0, nullptr, 1, 1, nullptr, nullptr), -1);
    EXPECT_EQ(Pixels(p.result), before);
}

TEST_F(FitTest, Poly2DBackgroundCodesOverwriteTheirOwnDoubles)
{
    Pair p = MakePair(32, 20, [](int x, int y) { return static_cast<uint16_t>(3000 + 50 * x + 20 * y + (x * y) % 7); });
    ImageHeaderType* back = AddImage(32, 20, [](int, int) { return uint16_t{0}; }, "Back");
    MemHandleType wide;
    ASSERT_TRUE(AllocateMem(32 * 20, 8, &wide));
    FreeMem(back->PixHandle, back->PixData);
    back->PixHandle = wide.Handle;
    back->PixData = static_cast<uint16_t*>(wide.Ptr);
    double c[4];
    ASSERT_EQ(FitPoly2D(p.result, p.source, back, 0, 65535, 0, nullptr, 1, 1, c, p.residual.data()), kSolveOk);
    // The background codes are the stretched surface: lowest at (0, 0), highest at the far corner.
    EXPECT_EQ(back->PixData[0], 0);
    EXPECT_EQ(back->PixData[32 * 20 - 1], 65535);
    for (int x = 1; x < 32; ++x) EXPECT_GT(back->PixData[x], back->PixData[x - 1]);
}

TEST_F(FitTest, Poly2DOneAndTwoThreadsGiveIdenticalResults)
{
    std::mt19937 rng(5);
    std::uniform_int_distribution<int> noise(0, 4000);
    std::vector<uint16_t> codes(300 * 700);
    for (size_t i = 0; i < codes.size(); ++i) codes[i] = static_cast<uint16_t>(10000 + (i % 300) * 30 + noise(rng));
    Pair a = MakePair(300, 700, [&](int x, int y) { return codes[static_cast<size_t>(y) * 300 + x]; });
    ImageHeaderType* r2 = AddImage(300, 700, [](int, int) { return uint16_t{0}; });
    std::vector<double> res2(a.residual.size());
    double c1[16], c2[16];
    ASSERT_EQ(FitPoly2D(a.result, a.source, nullptr, 0, 65535, 0, nullptr, 3, 3, c1, a.residual.data(), 1), kSolveOk);
    ASSERT_EQ(FitPoly2D(r2, a.source, nullptr, 0, 65535, 0, nullptr, 3, 3, c2, res2.data(), 2), kSolveOk);
    for (int i = 0; i < 16; ++i) EXPECT_EQ(c1[i], c2[i]);
    EXPECT_EQ(a.residual, res2);
    EXPECT_EQ(Pixels(a.result), Pixels(r2));
}

TEST_F(FitTest, Poly2DTallImageReadsRowsBeyondTheWidth)
{
    // 16 wide, 64 tall: the Y coordinate of row j is (j - 8) / 16, beyond the list of columns.
    Pair p = MakePair(16, 64, [](int, int y) { return static_cast<uint16_t>(1000 + 16 * y); });
    double c[2];
    ASSERT_EQ(FitPoly2D(p.result, p.source, nullptr, 0, 65535, 0, nullptr, 0, 1, c, p.residual.data()), kSolveOk);
    EXPECT_NEAR(c[1], 16.0 * 16, 1e-6);
    EXPECT_NEAR(p.residual[63 * 16], 0.0, 1e-6);
}

// Plane fit on a grid.

TEST_F(FitTest, PlaneOfAGridGivesTheSlopesToAdd)
{
    std::vector<int32_t> v(40 * 30);
    for (int y = 0; y < 30; ++y)
        for (int x = 0; x < 40; ++x) v[static_cast<size_t>(y) * 40 + x] = 500 + 3 * (x - 4) - 2 * (y - 2);
    double out[3];
    ASSERT_EQ(FitPlane(v.data(), 40, 30, 4, 2, 35, 25, out), 0);
    EXPECT_NEAR(out[0], 500.0, 1e-9);
    EXPECT_NEAR(out[1], -3.0, 1e-9);
    EXPECT_NEAR(out[2], 2.0, 1e-9);
    EXPECT_EQ(FitPlane(v.data(), 40, 30, 4, 2, 4, 25, out), 1);   // empty
}

TEST_F(FitTest, ApplyPlaneAddsAndStretches)
{
    ImageHeaderType* item = AddImage(4, 2, [](int, int) { return uint16_t{0}; });
    item->DataScale = 1.0f;
    std::vector<int32_t> v = {10, 10, 10, 10, 10, 10, 10, 10};
    ApplyPlane(true, v.data(), item, 1.0, 0.0);
    EXPECT_EQ(item->PixData[0], 0);
    EXPECT_EQ(item->PixData[3], 65535);
    EXPECT_EQ(item->PixData[1], 21845);
    std::vector<int32_t> flat(8, 10);
    ApplyPlane(false, flat.data(), item, 5.0, 5.0);
    EXPECT_EQ(item->DataScale, 0.0f);
}

// Ground truth from the sample topography's model.

TEST_F(FitTest, Poly2DRecoversTheSampleTiltAndBow)
{
    using namespace SampleTopography;
    std::vector<uint16_t> codes;
    const double scale = HeightsToCodes(TiltAndBow(true, 11), kSize, kSize, &codes);
    Pair p = MakePair(kSize, kSize, [&](int x, int y) { return codes[static_cast<size_t>(y) * kSize + x]; });
    // u = (x - 256) / 512 and x in nm = 500 u + 250: one unit of u is 500 nm.
    double c22[9];
    ASSERT_EQ(FitPoly2D(p.result, p.source, nullptr, 0, 65535, 0, nullptr, 2, 2, c22, p.residual.data()), kSolveOk);
    const double bow = kBow * 500.0 * 500.0 / (250.0 * 250.0) * scale;   // per u squared
    EXPECT_NEAR(c22[2], bow, 0.02 * bow);   // X^2
    EXPECT_NEAR(c22[6], bow, 0.02 * bow);   // Y^2
    const double tiltX = kTiltX * 500 * scale, tiltY = kTiltY * 500 * scale;
    EXPECT_NEAR(c22[1], tiltX, 0.01 * std::fabs(tiltX));
    EXPECT_NEAR(c22[3], tiltY, 0.01 * std::fabs(tiltY));
    // A plane alone sees some of the bow as tilt: the sampled rows (every second one) run
    // from u = -0.5 to 0.496, not symmetric about 0, so the Y tilt, the weaker one, moves by
    // about 1.3% (2 * mean u * bow). It stays within 2%.
    double c11[4];
    ASSERT_EQ(FitPoly2D(p.result, p.source, nullptr, 0, 65535, 0, nullptr, 1, 1, c11, p.residual.data()), kSolveOk);
    EXPECT_NEAR(c11[1], tiltX, 0.01 * std::fabs(tiltX));
    EXPECT_NEAR(c11[2], tiltY, 0.02 * std::fabs(tiltY));
}

TEST_F(FitTest, Poly2DRecoversTheSampleTiltWithinOnePercent)
{
    using namespace SampleTopography;
    std::vector<uint16_t> codes;
    const double scale = HeightsToCodes(TiltAndBow(false, 12), kSize, kSize, &codes);
    Pair p = MakePair(kSize, kSize, [&](int x, int y) { return codes[static_cast<size_t>(y) * kSize + x]; });
    double c11[4];
    ASSERT_EQ(FitPoly2D(p.result, p.source, nullptr, 0, 65535, 0, nullptr, 1, 1, c11, p.residual.data()), kSolveOk);
    const double tiltX = kTiltX * 500 * scale, tiltY = kTiltY * 500 * scale;
    EXPECT_NEAR(c11[1], tiltX, 0.01 * std::fabs(tiltX));
    EXPECT_NEAR(c11[2], tiltY, 0.01 * std::fabs(tiltY));
}

TEST_F(FitTest, Poly2DAgreesWithLeastSquaresOverAllPixelsOfTheSample)
{
    ImageHeaderType* sample = MakeSampleTopography(CurrentItem);
    ASSERT_NE(sample, nullptr);
    ImageHeaderType* result = AddImage(sample->nx, sample->ny, [](int, int) { return uint16_t{0}; });
    std::vector<double> residual(static_cast<size_t>(sample->nx) * sample->ny);
    double c[4];
    ASSERT_EQ(FitPoly2D(result, sample, nullptr, 0, 65535, 0, nullptr, 1, 1, c, residual.data()), kSolveOk);
    const std::vector<double> ref = ReferenceSurface(sample, 1, 1);
    // The sampled fit (every second row and column) against every pixel: each coefficient
    // within 1% of the reference's largest slope term.
    const double big = std::max(std::fabs(ref[1]), std::fabs(ref[2]));
    EXPECT_NEAR(c[0], ref[0], 0.01 * std::fabs(ref[0]));
    for (int i = 1; i < 4; ++i) EXPECT_NEAR(c[i], ref[i], 0.01 * big) << i;
}

TEST_F(FitTest, SolveFourByFourWithSeveralSwaps)
{
    // x = (1, -2, 3, 0.5), a matrix that needs a row swap at every column.
    double a[16] = {1, 2, 0, 1, 4, 1, 1, 0, 0, 8, 2, 1, 3, 0, 9, 2};
    const double want[4] = {1, -2, 3, 0.5};
    double b[4] = {};
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j) b[i] += a[i * 4 + j] * want[j];
    double x[4];
    ASSERT_EQ(SolveLinearSystem(a, x, b, 4, 4, nullptr), kSolveOk);
    for (int i = 0; i < 4; ++i) EXPECT_NEAR(x[i], want[i], 1e-12);
}
