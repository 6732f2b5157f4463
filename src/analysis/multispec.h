// Many spectra of the data list overlaid, each with its shift and gain, and the settings file of
// that arrangement.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "display/plot.h"
#include "tavrin/dl_multispec.h"
#include "tavrin/image_header.h"

// The plot is this many pixels square in its frame store; the legends go in the strip right
// of it. Each curve and marker is drawn in palette entry 35, set to its colour first.
constexpr int kMultiPlotSize = 512;
constexpr int kMultiCurvePaletteEntry = 35;

// Where the X line markers cross one shown item, in the units of the plot.
struct MultiSpecMarkerData {
    int item;        // place in the item list
    bool has[2];     // X1, X2: the curve reaches the marker
    double x[2], y[2];
};

class CMultiSpecDisp {
public:
    CMultiSpecDisp();
    ~CMultiSpecDisp();
    CMultiSpecDisp(const CMultiSpecDisp&) = delete;
    CMultiSpecDisp& operator=(const CMultiSpecDisp&) = delete;

    // The items of the spectra whose DataId lies in lowest..highest (-1: 0 and 0x7FFFFFFF), a
    // two-way spectrum twice; values of the old list kept by ID and ramp. `id` is selected (a
    // missing one falls back to the current item).
    void Initialise(int32_t id, int32_t lowest, int32_t highest);
    // The default record and no items, old or new.
    void Reset();
    // Ends a run; `release` frees the item list, else it is kept for the next Initialise.
    void Finish(bool release);
    // Copies `src` into `dst` with its own copy of the items. False after 32769.
    bool CopyParamsAndAllocateMem(wint_MultiSpecParamType* dst, const wint_MultiSpecParamType* src);
    bool SelectedForDisplay(const MultiSpecParam_ItemType& item) const;
    double ConvertX(int i, double x) const;
    double ConvertY(int i, double y) const;
    int32_t GetLowestID(const wint_MultiSpecParamType* p) const;
    int32_t GetHighestID(const wint_MultiSpecParamType* p) const;
    // Draws the selected and matched items in frame store `vfs` (negative: the one of the run).
    void MultiPlot(int vfs);
    // The dialog's record taken over (its items copied) and the plot drawn; false after 32769.
    bool CopyParams2DLLAndAllocateMemAndPlot(wint_MultiSpecParamType p);
    // The marker positions through the scale of the last plot, and the crossings of the X
    // markers with each shown item; nothing is known before a plot.
    void UpdateLineMarkerData();
    const std::vector<MultiSpecMarkerData>& MarkerData() const { return markerData_; }
    // Marker m (0 Y1, 1 X1, 2 Y2, 3 X2) in the units of the plot; false when off or unknown.
    bool MarkerValue(int m, double* value) const;
    // The settings file; 1 on success, 0 on failure.
    int SaveMultiSpecData(const char* path);
    int LoadMultiSpecData(const char* path);
    // The values of the markers and of each shown item as text, "n/a" where there is none.
    int ExportMultiSpecData(const char* path);

    wint_MultiSpecParamType& Param() { return param_; }
    MultiSpecParam_ItemType* Items() { return items_.data(); }
    int ItemCount() const { return static_cast<int>(items_.size()); }
    // The reference AcqMode and DataSource of the last MatchSpectra.
    uint32_t ReferenceAcqMode() const { return refAcqMode_; }
    uint32_t ReferenceDataSource() const { return refDataSource_; }
    void MatchSpectra(wint_MultiSpecParamType* p);

private:
    static void InitMultiSpecParamType(wint_MultiSpecParamType* p);
    void SetItemParams(MultiSpecParam_ItemType* item, const ImageHeaderType* spectrum, bool second);
    int GetIndexFromId(int32_t id) const;
    int GetMax_np() const;
    void SyncParam();
    void DrawLegends();
    void DrawLineMarkers();
    // Lines 1 and 2 of the settings file and of the export.
    void WriteFileHead(FILE* f) const;
    // The number of each item in the files: spectra still in the list counted from 1, a second
    // ramp sharing its spectrum's number; 0 for a gone item.
    std::vector<int> FileNumbers() const;
    // The Y of item i (in plot units) where it crosses x; false when it does not reach it.
    bool CurveValueAt(int i, double x, double* y) const;
    // The samples of item i: first index and count within its spectrum; false when it is gone.
    bool GetSpec_Nx_Nx1_Ofs(int i, const ImageHeaderType** spectrum, int* from, int* count) const;

    wint_MultiSpecParamType param_{};
    std::vector<MultiSpecParam_ItemType> items_;
    std::vector<MultiSpecParam_ItemType> oldItems_;
    int returnStore_ = -1;
    uint32_t refAcqMode_ = 0, refDataSource_ = 0;
    // The scale of the last plot, for the marker values.
    bool havePlot_ = false;
    PlotAreaType plotArea_{};
    float plotLogScale_[2] = {1.0f, 1.0f};
    double markerValue_[4] = {0, 0, 0, 0};
    bool markerKnown_[4] = {false, false, false, false};
    std::vector<MultiSpecMarkerData> markerData_;
};

// Palette entry `entry` set to an RGB value, red in the low byte.
void SetPaletteEntryColour(int entry, uint32_t colour);
// A file name as the settings file holds it: ".spc" added when it has no extension, each
// backslash doubled.
std::string MultiSpecFileName(const char* name);

// The text of the direction of a curve (see multispec.cpp).
const char* CurveDirection(const ImageHeaderType* spectrum);
CMultiSpecDisp* MultiSpecDisp();
void ResetMultiSpecState();
