/* Tavrin Processing: geometry of images - mirror, transpose, rotate, translate, pad and
 * resample.
 *
 * Each command works on the current image, makes a new item behind it with the result (drawn
 * row by row into the current frame store), notes the command in the new item's processing
 * history, writes a log line and makes the new item current. The source stays in the list, so
 * dl_PreviousData1 steps back to it. FFT and SPS Mapping images are refused. The two commands
 * that take points (rotation by an angle, translation) finish through the pick mode of
 * dl_selection.h. */
#ifndef TAVRIN_DL_GEOMETRY_H
#define TAVRIN_DL_GEOMETRY_H

#include "tavrin/types.h"

/* Mirror: each row reversed (X), or the row order reversed (Y). */
TAVRIN_API void dl_ImageMirrorX(void);
TAVRIN_API void dl_ImageMirrorY(void);
/* Rows become columns; the physical sizes and scan speeds are exchanged. nx and ny stay, so
 * only a square image comes out as its transpose. */
TAVRIN_API void dl_TransposeImage(void);
/* Quarter and half turns. The quarter turns exchange the physical sizes and scan speeds; on an
 * image that is not square, result pixels whose source falls outside the image are 0. */
TAVRIN_API void dl_RotateImage90(void);
TAVRIN_API void dl_RotateImage180(void);
TAVRIN_API void dl_RotateImage270(void);
/* Rotation by an angle: starts the selection of three points (selection type 1) - the centre,
 * then two points whose directions from it give the angle. The host's pick mode reports the
 * clicks to dl_SelectPointInVFS_Callback, and the last one finishes the command. */
TAVRIN_API void dl_RotateImageA(void);
/* Translation by the vector between two selected points (selection type 7); uncovered pixels
 * are 0, nothing wraps. */
TAVRIN_API void dl_ImageTranslate(void);
/* Centre the image on a zero ground of 256 or 512 points a side, keeping the pixel size; both
 * sides must be below that size. */
TAVRIN_API void dl_PadTo256Points(void);
TAVRIN_API void dl_PadTo512Points(void);
/* A square resampled copy of 128, 256 or 512 points a side. */
TAVRIN_API void dl_Interpolate128(void);
TAVRIN_API void dl_Interpolate256(void);
TAVRIN_API void dl_Interpolate512(void);

#endif
