// Elastic modulus from a force-curve mapping: the ramp split, the sensitivity and contact point
// of one curve, and the stages of the dialog over a whole mapping.
//
// X of a curve is the displacement, Y the cantilever signal. A curve holds two ramps: Out->In
// (direction 0), where X falls, and In->Out (direction 1), where X rises. In contact the signal
// falls as X rises; out of contact it is flat.
#pragma once

#include <cstdint>

#include "tavrin/dl_elastic_modulus.h"

// One pixel of the point table, 71 bytes.
#pragma pack(push, 1)
struct ElasticPointType {
    uint8_t Valid1;      //  0: passed Apply 1
    uint8_t Valid2;      //  1: passed Apply 2
    int32_t n;           //  2: usable points of the whole curve
    int32_t n1;          //  6: points of the In->Out half
    float Z0;            // 10: displacement of the force minimum
    float Fv0;           // 14: signal there
    float Zc;            // 18: mean displacement where the free line crosses the curve
    float Fv1;           // 22: mean line value at those crossings
    float m;             // 26: slope of the free line
    float c;             // 30: its intercept
    float ContactIO;     // 34: contact point of In->Out
    float ContactOI;     // 38: contact point of Out->In
    float Def0;          // 42: deflection at the force minimum
    float ZcIO;          // 46: crossing on the In->Out ramp
    uint8_t Ret;         // 50: the deflection conversion ran
    int32_t n_deform;    // 51: points of the force-deformation curve
    float d0;            // 55: deformation at zero force
    float d1;            // 59: deformation at the force minimum
    float F1;            // 63: force at the minimum (negative: adhesion)
    float ElasticMod;    // 67: result
};
#pragma pack(pop)
static_assert(sizeof(ElasticPointType) == 71, "a point of the table is 71 bytes");
static_assert(offsetof(ElasticPointType, Ret) == 50, "Ret");
static_assert(offsetof(ElasticPointType, n_deform) == 51, "n_deform");
static_assert(offsetof(ElasticPointType, ElasticMod) == 67, "ElasticMod");

constexpr int kElasticTableSize = 512;   // rows and columns of the point table

// The library's one elastic modulus object.
struct ElasticModulusState {
    ElasticPointType* Table = nullptr;   // kElasticTableSize^2 points, row y, column x
    float* XDeflec = nullptr;            // cx * cy * ni values each, one curve per pixel
    float* YDeflec = nullptr;
    float* XForce = nullptr;
    float* YForce = nullptr;
    float Minimum = 0.0f, Maximum = 0.0f, Average = 0.0f;
    bool CalcDone = false, Apply1Done = false, Apply2Done = false, Apply3Done = false;
    int cx = 0, cy = 0, ni = 0;          // size of the mapping behind the arrays and table
    wint_ElasticModulusType Param{};
    int32_t FCNumber = -1;               // data list number of the reference curve, -1 none
    uint32_t FCDataId = 0;               // DataId of that curve, to find it again
};
ElasticModulusState& ElasticModulus();

// The record's built-in values.
void DefaultElasticModulusParam(wint_ElasticModulusType* param);
// Every point of the table back to zero (the table is taken on first use and kept).
void ResetElasticTable();
// Frees the four arrays.
void FreeElasticArrays();
// The object back to its start: built-in record, no stage, no reference curve.
void ResetElasticModulus();

// The index of the turn of a ramp of n X values: the first i whose step x[i] - x[i - 1] has
// another sign than the first step, provided the first step is not zero, no later step has
// the first step's sign, and |t - n / 2| / n is at most 0.25. 0 otherwise.
int RampTurnPoint(const float* x, int n);
// The points cut from each side of the turn for a saturated signal there: the number of equal
// pairs y[t - 1 - k] = y[t + k] from k = 0, provided both neighbours of the turn repeat their
// values and the run ends with t - 1 - k >= 2 and t + k < n - 1; 0 otherwise.
int RampPlateau(const float* x, const float* y, int n);
// The points of one ramp (direction 0 Out->In, 1 In->Out) as a range [*first, *first + *count)
// of the curve, with the points of an X above `limit` cut from both ends. False for fewer
// than 100 points, no turn, or fewer than 50 points left.
bool SplitRamp(const float* x, const float* y, int n, int direction, double limit, int* first, int* count);

// The sensitivity of one ramp: the negative mean derivative (window `smooth`) of its contact
// part, with the points ordered by rising X. 0 with *slope set; 1 when the contact part is
// under 10 points, 2 when it is under 10 points after its tail is cut; -1 when the ramp cannot
// be split or the derivative fails.
int CalculateSlope(const float* x, const float* y, int n, int direction, int smooth, double limit, double* slope);
// The contact point of one ramp, in the order of the curve: from the largest derivative dY/dX
// (which must be positive) back to the last point before it where the derivative is negative,
// if there is one before the first point; its X into *z. 0, or 1. On In->Out that is the
// force minimum before the pull-off; on Out->In, whose walk back runs into the free part, the
// snap-in itself.
int CalculateContactPoint(const float* x, const float* y, int n, int direction, int smooth, double limit, float* z);

// Apply 1 of one pixel whose curve (In->Out points, then Out->In, n and n1 set in the point) is
// in x, y: the contact points, the free line, the force minimum, the conversion of y to
// deflection and the crossing ZcIO; Valid1 set when all were found. 0, or 1 when the stored
// curve cannot be split again (Apply 1 then ends).
int ConvertPixelToDeflection(float* x, float* y, ElasticPointType* point);
// Apply 2 of one pixel: the force-deformation curve of its In->Out ramp up to its contact point,
// sorted by deformation, into the two arrays; d0, d1, F1 and Valid2.
void DeformPixel(const float* x, const float* y, int n, ElasticPointType* point, float* deformation, float* force);
// The modulus of one pixel from d0, d1, F1 and the record's tip radius and Poisson ratio; 0.0
// for a pixel without Valid2.
double ElasticModulusOfPoint(const ElasticPointType& point);

// The stages over the current mapping image: 0 on success, 1 after a report, 2 when the user
// cancelled.
int ElasticModulusApply1();
int ElasticModulusApply2();
int ElasticModulusApply3();

// The entry points of the dialog.
int32_t ElasticModulusSelectFC(char* text);
int32_t ElasticModulusCalculate();
// Stage 1, 2 or 3: -1 without the earlier stages, else the stage's result; its flag is set
// when the result is 0.
int32_t ElasticModulusApply(int stage);
void ElasticModulusCloseDlg();

// The dialog record.
int32_t GetElasticModulusParam(wint_ElasticModulusType* param);
int32_t SetElasticModulusParam(wint_ElasticModulusType* param);
