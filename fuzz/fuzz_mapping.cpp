// Fuzz target: mapping blocks and hit data. The first byte picks the form of the input:
//   0: the whole input is an image file;
//   1: the input follows a valid 16 by 16 image as its mapping block (and hit data when the
//      second byte is odd);
//   2: as 1, behind a valid mapping header of 1 to 8 images, so that entries, planes and hit
//      data see arbitrary bytes;
// and the third byte places one failed allocation (0: none). A load that brings no item leaves
// the list empty and no block alive; an item with a set holds a valid one with every plane; the
// erase frees everything.
#include "fuzz_support.h"
#include "files/tiff_read.h"
#include "mapping/cits.h"
#include "test_mapping_support.h"

namespace {

std::string ReadWhole(const std::string& path)
{
    std::string file;
    FILE* f = std::fopen(path.c_str(), "rb");
    if (!f) return file;
    char buffer[4096];
    size_t got;
    while ((got = std::fread(buffer, 1, sizeof buffer, f)) > 0) file.append(buffer, got);
    std::fclose(f);
    return file;
}

// The bytes of a saved 16 by 16 image without a set.
const std::string& PlainImageFile()
{
    static const std::string bytes = [] {
        ImageHeaderType* image = fuzzsupport::SeedImage(16, 5);
        const std::string path = fuzzsupport::WorkDirectory() + "/plain.tif";
        const std::string file = image && saveTiffImage(image, path.c_str(), 0) == 0 ? ReadWhole(path) : std::string();
        while (FirstItem) EraseItem(FirstItem);
        return file;
    }();
    return bytes;
}

void CheckItem(const ImageHeaderType* item)
{
    fuzzsupport::Check(item->PixData != nullptr && CheckValidImageHeader(item) == 1, "item has valid pixels");
    fuzzsupport::Check((item->CITSHeader != 0) == (item->CITSHeaderPtr != nullptr), "mapping flag matches its set");
    fuzzsupport::Check((item->LMCThresholdHitDataPtr != 0) == (item->LMCHitDataPtr != nullptr), "hit flag matches");
    const CITSHeaderType* set = item->CITSHeaderPtr;
    if (!set) return;
    fuzzsupport::Check(set->ni >= 1 && set->ni <= 4096 && set->cx == set->cy, "set passed its header test");
    for (int k = 0; k < set->ni; ++k) {
        const uint16_t* row = GetCITSImagePtr(set, k, static_cast<uint32_t>(set->cy - 1));
        fuzzsupport::Check(row != nullptr, "every plane present");
        volatile uint16_t last = row[set->cx - 1];
        (void)last;
    }
    if (item->LMCHitDataPtr) fuzzsupport::Check(CheckLMCThresholdHitData(item) == 0, "hit data passed their test");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzzsupport::StartOnce();
    const std::string& plain = PlainImageFile();
    if (size < 3 || plain.empty()) return 0;
    fuzzsupport::Check(FirstItem == nullptr, "empty list before the load");
    const size_t blocks = LiveBlockCount();
    const unsigned form = data[0] % 3;
    const bool hits = data[1] & 1;
    const int failAt = data[2];
    const std::string rest(reinterpret_cast<const char*>(data + 3), size - 3);
    std::string file;
    if (form == 0) {
        file = rest;
    } else {
        file = plain;
        maptest::Put<uint32_t>(file, 10 + 702, 1);
        maptest::Put<uint32_t>(file, 10 + 3392, hits ? 1 : 0);
        file[10 + 3246] = 1;   // threshold 1 on: the item keeps a copy of the hit records
        if (form == 2) file += maptest::HeaderBytes(1 + (data[1] >> 1) % 8, 16);
        file += rest;
    }
    const std::string path = fuzzsupport::WriteInput(reinterpret_cast<const uint8_t*>(file.data()), file.size());
    if (failAt) FailAllocationsForTests(1, failAt - 1);
    LoadImageFile(path.c_str(), 0, 0, 1);
    FailAllocationsForTests(0);
    if (FirstItem) {
        fuzzsupport::Check(FirstItem == CurrentItem && FirstItem->Next == nullptr, "one new current item");
        CheckItem(CurrentItem);
        EraseItem(CurrentItem);
    }
    fuzzsupport::Check(FirstItem == nullptr, "erased");
    fuzzsupport::Check(LiveBlockCount() == blocks, "nothing leaked");
    fuzzsupport::Check(LiveCITSPixelBlocks() == 0, "no plane left");
    return 0;
}

// Seeds: a set of three 16 by 16 images with hit data in each form, a short block, and a set
// of an old revision.
extern "C" void TavrinFuzzSeeds(const char* directory)
{
    ResetProcessState();
    const std::string dir = directory;
    std::string block = maptest::HeaderBytes(3, 16);
    for (int k = 0; k < 3; ++k) block += maptest::EntryBytes(0.5f * static_cast<float>(k), -1, 1, 4, "seed", 2, 3, 4);
    for (int k = 0; k < 3; ++k) block += maptest::PlaneBytes(16, k);
    std::string hitData;
    for (int i = 0; i < 256; ++i) hitData += maptest::HitBytes(i % 5 == 0 ? 1 : 0, i % 5 == 0 ? 16 : 0, 3.0f);
    const std::string form1 = std::string("\x01\x01\x00", 3) + block + hitData;
    fuzzsupport::WriteBytes(dir + "/seed_block_hits", form1);
    fuzzsupport::WriteBytes(dir + "/seed_block", std::string("\x01\x00\x00", 3) + block);
    fuzzsupport::WriteBytes(dir + "/seed_short", std::string("\x01\x00\x00", 3) + block.substr(0, 500));
    fuzzsupport::WriteBytes(dir + "/seed_entries", std::string("\x02\x05\x00", 3) + block.substr(390) + hitData);
    fuzzsupport::WriteBytes(dir + "/seed_fail", std::string("\x01\x01\x05", 3) + block + hitData);
    std::string old = maptest::HeaderBytes(2, 16, 300);
    old += maptest::EntryBytes(0, 0, 1, 0, "a", 1, 1, 0, 0, 0, 1) + maptest::EntryBytes(1, 0, 1, 0, "b", 1, 1, 0, 0, 0, 2);
    old += maptest::PlaneBytes(16, 0) + maptest::PlaneBytes(16, 1);
    fuzzsupport::WriteBytes(dir + "/seed_old", std::string("\x01\x00\x00", 3) + old);
    // A whole file of our writer with its set.
    ImageHeaderType* image = fuzzsupport::SeedImage(16, 9);
    if (image) {
        CITSHeaderType* set = AllocateCITSDataSet(2, 16, 16);
        if (set) {
            for (int k = 0; k < 2; ++k) {
                CITSEntry(set, k)->adc_gain = 1;
                CITSEntry(set, k)->i_divider = 1;
                CITSEntry(set, k)->data_type = 1;
            }
            SetCITSBlock(image, set);
            const std::string path = dir + "/seed_file.tif";
            if (saveTiffImage(image, path.c_str(), 0) == 0)
                fuzzsupport::WriteBytes(path, std::string(3, '\0') + ReadWhole(path));
        }
    }
    while (FirstItem) EraseItem(FirstItem);
    ResetProcessState();
}
