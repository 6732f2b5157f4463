// Series of numbered image files, and their replay.
//
// A series is a run of ".tif" files whose names end in a number of 2 or 10 digits, counting
// from 0: "scan00.tif", "scan01.tif", ... or "run0000000000.tif", ... The host replays a
// series by asking for file after file and pacing them by their creation stamps.
#pragma once

#include <cstdint>

struct FileSeriesType {
    int32_t Digits;      // 2 or 10
    uint32_t Reserved;
    char Base[260];      // the current name without extension, with its digits
    char Name[260];      // the last name made, with ".tif"
};

// The one series of the library.
extern FileSeriesType FileSeries;

// Takes a path as the start of a series: its extension is cut; a name that ends in ten digits
// counts with ten, one that ends in two with two, any other gets ten appended. The digits always
// start again from 0, whatever the path said.
void ParseSeriesName(const char* path);
// The next number of the series: Base counts up by one, Name is Base with ".tif". Answers Name.
const char* NextSeriesName();
// The name of file i of the series, into Name. Answers Name.
const char* SeriesFileName(int index);

// Starts a replay at `path`: the display is cleared, the series parsed, and its files counted
// from 0 while each exists as an ordinary file. Answers the count; with none, error 33563
// ("Invalid path specified for replay sequence") and 0.
int ReplayInitialise(const char* path);
// Shows file i of the series at the start of the current frame store and answers its
// CreatedFileTime; the item is erased again and the item before it becomes current. An index
// outside the count, or a file that does not load, answers 0. ReplayFlag is set while the file
// is shown.
uint64_t ReplayDisplay(int index);

void ResetReplayState();
