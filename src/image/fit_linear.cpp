// The dense solver and the line fits.
#include "image/fit.h"
#include "host/errors.h"
#include "store/memory.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

int32_t TruncClampI32(double v)
{
    if (std::isnan(v)) return 0;
    if (v >= 2147483647.0) return std::numeric_limits<int32_t>::max();
    if (v <= -2147483648.0) return std::numeric_limits<int32_t>::min();
    return static_cast<int32_t>(v);
}

int SolveLinearSystem(double* a, double* x, const double* b, int n, int stride, int* status)
{
    auto done = [status](int s) {
        if (status) *status = s;
        return s;
    };
    if (n <= 0) return done(kSolveOk);
    int* pivot = static_cast<int*>(emalloc(sizeof(int) * static_cast<size_t>(n)));
    if (!pivot) {
        Error(ERR_NO_MEMORY);
        return done(kSolveNoMemory);
    }
    auto at = [a, stride](int r, int c) -> double& { return a[static_cast<size_t>(r) * stride + c]; };
    for (int k = 0; k < n - 1; ++k) {
        int p = k;
        double best = std::fabs(at(k, k));
        for (int i = k + 1; i < n; ++i)
            if (std::fabs(at(i, k)) > best) {   // strictly larger: the first row wins a tie
                best = std::fabs(at(i, k));
                p = i;
            }
        if (at(p, k) == 0.0) {
            efree(pivot);
            return done(kSolveSingular);
        }
        pivot[k] = p;
        if (p != k)
            for (int j = 0; j < n; ++j) std::swap(at(k, j), at(p, j));
        for (int i = k + 1; i < n; ++i) {
            const double m = at(i, k) / at(k, k);
            at(i, k) = m;
            if (m == 0.0) continue;
            for (int j = k + 1; j < n; ++j) at(i, j) -= m * at(k, j);
        }
    }
    for (int i = 0; i < n; ++i) x[i] = b[i];
    // The rows were swapped whole, multipliers included (P a = L U): the right side takes all
    // the swaps in pivot order, then forward and back substitution.
    for (int k = 0; k < n - 1; ++k)
        if (pivot[k] != k) std::swap(x[k], x[pivot[k]]);
    for (int k = 0; k < n - 1; ++k) {
        for (int i = k + 1; i < n; ++i)
            if (at(i, k) != 0.0) x[i] -= at(i, k) * x[k];
    }
    for (int i = n - 1; i >= 0; --i) {
        double s = x[i];
        for (int j = i + 1; j < n; ++j) s -= at(i, j) * x[j];
        x[i] = s / at(i, i);
    }
    efree(pivot);
    return done(kSolveOk);
}

int SolveLinearSystemFinite(double* a, double* x, const double* b, int n, int stride)
{
    int status = SolveLinearSystem(a, x, b, n, stride, nullptr);
    if (status != kSolveOk) return status;
    for (int i = 0; i < n; ++i)
        if (!std::isfinite(x[i])) return kSolveSingular;
    return kSolveOk;
}

int FitLineX(const float* x, const float* y, int n, float* slope, float* offset)
{
    if (n < 3 || !x || !y || !slope || !offset) {
        ProgramError("FitLineX %p %p %d", static_cast<const void*>(x), static_cast<const void*>(y), n);
        return 1;
    }
    double sx = 0, sy = 0, sxy = 0, sxx = 0;
    for (int i = 0; i < n; ++i) {
        sx += x[i];
        sy += y[i];
        sxy += static_cast<float>(x[i] * y[i]);
        sxx += static_cast<float>(x[i] * x[i]);
    }
    const auto s = static_cast<float>((sx * sy - n * sxy) / (sx * sx - n * sxx));
    *slope = s;
    *offset = static_cast<float>((sy - static_cast<double>(s) * sx) / n);
    return 0;
}

int FitLineF(const float* in, float* out, int n)
{
    if (n < 3 || !in || !out) {
        ProgramError("FitLineF %p %p %d", static_cast<const void*>(in), static_cast<const void*>(out), n);
        return 1;
    }
    double s0 = 0, s1 = 0;
    for (int i = 0; i < n; ++i) {
        s0 += in[i];
        s1 += static_cast<float>(static_cast<float>(i) * in[i]);
    }
    const double p = (n - 1) / 2.0 * n;
    const double q = (n - 1) / 6.0 * n * (2.0 * n - 1);
    const double b = (s1 * p - q * s0) / (p * p - n * q);
    const double a = (s0 - n * b) / p;
    for (int i = 0; i < n; ++i) out[i] = static_cast<float>(in[i] - (i * a + b));
    return 0;
}

int FitPolyLine(const double* x, const double* y, int n, int d, double* c)
{
    if (!x || !y || !c || n <= 0 || d < 0 || d > 1000) {
        ProgramError("Fit Poly");
        return ERR_PROGRAM;
    }
    for (int k = 0; k <= d; ++k) c[k] = 0.0;
    const size_t terms = static_cast<size_t>(d) + 1;
    auto* moment = static_cast<double*>(ecalloc(2 * terms - 1, sizeof(double)));
    auto* rhs = static_cast<double*>(ecalloc(terms, sizeof(double)));
    auto* solution = static_cast<double*>(ecalloc(terms, sizeof(double)));
    auto* matrix = static_cast<double*>(ecalloc(terms * terms, sizeof(double)));
    int answer = 0;
    if (!moment || !rhs || !solution || !matrix) {
        Error(ERR_NO_MEMORY);
        answer = ERR_NO_MEMORY;
    } else {
        for (int i = 0; i < n; ++i) {
            double power = 1.0;
            rhs[0] += y[i];
            for (int k = 1; k <= 2 * d; ++k) {
                power *= x[i];
                moment[k] += power;
                if (k <= d) rhs[k] += y[i] * power;
            }
        }
        moment[0] = n;
        for (size_t i = 0; i < terms; ++i)
            for (size_t j = 0; j < terms; ++j) matrix[i * terms + j] = moment[i + j];
        const int status = SolveLinearSystemFinite(matrix, solution, rhs, static_cast<int>(terms), static_cast<int>(terms));
        if (status == kSolveOk) {
            std::memcpy(c, solution, terms * sizeof(double));
        } else if (status == kSolveSingular) {
            ProgramError("Fit Poly");
            answer = ERR_PROGRAM;
        } else {
            answer = ERR_NO_MEMORY;
        }
    }
    efree(moment);
    efree(rhs);
    efree(solution);
    efree(matrix);
    return answer;
}
