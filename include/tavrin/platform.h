/* Tavrin Processing: the platform table.
 *
 * The library was designed against a desktop platform that also served message boxes, file
 * dialogs, the keyboard state, the wait cursor, the progress dialog and a debugger stream.
 * On this system a host supplies those through one table, registered with
 * dl_SetPlatformTable - our one addition to the entry points. Every slot is optional: an empty
 * slot, or no table at all, falls back to the headless default, which writes the text of each
 * prompt to the log and answers its default button, keeps the progress dialog's state in
 * memory, reports no key pressed, and sends debug output to standard error.
 */
#ifndef TAVRIN_PLATFORM_H
#define TAVRIN_PLATFORM_H

#include "tavrin/types.h"

/* Message box styles: buttons, icons, default button, modality (the values of the desktop
 * platform, so that flags passed by a host or traced in the log keep their meaning). */
#define TV_MB_OK 0x0u
#define TV_MB_OKCANCEL 0x1u
#define TV_MB_YESNOCANCEL 0x3u
#define TV_MB_YESNO 0x4u
#define TV_MB_TYPEMASK 0xFu
#define TV_MB_ICONSTOP 0x10u
#define TV_MB_ICONQUESTION 0x20u
#define TV_MB_ICONWARNING 0x30u
#define TV_MB_ICONINFORMATION 0x40u
#define TV_MB_DEFBUTTON1 0x000u
#define TV_MB_DEFBUTTON2 0x100u
#define TV_MB_DEFBUTTON3 0x200u
#define TV_MB_DEFMASK 0xF00u
#define TV_MB_TASKMODAL 0x2000u

/* Answers of a message box. */
#define TV_IDOK 1
#define TV_IDCANCEL 2
#define TV_IDYES 6
#define TV_IDNO 7

/* Key codes asked of KeyState. */
#define TV_VK_ESCAPE 0x1B

/* Answers of ProgressOpen. */
#define TV_PROGRESS_OK 0
#define TV_PROGRESS_CANNOT_CREATE 1
#define TV_PROGRESS_NO_WINDOW 2

/* Control ids of the two labels of the progress dialog. */
#define TV_PROGRESS_TEXT1 1038
#define TV_PROGRESS_TEXT2 1036

typedef struct TavrinPlatformTable {
    void* Context;  /* handed back as the first argument of every slot */

    /* A modal message box; answers TV_IDOK, TV_IDCANCEL, TV_IDYES or TV_IDNO. */
    int32_t (*MessageBox)(void* context, const char* text, const char* caption, uint32_t style);
    /* A file dialog: open != 0 to open, 0 to save. Writes the chosen path (NUL-terminated,
     * at most pathSize bytes) and answers 1, or answers 0 on cancel. */
    int32_t (*FileDialog)(void* context, int32_t open, const char* filter,
                          const char* defaultExtension, const char* title,
                          const char* initialDirectory, char* path, uint32_t pathSize);
    /* The asynchronous state of a key: bit 15 set while it is held down. */
    int16_t (*KeyState)(void* context, int32_t virtualKey);
    /* The wait cursor on (1) or back to the saved cursor (0). */
    void (*SetWaitCursor)(void* context, int32_t on);
    /* The progress dialog: create and show it; answers a TV_PROGRESS_ code. */
    int32_t (*ProgressOpen)(void* context, const char* title);
    void (*ProgressClose)(void* context);
    /* The bar position, 0 to 39. */
    void (*ProgressSetBar)(void* context, int32_t position);
    /* One of the two labels, by control id. */
    void (*ProgressSetText)(void* context, int32_t controlId, const char* text);
    /* Dispatch pending messages; answers non-zero when the user pressed Cancel meanwhile. */
    int32_t (*PumpMessages)(void* context);
    /* A message box with a scrolling text, for long lists. */
    void (*ScrollableMessageBox)(void* context, const char* title, const char* text);
    /* The debugger output stream. */
    void (*DebugOutput)(void* context, const char* text);
    /* The region overlay of the background tool over the current frame store: on (1) shows
     * the parallelogram of corner A at centre (centreX, centreY), sides of lengthAB and
     * lengthAC pixels along angle1 (A to B) and angle2 (A to C), in degrees counter-clockwise
     * from the X axis with Y growing downwards as in the frame; option is the first option of
     * the overlay; on 0 removes it. Coordinates are in the 0 to 511 square of the frame. An
     * empty slot draws nothing. */
    void (*ShowRegionOverlay)(void* context, int32_t on, int32_t option, int32_t centreX, int32_t centreY,
                              double lengthAB, double lengthAC, double angle1, double angle2);
} TavrinPlatformTable;

/* Registers a platform table (copied slot by slot); null restores the headless default.
 * May be called before dl_Initialise. */
TAVRIN_API void dl_SetPlatformTable(const TavrinPlatformTable* table);

#endif
