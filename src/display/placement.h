// Placing images in the current frame store: the placement cursor, the outline of the image
// rectangle, and the display of one image item.
//
// Images are placed left to right in rows, from the top left corner. An image that does not fit
// in the rest of a row starts the next row, below the tallest image of the row; one that does
// not fit below the last row starts again at the top left, over what stands there.
#pragma once

#include <cstdint>

#include "tavrin/image_header.h"

// Palette indices of the outline of the image just placed and of the images before it.
constexpr int kOutlineCurrentColour = 17;
constexpr int kOutlineFormerColour = 16;
// With the lower frame edge off, no image starts at or below this row.
constexpr int kLowerFrameEdge = 480;

// The global text switch: whether showing an item writes its parameter text.
extern int ParameterTextSwitch;
// The setting for the lower frame edge: on, images may start in the last 32 rows.
extern bool LowerFrameEdgeOn;

// Shows an image item at the placement cursor, in one batch: the rows, the outline, the
// contents grid, and at the end the changed rectangle to the host. An item that is no image
// (or has no pixels) is refused with 33536 "No images in memory". `withText` sets the text
// switch for the time of the call.
void DisplayImage(ImageHeaderType* image, int allowMapping, int withText);

// The view of an item with a mapping set when a display allows it (the sheet of the mapping
// module); without one the topography shows. Answers the view it replaces.
using MappingView = void (*)(ImageHeaderType* image);
MappingView SetMappingView(MappingView view);

// Before the rows of an image of nx by ny points: the display mode, the frame size, the place
// (wrapping to the next row or to the top), the erase of the vector items under the new
// rectangle, the former outline in colour 16, and the start of the row writer.
void PrepareImageDisplay(int nx, int ny, int isColour, const ImageHeaderType* image);
// The rows of `image` placed at the cursor in one batch, with the look (colour or grey, the
// record the placement reads) of `look`, and the frame store's contents set to `image`.
void PlaceImageRows(const ImageHeaderType* look, ImageHeaderType* image);

// The row display of a command's result, in the order a command works: begin (a batch, the
// place at the cursor, the start of the row writer) with the size of the rows and the look of
// `look` (its ColourImage word and record), one row shown as soon as it is computed, finish
// (outline, cursor, caption), the region registered as the item's with the fresh-image flag,
// and the batch ended, which hands the changed rectangle to the host.
void BeginRowDisplay(int width, int height, const ImageHeaderType* look);
void ShowDisplayRow(int line, const uint16_t* data);
void FinishRowDisplay(int width, int height);
void RegisterImageRegion(ImageHeaderType* image);
void EndRowDisplay();
// After the rows: the outline of the new rectangle in colour 17, the cursor moved on, the row
// height raised, the data size kept, then caption and scale bars.
void FinishImageDisplay(int nx, int ny);
// Keeps the rectangle as the image rectangle and draws its outline as four display list lines
// with the batch depth at 0 (the depth is put back), when no outline is drawn yet and the
// rectangle is not empty. Without user interface the colour is 16 and the batch stays.
void DrawImageFrame(int left, int top, int right, int bottom, int colour);

// The row writer and the things drawn around an image (placement_rows.cpp).
// Start of an image: the scale factors, the start of the row writer, the palette.
void StartImageRows(int nx, int ny, int isColour, const ImageHeaderType* image);
// One row of the image: `line` the row (-1: start of an image), `data` its codes, `xs` the first
// point, `n` the count, `vertDisp` set for a display by columns.
void DisplayImageDataTypeLine1(int line, const uint16_t* data, int xs, int n, int vertDisp);
// The caption and scale bars of the image just placed at (x0, y0).
void DrawImageCaptionAndBars(int x0, int y0);
// The parameter text of an item in the host's text panel.
void ShowParameterText(const ImageHeaderType* image);

void ResetPlacementState();
