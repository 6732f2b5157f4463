#include "files/spectrum_files.h"
#include "files/image_blocks.h"
#include "files/old_revisions.h"
#include "host/errors.h"
#include "host/globals.h"
#include "host/log.h"
#include "host/save_outcome.h"
#include "host/text.h"
#include "host/wait.h"
#include "platform/clock.h"
#include "spectro/spectro.h"
#include "store/data_list.h"
#include "store/image_header.h"
#include "store/memory.h"
#include "store/units.h"

#include <cstdio>
#include <cstring>

namespace {

constexpr size_t kStored = TAVRIN_HEADER_STORED_BYTES;
constexpr SpecExportParam kDefaultExport{0, 2};
SpecExportParam g_export = kDefaultExport;

size_t SampleBytes(const ImageHeaderType* record) { return static_cast<size_t>(record->nx) * 8; }

// Stored bytes that a file of this revision holds: the rule of the image file header.
bool StoredBytesAccepted(long long got, int revNo)
{
    if (got == static_cast<long long>(kStored)) return true;
    return (revNo <= 303 && got >= 902) || (revNo <= 404 && got >= 1872);
}

// The record of the file's position, cleared behind what its revision stored. The file is
// left at the samples.
bool ReadSpectrumRecord(FileHandle file, ImageHeaderType* record)
{
    const long long start = FileSeek(file, 0, FileOrigin::Current);
    if (start < 0) {
        Error(ERR_READING2);
        return false;
    }
    uint8_t stored[kStored];
    const long long got = FileRead(file, stored, kStored);
    int16_t revNo = 0;
    if (got >= 2) std::memcpy(&revNo, stored, sizeof revNo);
    if (got < 0 || !StoredBytesAccepted(got, revNo)) {
        if (DebugMode) Log("loadSpec %d %d\n", static_cast<int>(got), static_cast<int>(kStored));
        CheckRead(got, kStored);
        return false;
    }
    // Only the stored part: the run-time part of the record stays as the allocation made it.
    std::memcpy(record, stored, static_cast<size_t>(got));
    if (revNo < 405) {
        const size_t kept = revNo < 304 ? 902 : 1872;
        if (FileSeek(file, start + static_cast<long long>(kept), FileOrigin::Begin) != start + static_cast<long long>(kept)) {
            Error(ERR_READING2);
            return false;
        }
        std::memset(reinterpret_cast<uint8_t*>(record) + kept, 0, kStored - kept);
        SetDefaultRecordColours(record);
    }
    return true;
}

bool WriteLine(FileHandle file, const char* line)
{
    const size_t length = std::strlen(line);
    return FileWrite(file, line, length) == static_cast<long long>(length);
}

// The table of a spectrum: the heading "No.", X, Y unless `heading` is 0, then the number
// from 1, X and the calibrated Y of each point, lines ended by `eol`.
bool WriteTable(FileHandle file, const ImageHeaderType* record, int separator, int heading, const char* eol)
{
    const char sep = ExportSeparatorCharacter(separator);
    char line[128];
    if (heading) {
        std::snprintf(line, sizeof line, "No.%cX%cY%s", sep, sep, eol);
        if (!WriteLine(file, line)) return false;
    }
    const float* y = SpecY(record);
    const float* x = SpecX(record);
    for (int i = 0; i < record->nx; ++i) {
        const double value = ImageDataValue2Calibrated(record, y[i], 0);
        std::snprintf(line, sizeof line, "%d%c%E%c%E%s", i + 1, sep, static_cast<double>(x[i]), sep, value, eol);
        if (!WriteLine(file, line)) return false;
    }
    return true;
}

} // namespace

bool IsSpectrumClass(uint32_t type)
{
    switch (type) {
    case IMTYPE_SPECTRUM: case IMTYPE_PROFILE: case IMTYPE_HISTOGRAM: case IMTYPE_FREQUENCY_SWEEP:
    case IMTYPE_PHASE_SHIFT: case IMTYPE_SCAN_LINE: case IMTYPE_SCAN_LINE2: return true;
    default: return false;
    }
}

void FreeSpectrumRecord(ImageHeaderType* record)
{
    if (!record) return;
    efree(record->PixData);
    record->PixData = nullptr;
    record->PixHandle = 0;
    FreeHeader(record);
}

ImageHeaderType* loadSpec(FileHandle file)
{
    ImageHeaderType* record = AllocateHeader();
    if (!record) return nullptr;
    if (!ReadSpectrumRecord(file, record)) {
        FreeHeader(record);
        return nullptr;
    }
    const float factor = UpdateOldImageHeader(record, 1);
    if (!CheckValidSpecHeader(record) || !IsSpectrumClass(record->ImType1)) {
        Error(ERR_INVALID_HEADER);
        FreeHeader(record);
        return nullptr;
    }
    float* samples = AllocSpecMem(record->nx);
    if (!samples) {
        FreeHeader(record);
        return nullptr;
    }
    record->PixHandle = 1;
    record->PixData = reinterpret_cast<uint16_t*>(samples);
    record->SPSOwnerId = -1;
    const size_t bytes = SampleBytes(record);
    const long long got = FileRead(file, samples, bytes);
    if (got != static_cast<long long>(bytes)) {
        if (DebugMode) Log("loadSpec1 %d %d\n", static_cast<int>(got), static_cast<int>(bytes));
        CheckRead(got, bytes);
        FreeSpectrumRecord(record);
        return nullptr;
    }
    if (factor != 0.0f && factor != 1.0f)
        for (int i = 0; i < record->nx; ++i) samples[i] /= factor;
    // A spectrum carries none of the blocks of an image: stored flags without a block go.
    MatchBlockFlagsToBlocks(record);
    return record;
}

int LoadSpecFile(const char* path, int report, int quiet)
{
    if (!path) {
        ProgramError("LoadSpecFile");
        return 1;
    }
    const FileHandle file = FileOpen(path, FileMode::Read);
    if (file == kInvalidFile) {
        Error(ERR_OPEN_FILE2);
        Log("Error on loading %s\n", path);
        return 1;
    }
    ImageHeaderType* loaded = loadSpec(file);
    bool ok = loaded != nullptr;
    // Closed before the list changes, so that a failed close still leaves the list as it was.
    if (FileClose(file) != 0) {
        Error(ERR_CLOSING_FILE2);
        ok = false;
    }
    ImageHeaderType* item = ok ? AllocateListItem(CurrentItem) : nullptr;
    if (ok && item && CopyImageHeader(item, loaded, 0) != 0) {
        UnlinkListItem(item);
        item = nullptr;
    }
    if (!item) {
        FreeSpectrumRecord(loaded);
        Log("Error on loading %s\n", path);
        return 1;
    }
    CopyHeaderPointers(item, loaded);
    loaded->PixData = nullptr;
    loaded->PixHandle = 0;
    FreeHeader(loaded);
    strncpy0(item->FileName, path, sizeof item->FileName);
    CurrentItem = item;
    if (!quiet) DisplayCurrentItem();
    if (report) Log("Load %s\n", path);
    return 0;
}

int WriteSpec(FileHandle file, const ImageHeaderType* record)
{
    if (!record || !record->PixData || record->nx <= 0) {
        ProgramError("WriteSpec");
        return 1;
    }
    if (!CheckWrite(FileWrite(file, record, kStored), kStored)) return 1;
    const size_t bytes = SampleBytes(record);
    return CheckWrite(FileWrite(file, record->PixData, bytes), bytes) ? 0 : 1;
}

int SaveSpecFile(ImageHeaderType* record, const char* path)
{
    if (!CheckHeaderIsSpecType(record)) {
        Error(ERR_NO_SPECTRA);
        return 1;
    }
    if (!path) {
        ProgramError("SaveSpecFile");
        return 1;
    }
    ap_SetHourGlass(true);
    bool ok = false;
    FileReplace save;
    const FileHandle file = FileReplaceBegin(&save, path);
    if (file == kInvalidFile) {
        Error(ERR_OPEN_FILE2);
    } else {
        record->RevNo = static_cast<int16_t>(kCurrentRevision);
        record->SubRevNo = kCurrentSubRevision;
        const LocalTime now = GetLocalTime();
        record->SavedTime = ToDosTime(now);
        record->SavedDate = ToDosDate(now);
        ok = FinishSave(&save, WriteSpec(file, record) == 0, ERR_CLOSING_FILE2);
    }
    ap_SetHourGlass(false);
    if (ok) {
        Log("Save spectrum %s\n", path);
    } else {
        Log("Error on saving spectrum %s\n", path);
    }
    return ok ? 0 : 1;
}

int SaveSpecData(const ImageHeaderType* record, const char* path)
{
    if (!CheckHeaderIsSpecType(record)) {
        Error(ERR_NO_SPECTRA);
        return 1;
    }
    if (!path || !record->PixData || record->nx <= 0) {
        ProgramError("SaveSpecData");
        return 1;
    }
    FileReplace save;
    const FileHandle file = FileReplaceBegin(&save, path);
    if (file == kInvalidFile) {
        Error(ERR_OPEN_FILE);
        return 1;
    }
    const bool written = WriteTable(file, record, g_export.separator, !g_export.noHeading, "\r\n");
    if (!written) Error(ERR_WRITING);
    return FinishSave(&save, written, ERR_WRITING) ? 0 : 1;
}

int WriteSpectrumText(const ImageHeaderType* item, const char* path, int delimiter, int header)
{
    if (!item || !item->PixData || item->nx <= 0 || !path) {
        ProgramError("WriteSpectrumText");
        return ERR_PROGRAM;
    }
    FileReplace save;
    const FileHandle file = FileReplaceBegin(&save, path);
    if (file == kInvalidFile) {
        Error(ERR_OPEN_FILE);
        return ERR_OPEN_FILE;
    }
    const bool written = WriteTable(file, item, delimiter, header, "\n");
    if (!FinishSave(&save, written, ERR_WRITING)) return ERR_WRITING;
    char title[48];
    Log("Write '%s' data.\n", ItemTitle(item, title));
    return 0;
}

char ExportSeparatorCharacter(int separator)
{
    switch (separator) {
    case 1: return ',';
    case 2: return '\t';
    default: return ' ';
    }
}

SpecExportParam GetSpecExportParam() { return g_export; }

void SetSpecExportParam(const SpecExportParam& param)
{
    if (param.separator < 0 || param.separator > 2) {
        ProgramError("SetSpecExportParam %d", param.separator);
        return;
    }
    g_export = param;
}

void ResetSpecExportParam() { g_export = kDefaultExport; }
