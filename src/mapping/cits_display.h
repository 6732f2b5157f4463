// Showing an SPS Mapping set in the frame store: the sheet of small frames, one image of the set
// large with its text block, the paged browser and the rapid replay, and the display block of
// the set as the host exchanges it.
//
// The state of the sheet lies in the set's own display block (disp), so it travels with the
// file. Everything draws a row at a time into the current frame store inside one batch.
#pragma once

#include <cstdint>

#include "mapping/cits.h"
#include "tavrin/ap_callbacks.h"

// A frame that shows nothing, and the frame of the topography image.
constexpr int kCITSBlankFrame = -32768;
constexpr int kCITSTopographyFrame = -1;
// Sweep step used for a blank denominator: an integer division by it gives 0 for any frame.
constexpr int kCITSNoStep = 99999;
// Palette: image levels start at 35; the grid is drawn in 32, labels in 18 (text 6), the replay
// outline in 17.
constexpr int kCITSLevelBase = 35;
constexpr int kCITSGridColour = 32;
constexpr int kCITSLabelColour = 18;
constexpr int kCITSLabelTextColour = 6;
// Select type of the paged browser's pointer, slider id of the replay.
constexpr int kCITSPagedSelectType = 20;
constexpr int kCITSReplaySliderId = 117;

// ---- which image a frame shows ----

// The image of frame f of a sheet: an index, kCITSTopographyFrame, or kCITSBlankFrame.
int CITSDispImageNo(int f, int ni, const CITSDispBlockType* disp);

// ---- the sheet ----

// The layout that the sheet of a set takes, as steps 3 to 7 of the drawing find it (with disp.n
// limited and stored back). ok is false when the drawing ends at the shrink or count test.
struct CITSSheetLayout {
    int frameSize;    // S
    int shrink;       // nx / S
    int shift;        // log2 of shrink
    int frames;       // F
    int width;        // W
    int height;       // H
    bool ok;
};
CITSSheetLayout CITSSheetLayoutOf(ImageHeaderType* image, int d64_128);

// Draws the sheet of the image's set at the placement cursor. d64_128: 0 chooses the frame size
// from disp.n, 64 or 128 fixes it.
void DisplayCITSDataSet1(ImageHeaderType* image, int d64_128);

// The physical value of a pixel of one image as the sheet reads it: the set's decoding, or 0.0
// for an image without decoding (reported once per frame, not per pixel).
struct CITSPixelDecoder {
    const CITSImageEntryType* entry;
    bool decodes;
    float operator()(uint16_t code) const { return decodes ? CITSData2Current(entry, code) : 0.0f; }
};
CITSPixelDecoder MakeCITSPixelDecoder(const CITSImageEntryType* entry);

// The text of a label: the unit scale of the set (largest absolute sweep value) and decimals of
// the printed value.
struct CITSSweepScale {
    double scale;
    int exponent;
    const char* unit;
};
CITSSweepScale CITSSweepScaleOf(const ImageHeaderType* image);
int CITSLabelDecimals(double value);

// ---- one image ----

// The current item when it is an image with a set of at least one image; else null after
// 33536, 33553 or 33554.
ImageHeaderType* RequireCITSImage();

// The current image of the current item's set, large, with its text block.
void DisplayCurrentCITSImage();
// The text block of the image of ci in the host's text panel.
void CITSImageText(const ImageHeaderType* image);

// ---- commands ----

// Clears the frame store and shows the current item again.
void CITSDisplayCommand();
// ci one on (or back), wrapping; logged, then the image is shown.
void CITSNextCommand();
void CITSPreviousCommand();
// ci = n - 1 without a test; the display repairs it.
void CITSSetCurrentCommand(int n);
// The host's selection (3) and edit (1) modes of a set.
void CITSSelectCommand();
void CITSEditCommand();
void GetCITSDispParam(wint_CITSDispParamType* param);
void SetCITSDispParam(const wint_CITSDispParamType* param);
void CITSDispParamSetV(int slot);
// "%d: %.*f %s" of image n (from 1); 1 for the current image, 2 another, 4 past the end.
int CITSGetDesc(int n, char* out);
void CITSEditTitle(int n);

// The library's default display block (settings key "SPS Mapping Display"), read when no set
// is at hand.
CITSDispBlockType& DefaultCITSDispBlock();
void ResetDefaultCITSDispBlock();

// ---- paged browser ----

void CITSDisplayXxY(int size);
// The pointer handler: bit 0 of flags a left click, bit 2 the end request.
int DoCITSDisplayXxY(int flags, int x, int y, int wheel);
bool CITSPagedActive();
int CITSPagedPage();

// ---- rapid replay ----

// 1 when every step of the sweep has the sign of the first step.
bool CITSSweepMonotonic(const CITSHeaderType* set);
// The slider record of the replay: the bar and, behind it, the decimals of the value shown.
struct CITSReplaySliderRecord {
    wint_ScrollBarParamType bar;
    int32_t decimals;
};
static_assert(sizeof(CITSReplaySliderRecord) == sizeof(wint_ScrollBarParamType) + 4, "decimals follow the bar");
// The slider record of the replay for the set of the image.
void CITSReplaySlider(const ImageHeaderType* image, CITSReplaySliderRecord* record, bool* nearest);
void CITSRapidReplay();
// One slider movement; finish non-zero ends the replay.
void DoCITSReplay(float value, int finish);
// The index shown for a slider value.
int CITSReplayIndex(float value, const CITSHeaderType* set, bool nearest);
bool CITSReplayActive();

// The sheet shows for mapping items when the display asks for the mapping view; installed at
// start and by the reset.
void InstallCITSDisplay();
void ResetCITSPagedState();
void ResetCITSReplayState();
void ResetCITSDisplayState();
