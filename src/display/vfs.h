// Frame stores: the surfaces on which everything is shown.
//
// A frame store is a fixed 512 by 512 area that belongs to one window of the host. It has three
// layers that stay in step: the pixel layer (the host's buffer of 8-bit colour indices and, in
// True-RGB mode, its 24-bit buffer; both bottom-up: frame row y is buffer row 511 - y), the
// display list of vector items drawn over it (CVfs), and the contents grid, which maps every
// point of the frame to the data item shown there.
//
// Several frame stores can be open, each under a number the host chooses; one is current and
// all drawing goes to it. While a frame store is current its placement state lives in FSState;
// making another one current saves it into the record and loads the other's.
//
// The protocol with the host: a drawing command raises BatchDepth and writes rows straight into
// the buffers; when the depth returns to 0, InvalidateFS tells the host the changed rectangle
// (ap_UpdateVFS) and draws the display list over it at once. Outside a batch (or without a
// buffer) pixel operations go to the host through its callbacks.
#pragma once

#include <cstdint>

#include "display/cvfs.h"
#include "tavrin/image_header.h"

constexpr int kFrameWidth = 512;
constexpr int kFrameHeight = 512;
// The contents grid: cells of 64 by 16 frame pixels, 8 columns and 32 rows.
constexpr int kCellWidth = 64;
constexpr int kCellHeight = 16;
constexpr int kGridColumns = kFrameWidth / kCellWidth;
constexpr int kGridRows = kFrameHeight / kCellHeight;
// Length of ColourMap: room for the shading table of the relief mode.
constexpr int kColourMapEntries = 1024;
// ImType1 of a cell that the whole-frame clear wrote.
constexpr uint32_t kClearedCellType = 6;

// One cell of the contents grid: an independent copy of the data of the last item that
// covered it.
struct FSContentsType {
    ImageHeaderType* Image;       // the item shown here, or null
    uint32_t ImType1;
    uint16_t Left, Top, Right, Bottom;   // the frame rectangle of the item; 0 when forgotten
    uint64_t CreatedFileTime, SavedFileTime;
    uint16_t PixelsX, PixelsY;    // nx, ny of the item
    float OffsetX, OffsetY;       // ImageOffsetX, ImageOffsetY
    float SizeX, SizeY;           // ImageSizeX, ImageSizeY
};

// The placement state of a frame store: where the next image goes, how the last one was
// placed, the display mode and the contents grid.
struct FrameStoreState {
    uint16_t DisplayBusy;        // set while an image is being written
    int32_t ImageDisplaySize;    // 0: own size (up to 512); else the edge of every image
    int16_t NPixelsX, NPixelsY;  // frame size of the image being placed
    int16_t ImPntsX, ImPntsY;    // image points per frame pixel; negative: pixels per point
    int16_t CursorY, CursorX;    // top left corner of the next image
    int16_t PrevCursorY, PrevCursorX;
    int16_t RowHeight, PrevRowHeight;
    int16_t ImageLeft, ImageTop, ImageRight, ImageBottom;   // the last image, inclusive
    int16_t ImagePixelsX, ImagePixelsY;                     // data size of the last image
    int16_t FrameDrawn;          // the outline of the current image rectangle is drawn
    int32_t TextOverlayOn;       // a size caption goes under images
    int32_t TextOverlayMode;
    uint8_t ColourMap[kColourMapEntries];   // image level to colour index
    int32_t DispMode;            // selected display mode, 0 to 4
    int32_t LineDispMode;        // the mode of the row writer for the present image
    FSContentsType Contents[kGridColumns][kGridRows];   // [x / 64][y / 16]
};

// One open frame store, in the order of its fields: the buffers, the host's number, the chain,
// the saved placement state, the display list.
struct VFSDataType {
    uint8_t* FrameBuffer;   // 512 x 512 indices, given by the host, bottom-up
    uint8_t* RGBBuffer;     // True-RGB mode: 512 x 512 x 3 bytes blue, green, red; else null
    int16_t VFSNo;
    VFSDataType* Next;      // in order of opening
    FrameStoreState State;
    CVfs* Vfs;
};

// Process-wide state.
extern VFSDataType* FirstVFS;      // head of the chain
extern VFSDataType* CurrentVFS;    // the current frame store, or null
extern FrameStoreState FSState;    // placement state of the current frame store
extern uint8_t* CurrentFrameBuffer;
extern uint8_t* CurrentRGBBuffer;
extern int32_t BatchDepth;
// Set when the library runs without a user interface: no parameter text, outlines always in
// colour 16 and drawn within the batch.
extern bool NoUserInterface;

// The display list of the current frame store, or null.
CVfs* CurrentVfs();
// The frame store of a number, or null.
VFSDataType* FindVFS(int number);

// The chain. Open answers 0, or 1 on failure ("VFS_open_vfs %d" for a number that is open,
// "Not enough memory"). Buffers: the index buffer, and in True-RGB mode the 24-bit buffer.
int VFS_open_vfs(uint8_t* frameBuffer, uint8_t* rgbBuffer, TvCanvas* wnd, int number, int bitsWidth,
                 int bitsHeight, int clientWidth, int clientHeight);
// The host's form: `buffers` holds the index buffer and the 24-bit buffer. A null index buffer
// is reported ("dl_VFS_open_vfs %d %p"), and pixel operations then go to the host. In True-RGB
// mode a null 24-bit buffer is reported ("dl_VFS_open_vfs TrueRGB %d %p") and the frame store
// keeps no 24-bit layer. The client size is read from the window (512 by 512 without one).
int OpenFrameStore(uint8_t** buffers, int number, TvCanvas* wnd);
void VFS_close_vfs(int number);
void VFS_set_current_vfs(int number);

// Batches of drawing. EndBatchAndShow ends a batch and, at depth 0, invalidates the rectangle.
void BeginBatch();
void EndBatch();
void EndBatchAndShow(int left, int top, int right, int bottom);
// Tells the host the rectangle changed, then draws the display list over it at scale 1.
void InvalidateFS(int left, int top, int right, int bottom);

// The colour of a palette index, as the palette was last loaded.
uint32_t IndexColour(int index);

// Pixel layer, in frame coordinates; what lies outside the frame is left out.
void WriteFSLine(const uint8_t* indices, int n, int x, int y);
void ReadFSLine(uint8_t* indices, int n, int x, int y);
void FillFSLine(uint8_t index, int n, int x, int y);
void PutFSPixel(uint8_t index, int add, int x, int y);
void PutFSColour(uint32_t rgb, int add, int x, int y);
// Reads the index layer; answers 0 (and leaves `out`) when there is no buffer or the point is
// outside the frame.
int GetFSPixel(uint8_t* out, int x, int y);

// Vector drawing of the current frame store, relative to the clip origin.
void FSSetClip(int left, int top, int right, int bottom);
void FSGetClip(int* left, int* top, int* right, int* bottom);
void FSSetColour(int index);
int FSGetColour();
void FSSetTextColour(int index);
int FSGetTextColour();
// The font and the placement word (TextAlignWord) of FSTextOut.
void FSSetTextFont(const FontRecType& font);
// The font FSTextOut uses now (the general font until one is set).
const FontRecType& FSGetTextFont();
void FSSetTextAlign(uint32_t alignWord);
void FSMoveTo(int x, int y);
void FSLineTo(int x, int y, int width);
// kind VFS_ITEM_RECT: an outline; VFS_ITEM_FILL: a filled rectangle.
void FSBox(int kind, int x1, int y1, int x2, int y2);
void FSTextOut(int x, int y, const char* text);

// The drawing state of the FS operations (clip, colours, position, text font) as at load.
void ResetFSDrawState();

// Closes every frame store and puts the frame store state, the font state and the drawing
// state back to what a freshly loaded library holds.
void ResetFrameStoreState();
