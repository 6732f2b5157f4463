/* Tavrin Processing: the host callback table and the start-up records.
 *
 * A ProcessingHost hands dl_Initialise a table of 55 functions. The table is copied slot by
 * slot; a null pointer in a required slot makes dl_Initialise answer 1. Slots 41 to 46 are
 * never copied and may hold anything.
 */
#ifndef TAVRIN_AP_CALLBACKS_H
#define TAVRIN_AP_CALLBACKS_H

#include "tavrin/types.h"

#pragma pack(push, 1)

/* The initialisation record, 1032 bytes. */
typedef struct wint_DLLInitialiseType {
    char CmdLine[1024];     /* the host's command line; "/MORE" and "/DBG" are read from it */
    uint32_t HostData1;     /* bit 0: True-RGB mode (frame stores keep a 24-bit layer); otherwise carried */
    uint32_t HostData2;
} TAVRIN_PACKED wint_DLLInitialiseType;

/* The three start-up strings of dl_GetStartUpStrings. */
typedef struct wint_StartUpStringType {
    char Text1[256];        /* a free line */
    char Text2[256];        /* "Software Version 310 <Base System version 700>" */
    char Text3[256];        /* "Tavrin Data Processing Version 3.10 (18)\n" */
} TAVRIN_PACKED wint_StartUpStringType;

/* One slider of the host's scroll bar dialogue. */
typedef struct wint_ScrollBarParamType {
    float Min;
    float Max;
    float Value;
    char Title[80];
    char MinText[40];
    char MaxText[40];
    float SmallStep;
    float LargeStep;
    int32_t Flag;
    int32_t PosX;           /* (0, 0) is sent as (-1, -1): the host's default place */
    int32_t PosY;
} TAVRIN_PACKED wint_ScrollBarParamType;

#pragma pack(pop)

struct C3DParam;

/* Handle of a host text window (slot 21). */
typedef int32_t TextWindowHandle;

typedef void (*ap_PutPixelRowFn)(const uint8_t* colours, uint16_t count, uint16_t x, uint16_t y);
typedef void (*ap_GetPixelRowFn)(uint8_t* buffer, uint16_t count, uint16_t x, uint16_t y);
typedef void (*ap_FillPixelRowFn)(uint8_t colour, uint16_t count, uint16_t x, uint16_t y);
typedef void (*ap_PutPixelFn)(uint8_t colour, uint8_t mode, uint16_t x, uint16_t y);
typedef void (*ap_ReservedFn)(void);
typedef void (*ap_SetPaletteFn)(const uint16_t* red, const uint16_t* green, const uint16_t* blue);
typedef void (*ap_Reserved6Fn)(int32_t value1, int32_t value2);
typedef void (*ap_OpenPlotWindowFn)(uint16_t width, uint16_t height, const char* title);
typedef void (*ap_Reserved9Fn)(int32_t value);
typedef void (*ap_OpenGraphWindowFn)(const char* title);
typedef void (*ap_CloseGraphWindowFn)(void);
typedef void (*ap_SetMarkerModeFn)(uint8_t on);
typedef void (*ap_MarkVFSActiveFn)(int16_t vfs, uint8_t on);
typedef void (*ap_UpdateVFSFn)(uint16_t x1, uint16_t y1, uint16_t x2, uint16_t y2);
typedef void (*ap_ScrollBar1Fn)(wint_ScrollBarParamType* bar, uint16_t id);
typedef void (*ap_ScrollBar2Fn)(wint_ScrollBarParamType* bar1, wint_ScrollBarParamType* bar2,
                                uint16_t id, uint16_t flag);
typedef void (*ap_ScrollBar3Fn)(wint_ScrollBarParamType* bar1, wint_ScrollBarParamType* bar2,
                                wint_ScrollBarParamType* bar3, uint16_t id, uint16_t flag);
typedef void (*ap_SelectPointInVFSFn)(uint16_t x1, uint16_t y1, uint16_t x2, uint16_t y2,
                                      uint16_t handle, uint16_t flag);
typedef void (*ap_ClearParamTextFn)(void);
typedef void (*ap_PrintParamLineFn)(uint16_t line, uint16_t column, const char* text);
typedef TextWindowHandle (*ap_OpenTextWindowFn)(uint16_t rows, uint16_t columns, uint16_t x,
                                                uint16_t y, const char* title);
typedef void (*ap_PrintInWindowFn)(TextWindowHandle handle, uint16_t column, uint16_t row,
                                   const char* text);
typedef void (*ap_TextWindowFn)(TextWindowHandle handle);
typedef int16_t (*ap_EnterIntegerFn)(int32_t value, const char* prompt, const char* title,
                                     int32_t* result, uint16_t length);
typedef int16_t (*ap_EnterTextFn)(const char* value, const char* prompt, const char* title,
                                  char* result, uint16_t length);
typedef int16_t (*ap_EnterDoubleFn)(double value, const char* prompt, const char* title,
                                    double* result, uint16_t length);
typedef int16_t (*ap_EnterDoublePairFn)(double first, double second, const char* prompt1,
                                        const char* prompt2, const char* title, double* result1,
                                        double* result2, uint16_t length);
typedef void (*ap_ProgressFn)(const char* text, uint16_t percent);
typedef void (*ap_ProgressEndFn)(void);
typedef int16_t (*ap_PollFn)(void);
typedef void (*ap_ShowWaitFn)(const char* text);
typedef void (*ap_HideWaitFn)(void);
typedef int16_t (*ap_SelectDataDialogFn)(uint16_t ms, uint16_t md);
typedef void (*ap_OpenCITSDialogFn)(int32_t mode);
typedef int16_t (*ap_EnterStringFn)(const char* defaultText, const char* prompt,
                                    const char* title, char* buffer, uint16_t length);
typedef void (*ap_SetMeshInfoFn)(uint16_t vfs, void* mesh);
typedef int32_t (*ap_Open3DViewFn)(struct C3DParam* param, int32_t flag);
typedef int32_t (*ap_Close3DViewFn)(uint32_t dataId);
typedef void (*ap_ShowPanelFn)(int32_t id, int32_t mode);
typedef void (*ap_MarkerPanelFn)(int32_t value);
typedef void (*ap_Close3DPanelFn)(void);

/* The 55 slots in order. */
typedef struct ApCallbackFunctionTableType {
    ap_PutPixelRowFn ap_PutPixelRow;            /*  0 */
    ap_GetPixelRowFn ap_GetPixelRow;            /*  1 */
    ap_FillPixelRowFn ap_FillPixelRow;          /*  2 */
    ap_PutPixelFn ap_PutPixel;                  /*  3 */
    ap_ReservedFn ap_Reserved4;                 /*  4 required, never called */
    ap_SetPaletteFn ap_SetPalette;              /*  5 */
    ap_Reserved6Fn ap_Reserved6;                /*  6 not required */
    ap_ReservedFn ap_Reserved7;                 /*  7 */
    ap_OpenPlotWindowFn ap_OpenPlotWindow;      /*  8 */
    ap_Reserved9Fn ap_Reserved9;                /*  9 */
    ap_OpenGraphWindowFn ap_OpenGraphWindow;    /* 10 */
    ap_CloseGraphWindowFn ap_CloseGraphWindow;  /* 11 */
    ap_SetMarkerModeFn ap_SetMarkerMode;        /* 12 */
    ap_MarkVFSActiveFn ap_MarkVFSActive;        /* 13 */
    ap_UpdateVFSFn ap_UpdateVFS;                /* 14 */
    ap_ScrollBar1Fn ap_ScrollBar1;              /* 15 */
    ap_ScrollBar2Fn ap_ScrollBar2;              /* 16 */
    ap_ScrollBar3Fn ap_ScrollBar3;              /* 17 */
    ap_SelectPointInVFSFn ap_SelectPointInVFS;  /* 18 */
    ap_ClearParamTextFn ap_ClearParamText;      /* 19 */
    ap_PrintParamLineFn ap_PrintParamLine;      /* 20 */
    ap_OpenTextWindowFn ap_OpenTextWindow;      /* 21 */
    ap_PrintInWindowFn ap_PrintInWindow;        /* 22 */
    ap_TextWindowFn ap_CloseTextWindow;         /* 23 */
    ap_TextWindowFn ap_ClearTextWindow;         /* 24 */
    ap_EnterIntegerFn ap_EnterInteger;          /* 25 */
    ap_EnterTextFn ap_EnterText;                /* 26 */
    ap_EnterDoubleFn ap_EnterDouble;            /* 27 */
    ap_EnterDoublePairFn ap_EnterDoublePair;    /* 28 */
    ap_ProgressFn ap_Progress;                  /* 29 */
    ap_ProgressEndFn ap_ProgressEnd;            /* 30 */
    ap_PollFn ap_Poll;                          /* 31 */
    ap_ShowWaitFn ap_ShowWait;                  /* 32 */
    ap_HideWaitFn ap_HideWait;                  /* 33 */
    ap_ReservedFn ap_Reserved34;                /* 34 */
    ap_ReservedFn ap_Reserved35;                /* 35 */
    ap_SelectDataDialogFn ap_SelectDataDialog;  /* 36 */
    ap_ReservedFn ap_Reserved37;                /* 37 */
    ap_OpenCITSDialogFn ap_OpenCITSDialog;      /* 38 */
    ap_ReservedFn ap_Reserved39;                /* 39 */
    ap_EnterStringFn ap_EnterString;            /* 40 */
    void* ap_Unused41;                          /* 41 to 46: never copied */
    void* ap_Unused42;
    void* ap_Unused43;
    void* ap_Unused44;
    void* ap_Unused45;
    void* ap_Unused46;
    ap_SetMeshInfoFn ap_SetMeshInfo;            /* 47 */
    ap_Open3DViewFn ap_Open3DView;              /* 48 */
    ap_Close3DViewFn ap_Close3DView;            /* 49 */
    ap_ReservedFn ap_Reserved50;                /* 50 */
    ap_ReservedFn ap_Reserved51;                /* 51 */
    ap_ShowPanelFn ap_ShowPanel;                /* 52 */
    ap_MarkerPanelFn ap_MarkerPanel;            /* 53 */
    ap_Close3DPanelFn ap_Close3DPanel;          /* 54 */
} ApCallbackFunctionTableType;

#define AP_CALLBACK_SLOTS 55

#ifdef __cplusplus
static_assert(sizeof(wint_DLLInitialiseType) == 1032, "initialisation record is 1032 bytes");
static_assert(sizeof(ApCallbackFunctionTableType) == AP_CALLBACK_SLOTS * sizeof(void*),
              "55 slots");
#endif

#endif
