#include "files/attached_spectra.h"
#include "files/spectrum_files.h"
#include "host/errors.h"
#include "host/log.h"
#include "store/data_list.h"
#include "store/data_list_mapping.h"
#include "store/image_header.h"
#include "store/memory.h"

namespace {

// Bytes the rest of the file must hold for one more spectrum record.
long long SpaceForOneRecord(const ImageHeaderType* image)
{
    long long bytes = TAVRIN_HEADER_STORED_BYTES;
    if (image->RevNo < 304) {
        bytes = 5188;
    } else if (image->RevNo < 405) {
        bytes = 4218;
    }
    // The hit data block of a mapping comes behind the spectra.
    if (image->LMCThresholdHitDataPtr) {
        const long long side = MappingSquareSize(image);
        bytes += side * side * static_cast<long long>(kHitRecordBytes);
    }
    return bytes;
}

// Bytes between the file's position and its end, or -1; the position is kept.
long long BytesLeft(FileHandle file)
{
    const long long here = FileSeek(file, 0, FileOrigin::Current);
    if (here < 0) return -1;
    const long long end = FileSeek(file, 0, FileOrigin::End);
    if (end < 0 || FileSeek(file, here, FileOrigin::Begin) != here) return -1;
    return end - here;
}

// One spectrum; on failure the file goes back to where it was, so that what follows lands on
// the bytes of the spectrum that did not make it.
bool WriteOneSpectrum(FileHandle file, const ImageHeaderType* spectrum)
{
    const long long start = FileSeek(file, 0, FileOrigin::Current);
    if (WriteSpec(file, spectrum) == 0) return true;
    if (start >= 0) FileSeek(file, start, FileOrigin::Begin);
    return false;
}

// An item of the data list, other than the image itself, whose owner is the image.
bool RefersTo(const ImageHeaderType* item, const ImageHeaderType* image)
{
    return item != image && item->SPSOwnerId >= 0 && static_cast<uint32_t>(item->SPSOwnerId) == image->DataId;
}

} // namespace

int CountReferringSpectra(const ImageHeaderType* image)
{
    int n = 0;
    for (const ImageHeaderType* p = FirstItem; p; p = p->Next)
        if (RefersTo(p, image)) ++n;
    return n;
}

int CountOwnedSpectra(int32_t dataId)
{
    if (dataId == -1) return 0;
    int n = 0;
    for (const ImageHeaderType* p = FirstItem; p; p = p->Next)
        if (p->SPSOwnerId == dataId) ++n;
    return n;
}

int ReadSPSRefData(FileHandle file, ImageHeaderType* image)
{
    if (!image) {
        ProgramError("ReadSPSRefData");
        return 0;
    }
    const int wanted = image->nSPSRefData;
    SetSPSRefChain(image, nullptr);
    ImageHeaderType* last = nullptr;
    int read = 0;
    while (read < wanted) {
        const long long left = BytesLeft(file);
        if (left < SpaceForOneRecord(image)) break;
        ImageHeaderType* spectrum = loadSpec(file);
        if (!spectrum) break;
        SetSPSRefChain(spectrum, nullptr);
        if (last) {
            SetSPSRefChain(last, spectrum);
        } else {
            SetSPSRefChain(image, spectrum);
        }
        last = spectrum;
        ++read;
    }
    if (last) last->nSPSRefData = 0;
    image->nSPSRefData = static_cast<int16_t>(read);
    return read;
}

int WriteSPSRefData(FileHandle file, const ImageHeaderType* image, int owned, int chained)
{
    if (!image) {
        ProgramError("WriteSPSRefData");
        return 0;
    }
    int written = 0;
    if (owned > 0 && CountReferringSpectra(image) == owned) {
        for (const ImageHeaderType* p = FirstItem; p; p = p->Next)
            if (RefersTo(p, image) && IsSpectrumClass(p->ImType1) && WriteOneSpectrum(file, p)) ++written;
    }
    int taken = 0;
    for (const ImageHeaderType* s = image->SPSRefDataPtr; s && taken < chained; s = s->SPSRefDataPtr, ++taken)
        if (WriteOneSpectrum(file, s)) ++written;
    return written;
}

void FreeSPSRefChain(ImageHeaderType* image)
{
    if (!image) return;
    // From the end: the links are turned round first, then the records go one by one.
    ImageHeaderType* reversed = nullptr;
    for (ImageHeaderType* s = image->SPSRefDataPtr; s;) {
        ImageHeaderType* next = s->SPSRefDataPtr;
        s->SPSRefDataPtr = reversed;
        reversed = s;
        s = next;
    }
    SetSPSRefChain(image, nullptr);
    while (reversed) {
        ImageHeaderType* next = reversed->SPSRefDataPtr;
        FreeSpectrumRecord(reversed);
        reversed = next;
    }
    image->nSPSRefData = 0;
}

void EraseSPSRefData(ImageHeaderType* image)
{
    if (!image) {
        ProgramError("EraseSPSRefData");
        return;
    }
    Log("Erase SPS reference data.\n");
    FreeSPSRefChain(image);
}
