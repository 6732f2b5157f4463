// The paged browser of a set: pages of 64 (or 16) frames on the whole frame store, turned by the
// scroll wheel or a click, and the text of the image under the pointer.
//
// The pages are sheets of the explicit list: the set's display block is borrowed for each page
// and given back whole, with the current image.
#include "display/placement.h"
#include "display/selection.h"
#include "display/vfs.h"
#include "host/ap_callbacks.h"
#include "host/errors.h"
#include "host/log.h"
#include "host/wait.h"
#include "mapping/cits_display.h"
#include "platform/platform_table.h"
#include "store/data_list.h"

namespace {

constexpr int kVirtualKeyEscape = 0x1B;
constexpr int kBoxRows = 4;
constexpr int kBoxColumns = 64;
constexpr int kBoxColumn = 2;
constexpr int kClick = 1;
constexpr int kEndRequest = 4;

struct PagedState {
    bool active = false;
    bool first = false;
    int page = -1;
    int lastShown = -1;
    int frameSize = 64;
    TextWindowHandle box = 0;
};
PagedState g_paged;

int FramesPerPage(int P) { return P == 64 ? 64 : P == 128 ? 16 : 0; }

void ShowPage(ImageHeaderType* image, int G, int wheel)
{
    CITSHeaderType* set = image->CITSHeaderPtr;
    const CITSDispBlockType saved = set->disp;
    const int16_t savedCi = set->ci;
    set->disp.flags = static_cast<uint16_t>(set->disp.flags & ~3u);
    set->disp.n = static_cast<int16_t>(G);
    set->disp.select = 4;
    const int pages = (set->ni - 1 + G) / G;
    g_paged.page += wheel > 0 ? -1 : 1;
    if (g_paged.page < 0) g_paged.page = pages - 1;
    if (g_paged.page >= pages) g_paged.page = 0;
    const int predecessor = set->disp.mode != 0 ? 1 : 0;
    for (int k = 0; k < G; ++k) set->disp.im_no[k] = static_cast<int16_t>(k + predecessor + G * g_paged.page);
    DisplayCITSDataSet1(image, g_paged.frameSize);
    PrintInWindow(g_paged.box, kBoxColumn, 3, "Frame %d/%d displayed.   ", g_paged.page + 1, pages);
    set->disp = saved;
    set->ci = savedCi;
}

void EndPaged(ImageHeaderType* image)
{
    if (image) {
        ShowParameterText(image);
        Log("Display 64x64 '%.40s'.\n", image->Title);
    }
    g_paged.active = false;
    Ap.ap_CloseTextWindow(g_paged.box);
    g_paged.box = 0;
}

// The pointer events of select type 20; the event's handle word carries the wheel.
int PagedEvent(int buttons, int x, int y, int32_t wheel) { return DoCITSDisplayXxY(buttons, x, y, wheel); }

} // namespace

bool CITSPagedActive() { return g_paged.active; }
int CITSPagedPage() { return g_paged.page; }

void CITSDisplayXxY(int size)
{
    ImageHeaderType* image = RequireCITSImage();
    if (!image) return;
    const CITSHeaderType* set = image->CITSHeaderPtr;
    int P = size;
    if (set->cx < P || set->cy < P) P = set->cx < 64 ? set->cx : 64;
    g_paged.frameSize = P;
    g_paged.first = true;
    if (DoCITSDisplayXxY(kClick, 255, 255, 0)) return;
    SelectInRectangle(kCITSPagedSelectType, 0, 0, 0, kFrameWidth - 1, kFrameHeight - 1, 2, PagedEvent);
}

int DoCITSDisplayXxY(int flags, int x, int y, int wheel)
{
    if (PlatformKeyDown(kVirtualKeyEscape)) flags = kEndRequest;
    const int P = g_paged.frameSize;
    const int G = FramesPerPage(P);
    if (G == 0) {
        ProgramError("DoCITSDisplayXxY DoCITSDisplayXxY_xy=%d", P);
        if (g_paged.active) EndPaged(nullptr);
        g_paged.first = false;
        return 1;
    }
    ImageHeaderType* image = CurrentItem;
    if (!image || !image->CITSHeaderPtr || image->CITSHeaderPtr->ni < 1) {
        // The item went away under the browser: it ends quietly.
        if (g_paged.active) EndPaged(nullptr);
        g_paged.first = false;
        return 1;
    }
    CITSHeaderType* set = image->CITSHeaderPtr;
    if (g_paged.first) {
        g_paged.first = false;
        g_paged.lastShown = -1;
        g_paged.active = true;
        g_paged.page = -1;
        flags = kClick;
        g_paged.box = Ap.ap_OpenTextWindow(kBoxRows, kBoxColumns, 0xffff, 0xffff, "SPS Mapping Paged Display");
        if (set->ni > G)
            PrintInWindow(g_paged.box, kBoxColumn, 1,
                          "Use the scroll wheel, or single click the left button to move to the next page.");
        PrintInWindow(g_paged.box, kBoxColumn, 2, "Press the right button/ESC to finish.");
    }
    if (!g_paged.active) return 1;
    if ((flags & kClick) || wheel != 0) ShowPage(image, G, wheel);
    if (!(flags & kEndRequest)) {
        const int frame = (y / P) * (kFrameWidth / P) + x / P + g_paged.page * ((262144 / P) / P);
        if (frame >= 0 && frame < set->ni) {
            set->ci = static_cast<int16_t>(frame);
            if (frame != g_paged.lastShown) CITSImageText(image);
            g_paged.lastShown = frame;
        } else {
            Ap.ap_ClearParamText();
            g_paged.lastShown = -1;
        }
        return 0;
    }
    EndPaged(image);
    return 1;
}

void ResetCITSPagedState() { g_paged = PagedState{}; }
