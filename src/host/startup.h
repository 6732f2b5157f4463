// Start and end of a run.
#pragma once

#include <cstdint>

#include "tavrin/ap_callbacks.h"

int Initialise(const ApCallbackFunctionTableType* table, const wint_DLLInitialiseType* record);
int Startup(const char* commandLine);
int Finish();
void GetStartUpStrings(wint_StartUpStringType* strings);
void SetUserID(const char* loginName);
void DeleteUserID(const char* loginName);
// The language class of a locale name: "en" 1, "ja" 2, ... anything else 999.
int LocaleClassOf(const char* localeName);

// The copy of the host's initialisation record and the command line.
const wint_DLLInitialiseType& InitialisationRecord();
// Heap figures of the run: at start-up, and the difference found by dl_Finish.
long StartHeapBytes();
long FinishHeapDifference();
