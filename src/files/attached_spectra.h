// Spectra attached to an image and their place in the image file.
//
// Two kinds of spectra belong to an image. Attached spectra hang on the image itself: the
// image's SPSRefDataPtr is the first, the same field of each spectrum the next; nSPSRefData
// counts them. They are bare records with their samples, outside the data list, and they go
// with the image. Owned spectra are items of the data list whose SPSOwnerId is the image's
// DataId. An image file carries both behind its pixels (and any FFT and mapping blocks), each
// as a record and its samples in the ".spc" form; on loading they all become attached spectra.
#pragma once

#include <cstdint>

#include "platform/files.h"
#include "tavrin/image_header.h"

// Data list items whose SPSOwnerId is `dataId`; 0 for -1.
int CountOwnedSpectra(int32_t dataId);
// Data list items other than the image whose SPSOwnerId is the image's DataId: the count the
// save asks about, and the count its writing compares with.
int CountReferringSpectra(const ImageHeaderType* image);

// Reads the attached spectra from the file's position, up to nSPSRefData of them. Before each,
// the rest of the file must hold at least one more record: 6090 bytes (5188 when the image's
// RevNo is below 304, 4218 below 405), plus the hit data block that still follows; otherwise
// the reading ends quietly. A spectrum that cannot be read ends it too, with its error shown.
// The spectra read form the chain in file order; nSPSRefData becomes their number, and with
// none the chain is cleared. Answers the number read.
int ReadSPSRefData(FileHandle file, ImageHeaderType* image);

// Writes the owned spectra of the image, if there are still exactly `owned` of them (and more
// than 0), then up to `chained` spectra of the image's chain. An owned item that is no spectrum
// is passed over; a spectrum that fails to write is not counted, and the file goes back to where
// it began. Answers the number written.
int WriteSPSRefData(FileHandle file, const ImageHeaderType* image, int owned, int chained);

// Frees the image's chain from its end, spectrum by spectrum, samples and record; the chain is
// cleared and nSPSRefData becomes 0. Logs "Erase SPS reference data.".
void EraseSPSRefData(ImageHeaderType* image);
// The same without the log line, for the clean-up of a record that never reached the list.
void FreeSPSRefChain(ImageHeaderType* image);
