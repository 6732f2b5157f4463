// The frequency mask: the dialog record, bands and circles, applying, the filtered inverse,
// and the mask file.
#include "test_fft_support.h"

#include "files/mask_file.h"
#include "files/sample_data.h"
#include "host/globals.h"
#include "store/history.h"

#include <cstring>
#include <fstream>

namespace {

class FFTMask : public FFTTestBase {
protected:
    // A spectrum item of n by n with complex data, made current.
    ImageHeaderType* Spectrum(int n = 64)
    {
        AddImage(n, n, [](int x, int y) { return static_cast<uint16_t>(1000 + x * 7 + y * 3); });
        dl_ForwardFFT();
        return CurrentItem;
    }
    static int Count(uint8_t value)
    {
        int count = 0;
        for (int i = 0; i < MaskWidth() * MaskHeight(); ++i) count += MaskData()[i] == value;
        return count;
    }
    static uint8_t MaskAt(int x, int y) { return MaskData()[static_cast<size_t>(y) * MaskWidth() + x]; }
};

} // namespace

TEST_F(FFTMask, RecordDefaultsAndLayout)
{
    wint_FFTWinParamType p;
    std::memset(&p, 0x5A, sizeof p);
    dl_GetFFTWinParam(&p);
    EXPECT_EQ(sizeof p, 90u);
    EXPECT_EQ(+p.BandMode, 3u);
    const double timeLow = p.TimeFreqLow, timeHigh = p.TimeFreqHigh, spaceHigh = p.SpaceFreqHigh;
    EXPECT_EQ(timeLow, 1.0);   // no item: the high limits are 0 and the low ones stay
    EXPECT_EQ(timeHigh, 0.0);
    EXPECT_EQ(spaceHigh, 0.0);
    EXPECT_EQ(+p.MaskPass, 1u);
    const int zoom = p.MaskZoom;
    EXPECT_EQ(zoom, 1);
    const uint32_t noItem[6] = {3, 2, 2, 2, 2, 3};
    EXPECT_EQ(std::memcmp(p.MaskControls, noItem, sizeof noItem), 0);
    for (int i = 0; i < 6; ++i) EXPECT_EQ(+p.ImageControls[i], 2u);
}

TEST_F(FFTMask, ControlStatesFollowTheItemAndTheMask)
{
    AddFlatImage(64, 5);
    wint_FFTWinParamType p;
    dl_GetFFTWinParam(&p);
    EXPECT_EQ(+p.ImageControls[0], 1u);
    EXPECT_EQ(+p.ImageControls[1], 2u);
    dl_ForwardFFT();
    dl_GetFFTWinParam(&p);
    const uint32_t fftNoMask[6] = {3, 1, 2, 2, 1, 3};
    EXPECT_EQ(std::memcmp(p.MaskControls, fftNoMask, sizeof fftNoMask), 0);
    EXPECT_EQ(+p.ImageControls[0], 2u);
    for (int i = 1; i < 6; ++i) EXPECT_EQ(+p.ImageControls[i], 1u);
    ASSERT_TRUE(GetMaskMem(64, 64));
    dl_GetFFTWinParam(&p);
    const uint32_t fftMask[6] = {3, 2, 1, 1, 1, 3};
    EXPECT_EQ(std::memcmp(p.MaskControls, fftMask, sizeof fftMask), 0);
}

TEST_F(FFTMask, NoScanSpeedGivesTimeHighZeroAndModeOneRefuses)
{
    ImageHeaderType* spectrum = Spectrum();
    spectrum->ScanSpeedX = 0;
    spectrum->ScanSpeedY = 10;
    wint_FFTWinParamType p;
    dl_GetFFTWinParam(&p);
    const double timeHigh = p.TimeFreqHigh;
    EXPECT_EQ(timeHigh, 0.0);
    p.BandMode = 1;
    p.TimeFreqLow = 1.0;
    p.TimeFreqHigh = 2.0;
    dl_SetFFTWinParam(&p);
    dl_pb_FFTWin_New();
    EXPECT_TRUE(ErrorShown("Data has invalid revision number for operation"));
    EXPECT_EQ(Count(255), 0);
}

TEST_F(FFTMask, NyquistLimitIsRoundedUpToItsDigits)
{
    // 64 pixels over 10 nm both ways: hypot(6.4, 6.4) / 2 = 4.5254..., two digits up: 4.53.
    EXPECT_DOUBLE_EQ(NyquistLimit(10, 10, 64, 64), 4.53);
    // Below 1: three digits.
    EXPECT_DOUBLE_EQ(NyquistLimit(1000, 1000, 64, 64), 0.046);
}

TEST_F(FFTMask, BandWithHighEqualToTheLimitIsAccepted)
{
    ImageHeaderType* spectrum = Spectrum();
    spectrum->ImageSizeX = spectrum->ImageSizeY = 10.0f;
    ASSERT_TRUE(GetMaskMem(64, 64));
    const double limit = NyquistLimit(10, 10, 64, 64);
    EXPECT_EQ(AddMaskBand(2, 0.0, limit, 255), 0);
    EXPECT_TRUE(host.messageBoxes.empty());
    EXPECT_GT(Count(255), 0);
    EXPECT_EQ(AddMaskBand(2, 0.0, limit + 0.01, 255), 1);
    EXPECT_TRUE(ErrorShown("Invalid data entry"));
    host.messageBoxes.clear();
    EXPECT_EQ(AddMaskBand(2, 2.0, 2.0, 255), 1);   // L >= H
    EXPECT_TRUE(ErrorShown("Invalid data entry"));
}

TEST_F(FFTMask, BandSpansFollowTheRadii)
{
    ImageHeaderType* spectrum = Spectrum();
    spectrum->ImageSizeX = spectrum->ImageSizeY = 64.0f;   // one bin per unit of frequency
    ASSERT_TRUE(GetMaskMem(64, 64));
    // rl = 64 * 0.1 = 6.4, rh = 64 * 0.2 = 12.8, aspect 1.
    ASSERT_EQ(AddMaskBand(2, 0.1, 0.2, 255), 0);
    // Row 32 (r = 0): inner trunc(sqrt(trunc(40.96))) = 6, outer trunc(12.8) = 12.
    for (int x = 0; x < 64; ++x) {
        const bool inside = (x >= 32 + 6 && x <= 32 + 12) || (x >= 32 - 12 && x <= 32 - 6);
        EXPECT_EQ(MaskAt(x, 32), inside ? 255 : 0) << x;
    }
    // Row 32 + 12: q = 144, t = trunc(40.96 - 144) < 0: inner 0; outer trunc(sqrt(19.84)) = 4.
    for (int x = 0; x < 64; ++x) EXPECT_EQ(MaskAt(x, 44), (x >= 28 && x <= 36) ? 255 : 0) << x;
    EXPECT_EQ(MaskAt(32, 46), 0);   // r = 13 is past rh
}

TEST_F(FFTMask, WideBandStopsAtHalfWidthLessOne)
{
    ImageHeaderType* spectrum = Spectrum(32);
    spectrum->ImageSizeX = spectrum->ImageSizeY = 32.0f;
    ASSERT_TRUE(GetMaskMem(32, 32));
    const double limit = NyquistLimit(32, 32, 32, 32);
    ASSERT_EQ(AddMaskBand(2, 0.0, limit, 255), 0);
    // Row 16: outer reaches nx / 2 and becomes 15: columns 1 to 31 pass, column 0 not.
    EXPECT_EQ(MaskAt(0, 16), 0);
    EXPECT_EQ(MaskAt(1, 16), 255);
    EXPECT_EQ(MaskAt(31, 16), 255);
}

TEST_F(FFTMask, CircleMirrorTouchingRowAndColumnZeroStaysInsideTheMask)
{
    Spectrum(32);
    ASSERT_TRUE(GetMaskMem(32, 32));
    // Centre (0, 0), rim (3, 0): the mirror of row 0 would be row 32, of column 0 column 32.
    ASSERT_EQ(AddMaskCircle(0, 0, 3, 0, 1, 255), 0);
    EXPECT_EQ(MaskAt(0, 0), 255);
    EXPECT_EQ(MaskAt(3, 0), 255);
    EXPECT_EQ(MaskAt(0, 3), 255);
    // Mirror of row 1 (columns 0..3): row 31, columns 29..31 (32 - 0 left out).
    EXPECT_EQ(MaskAt(31, 31), 255);
    EXPECT_EQ(MaskAt(29, 31), 255);
    EXPECT_EQ(MaskAt(28, 31), 0);
    // A mask one byte too small would have been overrun: the sanitiser watches the buffer.
    EXPECT_EQ(Count(255) + Count(0), 32 * 32);
}

TEST_F(FFTMask, CircleIsMappedFromTheZoomedDisplay)
{
    Spectrum(64);
    ASSERT_TRUE(GetMaskMem(64, 64));
    // Zoom 2: x' = x / 2 + (64 - 32) / 2 = x / 2 + 16. Display (32, 32) is mask (32, 32).
    ASSERT_EQ(AddMaskCircle(32, 32, 36, 32, 2, 255), 0);
    EXPECT_EQ(MaskAt(34, 32), 255);
    EXPECT_EQ(MaskAt(35, 32), 0);
    EXPECT_EQ(MaskAt(30, 32), 255);
}

TEST_F(FFTMask, NewMaskChecksAndSizes)
{
    AddFlatImage(64, 1);
    dl_pb_FFTWin_New();
    EXPECT_TRUE(ErrorShown("Image is not of type FFT"));
    EXPECT_FALSE(MaskExists());
    EXPECT_TRUE(GetMaskMem(16, 64));   // refused size: reported, and a 128 by 128 mask instead
    EXPECT_TRUE(MaskExists());
    EXPECT_EQ(MaskWidth(), 128);
    EXPECT_EQ(MaskHeight(), 128);
    EXPECT_TRUE(LogHas("GerMaskMem 16 64"));
    EXPECT_FALSE(GetMaskMem(64, 64));
    EXPECT_TRUE(LogHas("GetMaskMem"));
    EXPECT_EQ(MaskWidth(), 128);
}

TEST_F(FFTMask, ApplyScalesCodesAndMultipliesComplexPairsBy255)
{
    ImageHeaderType* spectrum = Spectrum(32);
    const std::vector<uint16_t> codes(spectrum->PixData, spectrum->PixData + 32 * 32);
    const std::vector<float> data(spectrum->FFTDataPtr, spectrum->FFTDataPtr + 32 * 32 * 2);
    ASSERT_TRUE(GetMaskMem(32, 32));
    MaskData()[16 * 32 + 16] = 255;   // the centre: zero frequency, complex index 0
    MaskData()[16 * 32 + 19] = 255;   // x + 3: complex column 3 of row 0
    dl_pb_FFTWin_Apply();
    EXPECT_EQ(LastHistoryCode(spectrum), 63);
    EXPECT_EQ(At(spectrum, 16, 16), (codes[16 * 32 + 16] * 255) >> 8);
    EXPECT_EQ(At(spectrum, 0, 0), 0);
    EXPECT_EQ(spectrum->FFTDataPtr[0], data[0] * 255.0f);
    EXPECT_EQ(spectrum->FFTDataPtr[2 * 3], data[2 * 3] * 255.0f);
    EXPECT_EQ(spectrum->FFTDataPtr[2 * 1], 0.0f);
    EXPECT_TRUE(LogHas("Apply window to '"));
}

TEST_F(FFTMask, ApplyChecksInOrder)
{
    dl_pb_FFTWin_Apply();
    EXPECT_TRUE(ErrorShown("No images in memory"));
    host.messageBoxes.clear();
    AddFlatImage(32, 1);
    dl_pb_FFTWin_Apply();
    EXPECT_TRUE(ErrorShown("Image is not of type FFT"));
    host.messageBoxes.clear();
    dl_ForwardFFT();
    dl_pb_FFTWin_Apply();
    EXPECT_TRUE(ErrorShown("Window wrong size/not present"));
}

TEST_F(FFTMask, CloseAsksWithDefaultNo)
{
    Spectrum(32);
    ASSERT_TRUE(GetMaskMem(32, 32));
    dl_pb_FFTWin_Close();   // the default answer: no
    EXPECT_TRUE(MaskExists());
    ASSERT_FALSE(host.messageBoxes.empty());
    EXPECT_EQ(host.messageBoxes.back().text, "Erase Mask ?  ");
    host.messageBoxAnswers = {TV_IDYES};
    dl_pb_FFTWin_Close();
    EXPECT_FALSE(MaskExists());
}

TEST_F(FFTMask, OverlayColoursStopPassAndRunEdges)
{
    ImageHeaderType* spectrum = Spectrum(32);
    for (int i = 0; i < 256; ++i) spectrum->ImageLUT[i] = static_cast<uint8_t>(i);
    ASSERT_TRUE(GetMaskMem(32, 32));
    for (int x = 10; x <= 14; ++x) MaskData()[5 * 32 + x] = 255;
    std::vector<uint8_t> indices(32 * 32);
    ASSERT_TRUE(MaskOverlayIndices(spectrum, 1, indices.data()));
    const int level = At(spectrum, 12, 5) >> 8;
    EXPECT_EQ(indices[5 * 32 + 12], std::min((level >> 1) + 83, 162));
    EXPECT_EQ(indices[5 * 32 + 10], 2);
    EXPECT_EQ(indices[5 * 32 + 14], 2);
    EXPECT_EQ(indices[5 * 32 + 9], ((At(spectrum, 9, 5) >> 8) >> 1) + 35);
    // Zoom 2: the centre 16 by 16 drawn as 2 by 2 blocks, from (8, 8).
    ASSERT_TRUE(MaskOverlayIndices(spectrum, 2, indices.data()));
    EXPECT_EQ(indices[0], ((At(spectrum, 8, 8) >> 8) >> 1) + 35);
    EXPECT_EQ(indices[33], indices[0]);
}

TEST_F(FFTMask, PassCircleAboutTheCentreCleansTheNoisyLattice)
{
    ImageHeaderType* lattice = MakeSampleLattice(nullptr);
    ASSERT_NE(lattice, nullptr);
    CurrentItem = lattice;
    const int n = SampleLattice::kSize;
    // The generator's lattice without noise.
    std::vector<double> clean(static_cast<size_t>(n) * n);
    const double pixel = SampleLattice::kSizeNm / n;
    const double k = 2 * M_PI / (SampleLattice::kLatticeConstant * std::sqrt(3.0) / 2);
    for (int row = 0; row < n; ++row)
        for (int col = 0; col < n; ++col) {
            const double y = (row + 0.5) * pixel, x = (col + 0.5) * pixel + SampleLattice::kDriftShear * y;
            double h = 0;
            for (int d = 0; d < 3; ++d) {
                const double angle = M_PI / 6 + d * M_PI / 3;
                h += std::cos(k * (x * std::cos(angle) + y * std::sin(angle)));
            }
            clean[static_cast<size_t>(row) * n + col] = h;
        }
    auto correlation = [&clean](const uint16_t* codes) {
        double ma = 0, mb = 0;
        const size_t count = clean.size();
        for (size_t i = 0; i < count; ++i) {
            ma += clean[i];
            mb += codes[i];
        }
        ma /= count;
        mb /= count;
        double ab = 0, aa = 0, bb = 0;
        for (size_t i = 0; i < count; ++i) {
            ab += (clean[i] - ma) * (codes[i] - mb);
            aa += (clean[i] - ma) * (clean[i] - ma);
            bb += (codes[i] - mb) * (codes[i] - mb);
        }
        return ab / std::sqrt(aa * bb);
    };
    const double before = correlation(lattice->PixData);
    dl_ForwardFFT();
    ASSERT_TRUE(GetMaskMem(n, n));
    // The peaks lie about 28 bins from the centre: a pass circle of radius 32 keeps them.
    ASSERT_EQ(AddMaskCircle(n / 2, n / 2, n / 2 + 32, n / 2, 1, 255), 0);
    dl_InverseFFT();
    EXPECT_FALSE(MaskExists());   // erased after the inverse
    const double after = correlation(CurrentItem->PixData);
    RecordProperty("before", std::to_string(before));
    RecordProperty("after", std::to_string(after));
    EXPECT_GT(after, before);
}

class MaskFile : public FFTTestBase {};

TEST_F(MaskFile, SaveThenLoadGivesNonZeroValuesBackAs255)
{
    std::vector<uint8_t> mask(128 * 256);
    for (size_t i = 0; i < mask.size(); ++i) mask[i] = static_cast<uint8_t>((i * 37) % 5 == 0 ? 0 : i % 200 + 1);
    const std::vector<uint8_t> original = mask;
    const std::string path = Path("window.msk");
    ASSERT_EQ(SaveMask(path.c_str(), 128, 256, mask.data()), 0);
    // The caller's buffer came back, with its non-zero values as 255.
    for (size_t i = 0; i < mask.size(); ++i) ASSERT_EQ(mask[i], original[i] ? 255 : 0) << i;
    const std::string bytes = ReadFileBytes(path);
    ASSERT_EQ(bytes.size(), 167u + 128 * 256 / 8);
    EXPECT_EQ(static_cast<uint8_t>(bytes[0]) | static_cast<uint8_t>(bytes[1]) << 8, 700);
    EXPECT_EQ(static_cast<uint8_t>(bytes[2]) | static_cast<uint8_t>(bytes[3]) << 8, 128);
    EXPECT_EQ(static_cast<uint8_t>(bytes[4]) | static_cast<uint8_t>(bytes[5]) << 8, 256);
    EXPECT_EQ(bytes[6], 1);
    for (int i = 17; i < 167; ++i) EXPECT_EQ(bytes[i], 0);
    // Least significant bit first.
    uint8_t first = 0;
    for (int b = 0; b < 8; ++b) first = static_cast<uint8_t>(first | (original[b] ? 1 << b : 0));
    EXPECT_EQ(static_cast<uint8_t>(bytes[167]), first);
    std::vector<uint8_t> loaded(128 * 256, 7);
    ASSERT_EQ(LoadMask(path.c_str(), 128, 256, loaded.data()), 0);
    EXPECT_EQ(loaded, mask);
    EXPECT_TRUE(LogHas("Save window " + path + "\n"));
    EXPECT_TRUE(LogHas("Load " + path + "\n"));
}

TEST_F(MaskFile, SavingASizeFilesCannotHoldIsRefusedAndWritesNothing)
{
    std::vector<uint8_t> mask(64 * 64, 255);
    const std::string path = Path("small.msk");
    EXPECT_EQ(SaveMask(path.c_str(), 64, 64, mask.data()), 1);
    EXPECT_TRUE(ErrorShown("Window wrong size/not present"));
    EXPECT_FALSE(std::filesystem::exists(path));
    EXPECT_TRUE(LogHas("Error on saving window " + path + "\n"));
    host.messageBoxes.clear();
    EXPECT_EQ(SaveMask(path.c_str(), 128, 128, nullptr), 1);
    EXPECT_TRUE(ErrorShown("No window exists"));
}

TEST_F(MaskFile, OldFormsLoad)
{
    for (uint16_t mark : {uint16_t{0}, uint16_t{100}, uint16_t{105}, uint16_t{200}, uint16_t{204}}) {
        std::string bytes(8 + 128 * 256, '\0');
        bytes[0] = static_cast<char>(mark & 0xFF);
        bytes[1] = static_cast<char>(mark >> 8);
        bytes[4] = 0;   // height 256 at offset 4
        bytes[5] = 1;
        bytes[6] = static_cast<char>(128);   // width 128 at offset 6
        bytes[7] = 0;
        bytes[8 + 5] = 1;
        bytes[8 + 128 * 256 - 1] = static_cast<char>(200);
        const std::string path = Path("old" + std::to_string(mark) + ".msk");
        WriteFileBytes(path, bytes);
        std::vector<uint8_t> loaded(128 * 256, 9);
        ASSERT_EQ(LoadMask(path.c_str(), 128, 256, loaded.data()), 0) << mark;
        EXPECT_EQ(loaded[5], 255);
        EXPECT_EQ(loaded[0], 0);
        EXPECT_EQ(loaded.back(), 255);
    }
}

TEST_F(MaskFile, LoadRefusesOtherSizesAndMarks)
{
    std::vector<uint8_t> mask(128 * 128, 255);
    const std::string path = Path("w.msk");
    ASSERT_EQ(SaveMask(path.c_str(), 128, 128, mask.data()), 0);
    std::vector<uint8_t> loaded(256 * 256, 9);
    EXPECT_EQ(LoadMask(path.c_str(), 256, 256, loaded.data()), 1);
    EXPECT_TRUE(ErrorShown("Window wrong size/not present"));
    EXPECT_EQ(loaded[0], 9);
    EXPECT_TRUE(LogHas("Error on loading " + path + "\n"));
    // A file of another size: 32777, with the sizes in the log in debug mode.
    std::string bytes = ReadFileBytes(path);
    bytes[2] = 64;
    bytes[3] = 0;
    WriteFileBytes(path, bytes);
    host.messageBoxes.clear();
    DebugMode = true;
    EXPECT_EQ(LoadMask(path.c_str(), 64, 128, loaded.data()), 1);
    DebugMode = false;
    EXPECT_TRUE(ErrorShown("Invalid header"));
    EXPECT_TRUE(LogHas("Mask x=64 y=128\n"));
    // An unknown first word.
    bytes[0] = 1;
    bytes[1] = 0;
    WriteFileBytes(path, bytes);
    host.messageBoxes.clear();
    EXPECT_EQ(LoadMask(path.c_str(), 128, 128, loaded.data()), 1);
    EXPECT_TRUE(ErrorShown("Invalid header"));
    // A short file.
    WriteFileBytes(path, std::string(100, '\0'));
    host.messageBoxes.clear();
    EXPECT_EQ(LoadMask(path.c_str(), 128, 128, loaded.data()), 1);
    EXPECT_TRUE(ErrorShown("Data file too short"));
    // A null buffer.
    EXPECT_EQ(LoadMask(path.c_str(), 128, 128, nullptr), 1);
    EXPECT_TRUE(LogHas("LoadMask"));
}

TEST_F(MaskFile, OpenEntryErasesTheMaskWhenTheFileFails)
{
    AddFlatImage(128, 4);
    dl_ForwardFFT();
    dl_pb_FFTWin_Open(Path("missing.msk").c_str());
    EXPECT_FALSE(MaskExists());
    std::vector<uint8_t> mask(128 * 128, 0);
    mask[77] = 1;
    const std::string path = Path("good.msk");
    ASSERT_EQ(SaveMask(path.c_str(), 128, 128, mask.data()), 0);
    dl_pb_FFTWin_Open(path.c_str());
    ASSERT_TRUE(MaskExists());
    EXPECT_EQ(MaskData()[77], 255);
    host.messageBoxes.clear();
    dl_pb_FFTWin_Open(path.c_str());
    EXPECT_TRUE(ErrorShown("Window already exists"));
    const std::string again = Path("again.msk");
    dl_pb_FFTWin_Save(again.c_str());
    EXPECT_EQ(ReadFileBytes(again).substr(167), ReadFileBytes(path).substr(167));
    FreeMask();
    host.messageBoxes.clear();
    dl_pb_FFTWin_Save(again.c_str());
    EXPECT_TRUE(ErrorShown("No window exists"));
}
