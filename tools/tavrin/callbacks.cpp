// The 55 callbacks of the command-line host. Frame store pixels go to the buffers this host
// owns; text panels are kept as lines; dialogs take their answers from the queue of the
// session, or cancel.
#include "pick.h"
#include "session.h"

#include <cstdio>
#include <cstring>

namespace {

constexpr int kFrame = 512;

HostFrameStore* CurrentStore()
{
    for (auto& fs : Session().frameStores)
        if (fs.number == Session().currentFrameStore) return &fs;
    return nullptr;
}

uint8_t* IndexAt(uint16_t x, uint16_t y)
{
    HostFrameStore* fs = CurrentStore();
    if (!fs || x >= kFrame || y >= kFrame) return nullptr;
    return fs->index.data() + static_cast<size_t>(kFrame - 1 - y) * kFrame + x;
}

void PutPixelRow(const uint8_t* colours, uint16_t count, uint16_t x, uint16_t y)
{
    for (uint16_t i = 0; i < count && x + i < kFrame; ++i)
        if (uint8_t* p = IndexAt(static_cast<uint16_t>(x + i), y)) *p = colours[i];
}

void GetPixelRow(uint8_t* buffer, uint16_t count, uint16_t x, uint16_t y)
{
    for (uint16_t i = 0; i < count; ++i) {
        uint8_t* p = x + i < kFrame ? IndexAt(static_cast<uint16_t>(x + i), y) : nullptr;
        buffer[i] = p ? *p : 0;
    }
}

void FillPixelRow(uint8_t colour, uint16_t count, uint16_t x, uint16_t y)
{
    for (uint16_t i = 0; i < count && x + i < kFrame; ++i)
        if (uint8_t* p = IndexAt(static_cast<uint16_t>(x + i), y)) *p = colour;
}

void PutPixel(uint8_t colour, uint8_t, uint16_t x, uint16_t y)
{
    if (uint8_t* p = IndexAt(x, y)) *p = colour;
}

void Nothing() {}
void Nothing2(int32_t, int32_t) {}
void Nothing1(int32_t) {}

void SetPalette(const uint16_t* r, const uint16_t* g, const uint16_t* b)
{
    std::memcpy(Session().palette[0], r, sizeof Session().palette[0]);
    std::memcpy(Session().palette[1], g, sizeof Session().palette[1]);
    std::memcpy(Session().palette[2], b, sizeof Session().palette[2]);
}

// The window of a plot tool (fit, measure, multi-spectra): frame store 9 of this host, with the
// client size asked for (the plot and the strip of its text on the right); it becomes current.
constexpr int16_t kPlotToolFrameStore = 9;
void OpenPlotWindow(uint16_t width, uint16_t height, const char*)
{
    CloseHostFrameStore(kPlotToolFrameStore);
    OpenHostFrameStore(kPlotToolFrameStore, width, height);
}
// The graph window (the background tool's second store): frame store 2 of this host, opened
// by the library's request and closed by it; the store that was current stays current.
constexpr int16_t kGraphFrameStore = 2;
void OpenGraphWindow(const char*)
{
    const int16_t current = Session().currentFrameStore;
    if (!FindHostFrameStore(kGraphFrameStore) && OpenHostFrameStore(kGraphFrameStore) && current > 0) {
        dl_VFS_set_current_vfs(current);
        Session().currentFrameStore = current;
    }
}
void CloseGraphWindow() { CloseHostFrameStore(kGraphFrameStore); }
void SetMarkerMode(uint8_t) {}
void MarkVFSActive(int16_t, uint8_t) {}
void UpdateVFS(uint16_t, uint16_t, uint16_t, uint16_t) {}
void ScrollBar1(wint_ScrollBarParamType*, uint16_t) {}
void ScrollBar2(wint_ScrollBarParamType*, wint_ScrollBarParamType*, uint16_t, uint16_t) {}
void ScrollBar3(wint_ScrollBarParamType*, wint_ScrollBarParamType*, wint_ScrollBarParamType*, uint16_t, uint16_t) {}
void SelectPointInVFS(uint16_t left, uint16_t top, uint16_t right, uint16_t bottom, uint16_t type, uint16_t cursor)
{
    PickMode& mode = CurrentPickMode();
    mode.active = true;
    mode.left = left;
    mode.top = top;
    mode.right = right;
    mode.bottom = bottom;
    mode.type = type;
    mode.cursor = cursor;
}

void ClearParamText() { Session().paramLines.clear(); }

// A text goes into its line at its column, over what stood there; the rest of the line stays.
void PrintParamLine(uint16_t line, uint16_t column, const char* text)
{
    auto& lines = Session().paramLines;
    if (lines.size() <= line) lines.resize(line + 1u);
    std::string& row = lines[line];
    const std::string piece = text ? text : "";
    if (row.size() < column) row.resize(column, ' ');
    row.replace(column, piece.size(), piece);
}

TextWindowHandle OpenTextWindow(uint16_t, uint16_t, uint16_t, uint16_t, const char*) { return 1; }
void PrintInWindow(TextWindowHandle, uint16_t, uint16_t, const char*) {}
void TextWindow(TextWindowHandle) {}

// A value entry takes the next queued answer; a cancel, or none, declines it.
bool NextValue(Answer* a)
{
    if (!TakeAnswer(a)) return false;
    return a->kind != Answer::Cancel && a->kind != Answer::No;
}

int16_t EnterInteger(int32_t, const char*, const char*, int32_t* result, uint16_t)
{
    Answer a;
    if (!NextValue(&a)) return 0;
    if (result) *result = static_cast<int32_t>(a.kind == Answer::Number ? a.number : std::atof(a.text.c_str()));
    return 1;
}

int16_t EnterText(const char*, const char*, const char*, char* result, uint16_t length)
{
    Answer a;
    if (!NextValue(&a)) return 0;
    if (result && length) std::snprintf(result, length, "%s", a.text.c_str());
    return 1;
}

int16_t EnterDouble(double, const char*, const char*, double* result, uint16_t)
{
    Answer a;
    if (!NextValue(&a)) return 0;
    if (result) *result = a.kind == Answer::Number ? a.number : std::atof(a.text.c_str());
    return 1;
}

int16_t EnterDoublePair(double, double, const char*, const char*, const char*, double* r1, double* r2, uint16_t)
{
    Answer a, b;
    if (!NextValue(&a) || !NextValue(&b)) return 0;
    if (r1) *r1 = a.number;
    if (r2) *r2 = b.number;
    return 1;
}

int16_t EnterString(const char*, const char*, const char*, char* buffer, uint16_t length)
{
    return EnterText(nullptr, nullptr, nullptr, buffer, length);
}

void Progress(const char*, uint16_t) {}
int16_t Poll() { return 0; }
void ShowWait(const char*) {}

int16_t SelectDataDialog(uint16_t, uint16_t)
{
    Answer a;
    if (!TakeAnswer(&a) || a.kind != Answer::Number) return -1;
    return static_cast<int16_t>(a.number);
}

void OpenCITSDialog(int32_t) {}
void SetMeshInfo(uint16_t, void*) {}
int32_t Open3DView(C3DParam*, int32_t) { return 0; }
int32_t Close3DView(uint32_t) { return 0; }
void ShowPanel(int32_t, int32_t) {}
void MarkerPanel(int32_t) {}

} // namespace

ApCallbackFunctionTableType HostCallbackTable()
{
    ApCallbackFunctionTableType t{};
    t.ap_PutPixelRow = PutPixelRow;
    t.ap_GetPixelRow = GetPixelRow;
    t.ap_FillPixelRow = FillPixelRow;
    t.ap_PutPixel = PutPixel;
    t.ap_Reserved4 = Nothing;
    t.ap_SetPalette = SetPalette;
    t.ap_Reserved6 = Nothing2;
    t.ap_Reserved7 = Nothing;
    t.ap_OpenPlotWindow = OpenPlotWindow;
    t.ap_Reserved9 = Nothing1;
    t.ap_OpenGraphWindow = OpenGraphWindow;
    t.ap_CloseGraphWindow = CloseGraphWindow;
    t.ap_SetMarkerMode = SetMarkerMode;
    t.ap_MarkVFSActive = MarkVFSActive;
    t.ap_UpdateVFS = UpdateVFS;
    t.ap_ScrollBar1 = ScrollBar1;
    t.ap_ScrollBar2 = ScrollBar2;
    t.ap_ScrollBar3 = ScrollBar3;
    t.ap_SelectPointInVFS = SelectPointInVFS;
    t.ap_ClearParamText = ClearParamText;
    t.ap_PrintParamLine = PrintParamLine;
    t.ap_OpenTextWindow = OpenTextWindow;
    t.ap_PrintInWindow = PrintInWindow;
    t.ap_CloseTextWindow = TextWindow;
    t.ap_ClearTextWindow = TextWindow;
    t.ap_EnterInteger = EnterInteger;
    t.ap_EnterText = EnterText;
    t.ap_EnterDouble = EnterDouble;
    t.ap_EnterDoublePair = EnterDoublePair;
    t.ap_Progress = Progress;
    t.ap_ProgressEnd = Nothing;
    t.ap_Poll = Poll;
    t.ap_ShowWait = ShowWait;
    t.ap_HideWait = Nothing;
    t.ap_Reserved34 = Nothing;
    t.ap_Reserved35 = Nothing;
    t.ap_SelectDataDialog = SelectDataDialog;
    t.ap_Reserved37 = Nothing;
    t.ap_OpenCITSDialog = OpenCITSDialog;
    t.ap_Reserved39 = Nothing;
    t.ap_EnterString = EnterString;
    t.ap_SetMeshInfo = SetMeshInfo;
    t.ap_Open3DView = Open3DView;
    t.ap_Close3DView = Close3DView;
    t.ap_Reserved50 = Nothing;
    t.ap_Reserved51 = Nothing;
    t.ap_ShowPanel = ShowPanel;
    t.ap_MarkerPanel = MarkerPanel;
    t.ap_Close3DPanel = Nothing;
    return t;
}
