#include "host/startup.h"
#include "analysis/measure.h"
#include "display/colour_startup.h"
#include "display/vfs.h"
#include "host/ap_callbacks.h"
#include "host/errors.h"
#include "host/globals.h"
#include "host/log.h"
#include "host/prompts.h"
#include "host/revision.h"
#include "host/trace.h"
#include "platform/clock.h"
#include "platform/locale.h"
#include "platform/paths.h"
#include "platform/platform_table.h"
#include "platform/settings_store.h"
#include "settings/configuration.h"
#include "settings/user_settings.h"
#include "store/data_list.h"
#include "store/history.h"
#include "store/memory.h"

#include <cctype>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <string>

bool DebugMode = false;
bool MoreMode = false;
int LocaleClass = 999;
std::string DataDir;
std::string ColourDir;
std::string UserName = "Admin";
bool Initialised = false;

namespace {

wint_DLLInitialiseType g_record{};
char g_commandLine[1024];
std::string g_firstWord;
long g_startHeap = 0;
long g_finishDifference = 0;

void CheckRevisionStrings()
{
    if (std::atoi(kProcessingRevision) != 310 || std::atoi(kProcessingSubRevisionText) != kProcessingSubRevision ||
        static_cast<int>(std::atof(kProcessingVersion) * 100 + 0.01) != 310)
        ProgramError("CHECK PROCESSING REVISION STRINGS");
    if (std::atoi(kScanningRevisionText) != kScanningRevision ||
        std::atoi(kScanningSubRevisionText) != kScanningSubRevision ||
        static_cast<int>(std::atof(kScanningVersion) * 100 + 0.01) != kScanningRevision)
        ProgramError("CHECK SCANNING REVISION STRINGS");
}

void FindDataDirectory()
{
    std::string data = TavrinDataDirSetting();
    if (!data.empty()) ChangeDirectory(data);   // failure is ignored
    DataDir = CurrentDirectory();
    if (DataDir.size() > 1 && IsPathSeparator(DataDir.back())) DataDir.pop_back();
    ColourDir = DataDir + "/Col";
}

void ReadSwitches(const char* commandLine)
{
    std::string line = commandLine ? commandLine : "";
    for (char& c : line) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    line += ' ';
    if (line.find("/MORE ") != std::string::npos) MoreMode = true;
    if (line.find("/DBG ") != std::string::npos) {
        DebugMode = true;
        g_startHeap = HeapWalk();
    }
}

void LogBanner(const char* commandLine)
{
    LocalTime t = GetLocalTime();
    LogRaw("\nSPM command log on %02d/%02d/%02d at %02d:%02d:%02d.\n", t.day, t.month, t.year, t.hour, t.minute,
           t.second);
    LogRaw("Tavrin Processing version - %s (%02d)\n", kProcessingRevision, kProcessingSubRevision);
    LogRaw("Tavrin Scanning version - %s (%s)\n", kScanningVersion, kScanningSubRevisionText);
    if (DebugMode) LogRaw("Cmdline='%s'\n", commandLine ? commandLine : "");
}

// The heap manager of the desktop platform had a self-test here; this build's heap has
// nothing to check.
int CheckHeapManager() { return 0; }

} // namespace

int LocaleClassOf(const char* localeName)
{
    static const char* const kLanguages[] = {"en", "ja", "ko", "zh", "sv", "de", "fr", "nb",
                                             "da", "nl", "fi", "ga", "it", "pt", "es"};
    if (!localeName || std::strlen(localeName) < 2) return 999;
    for (int i = 0; i < 15; ++i) {
        if (std::tolower(static_cast<unsigned char>(localeName[0])) == kLanguages[i][0] &&
            std::tolower(static_cast<unsigned char>(localeName[1])) == kLanguages[i][1])
            return i + 1;
    }
    return 999;
}

int Startup(const char* commandLine)
{
    CheckRevisionStrings();
    if (ProcessNameCount() != kProcessNameCount) ProgramError("CHECK IM_PSTR");
    CreateLogMutex();
    LocaleClass = LocaleClassOf(SystemLocaleName().c_str());
    FindDataDirectory();
    ReadSwitches(commandLine);
    if (LogFileName().empty()) SetLogFileName(DefaultLogFileName());
    LogBanner(commandLine);
    ResetFrameStoreState();   // the window frame-store state and the font state
    ResetErrorState();
    StartupColourTables();
    int result = CheckHeapManager();
    RetrieveConfiguration();
    return result;
}

int Initialise(const ApCallbackFunctionTableType* table, const wint_DLLInitialiseType* record)
{
    if (Initialised) {
        Trace(1, nullptr, "ERROR : DLL Already Loaded", kTraceCaption, TV_MB_OK | TV_MB_ICONSTOP | TV_MB_TASKMODAL);
        return 1;
    }
    Initialised = true;
    std::memset(g_commandLine, 0, sizeof g_commandLine);
    if (record) {
        std::memcpy(g_commandLine, record->CmdLine, sizeof g_commandLine - 1);
        g_record = *record;
    }
    const char* end = g_commandLine;
    while (*end && !std::isspace(static_cast<unsigned char>(*end))) ++end;
    g_firstWord.assign(static_cast<const char*>(g_commandLine), end);
    bool complete = CopyCallbackTable(table);
    int result = Startup(g_commandLine);
    return (result != 0 || !complete) ? 1 : 0;
}

int Finish()
{
    const char* question = FirstItem ? "All data will be lost.  Exit program ?  " : "Exit program ?  ";
    if (!AskOkCancel(question, false)) return 0;
    bool saved = false;
    if (AskYesNo("Save program settings ?", false)) {
        StoreConfiguration();
        saved = true;
    }
    ResetMeasureState();   // the measuring object and its markers end with the library
    EraseAllItems();
    if (DebugMode) g_finishDifference = g_startHeap - HeapWalk();
    FinishColourTables();
    Log("\nProgram terminated normally.\n");
    CloseLogMutex();
    TraceEntry("dl_Finish done");
    return saved ? 2 : 1;
}

void GetStartUpStrings(wint_StartUpStringType* strings)
{
    if (!strings) return;
    std::snprintf(strings->Text1, sizeof strings->Text1, "Tavrin Processing for Linux");
    std::snprintf(strings->Text2, sizeof strings->Text2, "Software Version %s <Base System version %s>",
                  kProcessingRevision, kScanningRevisionText);
    std::snprintf(strings->Text3, sizeof strings->Text3, "Tavrin Data Processing Version %s (%02d)\n",
                  kProcessingVersion, kProcessingSubRevision);
}

void SetUserID(const char* loginName)
{
    UserName = loginName ? loginName : "";
    CreateSettingsDirectories();
    if (Initialised) Log("User ID: '%s'\n", UserName.c_str());
}

void DeleteUserID(const char* loginName)
{
    std::string user = loginName ? loginName : "";
    RemoveFile(UserSettingsFileName(user));
    RemoveFile(ScanSettingsFileName(user));
    SaveSystemString(1, "LastLoginName_Processing", "Admin");
    SaveSystemString(1, "LastLoginName_Scanning", "Admin");
    ProfileWriteString(user.c_str(), nullptr, nullptr, SystemSettingsFileName());
}

const wint_DLLInitialiseType& InitialisationRecord() { return g_record; }
long StartHeapBytes() { return g_startHeap; }
long FinishHeapDifference() { return g_finishDifference; }

void ResetGlobals()
{
    DebugMode = MoreMode = false;
    LocaleClass = 999;
    DataDir.clear();
    ColourDir.clear();
    UserName = "Admin";
    Initialised = false;
    g_record = wint_DLLInitialiseType{};
    std::memset(g_commandLine, 0, sizeof g_commandLine);
    g_firstWord.clear();
    g_startHeap = g_finishDifference = 0;
}
