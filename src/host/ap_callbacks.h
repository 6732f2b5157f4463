// The host callback table as the library holds it.
//
// Until dl_Initialise copies a host's table, and for any slot a host left empty, every slot
// holds a quiet stand-in that does nothing and answers 0, so that no call can jump to null.
#pragma once

#include "tavrin/ap_callbacks.h"

extern ApCallbackFunctionTableType Ap;

// Copies the host's table slot by slot (41 to 46 are not copied). Answers true when every
// required slot was non-null; empty slots keep their stand-ins either way.
bool CopyCallbackTable(const ApCallbackFunctionTableType* table);
// Every slot back to its stand-in.
void ResetCallbackTable();
