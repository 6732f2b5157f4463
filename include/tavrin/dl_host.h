/* Tavrin Processing: start and stop, errors and the log. */
#ifndef TAVRIN_DL_HOST_H
#define TAVRIN_DL_HOST_H

#include "tavrin/ap_callbacks.h"
#include "tavrin/platform.h"

/* Starts the library: copies the callback table and the record, reads the command line
 * switches "/MORE" and "/DBG", logs the banner, reads the settings. 0 on success, 1 on
 * failure (already initialised, or a required callback slot is null). */
TAVRIN_API int32_t dl_Initialise(const ApCallbackFunctionTableType* table, const wint_DLLInitialiseType* record);
/* Ends the run after asking. 0 cancelled, 1 finished, 2 finished with settings saved. */
TAVRIN_API int32_t dl_Finish(void);
/* The header revision of the image record: 700. */
TAVRIN_API int32_t dl_GetRevisionNumber(void);
TAVRIN_API void dl_GetStartUpStrings(wint_StartUpStringType* strings);
/* Sets the login name, builds the settings section names, creates the settings directories. */
TAVRIN_API void dl_UserID(const char* loginName);
/* Deletes that user's settings files and resets the last login names to "Admin". */
TAVRIN_API void dl_DeleteUserID(const char* loginName);

/* Errors of the application range (36865 to 36882): the number, then what it needs. */
TAVRIN_API void dl_Error(uint32_t number, ...);
/* A time-stamped line in the log, without the log mutex. */
TAVRIN_API void dl_Log2Disk(const char* format, ...);
/* Sets the log file name (<home>TavrinProc310.log) and deletes that file. */
TAVRIN_API void dl_InitLogFileName(void);
/* The path of the Find File list, <home>tavrin_datalist.dat; `path` holds 260 bytes. */
TAVRIN_API void dl_GetDataLogFileName(char* path);
/* A formatted text to the debugger stream. */
TAVRIN_API void dl_OutputDebugString(const char* format, ...);

#endif
