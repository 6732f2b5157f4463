// Line and surface fitting: the dense linear solver, straight lines, polynomial lines,
// polynomial surfaces with thresholds and a region, and planes on a sampled grid. The
// background tool, the spectrum fit and the elastic modulus share these kernels.
//
// Failures are program errors (32771) with the routine's text, or 32769 for memory; the
// output keeps what it had unless told otherwise.
#pragma once

#include <cstdint>

#include "tavrin/image_header.h"

// Status of SolveLinearSystem.
constexpr int kSolveOk = 0;
constexpr int kSolveSingular = 1;
constexpr int kSolveNoMemory = 2;

// Solves a x = b for n unknowns by LU decomposition with partial pivoting in double, in place
// on the row-major matrix `a` whose rows are `stride` doubles apart (the matrix is destroyed;
// `b` is read only). The pivot of a column is the first row with the largest magnitude; a pivot
// of exactly 0 stops with status 1. The last diagonal element is not tested: a zero there
// gives infinities or NaN in x with status 0. Answers the status and stores it in *status
// when that is not null.
int SolveLinearSystem(double* a, double* x, const double* b, int n, int stride, int* status);
// SolveLinearSystem, and a solution that is not finite (a zero last diagonal) counts as
// singular, so that no caller ever turns NaN or infinity into a code.
int SolveLinearSystemFinite(double* a, double* x, const double* b, int n, int stride);

// Least-squares line y = slope * x + offset over n >= 3 points: products in f32, sums in
// double, the slope rounded to f32 before the offset is taken. With all x equal the
// denominator is 0 and no guard is made: the slope comes out NaN (or an infinity) and so does
// the offset. Answers 0, or 1 after "FitLineX %p %p %d".
int FitLineX(const float* x, const float* y, int n, float* slope, float* offset);
// out[i] = in[i] less the least-squares line over the index i; n >= 3, else "FitLineF %p %p %d"
// and 1. `out` may be `in`.
int FitLineF(const float* in, float* out, int n);

// The polynomial of degree d through n points, coefficients c0 first into c[d + 1]. All
// coefficients start at 0. Answers 0; 32769 when its working arrays cannot be had; 32771
// "Fit Poly" when the normal matrix is singular (a degree above the number of distinct
// abscissae), with the coefficients left 0.
int FitPolyLine(const double* x, const double* y, int n, int d, double* c);

// The fit region: corner A and the edge vectors B - A and C - A; D = B + C - A.
struct Parallelogram {
    int32_t ax, ay;
    int32_t abx, aby;   // B - A
    int32_t acx, acy;   // C - A
    int32_t bx, by, cx, cy, dx, dy;
    int32_t minX, maxX, minY, maxY;
    int64_t cross;      // (B - A) x (C - A); 0: the region has no area
};
// The region of three corners in pixels.
Parallelogram MakeParallelogram(int ax, int ay, int bx, int by, int cx, int cy);
// The pixel of a point of the 0 to 511 square on an image of w by h.
int SquareToPixel(int v, int size);

// The span of row y inside the region: the edges A-B, B-D, D-C, C-A in that order, each edge
// that is not horizontal and whose Y range holds y crossing at
// x = xa + (y - ya) * (xb - xa) / (yb - ya) (integer division). With no crossing the span is
// empty: start 1, end 0. Start and end are clipped to 0 to w - 1.
void RowSpan(const Parallelogram& region, int y, int w, int* start, int* end);

// Working tables are sized for degree 19 in each axis.
constexpr int kMaxFitDegree = 19;
// Images of more pixels than this are sampled by FitPoly2D.
constexpr int64_t kFitSampleTarget = 65536;
// The sampling step of a region of n pixels: trunc(sqrt(n / 65536)), at least 1.
int FitSampleStep(int64_t n);

// The polynomial surface of degrees dx, dy (0 to 19) fitted to the codes of `source` within
// low..high (inside the region when `useRegion`; `points` are the corners A, B, C as x, y
// pairs in the 0 to 511 square). The residual of every pixel goes to `residual` (W * H
// doubles) and, stretched to 0..65535, to the codes of `result`; with a background item the
// surface value goes to its buffer (8 bytes a pixel) and, stretched, into the 16-bit codes at
// the start of the same buffer. Zlo, Zhi and DataScale are not touched. The coefficients
// (dx + 1) * (dy + 1), X fastest, go to `coefficients` when it is not null.
// Answers the solver's status (0, 1 singular, 2 no memory), or -1 after the program error
// "FitPoly2D imi %p degx %d degy %d nx %d ny %d %p". A singular fit leaves a zero residual.
// `threads` (0: both cores) splits moments and residual into fixed chunks combined in fixed
// order, so that every thread count gives the same result.
int FitPoly2D(ImageHeaderType* result, const ImageHeaderType* source, ImageHeaderType* background, int low,
              int high, int useRegion, const int16_t points[6], int dx, int dy, double* coefficients,
              double* residual, int threads = 0);

// The plane through a grid of at most 128 by 128 points over the rectangle (x1, y1)..(x2, y2)
// of w by h i32 values: out[0] the offset at (x1, y1), out[1] and out[2] the slopes in X and Y
// to add to take the plane away. Answers 0, or 1 when nothing was done (an empty rectangle, a
// grid that leaves the image, a singular system).
int FitPlane(const int32_t* values, int w, int h, int x1, int y1, int x2, int y2, double out[3]);
// Adds v + x * a + y * b to every value of the w by h array of `item` (x, y absolute indices;
// with `on` clear the slopes are 0) and stretches it into the item's codes by
// ScaleIntegersToCodes. `values` may share the item's pixel storage.
void ApplyPlane(bool on, int32_t* values, ImageHeaderType* item, double a, double b);

// trunc(v) clamped to the i32 range; NaN gives 0.
int32_t TruncClampI32(double v);
