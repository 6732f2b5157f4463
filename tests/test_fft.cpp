// The transform itself, against a double-precision DFT, and the forward and inverse commands.
#include "test_fft_support.h"

#include "files/sample_data.h"
#include "store/history.h"

#include <algorithm>
#include <cstring>
#include <random>

namespace {

std::vector<float> RandomPairs(int nx, int ny, uint32_t seed, bool imaginary)
{
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> value(-1000.0f, 1000.0f);
    std::vector<float> data(static_cast<size_t>(nx) * ny * 2);
    for (size_t i = 0; i < data.size(); i += 2) {
        data[i] = value(random);
        data[i + 1] = imaginary ? value(random) : 0.0f;
    }
    return data;
}

// The largest error of `got` against the reference, relative to the largest reference magnitude.
double RelativeError(const std::vector<float>& got, const std::vector<std::complex<double>>& want)
{
    double largest = 0, error = 0;
    for (size_t i = 0; i < want.size(); ++i) {
        largest = std::max(largest, std::abs(want[i]));
        error = std::max(error, std::abs(want[i] - std::complex<double>(got[2 * i], got[2 * i + 1])));
    }
    return error / largest;
}

double CheckAgainstReference(int nx, int ny, bool forward, uint32_t seed)
{
    std::vector<float> data = RandomPairs(nx, ny, seed, true);
    const auto want = ReferenceDFT2D(data, nx, ny, forward);
    EXPECT_TRUE(FFT2D(data.data(), PowerOfTwoExponent(ny), PowerOfTwoExponent(nx), nx, forward, FFTProgress{}));
    return RelativeError(data, want);
}

} // namespace

TEST(FFTCore, PowerOfTwoTestRefusesOneZeroAndMixedBits)
{
    EXPECT_EQ(PowerOfTwoExponent(0), 0);
    EXPECT_EQ(PowerOfTwoExponent(1), 0);
    EXPECT_EQ(PowerOfTwoExponent(-4), 0);
    EXPECT_EQ(PowerOfTwoExponent(3), 0);
    EXPECT_EQ(PowerOfTwoExponent(96), 0);
    EXPECT_EQ(PowerOfTwoExponent(2), 1);
    EXPECT_EQ(PowerOfTwoExponent(256), 8);
    EXPECT_EQ(PowerOfTwoExponent(4096), 12);
}

TEST(FFTCore, ForwardMatchesDoubleDFTOnRandom64By64)
{
    const double error = CheckAgainstReference(64, 64, true, 1);
    RecordProperty("relative_error", std::to_string(error));
    EXPECT_LT(error, 1e-5);
}

TEST(FFTCore, ForwardMatchesDoubleDFTOnRandom128By32)
{
    EXPECT_LT(CheckAgainstReference(128, 32, true, 2), 1e-5);
}

TEST(FFTCore, InverseMatchesDoubleDFTOnRandom64By64)
{
    EXPECT_LT(CheckAgainstReference(64, 64, false, 3), 1e-5);
}

TEST(FFTCore, InverseMatchesDoubleDFTOnRandom128By32)
{
    EXPECT_LT(CheckAgainstReference(128, 32, false, 4), 1e-5);
}

TEST(FFTCore, ForwardScalesByOneOverNExactly)
{
    // A unit impulse at 0 transforms to 1 / N in every bin, exactly.
    std::vector<float> data(2 * 256, 0.0f);
    data[0] = 1.0f;
    FFT1D(data.data(), 8, true);
    for (int i = 0; i < 256; ++i) {
        EXPECT_EQ(data[2 * i], 1.0f / 256.0f);
        EXPECT_EQ(data[2 * i + 1], 0.0f);
    }
    // And the inverse of that is unscaled: the impulse again.
    FFT1D(data.data(), 8, false);
    EXPECT_NEAR(data[0], 1.0f, 1e-6);
    for (int i = 1; i < 256; ++i) EXPECT_NEAR(data[2 * i], 0.0f, 1e-6);
}

TEST(FFTCore, ForwardSignPutsPositiveFrequencyInBinK)
{
    // exp(+2 pi i 5 j / 64) has all its weight in bin 5 with the forward sign exp(-...).
    std::vector<float> data(2 * 64);
    for (int j = 0; j < 64; ++j) {
        data[2 * j] = static_cast<float>(std::cos(2 * M_PI * 5 * j / 64));
        data[2 * j + 1] = static_cast<float>(std::sin(2 * M_PI * 5 * j / 64));
    }
    FFT1D(data.data(), 6, true);
    EXPECT_NEAR(data[2 * 5], 1.0f, 1e-6);
    EXPECT_NEAR(data[2 * 59], 0.0f, 1e-6);
}

TEST(FFTCore, OneAndTwoThreadsGiveTheSameBits)
{
    const std::vector<float> start = RandomPairs(256, 128, 7, true);
    std::vector<float> one = start, two = start;
    ASSERT_TRUE(FFT2D(one.data(), 7, 8, 256, true, FFTProgress{}, 1));
    ASSERT_TRUE(FFT2D(two.data(), 7, 8, 256, true, FFTProgress{}, 2));
    EXPECT_EQ(std::memcmp(one.data(), two.data(), one.size() * sizeof(float)), 0);
}

// Rows then columns through FFT1D one line at a time, the columns through a scratch line.
std::vector<float> LineByLine(std::vector<float> data, int log2ny, int log2nx, int rowLength, bool forward)
{
    const int nx = 1 << log2nx, ny = 1 << log2ny;
    for (int y = 0; y < ny; ++y) FFT1D(data.data() + 2 * static_cast<size_t>(y) * rowLength, log2nx, forward);
    std::vector<float> column(2 * static_cast<size_t>(ny));
    for (int x = 0; x < nx; ++x) {
        for (int y = 0; y < ny; ++y)
            for (int part = 0; part < 2; ++part) column[2 * y + part] = data[2 * (static_cast<size_t>(y) * rowLength + x) + part];
        FFT1D(column.data(), log2ny, forward);
        for (int y = 0; y < ny; ++y)
            for (int part = 0; part < 2; ++part) data[2 * (static_cast<size_t>(y) * rowLength + x) + part] = column[2 * y + part];
    }
    return data;
}

TEST(FFTCore, TheTwoDimensionalPassGivesEveryLineTheBitsOfTheOneDimensionalOne)
{
    // Sizes below, at and above the eight lines transformed side by side, lines of one value,
    // and rows longer than the image (the values behind each row stay as they are).
    const int shapes[][3] = {{0, 3, 8}, {3, 0, 1}, {1, 1, 2}, {2, 5, 32}, {3, 3, 8}, {4, 6, 64},
                             {6, 4, 16}, {5, 7, 130}, {7, 5, 40}, {10, 2, 4}};
    uint32_t seed = 20;
    for (const auto& shape : shapes) {
        const int log2ny = shape[0], log2nx = shape[1], rowLength = shape[2];
        for (bool forward : {true, false}) {
            const std::vector<float> start = RandomPairs(rowLength, 1 << log2ny, seed++, true);
            const std::vector<float> want = LineByLine(start, log2ny, log2nx, rowLength, forward);
            for (int threads : {1, 2}) {
                std::vector<float> got = start;
                ASSERT_TRUE(FFT2D(got.data(), log2ny, log2nx, rowLength, forward, FFTProgress{}, threads));
                EXPECT_EQ(std::memcmp(got.data(), want.data(), got.size() * sizeof(float)), 0)
                    << "ny 2^" << log2ny << ", nx 2^" << log2nx << ", row " << rowLength << (forward ? " forward" : " inverse")
                    << ", " << threads << " threads";
            }
        }
    }
}

TEST(FFTCore, ProgressEverySixteenthLineRowsThenColumns)
{
    std::vector<float> data = RandomPairs(64, 32, 9, false);
    std::vector<int> seen;
    FFTProgress steps;
    steps.progress = [&seen](int percent) { seen.push_back(percent); };
    ASSERT_TRUE(FFT2D(data.data(), 5, 6, 64, true, steps));
    // Rows 0 and 16, then columns 0, 16, 32, 48 counted on from 32, over 32 + 64 - 1 lines.
    EXPECT_EQ(seen, (std::vector<int>{0, 16 * 100 / 95, 32 * 100 / 95, 48 * 100 / 95, 64 * 100 / 95, 80 * 100 / 95}));
}

TEST(FFTCore, CancelStopsBetweenBlocksOfLines)
{
    std::vector<float> data = RandomPairs(64, 64, 10, false);
    int asked = 0;
    FFTProgress steps;
    steps.cancel = [&asked] { return ++asked == 1; };
    EXPECT_FALSE(FFT2D(data.data(), 6, 6, 64, true, steps));
    EXPECT_EQ(asked, 1);
}

class FFTCommand : public FFTTestBase {};

TEST_F(FFTCommand, AllZeroImageTransformsToAllCodesZeroWithoutError)
{
    ImageHeaderType* source = AddFlatImage(64, 0);
    dl_ForwardFFT();
    ImageHeaderType* result = CurrentItem;
    ASSERT_NE(result, source);
    ASSERT_TRUE(result->FFTData);
    EXPECT_TRUE(host.messageBoxes.empty());
    for (int i = 0; i < 64 * 64; ++i) ASSERT_EQ(result->PixData[i], 0) << i;
    for (int i = 0; i < 64 * 64 * 2; ++i) ASSERT_EQ(result->FFTDataPtr[i], 0.0f) << i;
}

TEST_F(FFTCommand, ForwardMakesACurrentItemWithHistoryLogAndComplexData)
{
    ImageHeaderType* source = AddImage(64, 32, [](int x, int y) { return static_cast<uint16_t>(x * 1000 + y); }, "Waves");
    dl_ForwardFFT();
    ImageHeaderType* result = CurrentItem;
    ASSERT_NE(result, source);
    EXPECT_EQ(result->Prev, source);
    EXPECT_EQ(LastHistoryCode(result), 61);
    EXPECT_EQ(result->FFTData, 1);
    ASSERT_NE(result->FFTDataPtr, nullptr);
    EXPECT_FALSE(source->FFTData);
    EXPECT_TRUE(LogHas("FFT of 'Waves'.\n"));
    // The zero frequency holds the mean of code / 64 and lands in the centre of the spectrum
    // as the largest power.
    double mean = 0;
    for (int i = 0; i < 64 * 32; ++i) mean += source->PixData[i] / 64.0;
    mean /= 64 * 32;
    EXPECT_NEAR(result->FFTDataPtr[0], mean, mean * 1e-6);
    EXPECT_GE(At(result, 32, 16), 65534);
    EXPECT_EQ(*std::min_element(result->PixData, result->PixData + 64 * 32), 0);
}

TEST_F(FFTCommand, ForwardChecksInOrder)
{
    dl_ForwardFFT();
    EXPECT_TRUE(ErrorShown("No images in memory"));
    host.messageBoxes.clear();
    AddImage(96, 64, [](int, int) { return uint16_t{1}; });
    dl_ForwardFFT();
    EXPECT_TRUE(ErrorShown("Image dimensions must be powers of 2"));
    host.messageBoxes.clear();
    AddFlatImage(32, 5);
    dl_ForwardFFT();
    ASSERT_TRUE(CurrentItem->FFTData);
    const int count = CountItems();
    dl_ForwardFFT();
    EXPECT_TRUE(ErrorShown("Unable to perform this function on image of type FFT"));
    EXPECT_EQ(CountItems(), count);
}

TEST_F(FFTCommand, PureCosinePeaksInExactlyItsBin)
{
    AddImage(64, 64, [](int x, int) { return static_cast<uint16_t>(32768 + 16000 * std::cos(2 * M_PI * 5 * x / 64)); });
    dl_ForwardFFT();
    const ImageHeaderType* result = CurrentItem;
    // The strongest bins other than the zero frequency are +-5 along x, centred at (32, 32).
    int best = -1, bx = 0, by = 0;
    for (int y = 0; y < 64; ++y)
        for (int x = 0; x < 64; ++x)
            if (!(x == 32 && y == 32) && At(result, x, y) > best) {
                best = At(result, x, y);
                bx = x;
                by = y;
            }
    EXPECT_EQ(by, 32);
    EXPECT_TRUE(bx == 37 || bx == 27) << bx;
    EXPECT_EQ(At(result, 37, 32), At(result, 27, 32));
    // Natural order in the complex data: bin 5 holds half the amplitude over 64.
    EXPECT_NEAR(result->FFTDataPtr[2 * 5], 16000.0 / 64 / 2, 0.01);
}

TEST_F(FFTCommand, FullRangeImageComesBackWithinTwoCodes)
{
    ImageHeaderType* source = AddImage(128, 64, [](int x, int y) {
        return static_cast<uint16_t>((static_cast<uint32_t>(x * 977 + y * 4099) * 2654435761u) >> 16);
    });
    source->PixData[0] = 0;
    source->PixData[1] = 65535;
    const std::vector<uint16_t> before(source->PixData, source->PixData + 128 * 64);
    dl_ForwardFFT();
    ImageHeaderType* spectrum = CurrentItem;
    dl_InverseFFT();
    ImageHeaderType* back = CurrentItem;
    ASSERT_NE(back, spectrum);
    EXPECT_EQ(LastHistoryCode(back), 62);
    int worst = 0;
    for (int i = 0; i < 128 * 64; ++i) worst = std::max(worst, std::abs(int(back->PixData[i]) - int(before[i])));
    RecordProperty("worst_code_difference", worst);
    EXPECT_LE(worst, 2);
    for (int i = 0; i < 256; ++i) EXPECT_EQ(back->ImageLUT[i], i);
}

TEST_F(FFTCommand, InverseErasesTheComplexDataFromEveryHolderAndLogs)
{
    AddFlatImage(32, 100);
    dl_ForwardFFT();
    ImageHeaderType* spectrum = CurrentItem;
    dl_InverseFFT();
    EXPECT_FALSE(spectrum->FFTData);
    EXPECT_EQ(spectrum->FFTDataPtr, nullptr);
    EXPECT_FALSE(CurrentItem->FFTData);
    const std::string log = ReadLog();
    const size_t erase = log.find(LogLines("Erase FFT data.\n"));
    ASSERT_NE(erase, std::string::npos);
    EXPECT_NE(log.find("Inverse FFT of '", erase), std::string::npos);
    // A flat image: the magnitude is one value everywhere, stretched to code 0.
    EXPECT_EQ(CurrentItem->PixData[5], 0);
}

TEST_F(FFTCommand, InverseWithoutFFTDataDoesNothingAndReportsNothing)
{
    ImageHeaderType* source = AddFlatImage(32, 7);
    const int count = CountItems();
    const std::string logBefore = ReadLog();
    host.ClearCalls();
    dl_InverseFFT();
    EXPECT_EQ(CurrentItem, source);
    EXPECT_EQ(CountItems(), count);
    EXPECT_TRUE(host.messageBoxes.empty());
    EXPECT_EQ(host.Count("ap_Progress"), 0);
    EXPECT_EQ(ReadLog(), logBefore);
}

TEST_F(FFTCommand, CancelAtHalfWayLeavesTheListAndTheSourceUnchanged)
{
    ImageHeaderType* source = AddImage(64, 64, [](int x, int y) { return static_cast<uint16_t>(x * y * 13); });
    const std::vector<uint16_t> before(source->PixData, source->PixData + 64 * 64);
    const int count = CountItems();
    const size_t blocks = LiveBlockCount();
    // The rows are one block of lines: the first poll comes at 50 %, after the rows.
    host.pollAnswers = {1};
    dl_ForwardFFT();
    EXPECT_EQ(CurrentItem, source);
    EXPECT_EQ(CountItems(), count);
    EXPECT_EQ(LiveBlockCount(), blocks);
    EXPECT_FALSE(source->FFTData);
    EXPECT_TRUE(std::equal(before.begin(), before.end(), source->PixData));
    const auto progress = host.Calls("ap_Progress");
    ASSERT_FALSE(progress.empty());
    EXPECT_EQ(progress.back().args, "'2D Fast Fourier Transform' " + std::to_string(48 * 100 / 127));
}

TEST_F(FFTCommand, CancelledInverseLeavesTheComplexDataWhole)
{
    AddImage(64, 64, [](int x, int y) { return static_cast<uint16_t>(x * 300 + y); });
    dl_ForwardFFT();
    ImageHeaderType* spectrum = CurrentItem;
    const std::vector<float> data(spectrum->FFTDataPtr, spectrum->FFTDataPtr + 64 * 64 * 2);
    const int count = CountItems();
    host.pollAnswers = {1};
    dl_InverseFFT();
    EXPECT_EQ(CurrentItem, spectrum);
    EXPECT_EQ(CountItems(), count);
    ASSERT_TRUE(spectrum->FFTData);
    EXPECT_EQ(std::memcmp(data.data(), spectrum->FFTDataPtr, data.size() * sizeof(float)), 0);
}

TEST_F(FFTCommand, EnhancingTwiceMakesTheSlopeFourTimes)
{
    ImageHeaderType* item = AddFlatImage(32, 9);
    for (int i = 0; i < 256; ++i) item->ImageLUT[i] = static_cast<uint8_t>(i);
    dl_EnhanceFFTContrast();
    dl_EnhanceFFTContrast();
    for (int i = 0; i < 256; ++i) EXPECT_EQ(item->ImageLUT[i], std::min(4 * i, 255)) << i;
    EXPECT_TRUE(LogHas("Enhance FFT contrast.\n"));
    // Another enhance does not undo it: the slope only grows.
    dl_EnhanceFFTContrast();
    EXPECT_EQ(item->ImageLUT[10], 80);
}

TEST_F(FFTCommand, EnhanceRefusesNonPowerOfTwo)
{
    AddImage(48, 32, [](int, int) { return uint16_t{0}; });
    dl_EnhanceFFTContrast();
    EXPECT_TRUE(ErrorShown("Image dimensions must be powers of 2"));
}

TEST_F(FFTCommand, CloseFFTDataAsksAndErasesOnYes)
{
    AddFlatImage(32, 3);
    dl_ForwardFFT();
    ImageHeaderType* spectrum = CurrentItem;
    host.messageBoxAnswers = {TV_IDNO};
    dl_CloseFFTData1();
    EXPECT_TRUE(spectrum->FFTData);
    ASSERT_FALSE(host.messageBoxes.empty());
    EXPECT_EQ(host.messageBoxes.back().text, "Erase complex FFT data ?  ");
    host.messageBoxAnswers = {TV_IDYES};
    dl_CloseFFTData1();
    EXPECT_FALSE(spectrum->FFTData);
    host.messageBoxes.clear();
    dl_CloseFFTData1();
    EXPECT_TRUE(ErrorShown("Image is not of type FFT"));
}

TEST_F(FFTCommand, SampleLatticePeakLiesWithinOneBinOfTheLatticeRows)
{
    ImageHeaderType* lattice = MakeSampleLattice(nullptr);
    ASSERT_NE(lattice, nullptr);
    CurrentItem = lattice;
    dl_ForwardFFT();
    const ImageHeaderType* result = CurrentItem;
    ASSERT_TRUE(result->FFTData);
    const int n = SampleLattice::kSize;
    int best = -1, bx = 0, by = 0;
    for (int y = 0; y < n; ++y)
        for (int x = 0; x < n; ++x)
            if (std::abs(x - n / 2) + std::abs(y - n / 2) > 2 && At(result, x, y) > best) {
                best = At(result, x, y);
                bx = x - n / 2;
                by = y - n / 2;
            }
    // The rows of atoms are a sqrt(3) / 2 apart: frequency vectors of length size / (a sqrt(3) / 2)
    // bins along 30, 90 and 150 degrees, sheared by the drift.
    const double length = SampleLattice::kSizeNm / (SampleLattice::kLatticeConstant * std::sqrt(3.0) / 2);
    bool near = false;
    for (int d = 0; d < 3 && !near; ++d) {
        const double angle = M_PI / 6 + d * M_PI / 3;
        const double fx = length * std::cos(angle);
        const double fy = length * (std::cos(angle) * SampleLattice::kDriftShear + std::sin(angle));
        for (int s : {1, -1})
            if (std::abs(bx - s * fx) <= 1.0 && std::abs(by - s * fy) <= 1.0) near = true;
    }
    EXPECT_TRUE(near) << bx << " " << by;
    RecordProperty("peak", std::to_string(bx) + "," + std::to_string(by));
}
