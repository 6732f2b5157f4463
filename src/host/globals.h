// Process-wide state of the start-up.
#pragma once

#include <string>

extern bool DebugMode;        // "/DBG" on the command line
extern bool MoreMode;         // "/MORE"
extern int LocaleClass;       // language class of the system locale
extern std::string DataDir;   // the data directory
extern std::string ColourDir; // DataDir + "\Col"
extern std::string UserName;  // login name, "Admin" by default

// True while dl_Initialise has run and dl_Finish has not finished.
extern bool Initialised;

void ResetGlobals();
