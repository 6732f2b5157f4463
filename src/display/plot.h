// The plot package: numbered plot areas of a frame store with world coordinates, margins,
// linear and logarithmic axes, number labels, grids, titles, curves and bars.
//
// An area is a frame rectangle (Left, Top, Right, Bottom) with a plot rectangle inside it set
// off by the margins (fractions of the area). The world of the plot rectangle runs from
// WorldX0 to WorldX1 and WorldY0 to WorldY1, y upward; the full world covers the whole area.
// All drawing goes through the FS operations with the clip rectangle at the area, so pixel
// coordinates of this package are relative to the area's top left corner.
//
// A log axis keeps a linear world (whole decades of the data after ApplyLogScale); positions
// inside a decade use ten fixed fractions, and points are mapped through log10 of the limits.
#pragma once

#include <cstddef>
#include <cstdint>

#include "display/fonts.h"
#include "display/plot_scale.h"

struct PlotAreaType {
    float FullX0, FullY0, FullX1, FullY1;
    float WorldX0, WorldY0, WorldX1, WorldY1;
    float MarginLeft, MarginBottom, MarginRight, MarginTop;
    int16_t PlotLeft, PlotBottom, PlotRight, PlotTop;
    int16_t Left, Bottom, Right, Top;
    uint8_t LogX, LogY;
    int16_t DecadesX, DecadesY;
    float OriginX, OriginY;
    float LabelStepX, LabelStepY;
    float TickX, TickY;
};

constexpr int kPlotAreaCount = 11;

// Colour indices of a plot.
constexpr int kPlotAxisColour = 23;
constexpr int kPlotXTitleColour = 24;
constexpr int kPlotTitleColour = 25;
constexpr int kPlotCurveColour = 26;
constexpr int kPlotSecondColour = 27;
constexpr int kPlotGridColour = 30;

// The largest f32: the start of a search for a minimum (and its negative of a maximum).
constexpr float kNoExtreme = 3.4028235e38f;

// The factors by which the data of a log axis were multiplied (1 on a linear axis).
extern float LogScaleX;
extern float LogScaleY;
// Set, every curve takes its first colour only.
extern bool TwoColourSuppressed;
// Frame pixels of the first and of the last point of the last curve.
struct PlotCurveEnds {
    int FirstX, FirstY, LastX, LastY;
};
extern PlotCurveEnds LastCurveEnds;

// The area of a number (0 to 10; any other number gives the current one), and the current one.
PlotAreaType& PlotArea(int n);
PlotAreaType& CurrentPlotArea();
int CurrentPlotAreaNumber();

// floor(x + 0.49999): the rounding of every pixel position of the package.
int PlotRound(double x);

void SetPlotArea(int left, int top, int right, int bottom, int n);
void SetPlotAreaFraction(float left, float top, float right, float bottom, int n);
void SetPlotMargins(int n, float left, float top, float right, float bottom);
void SelectPlotArea(int n);
void ClearPlotArea();
void SetLogAxes(int x, int y);
void SetAxisRange(float x0, float y0, float x1, float y1);
void SetAxisOrigin(float x, float y);

// World to area pixel (relative to Left, Top), limited to 0 to 1000 on the way; and back.
int WorldToPixelX(float x);
int WorldToPixelY(float y);
float PixelToWorldX(int px);
float PixelToWorldY(int py);

// Axes, labels and grids. `side` 1 puts ticks and labels on the far side.
void DrawAxisX(float step, int side);
void DrawAxisY(float step, int side);
void DrawLabelsX(int multiple, int side);
void DrawLabelsY(int multiple, int side);
void DrawGridX(int multiple);
void DrawGridY(int multiple);
void DrawGridXY(int multiple);

// The limits and steps of both axes, in and out of DrawAxes.
struct PlotLimits {
    float xmin, xmax, xtick;
    float ymin, ymax, ytick;
};
// Everything of the axes in one step; with `draw` 0 only the world and the origin are set.
// Answers the label spacing in ticks used for x.
int DrawAxes(int box, int gridX, int gridY, int gridColour, int autoFlags, PlotLimits* limits,
             const FontRecType* font, int draw);

// The text of an axis number (see plot_axes.cpp for the rule).
void FormatAxisNumber(float value, float lo, float hi, float step, int isLog, char* out, size_t size);

// Curves in the current area. Points are limited to the world (or taken to log10 on a log axis).
void PlotCurve(const float* x, const float* y, int n, int colour, int colour2, int width, int breakAtHalf,
               int twoColour);
void PlotBars(const float* x, const float* y, int n, float barWidth, int colour, int fillStyle);
void PlotSymbols(const float* x, const float* y, int n, int colour, int symbol);

// Titles under, left of (upright, one character a line) and above the plot rectangle.
void PlotTitleBottom(const char* text);
void PlotTitleLeft(const char* text);
void PlotTitleTop(const char* text);

// Minimum and maximum over the finite values; kNoExtreme and -kNoExtreme when there is none.
void GetPlotExtremes(const float* x, int n, float* min, float* max);
// For each log axis with a positive minimum: scales the data (and the limits) so that the
// minimum lies between 1 and 10; the factors go to LogScaleX, LogScaleY.
void ApplyLogScale(float* x, float* y, int n, int logX, int logY, float* xmin, float* xmax, float* ymin,
                   float* ymax);

// The start-up layout of the areas, area 1 current.
void ResetPlotAreas();
