// Entry points: start and stop.
#include "tavrin/dl_host.h"
#include "host/startup.h"
#include "host/trace.h"
#include "host/revision.h"
#include "platform/platform_table.h"

TAVRIN_API int32_t dl_Initialise(const ApCallbackFunctionTableType* table, const wint_DLLInitialiseType* record)
{
    TraceEntry("dl_Initialise");
    return Initialise(table, record);
}

TAVRIN_API int32_t dl_Finish(void)
{
    TraceEntry("dl_Finish ...");
    return Finish();
}

TAVRIN_API int32_t dl_GetRevisionNumber(void)
{
    TraceEntry("dl_GetRevisionNumber");
    return kScanningRevision;
}

TAVRIN_API void dl_GetStartUpStrings(wint_StartUpStringType* strings)
{
    TraceEntry("dl_GetStartUpStrings");
    GetStartUpStrings(strings);
}

TAVRIN_API void dl_UserID(const char* loginName)
{
    TraceEntry("dl_UserID");
    SetUserID(loginName);
}

TAVRIN_API void dl_DeleteUserID(const char* loginName)
{
    TraceEntry("dl_DeleteUserID");
    DeleteUserID(loginName);
}

TAVRIN_API void dl_SetPlatformTable(const TavrinPlatformTable* table)
{
    SetPlatformTable(table);
}
