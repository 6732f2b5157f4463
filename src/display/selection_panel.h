// The "Cursor Information" panel of a point selection: the point being set, the position, the
// physical height under the cursor, and the size or angle of what is selected so far.
#pragma once

#include <cstdint>

#include "tavrin/ap_callbacks.h"

constexpr int kPanelRows = 7;
constexpr int kPanelColumns = 60;
// At most this many point pairs are listed from row 5 on.
constexpr int kPanelPairs = 4;

// Clears the panel, or opens it (7 rows, 60 columns, the host's default place).
void OpenSelectionPanel();
void CloseSelectionPanel();
void ClearSelectionPanel();
TextWindowHandle SelectionPanel();

// Writes the panel for the event at position (x, y) from the corner of the bounds; the points
// set so far are in the selection state. Positions, sizes and angles are in image pixels.
void WriteSelectionPanel(int x, int y);

// The list of selected point pairs shown from row 5 on (0 to 4 pairs, image pixels): "%d:(%d,%d)"
// and "-(%d,%d)", 1-based, wrapping before a row of 58 characters would run over.
void SetPanelPointPairs(const int16_t* xs, const int16_t* ys, int pairs);

// Corrects (x, y), the second point of a two-point selection, so that the rectangle from point
// 0 is a physical square: the height follows the width by the pixel sizes of the image.
void ForceSquare(const int16_t* xs, const int16_t* ys, int* x, int* y);

void ResetSelectionPanel();
