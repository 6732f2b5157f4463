/* Tavrin Processing: pointing in a frame store, the host's sliders, and the lists behind its
 * list controls.
 *
 * Pick mode. A command that needs points calls ap_SelectPointInVFS(left, top, right, bottom,
 * type, cursor); the host then reports every mouse event over that rectangle to
 * dl_SelectPointInVFS_Callback with the same type, x and y counted from the rectangle's top
 * left corner. The library draws a rubber band (colour index 22) and a "Cursor Information"
 * text window, and runs the command when the last point is set.
 *
 * Sliders. The library opens them with ap_ScrollBar1 to ap_ScrollBar3; the host reports each
 * move to the callback of its kind with the control id, a state word and the values. */
#ifndef TAVRIN_DL_SELECTION_H
#define TAVRIN_DL_SELECTION_H

#include "tavrin/image_header.h"
#include "tavrin/types.h"

/* Buttons of a pick-mode event: 0 a move, bit 0 left, bit 1 middle, bit 2 right. */
#define TV_PICK_LEFT 1
#define TV_PICK_MIDDLE 2
#define TV_PICK_RIGHT 4

/* One event of the pick mode. Answers non-zero when the selection has ended, and the host then
 * leaves the pick mode. */
TAVRIN_API int16_t dl_SelectPointInVFS_Callback(int16_t type, int16_t x, int16_t y, int16_t buttons, int32_t hndl);

/* Slider moves: the control id, the state word, the values of the bars. An id no command has
 * opened is reported with its values. */
TAVRIN_API int16_t dl_Horz_Scroll_Bar1_Callback(int16_t id, int16_t state, float value);
TAVRIN_API int16_t dl_Horz_Scroll_Bar2_Callback(int16_t id, int16_t state, float value1, float value2);
TAVRIN_API int16_t dl_Horz_Scroll_Bar3_Callback(int16_t id, int16_t state, float value1, float value2, float value3);
/* Reports its arguments and answers 0. */
TAVRIN_API int16_t dl_Horz_Vert_Scroll_Bar_Callback(int16_t id, int16_t state, float value1, float value2);
/* Answer 1 and do nothing else. */
TAVRIN_API int16_t dl_Horz_Vert_Scroll_Bar1_Callback(int16_t id, int16_t state, float value1, float value2);
TAVRIN_API int16_t dl_Horz2_Vert_Scroll_Bar1_Callback(int16_t id, int16_t state, float value1, float value2);

/* The list behind the host's list controls, up to 2000 rows of items of one use:
 * TV_SELECT_ITEMS_GROUP_PLOT the spectra of a group plot, TV_SELECT_ITEMS_IMAGE_SPECTRA the
 * spectra attached to the current image, TV_SELECT_ITEMS_MEASURE the images to measure. */
#define TV_SELECT_ITEMS_GROUP_PLOT 1
#define TV_SELECT_ITEMS_IMAGE_SPECTRA 2
#define TV_SELECT_ITEMS_MEASURE 3
#define TV_SELECT_ITEM_ROWS 2000
/* Each text column holds at most this many bytes, the terminator included. */
#define TV_SELECT_ITEM_TEXT 40

#pragma pack(push, 1)
/* Row texts: column 0 "%d %c:(%d)" (row number from 1, kind letter S spectrum, C SPS Mapping,
 * F FFT, I image, blank otherwise, DataId), column 1 the title, column 2 the file name.
 * Colours are 0x00BBGGRR. Items holds pointers: this record crosses to the host in memory only
 * (280024 bytes on a 64-bit host) and is never written to a file. */
typedef struct wint_SelectItemCol {
    int32_t Count;
    char Texts[TV_SELECT_ITEM_ROWS][3][TV_SELECT_ITEM_TEXT];
    uint32_t Colours[TV_SELECT_ITEM_ROWS];
    uint32_t Symbols[TV_SELECT_ITEM_ROWS];
    int32_t Header[3];                        /* sort and view state of the host's control */
    int32_t Selected[TV_SELECT_ITEM_ROWS];    /* non-zero: chosen */
    ImageHeaderType* Items[TV_SELECT_ITEM_ROWS];
    int32_t Extra[2];                         /* flags; Extra[1] the row a button acts on */
} TAVRIN_PACKED wint_SelectItemCol;
#pragma pack(pop)

/* Rebuilds the rows from the data list for the list's use, keeping the choices, colours and
 * symbols of rows whose item is still there (`fresh` set: none kept); with `apply` the list is
 * also stored. Answers 0, or 1 with "No images in memory" when there is nothing to list. */
TAVRIN_API int16_t dl_GetSelectItemCol(wint_SelectItemCol* list, int16_t fresh, int16_t apply);
/* Stores the list as the host left it. */
TAVRIN_API void dl_SetSelectItemCol(const wint_SelectItemCol* list);
/* The row Extra[1]: chosen with the next colour not in use (table entries 7 to 14 for a group
 * plot, else pure blue 0xff0000) and symbol 7; no longer chosen; made the current item. */
TAVRIN_API void dl_pb_SelectItemCol_Add(wint_SelectItemCol* list);
TAVRIN_API void dl_pb_SelectItemCol_Remove(wint_SelectItemCol* list);
TAVRIN_API void dl_pb_SelectItemCol_Pickup(wint_SelectItemCol* list);
/* The images (which 0) or spectra (1) for the print layout: column 0 "(1)" for the current
 * item, "---" for the others. Another `which` is reported. */
TAVRIN_API void dl_GetPrintEditItem(wint_SelectItemCol* list, int16_t which);

#endif
