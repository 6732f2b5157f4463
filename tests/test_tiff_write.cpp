// Writing image files: the header entry by entry, the value area, the static header block,
// the palette, the spectrum questions and every failure of a save.
#include "test_tiff_support.h"
#include "display/selected_table.h"
#include "files/tiff_header.h"
#include "files/tiff_write.h"
#include "host/globals.h"
#include "host/wait.h"
#include "platform/files.h"

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <sys/resource.h>

using namespace tifftest;
using namespace TiffLayout;

class TiffWriteTest : public LibraryTest {
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        ASSERT_EQ(host.Start(), 0);
        host.ClearCalls();
    }

    static void ExpectEntry(const std::string& file, int slot, uint16_t tag, uint16_t type, uint32_t count,
                            uint32_t value)
    {
        Entry e = EntryAt(file, slot);
        EXPECT_EQ(e.tag, tag) << "slot " << slot;
        EXPECT_EQ(e.type, type) << "slot " << slot;
        EXPECT_EQ(e.count, count) << "slot " << slot;
        EXPECT_EQ(e.value, value) << "slot " << slot;
    }

    static void ExpectZero(const std::string& file, size_t from, size_t to)
    {
        for (size_t i = from; i < to; ++i) ASSERT_EQ(file[i], '\0') << "byte " << i;
    }
};

TEST_F(TiffWriteTest, SixteenBitFileHeaderEntryByEntry)
{
    ImageHeaderType* image = MakeImage(16, "Test image");
    ASSERT_NE(image, nullptr);
    ASSERT_EQ(saveTiffImage(image, Path("a.tif").c_str(), 0), 0);
    const std::string f = ReadFileBytes(Path("a.tif"));
    ASSERT_EQ(f.size(), 7124u + 16 * 16 * 2);

    EXPECT_EQ(U16(f, 0), 0x4949);
    EXPECT_EQ(U16(f, 2), 42);
    EXPECT_EQ(U32(f, 4), 6100u);
    EXPECT_EQ(U16(f, 8), 1024);
    EXPECT_EQ(f.substr(10, 6090), StoredBytes(image));
    EXPECT_EQ(U16(f, 6100), 17);
    ExpectEntry(f, 0, 256, 4, 1, 16);
    ExpectEntry(f, 1, 257, 4, 1, 16);
    ExpectEntry(f, 2, 258, 3, 1, 16);
    ExpectEntry(f, 3, 259, 3, 1, 1);
    ExpectEntry(f, 4, 262, 3, 1, 1);
    ExpectEntry(f, 5, 270, 2, 11, 6310);
    ExpectEntry(f, 6, 271, 2, 25, 6321);
    ExpectEntry(f, 7, 272, 2, 9, 6346);
    ExpectEntry(f, 8, 273, 3, 1, 7124);
    ExpectEntry(f, 9, 277, 3, 1, 1);
    ExpectEntry(f, 10, 278, 4, 1, 16);
    ExpectEntry(f, 11, 279, 4, 1, 512);
    ExpectEntry(f, 12, 282, 5, 1, 6355);
    ExpectEntry(f, 13, 283, 5, 1, 6363);
    ExpectEntry(f, 14, 296, 3, 1, 2);
    // Slot 15 points at the second copy of the host name.
    ExpectEntry(f, 15, 316, 2, 15, 6386);
    // Slot 16 as a fresh buffer holds it: all zero.
    ExpectEntry(f, 16, 0, 0, 0, 0);
    EXPECT_EQ(U32(f, 6306), 0u);

    EXPECT_EQ(f.substr(6310, 11), std::string("Test image\0", 11));
    EXPECT_EQ(f.substr(6321, 25), std::string("Tavrin 3.10. Ostwick Ltd\0", 25));
    EXPECT_EQ(f.substr(6346, 9), std::string("Varo SPM\0", 9));
    EXPECT_EQ(U32(f, 6355), 72u);
    EXPECT_EQ(U32(f, 6359), 1u);
    EXPECT_EQ(U32(f, 6363), 72u);
    EXPECT_EQ(U32(f, 6367), 1u);
    EXPECT_EQ(f.substr(6371, 15), std::string("Windows 32-bit\0", 15));
    EXPECT_EQ(f.substr(6386, 15), std::string("Windows 32-bit\0", 15));
    ExpectZero(f, 6401, 7124);

    EXPECT_EQ(std::memcmp(f.data() + 7124, image->PixData, 512), 0);
}

TEST_F(TiffWriteTest, EightBitFileHeaderEntryByEntryWithThePalette)
{
    ImageHeaderType* image = MakeImage(16, "Test image");
    ASSERT_NE(image, nullptr);
    for (int i = 0; i < 256; ++i) image->ImageLUT[i] = static_cast<uint8_t>(255 - i);
    ASSERT_EQ(saveTiffImage(image, Path("b.tif").c_str(), 1), 0);
    const std::string f = ReadFileBytes(Path("b.tif"));
    // Header, 256 pixel bytes, then the palette of 3 * 256 SHORT values.
    ASSERT_EQ(f.size(), 7124u + 256 + 1536);

    EXPECT_EQ(U16(f, 0), 0x4949);
    EXPECT_EQ(U32(f, 4), 6100u);
    EXPECT_EQ(U16(f, 8), 1024);
    EXPECT_EQ(f.substr(10, 6090), StoredBytes(image));
    EXPECT_EQ(image->BitsPerPixel, 8);
    ExpectEntry(f, 0, 256, 4, 1, 16);
    ExpectEntry(f, 1, 257, 4, 1, 16);
    ExpectEntry(f, 2, 258, 3, 1, 8);
    ExpectEntry(f, 3, 259, 3, 1, 1);
    ExpectEntry(f, 4, 262, 3, 1, 3);
    ExpectEntry(f, 5, 270, 2, 11, 6310);
    ExpectEntry(f, 6, 271, 2, 25, 6321);
    ExpectEntry(f, 7, 272, 2, 9, 6346);
    ExpectEntry(f, 8, 273, 3, 1, 7124);
    ExpectEntry(f, 9, 277, 3, 1, 1);
    ExpectEntry(f, 10, 278, 4, 1, 16);
    ExpectEntry(f, 11, 279, 4, 1, 256);
    ExpectEntry(f, 12, 282, 5, 1, 6355);
    ExpectEntry(f, 13, 283, 5, 1, 6363);
    ExpectEntry(f, 14, 296, 3, 1, 2);
    ExpectEntry(f, 15, 316, 2, 15, 6371);
    ExpectEntry(f, 16, 320, 3, 768, 7380);
    EXPECT_EQ(f.substr(6371, 15), std::string("Windows 32-bit\0", 15));
    ExpectZero(f, 6386, 7124);

    for (int i = 0; i < 256; ++i)
        ASSERT_EQ(static_cast<uint8_t>(f[7124 + i]), image->PixData[i] >> 8) << i;

    uint16_t table[3][256];
    SelectedColourTable(table[0], table[1], table[2]);
    for (int plane = 0; plane < 3; ++plane)
        for (int i = 0; i < 256; ++i) {
            const int index = std::clamp((255 - i) / 2 + 35, 35, 162);
            ASSERT_EQ(U16(f, 7380 + 2 * (plane * 256 + i)), 256 * table[plane][index]) << plane << " " << i;
        }
}

TEST_F(TiffWriteTest, ATitleOfOneCharacterStillHasAnOffset)
{
    ImageHeaderType* image = MakeImage(16, "A");
    ASSERT_EQ(saveTiffImage(image, Path("t1.tif").c_str(), 0), 0);
    const std::string f = ReadFileBytes(Path("t1.tif"));
    ExpectEntry(f, 5, 270, 2, 2, 6310);
    EXPECT_EQ(f.substr(6310, 2), std::string("A\0", 2));
    ExpectEntry(f, 6, 271, 2, 25, 6312);
}

TEST_F(TiffWriteTest, ATitleOf39CharactersFitsAndTheValueAreaTakesTitlePlus25Plus9Plus16PlusTwice15)
{
    const std::string title(39, 'T');
    ImageHeaderType* image = MakeImage(16, title.c_str());
    ASSERT_EQ(saveTiffImage(image, Path("t39.tif").c_str(), 0), 0);
    const std::string f = ReadFileBytes(Path("t39.tif"));
    ExpectEntry(f, 5, 270, 2, 40, 6310);
    EXPECT_EQ(f.substr(6310, 40), title + std::string(1, '\0'));
    const size_t used = 40 + 25 + 9 + 16 + 2 * 15;
    ExpectEntry(f, 15, 316, 2, 15, static_cast<uint32_t>(6310 + used - 15));
    EXPECT_EQ(f.substr(6310 + used - 15, 15), std::string("Windows 32-bit\0", 15));
    ExpectZero(f, 6310 + used, 7124);
    EXPECT_EQ(ReadLog().find("Overwrote memory"), std::string::npos);
}

TEST_F(TiffWriteTest, ASixteenBitSaveAfterAPaletteSaveKeepsTheColorMapEntryInSlot16)
{
    ImageHeaderType* image = MakeImage(16);
    ASSERT_EQ(saveTiffImage(image, Path("first.tif").c_str(), 1), 0);
    ImageHeaderType* other = MakeImage(32);
    ASSERT_EQ(saveTiffImage(other, Path("second.tif").c_str(), 0), 0);
    const std::string f = ReadFileBytes(Path("second.tif"));
    // The 16-bit file's own entries...
    ExpectEntry(f, 2, 258, 3, 1, 16);
    ExpectEntry(f, 15, 316, 2, 15, 6386);
    // ...and in slot 16 the ColorMap of the palette file before it, as the static block held it.
    ExpectEntry(f, 16, 320, 3, 768, 7124 + 256);
    EXPECT_EQ(std::memcmp(TiffHeaderBuffer(), f.data(), 7124), 0);
}

TEST_F(TiffWriteTest, ValueAreaCutsATextToWhatFitsAndReportsWhenItReachesItsEnd)
{
    uint8_t bytes[20];
    std::memset(bytes, 0xEE, sizeof bytes);
    TiffValueArea area{bytes, 6310, sizeof bytes, 0};
    uint32_t count = 0;
    EXPECT_EQ(PlaceTiffText(&area, "Varo SPM", 8, &count), 6310u);
    EXPECT_EQ(count, 9u);
    EXPECT_TRUE(CheckTiffValueArea(&area));
    EXPECT_EQ(ReadLog().find("Overwrote memory"), std::string::npos);
    EXPECT_EQ(PlaceTiffText(&area, "Tavrin 3.10. Ostwick Ltd", 24, &count), 6319u);
    EXPECT_EQ(count, 11u);
    EXPECT_EQ(std::string(reinterpret_cast<char*>(bytes) + 9, 11), std::string("Tavrin 3.1\0", 11));
    EXPECT_FALSE(CheckTiffValueArea(&area));
    EXPECT_TRUE(Contains(ReadLog(), "ERROR : Program error - WRITE_TIFF_HEADER Overwrote memory"));
    // Nothing more fits: a further value is placed at the end with no bytes.
    EXPECT_EQ(PlaceTiffText(&area, "Windows 32-bit", 14, &count), 6330u);
    EXPECT_EQ(count, 0u);
}

TEST_F(TiffWriteTest, PaletteOfAnEightBitFileStandsBehindTheFFTBlock)
{
    ImageHeaderType* image = MakeImage(16);
    MemHandleType fft;
    ASSERT_TRUE(AllocateMem(16 * 16, 8, &fft));
    for (int i = 0; i < 512; ++i) static_cast<float*>(fft.Ptr)[i] = static_cast<float>(i);
    SetFFTBlock(image, static_cast<float*>(fft.Ptr));
    ASSERT_EQ(saveTiffImage(image, Path("fft8.tif").c_str(), 1), 0);
    const std::string f = ReadFileBytes(Path("fft8.tif"));
    const uint32_t palette = 7124 + 256 + 16 * 16 * 8;
    ExpectEntry(f, 16, 320, 3, 768, palette);
    ASSERT_EQ(f.size(), palette + 1536u);
    EXPECT_EQ(std::memcmp(f.data() + 7124 + 256, fft.Ptr, 2048), 0);
}

TEST_F(TiffWriteTest, TheFFTBlockFollowsTheSixteenBitPixels)
{
    ImageHeaderType* image = MakeImage(16);
    MemHandleType fft;
    ASSERT_TRUE(AllocateMem(16 * 16, 8, &fft));
    for (int i = 0; i < 512; ++i) static_cast<float*>(fft.Ptr)[i] = 0.25f * static_cast<float>(i);
    SetFFTBlock(image, static_cast<float*>(fft.Ptr));
    ASSERT_EQ(saveTiffImage(image, Path("fft16.tif").c_str(), 0), 0);
    const std::string f = ReadFileBytes(Path("fft16.tif"));
    ASSERT_EQ(f.size(), 7124u + 512 + 2048);
    EXPECT_NE(U32(f, 10 + 686), 0u);
    EXPECT_EQ(std::memcmp(f.data() + 7124 + 512, fft.Ptr, 2048), 0);
}

TEST_F(TiffWriteTest, SaveStampsTheSaveTimeAndTheRecordKeepsCompressionAndBits)
{
    ImageHeaderType* image = MakeImage(16);
    std::memset(&image->SavedDate, 0, sizeof image->SavedDate);
    std::memset(&image->SavedTime, 0, sizeof image->SavedTime);
    image->Compression = 5;
    image->DisplayMode = 2;
    ASSERT_EQ(saveTiffImage(image, Path("s.tif").c_str(), 1), 0);
    EXPECT_EQ(image->SavedDate.day, 22);
    EXPECT_EQ(image->SavedDate.month, 11);
    EXPECT_EQ(image->SavedDate.year, 2026);
    EXPECT_EQ(image->SavedTime.hour, 14);
    EXPECT_EQ(image->SavedTime.minute, 5);
    EXPECT_EQ(image->SavedTime.second, 9);
    EXPECT_EQ(image->SavedTime.hsecond, 25);
    EXPECT_EQ(image->Compression, 0);
    EXPECT_EQ(image->BitsPerPixel, 8);
    EXPECT_EQ(image->DisplayMode, 1u);
    ASSERT_EQ(saveTiffImage(image, Path("s16.tif").c_str(), 0), 0);
    EXPECT_EQ(image->BitsPerPixel, 16);
    EXPECT_TRUE(Contains(ReadLog(), "Save image " + Path("s.tif")));
    EXPECT_EQ(HourGlassCount(), 0);
}

TEST_F(TiffWriteTest, AnOpenThreeDViewSavesDisplayModeFour)
{
    ImageHeaderType* image = MakeImage(16);
    SetView3DOpen(image, 1);
    ASSERT_EQ(saveTiffImage(image, Path("v.tif").c_str(), 0), 0);
    EXPECT_EQ(image->DisplayMode, 4u);
    EXPECT_EQ(U32(ReadFileBytes(Path("v.tif")), 10 + 2006), 4u);
}

TEST_F(TiffWriteTest, DeclinedAttachedSpectraGiveCountZeroInTheFileWhileTheRecordKeepsItsCount)
{
    ImageHeaderType* image = MakeImage(16);
    ImageHeaderType* spectrum = AllocateHeader();
    ASSERT_NE(spectrum, nullptr);
    spectrum->ImType1 = IMTYPE_SPECTRUM;
    spectrum->nx = 3;
    spectrum->PixData = reinterpret_cast<uint16_t*>(AllocSpecMem(3));
    SetSPSRefChain(image, spectrum);
    image->nSPSRefData = 1;
    host.messageBoxAnswers.push_back(TV_IDNO);
    ASSERT_EQ(saveTiffImage(image, Path("spectra.tif").c_str(), 0), 0);
    ASSERT_EQ(host.messageBoxes.size(), 1u);
    EXPECT_EQ(host.messageBoxes[0].text, "Save 1 spectra attached to this image?");
    const std::string f = ReadFileBytes(Path("spectra.tif"));
    EXPECT_EQ(U16(f, 2774), 0);
    EXPECT_EQ(image->nSPSRefData, 1);
    EXPECT_EQ(f.size(), 7124u + 512);
}

TEST_F(TiffWriteTest, SpectraReferringToTheImageAreCountedOverTheListAndAskedFor)
{
    ImageHeaderType* image = MakeImage(16);
    for (int i = 0; i < 2; ++i) {
        ImageHeaderType* spectrum = AllocateListItem(CurrentItem);
        ASSERT_NE(spectrum, nullptr);
        spectrum->ImType1 = IMTYPE_SPECTRUM;
        spectrum->nx = 3;
        spectrum->PixData = reinterpret_cast<uint16_t*>(AllocSpecMem(3));
        spectrum->SPSOwnerId = static_cast<int32_t>(image->DataId);
    }
    host.messageBoxAnswers.push_back(TV_IDNO);
    ASSERT_EQ(saveTiffImage(image, Path("ref.tif").c_str(), 0), 0);
    ASSERT_EQ(host.messageBoxes.size(), 1u);
    EXPECT_EQ(host.messageBoxes[0].text, "Save 2 spectra referencing this image?");
    EXPECT_EQ(host.messageBoxes[0].style & 0xFu, TV_MB_YESNO);
}

TEST_F(TiffWriteTest, AnotherBitnoIsAProgramErrorAndNoPixelsAreWritten)
{
    ImageHeaderType* image = MakeImage(16);
    EXPECT_EQ(saveTiffImage(image, Path("b2.tif").c_str(), 2), 0);
    EXPECT_EQ(ReadFileBytes(Path("b2.tif")).size(), 7124u);
    EXPECT_TRUE(Contains(ReadLog(), "ERROR : Program error - bitno=2"));
    EXPECT_EQ(image->BitsPerPixel, 16);
}

TEST_F(TiffWriteTest, AFileThatCannotBeCreatedIsUnableToOpenFile)
{
    ImageHeaderType* image = MakeImage(16);
    const std::string path = Path("missing/dir/x.tif");
    EXPECT_EQ(saveTiffImage(image, path.c_str(), 0), 1);
    ASSERT_EQ(host.messageBoxes.size(), 1u);
    EXPECT_EQ(host.messageBoxes[0].text, "Unable to open file");
    EXPECT_TRUE(Contains(ReadLog(), "Error on saving image " + path));
    EXPECT_EQ(HourGlassCount(), 0);
}

TEST_F(TiffWriteTest, AFailedRowBufferIsNotEnoughMemoryAndNoFileIsMade)
{
    ImageHeaderType* image = MakeImage(16);
    const size_t blocks = LiveBlockCount();
    FailAllocationsForTests(1);
    EXPECT_EQ(saveTiffImage(image, Path("m.tif").c_str(), 0), 1);
    ASSERT_EQ(host.messageBoxes.size(), 1u);
    EXPECT_EQ(host.messageBoxes[0].text, "Not enough memory");
    EXPECT_FALSE(std::filesystem::exists(Path("m.tif")));
    EXPECT_EQ(LiveBlockCount(), blocks);
}

TEST_F(TiffWriteTest, AShortPixelWriteIsNotEnoughDiskSpace)
{
    ImageHeaderType* image = MakeImage(16);
    SetFileWriteLimitForTests(7124 + 100);
    EXPECT_EQ(saveTiffImage(image, Path("short.tif").c_str(), 0), 1);
    SetFileWriteLimitForTests(-1);
    ASSERT_EQ(host.messageBoxes.size(), 1u);
    EXPECT_EQ(host.messageBoxes[0].text, "Not enough disk space");
    EXPECT_FALSE(std::filesystem::exists(Path("short.tif")));   // no half-written file
    EXPECT_NE(ReadLog().find("Error on saving image " + Path("short.tif")), std::string::npos);
}

TEST_F(TiffWriteTest, AShortHeaderWriteStillAnswersNonZeroAndShowsAsAShortFile)
{
    ImageHeaderType* image = MakeImage(16);
    const FileHandle file = FileCreate(Path("h.tif"));
    ASSERT_NE(file, kInvalidFile);
    SetFileWriteLimitForTests(100);
    EXPECT_NE(WRITE_TIFF_HEADER(file, image), 0);
    SetFileWriteLimitForTests(-1);
    FileClose(file);
    EXPECT_EQ(ReadFileBytes(Path("h.tif")).size(), 100u);
    // Through the save the pixels then fall short: error 32773.
    SetFileWriteLimitForTests(100);
    EXPECT_EQ(saveTiffImage(image, Path("h2.tif").c_str(), 0), 1);
    SetFileWriteLimitForTests(-1);
    ASSERT_EQ(host.messageBoxes.size(), 1u);
    EXPECT_EQ(host.messageBoxes[0].text, "Not enough disk space");
}

TEST_F(TiffWriteTest, AFailedHeaderWriteIsAnErrorOnWriting)
{
    if (!std::filesystem::exists("/dev/full")) GTEST_FAIL() << "/dev/full is needed for a failing write";
    ImageHeaderType* image = MakeImage(16);
    EXPECT_EQ(saveTiffImage(image, "/dev/full", 0), 1);
    ASSERT_EQ(host.messageBoxes.size(), 1u);
    EXPECT_EQ(host.messageBoxes[0].text, "Error occurred on writing to output device");
    EXPECT_TRUE(Contains(ReadLog(), "Error on saving image /dev/full"));
}

TEST_F(TiffWriteTest, AFailedPixelWriteIsAnErrorOnWriting)
{
    // Files of this process may not grow past the header: the pixel write fails outright.
    ImageHeaderType* image = MakeImage(16);
    ReadLog();
    rlimit saved;
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &saved), 0);
    auto previous = std::signal(SIGXFSZ, SIG_IGN);
    rlimit limited = saved;
    limited.rlim_cur = 7124;
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limited), 0);
    const int result = saveTiffImage(image, Path("fsize.tif").c_str(), 0);
    setrlimit(RLIMIT_FSIZE, &saved);
    std::signal(SIGXFSZ, previous);
    EXPECT_EQ(result, 1);
    ASSERT_EQ(host.messageBoxes.size(), 1u);
    EXPECT_EQ(host.messageBoxes[0].text, "Error occurred on writing to output device");
    EXPECT_FALSE(std::filesystem::exists(Path("fsize.tif")));   // no half-written file
}

TEST_F(TiffWriteTest, ANullRecordIsAProgramError)
{
    EXPECT_EQ(saveTiffImage(nullptr, Path("n.tif").c_str(), 0), 1);
    EXPECT_TRUE(Contains(ReadLog(), "Program error - saveTiffImage"));
    EXPECT_FALSE(std::filesystem::exists(Path("n.tif")));
}
