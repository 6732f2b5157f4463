#include "display/vfs.h"
#include "display/contents_grid.h"
#include "display/frame_commands.h"
#include "display/lut.h"
#include "display/palette.h"
#include "host/ap_callbacks.h"
#include "host/errors.h"
#include "store/memory.h"

#include <algorithm>
#include <cstring>

VFSDataType* FirstVFS = nullptr;
VFSDataType* CurrentVFS = nullptr;
FrameStoreState FSState;
uint8_t* CurrentFrameBuffer = nullptr;
uint8_t* CurrentRGBBuffer = nullptr;
int32_t BatchDepth = 0;
bool NoUserInterface = false;

namespace {

constexpr size_t kFrameBytes = static_cast<size_t>(kFrameWidth) * kFrameHeight;

// The palette is loaded when the first frame store of a run opens.
bool g_anyOpened = false;

// The placement state of a frame store as it is opened.
void SetOpeningState(FrameStoreState* state)
{
    std::memset(state, 0, sizeof *state);
    state->ImageDisplaySize = 512;
    state->NPixelsX = state->NPixelsY = 256;
    state->TextOverlayOn = 0;
    state->TextOverlayMode = 1;
}

void SaveCurrentState()
{
    if (CurrentVFS) CurrentVFS->State = FSState;
}

void LoadState(VFSDataType* record)
{
    FSState = record->State;
    FSState.DisplayBusy = 0;
    CurrentFrameBuffer = record->FrameBuffer;
    CurrentRGBBuffer = record->RGBBuffer;
    CurrentVFS = record;
}

RECT FrameRect(const CVfs& vfs) { return {0, 0, vfs.BitsWidth - 1, vfs.BitsHeight - 1}; }

uint16_t HostCoordinate(int value) { return static_cast<uint16_t>(std::clamp(value, 0, 65535)); }

} // namespace

CVfs* CurrentVfs() { return CurrentVFS ? CurrentVFS->Vfs : nullptr; }

VFSDataType* FindVFS(int number)
{
    for (VFSDataType* p = FirstVFS; p; p = p->Next)
        if (p->VFSNo == number) return p;
    return nullptr;
}

int VFS_open_vfs(uint8_t* frameBuffer, uint8_t* rgbBuffer, TvCanvas* wnd, int number, int bitsWidth, int bitsHeight,
                 int clientWidth, int clientHeight)
{
    if (!g_anyOpened) {
        g_anyOpened = true;
        ReloadPalette();
    }
    if (FindVFS(number)) {
        ProgramError("VFS_open_vfs %d", number);
        return 1;
    }
    auto* record = static_cast<VFSDataType*>(ecalloc(1, sizeof(VFSDataType)));
    CVfs* vfs = record ? CVfs::Create(wnd, bitsWidth, bitsHeight, clientWidth, clientHeight) : nullptr;
    if (!vfs) {
        efree(record);
        Error(ERR_NO_MEMORY);
        return 1;
    }
    record->FrameBuffer = frameBuffer;
    if (frameBuffer) std::memset(frameBuffer, 0, kFrameBytes);
    record->RGBBuffer = TrueRGB ? rgbBuffer : nullptr;
    if (record->RGBBuffer) std::memset(record->RGBBuffer, 0, kFrameBytes * 3);
    record->VFSNo = static_cast<int16_t>(number);
    record->Next = nullptr;
    SetOpeningState(&record->State);
    record->Vfs = vfs;
    VFSDataType** end = &FirstVFS;
    while (*end) end = &(*end)->Next;
    *end = record;
    if (!CurrentVFS) LoadState(FirstVFS);
    return 0;
}

int OpenFrameStore(uint8_t** buffers, int number, TvCanvas* wnd)
{
    uint8_t* frameBuffer = buffers ? buffers[0] : nullptr;
    uint8_t* rgbBuffer = buffers ? buffers[1] : nullptr;
    if (!frameBuffer) ProgramError("dl_VFS_open_vfs %d %p", number, static_cast<void*>(frameBuffer));
    if (TrueRGB && !rgbBuffer) {
        // An index buffer holds one byte a pixel and cannot take the three of the 24-bit layer:
        // such a frame store keeps no 24-bit layer.
        ProgramError("dl_VFS_open_vfs TrueRGB %d %p", number, static_cast<void*>(rgbBuffer));
    }
    RECT client{0, 0, kFrameWidth, kFrameHeight};
    if (wnd) GetClientRect(wnd, &client);
    return VFS_open_vfs(frameBuffer, rgbBuffer, wnd, number, kFrameWidth, kFrameHeight, client.right - client.left,
                        client.bottom - client.top);
}

void VFS_close_vfs(int number)
{
    VFSDataType* record = FindVFS(number);
    if (!record) {
        ProgramError("VFS_close_vfs %d", number);
        return;
    }
    VFSDataType* prev = nullptr;
    VFSDataType* p = FirstVFS;
    while (p && p != record) {
        prev = p;
        p = p->Next;
    }
    if (!p) {
        ProgramError("VFS_set_close %d", number);
        return;
    }
    if (prev)
        prev->Next = record->Next;
    else
        FirstVFS = record->Next;
    if (record == CurrentVFS) {
        VFSDataType* standIn = record->Next ? record->Next : prev;
        if (standIn) {
            VFS_set_current_vfs(standIn->VFSNo);
        } else {
            CurrentVFS = nullptr;
            CurrentFrameBuffer = CurrentRGBBuffer = nullptr;
        }
    }
    CVfs::Destroy(record->Vfs);
    efree(record);
}

void VFS_set_current_vfs(int number)
{
    VFSDataType* record = FindVFS(number);
    if (!record) {
        ProgramError("VFS_set_current_vfs %d", number);
        return;
    }
    SaveCurrentState();
    LoadState(record);
    const RECT frame = FrameRect(*record->Vfs);
    record->Vfs->RedrawVFS(frame, frame, nullptr);
}

void BeginBatch() { ++BatchDepth; }

void EndBatch()
{
    if (BatchDepth <= 0) {
        ProgramError("EndBatch %d", BatchDepth);
        BatchDepth = 0;
        return;
    }
    --BatchDepth;
}

void EndBatchAndShow(int left, int top, int right, int bottom)
{
    EndBatch();
    if (BatchDepth == 0) InvalidateFS(left, top, right, bottom);
}

void InvalidateFS(int left, int top, int right, int bottom)
{
    Ap.ap_UpdateVFS(HostCoordinate(left), HostCoordinate(top), HostCoordinate(right), HostCoordinate(bottom));
    if (CVfs* vfs = CurrentVfs()) vfs->RedrawVFS(FrameRect(*vfs), RECT{left, top, right, bottom}, nullptr);
}

uint32_t IndexColour(int index)
{
    const int i = index & 0xff;
    return RgbColour(PaletteRed[i], PaletteGreen[i], PaletteBlue[i]);
}

void ResetFrameStoreState()
{
    VFSDataType* p = FirstVFS;
    while (p) {
        VFSDataType* next = p->Next;
        CVfs::Destroy(p->Vfs);
        efree(p);
        p = next;
    }
    FirstVFS = CurrentVFS = nullptr;
    CurrentFrameBuffer = CurrentRGBBuffer = nullptr;
    SetOpeningState(&FSState);
    BatchDepth = 0;
    NoUserInterface = false;
    g_anyOpened = false;
    ResetFSDrawState();
    ResetFonts();
    ResetFrameCommandState();
}
