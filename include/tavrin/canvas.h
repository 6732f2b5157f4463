/* Tavrin Processing: the software canvas.
 *
 * A canvas is a w by h picture of 32-bit pixels that the library draws on. A host window of
 * a frame store is a canvas of the window's client size: the host creates it, passes it to
 * dl_VFS_open_vfs as the window, copies its own bitmap into it and shows its pixels.
 *
 * Pixels are row-major, row 0 at the top, w pixels a row with no padding. Each is 0xAABBGGRR,
 * that is, the bytes red, green, blue, alpha in memory; everything the library draws is
 * opaque (alpha 255). Colours passed in are 0x00BBGGRR, red in the low byte.
 */
#ifndef TAVRIN_CANVAS_H
#define TAVRIN_CANVAS_H

#include "tavrin/types.h"

typedef struct TvCanvas TvCanvas;
typedef struct DrawContext DrawContext;

/* A canvas cleared to opaque black; null when a size is negative, an edge exceeds 32767,
 * the area exceeds 67108864 pixels or memory runs out. A size of 0 gives an empty canvas
 * on which every drawing does nothing. */
TAVRIN_API TvCanvas* tv_canvas_create(int32_t width, int32_t height);
/* Frees a canvas; null is allowed. Drawing contexts of the canvas must be released first. */
TAVRIN_API void tv_canvas_destroy(TvCanvas* canvas);
/* The size in pixels; 0 for a null canvas. */
TAVRIN_API int32_t tv_canvas_width(const TvCanvas* canvas);
TAVRIN_API int32_t tv_canvas_height(const TvCanvas* canvas);
/* The pixels, width * height of them; null for a null or empty canvas. */
TAVRIN_API uint32_t* tv_canvas_pixels(TvCanvas* canvas);
/* Fills the whole canvas with an opaque colour 0x00BBGGRR. */
TAVRIN_API void tv_canvas_clear(TvCanvas* canvas, uint32_t rgb);
/* Writes the canvas as a PNG file: 8-bit RGB when every pixel is opaque, else 8-bit RGBA.
 * Answers 0 on success, 1 on failure (null canvas or path, empty canvas, file not written). */
TAVRIN_API int32_t tv_canvas_write_png(const TvCanvas* canvas, const char* path);

/* A drawing context on the canvas, for drawing into it with the library (dl_RedrawVFS into a
 * host's own picture, for instance); null for a null canvas. Release it before destroying the
 * canvas. */
TAVRIN_API DrawContext* tv_canvas_get_dc(TvCanvas* canvas);
/* Frees a context of that canvas; answers 1, or 0 for a null context or one of another canvas. */
TAVRIN_API int32_t tv_canvas_release_dc(TvCanvas* canvas, DrawContext* dc);

#endif
