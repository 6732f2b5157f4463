// Shared parts of the image file fuzz targets: a fresh library state, a scratch file for each
// input, and seed files made by the writer of this library.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <unistd.h>

#include "files/tiff_write.h"
#include "host/reset.h"
#include "store/data_list.h"
#include "store/image_header.h"
#include "store/memory.h"

// Every target defines this: it writes its seed files into `directory`.
extern "C" void TavrinFuzzSeeds(const char* directory);

namespace fuzzsupport {

// One private directory of this process for the input files; the log stays off (no file
// name), message boxes answer their default button.
inline const std::string& WorkDirectory()
{
    static const std::string dir = [] {
        char pattern[] = "/tmp/tavrin-fuzz-XXXXXX";
        const char* made = mkdtemp(pattern);
        std::string d = made ? made : "/tmp";
        setenv("TAVRIN_HOME", (d + "/").c_str(), 1);
        setenv("TAVRIN_DATA", (d + "/").c_str(), 1);
        return d;
    }();
    return dir;
}

inline std::string WriteInput(const uint8_t* data, size_t size)
{
    const std::string path = WorkDirectory() + "/input.tif";
    FILE* f = std::fopen(path.c_str(), "wb");
    if (!f) std::abort();
    if (size && std::fwrite(data, 1, size, f) != size) std::abort();
    std::fclose(f);
    return path;
}

// The first input of a process starts from a fresh library state in a private directory.
inline void StartOnce()
{
    static const bool ready = [] {
        ResetProcessState();
        WorkDirectory();
        return true;
    }();
    (void)ready;
}

// The input read from the front, zero past its end.
struct Reader {
    const uint8_t* data;
    size_t size;
    size_t at = 0;
    unsigned Byte() { return at < size ? data[at++] : 0u; }
    unsigned Word() { return Byte() | (Byte() << 8); }
    int SignedWord() { return static_cast<int16_t>(Word()); }
    bool More() const { return at < size; }
};

inline void Check(bool condition, const char* what)
{
    if (!condition) {
        std::fprintf(stderr, "fuzz check failed: %s\n", what);
        std::abort();
    }
}

// Reads every sample of a spectrum (nx pairs of f32), so that the sanitizer sees a block too
// short for its header.
inline void ReadEverySample(const ImageHeaderType* spectrum)
{
    volatile float sum = 0.0f;
    const float* samples = reinterpret_cast<const float*>(spectrum->PixData);
    for (int i = 0; i < 2 * spectrum->nx; ++i) sum = sum + samples[i];
}

// After a spectrum command: every item but `keepA` and `keepB` must pass `good` (else the run
// stops with `what`), is read through and erased; `keepA` is current again.
template <typename Good>
void ReadAndEraseResults(ImageHeaderType* keepA, ImageHeaderType* keepB, Good good, const char* what)
{
    for (ImageHeaderType* p = FirstItem; p;) {
        ImageHeaderType* next = p->Next;
        if (p != keepA && p != keepB) {
            Check(good(p), what);
            ReadEverySample(p);
            CurrentItem = p;
            EraseItem(p);
        }
        p = next;
    }
    CurrentItem = keepA;
}

// A new nx by ny image behind `after` in the data list, its pixels allocated and not yet
// set; a failed allocation stops the run (the targets start with room to spare).
inline ImageHeaderType* NewImageItem(ImageHeaderType* after, int nx, int ny)
{
    ImageHeaderType* item = AllocateListItem(after);
    Check(item != nullptr, "list item");
    InitImageHeader(item, nx, ny);
    MemHandleType pair;
    Check(AllocateMem(static_cast<size_t>(nx) * ny, 2, &pair) != 0, "pixels");
    item->PixHandle = pair.Handle;
    item->PixData = static_cast<uint16_t*>(pair.Ptr);
    return item;
}

// The current item: an nx by ny image of nx by ny nm whose codes are the rest of the input,
// repeated, or a flat 0x8000 when nothing is left.
inline ImageHeaderType* ImageOfTheRestOfTheInput(int nx, int ny, Reader& in)
{
    ImageHeaderType* item = NewImageItem(nullptr, nx, ny);
    const size_t from = in.at, left = in.size > from ? in.size - from : 0;
    for (size_t i = 0; i < static_cast<size_t>(nx) * ny; ++i) {
        const size_t k = left >= 2 ? (2 * i) % (left - left % 2) : 0;
        item->PixData[i] = left >= 2 ? static_cast<uint16_t>(in.data[from + k] | (in.data[from + k + 1] << 8)) : 0x8000;
    }
    item->ImageSizeX = static_cast<float>(nx);
    item->ImageSizeY = static_cast<float>(ny);
    CurrentItem = item;
    return item;
}

// An n by n image in the data list with varied codes.
inline ImageHeaderType* SeedImage(int n, uint32_t seed)
{
    ImageHeaderType* item = AllocateListItem(CurrentItem);
    if (!item) return nullptr;
    InitImageHeader(item, n, n);
    std::snprintf(item->Title, sizeof item->Title, "Seed %u", static_cast<unsigned>(seed));
    MemHandleType pair;
    if (!AllocateMem(static_cast<size_t>(n) * n, 2, &pair)) return nullptr;
    item->PixHandle = pair.Handle;
    item->PixData = static_cast<uint16_t*>(pair.Ptr);
    for (int i = 0; i < n * n; ++i) item->PixData[i] = static_cast<uint16_t>(i * 2654435761u + seed);
    CurrentItem = item;
    return item;
}

inline void WriteBytes(const std::string& path, const std::string& bytes)
{
    FILE* f = std::fopen(path.c_str(), "wb");
    if (!f) return;
    std::fwrite(bytes.data(), 1, bytes.size(), f);
    std::fclose(f);
}

// A plain old-layout file: the first `headerBytes` of a record, then `body`.
inline std::string PlainFile(int n, int revNo, int compression, int bits, size_t headerBytes, const std::string& body)
{
    ImageHeaderType record;
    std::memset(&record, 0, sizeof record);
    InitImageHeader(&record, n, n);
    record.RevNo = static_cast<int16_t>(revNo);
    record.Compression = static_cast<int8_t>(compression);
    record.BitsPerPixel = static_cast<int8_t>(bits);
    return std::string(reinterpret_cast<const char*>(&record), headerBytes) + body;
}

// Seeds: 16-bit and 8-bit palette files of our writer, one with an FFT block, and plain files
// with delta rows (both shift rules), bilevel pixels and a short old header.
inline void WriteSeeds(const char* directory)
{
    ResetProcessState();
    const std::string dir = directory;
    ImageHeaderType* a = SeedImage(16, 1);
    if (a) {
        saveTiffImage(a, (dir + "/seed_16bit.tif").c_str(), 0);
        saveTiffImage(a, (dir + "/seed_8bit.tif").c_str(), 1);
        MemHandleType fft;
        if (AllocateMem(16 * 16, 8, &fft)) {
            for (int i = 0; i < 512; ++i) static_cast<float*>(fft.Ptr)[i] = static_cast<float>(i) * 0.5f;
            SetFFTBlock(a, static_cast<float*>(fft.Ptr));
            saveTiffImage(a, (dir + "/seed_fft.tif").c_str(), 0);
        }
    }
    std::string rows;
    for (int r = 0; r < 16; ++r) {
        rows += static_cast<char>(r);
        rows += std::string("\x9F\x07\x0A\xB9\x80\xC3\x99\x90\x99\x99\x90", 11);   // steps and literals
    }
    WriteBytes(dir + "/seed_delta700.img", PlainFile(16, 700, 9, 16, TAVRIN_HEADER_STORED_BYTES, rows));
    WriteBytes(dir + "/seed_delta103.img", PlainFile(16, 103, 1, 0, 902, rows));
    WriteBytes(dir + "/seed_bilevel.img", PlainFile(16, 700, 16, 16, TAVRIN_HEADER_STORED_BYTES, std::string(32, '\x5A')));
    WriteBytes(dir + "/seed_rev303.img", PlainFile(16, 303, 0, 16, 902, std::string(512, '\x33')));
    ResetProcessState();
}

} // namespace fuzzsupport
