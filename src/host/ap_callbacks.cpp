#include "host/ap_callbacks.h"

#include <cstring>

namespace {

void PutPixelRowNone(const uint8_t*, uint16_t, uint16_t, uint16_t) {}
void GetPixelRowNone(uint8_t* buffer, uint16_t count, uint16_t, uint16_t)
{
    if (buffer) std::memset(buffer, 0, count);
}
void FillPixelRowNone(uint8_t, uint16_t, uint16_t, uint16_t) {}
void PutPixelNone(uint8_t, uint8_t, uint16_t, uint16_t) {}
void ReservedNone() {}
void SetPaletteNone(const uint16_t*, const uint16_t*, const uint16_t*) {}
void Reserved6None(int32_t, int32_t) {}
void OpenPlotWindowNone(uint16_t, uint16_t, const char*) {}
void Reserved9None(int32_t) {}
void OpenGraphWindowNone(const char*) {}
void SetMarkerModeNone(uint8_t) {}
void MarkVFSActiveNone(int16_t, uint8_t) {}
void UpdateVFSNone(uint16_t, uint16_t, uint16_t, uint16_t) {}
void ScrollBar1None(wint_ScrollBarParamType*, uint16_t) {}
void ScrollBar2None(wint_ScrollBarParamType*, wint_ScrollBarParamType*, uint16_t, uint16_t) {}
void ScrollBar3None(wint_ScrollBarParamType*, wint_ScrollBarParamType*, wint_ScrollBarParamType*, uint16_t, uint16_t) {}
void SelectPointInVFSNone(uint16_t, uint16_t, uint16_t, uint16_t, uint16_t, uint16_t) {}
void PrintParamLineNone(uint16_t, uint16_t, const char*) {}
TextWindowHandle OpenTextWindowNone(uint16_t, uint16_t, uint16_t, uint16_t, const char*) { return 0; }
void PrintInWindowNone(TextWindowHandle, uint16_t, uint16_t, const char*) {}
void TextWindowNone(TextWindowHandle) {}
int16_t EnterIntegerNone(int32_t, const char*, const char*, int32_t*, uint16_t) { return 0; }
int16_t EnterTextNone(const char*, const char*, const char*, char*, uint16_t) { return 0; }
int16_t EnterDoubleNone(double, const char*, const char*, double*, uint16_t) { return 0; }
int16_t EnterDoublePairNone(double, double, const char*, const char*, const char*, double*, double*, uint16_t)
{
    return 0;
}
void ProgressNone(const char*, uint16_t) {}
int16_t PollNone() { return 0; }
void ShowWaitNone(const char*) {}
int16_t SelectDataDialogNone(uint16_t, uint16_t) { return -1; }
void OpenCITSDialogNone(int32_t) {}
int16_t EnterStringNone(const char*, const char*, const char*, char*, uint16_t) { return 0; }
void SetMeshInfoNone(uint16_t, void*) {}
int32_t Open3DViewNone(C3DParam*, int32_t) { return 0; }
int32_t Close3DViewNone(uint32_t) { return 0; }
void ShowPanelNone(int32_t, int32_t) {}
void MarkerPanelNone(int32_t) {}

const ApCallbackFunctionTableType kStandIns = {
    PutPixelRowNone, GetPixelRowNone, FillPixelRowNone, PutPixelNone, ReservedNone, SetPaletteNone,
    Reserved6None, ReservedNone, OpenPlotWindowNone, Reserved9None, OpenGraphWindowNone, ReservedNone,
    SetMarkerModeNone, MarkVFSActiveNone, UpdateVFSNone, ScrollBar1None, ScrollBar2None, ScrollBar3None,
    SelectPointInVFSNone, ReservedNone, PrintParamLineNone, OpenTextWindowNone, PrintInWindowNone,
    TextWindowNone, TextWindowNone, EnterIntegerNone, EnterTextNone, EnterDoubleNone, EnterDoublePairNone,
    ProgressNone, ReservedNone, PollNone, ShowWaitNone, ReservedNone, ReservedNone, ReservedNone,
    SelectDataDialogNone, ReservedNone, OpenCITSDialogNone, ReservedNone, EnterStringNone,
    nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
    SetMeshInfoNone, Open3DViewNone, Close3DViewNone, ReservedNone, ReservedNone, ShowPanelNone,
    MarkerPanelNone, ReservedNone,
};

// Slot 6 has no caller and is not required; 41 to 46 are never copied.
bool SlotRequired(int slot) { return slot != 6 && (slot < 41 || slot > 46); }

} // namespace

ApCallbackFunctionTableType Ap = kStandIns;

bool CopyCallbackTable(const ApCallbackFunctionTableType* table)
{
    Ap = kStandIns;
    if (!table) return false;
    // The table is a run of 55 pointers; copy them one by one.
    void* slots[AP_CALLBACK_SLOTS];
    std::memcpy(slots, table, sizeof slots);
    void* mine[AP_CALLBACK_SLOTS];
    std::memcpy(mine, &Ap, sizeof mine);
    bool complete = true;
    for (int i = 0; i < AP_CALLBACK_SLOTS; ++i) {
        if (i >= 41 && i <= 46) continue;
        if (slots[i]) mine[i] = slots[i];
        else if (SlotRequired(i)) complete = false;
    }
    std::memcpy(&Ap, mine, sizeof mine);
    return complete;
}

void ResetCallbackTable() { Ap = kStandIns; }
