// Square resampled copies and the line resampler: every path of the size table, every special
// case of the line resampler, the general rules, and failures that leave the list as it was.
// Expected codes are computed here from the documented rules.
#include "test_frame_support.h"

#include "image/convert_size.h"
#include "store/duplicate.h"

#include <memory>
#include <tuple>
#include <vector>

namespace {

class ConvertSizeTest : public FrameStoreTest {
protected:
    // A deterministic line of codes with large and small steps.
    static std::vector<uint16_t> Line(int n)
    {
        std::vector<uint16_t> in(n);
        for (int i = 0; i < n; ++i) in[i] = static_cast<uint16_t>((i * 7919u + (i * i) % 977u * 31u) & 0xffff);
        return in;
    }
    static std::vector<uint16_t> Resample(const std::vector<uint16_t>& in, int m)
    {
        std::vector<uint16_t> out(m, 0xdead);
        ResampleLine(static_cast<int>(in.size()), m, in.data(), out.data());
        return out;
    }
    static uint16_t Code(int x, int y) { return static_cast<uint16_t>((x * 613u + y * 1229u + x * y * 3u) & 0xffff); }
    static uint32_t At(const ImageHeaderType* image, int x, int y) { return image->PixData[static_cast<size_t>(y) * image->nx + x]; }
};

} // namespace

// The line resampler.

TEST_F(ConvertSizeTest, EqualLengthsCopy)
{
    const auto in = Line(100);
    EXPECT_EQ(Resample(in, 100), in);
}

TEST_F(ConvertSizeTest, DownSamplingTakesTheIntegerMeanOfEachRun)
{
    // n 10, m 4: step = 640 / 4 = 160; runs [0, 2), [2, 5), [5, 7), [7, 10).
    const std::vector<uint16_t> in{10, 20, 30, 40, 50, 60, 70, 80, 90, 101};
    const auto out = Resample(in, 4);
    EXPECT_EQ(out, (std::vector<uint16_t>{15, 40, 65, (80 + 90 + 101) / 3}));
}

TEST_F(ConvertSizeTest, UpSamplingBlendsWithWeightsThatAddUpTo127)
{
    // n 3, m 5: pos = k * 128 * 2 / 4 = 64 k.
    const std::vector<uint16_t> in{1000, 3000, 65535};
    const auto out = Resample(in, 5);
    EXPECT_EQ(out[0], (1000u * 127) >> 7);
    EXPECT_EQ(out[1], (1000u * 63 + 3000u * 64) >> 7);
    EXPECT_EQ(out[2], (3000u * 127) >> 7);
    EXPECT_EQ(out[3], (3000u * 63 + 65535u * 64) >> 7);
    EXPECT_EQ(out[4], (65535u * 127) >> 7);
}

TEST_F(ConvertSizeTest, DoublingLines128To256And256To512)
{
    for (int n : {128, 256}) {
        const auto in = Line(n);
        const auto out = Resample(in, 2 * n);
        EXPECT_EQ(out[0], in[0]) << n;
        for (int i = 0; i < n - 1; ++i) {
            ASSERT_EQ(out[1 + 2 * i], in[i]) << n << " " << i;
            ASSERT_EQ(out[2 + 2 * i], (uint32_t{in[i]} + in[i + 1]) >> 1) << n << " " << i;
        }
        EXPECT_EQ(out[2 * n - 1], in[n - 1]) << n;
    }
}

TEST_F(ConvertSizeTest, Line128To512InQuartersWithTheOpenPlacesTakingTheNeighbour)
{
    const auto in = Line(128);
    const auto out = Resample(in, 512);
    EXPECT_EQ(out[0], in[0]);
    for (int i = 0; i < 127; ++i) {
        const uint32_t a = in[i], b = in[i + 1];
        ASSERT_EQ(out[2 + 4 * i], a) << i;
        ASSERT_EQ(out[3 + 4 * i], (3 * a + b) >> 2) << i;
        ASSERT_EQ(out[4 + 4 * i], (a + b) >> 1) << i;
        ASSERT_EQ(out[5 + 4 * i], (a + 3 * b) >> 2) << i;
    }
    EXPECT_EQ(out[510], in[127]);
    // The places the rule leaves open: the neighbouring code.
    EXPECT_EQ(out[1], in[0]);
    EXPECT_EQ(out[511], in[127]);
}

TEST_F(ConvertSizeTest, Line128To384InThirdsWithTheLastPlaceTakingTheNeighbour)
{
    const auto in = Line(128);
    const auto out = Resample(in, 384);
    EXPECT_EQ(out[0], in[0]);
    for (int i = 0; i < 127; ++i) {
        const uint32_t a = in[i], b = in[i + 1];
        ASSERT_EQ(out[1 + 3 * i], a) << i;
        ASSERT_EQ(out[2 + 3 * i], (2 * a + b) / 3) << i;
        ASSERT_EQ(out[3 + 3 * i], (a + 2 * b) / 3) << i;
    }
    EXPECT_EQ(out[382], in[127]);
    EXPECT_EQ(out[383], in[127]);
}

TEST_F(ConvertSizeTest, Line256To384InGroupsOfTwoToThree)
{
    const auto in = Line(256);
    const auto out = Resample(in, 384);
    for (int g = 0; g < 127; ++g) {
        const uint32_t a0 = in[2 * g], a1 = in[2 * g + 1], a2 = in[2 * g + 2];
        ASSERT_EQ(out[3 * g], a0) << g;
        ASSERT_EQ(out[3 * g + 1], (a0 + 2 * a1) / 3) << g;
        ASSERT_EQ(out[3 * g + 2], (2 * a1 + a2) / 3) << g;
    }
    EXPECT_EQ(out[381], in[254]);
    EXPECT_EQ(out[382], (uint32_t{in[254]} + in[255]) >> 1);
    EXPECT_EQ(out[383], in[255]);
}

TEST_F(ConvertSizeTest, Line512To384InGroupsOfFourToThree)
{
    const auto in = Line(512);
    const auto out = Resample(in, 384);
    for (int g = 0; g < 127; ++g) {
        const uint32_t a0 = in[4 * g], a1 = in[4 * g + 1], a2 = in[4 * g + 2], a3 = in[4 * g + 3];
        ASSERT_EQ(out[3 * g], a0) << g;
        ASSERT_EQ(out[3 * g + 1], (2 * a1 + a2) / 3) << g;
        ASSERT_EQ(out[3 * g + 2], (a2 + 2 * a3) / 3) << g;
    }
    EXPECT_EQ(out[381], in[508]);
    EXPECT_EQ(out[382], in[509]);
    EXPECT_EQ(out[383], in[510]);
}

TEST_F(ConvertSizeTest, Lines128And256To400InLinearGroupsOf25)
{
    for (int n : {128, 256}) {
        const int p = n == 128 ? 8 : 16;
        const auto in = Line(n);
        const auto out = Resample(in, 400);
        for (int g = 0; g < 16; ++g)
            for (int k = 0; k < 25; ++k) {
                // t = k p / 25 in 25ths: i = floor(t), w = the rest.
                const int i = g * p + (k * p) / 25, w = (k * p) % 25;
                const uint32_t a = in[i], b = i + 1 < n ? in[i + 1] : in[n - 1];
                ASSERT_EQ(out[g * 25 + k], ((25 - w) * a + w * b) / 25) << n << " " << g << " " << k;
            }
        // Output 0 of each group is the input itself.
        EXPECT_EQ(out[25], in[p]) << n;
    }
}

TEST_F(ConvertSizeTest, Line512To400PicksPoints)
{
    const auto in = Line(512);
    const auto out = Resample(in, 400);
    for (int k : {0, 1, 200, 398, 399}) EXPECT_EQ(out[k], in[(k * 511) / 399]) << k;
    EXPECT_EQ(out[399], in[511]);
}

TEST_F(ConvertSizeTest, HalvingAndQuarteringLines)
{
    for (int n : {256, 512}) {
        const auto in = Line(n);
        const auto out = Resample(in, n / 2);
        for (int k = 0; k < n / 2; ++k) ASSERT_EQ(out[k], (uint32_t{in[2 * k]} + in[2 * k + 1]) >> 1) << n << " " << k;
    }
    const auto in = Line(512);
    const auto out = Resample(in, 128);
    for (int k = 0; k < 128; ++k)
        ASSERT_EQ(out[k], (uint32_t{in[4 * k]} + in[4 * k + 1] + in[4 * k + 2] + in[4 * k + 3]) >> 2) << k;
}

// The image paths.

TEST_F(ConvertSizeTest, BlocksOfTwoByTwoFrom256To128And512To256)
{
    for (int n : {256, 512}) {
        ImageHeaderType* source = AddImage(n, n, Code);
        ImageHeaderType* result = ConvertImageSize(source, n / 2, 0);
        ASSERT_NE(result, nullptr);
        EXPECT_EQ(result->nx, n / 2);
        EXPECT_EQ(result->ny, n / 2);
        for (auto [x, y] : {std::pair{0, 0}, std::pair{17, 40}, std::pair{n / 2 - 1, n / 2 - 1}}) {
            const uint32_t want = (uint32_t{Code(2 * x, 2 * y)} + Code(2 * x + 1, 2 * y) + Code(2 * x, 2 * y + 1) +
                                   Code(2 * x + 1, 2 * y + 1)) >> 2;
            EXPECT_EQ(At(result, x, y), want) << n << " " << x << "," << y;
        }
        FreeResultItem(result);
    }
}

TEST_F(ConvertSizeTest, BlocksOfFourByFourFrom512To128)
{
    ImageHeaderType* source = AddImage(512, 512, Code);
    ImageHeaderType* result = ConvertImageSize(source, 128, 0);
    ASSERT_NE(result, nullptr);
    for (auto [x, y] : {std::pair{0, 0}, std::pair{33, 90}, std::pair{127, 127}}) {
        uint32_t sum = 0;
        for (int dy = 0; dy < 4; ++dy)
            for (int dx = 0; dx < 4; ++dx) sum += Code(4 * x + dx, 4 * y + dy);
        EXPECT_EQ(At(result, x, y), sum >> 4) << x << "," << y;
    }
}

TEST_F(ConvertSizeTest, TwoTimesUpFrom128And256)
{
    for (int n : {128, 256}) {
        ImageHeaderType* source = AddImage(n, n, Code);
        const int N = 2 * n;
        ImageHeaderType* result = ConvertImageSize(source, N, 0);
        ASSERT_NE(result, nullptr);
        for (int y : {0, 10, N - 2}) {
            const int a = y >> 1, b = y >= N - 2 ? a : a + 1;
            for (int x : {0, 5, n - 2}) {
                const uint32_t a0 = Code(x, a), a1 = Code(x + 1, a), b0 = Code(x, b), b1 = Code(x + 1, b);
                EXPECT_EQ(At(result, 2 * x, y), a0);
                EXPECT_EQ(At(result, 2 * x + 1, y), (a0 + a1) >> 1);
                EXPECT_EQ(At(result, 2 * x, y + 1), (a0 + b0) >> 1);
                EXPECT_EQ(At(result, 2 * x + 1, y + 1), (a0 + a1 + b0 + b1) >> 2);
            }
            const uint32_t last = Code(n - 1, a), lastBelow = (uint32_t{Code(n - 1, a)} + Code(n - 1, b)) >> 1;
            EXPECT_EQ(At(result, N - 2, y), last);
            EXPECT_EQ(At(result, N - 1, y), last);
            EXPECT_EQ(At(result, N - 2, y + 1), lastBelow);
            EXPECT_EQ(At(result, N - 1, y + 1), lastBelow);
        }
    }
}

TEST_F(ConvertSizeTest, FourTimesUpFrom128)
{
    ImageHeaderType* source = AddImage(128, 128, Code);
    ImageHeaderType* result = ConvertImageSize(source, 512, 0);
    ASSERT_NE(result, nullptr);
    for (int y : {0, 40, 508}) {
        const int a = y >> 2, b = y >= 508 ? a : a + 1;
        for (int x : {0, 9, 126}) {
            const uint32_t a0 = Code(x, a), a1 = Code(x + 1, a), b0 = Code(x, b), b1 = Code(x + 1, b);
            const uint32_t t[4] = {a0, (3 * a0 + a1) >> 2, (a0 + a1) >> 1, (a0 + 3 * a1) >> 2};
            const uint32_t u[4] = {b0, (3 * b0 + b1) >> 2, (b0 + b1) >> 1, (b0 + 3 * b1) >> 2};
            for (int c = 0; c < 4; ++c) {
                EXPECT_EQ(At(result, 4 * x + c, y), t[c]) << x << " " << c;
                EXPECT_EQ(At(result, 4 * x + c, y + 1), (3 * t[c] + u[c]) >> 2) << x << " " << c;
                EXPECT_EQ(At(result, 4 * x + c, y + 2), (t[c] + u[c]) >> 1) << x << " " << c;
                EXPECT_EQ(At(result, 4 * x + c, y + 3), (t[c] + 3 * u[c]) >> 2) << x << " " << c;
            }
        }
        // The last four columns: the row's first value from the last source column alone.
        const uint32_t a0 = Code(127, a), b0 = Code(127, b);
        const uint32_t first[4] = {a0, (3 * a0 + b0) >> 2, (a0 + b0) >> 1, (a0 + 3 * b0) >> 2};
        for (int r = 0; r < 4; ++r)
            for (int c = 508; c < 512; ++c) EXPECT_EQ(At(result, c, y + r), first[r]) << r << " " << c;
    }
}

TEST_F(ConvertSizeTest, TheSeparablePathBlendsResampledRows)
{
    // 200 by 150 to 300: rows by the general up-sampling rule, then blended.
    ImageHeaderType* source = AddImage(200, 150, Code);
    ImageHeaderType* result = ConvertImageSize(source, 300, 0);
    ASSERT_NE(result, nullptr);
    auto resampledRow = [](int row) {
        std::vector<uint16_t> in(200), out(300);
        for (int x = 0; x < 200; ++x) in[x] = Code(x, row);
        for (int k = 0; k < 300; ++k) {
            const int pos = k * 128 * 199 / 299, i = pos >> 7, f = pos & 127;
            const uint32_t next = i + 1 < 200 ? in[i + 1] : in[i];
            out[k] = static_cast<uint16_t>((in[i] * (127u - f) + next * f) >> 7);
        }
        return out;
    };
    for (int j : {0, 1, 77, 298, 299}) {
        const int pos = j * 128 * 149 / 299, f = pos & 127, g = 127 - f;
        const int upper = pos >> 7, lower = upper + 1;
        const auto up = resampledRow(upper);
        const auto low = lower < 150 ? resampledRow(lower) : up;
        for (int x : {0, 3, 150, 299})
            EXPECT_EQ(At(result, x, j), (up[x] * static_cast<uint32_t>(g) + low[x] * static_cast<uint32_t>(f)) >> 7)
                << j << " " << x;
    }
}

TEST_F(ConvertSizeTest, Interpolating256By128To256TakesTheSeparablePathAndGives992)
{
    ImageHeaderType* source = AddImage(256, 128, [](int, int) { return uint16_t{1000}; });
    ImageHeaderType* result = ConvertImageSize(source, 256, 0);
    ASSERT_NE(result, nullptr);
    EXPECT_EQ(result->nx, 256);
    EXPECT_EQ(result->ny, 256);
    EXPECT_EQ((1000 * 127) >> 7, 992);
    for (int i = 0; i < 256 * 256; ++i) ASSERT_EQ(result->PixData[i], 992) << i;
}

TEST_F(ConvertSizeTest, AnUpSamplingLineStageLosesTheFactorAgain)
{
    // 100 by 100 to 256: the line stage takes the general rule (1000 -> 992), the row stage
    // again (992 -> 984).
    ImageHeaderType* source = AddImage(100, 100, [](int, int) { return uint16_t{1000}; });
    ImageHeaderType* result = ConvertImageSize(source, 256, 0);
    ASSERT_NE(result, nullptr);
    EXPECT_EQ((((1000 * 127) >> 7) * 127) >> 7, 984);
    for (int i = 0; i < 256 * 256; ++i) ASSERT_EQ(result->PixData[i], 984) << i;
}

TEST_F(ConvertSizeTest, A128By100SourceKeepsTheExactDoublingOfItsLines)
{
    // Lines of 128 to 256 take their own doubling rule, which keeps a constant line exact:
    // only the row stage loses the factor, so 1000 becomes 992.
    ImageHeaderType* source = AddImage(128, 100, [](int, int) { return uint16_t{1000}; });
    ImageHeaderType* result = ConvertImageSize(source, 256, 0);
    ASSERT_NE(result, nullptr);
    for (int i = 0; i < 256 * 256; ++i) ASSERT_EQ(result->PixData[i], 992) << i;
}

TEST_F(ConvertSizeTest, TheResultIsANewItemBehindTheSourceWithItsOwnPixelsAndTheSameSize)
{
    ImageHeaderType* source = AddImage(256, 256, Code, "Source");
    source->ImageSizeX = 123.0f;
    source->ImageSizeY = 45.0f;
    const int items = CountItems();
    ImageHeaderType* result = ConvertImageSize(source, 128, 0);
    ASSERT_NE(result, nullptr);
    EXPECT_EQ(CountItems(), items + 1);
    EXPECT_EQ(source->Next, result);
    EXPECT_EQ(CurrentItem, source);
    EXPECT_NE(result->PixData, source->PixData);
    EXPECT_EQ(result->ImageSizeX, 123.0f);
    EXPECT_EQ(result->ImageSizeY, 45.0f);
    EXPECT_STREQ(result->Title, "Source");
    EXPECT_EQ(source->nx, 256);
    EXPECT_EQ(At(source, 3, 4), Code(3, 4));
    FreeResultItem(result);
    EXPECT_EQ(CountItems(), items);
}

TEST_F(ConvertSizeTest, ShowingDrawsTheRowsAndLogsTheConversion)
{
    TestFrameStore fs;
    ASSERT_EQ(fs.Open(1), 0);
    FSState.ImageDisplaySize = 256;
    ImageHeaderType* source = AddImage(128, 128, [](int, int) { return uint16_t{0x6000}; }, "Flat");
    ImageHeaderType* result = ConvertImageSize(source, 256, 1);
    ASSERT_NE(result, nullptr);
    EXPECT_TRUE(LogHas("Convert size of 'Flat' from (128,128) to (256,256)\n"));
    EXPECT_EQ(fs.Index(100, 100), 0x60 / 2 + 35);
    EXPECT_EQ(GetFSContentsCoords(100, 100), result);
}

TEST_F(ConvertSizeTest, AFailedAllocationReportsAndLeavesTheListAsItWas)
{
    ImageHeaderType* source = AddImage(200, 150, Code);
    const int items = CountItems();
    const size_t blocks = LiveBlockCount();
    int failures = 0;
    for (int skip = 0; skip < 8; ++skip) {
        host.ClearCalls();
        FailAllocationsForTests(1, skip);
        ImageHeaderType* result = ConvertImageSize(source, 300, 0);
        FailAllocationsForTests(0);
        if (result) {
            FreeResultItem(result);
        } else {
            ++failures;
            ASSERT_FALSE(host.messageBoxes.empty()) << skip;
            EXPECT_EQ(host.messageBoxes.back().text, "Not enough memory") << skip;
        }
        EXPECT_EQ(CountItems(), items) << skip;
        EXPECT_EQ(LiveBlockCount(), blocks) << skip;
        EXPECT_EQ(CurrentItem, source);
    }
    // The item, the pixels and the two scratch rows can each fail.
    EXPECT_GE(failures, 3);
}

TEST_F(ConvertSizeTest, BadArgumentsAreReported)
{
    ImageHeaderType* source = AddImage(64, 64, Code);
    EXPECT_EQ(ConvertImageSize(source, 0, 0), nullptr);
    EXPECT_EQ(ConvertImageSize(nullptr, 128, 0), nullptr);
    EXPECT_TRUE(LogHasProgramError("ConvertImageSize 0"));
    std::vector<uint16_t> out(4);
    ResampleLine(0, 4, nullptr, out.data());
    EXPECT_TRUE(LogHasProgramError("ResampleLine 0 4"));
}

TEST_F(ConvertSizeTest, WhenRowsAreJumpedTheUpperRowIsTheLowerRowOfTheStepBefore)
{
    // 64 by 300 to 64: lines are copied; result row 1 has pos = 128 * 299 / 63 = 607, so
    // f = 95 and the lower row is source row 5, while the upper row is the lower row of row 0's
    // step, source row 1 (not row 4).
    ImageHeaderType* source = AddImage(64, 300, Code);
    ImageHeaderType* result = ConvertImageSize(source, 64, 0);
    ASSERT_NE(result, nullptr);
    const int pos = 128 * 299 / 63, f = pos & 127;
    ASSERT_EQ(pos >> 7, 4);
    for (int x : {0, 20, 63}) {
        EXPECT_EQ(At(result, x, 1), (Code(x, 1) * static_cast<uint32_t>(127 - f) + Code(x, 5) * static_cast<uint32_t>(f)) >> 7)
            << x;
        EXPECT_NE(Code(x, 1), Code(x, 4));
    }
}

// The gap-keeping variant: codes at or below 8960 are gaps and are never blended.

namespace {

// The documented rules, written out plainly.
std::vector<uint16_t> KeepGapsLine(const uint16_t* in, int n, int m)
{
    std::vector<uint16_t> out(m);
    if (n == m) return {in, in + n};
    if (n > m) {
        const uint64_t step = uint64_t(n) * 64 / m;
        for (int k = 0; k < m; ++k) {
            const uint64_t a = (k * step) >> 6, b = ((k + 1) * step) >> 6;
            uint64_t sum = 0;
            for (uint64_t i = a; i < b; ++i) sum += in[i];
            out[k] = static_cast<uint16_t>(b > a ? sum / (b - a) : in[a]);
        }
        return out;
    }
    for (int k = 0; k < m; ++k) {
        const uint64_t pos = uint64_t(k) * 128 * (n - 1) / (m - 1);
        const uint64_t i = pos >> 7, f = pos & 127;
        const uint32_t a = in[i], b = i + 1 < uint64_t(n) ? in[i + 1] : in[i];
        out[k] = a > 8960 && b > 8960 ? static_cast<uint16_t>((a * (127 - f) + b * f) >> 7)
                                      : static_cast<uint16_t>(f < 64 ? a : b);
    }
    return out;
}

std::vector<uint16_t> KeepGapsImage(const ImageHeaderType* s, int n)
{
    std::vector<uint16_t> out(static_cast<size_t>(n) * n);
    auto line = [&](int row) { return KeepGapsLine(s->PixData + static_cast<size_t>(row) * s->nx, s->nx, n); };
    std::vector<uint16_t> upper(n), lower = line(0);
    int held = 0;
    for (int j = 0; j < n; ++j) {
        const uint64_t pos = uint64_t(j) * 128 * (s->ny - 1) / (n - 1);
        if (int(pos >> 7) + 1 != held) {
            // The two rows change roles; past the last source row the lower one is not filled
            // again and keeps what the upper row held.
            std::swap(upper, lower);
            held = int(pos >> 7) + 1;
            if (held < s->ny) lower = line(held);
        }
        const uint32_t f = pos & 127, g = 127 - f;
        for (int x = 0; x < n; ++x)
            out[static_cast<size_t>(j) * n + x] = upper[x] > 8960 && lower[x] >= 8960
                                                      ? static_cast<uint16_t>((upper[x] * g + lower[x] * f) >> 7)
                                                      : (g > f ? upper[x] : lower[x]);
    }
    return out;
}

} // namespace

TEST_F(ConvertSizeTest, KeepGapsBlendsOnlyAboveTheGapLevelGreaterAboveAndAtLeastBelow)
{
    // 2 by 2 to 3: row 0 = 8961 8960, row 1 = 8960 9000.
    ImageHeaderType* source = AddImage(2, 2, [](int x, int y) {
        static const uint16_t c[2][2] = {{8961, 8960}, {8960, 9000}};
        return c[y][x];
    });
    ImageHeaderType* result = ConvertImageSizeKeepGaps(source, 3, 0);
    ASSERT_NE(result, nullptr);
    // Lines: row 0 -> 8961 8960 8960 (no blend with a gap); row 1 -> 8960 9000 (9000*127)>>7.
    EXPECT_EQ(At(result, 0, 0), (8961u * 127) >> 7);   // 8961 above, 8960 below: blended
    EXPECT_EQ(At(result, 1, 0), 8960);                  // a gap above: the heavier upper code
    EXPECT_EQ(At(result, 2, 2), (9000u * 127) >> 7);
    // Result row 1: f = 64, g = 63.
    EXPECT_EQ(At(result, 0, 1), (8961u * 63 + 8960u * 64) >> 7);
    EXPECT_EQ(At(result, 1, 1), 9000);                  // a gap above, f >= g: the lower code
    EXPECT_EQ(At(result, 2, 1), (9000u * 127) >> 7);
}

TEST_F(ConvertSizeTest, KeepGapsFollowsItsRulesUpAndDownOnImagesFullOfGaps)
{
    uint32_t seed = 7;
    auto next = [&seed] {
        seed = seed * 1103515245u + 12345u;
        return seed >> 8;
    };
    const uint16_t levels[] = {0, 8959, 8960, 8961, 20000, 65535};
    for (auto [nx, ny, n] : {std::tuple{37, 23, 128}, std::tuple{300, 200, 128}, std::tuple{128, 128, 256},
                             std::tuple{5, 90, 64}, std::tuple{256, 256, 512}}) {
        std::vector<uint16_t> codes(static_cast<size_t>(nx) * ny);
        for (auto& c : codes) c = next() % 3 ? levels[next() % 6] : static_cast<uint16_t>(next());
        ImageHeaderType* source = AddImage(nx, ny, [&](int x, int y) { return codes[static_cast<size_t>(y) * nx + x]; });
        ImageHeaderType* result = ConvertImageSizeKeepGaps(source, n, 0);
        ASSERT_NE(result, nullptr);
        const auto want = KeepGapsImage(source, n);
        for (size_t i = 0; i < want.size(); ++i) ASSERT_EQ(result->PixData[i], want[i]) << nx << " " << ny << " " << i;
    }
}

TEST_F(ConvertSizeTest, TheLastOutputOfAGrowingLineReadsNothingPastTheLine)
{
    // A heap block of exactly n codes: the sanitizer sees any read behind it.
    for (int n : {2, 3, 100, 129}) {
        std::unique_ptr<uint16_t[]> in(new uint16_t[n]);
        for (int i = 0; i < n; ++i) in[i] = static_cast<uint16_t>(1000 + i);
        std::vector<uint16_t> out(777);
        ResampleLine(n, 777, in.get(), out.data());
        EXPECT_EQ(out[776], (uint32_t{in[n - 1]} * 127) >> 7) << n;
    }
}
