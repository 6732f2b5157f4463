#include "support/test_host.h"
#include "display/vfs.h"
#include "host/reset.h"
#include "platform/clock.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <unistd.h>

namespace {

TestHost* g_current = nullptr;

template <typename... A>
std::string Join(const A&... parts)
{
    std::ostringstream out;
    bool first = true;
    ((out << (first ? "" : " ") << parts, first = false), ...);
    return out.str();
}

std::string Str(const char* s) { return s ? std::string("'") + s + "'" : std::string("null"); }

void R(const char* name, const std::string& args)
{
    if (g_current) g_current->Record(name, args);
}

std::string NextAnswer(bool* have)
{
    *have = g_current && !g_current->entryAnswers.empty();
    if (!*have) return {};
    std::string a = g_current->entryAnswers.front();
    g_current->entryAnswers.pop_front();
    return a;
}

void PutPixelRow(const uint8_t*, uint16_t count, uint16_t x, uint16_t y) { R("ap_PutPixelRow", Join(count, x, y)); }
void GetPixelRow(uint8_t* buffer, uint16_t count, uint16_t x, uint16_t y)
{
    if (buffer) std::memset(buffer, 0, count);
    R("ap_GetPixelRow", Join(count, x, y));
}
void FillPixelRow(uint8_t colour, uint16_t count, uint16_t x, uint16_t y)
{
    R("ap_FillPixelRow", Join(int(colour), count, x, y));
}
void PutPixel(uint8_t colour, uint8_t mode, uint16_t x, uint16_t y) { R("ap_PutPixel", Join(int(colour), int(mode), x, y)); }
void Reserved4() { R("ap_Reserved4", ""); }
void SetPalette(const uint16_t* r, const uint16_t* g, const uint16_t* b)
{
    if (g_current && r && g && b) {
        std::memcpy(g_current->palette[0], r, 512);
        std::memcpy(g_current->palette[1], g, 512);
        std::memcpy(g_current->palette[2], b, 512);
    }
    R("ap_SetPalette", "");
}
void Reserved6(int32_t a, int32_t b) { R("ap_Reserved6", Join(a, b)); }
void Reserved7() { R("ap_Reserved7", ""); }
void OpenPlotWindow(uint16_t w, uint16_t h, const char* t) { R("ap_OpenPlotWindow", Join(w, h, Str(t))); }
void Reserved9(int32_t v) { R("ap_Reserved9", Join(v)); }
void OpenGraphWindow(const char* t) { R("ap_OpenGraphWindow", Str(t)); }
void CloseGraphWindow() { R("ap_CloseGraphWindow", ""); }
void SetMarkerMode(uint8_t on) { R("ap_SetMarkerMode", Join(int(on))); }
void MarkVFSActive(int16_t vfs, uint8_t on) { R("ap_MarkVFSActive", Join(vfs, int(on))); }
void UpdateVFS(uint16_t x1, uint16_t y1, uint16_t x2, uint16_t y2) { R("ap_UpdateVFS", Join(x1, y1, x2, y2)); }
void ScrollBar1(wint_ScrollBarParamType* b, uint16_t id)
{
    R("ap_ScrollBar1", Join(b ? b->Min : 0.f, b ? b->Max : 0.f, b ? b->Value : 0.f, id));
}
void ScrollBar2(wint_ScrollBarParamType*, wint_ScrollBarParamType*, uint16_t id, uint16_t flag)
{
    R("ap_ScrollBar2", Join(id, flag));
}
void ScrollBar3(wint_ScrollBarParamType*, wint_ScrollBarParamType*, wint_ScrollBarParamType*, uint16_t id,
                uint16_t flag)
{
    R("ap_ScrollBar3", Join(id, flag));
}
void SelectPointInVFS(uint16_t x1, uint16_t y1, uint16_t x2, uint16_t y2, uint16_t h, uint16_t f)
{
    R("ap_SelectPointInVFS", Join(x1, y1, x2, y2, h, f));
}
void ClearParamText() { R("ap_ClearParamText", ""); }
void PrintParamLine(uint16_t line, uint16_t column, const char* text) { R("ap_PrintParamLine", Join(line, column, Str(text))); }
TextWindowHandle OpenTextWindow(uint16_t rows, uint16_t cols, uint16_t x, uint16_t y, const char* t)
{
    R("ap_OpenTextWindow", Join(rows, cols, x, y, Str(t)));
    return 7;
}
void PrintInWindow(TextWindowHandle h, uint16_t c, uint16_t r, const char* t) { R("ap_PrintInWindow", Join(h, c, r, Str(t))); }
void CloseTextWindow(TextWindowHandle h) { R("ap_CloseTextWindow", Join(h)); }
void ClearTextWindow(TextWindowHandle h) { R("ap_ClearTextWindow", Join(h)); }
int16_t EnterInteger(int32_t value, const char* prompt, const char* title, int32_t* result, uint16_t length)
{
    R("ap_EnterInteger", Join(value, Str(prompt), Str(title), length));
    bool have;
    std::string a = NextAnswer(&have);
    if (!have) return 0;
    if (result) *result = std::atoi(a.c_str());
    return 1;
}
int16_t EnterText(const char* value, const char* prompt, const char* title, char* result, uint16_t length)
{
    R("ap_EnterText", Join(Str(value), Str(prompt), Str(title), length));
    bool have;
    std::string a = NextAnswer(&have);
    if (!have) return 0;
    if (result && length) std::snprintf(result, length, "%s", a.c_str());
    return 1;
}
int16_t EnterDouble(double value, const char* prompt, const char* title, double* result, uint16_t length)
{
    R("ap_EnterDouble", Join(value, Str(prompt), Str(title), length));
    bool have;
    std::string a = NextAnswer(&have);
    if (!have) return 0;
    if (result) *result = std::atof(a.c_str());
    return 1;
}
int16_t EnterDoublePair(double first, double second, const char* p1, const char* p2, const char* title, double* r1,
                        double* r2, uint16_t length)
{
    R("ap_EnterDoublePair", Join(first, second, Str(p1), Str(p2), Str(title), length));
    bool have;
    std::string a = NextAnswer(&have);
    if (!have) return 0;
    double x = 0, y = 0;
    std::sscanf(a.c_str(), "%lf %lf", &x, &y);
    if (r1) *r1 = x;
    if (r2) *r2 = y;
    return 1;
}
void Progress(const char* text, uint16_t percent) { R("ap_Progress", Join(Str(text), percent)); }
void ProgressEnd() { R("ap_ProgressEnd", ""); }
int16_t Poll()
{
    R("ap_Poll", "");
    if (!g_current || g_current->pollAnswers.empty()) return 0;
    int16_t a = g_current->pollAnswers.front();
    g_current->pollAnswers.pop_front();
    return a;
}
void ShowWait(const char* text) { R("ap_ShowWait", Str(text)); }
void HideWait() { R("ap_HideWait", ""); }
void Reserved34() { R("ap_Reserved34", ""); }
void Reserved35() { R("ap_Reserved35", ""); }
int16_t SelectDataDialog(uint16_t ms, uint16_t md)
{
    R("ap_SelectDataDialog", Join(ms, md));
    if (!g_current || g_current->selectAnswers.empty()) return -1;
    int16_t a = g_current->selectAnswers.front();
    g_current->selectAnswers.pop_front();
    return a;
}
void Reserved37() { R("ap_Reserved37", ""); }
void OpenCITSDialog(int32_t mode) { R("ap_OpenCITSDialog", Join(mode)); }
void Reserved39() { R("ap_Reserved39", ""); }
int16_t EnterString(const char* def, const char* prompt, const char* title, char* buffer, uint16_t length)
{
    R("ap_EnterString", Join(Str(def), Str(prompt), Str(title), length));
    bool have;
    std::string a = NextAnswer(&have);
    if (!have) return 0;
    if (buffer && length) std::snprintf(buffer, length, "%s", a.c_str());
    return 1;
}
void SetMeshInfo(uint16_t vfs, void* mesh) { R("ap_SetMeshInfo", Join(vfs, mesh ? "set" : "null")); }
int32_t Open3DView(C3DParam* p, int32_t flag)
{
    R("ap_Open3DView", Join(p ? "set" : "null", flag));
    return 1;
}
int32_t Close3DView(uint32_t id)
{
    R("ap_Close3DView", Join(id));
    return 1;
}
void Reserved50() { R("ap_Reserved50", ""); }
void Reserved51() { R("ap_Reserved51", ""); }
void ShowPanel(int32_t id, int32_t mode) { R("ap_ShowPanel", Join(id, mode)); }
void MarkerPanel(int32_t v) { R("ap_MarkerPanel", Join(v)); }
void Close3DPanel() { R("ap_Close3DPanel", ""); }

// Platform table.
int32_t MessageBoxCb(void*, const char* text, const char* caption, uint32_t style)
{
    int32_t answer;
    if (g_current && !g_current->messageBoxAnswers.empty()) {
        answer = g_current->messageBoxAnswers.front();
        g_current->messageBoxAnswers.pop_front();
    } else {
        uint32_t def = style & TV_MB_DEFMASK;
        switch (style & TV_MB_TYPEMASK) {
        case TV_MB_OKCANCEL: answer = def == TV_MB_DEFBUTTON2 ? TV_IDCANCEL : TV_IDOK; break;
        case TV_MB_YESNO: answer = def == TV_MB_DEFBUTTON2 ? TV_IDNO : TV_IDYES; break;
        case TV_MB_YESNOCANCEL:
            answer = def == TV_MB_DEFBUTTON2 ? TV_IDNO : def == TV_MB_DEFBUTTON3 ? TV_IDCANCEL : TV_IDYES;
            break;
        default: answer = TV_IDOK;
        }
    }
    if (g_current) g_current->messageBoxes.push_back({text ? text : "", caption ? caption : "", style, answer});
    R("MessageBox", Join(Str(text), Str(caption), style));
    return answer;
}
int32_t FileDialogCb(void*, int32_t open, const char*, const char*, const char* title, const char*, char* path,
                     uint32_t size)
{
    R("FileDialog", Join(open, Str(title)));
    bool have;
    std::string a = NextAnswer(&have);
    if (!have) return 0;
    if (path && size) std::snprintf(path, size, "%s", a.c_str());
    return 1;
}
int16_t KeyStateCb(void*, int32_t key)
{
    return g_current && g_current->keysDown.count(key) ? static_cast<int16_t>(0x8000) : 0;
}
void SetWaitCursorCb(void*, int32_t on) { R("SetWaitCursor", Join(on)); }
int32_t ProgressOpenCb(void*, const char* title)
{
    R("ProgressOpen", Str(title));
    if (g_current) {
        g_current->progressOpen = true;
        g_current->progressBar = 0;
    }
    return TV_PROGRESS_OK;
}
void ProgressCloseCb(void*)
{
    R("ProgressClose", "");
    if (g_current) g_current->progressOpen = false;
}
void ProgressSetBarCb(void*, int32_t position)
{
    if (g_current) g_current->progressBar = position;
}
void ProgressSetTextCb(void*, int32_t id, const char* text)
{
    R("ProgressSetText", Join(id, Str(text)));
    if (!g_current) return;
    if (id == TV_PROGRESS_TEXT1) g_current->progressText1 = text ? text : "";
    if (id == TV_PROGRESS_TEXT2) g_current->progressText2 = text ? text : "";
}
int32_t PumpMessagesCb(void*)
{
    if (!g_current) return 0;
    bool cancel = g_current->cancelPending;
    g_current->cancelPending = false;
    return cancel ? 1 : 0;
}
void ScrollableMessageBoxCb(void*, const char* title, const char* text) { R("ScrollableMessageBox", Join(Str(title), Str(text))); }
void ShowRegionOverlayCb(void*, int32_t on, int32_t option, int32_t cx, int32_t cy, double ab, double ac, double a1,
                         double a2)
{
    R("ShowRegionOverlay", Join(on, option, cx, cy, ab, ac, a1, a2));
}
void DebugOutputCb(void*, const char* text)
{
    if (g_current) g_current->debugOutput.push_back(text ? text : "");
}

} // namespace

TestHost::TestHost() { g_current = this; }
TestHost::~TestHost()
{
    if (g_current == this) g_current = nullptr;
}
TestHost* TestHost::Current() { return g_current; }

ApCallbackFunctionTableType TestHost::Table() const
{
    ApCallbackFunctionTableType t{};
    t.ap_PutPixelRow = PutPixelRow;
    t.ap_GetPixelRow = GetPixelRow;
    t.ap_FillPixelRow = FillPixelRow;
    t.ap_PutPixel = PutPixel;
    t.ap_Reserved4 = Reserved4;
    t.ap_SetPalette = SetPalette;
    t.ap_Reserved6 = Reserved6;
    t.ap_Reserved7 = Reserved7;
    t.ap_OpenPlotWindow = OpenPlotWindow;
    t.ap_Reserved9 = Reserved9;
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
    t.ap_CloseTextWindow = CloseTextWindow;
    t.ap_ClearTextWindow = ClearTextWindow;
    t.ap_EnterInteger = EnterInteger;
    t.ap_EnterText = EnterText;
    t.ap_EnterDouble = EnterDouble;
    t.ap_EnterDoublePair = EnterDoublePair;
    t.ap_Progress = Progress;
    t.ap_ProgressEnd = ProgressEnd;
    t.ap_Poll = Poll;
    t.ap_ShowWait = ShowWait;
    t.ap_HideWait = HideWait;
    t.ap_Reserved34 = Reserved34;
    t.ap_Reserved35 = Reserved35;
    t.ap_SelectDataDialog = SelectDataDialog;
    t.ap_Reserved37 = Reserved37;
    t.ap_OpenCITSDialog = OpenCITSDialog;
    t.ap_Reserved39 = Reserved39;
    t.ap_EnterString = EnterString;
    t.ap_SetMeshInfo = SetMeshInfo;
    t.ap_Open3DView = Open3DView;
    t.ap_Close3DView = Close3DView;
    t.ap_Reserved50 = Reserved50;
    t.ap_Reserved51 = Reserved51;
    t.ap_ShowPanel = ShowPanel;
    t.ap_MarkerPanel = MarkerPanel;
    t.ap_Close3DPanel = Close3DPanel;
    return t;
}

TavrinPlatformTable TestHost::Platform()
{
    TavrinPlatformTable p{};
    p.Context = this;
    p.MessageBox = MessageBoxCb;
    p.FileDialog = FileDialogCb;
    p.KeyState = KeyStateCb;
    p.SetWaitCursor = SetWaitCursorCb;
    p.ProgressOpen = ProgressOpenCb;
    p.ProgressClose = ProgressCloseCb;
    p.ProgressSetBar = ProgressSetBarCb;
    p.ProgressSetText = ProgressSetTextCb;
    p.PumpMessages = PumpMessagesCb;
    p.ScrollableMessageBox = ScrollableMessageBoxCb;
    p.DebugOutput = DebugOutputCb;
    p.ShowRegionOverlay = ShowRegionOverlayCb;
    return p;
}

int TestHost::Start(const char* commandLine)
{
    ApCallbackFunctionTableType table = Table();
    wint_DLLInitialiseType record{};
    std::snprintf(record.CmdLine, sizeof record.CmdLine, "%s", commandLine ? commandLine : "");
    return dl_Initialise(&table, &record);
}

void TestHost::Record(const std::string& name, const std::string& args) { calls.push_back({name, args}); }

std::vector<RecordedCall> TestHost::Calls(const std::string& name) const
{
    std::vector<RecordedCall> out;
    for (const auto& c : calls)
        if (c.name == name) out.push_back(c);
    return out;
}

int TestHost::Count(const std::string& name) const
{
    int n = 0;
    for (const auto& c : calls)
        if (c.name == name) ++n;
    return n;
}

void TestHost::ClearCalls()
{
    calls.clear();
    messageBoxes.clear();
}

void LibraryTest::SetUp()
{
    ResetProcessState();
    savedCwd_ = std::filesystem::current_path().string();
    char pattern[] = "/tmp/tavrin-test-XXXXXX";
    char* made = mkdtemp(pattern);
    ASSERT_NE(made, nullptr);
    root_ = made;
    home = root_ + "/home/";
    data = root_ + "/data/";
    std::filesystem::create_directories(home);
    std::filesystem::create_directories(data);
    setenv("TAVRIN_HOME", home.c_str(), 1);
    setenv("TAVRIN_DATA", data.c_str(), 1);
    LocalTime fixed{2026, 11, 0, 22, 14, 5, 9, 250};   // Sunday 22 November 2026, 14:05:09.250
    SetClockForTests(&fixed);
    TavrinPlatformTable platform = host.Platform();
    dl_SetPlatformTable(&platform);
}

void LibraryTest::TearDown()
{
    ResetProcessState();
    if (!savedCwd_.empty()) std::filesystem::current_path(savedCwd_);
    std::error_code ec;
    if (!root_.empty()) std::filesystem::remove_all(root_, ec);
}

std::string LibraryTest::ReadLog() const { return ReadFileBytes(home + "TavrinProc310.log"); }

std::string ReadFileBytes(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream out;
    out << in.rdbuf();
    return out.str();
}

void WriteFileBytes(const std::string& path, const std::string& bytes)
{
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << bytes;
}

TestFrameStore::~TestFrameStore()
{
    Close();
    tv_canvas_destroy(window);
}

int TestFrameStore::Open(int16_t n, int clientWidth, int clientHeight)
{
    tv_canvas_destroy(window);
    window = tv_canvas_create(clientWidth, clientHeight);
    number = n;
    uint8_t* buffers[2] = {frame.data(), rgb.data()};
    const int result = dl_VFS_open_vfs(buffers, n, window);
    open = result == 0;
    return result;
}

void TestFrameStore::Close()
{
    // After a reset of the library the frame store is gone already.
    if (open && FindVFS(number)) dl_VFS_close_vfs(number);
    open = false;
}

uint8_t TestFrameStore::Index(int x, int y) const { return frame[static_cast<size_t>(511 - y) * 512 + x]; }

uint32_t TestFrameStore::RGB(int x, int y) const
{
    const uint8_t* p = &rgb[(static_cast<size_t>(511 - y) * 512 + x) * 3];
    return static_cast<uint32_t>(p[2]) | (static_cast<uint32_t>(p[1]) << 8) | (static_cast<uint32_t>(p[0]) << 16);
}

void TestFrameStore::Paint(const TestHost& host)
{
    uint32_t* pixels = tv_canvas_pixels(window);
    const int width = tv_canvas_width(window), height = tv_canvas_height(window);
    if (!pixels) return;
    for (int y = 0; y < 512 && y < height; ++y) {
        for (int x = 0; x < 512 && x < width; ++x) {
            const uint8_t i = Index(x, y);
            pixels[static_cast<size_t>(y) * width + x] = 0xff000000u | (host.palette[0][i] & 0xffu) |
                                                         ((host.palette[1][i] & 0xffu) << 8) |
                                                         ((host.palette[2][i] & 0xffu) << 16);
        }
    }
    const TvRect dest{0, 0, 511, 511};
    dl_RedrawVFS(&dest, nullptr, number);
}

uint32_t TestFrameStore::WindowPixel(int x, int y) const
{
    return tv_canvas_pixels(window)[static_cast<size_t>(y) * tv_canvas_width(window) + x] & 0x00ffffffu;
}
