// Force curves of a rigid sphere on an adhesive elastic sample, and mappings made of them, for
// the elastic modulus tests.
//
// Adhesive contact (JKR) of a sphere of radius R on a sample of modulus E and Poisson ratio nu
// with work of adhesion w, K = 4/3 E / (1 - nu^2), at contact radius a:
//   F(a) = K a^3 / R - sqrt(6 pi w K a^3)        delta(a) = a^2 / R - 2/3 sqrt(6 pi w a / K)
// The cantilever (spring constant k) holds the sphere at deflection D = F / k; with the base at
// X (nm) above the point where the undeformed surface meets the free tip, X0 - X = delta + D.
// Units: nm, nN, nN/nm (1 N/m), nN/nm^2 (1 GPa = 1 nN/nm^2).
// Approach (X falling): free (D = 0) down to X0, then on the contact branch. Retract (X rising):
// on the branch up to its last stable point (X largest), then free. The signal is
// sensitivity * D volts.
#pragma once

#include "test_mapping_support.h"

#include <cmath>
#include <functional>
#include <vector>

namespace elastictest {

struct Contact {
    double E = 0.005;      // nN/nm^2 (5 MPa)
    double nu = 0.3;
    double R = 20.0;       // nm
    double w = 0.05;       // nN/nm (0.05 N/m)
    double k = 1.0;        // nN/nm
    double X0 = 60.0;      // nm
    double sensitivity = 0.05;   // V/nm

    double K() const { return 4.0 / 3.0 * E / (1.0 - nu * nu); }
    double Force(double a) const { return K() * a * a * a / R - std::sqrt(6.0 * M_PI * w * K() * a * a * a); }
    double Delta(double a) const { return a * a / R - 2.0 / 3.0 * std::sqrt(6.0 * M_PI * w * a / K()); }
    double X(double a) const { return X0 - Delta(a) - Force(a) / k; }
    // The pull-off force of the contact, -3/2 pi w R.
    double PullOff() const { return -1.5 * M_PI * w * R; }

    // The last stable contact radius: where X(a) is largest.
    double JumpRadius() const
    {
        double lo = 1e-6, hi = 1000.0;
        for (int i = 0; i < 200; ++i) {
            const double m1 = lo + (hi - lo) / 3, m2 = hi - (hi - lo) / 3;
            if (X(m1) < X(m2)) lo = m1;
            else hi = m2;
        }
        return (lo + hi) / 2;
    }
    // The deflection (nm) on the branch at base position x (X(a) falls as a grows past the jump).
    double BranchDeflection(double x) const
    {
        double lo = JumpRadius(), hi = lo;
        while (X(hi) > x) hi *= 2;
        for (int i = 0; i < 200; ++i) {
            const double mid = (lo + hi) / 2;
            if (X(mid) > x) lo = mid;
            else hi = mid;
        }
        return Force((lo + hi) / 2) / k;
    }
    double Signal(double x, bool approach) const
    {
        const double limit = approach ? X0 : X(JumpRadius());
        return x < limit ? sensitivity * BranchDeflection(x) : 0.0;
    }
};

// The X of point i of a curve of two ramps of `half` points over 0 to `travel`: Out->In first.
inline double RampX(int i, int half, double travel)
{
    return i < half ? travel * (half - 1 - i) / (half - 1) : travel * (i - half) / (half - 1);
}

// A mapping image of n by n pixels and 2 * half images, current, whose pixel (x, y) holds the
// signal signal(x, y, X, approach) at image k (X = RampX(k)); the codes of every image span the
// lowest to the highest signal of the whole set.
inline ImageHeaderType* MakeForceMap(int n, int half, double travel,
                                     const std::function<double(int, int, double, bool)>& signal)
{
    const int ni = 2 * half;
    ImageHeaderType* image = maptest::MakeMappingImage(n, ni);
    if (!image) return nullptr;
    std::vector<double> values(static_cast<size_t>(ni) * n * n);
    double lo = 0.0, hi = 0.0;
    for (int k = 0; k < ni; ++k)
        for (int i = 0; i < n * n; ++i) {
            const double v = signal(i % n, i / n, RampX(k, half, travel), k < half);
            values[static_cast<size_t>(k) * n * n + i] = v;
            lo = std::min(lo, v);
            hi = std::max(hi, v);
        }
    lo -= 0.01;
    hi += 0.01;
    CITSHeaderType* set = image->CITSHeaderPtr;
    for (int k = 0; k < ni; ++k) {
        CITSImageEntryType* e = CITSEntry(set, k);
        e->voltage = static_cast<float>(RampX(k, half, travel));
        e->z_low = static_cast<float>(lo);
        e->z_high = static_cast<float>(hi);
        uint16_t* p = CITSPixels(e);
        for (int i = 0; i < n * n; ++i)
            p[i] = static_cast<uint16_t>(std::lround((values[static_cast<size_t>(k) * n * n + i] - lo) / (hi - lo) * 65535.0));
    }
    CurrentItem = image;
    return image;
}

// The reference curve on a hard sample: sensitivity * (X0 - X) in contact, 0 out of it.
inline void HardCurve(int half, double travel, double X0, double sensitivity, std::vector<double>* x,
                      std::vector<double>* y)
{
    for (int i = 0; i < 2 * half; ++i) {
        const double X = RampX(i, half, travel);
        x->push_back(X);
        y->push_back(X < X0 ? sensitivity * (X0 - X) : 0.0);
    }
}

} // namespace elastictest
