/* Tavrin Processing: frame stores - the host's 512 by 512 pictures and what the library draws
 * over them.
 *
 * The host owns the buffers and the window of each frame store: an index buffer of 512 x 512
 * bytes (one colour index a pixel) and, in True-RGB mode, a buffer of 512 x 512 x 3 bytes
 * (blue, green, red). Both are stored bottom-up: frame row y (0 at the top) lies at buffer row
 * 511 - y. The window is a canvas of the window's client size (tavrin/canvas.h).
 *
 * When the library has changed a rectangle of the current frame store it calls ap_UpdateVFS;
 * the host then copies its bitmap into the window and calls dl_RedrawVFS, which draws the
 * library's display list (lines, text, outlines) on top. */
#ifndef TAVRIN_DL_FRAME_STORE_H
#define TAVRIN_DL_FRAME_STORE_H

#include "tavrin/canvas.h"
#include "tavrin/image_header.h"
#include "tavrin/types.h"

/* DrawContext (tavrin/canvas.h): a drawing context of a canvas; null in dl_RedrawVFS draws into
 * the frame store's window. */

/* A rectangle of pixels, right and bottom edges included. */
typedef struct TvRect {
    int32_t left;
    int32_t top;
    int32_t right;
    int32_t bottom;
} TvRect;

#define TV_PICKUP_ENTRIES 4101
#define TV_PICKUP_HEADER_BYTES 6090

#pragma pack(push, 1)

/* One item as the clipboard carries it: the sizes in bytes, then the pointers, of its blocks.
 * Entry 0: the record (6090 bytes). Entry 1: the pixels (2 * nx * ny bytes) or the samples of
 * a spectrum (8 * nx bytes). With complex FFT data: entry 2 size 0 with the FFT block, entry 3
 * its 8 * nx * ny bytes. The pointers stay owned by the data list: nothing is copied at
 * pick-up, and a drop copies. */
typedef struct VFSPickUpType {
    uint32_t Sizes[TV_PICKUP_ENTRIES];
    void* Pointers[TV_PICKUP_ENTRIES];
} TAVRIN_PACKED VFSPickUpType;

#pragma pack(pop)

#ifdef __cplusplus
static_assert(sizeof(VFSPickUpType) == TV_PICKUP_ENTRIES * (4 + sizeof(void*)), "pick-up record size");
static_assert(offsetof(VFSPickUpType, Pointers) == TV_PICKUP_ENTRIES * 4, "pointers follow the sizes");
#endif

/* Opens frame store `number` on the window `wnd`: buffers[0] is the index buffer, buffers[1]
 * the 24-bit buffer (True-RGB mode). Both are cleared. Answers 0, or 1 when the number is open
 * already or memory runs out. */
TAVRIN_API int16_t dl_VFS_open_vfs(uint8_t** buffers, int16_t number, TvCanvas* wnd);
/* Closes it; when it was current, the next one (or the one before) becomes current. */
TAVRIN_API void dl_VFS_close_vfs(int16_t number);
/* Makes it current and draws its display list again. */
TAVRIN_API void dl_VFS_set_current_vfs(int16_t number);
/* Draws the display list of frame store `number` into `dc` (null: its window), on the
 * rectangle `dest` onto which the 512 by 512 frame maps, within the clip box of the context. */
TAVRIN_API void dl_RedrawVFS(const TvRect* dest, DrawContext* dc, int32_t number);
/* Fills `out` for the item shown at frame point (x, y); x or y of -1, or outside 0 to 511,
 * take the current item. Answers 0, or 1 when there is no item. */
TAVRIN_API int32_t dl_VFS_pickup_image(int32_t x, int32_t y, VFSPickUpType* out);
/* A copy of a picked item becomes a new item behind the current one, current, and shown.
 * Answers 0, or 1 when the record's revision is too new or the blocks do not match it. */
TAVRIN_API int32_t dl_VFS_drop_image(const VFSPickUpType* in);
/* A mouse click in the frame: button 1 makes the item there current and shows it, 2 or 4 shows
 * its parameter text; with no item there the text panel is cleared. */
TAVRIN_API void dl_SelectImageFromFS(int16_t x, int16_t y, int16_t button);
/* Clears the current frame store: pixels, display list, contents and placement cursor. */
TAVRIN_API void dl_ClearFrameStore(void);
/* Asks "Keep colours ?  " and makes a new image of an area of the frame: `which` 1 the whole
 * frame (512); 2 to 5 the quarters (256) top left, top right, bottom left, bottom right; 6 the
 * centre (256). */
TAVRIN_API void dl_LoadFrame(int16_t which);
/* Print layout: makes `item` current when not null and, with `redisplay`, shows it at 512. */
TAVRIN_API void dl_PrintEditUpdateVFS(ImageHeaderType* item, int32_t redisplay);
/* Clips the line (*x1, *y1)-(*x2, *y2) to `rect` (edges included) by the Cohen-Sutherland
 * method; stores the ends (truncated) and answers 1 when a part remains, else 0. */
TAVRIN_API int32_t dl_clip_line_cohen_sutherlandI(int32_t* x1, int32_t* y1, int32_t* x2, int32_t* y2,
                                                  const TvRect* rect);

#endif
