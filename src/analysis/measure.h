// The measuring object behind the Measure dialog: markers (points, lines, rectangles, circles,
// polygons) set on one image, drawn over it in its frame store, labelled, and measured. The
// head is the record the dialog exchanges whole; the rest is the object's own.
//
// Markers of every image live in one array (Markers, NoOfMarkers); each names the data list
// number of its image, and only those of the measured image (ImageNo) are drawn and measured.
// With a mapping set behind the image (spectroscopy mode) every marker also carries the mean
// spectrum of the pixels under it.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

#include "platform/canvas.h"
#include "tavrin/dl_measure.h"
#include "tavrin/dl_spectro.h"
#include "tavrin/image_header.h"

// The largest finite f32: a statistic that does not exist, printed "-".
constexpr float kNoStatistic = 3.40282347e38f;
// Interruption states of MarkerAreaCalcs.
constexpr int kCalcInterruptible = 0;
constexpr int kCalcInterrupted = 1;
constexpr int kCalcRunOn = 2;
// The time during which a mapping calculation gives way to the user at once, in ms.
constexpr uint32_t kCalcGiveWayMs = 751;

// The outputs of MarkerAreaCalcs; each null pointer skips its store.
struct AreaOutputs {
    float* area = nullptr;
    float* surface = nullptr;
    float* volume = nullptr;
    float* mean = nullptr;
    float* min = nullptr;
    float* max = nullptr;
    float* ra = nullptr;
    float* rms = nullptr;
    float* spectrum = nullptr;
    int32_t* count = nullptr;
};

// The results of one MarkerAreaCalcs run in plain (aligned) storage; `Outputs` points every
// output at it. The packed records take them over field by field.
struct AreaStats {
    float area = 0, surface = 0, volume = 0, mean = 0, min = 0, max = 0, ra = 0, rms = 0;
    int32_t count = 0;
    AreaOutputs Outputs(float* spectrum = nullptr)
    {
        AreaOutputs o;
        o.area = &area, o.surface = &surface, o.volume = &volume, o.mean = &mean, o.min = &min, o.max = &max;
        o.ra = &ra, o.rms = &rms, o.spectrum = spectrum, o.count = &count;
        return o;
    }
};

class CMeasure : public wint_MeasureParamType {
public:
    CMeasure();
    ~CMeasure();
    CMeasure(const CMeasure&) = delete;
    CMeasure& operator=(const CMeasure&) = delete;

    int MeasureInitialise(bool spectroscopy, void* hWnd);
    void MeasureFinish();
    void DisplayImageWithMarkers();
    void CopyMeasureParamToDlg(wint_MeasureParamType* p);
    void CopyMeasureParamFromDlg(const wint_MeasureParamType* p);
    void InitMeasureMarkerType(MeasureMarkerType* m);
    float GetZdata(POINTs p, bool physical) const;
    float Convert2UnitsFromNx(int32_t n) const;
    float Convert2UnitsFromNy(int32_t n) const;
    int32_t ConvertUnitsToNx(float v) const;
    int32_t ConvertUnitsToNy(float v) const;
    // Makes a profile item of a line marker; answers the item, or null.
    ImageHeaderType* ExtractLine(int32_t marker);
    void ResetYScale(int32_t diffType);
    int DiffSpecType2Index(int32_t diffType) const;

    // Export (measure_export.cpp).
    int ExportToTXT(const char* file);
    int ExportSpectra(const wint_MeasureParamType* p);
    int DisplaySpectra(int32_t* state, int32_t vfs, const char* title, bool redraw);
    void DisplayIDlist();

    // Statistics of a set of pixels (marker_area.cpp): the whole image, a rectangle or a mask.
    void MarkerAreaCalcs(int32_t* state, bool hourglass, const ImageHeaderType* image, const RECT* rect,
                         const int16_t* mask, const AreaOutputs& out);
    // Frame pixels of the frame rectangle that fall on marked pixels of the image mask.
    int32_t CalcNoOfPointsThatOverlapWithMask(const RECT& rect, const int16_t* mask, int32_t w, int32_t h) const;
    int32_t CountNoOfMarkers(const ImageHeaderType* image) const;

    // A Bresenham-type walk that ORs `value` into the mask; answers the steps visited.
    int32_t draw_lineto_mem_OR(int x1, int y1, int x2, int y2, int16_t* mask, bool* overlap, int16_t value, int nx,
                               int ny, bool spectra, float* spec);
    void ShowMarkerIDs(int16_t* mask);
    bool PeekUserActivity();
    int DifferentiateSPS(const float* xIn, const float* yIn, float* xOut, float* yOut);

    // The private part.
    int32_t NextMarkerID;
    int32_t ProfileVFS;
    uint8_t Spectroscopy;
    ImageHeaderType* Image;
    int16_t* MarkerMask;
    int16_t* IDMask;
    uint8_t MarkersOverlap;
    float* SweepX;
    float SweepLow, SweepHigh;
    float YScaleLow[5], YScaleHigh[5];
    int32_t Nx, Ny;
    int32_t ImageNo;
    int32_t ImageVFS;
    int32_t SpectrumVFS;

    // The platform side of the dialog, for hosts and tests: the probe of pending mouse
    // messages (null: none ever), and the messages posted to hWnd.
    bool (*UserActivityProbe)(void* context) = nullptr;
    void* UserActivityContext = nullptr;
    int32_t PostedMessages = 0;
    uint32_t LastPostedMessage = 0;
    // Runs of MarkerAreaCalcs for single markers since the last MeasureInitialise.
    int32_t MarkerCalcRuns = 0;
    // The frame rectangle of each label drawn by the last ShowMarkerIDs, by marker index.
    RECT* LabelRects = nullptr;
    int32_t LabelRectCount = 0;

    // The spectrum path of this object: a set behind the image in spectroscopy mode.
    int SetImages() const;
    void PostRedraw();
    // Markers of the measured image (ImageNo).
    bool OnImage(const MeasureMarkerType& m) const { return m.ImageNo == ImageNo; }
    void FreeMasks();
    // The statistics of a category column (0 to 3) from a run.
    void StoreColumn(int column, const AreaStats& s);
};

// The one measuring object of the library.
CMeasure* MeasureObject();
// Frees the object and its markers (library reset).
void ResetMeasureState();

// Frees the points and spectrum of a marker.
void FreeMarker(MeasureMarkerType* m);

// The frame coordinate of an image pixel: its centre in the 512-pixel frame.
int MarkerFrameX(int x, int nx);
int MarkerFrameY(int y, int ny);

// Appends a new marker of the measured image (InitMeasureMarkerType, then the kind, a copy of
// the points and the seed); answers its index, or -1 with "Not enough memory" and the array as
// it was.
int AddMeasureMarker(CMeasure* measure, int32_t type, const POINTs* points, int32_t count, POINTs seed);
// Removes every marker and frees them.
void ClearMeasureMarkers(CMeasure* measure);

// The text table of the results: the head line (followed by `end`), a row of a category or a
// marker ("%-16s " name, "%16d" count, eight " %16s" statistics; "-" for the largest f32 and,
// with `point`, for the surface and the volume), and the head with the four category rows.
constexpr const char* kMeasureRowNames[4] = {"Point", "Line", "Area", "Whole image"};
void AppendMeasureHead(std::string& out, const char* end);
void AppendMeasureRow(std::string& out, const char* name, int32_t number, const float v[8], bool point);
void AppendMeasureSummary(const CMeasure& ms, std::string& out);
