// Quadratic Savitzky-Golay derivatives at the centre of 2m + 3 points.
//
// First derivative: the weights are the offsets j - (m + 1) themselves, over twice the sum of
// the squares 1 to (m + 1)^2. Second derivative: with M = m + 1 the weights 3 j^2 - M (M + 1)
// (j from -M to M), divided by their greatest common divisor, give the published integer
// tables (2 -1 -2 -1 2 over 7 for 5 points) with the normalisers below.
#include "spectro/spectro.h"

#include <cstdlib>
#include <numeric>

namespace {

constexpr int kMaxM = 11;
constexpr int kMaxPoints = 2 * kMaxM + 3;
constexpr int32_t kSecondNormaliser[kMaxM] = {7, 42, 462, 429, 1001, 6188, 3876, 6783, 33649, 17710, 26910};

struct SecondTables {
    int32_t c[kMaxM][kMaxPoints];
    SecondTables()
    {
        for (int m = 1; m <= kMaxM; ++m) {
            const int M = m + 1;
            int32_t divisor = 0;
            for (int j = -M; j <= M; ++j) divisor = std::gcd(divisor, std::abs(3 * j * j - M * (M + 1)));
            for (int j = -M; j <= M; ++j) c[m - 1][j + M] = (3 * j * j - M * (M + 1)) / (divisor ? divisor : 1);
        }
    }
};

const SecondTables& Tables()
{
    static const SecondTables tables;
    return tables;
}

} // namespace

int32_t SavitzkyGolayFirstDivisor(int m)
{
    if (m < 1 || m > kMaxM) return 0;
    int32_t sum = 0;
    for (int k = 1; k <= m + 1; ++k) sum += k * k;
    return 2 * sum;
}

const int32_t* SavitzkyGolaySecondCoefficients(int m)
{
    if (m < 1 || m > kMaxM) return nullptr;
    return Tables().c[m - 1];
}

int32_t SavitzkyGolaySecondNormaliser(int m) { return m < 1 || m > kMaxM ? 0 : kSecondNormaliser[m - 1]; }

float SavitzkyGolay(const float* p, int order, int m)
{
    if (!p || m < 1 || m > kMaxM) return 0.0f;
    float sum = 0.0f;
    if (order == 1) {
        for (int j = 0; j <= 2 * m + 2; ++j) sum += static_cast<float>(j - (m + 1)) * p[j];
        return sum / static_cast<float>(SavitzkyGolayFirstDivisor(m));
    }
    if (order == 2) {
        const int32_t* c = SavitzkyGolaySecondCoefficients(m);
        for (int j = 0; j <= 2 * m + 2; ++j) sum += static_cast<float>(c[j]) * p[j];
        return sum / static_cast<float>(SavitzkyGolaySecondNormaliser(m));
    }
    return 0.0f;
}
