// Geometry of images: mirror, transpose, quarter and half turns, rotation by an angle set with
// three points, translation by two points, padding to a power of two, and resampling to 128,
// 256 or 512 points. Each command makes a new item behind the current one and makes it current;
// the source stays as it was.
#pragma once

#include <cstdint>

#include "tavrin/image_header.h"

void ImageMirrorX();
void ImageMirrorY();
void TransposeImage();
void RotateImage90();
void RotateImage180();
void RotateImage270();
// Both sides must be below n (256 or 512); the picture is centred on a zero ground and the
// pixel size kept.
void PadToPoints(int n);
// A square resampled copy of n by n; refused when the image is already n by n.
void InterpolateTo(int n);

// The two-step commands. The first half checks the image, shows it when it is not shown
// plain, and starts the point selection; the continuation finishes the command with the
// selection's status word (bit 0 set: every point was set).
void RotateImageA();
int RotateImageA_Continue(int status);
void ImageTranslate();
int ImageTranslate_Continue(int status);

// The points of the two selections, in image pixels: centre, then the two direction points of
// the rotation; start and end of the translation.
extern int16_t RotatePointsX[3], RotatePointsY[3];
extern int16_t TranslatePointsX[2], TranslatePointsY[2];
// The new item of a rotation by an angle between the command and its continuation.
extern ImageHeaderType* RotateHeldItem;

// The source index of result index r * H + c of a quarter turn (W = nx, H = ny), or -1 where
// the formula falls outside the source (only on images that are not square).
int64_t Rotate90Source(int r, int c, int w, int h);
int64_t Rotate270Source(int r, int c, int w, int h);

void ResetGeometryState();
