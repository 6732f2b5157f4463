// The built-in sample data set: deterministic measurements made from documented models, so
// that a new user has data to learn on and tests can check analysis results against the
// truth the models were made from.
//
// Each Make... function makes a new item of the data list behind `after` (the head when null),
// with its pixels or samples and physically sensible header fields, and answers it; on a
// failed allocation it reports the error and answers null, leaving the list as it was.
#pragma once

#include <cstdint>
#include <vector>

#include "tavrin/image_header.h"

// STM topography of a Au(111)-like surface, 512 by 512 pixels over 500 nm by 500 nm:
//   z(x, y) = kTiltX * x + kTiltY * y                        plane tilt (x, y in nm)
//           + kBow * ((x - 250)^2 + (y - 250)^2) / 250^2       bowing of the piezo scanner
//           + kStepHeight * floor((x + 0.35 * y) / kTerraceWidth)   monatomic terraces
//           + row offset of row r (uniform in +-kRowOffset)     feedback jumps between lines
//           + particles: kParticleCount spherical caps of radius kParticleRadius nm and height
//             kParticleHeight nm, centres at least 3 radii apart and 2 radii from the edges
//           + Gaussian noise of standard deviation kNoise
// Heights in nm; the codes span the lowest to the highest height (Zlo to Zhi).
namespace SampleTopography {
constexpr int kSize = 512;
constexpr float kSizeNm = 500.0f;
constexpr double kTiltX = 0.004;          // nm per nm: 2 nm over the frame
constexpr double kTiltY = -0.002;
constexpr double kBow = 0.8;              // nm at the corners' distance
constexpr double kStepHeight = 0.235;     // nm, one atomic step of Au(111)
constexpr double kTerraceWidth = 90.0;    // nm along x
constexpr double kRowOffset = 0.05;       // nm
constexpr int kParticleCount = 24;
constexpr double kParticleRadius = 8.0;   // nm, in the surface plane
constexpr double kParticleHeight = 3.0;   // nm
constexpr double kNoise = 0.02;           // nm
constexpr uint64_t kSeed = 20261122;
} // namespace SampleTopography

// STM image of a hexagonal atomic lattice, 256 by 256 pixels over 6 nm by 6 nm, with lattice
// constant a = kLatticeConstant nm (atoms along 0 and 60 degrees) and a linear drift that
// shears x by kDriftShear * y:
//   z = kCorrugation / 3 * sum over k = 0, 1, 2 of cos(2 pi / (a sqrt(3) / 2) * (u_k . p))
// with p = (x + kDriftShear * y, y) and u_k the unit vectors at 30, 90 and 150 degrees (the
// rows of atoms are a sqrt(3) / 2 apart across each of them), plus Gaussian noise of kNoise nm.
namespace SampleLattice {
constexpr int kSize = 256;
constexpr float kSizeNm = 6.0f;
constexpr double kLatticeConstant = 0.246;   // nm, graphite
constexpr double kDriftShear = 0.03;
constexpr double kCorrugation = 0.02;        // nm
constexpr double kNoise = 0.002;             // nm
constexpr uint64_t kSeed = 246;
} // namespace SampleLattice

// I-V spectrum of a tunnel junction: 256 points of bias from -1 V to +1 V,
//   I(V) = kConductance * (V + kCubic * V^3) nA, plus Gaussian noise of kNoise nA.
namespace SampleIVCurve {
constexpr int kPoints = 256;
constexpr double kConductance = 0.4;   // nA per V
constexpr double kCubic = 1.5;
constexpr double kNoise = 0.002;       // nA
constexpr uint64_t kSeed = 12;
} // namespace SampleIVCurve

// Force curve (approach) of an AFM cantilever: 512 points of sample displacement z from
// 0 to 200 nm. Out of contact (z < kContact) the deflection is 0 V, with a jump-to-contact
// dip of kAdhesion V over the last kAdhesionRange nm; in contact the deflection rises with
// kSlope V per nm. Gaussian noise of kNoise V.
namespace SampleForceCurve {
constexpr int kPoints = 512;
constexpr double kContact = 120.0;       // nm
constexpr double kSlope = 0.05;          // V per nm
constexpr double kAdhesion = -0.3;       // V
constexpr double kAdhesionRange = 5.0;   // nm
constexpr double kNoise = 0.003;         // V
constexpr uint64_t kSeed = 15;
} // namespace SampleForceCurve

// A new image item of n by n pixels behind `after` holding the values z (row 0 first), packed
// to the full code range: Zlo is the lowest value, Zhi the highest (Zlo + 1 when all are
// equal). On a failed allocation the error is reported, null answered and the list left as it
// was.
ImageHeaderType* ImageFromHeights(ImageHeaderType* after, const std::vector<double>& z, int n);
// A new spectrum item behind `after` with the samples (x and y of one length); Zlo and Zhi are
// the lowest and highest y. Failures as above.
ImageHeaderType* SpectrumFromSamples(ImageHeaderType* after, const std::vector<double>& x,
                                     const std::vector<double>& y);

ImageHeaderType* MakeSampleTopography(ImageHeaderType* after);
ImageHeaderType* MakeSampleLattice(ImageHeaderType* after);
ImageHeaderType* MakeSampleIVCurve(ImageHeaderType* after);
ImageHeaderType* MakeSampleForceCurve(ImageHeaderType* after);

// The particle centres (in nm) of the topography model, in the order they were placed.
struct SampleParticle {
    double x;
    double y;
};
void SampleTopographyParticles(SampleParticle out[SampleTopography::kParticleCount]);
