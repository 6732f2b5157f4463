// Spectrum files.
//
// ".spc": the stored part of the record (6090 bytes; 902 or 1872 in files of revision up to
// 303 or 404), then the samples: nx f32 Y values, then nx f32 X values. No TIFF wrapper. The
// same unit follows the pixels of an image file for each spectrum attached to the image.
//
// ".dat": a text table for other programs. A heading line "No.<sep>X<sep>Y" unless the export
// settings turn it off, then one line per point: the number from 1, X as stored, and Y through
// the calibration in force, both in "%E" form. The separator is a blank, a comma or a tab.
// Lines end in CR LF, as the text files of the desktop platform do.
#pragma once

#include <cstdint>

#include "platform/files.h"
#include "tavrin/image_header.h"

// The classes whose samples are curves, tested without a report: a file may hold any number
// in ImType1.
bool IsSpectrumClass(uint32_t type);

// Reads one spectrum from the file's position: the record (an old short record is cleared
// behind its stored bytes and upgraded, and the Y values of the oldest spectra are scaled),
// then its samples. Answers a new record outside the data list, with SPSOwnerId -1 and its
// samples in PixData, or null with the error reported (32774 short, 32822 failed read, 32777
// invalid header, 32769 or 33284 no memory) and nothing left allocated.
ImageHeaderType* loadSpec(FileHandle file);
// Frees a record that loadSpec made, with its samples.
void FreeSpectrumRecord(ImageHeaderType* record);

// Loads a ".spc" file into a new item behind the current one, which becomes current and is
// shown unless `quiet`. `report` logs "Load %s" on success. 0 on success; 1 on failure, with
// the data list unchanged.
int LoadSpecFile(const char* path, int report, int quiet);

// Writes the record's 6090 stored bytes and its nx * 8 bytes of samples. 0 on success; 1 with
// error 32773 (short write) or 32823 (failed write).
int WriteSpec(FileHandle file, const ImageHeaderType* record);
// Saves a spectrum as a ".spc" file; the record takes revision 700/42 and the saving stamps.
// An item that is not of a spectrum class is error 33280. 0 on success, 1 on failure.
int SaveSpecFile(ImageHeaderType* record, const char* path);
// Saves a spectrum as a ".dat" table by the export settings. 0 on success, 1 on failure
// (33280 not a spectrum, 32776 the file cannot be made, 32779 a failed write).
int SaveSpecData(const ImageHeaderType* record, const char* path);

// The text table of a spectrum: delimiter 0 blank, 1 comma, 2 tab (as the ".dat" export); the
// line "No.", X, Y unless `header` is 0; each point "%d%c%E%c%E" with its number from 1, X and
// the calibrated Y; lines end in a newline. Logs "Write '%s' data.\n". Answers 0, or the error
// number after its report: 32776 when the file cannot be made, 32779 a failed write.
int WriteSpectrumText(const ImageHeaderType* item, const char* path, int delimiter, int header);

// The export settings of the ".dat" table.
struct SpecExportParam {
    int noHeading;   // non-zero: no heading line; default 0 (the heading is written)
    int separator;   // 0 blank, 1 comma, 2 tab; default 2
};
SpecExportParam GetSpecExportParam();
// A separator other than 0, 1 or 2 is reported ("SetSpecExportParam %d") and nothing changes.
void SetSpecExportParam(const SpecExportParam& param);
void ResetSpecExportParam();
// The character of a separator setting: 1 comma, 2 tab, any other a blank.
char ExportSeparatorCharacter(int separator);
