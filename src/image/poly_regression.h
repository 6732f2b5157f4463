// Least-squares polynomial of one variable with its statistics: the kernel of the spectrum fit
// and of the fit of every curve of a mapping set.
#pragma once

#include "image/fit.h"

// The pivot measure below which a fit counts as singular (the f32 constant of 1e-7).
constexpr double kPolySingularPivot = 1.0000000116860974e-7;

struct PolyRegressionStats {
    double coefficients[kMaxFitDegree + 1];   // c0 first
    double errors[kMaxFitDegree + 1];         // standard error of each coefficient
    double stddev;                            // sqrt(|SSE / (n - degree - 1)|), divisor 1 at n = degree + 1
    double correlation;                       // sqrt(|1 - SSE / (Syy - Sy^2 / n)|)
    double smallestPivot;                     // smallest |pivot| of the inversion
    int singular;                             // 1: too few points or a pivot below kPolySingularPivot
};

// The polynomial of `degree` (1 to kMaxFitDegree) through the n points (x, y). The normal
// matrix of the columns 1, x, ... x^degree (powers by repeated multiplication in f64) is
// inverted by Gauss-Jordan with partial pivoting and the inverse gives the errors. `fitted`
// and `residual` (fitted - y), each of n values, may be null.
//
// With degree + 1 > n only the singular flag is set. A pivot of exactly 0 (or not finite)
// stops the inversion: flag set, coefficients 0, nothing else written. Otherwise every output
// is written, and the flag tells whether the smallest pivot stayed below kPolySingularPivot.
// Answers 0, 1 when singular, -1 after the program error "PolyRegression %d %d" for a degree
// out of range, a negative n or missing arrays.
int PolyRegression(const double* x, const double* y, int n, int degree, double* fitted, double* residual,
                   PolyRegressionStats* stats);
