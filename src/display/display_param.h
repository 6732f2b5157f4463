// The display settings: how images are drawn and what is drawn around them.
//
// ImageDisplaySize, the caption switches and DispMode belong to the current frame store
// (FSState); everything else here is process-wide. The record wint_DisplayParamType carries
// them to and from the host; the user settings file keeps them in the block "Display Param"
// and the eight fonts in "Fonts".
#pragma once

#include <cstdint>

#include "tavrin/dl_display.h"

constexpr int kDisplayModes = 5;
constexpr int16_t kDefaultContourLevels = 16;
constexpr float kDefaultDisplayFactor = 5.0f;
constexpr float kMinDisplayFactor = 1.0f;
constexpr float kMaxDisplayFactor = 10.0f;
// Font heights in the record are the stored heights divided by this.
constexpr int kRecordFontHeightDivisor = 6;

struct FontRecType;
// A font into the form of the host's records (height divided as above); answers its colour.
uint32_t FontToRecord(const FontRecType& font, TvLogFont* out);
// A font from the form of the host's records, with its colour.
void FontFromRecord(FontRecType& font, const TvLogFont& in, uint32_t colour);

enum ScaleBarModes : int32_t {
    SCALE_BAR_X = 1,
    SCALE_BAR_Y = 2,
    SCALE_BAR_BOTH = 4,
    SCALE_BAR_NONE = 8,
};

struct DisplaySettings {
    int16_t ContourLevels;
    float DisplayFactor;
    int32_t ScaleBarMode;
    char OverlayText[TV_OVERLAY_TEXTS][TV_OVERLAY_TEXT_CHARS];
    uint32_t ReservedParam1;
    int32_t FullDisplayOn;
    // The light of the relief mode: polar and azimuth angle in degrees, the ambient and the
    // diffuse intensity (0 to 255).
    float LightPolar;
    float LightAzimuth;
    int32_t Ambient;
    int32_t Diffuse;
};
extern DisplaySettings Display;

// The marks of spectra attached to an image are drawn with the image; setting the display
// record switches them on.
extern bool AttachedSpectraMarksOn;
// Set while the full display must not be used for the current item (the FFT mask display).
extern bool FullDisplaySuppressed;
// With timing on, showing an item logs "Elapsed time = %d\n".
extern bool DisplayTimingOn;

void GetDisplayParam(wint_DisplayParamType* param);
void SetDisplayParam(const wint_DisplayParamType* param);

// The user settings: "Display Param" (262 bytes) and "Fonts" (eight font records). A block
// that cannot be read leaves the defaults; a "Fonts" block that cannot be read sets the face
// of all eight fonts to "MS Shell Dlg".
constexpr int kDisplayParamStoreBytes = 262;
void StoreDisplaySettings();
void RetrieveDisplaySettings();

void ResetDisplaySettings();
