#include "display/frame_commands.h"
#include "display/contents_grid.h"
#include "display/placement.h"
#include "display/vfs.h"
#include "host/ap_callbacks.h"
#include "host/errors.h"
#include "host/log.h"
#include "host/prompts.h"
#include "host/text.h"
#include "store/data_list.h"
#include "store/image_header.h"
#include "store/memory.h"

#include <algorithm>

namespace {

bool g_selectionEnabled = true;

struct FrameArea {
    int left, top, edge;
};

// The source areas of LoadFrame, by `which` from 1.
constexpr FrameArea kLoadAreas[6] = {
    {0, 0, 512}, {0, 0, 256}, {256, 0, 256}, {0, 256, 256}, {256, 256, 256}, {128, 128, 256},
};

constexpr int kFirstRampIndex = 35;

// A colour index as a pixel code: as it stands when the colours are kept, else the grey level
// of the ramp (indices below the ramp are black, those above it white).
uint16_t IndexToCode(uint8_t index, bool keepColours)
{
    if (keepColours) return static_cast<uint16_t>(index * 256);
    if (index < kFirstRampIndex) return 0;
    return static_cast<uint16_t>(std::min(index * 2 - 70, 255) * 256);
}

} // namespace

void ClearFrame()
{
    BeginBatch();
    for (int y = 0; y < kFrameHeight; ++y) FillFSLine(0, kFrameWidth, 0, y);
    EndBatchAndShow(0, 0, kFrameWidth - 1, kFrameHeight - 1);
    CVfs* vfs = CurrentVfs();
    if (!vfs) return;
    vfs->EraseAll();
    if (vfs->ClientWidth > kFrameWidth)
        vfs->AddFill(kFrameWidth, 0, vfs->ClientWidth - 1, vfs->ClientHeight - 1, kWhite);
    // The first image placed erases this one.
    vfs->AddFill(0, 0, kFrameWidth - 1, kFrameHeight - 1, kWhite);
}

void ClearFrameStore()
{
    ClearFrame();
    SetFSContentsAll(nullptr);
    Ap.ap_ClearParamText();
    FSState.RowHeight = FSState.CursorX = FSState.CursorY = 0;
    FSState.ImageLeft = FSState.ImageTop = FSState.ImageRight = FSState.ImageBottom = 0;
    FSState.DisplayBusy = 0;
}

void LoadFrame(int which)
{
    const int answer = AskYesNoCancel("Keep colours ?  ", true);
    if (answer == 0 || which < 1 || which > 6) return;
    const bool keepColours = answer == 2;
    const FrameArea& area = kLoadAreas[which - 1];

    ImageHeaderType* item = AllocateListItem(CurrentItem);
    if (!item) return;
    InitImageHeader(item, area.edge, area.edge);
    MemHandleType pair;
    if (!AllocateMem(static_cast<size_t>(area.edge) * area.edge, 2, &pair)) {
        UnlinkListItem(item);
        return;
    }
    item->PixHandle = pair.Handle;
    item->PixData = static_cast<uint16_t*>(pair.Ptr);
    uint8_t row[kFrameWidth];
    for (int r = 0; r < area.edge; ++r) {
        ReadFSLine(row, area.edge, area.left, area.top + r);
        uint16_t* codes = item->PixData + static_cast<size_t>(r) * area.edge;
        for (int x = 0; x < area.edge; ++x) codes[x] = IndexToCode(row[x], keepColours);
    }
    if (keepColours) item->ColourImage = 1;
    strncpy0(item->Title, "Frame Store", sizeof item->Title);
    strncpy0(item->FileName, "Frame store", sizeof item->FileName);
    CurrentItem = item;
    Log("Load '%s' from frame store.\n", item->FileName);
    DisplayCurrentItem();
}

void EnableSelectionFromFS(bool enabled) { g_selectionEnabled = enabled; }
bool SelectionFromFSEnabled() { return g_selectionEnabled; }

void SelectImageFromFS(int x, int y, int button)
{
    if (!g_selectionEnabled) return;
    ImageHeaderType* item = GetFSContentsCoords(x, y);
    if (!item || !IsInList(item)) {
        Ap.ap_ClearParamText();
        return;
    }
    switch (button) {
    case 2:
    case 4: ShowParameterText(item); break;
    case 1:
        CurrentItem = item;
        DisplayCurrentItem();
        break;
    default: ProgramError("SelectFromFS but=%d", button); break;
    }
}

void RedrawFrameStore(const RECT& dest, DrawContext* dc, int number)
{
    VFSDataType* record = FindVFS(number);
    if (!record) return;
    RECT clip;
    if (dc) {
        GetClipBox(dc, &clip);
        // The clip box leaves out its right and bottom edges; frame rectangles take them in.
        clip.right -= 1;
        clip.bottom -= 1;
    } else {
        clip = {0, 0, record->Vfs->ClientWidth - 1, record->Vfs->ClientHeight - 1};
    }
    VFSDataType* former = CurrentVFS;
    CurrentVFS = record;
    record->Vfs->RedrawVFS(dest, clip, dc);
    CurrentVFS = former;
}

void PrintEditUpdateVFS(ImageHeaderType* item, int redisplay)
{
    if (item) {
        if (!IsInList(item)) {
            ProgramError("dl_PrintEditUpdateVFS");
            return;
        }
        CurrentItem = item;
    }
    if (!redisplay) return;
    const int32_t savedSize = FSState.ImageDisplaySize;
    FSState.ImageDisplaySize = kFrameWidth;
    DisplayCurrentItem();
    FSState.ImageDisplaySize = savedSize;
}

void ResetFrameCommandState()
{
    g_selectionEnabled = true;
    ResetPlacementState();
}
