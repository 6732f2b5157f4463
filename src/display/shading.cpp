#include "display/shading.h"
#include "display/default_tables.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double kRadiansPerDegree = 3.14159265358979323846 / 180.0;

} // namespace

void BuildShadingTable(uint8_t table[kShadingEntries], float polarDegrees, float azimuthDegrees, int ambient,
                       int diffuse)
{
    const double polar = polarDegrees * kRadiansPerDegree, azimuth = azimuthDegrees * kRadiansPerDegree;
    const double lx = std::sin(polar) * std::cos(azimuth);
    const double ly = std::sin(polar) * std::sin(azimuth);
    const double lz = std::cos(polar);
    for (int i = 0; i < kShadingEntries; ++i) {
        const int a = i % kShadingSlopeSteps - kShadingSlopeCentre;
        const int b = i / kShadingSlopeSteps - kShadingSlopeCentre;
        const double d = a * lx + b * ly + lz;
        const double s = d > 0 ? d / (a * a + 1 + b * b) * diffuse * d : 0.0;
        // Truncated; the sum is kept within the levels, whatever the settings hold.
        const double sum = std::trunc(s) + ambient;
        const int v = static_cast<int>(std::clamp(sum, 0.0, 255.0));
        table[i] = static_cast<uint8_t>(v / 2 + kRampFirst);
    }
}
