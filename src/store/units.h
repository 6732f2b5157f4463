// Physical values and units of an item.
//
// A pixel is an unsigned 16-bit code; Zlo is the value of code 0 and Zhi the value of code
// 65535, in the base unit of the DataSource: nm, nA, V, degrees, or V for forces until the
// cantilever calibration turns them into nN. GetImageDataValue is the one way from a code to a
// value, GetImageUnitStr the one way to its unit text.
//
// A unit prefix is a power-of-ten exponent relative to the base unit, in steps of three from
// -6 to 9. Any other exponent is reported as a program error, and the unit text is empty.
#pragma once

#include <cstdint>

#include "tavrin/image_header.h"

// The unit families. UnitsZ and UnitsI take the caller's style flag; both styles give the same
// text. The force, amplitude and friction families read the switches of the calibration in
// force: enabled they name newtons; disabled, volts (friction one step lower).
const char* UnitsZ(int exponent, int style);
const char* UnitsI(int exponent, int style);
const char* UnitsV(int exponent);
const char* UnitsForce(int exponent);
const char* UnitsRMS(int exponent);
const char* UnitsFriction(int exponent);
const char* UnitsDegrees(int exponent);

// The suffix of a square unit in the locale class of the system.
const char* AreaUnits();

// A value of a force, friction or amplitude channel in volts through the calibration in force.
double CalibratedForce(double volts);
double CalibratedFriction(double volts);
double CalibratedAmplitude(double volts);

// An LIA1 channel of a force mapping whose twist fields are set: it converts to a force.
bool IsTwistForceItem(const ImageHeaderType* record);

// The linear decoding of a pixel code between the values of codes 0 and 65535, in f32 as every
// linear scale of the library computes it: code * (high - low) / 65535 + low.
inline float LinearCodeValue(float code, float low, float high) { return code * (high - low) / 65535.0f + low; }
// The physical value of a pixel code (a fraction between codes is allowed). With `calibrated`
// set, the value is converted further by the cantilever calibration.
float GetImageDataValue(int calibrated, float code, const ImageHeaderType* record);
// Direction 0: from the stored value to the calibrated one; non-zero: back.
double ImageDataValue2Calibrated(const ImageHeaderType* record, double value, int direction);
// The calibrated value of one pixel of the record's pixels.
float GetImagePointValue(int x, int y, const ImageHeaderType* record);
// The unit text of the record's values at that exponent; `style` goes to UnitsZ and UnitsI.
const char* GetImageUnitStr(const ImageHeaderType* record, int exponent, int style);
