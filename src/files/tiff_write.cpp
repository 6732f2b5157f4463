#include "files/tiff_write.h"
#include "files/attached_spectra.h"
#include "files/image_blocks.h"
#include "files/tiff_header.h"
#include "host/errors.h"
#include "host/log.h"
#include "host/prompts.h"
#include "host/save_outcome.h"
#include "host/wait.h"
#include "platform/clock.h"
#include "platform/files.h"
#include "store/data_list.h"
#include "store/image_header.h"
#include "store/memory.h"

#include <cstdio>

namespace {

bool AskSaveSpectra(const char* format, int count)
{
    char text[512];
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    std::snprintf(text, sizeof text, format, count);
#pragma GCC diagnostic pop
    return AskYesNo(text, true) == 1;
}

bool WritePixels(FileHandle file, const ImageHeaderType* record, int bitno, uint8_t* row)
{
    const size_t nx = static_cast<size_t>(record->nx);
    const size_t ny = static_cast<size_t>(record->ny);
    if (bitno == 0) {
        const size_t bytes = nx * ny * 2;
        return CheckWrite(FileWrite(file, record->PixData, bytes), bytes);
    }
    if (bitno == 1) {
        for (size_t y = 0; y < ny; ++y) {
            const uint16_t* codes = record->PixData + y * nx;
            for (size_t x = 0; x < nx; ++x) row[x] = static_cast<uint8_t>(codes[x] >> 8);
            if (!CheckWrite(FileWrite(file, row, nx), nx)) return false;
        }
        return true;
    }
    ProgramError("bitno=%d", bitno);
    return true;
}

// When fewer spectra went out than the record counts, the file's count says how many did.
bool FixSpectrumCount(FileHandle file, const ImageHeaderType* record, int written)
{
    if (written == record->nSPSRefData) return true;
    const int16_t count = static_cast<int16_t>(written);
    if (FileSeek(file, TiffLayout::kSpectrumCountOffset, FileOrigin::Begin) != TiffLayout::kSpectrumCountOffset) {
        Error(ERR_WRITING2);
        return false;
    }
    if (!CheckWrite(FileWrite(file, &count, sizeof count), sizeof count)) return false;
    if (FileSeek(file, 0, FileOrigin::End) < 0) {
        Error(ERR_WRITING2);
        return false;
    }
    return true;
}

bool WriteImage(FileHandle file, ImageHeaderType* record, int bitno, uint8_t* row)
{
    const LocalTime now = GetLocalTime();
    record->SavedDate = ToDosDate(now);
    record->SavedTime = ToDosTime(now);
    record->Compression = 0;
    record->BitsPerPixel = bitno == 1 ? 8 : 16;

    int referring = CountReferringSpectra(record);
    if (referring > 0 && !AskSaveSpectra("Save %d spectra referencing this image?", referring)) referring = 0;
    int attached = 0;
    if (record->nSPSRefData > 0 && record->SPSRefData) {
        attached = AskSaveSpectra("Save %d spectra attached to this image?", record->nSPSRefData) ? record->nSPSRefData : 0;
    }

    record->DisplayMode = View3DOpen(record) ? 4 : 1;

    if (!WRITE_TIFF_HEADER(file, record)) {
        Error(ERR_WRITING2);
        return false;
    }
    if (!WritePixels(file, record, bitno, row)) return false;
    if (record->FFTData && !WriteFFTBlock(file, record)) return false;
    if (!WriteMappingBlock(file, record)) return false;
    const int written = WriteAttachedSpectra(file, record, referring, attached);
    return FixSpectrumCount(file, record, written) && WriteHitData(file, record);
}

} // namespace

int saveTiffImage(ImageHeaderType* record, const char* path, int bitno)
{
    if (!record || !path || !record->PixData || record->nx <= 0 || record->ny <= 0) {
        ProgramError("saveTiffImage");
        return 1;
    }
    ap_SetHourGlass(true);
    bool ok = false;
    auto* row = static_cast<uint8_t*>(emalloc(static_cast<size_t>(record->nx)));
    if (!row) {
        Error(ERR_NO_MEMORY);
    } else {
        FileReplace save;
        const FileHandle file = FileReplaceBegin(&save, path);
        if (file == kInvalidFile) {
            Error(ERR_OPEN_FILE2);
        } else {
            ok = FinishSave(&save, WriteImage(file, record, bitno, row), ERR_CLOSING_FILE2);
        }
    }
    ap_SetHourGlass(false);
    efree(row);
    if (ok) {
        Log("Save image %s\n", path);
    } else {
        Log("Error on saving image %s\n", path);
    }
    return ok ? 0 : 1;
}
