#include "display/frame_pickup.h"
#include "display/contents_grid.h"
#include "display/vfs.h"
#include "files/old_revisions.h"
#include "host/errors.h"
#include "store/data_list.h"
#include "store/image_header.h"
#include "store/memory.h"

#include <cstring>

namespace {

constexpr int kEntryHeader = 0;
constexpr int kEntryPixels = 1;
constexpr int kEntryFFTRecord = 2;
constexpr int kEntryFFTData = 3;

uint64_t ImageBytes(const ImageHeaderType* item) { return uint64_t{2} * uint64_t(item->nx) * uint64_t(item->ny); }
uint64_t FFTBytes(const ImageHeaderType* item) { return uint64_t{8} * uint64_t(item->nx) * uint64_t(item->ny); }
uint64_t SampleBytes(const ImageHeaderType* item) { return uint64_t{8} * uint64_t(item->nx); }

bool EntryIs(const VFSPickUpType* in, int entry, uint64_t bytes)
{
    return in->Pointers[entry] != nullptr && in->Sizes[entry] == bytes;
}

// A new item's blocks, freed again when the paste fails.
struct MadeBlocks {
    void* pixels = nullptr;
    uint32_t pixelHandle = 0;
    float* samples = nullptr;
    float* fft = nullptr;
};

void FreeMade(ImageHeaderType* item, const MadeBlocks& made)
{
    if (made.pixels) FreeMem(made.pixelHandle, made.pixels);
    if (made.samples) FreeSpecMem(made.samples);
    efree(made.fft);
    item->PixData = nullptr;
    item->PixHandle = 0;
    SetFFTBlock(item, nullptr);
    UnlinkListItem(item);
}

// Copies the blocks of the picked item behind the new record. False on a size that does not
// match the record, or when memory runs out (reported where it happened).
bool CopyBlocks(ImageHeaderType* item, const VFSPickUpType* in, bool hadFFT, bool hadMapping, MadeBlocks* made,
                bool* formatError)
{
    *formatError = true;
    if (item->nx <= 0 || (CheckHeaderIsImageType(item) && item->ny <= 0)) return false;
    if (CheckHeaderIsSpecType(item)) {
        if (!EntryIs(in, kEntryPixels, SampleBytes(item))) return false;
        *formatError = false;
        made->samples = AllocSpecMem(item->nx);
        if (!made->samples) return false;
        std::memcpy(made->samples, in->Pointers[kEntryPixels], SampleBytes(item));
        item->PixData = reinterpret_cast<uint16_t*>(made->samples);
        item->PixHandle = 1;
        return true;
    }
    if (!CheckHeaderIsImageType(item)) return false;
    if (!EntryIs(in, kEntryPixels, ImageBytes(item))) return false;
    // The mapping header and its planes travel in entries from 2 on; a record that carries a
    // mapping set is not taken until they are read here.
    if (hadMapping) return false;
    if (hadFFT && (in->Pointers[kEntryFFTRecord] == nullptr || in->Sizes[kEntryFFTRecord] != 0 ||
                   !EntryIs(in, kEntryFFTData, FFTBytes(item))))
        return false;
    *formatError = false;
    MemHandleType pair;
    if (!AllocateMem(static_cast<size_t>(item->nx) * static_cast<size_t>(item->ny), 2, &pair)) return false;
    made->pixels = pair.Ptr;
    made->pixelHandle = pair.Handle;
    std::memcpy(made->pixels, in->Pointers[kEntryPixels], ImageBytes(item));
    item->PixData = static_cast<uint16_t*>(made->pixels);
    item->PixHandle = made->pixelHandle;
    if (hadFFT) {
        made->fft = static_cast<float*>(emalloc(FFTBytes(item)));
        if (!made->fft) {
            Error(ERR_NO_MEMORY);
            return false;
        }
        std::memcpy(made->fft, in->Pointers[kEntryFFTData], FFTBytes(item));
        SetFFTBlock(item, made->fft);
    }
    return true;
}

} // namespace

int PickUpImage(int x, int y, VFSPickUpType* out)
{
    if (!out) return 1;
    const bool outside = x < 0 || x >= kFrameWidth || y < 0 || y >= kFrameHeight;
    ImageHeaderType* item = outside ? CurrentItem : GetFSContentsCoords(x, y);
    if (!item) return 1;
    const bool isSpectrum = CheckHeaderIsSpecType(item) != 0;
    const bool isImage = !isSpectrum && CheckHeaderIsImageType(item) != 0;
    if (!isSpectrum && !isImage) return 1;
    std::memset(out, 0, sizeof *out);
    out->Sizes[kEntryHeader] = TV_PICKUP_HEADER_BYTES;
    out->Pointers[kEntryHeader] = item;
    out->Pointers[kEntryPixels] = item->PixData;
    if (isSpectrum) {
        out->Sizes[kEntryPixels] = static_cast<uint32_t>(SampleBytes(item));
        return 0;
    }
    out->Sizes[kEntryPixels] = static_cast<uint32_t>(ImageBytes(item));
    if (item->FFTDataPtr) {
        out->Sizes[kEntryFFTRecord] = 0;
        out->Pointers[kEntryFFTRecord] = item->FFTDataPtr;
        out->Sizes[kEntryFFTData] = static_cast<uint32_t>(FFTBytes(item));
        out->Pointers[kEntryFFTData] = item->FFTDataPtr;
    }
    return 0;
}

int DropImage(const VFSPickUpType* in)
{
    const auto* source = in ? static_cast<const ImageHeaderType*>(in->Pointers[kEntryHeader]) : nullptr;
    if (!source || source->RevNo > kCurrentRevision || source->SubRevNo > kCurrentSubRevision) {
        Error(ERR_INVALID_REVISION);
        return 1;
    }
    if (in->Sizes[kEntryHeader] != TV_PICKUP_HEADER_BYTES) {
        Error(ERR_PASTE_FORMAT);
        return 1;
    }
    ImageHeaderType* item = AllocateListItem(CurrentItem);
    if (!item) return 1;
    std::memcpy(item, source, TAVRIN_HEADER_STORED_BYTES);
    const bool hadFFT = item->FFTData != 0;
    const bool hadMapping = item->CITSHeader != 0;
    // The new record owns no block yet; attached spectra and hit data stay with the source.
    item->FFTData = 0;
    item->CITSHeader = 0;
    item->SPSRefData = 0;
    item->nSPSRefData = 0;
    item->LMCThresholdHitDataPtr = 0;
    if (item->RevNo < kCurrentRevision) UpdateOldImageHeader(item, CheckHeaderIsSpecType(item));

    MadeBlocks made;
    bool formatError = false;
    if (!CopyBlocks(item, in, hadFFT, hadMapping, &made, &formatError)) {
        if (formatError) Error(ERR_PASTE_FORMAT);
        FreeMade(item, made);
        return 1;
    }
    CurrentItem = item;
    DisplayCurrentItem();
    return 0;
}
