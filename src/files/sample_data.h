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

// SPS Mapping samples: a topography image with its set. Every image k of a set holds the model
// at the sweep value of its entry, in codes between the set's lowest and highest model value
// (z_low, z_high the same for every image), so that each pixel decodes to the model within one
// code step. Pixel (x, y) is column x, row y.

// I-V mapping, 64 x 64 pixels over 50 nm, 128 bias values from -1 V to +1 V (image k at
// -1 + 2k / 127 V), linear current in nA:
//   I = G (V + kCubic V^3), G = kConductanceA where x + y / 2 < kDomainEdge, else kConductanceB.
// Topography: kDomainStep nm higher on domain B, plus a tilt of kTilt nm per pixel along x.
namespace SampleIVMapping {
constexpr int kSize = 64;
constexpr int kImages = 128;
constexpr float kSizeNm = 50.0f;
constexpr double kLowBias = -1.0, kHighBias = 1.0;   // V
constexpr double kConductanceA = 0.5;                // nA per V
constexpr double kConductanceB = 1.5;
constexpr double kCubic = 1.5;                       // per V^2
constexpr double kDomainEdge = 48.0;                 // pixels
constexpr double kDomainStep = 0.3;                  // nm
constexpr double kTilt = 0.01;                       // nm per pixel
} // namespace SampleIVMapping

// Force-curve mapping, 64 x 64 pixels over 1000 nm, 128 Z displacements: images 0 to 63 approach
// from 0 to kTravel nm, images 64 to 127 retract from kTravel back to 0 (image k at
// kTravel * k / 63, then kTravel * (127 - k) / 63). Force in nN, contact at z_c:
//   approach: F = 0 for z < z_c, kStiffness (z - z_c) from z_c on;
//   retract:  F = kStiffness (z - z_c) for z >= z_c - L (the tip sticks), 0 below z_c - L;
//   pull-off L = kPullOffInside nm within kDiscRadius pixels of (kDiscX, kDiscY), else
//   kPullOffOutside; z_c = kContact, or kContact - kStep where x >= kStepColumn when the sample
//   has its step (the surface is kStep nm higher there, so the tip meets it earlier).
// Topography: 0 nm, or kStep nm where x >= kStepColumn with the step.
// Hit data: threshold 1 (kThreshold nN below zero) is hit at every pixel whose pull-off force
// kStiffness * L exceeds it: hit 1, channel 16, position z_c - L.
namespace SampleForceMapping {
constexpr int kSize = 64;
constexpr int kImages = 128;
constexpr float kSizeNm = 1000.0f;
constexpr double kTravel = 100.0;          // nm
constexpr double kStiffness = 0.5;         // nN per nm
constexpr double kContact = 60.0;          // nm
constexpr double kPullOffOutside = 4.0;    // nm
constexpr double kPullOffInside = 12.0;    // nm
constexpr double kDiscX = 32.0, kDiscY = 32.0, kDiscRadius = 12.0;   // pixels
constexpr double kStep = 10.0;             // nm
constexpr int kStepColumn = 40;
constexpr double kThreshold = 4.0;         // nN of pull-off
} // namespace SampleForceMapping

// F-V mapping, 32 x 32 pixels over 200 nm, 81 bias values from -2 V to +2 V (image k at
// -2 + k / 20 V), force in nN:
//   F = kCurvature (V + V0(x))^2 + kOffset, V0(x) = kV0Left + (kV0Right - kV0Left) x / 31.
// Topography: flat, 0.2 nm higher where x >= 16.
namespace SampleFVMapping {
constexpr int kSize = 32;
constexpr int kImages = 81;
constexpr float kSizeNm = 200.0f;
constexpr double kLowBias = -2.0, kBiasStep = 0.05;   // V
constexpr double kCurvature = 0.2;                   // nN per V^2
constexpr double kOffset = -1.0;                     // nN
constexpr double kV0Left = -0.5, kV0Right = 0.5;     // V
} // namespace SampleFVMapping

// The model values of pixel (x, y) at image k of each set.
double SampleIVMappingValue(int x, int y, int k);
double SampleForceMappingValue(int x, int y, int k, bool step);
double SampleFVMappingValue(int x, int y, int k);
// The sweep value of image k of each set.
double SampleIVMappingBias(int k);
double SampleForceMappingZ(int k);
double SampleFVMappingBias(int k);

ImageHeaderType* MakeSampleIVMapping(ImageHeaderType* after);
ImageHeaderType* MakeSampleForceMapping(ImageHeaderType* after, bool step);
ImageHeaderType* MakeSampleForceMappingWithStep(ImageHeaderType* after);
ImageHeaderType* MakeSampleFVMapping(ImageHeaderType* after);
