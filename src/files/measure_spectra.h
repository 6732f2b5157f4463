// The spectra of the measuring markers as files: one file per marker and one of the average.
#pragma once

#include "analysis/measure.h"

// The question of the export dialog: "Extract %d spectr%s%s".
void MeasureSpectraPrompt(int count, bool average, char* text, size_t size);
// One spectrum file of marker `marker` (-1: the average) under `stem`: type 0 ".spc", else
// ".dat". The curve goes through the derivative the object's DiffType asks for first. Answers 1
// when a file was written; 0 when the marker has no spectrum, the user kept the existing file,
// or the save failed (reported there).
int ExportOneSpectrum(CMeasure& measure, const float* x, const float* y, int32_t marker, const char* stem, int32_t type,
                      bool overwrite);
