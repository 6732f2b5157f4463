// The interactive tools on the spectrum plot: polynomial fit, zoom into a box, the magnitude
// spectrum under a window, the measuring cursor, the group plot, the text table of a spectrum
// and the value of a curve at a plot position.
#pragma once

#include <cstdint>

#include "image/poly_regression.h"
#include "tavrin/image_header.h"

// The size of the frame store these tools ask the host for.
constexpr int kToolWindowWidth = 768;
constexpr int kToolWindowHeight = 512;

// The title of a tool window: "%s < %s >" with the tool's name and the item's title, or the
// name alone when the title is empty.
void ToolWindowTitle(const char* tool, const ImageHeaderType* item, char* text, int size);

// Interactive fit: asks for degrees until Cancel, each time the plot redrawn with the fitted
// curve and its statistics. No item is made.
void FitPoly2Spec();
// The three work arrays of a fit (nx doubles each): X, calibrated Y, fitted values.
struct SpecFitWork {
    double* x;
    double* y;
    double* fitted;
};
// Answers false after 32769 with nothing held.
bool AllocateSpecFitWork(int n, SpecFitWork* work);
void FreeSpecFitWork(SpecFitWork* work);
// One fit of the current plot: Y through the calibration against X, the fitted curve over the
// plot in colour 5 and the text block right of it when `plot` is set and the fit is not
// singular; the log line either way. Answers PolyRegression's result, or -1 after a report.
int FitSpectrumPolynomial(const ImageHeaderType* item, int degree, int plot, const SpecFitWork& work,
                          PolyRegressionStats* stats);

// Starts the box selection of the zoom over the plot of the current spectrum.
void ZoomSpec();
// The zoom of `source` into the box of data values (X, and Y as shown, through the
// calibration): a new current item of the same number of points, code 54. Answers the new
// item, or null after 32782 "Invalid data entry" (box empty after the clipping, or fewer than
// 17 points inside) or another report, with the list as it was.
ImageHeaderType* ZoomSpectrum(ImageHeaderType* source, double x1, double x2, double y1, double y2);

// The magnitude spectrum of the current spectrum under window 1 to 5, plotted; no item.
void ShowSpecFFT(int window);
// The weight of sample i of n under window 1 to 5 (0 for another number).
double SpecFFTWindowWeight(int window, int i, int n);
// The caption text of a window: "No window" ... "Cosine arch window"; null outside 1 to 5.
const char* SpecFFTWindowName(int window);
// The magnitudes of the transform of y (n a power of two of at least 4) under the window:
// mean removed, weighted, spread to complex pairs (real parts the samples, imaginary parts the
// odd samples below n / 2, zero above), FFT1D forward, hypot. `magnitude` gets n / 2 values.
// Answers 0, or 1 after the report (33283, 32769, or the program error of the window).
int SpectrumMagnitudes(const float* y, int n, int window, float* magnitude);

// The measuring cursor over the plot of the current spectrum; `flag` offers the switch of plot.
void SpecMeasure(int flag);
// A frame store for a group plot; the next plots in group mode 1 are drawn together.
void GroupSpecPlot();
// The frame store and mode of the group plot (-1 and 0 when none was asked for).
int GroupPlotStore();
int GroupPlotMode();

// The Y of the curve at the plot position plotX (see spec_value_at.cpp).
float SpectrumValueAt(const float* x, const float* y, int n, float plotX);

void ResetSpecToolsState();
