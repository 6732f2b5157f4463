// The default plot of one spectrum, profile or histogram: its settings, its frame of axes and
// titles, the curve (or bars), and the check of the log axes against the data.
#pragma once

#include <cstddef>
#include <cstdint>

#include "tavrin/dl_plot.h"
#include "tavrin/image_header.h"

// The settings of the default plot. The three fonts are the named plot fonts 1 to 3 (title,
// axis title, numbers).
struct PlotSettings {
    int32_t PlotWidth, PlotHeight;
    int32_t LogAxisX, LogAxisY;
    uint16_t AutoAxes;            // bit 0: X limits by AutoScale, bit 1: Y
    uint16_t GridX, GridY;
    uint16_t BoxAxes;
    float MinX, MinY, MaxX, MaxY;
    float TickStepX, TickStepY;
};
extern PlotSettings PlotParam;

void GetPlotParam(wint_PlotParamType* param);
// Reversed limits are swapped, and a tick step is at least a hundredth of its range.
void SetPlotParam(const wint_PlotParamType* param);

// The part of the settings that CheckLogAxes may change.
struct SavedPlotSettings {
    int32_t LogAxisX, LogAxisY;
    uint16_t BoxAxes, AutoAxes;
};
SavedPlotSettings SavePlotSettings();
void RestorePlotSettings(const SavedPlotSettings& saved);

// For a spectrum with a log axis wanted: a log axis whose data reach 0 or below is switched
// off; a log axis forces its auto scale bit on; BoxAxes is 1 with any log axis, else as saved.
// Lack of memory reports "Not enough memory" and switches both off. `box` is the saved BoxAxes.
void CheckLogAxes(const ImageHeaderType* item, int start, int n, uint16_t box);

// The points of a spectrum as plotted: X and Y of each sample (for a histogram the planes
// exchange roles), Y through the calibration in force. False (after the report) without memory.
bool SpectrumPlotPoints(const ImageHeaderType* item, float* x, float* y);

// Shows a spectrum at the placement cursor of the current frame store by the settings.
// "Not enough memory" or "No spectra in memory" on failure.
void DisplaySpectrum(ImageHeaderType* item);
// The same with the log choice, mode (1: bars), pen width, colour and titles of the caller.
void DisplaySpecWithSettings(ImageHeaderType* item, const float* x, const float* y, int n, int logX, int logY,
                             int mode, int width, int colour, const char* xtitle, const char* title, int polar);
// The frame of a plot: placement, axes, titles; area 1 is left current with the plot's world.
void DrawPlotFrame(float xmin, float xmax, float ymin, float ymax, const char* xtitle, const char* title, int polar);
// The curve of a spectrum (or its bars) in area 1, with the parameter text of the item.
void PlotSpectrum(ImageHeaderType* item, const float* x, const float* y, int n, int asBars, int width, int colour);

// Titles and units of the plot.
void XTitle(uint32_t imType1, const ImageHeaderType* item, char* text, size_t size);
const char* XUnit(uint32_t imType1, const ImageHeaderType* item);
void SpecTitle(const ImageHeaderType* item, char* text, size_t size);
// A ramp that goes out and back: AcqMode 15 or 16, 51 with LMCMode 1, 21 with LapFlag set.
int IsLapSpec(const ImageHeaderType* item);

// The three log axis checks of the host: a message box for each lost axis, settings restored.
void CheckLogAxesCommand(int checkX, int checkY);

void ResetPlotState();
