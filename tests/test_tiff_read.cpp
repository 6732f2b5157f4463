// Reading image files: round trips, the file test, the header rules, the positioning table,
// bilevel pixels, the blocks behind the pixels, and every failure of a load.
#include "test_tiff_support.h"
#include "files/image_blocks.h"
#include "files/tiff_header.h"
#include "files/tiff_read.h"
#include "files/tiff_write.h"
#include "host/globals.h"
#include "host/log.h"
#include "host/text.h"
#include "platform/files.h"
#include "store/data_list_display.h"

#include <dirent.h>
#include <filesystem>
#include <unistd.h>

using namespace tifftest;
using namespace TiffLayout;

class TiffReadTest : public LibraryTest {
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        ASSERT_EQ(host.Start(), 0);
        host.ClearCalls();
    }

    // A saved 16 by 16 image file, and the bytes of it.
    std::string SavedFile(const std::string& name, int bitno = 0, int n = 16)
    {
        ImageHeaderType* image = MakeImage(n);
        EXPECT_NE(image, nullptr);
        EXPECT_EQ(saveTiffImage(image, Path(name).c_str(), bitno), 0);
        EraseItem(image);
        host.ClearCalls();
        return ReadFileBytes(Path(name));
    }

    template <typename T>
    static void PutAt(std::string& bytes, size_t at, T value)
    {
        std::memcpy(bytes.data() + at, &value, sizeof value);
    }

    // A failed load leaves the list and the live blocks as they were, with one error box.
    void ExpectRefused(const std::string& path, const std::string& boxText)
    {
        ImageHeaderType* first = FirstItem;
        ImageHeaderType* current = CurrentItem;
        const int items = CountItems();
        const size_t blocks = LiveBlockCount();
        EXPECT_EQ(LoadImageFile(path.c_str(), 0, 1, 0), 1);
        EXPECT_EQ(FirstItem, first);
        EXPECT_EQ(CurrentItem, current);
        EXPECT_EQ(CountItems(), items);
        EXPECT_EQ(LiveBlockCount(), blocks);
        ASSERT_EQ(host.messageBoxes.size(), 1u);
        EXPECT_EQ(host.messageBoxes[0].text, boxText);
        EXPECT_TRUE(Contains(ReadLog(), "Error on loading " + path));
    }
};

TEST_F(TiffReadTest, ASixteenBitFileLoadedAndSavedAgainIsIdenticalByteForByte)
{
    ImageHeaderType* image = MakeImage(32, "Round trip");
    strncpy0(image->FileName, Path("rt.tif").c_str(), sizeof image->FileName);
    ASSERT_EQ(saveTiffImage(image, Path("rt.tif").c_str(), 0), 0);
    ASSERT_EQ(LoadImageFile(Path("rt.tif").c_str(), 0, 1, 1), 0);
    ImageHeaderType* loaded = CurrentItem;
    ASSERT_NE(loaded, image);
    EXPECT_EQ(std::memcmp(loaded->PixData, image->PixData, 32 * 32 * 2), 0);
    ASSERT_EQ(saveTiffImage(loaded, Path("rt2.tif").c_str(), 0), 0);
    const std::string a = ReadFileBytes(Path("rt.tif"));
    const std::string b = ReadFileBytes(Path("rt2.tif"));
    ASSERT_EQ(a.size(), 7124u + 2048);
    EXPECT_TRUE(a == b);
}

TEST_F(TiffReadTest, EightBitsLoseTheLowByteAndReloadAsMultiplesOf256)
{
    ImageHeaderType* image = MakeImage(16, "Eight bits");
    strncpy0(image->FileName, Path("e.tif").c_str(), sizeof image->FileName);
    ASSERT_EQ(saveTiffImage(image, Path("e.tif").c_str(), 1), 0);
    ASSERT_EQ(LoadImageFile(Path("e.tif").c_str(), 0, 1, 1), 0);
    ImageHeaderType* loaded = CurrentItem;
    for (int i = 0; i < 256; ++i) {
        ASSERT_EQ(loaded->PixData[i] % 256, 0) << i;
        ASSERT_EQ(loaded->PixData[i], image->PixData[i] & 0xFF00) << i;
    }
    ASSERT_EQ(saveTiffImage(loaded, Path("e2.tif").c_str(), 1), 0);
    EXPECT_TRUE(ReadFileBytes(Path("e.tif")) == ReadFileBytes(Path("e2.tif")));
}

TEST_F(TiffReadTest, TheFFTBlockComesBackWithTheImage)
{
    ImageHeaderType* image = MakeImage(16);
    MemHandleType fft;
    ASSERT_TRUE(AllocateMem(16 * 16, 8, &fft));
    for (int i = 0; i < 512; ++i) static_cast<float*>(fft.Ptr)[i] = -1.5f * static_cast<float>(i);
    SetFFTBlock(image, static_cast<float*>(fft.Ptr));
    ASSERT_EQ(saveTiffImage(image, Path("f.tif").c_str(), 0), 0);
    ASSERT_EQ(LoadImageFile(Path("f.tif").c_str(), 0, 1, 1), 0);
    ASSERT_NE(CurrentItem->FFTDataPtr, nullptr);
    EXPECT_NE(CurrentItem->FFTDataPtr, image->FFTDataPtr);
    EXPECT_EQ(CurrentItem->FFTData, 1);
    EXPECT_EQ(std::memcmp(CurrentItem->FFTDataPtr, fft.Ptr, 2048), 0);
    // An 8-bit file with its FFT block: the block sits between pixels and palette.
    ASSERT_EQ(saveTiffImage(image, Path("f8.tif").c_str(), 1), 0);
    ASSERT_EQ(LoadImageFile(Path("f8.tif").c_str(), 0, 1, 1), 0);
    ASSERT_NE(CurrentItem->FFTDataPtr, nullptr);
    EXPECT_EQ(std::memcmp(CurrentItem->FFTDataPtr, fft.Ptr, 2048), 0);
}

TEST_F(TiffReadTest, IfdReserveOf1025MakesANonTiffFileAndItsRevision18761IsAnInvalidHeader)
{
    std::string f = SavedFile("r.tif");
    PutAt<uint16_t>(f, 8, 1025);
    WriteFileBytes(Path("r1025.tif"), f);
    DebugMode = true;
    ExpectRefused(Path("r1025.tif"), "Invalid header");
    const std::string log = ReadLog();
    EXPECT_TRUE(Contains(log, "TIFILE=0 byte_order=18761 ver=42 offs=6100 size=1025 RevNo=18761"));
    EXPECT_TRUE(Contains(log, "TIFFfile=0 RevNo=18761"));
}

TEST_F(TiffReadTest, IfdReserveOf1024IsATiffFile)
{
    std::string f = SavedFile("r.tif");
    ASSERT_EQ(U16(f, 8), 1024);
    ASSERT_EQ(LoadImageFile(Path("r.tif").c_str(), 0, 1, 1), 0);
    EXPECT_NE(CurrentItem, nullptr);
}

TEST_F(TiffReadTest, PlainFilesOfRevisions101And102AreRefused)
{
    for (int rev : {101, 102}) {
        host.ClearCalls();
        ImageHeaderType record = PlainRecord(16, rev, 0, 0);
        const std::string path = Path("plain" + std::to_string(rev) + ".img");
        WriteFileBytes(path, PlainFile(record, 902, std::string(256, '\x40')));
        ExpectRefused(path, "Invalid header");
    }
}

TEST_F(TiffReadTest, PlainFilesOfRevisions100And0And103AreAccepted)
{
    for (int rev : {100, 0, 103}) {
        ImageHeaderType record = PlainRecord(16, rev, 0, 0);
        const std::string path = Path("plain" + std::to_string(rev) + ".img");
        std::string body;
        for (int i = 0; i < 256; ++i) body += static_cast<char>(i);
        WriteFileBytes(path, PlainFile(record, 902, body));
        ASSERT_EQ(LoadImageFile(path.c_str(), 0, 1, 1), 0) << rev;
        for (int i = 0; i < 256; ++i) ASSERT_EQ(CurrentItem->PixData[i], i * 256) << rev << " " << i;
        EXPECT_EQ(CurrentItem->RevNo, 700);
    }
    EXPECT_EQ(CountItems(), 3);
}

TEST_F(TiffReadTest, PlainRevisionTestAcceptsExactly0And100And103To700)
{
    EXPECT_TRUE(IsAcceptedPlainRevision(0));
    EXPECT_TRUE(IsAcceptedPlainRevision(100));
    EXPECT_FALSE(IsAcceptedPlainRevision(101));
    EXPECT_FALSE(IsAcceptedPlainRevision(102));
    EXPECT_TRUE(IsAcceptedPlainRevision(103));
    EXPECT_TRUE(IsAcceptedPlainRevision(700));
    EXPECT_FALSE(IsAcceptedPlainRevision(701));
    EXPECT_FALSE(IsAcceptedPlainRevision(99));
    EXPECT_FALSE(IsAcceptedPlainRevision(-1));
}

TEST_F(TiffReadTest, ShortHeadersAreAcceptedUpTo303From902BytesAndUpTo404From1872Bytes)
{
    struct Case {
        int rev;
        size_t fileBytes;
        bool accepted;
    };
    const Case cases[] = {
        {303, 902, true}, {303, 901, false}, {304, 1871, false}, {404, 1872, true},
        {404, 1871, false}, {405, 6089, false}, {405, 6090, true},
    };
    for (const Case& c : cases) {
        ImageHeaderType record = PlainRecord(16, c.rev, 0, 16);
        std::string bytes(reinterpret_cast<const char*>(&record), TAVRIN_HEADER_STORED_BYTES);
        bytes.resize(c.fileBytes);
        WriteFileBytes(Path("h.img"), bytes);
        const FileHandle file = FileOpen(Path("h.img"), FileMode::Read);
        ASSERT_NE(file, kInvalidFile);
        ImageHeaderType* scratch = AllocateHeader();
        host.ClearCalls();
        EXPECT_EQ(loadImageHeader(file, scratch), c.accepted ? 1 : 0) << c.rev << " " << c.fileBytes;
        if (!c.accepted) {
            ASSERT_EQ(host.messageBoxes.size(), 1u);
            EXPECT_EQ(host.messageBoxes[0].text, "Data file too short");
        }
        FileClose(file);
        FreeHeader(scratch);
    }
}

TEST_F(TiffReadTest, PlainFilesArePositionedByRevisionAndTheUnstoredBytesCleared)
{
    const struct {
        int rev;
        long long at;
    } cases[] = {{303, 902}, {304, 1872}, {404, 1872}, {405, 6090}, {700, 6090}};
    for (const auto& c : cases) {
        ImageHeaderType record = PlainRecord(16, c.rev, 0, 16);
        WriteFileBytes(Path("p.img"), PlainFile(record, static_cast<size_t>(c.at), std::string(8000, '\xAB')));
        const FileHandle file = FileOpen(Path("p.img"), FileMode::Read);
        ImageHeaderType* scratch = AllocateHeader();
        ASSERT_EQ(loadImageHeader(file, scratch), 1) << c.rev;
        EXPECT_EQ(FileSeek(file, 0, FileOrigin::Current), c.at) << c.rev;
        const auto* bytes = reinterpret_cast<const uint8_t*>(scratch);
        for (long long i = c.at; i < TAVRIN_HEADER_STORED_BYTES; ++i) ASSERT_EQ(bytes[i], 0) << c.rev << " " << i;
        EXPECT_EQ(std::memcmp(scratch, &record, static_cast<size_t>(c.at)), 0) << c.rev;
        FileClose(file);
        FreeHeader(scratch);
    }
}

TEST_F(TiffReadTest, ATiffFileIsPositionedAtItsDirectoryOffsetPlusIfdReserve)
{
    std::string f = SavedFile("pos.tif");
    PutAt<uint16_t>(f, 8, 1000);
    WriteFileBytes(Path("pos2.tif"), f);
    const FileHandle file = FileOpen(Path("pos2.tif"), FileMode::Read);
    ImageHeaderType* scratch = AllocateHeader();
    ASSERT_EQ(loadImageHeader(file, scratch), 1);
    EXPECT_EQ(FileSeek(file, 0, FileOrigin::Current), 7100);
    EXPECT_EQ(scratch->nx, 16);
    FileClose(file);
    FreeHeader(scratch);
}

TEST_F(TiffReadTest, AnImageThatIsNotSquareOrNotAPowerOfTwoFrom16To4096IsAnInvalidHeader)
{
    const std::string f = SavedFile("sq.tif");
    const struct {
        int nx, ny;
    } sizes[] = {{16, 8}, {256, 128}, {24, 24}, {8, 8}, {8192, 8192}, {0, 0}, {-16, -16}};
    for (const auto& s : sizes) {
        host.ClearCalls();
        std::string bad = f;
        PutAt<int16_t>(bad, 10 + 82, static_cast<int16_t>(s.nx));
        PutAt<int16_t>(bad, 10 + 84, static_cast<int16_t>(s.ny));
        WriteFileBytes(Path("bad.tif"), bad);
        ExpectRefused(Path("bad.tif"), "Invalid header");
    }
}

TEST_F(TiffReadTest, A4096SquareHeaderIsAccepted)
{
    std::string f = SavedFile("big.tif");
    PutAt<int16_t>(f, 10 + 82, 4096);
    PutAt<int16_t>(f, 10 + 84, 4096);
    WriteFileBytes(Path("big2.tif"), f);
    const FileHandle file = FileOpen(Path("big2.tif"), FileMode::Read);
    ImageHeaderType* scratch = AllocateHeader();
    EXPECT_EQ(loadImageHeader(file, scratch), 1);
    FileClose(file);
    FreeHeader(scratch);
}

TEST_F(TiffReadTest, AfterALoadFileNameIsThePathAsItWasPassed)
{
    SavedFile("name.tif");
    const std::string path = data + "./sub/../name.tif";
    std::filesystem::create_directories(data + "sub");
    ASSERT_EQ(LoadImageFile(path.c_str(), 0, 1, 1), 0);
    EXPECT_STREQ(CurrentItem->FileName, path.c_str());
}

TEST_F(TiffReadTest, TheNewItemGoesBehindTheCurrentOneAndBecomesCurrent)
{
    SavedFile("item.tif");
    ImageHeaderType* a = MakeImage(16, "A");
    ImageHeaderType* b = MakeImage(16, "B");
    CurrentItem = a;
    ASSERT_EQ(LoadImageFile(Path("item.tif").c_str(), 0, 1, 1), 0);
    ImageHeaderType* loaded = CurrentItem;
    EXPECT_EQ(a->Next, loaded);
    EXPECT_EQ(loaded->Prev, a);
    EXPECT_EQ(loaded->Next, b);
    EXPECT_EQ(b->Prev, loaded);
    EXPECT_EQ(CountItems(), 3);
    EXPECT_TRUE(Contains(ReadLog(), "Load " + Path("item.tif")));
}

TEST_F(TiffReadTest, WithoutTheReportFlagASuccessfulLoadLogsNothing)
{
    SavedFile("quiet.tif");
    ASSERT_EQ(LoadImageFile(Path("quiet.tif").c_str(), 0, 0, 1), 0);
    EXPECT_FALSE(Contains(ReadLog(), "Load " + Path("quiet.tif")));
}

TEST_F(TiffReadTest, AFileSavedWithAnOpenThreeDViewLoadsWithTheViewFlagCleared)
{
    ImageHeaderType* image = MakeImage(16);
    SetView3DOpen(image, 1);
    ASSERT_EQ(saveTiffImage(image, Path("v3.tif").c_str(), 0), 0);
    const std::string f = ReadFileBytes(Path("v3.tif"));
    ASSERT_EQ(U16(f, 10 + 2280 + 172), 1);
    host.ClearCalls();
    ASSERT_EQ(LoadImageFile(Path("v3.tif").c_str(), 0, 1, 0), 0);
    EXPECT_EQ(View3DOpen(CurrentItem), 0);
    EXPECT_EQ(CurrentItem->DisplayMode, 4u);
    EXPECT_FALSE(Contains(ReadLog(), "loadmiage"));
}

TEST_F(TiffReadTest, AnotherDisplayModeIsReportedUnlessQuiet)
{
    std::string f = SavedFile("dm.tif");
    PutAt<uint32_t>(f, 10 + 2006, 3);
    WriteFileBytes(Path("dm3.tif"), f);
    ASSERT_EQ(LoadImageFile(Path("dm3.tif").c_str(), 0, 1, 1), 0);
    EXPECT_FALSE(Contains(ReadLog(), "loadmiage"));
    ASSERT_EQ(LoadImageFile(Path("dm3.tif").c_str(), 0, 1, 0), 0);
    EXPECT_TRUE(Contains(ReadLog(), "ERROR : Program error - loadmiage DisplayMode=3"));
    EXPECT_EQ(CountItems(), 2);
}

TEST_F(TiffReadTest, HeaderOnlyLoadsThePixelsAndClearsTheBlockFlags)
{
    ImageHeaderType* image = MakeImage(16);
    MemHandleType fft;
    ASSERT_TRUE(AllocateMem(16 * 16, 8, &fft));
    std::memset(fft.Ptr, 0, 2048);
    SetFFTBlock(image, static_cast<float*>(fft.Ptr));
    ASSERT_EQ(saveTiffImage(image, Path("ho.tif").c_str(), 0), 0);
    std::string f = ReadFileBytes(Path("ho.tif"));
    PutAt<uint32_t>(f, 10 + 844, 1);     // OldBlockFlag
    PutAt<int16_t>(f, 10 + 2764, 2);     // nSPSRefData
    WriteFileBytes(Path("ho2.tif"), f);
    ASSERT_EQ(LoadImageFile(Path("ho2.tif").c_str(), 1, 1, 1), 0);
    ImageHeaderType* loaded = CurrentItem;
    EXPECT_EQ(loaded->FFTData, 0);
    EXPECT_EQ(loaded->FFTDataPtr, nullptr);
    EXPECT_EQ(loaded->CITSHeader, 0u);
    EXPECT_EQ(loaded->OldBlockFlag, 0u);
    EXPECT_EQ(loaded->LMCThresholdHitDataPtr, 0u);
    EXPECT_EQ(loaded->nSPSRefData, 0);
    EXPECT_EQ(std::memcmp(loaded->PixData, image->PixData, 512), 0);
}

TEST_F(TiffReadTest, HeaderOnlyForFindFileKeepsTheSpectrumCount)
{
    std::string f = SavedFile("ff.tif");
    PutAt<int16_t>(f, 10 + 2764, 2);
    WriteFileBytes(Path("ff2.tif"), f);
    FindFileLoad = true;
    ASSERT_EQ(LoadImageFile(Path("ff2.tif").c_str(), 1, 1, 1), 0);
    EXPECT_EQ(CurrentItem->nSPSRefData, 2);
}

TEST_F(TiffReadTest, BilevelPixelsAreOneBitEachLeastSignificantFirst)
{
    ImageHeaderType record = PlainRecord(16, 700, 16, 16);
    std::string body;
    for (int i = 0; i < 32; ++i) body += static_cast<char>(i * 37 + 5);
    WriteFileBytes(Path("bi.img"), PlainFile(record, TAVRIN_HEADER_STORED_BYTES, body));
    ASSERT_EQ(LoadImageFile(Path("bi.img").c_str(), 0, 1, 1), 0);
    for (int i = 0; i < 256; ++i) {
        const bool set = (static_cast<uint8_t>(body[i / 8]) >> (i % 8)) & 1;
        ASSERT_EQ(CurrentItem->PixData[i], set ? 65535 : 0) << i;
    }
    EXPECT_EQ(CurrentItem->PixData[0], 65535);   // 5 = 0b101: pixel 0 set, pixel 1 clear
    EXPECT_EQ(CurrentItem->PixData[1], 0);
}

TEST_F(TiffReadTest, PlainBitsBelow16ReadThatManyBytesAndBitsAbove16AreAnInvalidHeader)
{
    ImageHeaderType record = PlainRecord(16, 700, 0, 12);
    std::string body(384, '\x21');
    WriteFileBytes(Path("b12.img"), PlainFile(record, TAVRIN_HEADER_STORED_BYTES, body));
    ASSERT_EQ(LoadImageFile(Path("b12.img").c_str(), 0, 1, 1), 0);
    EXPECT_EQ(CurrentItem->PixData[0], 0x2121);
    EXPECT_EQ(CurrentItem->PixData[191], 0x2121);
    EXPECT_EQ(CurrentItem->PixData[192], 0);
    EXPECT_EQ(CurrentItem->PixData[255], 0);
    host.ClearCalls();
    ImageHeaderType wide = PlainRecord(16, 700, 0, 17);
    WriteFileBytes(Path("b17.img"), PlainFile(wide, TAVRIN_HEADER_STORED_BYTES, std::string(1024, '\x21')));
    ExpectRefused(Path("b17.img"), "Invalid header");
}

TEST_F(TiffReadTest, AMissingFileIsUnableToOpenFile)
{
    ExpectRefused(Path("nothing.tif"), "Unable to open file");
}

TEST_F(TiffReadTest, AFileShorterThanTenBytesIsDataFileTooShort)
{
    WriteFileBytes(Path("five.tif"), std::string("II*\0\0", 5));
    DebugMode = true;
    ExpectRefused(Path("five.tif"), "Data file too short");
    EXPECT_TRUE(Contains(ReadLog(), "loadImageHeader 5 10"));
}

TEST_F(TiffReadTest, AFailedHeaderReadIsAnErrorOnReading)
{
    SavedFile("rf.tif");
    SetFileReadFailureForTests(true);
    ExpectRefused(Path("rf.tif"), "Error occurred while reading from input device");
}

TEST_F(TiffReadTest, TruncatedPixelsAreDataFileTooShortAndNothingStays)
{
    std::string f = SavedFile("tp.tif");
    f.resize(7124 + 511);
    WriteFileBytes(Path("tp2.tif"), f);
    ImageHeaderType* other = MakeImage(16);
    ASSERT_NE(other, nullptr);
    DebugMode = true;
    ExpectRefused(Path("tp2.tif"), "Data file too short");
    EXPECT_TRUE(Contains(ReadLog(), "loadImageVer104Later 511 512"));
}

TEST_F(TiffReadTest, AFailedPixelReadIsAnErrorOnReading)
{
    SavedFile("pr.tif");
    const FileHandle file = FileOpen(Path("pr.tif"), FileMode::Read);
    ImageHeaderType* scratch = AllocateHeader();
    ASSERT_EQ(loadImageHeader(file, scratch), 1);
    MemHandleType pair;
    ASSERT_TRUE(AllocateMem(256, 2, &pair));
    scratch->PixHandle = pair.Handle;
    scratch->PixData = static_cast<uint16_t*>(pair.Ptr);
    SetFileReadFailureForTests(true);
    EXPECT_EQ(loadImageVer104Later(file, scratch), 0);
    SetFileReadFailureForTests(false);
    ASSERT_EQ(host.messageBoxes.size(), 1u);
    EXPECT_EQ(host.messageBoxes[0].text, "Error occurred while reading from input device");
    FileClose(file);
    FreeMem(pair.Handle, pair.Ptr);
    FreeHeader(scratch);
}

TEST_F(TiffReadTest, AFailedScratchRecordIsNotEnoughMemory)
{
    SavedFile("m1.tif");
    FailAllocationsForTests(1);
    ExpectRefused(Path("m1.tif"), "Not enough memory");
}

TEST_F(TiffReadTest, AFailedPixelBlockIsNotEnoughMemoryForImage)
{
    SavedFile("m2.tif");
    FailAllocationsForTests(1, 1);
    ExpectRefused(Path("m2.tif"), "Not enough memory for image");
}

TEST_F(TiffReadTest, AFailedListItemIsNotEnoughMemory)
{
    SavedFile("m3.tif");
    FailAllocationsForTests(1, 2);
    ExpectRefused(Path("m3.tif"), "Not enough memory");
}

namespace {

// Closes every descriptor of this process that is open on the file named by `context`, the
// first time the log gets a line: the loader's own close then fails.
void CloseFileBehindTheLoader(const char*, void* context)
{
    auto* target = static_cast<std::string*>(context);
    if (target->empty()) return;
    DIR* dir = opendir("/proc/self/fd");
    if (!dir) return;
    while (dirent* e = readdir(dir)) {
        const int fd = std::atoi(e->d_name);
        if (fd <= 2 || fd == dirfd(dir)) continue;
        char link[512];
        const std::string name = std::string("/proc/self/fd/") + e->d_name;
        const ssize_t n = readlink(name.c_str(), link, sizeof link - 1);
        if (n <= 0) continue;
        link[n] = '\0';
        if (*target == link) close(fd);
    }
    closedir(dir);
    target->clear();
}

} // namespace

TEST_F(TiffReadTest, AFailedCloseIsErrorOnClosingAndTheListStaysAsItWas)
{
    // Revision 650 is reported by the upgrade while the file is still open; that log line
    // takes the file away from the loader.
    std::string f = SavedFile("close.tif");
    PutAt<int16_t>(f, 10, 650);
    WriteFileBytes(Path("close650.tif"), f);
    std::string target = std::filesystem::canonical(Path("close650.tif")).string();
    SetLogObserver(CloseFileBehindTheLoader, &target);
    const size_t blocks = LiveBlockCount();
    EXPECT_EQ(LoadImageFile(Path("close650.tif").c_str(), 0, 1, 1), 1);
    SetLogObserver(nullptr, nullptr);
    EXPECT_TRUE(target.empty());
    EXPECT_EQ(FirstItem, nullptr);
    EXPECT_EQ(LiveBlockCount(), blocks);
    ASSERT_EQ(host.messageBoxes.size(), 1u);
    EXPECT_EQ(host.messageBoxes[0].text, "Error occurred on closing file");
}

TEST_F(TiffReadTest, AFailedFFTBlockClearsItsFlagsAndTheReaderAnswersZero)
{
    std::string f = SavedFile("fb.tif");
    PutAt<int32_t>(f, 10 + 686, 1);          // FFTData
    PutAt<uint32_t>(f, 10 + 702, 1);         // CITSHeader
    PutAt<uint32_t>(f, 10 + 2766, 1);        // SPSRefData
    PutAt<uint32_t>(f, 10 + 3392, 1);        // LMCThresholdHitDataPtr
    f += std::string(100, '\0');             // far less than the 2048 bytes of the block
    WriteFileBytes(Path("fb2.tif"), f);
    const FileHandle file = FileOpen(Path("fb2.tif"), FileMode::Read);
    ImageHeaderType* scratch = AllocateHeader();
    ASSERT_EQ(loadImageHeader(file, scratch), 1);
    MemHandleType pair;
    ASSERT_TRUE(AllocateMem(256, 2, &pair));
    scratch->PixHandle = pair.Handle;
    scratch->PixData = static_cast<uint16_t*>(pair.Ptr);
    const size_t blocks = LiveBlockCount();
    EXPECT_EQ(loadImageVer104Later(file, scratch), 0);
    EXPECT_EQ(scratch->FFTData, 0);
    EXPECT_EQ(scratch->FFTDataPtr, nullptr);
    EXPECT_EQ(scratch->CITSHeader, 0u);
    EXPECT_EQ(scratch->SPSRefData, 0u);
    EXPECT_EQ(scratch->LMCThresholdHitDataPtr, 0u);
    EXPECT_EQ(LiveBlockCount(), blocks);
    EXPECT_EQ(std::memcmp(scratch->PixData, f.data() + 7124, 512), 0);
    ASSERT_EQ(host.messageBoxes.size(), 1u);
    EXPECT_EQ(host.messageBoxes[0].text, "Data file too short");
    FileClose(file);
    FreeMem(pair.Handle, pair.Ptr);
    FreeHeader(scratch);
}

TEST_F(TiffReadTest, ALoadWhoseFFTBlockFailsReportsFailureAndLeavesTheListAsItWas)
{
    std::string f = SavedFile("fl.tif");
    PutAt<int32_t>(f, 10 + 686, 1);
    f += std::string(100, '\0');
    WriteFileBytes(Path("fl2.tif"), f);
    ExpectRefused(Path("fl2.tif"), "Data file too short");
}

TEST_F(TiffReadTest, AMappingFlagWithoutItsBlockCostsOnlyTheSet)
{
    std::string f = SavedFile("map.tif");
    PutAt<uint32_t>(f, 10 + 702, 1);
    WriteFileBytes(Path("map2.tif"), f);
    EXPECT_EQ(LoadImageFile(Path("map2.tif").c_str(), 0, 1, 1), 0);
    ASSERT_NE(CurrentItem, nullptr);
    EXPECT_EQ(CurrentItem->CITSHeader, 0u);
    EXPECT_EQ(CurrentItem->CITSHeaderPtr, nullptr);
    ASSERT_EQ(host.messageBoxes.size(), 1u);
    EXPECT_EQ(host.messageBoxes[0].text, "Data file too short");
}

TEST_F(TiffReadTest, HitDataWithoutTheirMappingAreRefusedAndTheImageLoads)
{
    std::string f = SavedFile("hit.tif");
    PutAt<uint32_t>(f, 10 + 3392, 1);
    WriteFileBytes(Path("hit2.tif"), f);
    EXPECT_EQ(LoadImageFile(Path("hit2.tif").c_str(), 0, 1, 1), 0);
    ASSERT_NE(CurrentItem, nullptr);
    EXPECT_EQ(CurrentItem->LMCThresholdHitDataPtr, 0u);
    EXPECT_EQ(CurrentItem->LMCHitDataPtr, nullptr);
    EXPECT_TRUE(Contains(ReadLog(), "ERROR : Program error - AllocateHeaderMemory_LMCThresholdHitDataPtr 0 0"));
}

TEST_F(TiffReadTest, StoredBlockFlagsOfAnOldReaderWithoutTheirBlocksAreCleared)
{
    // An 8-bit file takes the reader of the oldest layouts, behind whose pixels only an FFT
    // block is read: a stale spectrum chain flag does not survive into the item.
    std::string f = SavedFile("old8.tif", 1);
    PutAt<uint32_t>(f, 10 + 2766, 1);
    WriteFileBytes(Path("old8b.tif"), f);
    ASSERT_EQ(LoadImageFile(Path("old8b.tif").c_str(), 0, 1, 1), 0);
    EXPECT_EQ(CurrentItem->SPSRefData, 0u);
    EXPECT_EQ(CurrentItem->SPSRefDataPtr, nullptr);
}

TEST_F(TiffReadTest, ARecordThatIsNotOfTheImageClassIsAnInvalidHeader)
{
    // Pixels under a spectrum class (2) or under no class (6, 0) would be taken for samples.
    const std::string f = SavedFile("cls.tif");
    for (uint32_t type : {2u, 6u, 0u}) {
        host.ClearCalls();
        std::string bad = f;
        PutAt<uint32_t>(bad, 10 + 1998, type);
        WriteFileBytes(Path("cls2.tif"), bad);
        ExpectRefused(Path("cls2.tif"), "Invalid header");
    }
}

TEST_F(TiffReadTest, UnlessQuietTheNewItemIsShownThroughTheOneDisplayCall)
{
    SavedFile("show.tif");
    const int before = DisplayRequests().shown;
    ASSERT_EQ(LoadImageFile(Path("show.tif").c_str(), 0, 1, 1), 0);
    EXPECT_EQ(DisplayRequests().shown, before);
    ASSERT_EQ(LoadImageFile(Path("show.tif").c_str(), 0, 1, 0), 0);
    EXPECT_EQ(DisplayRequests().shown, before + 1);
    EXPECT_EQ(DisplayRequests().lastShown, CurrentItem);
}

TEST_F(TiffReadTest, AnItemOfAnotherDisplayModeIsNotShown)
{
    std::string f = SavedFile("dm5.tif");
    PutAt<uint32_t>(f, 10 + 2006, 5);
    WriteFileBytes(Path("dm5b.tif"), f);
    const int before = DisplayRequests().shown;
    ASSERT_EQ(LoadImageFile(Path("dm5b.tif").c_str(), 0, 1, 0), 0);
    EXPECT_EQ(DisplayRequests().shown, before);
    EXPECT_TRUE(Contains(ReadLog(), "loadmiage DisplayMode=5"));
}

TEST_F(TiffReadTest, AFailedFFTBlockAllocationIsNotEnoughMemoryForImageAndNothingStays)
{
    ImageHeaderType* image = MakeImage(16);
    MemHandleType fft;
    ASSERT_TRUE(AllocateMem(16 * 16, 8, &fft));
    std::memset(fft.Ptr, 0, 2048);
    SetFFTBlock(image, static_cast<float*>(fft.Ptr));
    ASSERT_EQ(saveTiffImage(image, Path("fa.tif").c_str(), 0), 0);
    host.ClearCalls();
    // Scratch record and pixel block succeed; the FFT block fails.
    FailAllocationsForTests(1, 2);
    ExpectRefused(Path("fa.tif"), "Not enough memory for image");
}
