// Spectra behind the pixels of an image file: the chain written and read back, the spectra
// that refer to the image, the declined questions, short files and the space check, and the
// clean-up of every failure.
#include "test_spectrum_support.h"
#include "test_tiff_support.h"
#include "files/attached_spectra.h"
#include "files/spectrum_files.h"
#include "files/tiff_read.h"
#include "files/tiff_write.h"
#include "platform/files.h"

using namespace spectest;
using tifftest::MakeImage;
using tifftest::U16;

class AttachedSpectraTest : public LibraryTest {
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        ASSERT_EQ(host.Start(), 0);
        host.ClearCalls();
    }

    static bool Contains(const std::string& text, const std::string& part)
    {
        return text.find(part) != std::string::npos;
    }

    // An image with a chain of bare spectra of the given sizes (seeds 10, 11, ...).
    static ImageHeaderType* ImageWithChain(const std::vector<int>& sizes)
    {
        ImageHeaderType* image = MakeImage(16);
        ImageHeaderType* last = nullptr;
        int seed = 10;
        for (int n : sizes) {
            ImageHeaderType* s = MakeBareSpectrum(n, seed++);
            if (last) {
                SetSPSRefChain(last, s);
            } else {
                SetSPSRefChain(image, s);
            }
            last = s;
        }
        image->nSPSRefData = static_cast<int16_t>(sizes.size());
        return image;
    }

    static std::vector<ImageHeaderType*> Chain(const ImageHeaderType* image)
    {
        std::vector<ImageHeaderType*> chain;
        for (ImageHeaderType* s = image->SPSRefDataPtr; s; s = s->SPSRefDataPtr) chain.push_back(s);
        return chain;
    }

    static size_t SpectrumBytes(int n) { return 6090 + static_cast<size_t>(n) * 8; }

    // Saves the image and erases it, so that only the file remains.
    std::string SaveAndErase(ImageHeaderType* image, const std::string& name)
    {
        EXPECT_EQ(saveTiffImage(image, Path(name).c_str(), 0), 0);
        EraseAllItems();
        host.ClearCalls();
        host.messageBoxes.clear();
        return ReadFileBytes(Path(name));
    }
};

TEST_F(AttachedSpectraTest, AnImageSavedWithAttachedSpectraReloadsWithTheSameSpectra)
{
    ImageHeaderType* image = ImageWithChain({3, 5, 7});
    std::vector<std::string> records;
    std::vector<std::string> samples;
    for (ImageHeaderType* s : Chain(image)) {
        records.push_back(Stored(s));
        samples.push_back(std::string(reinterpret_cast<const char*>(s->PixData), static_cast<size_t>(s->nx) * 8));
    }
    host.messageBoxAnswers.push_back(TV_IDYES);
    ASSERT_EQ(saveTiffImage(image, Path("with.tif").c_str(), 0), 0);
    ASSERT_EQ(host.messageBoxes.size(), 1u);
    EXPECT_EQ(host.messageBoxes[0].text, "Save 3 spectra attached to this image?");
    const std::string file = ReadFileBytes(Path("with.tif"));
    EXPECT_EQ(file.size(), 7124u + 512 + SpectrumBytes(3) + SpectrumBytes(5) + SpectrumBytes(7));
    EXPECT_EQ(U16(file, 2774), 3);
    EXPECT_EQ(file.substr(7124 + 512, 6090), records[0]);
    EraseAllItems();
    host.messageBoxes.clear();

    ASSERT_EQ(LoadImageFile(Path("with.tif").c_str(), 0, 1, 1), 0);
    ImageHeaderType* loaded = CurrentItem;
    EXPECT_EQ(loaded->nSPSRefData, 3);
    EXPECT_EQ(loaded->SPSRefData, 1u);
    const std::vector<ImageHeaderType*> chain = Chain(loaded);
    ASSERT_EQ(chain.size(), 3u);
    for (size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(Stored(chain[i]), records[i]) << i;
        EXPECT_EQ(std::string(reinterpret_cast<const char*>(chain[i]->PixData), static_cast<size_t>(chain[i]->nx) * 8),
                  samples[i])
            << i;
        EXPECT_EQ(chain[i]->SPSOwnerId, -1);
    }
    EXPECT_EQ(chain[0]->nx, 3);
    EXPECT_EQ(chain[2]->nx, 7);
    EXPECT_EQ(chain[2]->SPSRefData, 0u);
    EXPECT_TRUE(host.messageBoxes.empty());
}

TEST_F(AttachedSpectraTest, OwnedSpectraGoFirstAndTheFileCountsAllThatWereWritten)
{
    ImageHeaderType* image = ImageWithChain({4});
    ImageHeaderType* a = MakeSpectrumItem(6, 20);
    ImageHeaderType* b = MakeSpectrumItem(8, 21);
    a->SPSOwnerId = static_cast<int32_t>(image->DataId);
    b->SPSOwnerId = static_cast<int32_t>(image->DataId);
    EXPECT_EQ(CountOwnedSpectra(static_cast<int32_t>(image->DataId)), 2);
    const std::string storedA = Stored(a);
    host.messageBoxAnswers = {TV_IDYES, TV_IDYES};
    ASSERT_EQ(saveTiffImage(image, Path("own.tif").c_str(), 0), 0);
    ASSERT_EQ(host.messageBoxes.size(), 2u);
    EXPECT_EQ(host.messageBoxes[0].text, "Save 2 spectra referencing this image?");
    EXPECT_EQ(host.messageBoxes[1].text, "Save 1 spectra attached to this image?");
    EXPECT_EQ(image->nSPSRefData, 1);
    const std::string file = ReadFileBytes(Path("own.tif"));
    EXPECT_EQ(U16(file, 2774), 3);
    EXPECT_EQ(file.size(), 7124u + 512 + SpectrumBytes(6) + SpectrumBytes(8) + SpectrumBytes(4));
    EXPECT_EQ(file.substr(7124 + 512, 6090), storedA);
    EraseAllItems();

    ASSERT_EQ(LoadImageFile(Path("own.tif").c_str(), 0, 1, 1), 0);
    const std::vector<ImageHeaderType*> chain = Chain(CurrentItem);
    ASSERT_EQ(chain.size(), 3u);
    EXPECT_EQ(CurrentItem->nSPSRefData, 3);
    EXPECT_EQ(chain[0]->nx, 6);
    EXPECT_EQ(chain[1]->nx, 8);
    EXPECT_EQ(chain[2]->nx, 4);
    EXPECT_EQ(SpecY(chain[1])[0], TestY(0, 21));
    EXPECT_EQ(SpecY(chain[2])[3], TestY(3, 10));
}

TEST_F(AttachedSpectraTest, AnImageWhoseSpectraWereDeclinedHasCountZeroInTheFileThoughTheRecordKeepsItsCount)
{
    ImageHeaderType* image = ImageWithChain({3, 9});
    host.messageBoxAnswers.push_back(TV_IDNO);
    ASSERT_EQ(saveTiffImage(image, Path("declined.tif").c_str(), 0), 0);
    ASSERT_EQ(host.messageBoxes.size(), 1u);
    EXPECT_EQ(host.messageBoxes[0].text, "Save 2 spectra attached to this image?");
    const std::string file = ReadFileBytes(Path("declined.tif"));
    EXPECT_EQ(U16(file, 2774), 0);
    EXPECT_EQ(file.size(), 7124u + 512);
    EXPECT_EQ(image->nSPSRefData, 2);
    EXPECT_EQ(Chain(image).size(), 2u);
    EraseAllItems();
    ASSERT_EQ(LoadImageFile(Path("declined.tif").c_str(), 0, 1, 1), 0);
    EXPECT_EQ(CurrentItem->nSPSRefData, 0);
    EXPECT_EQ(CurrentItem->SPSRefDataPtr, nullptr);
}

TEST_F(AttachedSpectraTest, DecliningTheOwnedSpectraKeepsTheChainAndItsCount)
{
    ImageHeaderType* image = ImageWithChain({5});
    ImageHeaderType* owned = MakeSpectrumItem(6, 3);
    owned->SPSOwnerId = static_cast<int32_t>(image->DataId);
    host.messageBoxAnswers = {TV_IDNO, TV_IDYES};
    ASSERT_EQ(saveTiffImage(image, Path("chain.tif").c_str(), 0), 0);
    const std::string file = ReadFileBytes(Path("chain.tif"));
    EXPECT_EQ(U16(file, 2774), 1);
    EXPECT_EQ(file.size(), 7124u + 512 + SpectrumBytes(5));
}

TEST_F(AttachedSpectraTest, AFileCutAfterTheSecondOfThreeSpectraLoadsWithTwoAndNoError)
{
    std::string file = SaveAndErase(ImageWithChain({3, 4, 5}), "three.tif");
    file.resize(7124 + 512 + SpectrumBytes(3) + SpectrumBytes(4));
    WriteFileBytes(Path("cut.tif"), file);
    ASSERT_EQ(LoadImageFile(Path("cut.tif").c_str(), 0, 1, 1), 0);
    EXPECT_EQ(CurrentItem->nSPSRefData, 2);
    const std::vector<ImageHeaderType*> chain = Chain(CurrentItem);
    ASSERT_EQ(chain.size(), 2u);
    EXPECT_EQ(chain[1]->nx, 4);
    EXPECT_EQ(chain[1]->SPSRefData, 0u);
    EXPECT_EQ(chain[1]->nSPSRefData, 0);
    EXPECT_TRUE(host.messageBoxes.empty());
}

TEST_F(AttachedSpectraTest, AFileCutInsideTheSamplesOfTheThirdSpectrumKeepsTwoAndShowsTheShortRead)
{
    std::string file = SaveAndErase(ImageWithChain({3, 4, 5}), "three.tif");
    file.resize(file.size() - 1);
    WriteFileBytes(Path("cut.tif"), file);
    const size_t blocks = LiveBlockCount();
    ASSERT_EQ(LoadImageFile(Path("cut.tif").c_str(), 0, 1, 1), 0);
    EXPECT_EQ(CurrentItem->nSPSRefData, 2);
    EXPECT_EQ(Chain(CurrentItem).size(), 2u);
    ASSERT_EQ(host.messageBoxes.size(), 1u);
    EXPECT_EQ(host.messageBoxes[0].text, "Data file too short");
    // Item record, pixels, and two spectra of a record and samples each.
    EXPECT_EQ(LiveBlockCount(), blocks + 2 + 4);
}

TEST_F(AttachedSpectraTest, AClaimedCountWithNoSpectraBehindLoadsWithCountZero)
{
    std::string file = SaveAndErase(MakeImage(16), "plain.tif");
    const int16_t two = 2;
    std::memcpy(file.data() + 2774, &two, sizeof two);
    WriteFileBytes(Path("claims.tif"), file);
    ASSERT_EQ(LoadImageFile(Path("claims.tif").c_str(), 0, 1, 1), 0);
    EXPECT_EQ(CurrentItem->nSPSRefData, 0);
    EXPECT_EQ(CurrentItem->SPSRefData, 0u);
    EXPECT_EQ(CurrentItem->SPSRefDataPtr, nullptr);
    EXPECT_TRUE(host.messageBoxes.empty());
}

TEST_F(AttachedSpectraTest, TheSpaceCheckAsksForOneMoreRecordBySizeOfTheImageRevision)
{
    // A 3-point spectrum of revision 303 stores 902 + 24 bytes; the rest of the file is padding.
    ImageHeaderType spectrum = SpectrumRecord(3);
    spectrum.RevNo = 303;
    spectrum.OldImageType = 6;   // a spectrum in the types of that revision
    const std::string unit = SpcBytes(spectrum, 902, Samples(3));
    struct Case {
        int revNo;
        size_t space;
    };
    for (const Case c : {Case{303, 5188}, Case{404, 4218}, Case{700, 6090}}) {
        for (size_t bytes : {c.space - 1, c.space}) {
            std::string content = unit + std::string(bytes - unit.size(), '\0');
            WriteFileBytes(Path("chain.bin"), content);
            ImageHeaderType image;
            std::memset(&image, 0, sizeof image);
            InitImageHeader(&image, 16, 16);
            image.RevNo = static_cast<int16_t>(c.revNo);
            image.nSPSRefData = 1;
            const FileHandle file = FileOpen(Path("chain.bin"), FileMode::Read);
            ASSERT_NE(file, kInvalidFile);
            const int read = ReadSPSRefData(file, &image);
            FileClose(file);
            EXPECT_EQ(read, bytes == c.space ? 1 : 0) << c.revNo << " " << bytes;
            EXPECT_EQ(image.nSPSRefData, read);
            EXPECT_EQ(image.SPSRefData != 0, read == 1);
            FreeSPSRefChain(&image);
        }
    }
    for (const auto& box : host.messageBoxes) ADD_FAILURE() << box.text;
}

TEST_F(AttachedSpectraTest, ASpectrumThatFailsToWriteIsSkippedAndNotCounted)
{
    ImageHeaderType* image = ImageWithChain({3, 4, 5});
    ImageHeaderType* middle = Chain(image)[1];
    uint16_t* samples = middle->PixData;
    middle->PixData = nullptr;
    ASSERT_EQ(saveTiffImage(image, Path("skip.tif").c_str(), 0), 0);
    middle->PixData = samples;
    EXPECT_TRUE(Contains(ReadLog(), "ERROR : Program error - WriteSpec"));
    const std::string file = ReadFileBytes(Path("skip.tif"));
    EXPECT_EQ(U16(file, 2774), 2);
    EXPECT_EQ(image->nSPSRefData, 3);
    EXPECT_EQ(file.size(), 7124u + 512 + SpectrumBytes(3) + SpectrumBytes(5));
    EraseAllItems();
    ASSERT_EQ(LoadImageFile(Path("skip.tif").c_str(), 0, 1, 1), 0);
    const std::vector<ImageHeaderType*> chain = Chain(CurrentItem);
    ASSERT_EQ(chain.size(), 2u);
    EXPECT_EQ(chain[0]->nx, 3);
    EXPECT_EQ(chain[1]->nx, 5);
}

TEST_F(AttachedSpectraTest, AFailedAllocationInTheChainKeepsTheSpectraReadBefore)
{
    const std::string file = SaveAndErase(ImageWithChain({3, 4}), "alloc.tif");
    (void)file;
    const size_t blocks = LiveBlockCount();
    // Scratch record, pixels, first spectrum's record and samples; then the second record fails.
    FailAllocationsForTests(1, 4);
    ASSERT_EQ(LoadImageFile(Path("alloc.tif").c_str(), 0, 1, 1), 0);
    FailAllocationsForTests(0);
    ASSERT_EQ(host.messageBoxes.size(), 1u);
    EXPECT_EQ(host.messageBoxes[0].text, "Not enough memory");
    EXPECT_EQ(CurrentItem->nSPSRefData, 1);
    EXPECT_EQ(Chain(CurrentItem).size(), 1u);
    EXPECT_EQ(LiveBlockCount(), blocks + 2 + 2);
    EraseAllItems();
    EXPECT_EQ(LiveBlockCount(), blocks);
}

TEST_F(AttachedSpectraTest, HitDataBehindTheSpectraWithoutAMappingSetAreRefusedAndTheSpectraStay)
{
    std::string file = SaveAndErase(ImageWithChain({3, 4}), "hit.tif");
    // Hit data are said to follow the spectra; without a mapping set they have no place, and
    // only they are refused.
    const uint32_t flag = 1;
    std::memcpy(file.data() + 10 + 3392, &flag, sizeof flag);
    WriteFileBytes(Path("hit2.tif"), file);
    ImageHeaderType* kept = MakeSpectrumItem(3);
    EXPECT_EQ(LoadImageFile(Path("hit2.tif").c_str(), 0, 1, 1), 0);
    ImageHeaderType* loaded = CurrentItem;
    ASSERT_NE(loaded, kept);
    EXPECT_EQ(CountItems(), 2);
    EXPECT_EQ(loaded->nSPSRefData, 2);
    EXPECT_NE(loaded->SPSRefDataPtr, nullptr);
    EXPECT_EQ(loaded->LMCHitDataPtr, nullptr);
    EXPECT_EQ(loaded->LMCThresholdHitDataPtr, 0u);
    EXPECT_TRUE(Contains(ReadLog(), "Program error - AllocateHeaderMemory_LMCThresholdHitDataPtr 0 0"));
}

TEST_F(AttachedSpectraTest, ErasingTheChainFreesEverySpectrumAndLogsIt)
{
    const size_t before = LiveBlockCount();
    ImageHeaderType* image = ImageWithChain({3, 4, 5});
    EXPECT_EQ(LiveBlockCount(), before + 2 + 6);
    EraseSPSRefData(image);
    EXPECT_EQ(LiveBlockCount(), before + 2);
    EXPECT_EQ(image->nSPSRefData, 0);
    EXPECT_EQ(image->SPSRefData, 0u);
    EXPECT_EQ(image->SPSRefDataPtr, nullptr);
    EXPECT_TRUE(Contains(ReadLog(), "Erase SPS reference data."));
}

TEST_F(AttachedSpectraTest, CountOwnedSpectraOfMinusOneIsZero)
{
    ImageHeaderType* a = MakeSpectrumItem(3);
    ImageHeaderType* b = MakeSpectrumItem(3);
    EXPECT_EQ(a->SPSOwnerId, -1);
    EXPECT_EQ(b->SPSOwnerId, -1);
    EXPECT_EQ(CountOwnedSpectra(-1), 0);
    b->SPSOwnerId = 77;
    EXPECT_EQ(CountOwnedSpectra(77), 1);
}

TEST_F(AttachedSpectraTest, AnOwnedItemThatIsNoSpectrumIsPassedOverAndNotCounted)
{
    ImageHeaderType* image = MakeImage(16);
    ImageHeaderType* other = MakeImage(16, "other");
    ImageHeaderType* spectrum = MakeSpectrumItem(3, 5);
    other->SPSOwnerId = static_cast<int32_t>(image->DataId);
    spectrum->SPSOwnerId = static_cast<int32_t>(image->DataId);
    host.messageBoxAnswers.push_back(TV_IDYES);
    ASSERT_EQ(saveTiffImage(image, Path("mixed.tif").c_str(), 0), 0);
    EXPECT_EQ(host.messageBoxes[0].text, "Save 2 spectra referencing this image?");
    const std::string file = ReadFileBytes(Path("mixed.tif"));
    EXPECT_EQ(U16(file, 2774), 1);
    EXPECT_EQ(file.size(), 7124u + 512 + SpectrumBytes(3));
}

TEST_F(AttachedSpectraTest, AShortWriteAmongTheSpectraFailsTheSaveAndLeavesTheListAsItWas)
{
    ImageHeaderType* image = ImageWithChain({3, 4});
    const int items = CountItems();
    const size_t blocks = LiveBlockCount();
    // Room for the header, the pixels and part of the first spectrum.
    SetFileWriteLimitForTests(7124 + 512 + 100);
    EXPECT_EQ(saveTiffImage(image, Path("full.tif").c_str(), 0), 1);
    SetFileWriteLimitForTests(-1);
    // The question, then a short write for each spectrum and for the count behind them.
    ASSERT_EQ(host.messageBoxes.size(), 4u);
    for (size_t i = 1; i < 4; ++i) EXPECT_EQ(host.messageBoxes[i].text, "Not enough disk space") << i;
    EXPECT_EQ(CountItems(), items);
    EXPECT_EQ(LiveBlockCount(), blocks);
    EXPECT_EQ(image->nSPSRefData, 2);
    EXPECT_EQ(Chain(image).size(), 2u);
}

TEST_F(AttachedSpectraTest, TheImageItselfIsNotCountedAmongTheSpectraThatReferToIt)
{
    // The question counts the other items only; the writer must compare with that same count,
    // or the spectra the user agreed to save would be dropped.
    ImageHeaderType* image = MakeImage(16);
    ImageHeaderType* spectrum = MakeSpectrumItem(5, 30);
    image->SPSOwnerId = static_cast<int32_t>(image->DataId);
    spectrum->SPSOwnerId = static_cast<int32_t>(image->DataId);
    const std::string stored = Stored(spectrum);
    host.messageBoxAnswers.push_back(TV_IDYES);
    ASSERT_EQ(saveTiffImage(image, Path("self.tif").c_str(), 0), 0);
    ASSERT_EQ(host.messageBoxes.size(), 1u);
    EXPECT_EQ(host.messageBoxes[0].text, "Save 1 spectra referencing this image?");
    const std::string file = ReadFileBytes(Path("self.tif"));
    EXPECT_EQ(U16(file, 2774), 1);
    ASSERT_EQ(file.size(), 7124u + 512 + SpectrumBytes(5));
    EXPECT_EQ(file.substr(7124 + 512, 6090), stored);
}
