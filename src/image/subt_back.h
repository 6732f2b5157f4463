// The background tool: one object that lives while the library is loaded and holds, while the
// host's dialog is open, the source image, a scratch area shared by all methods, the
// thresholded view of the source, the corrected image and the background, the two frame stores
// and the colours in force at start. Only applying makes a data item.
#pragma once

#include <cstdint>

#include "tavrin/dl_background.h"
#include "tavrin/image_header.h"

// The caption of the second frame store.
inline constexpr const char* kSubtBackTitle = "Subtract Background (normalised)";

// The built-in record and the clipping of a record coming in.
wint_SubtBckgrndParamType DefaultSubtBckgrndParam();
void ClipSubtBckgrndParam(wint_SubtBckgrndParamType* p);
// The bits of what differs between two records (TV_SUBT_THRESHOLDS, TV_SUBT_RESULT).
uint32_t CompareSubtBckgrndParam(const wint_SubtBckgrndParamType& stored, const wint_SubtBckgrndParamType& given);
// Whether the record asks for the region overlay.
bool WantsRegionOverlay(const wint_SubtBckgrndParamType& p);

class CSubtBack {
public:
    CSubtBack();
    CSubtBack(const CSubtBack&) = delete;
    CSubtBack& operator=(const CSubtBack&) = delete;

    bool IsOpen() const { return Source != nullptr; }
    // Opens on `source`; answers 0, or 1 when it stays closed (reported).
    int Initialise(ImageHeaderType* source);
    // Closes; with 3 and a current item the result item is made.
    void Finish(int finish);
    void GetParam(wint_SubtBckgrndParamType* param, int finish);
    uint32_t SetParam(const wint_SubtBckgrndParamType* param);
    void UpdateImageDisplay(uint32_t flags);
    // Frees what the tool holds without a word to the host, and takes the built-in record.
    void Reset();

    wint_SubtBckgrndParamType Param;
    ImageHeaderType* Source = nullptr;
    void* Scratch = nullptr;
    ImageHeaderType* PreviewItem = nullptr;
    ImageHeaderType* ResultItem = nullptr;
    ImageHeaderType* BackgroundItem = nullptr;
    int SourceStore = -1, ResultStore = -1;
    uint16_t SavedColours[3][256] = {};
    uint16_t ThresholdColours[3][256] = {};
    uint16_t SavedDisplaySize = 65535;   // -1 when closed
    int16_t SavedCursorX = 0, SavedCursorY = 0;
    int RegionOverlayOn = 0;
    bool TwoImageLayout = false;         // the result store holds result and background at 256

private:
    void ShowThresholds();
    void UpdateResult();
    void SwitchOverlay(bool on);
    void FreeBuffers();
    void Apply(ImageHeaderType* source);
};

// The one object of the tool.
CSubtBack& SubtBack();

void ResetSubtBackState();
