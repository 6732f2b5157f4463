/* Tavrin Processing: the data list - the current item, the data menu, stepping and closing.
 *
 * All data in memory hang on one list of ImageHeaderType records in the order of the user's
 * work. One item is current; nearly every command works on it. The host addresses items by
 * their position within a selection mode (for its data menu) and by pointer. */
#ifndef TAVRIN_DL_DATA_LIST_H
#define TAVRIN_DL_DATA_LIST_H

#include "tavrin/image_header.h"

/* Selection modes (md) of dl_GetDataDescriptor and the host's data dialog. */
#define TV_SELECT_MAPPING_TOPOGRAPHIES 1 /* plain images with AcqMode 11 or 51, no mapping set */
#define TV_SELECT_SPECTRA 2              /* spectrum classes */
#define TV_SELECT_SAME_SOURCE 4          /* images with the current item's DataSource */
#define TV_SELECT_SAME_CLASS 8           /* items of the current item's class (image or not) */
#define TV_SELECT_ALL 16                 /* everything */
#define TV_SELECT_IMAGES 32              /* images */
#define TV_SELECT_FRAME_STORE 64         /* items the frame store filter accepts */

/* Answers of dl_GetDataDescriptor. */
#define TV_DESC_CURRENT 1
#define TV_DESC_OTHER 2
#define TV_DESC_NONE 4

/* Bits of dl_IsCurrentDataTypeImage. */
#define TV_DATA_SPECTRUM 0x1
#define TV_DATA_IMAGE 0x2
#define TV_DATA_FFT 0x4
#define TV_DATA_MAPPING 0x8
#define TV_DATA_IMAGE_CLASS 0x10
#define TV_DATA_NOT_FIRST 0x20
#define TV_DATA_SAME_CLASS_BEFORE 0x40
#define TV_DATA_NOT_LAST 0x80
#define TV_DATA_SAME_CLASS_BEHIND 0x100
#define TV_DATA_ATTACHED_SPECTRA 0x400
#define TV_DATA_FORCE_CURVE_MAPPING 0x800
#define TV_DATA_SQUARE_MAPPING_64 0x1000
#define TV_DATA_SQUARE_MAPPING_128 0x2000
#define TV_DATA_OWNED_SPECTRUM 0x4000

/* The current item, null when the list is empty. */
TAVRIN_API ImageHeaderType* dl_GetCurrentImagePtr(void);
/* Makes an item of the list current, with no redraw. A pointer that is not an item of the list
 * is reported as a program error and changes nothing. */
TAVRIN_API void dl_SetCurrentImagePtr(ImageHeaderType* item);
/* The data menu text of the n-th item (from 0) of selection mode md, counted against the
 * current item; ms set counts only items of the current item's size. With md 16 the text is
 * "%c:(%d) %s.  \"%s\"" (class letter S, C, F, I or blank; DataId; file name without directory
 * and extension; title), with any other md "(%d) %s.  \"%s\"". `text` receives at most 512
 * bytes. Answers 1 for the current item, 2 for another item, 4 for none (empty text). */
TAVRIN_API int16_t dl_GetDataDescriptor(int16_t n, char* text, int16_t ms, int16_t md);
/* Makes the n-th item of the list current and shows it; nothing happens when there is none. */
TAVRIN_API void dl_SetDataItem(int16_t n);
/* One step along the list (the item stays at an end), shown. */
TAVRIN_API void dl_NextData1(void);
TAVRIN_API void dl_PreviousData1(void);
/* To the next or previous item of the current item's class, shown; it stays when there is
 * none. */
TAVRIN_API void dl_NextDataType1(void);
TAVRIN_API void dl_PreviousDataType1(void);
/* Ask "Close current image ?  " or "Close current spectrum ?  " (default No) and close the
 * current item; the next or the previous item stands in. */
TAVRIN_API void dl_EraseDataNext(void);
TAVRIN_API void dl_EraseDataPrevious(void);
/* Ask "Close all data ?  " (default No) and close every item. */
TAVRIN_API void dl_EraseAllData(void);
/* Ask "Close all data except current ?  " (default No) and close every other item. */
TAVRIN_API void dl_EraseAllDataExceptCurrent(void);
/* The TV_DATA_ bits of the current item; 0 with no item. */
TAVRIN_API int32_t dl_IsCurrentDataTypeImage(void);

#endif
