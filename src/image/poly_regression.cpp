#include "image/poly_regression.h"
#include "host/errors.h"

#include <cmath>
#include <cstring>

namespace {

constexpr int kMaxTerms = kMaxFitDegree + 1;

// Inverts the m by m matrix `a` (destroyed) into `inverse` by Gauss-Jordan elimination with
// partial pivoting, and the right side `b` into the solution alongside. Answers the smallest
// |pivot|, or 0 when a pivot is 0 or not finite (the outputs are then partial).
double InvertAndSolve(double (&a)[kMaxTerms][kMaxTerms], double (&inverse)[kMaxTerms][kMaxTerms], double* b, int m)
{
    for (int i = 0; i < m; ++i)
        for (int j = 0; j < m; ++j) inverse[i][j] = i == j ? 1.0 : 0.0;
    double smallest = INFINITY;
    for (int col = 0; col < m; ++col) {
        int best = col;
        for (int r = col + 1; r < m; ++r)
            if (std::fabs(a[r][col]) > std::fabs(a[best][col])) best = r;
        const double pivot = a[best][col];
        if (pivot == 0.0 || !std::isfinite(pivot)) return 0.0;
        if (best != col) {
            for (int j = 0; j < m; ++j) {
                std::swap(a[best][j], a[col][j]);
                std::swap(inverse[best][j], inverse[col][j]);
            }
            std::swap(b[best], b[col]);
        }
        smallest = std::fmin(smallest, std::fabs(pivot));
        const double scale = 1.0 / pivot;
        for (int j = 0; j < m; ++j) {
            a[col][j] *= scale;
            inverse[col][j] *= scale;
        }
        b[col] *= scale;
        for (int r = 0; r < m; ++r) {
            if (r == col) continue;
            const double f = a[r][col];
            if (f == 0.0) continue;
            for (int j = 0; j < m; ++j) {
                a[r][j] -= f * a[col][j];
                inverse[r][j] -= f * inverse[col][j];
            }
            b[r] -= f * b[col];
        }
    }
    return smallest;
}

} // namespace

int PolyRegression(const double* x, const double* y, int n, int degree, double* fitted, double* residual,
                   PolyRegressionStats* stats)
{
    if (!x || !y || !stats || n < 0 || degree < 1 || degree > kMaxFitDegree) {
        ProgramError("PolyRegression %d %d", n, degree);
        return -1;
    }
    std::memset(stats, 0, sizeof *stats);
    const int m = degree + 1;
    if (m > n) {
        stats->singular = 1;
        return 1;
    }

    // The normal matrix and the right side, one point at a time. The columns of a point are its
    // powers, each the last times x; entry (j, k) of the normal matrix is the sum of the powers
    // j + k, so the 2 * degree + 1 sums of powers make the whole matrix.
    double power[2 * kMaxTerms - 1] = {};
    double b[kMaxTerms] = {};
    double sy = 0.0, syy = 0.0;
    const int top = 2 * degree;
    for (int i = 0; i < n; ++i) {
        const double xi = x[i], yi = y[i];
        double p = 1.0;
        for (int k = 0; k < m; ++k) {
            power[k] += p;
            b[k] += p * yi;
            p *= xi;
        }
        for (int k = m; k <= top; ++k) {
            power[k] += p;
            p *= xi;
        }
        sy += yi;
        syy += yi * yi;
    }
    double a[kMaxTerms][kMaxTerms];
    for (int j = 0; j < m; ++j)
        for (int k = 0; k < m; ++k) a[j][k] = power[j + k];

    double inverse[kMaxTerms][kMaxTerms];
    const double smallest = InvertAndSolve(a, inverse, b, m);
    if (smallest == 0.0) {
        stats->singular = 1;
        return 1;
    }
    for (int j = 0; j < m; ++j) stats->coefficients[j] = b[j];

    double sse = 0.0;
    for (int i = 0; i < n; ++i) {
        // Horner's rule for the value of the polynomial.
        double f = stats->coefficients[degree];
        for (int j = degree - 1; j >= 0; --j) f = f * x[i] + stats->coefficients[j];
        const double r = f - y[i];
        if (fitted) fitted[i] = f;
        if (residual) residual[i] = r;
        sse += r * r;
    }
    const int dof = n - m;
    stats->stddev = std::sqrt(std::fabs(sse / (dof > 0 ? dof : 1)));
    for (int j = 0; j < m; ++j) stats->errors[j] = std::sqrt(std::fabs(inverse[j][j])) * stats->stddev;
    const double r2 = 1.0 - sse / (syy - sy * sy / n);
    stats->correlation = std::sqrt(std::fabs(r2));
    stats->smallestPivot = smallest;
    stats->singular = smallest < kPolySingularPivot ? 1 : 0;
    return stats->singular;
}
