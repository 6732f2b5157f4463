// The polynomial regression kernel against known polynomials and numpy's least squares.
#include <gtest/gtest.h>

#include "image/poly_regression.h"

#include <cmath>
#include <vector>

namespace {

struct Curve {
    std::vector<double> x, y;
};

// x from -1 to 1 over n points and y of the cubic c0 + c1 x + c2 x^2 + c3 x^3 plus `noise` times
// sin(0.37 i^2), the deterministic noise that tests/reference/poly_regression_numpy.py repeats.
Curve Cubic(int n, const double (&c)[4], double noise)
{
    Curve k;
    for (int i = 0; i < n; ++i) {
        const double x = -1.0 + 2.0 * i / (n - 1);
        k.x.push_back(x);
        k.y.push_back(c[0] + c[1] * x + c[2] * x * x + c[3] * x * x * x + noise * std::sin(0.37 * i * i));
    }
    return k;
}

} // namespace

TEST(PolyRegressionTest, RecoversAnExactCubic)
{
    const double c[4] = {0.3, -1.2, 0.7, 2.1};
    const Curve k = Cubic(64, c, 0.0);
    std::vector<double> fitted(64), residual(64);
    PolyRegressionStats s;
    EXPECT_EQ(PolyRegression(k.x.data(), k.y.data(), 64, 3, fitted.data(), residual.data(), &s), 0);
    for (int j = 0; j < 4; ++j) EXPECT_NEAR(s.coefficients[j], c[j], 1e-10) << j;
    for (int i = 0; i < 64; ++i) {
        EXPECT_NEAR(fitted[i], k.y[i], 1e-10);
        EXPECT_DOUBLE_EQ(residual[i], fitted[i] - k.y[i]);
    }
    EXPECT_LT(s.stddev, 1e-12);
    EXPECT_NEAR(s.correlation, 1.0, 1e-12);
    EXPECT_EQ(s.singular, 0);
}

TEST(PolyRegressionTest, NoisyCubicMatchesNumpyCovariance)
{
    // From tests/reference/poly_regression_numpy.py (numpy 1.24.2): lstsq coefficients, the
    // residual standard deviation over n - 4 and sqrt(diag(inv(V^T V)) * s^2).
    const double numpyCoefficients[4] = {0.30917286376109188, -1.191180231901934, 0.68888808158494008,
                                         2.0887001897080029};
    const double numpyStddev = 0.033923951043913145;
    const double numpyErrors[4] = {0.0050637527154124076, 0.014477560361843177, 0.011101603356852771,
                                   0.021685466369598616};
    const double c[4] = {0.3, -1.2, 0.7, 2.1};
    const Curve k = Cubic(101, c, 0.05);
    PolyRegressionStats s;
    EXPECT_EQ(PolyRegression(k.x.data(), k.y.data(), 101, 3, nullptr, nullptr, &s), 0);
    for (int j = 0; j < 4; ++j) {
        EXPECT_NEAR(s.coefficients[j], numpyCoefficients[j], 1e-9) << j;
        EXPECT_NEAR(s.errors[j], numpyErrors[j], 1e-6) << j;
    }
    EXPECT_NEAR(s.stddev, numpyStddev, 1e-9);
    // The standard deviation of the noise itself, computed here.
    double sum = 0, sum2 = 0;
    for (int i = 0; i < 101; ++i) {
        const double e = 0.05 * std::sin(0.37 * i * i);
        sum += e;
        sum2 += e * e;
    }
    const double noiseStd = std::sqrt(sum2 / 101 - (sum / 101) * (sum / 101));
    EXPECT_NEAR(s.stddev, noiseStd, 0.2 * noiseStd);
    EXPECT_GT(s.correlation, 0.99);
    EXPECT_LT(s.correlation, 1.0);
}

TEST(PolyRegressionTest, DegreeAboveThePointsOnlySetsTheFlag)
{
    const double c[4] = {1, 2, 3, 4};
    const Curve k = Cubic(10, c, 0.0);
    std::vector<double> fitted(10, -5.0);
    PolyRegressionStats s;
    s.stddev = 77.0;
    EXPECT_EQ(PolyRegression(k.x.data(), k.y.data(), 10, 19, fitted.data(), nullptr, &s), 1);
    EXPECT_EQ(s.singular, 1);
    EXPECT_EQ(s.stddev, 0.0);
    EXPECT_EQ(s.coefficients[0], 0.0);
    EXPECT_EQ(fitted, std::vector<double>(10, -5.0));
}

TEST(PolyRegressionTest, ExactlyDegreePlusOnePointsUseTheDivisorOne)
{
    const double x[3] = {0, 1, 2}, y[3] = {1, 3, 7};   // 1 + x + x^2
    PolyRegressionStats s;
    EXPECT_EQ(PolyRegression(x, y, 3, 2, nullptr, nullptr, &s), 0);
    EXPECT_NEAR(s.coefficients[0], 1.0, 1e-12);
    EXPECT_NEAR(s.coefficients[1], 1.0, 1e-12);
    EXPECT_NEAR(s.coefficients[2], 1.0, 1e-12);
    EXPECT_LT(s.stddev, 1e-12);
    EXPECT_EQ(s.singular, 0);
}

TEST(PolyRegressionTest, SmallPivotSetsTheSingularFlag)
{
    // All abscissae within 1e-3 of each other: the x^2 column is almost x times a constant.
    std::vector<double> x, y;
    for (int i = 0; i < 20; ++i) {
        x.push_back(1e-3 * i / 19.0);
        y.push_back(i);
    }
    PolyRegressionStats s;
    EXPECT_EQ(PolyRegression(x.data(), y.data(), 20, 2, nullptr, nullptr, &s), 1);
    EXPECT_LT(s.smallestPivot, kPolySingularPivot);
}

TEST(PolyRegressionTest, AllEqualAbscissaeStopAtTheZeroPivot)
{
    const double x[5] = {2, 2, 2, 2, 2}, y[5] = {1, 2, 3, 4, 5};
    PolyRegressionStats s;
    EXPECT_EQ(PolyRegression(x, y, 5, 1, nullptr, nullptr, &s), 1);
    EXPECT_EQ(s.coefficients[0], 0.0);
    EXPECT_EQ(s.coefficients[1], 0.0);
}

TEST(PolyRegressionTest, NaNInputsSetTheFlagWithoutACrash)
{
    const double x[4] = {0, 1, NAN, 3}, y[4] = {1, 2, 3, 4};
    PolyRegressionStats s;
    EXPECT_EQ(PolyRegression(x, y, 4, 1, nullptr, nullptr, &s), 1);
}
