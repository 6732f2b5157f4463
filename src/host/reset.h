// Back to the state of a freshly loaded library: every item, block, table and setting of the
// process is dropped. The test suite runs it between tests; each subsystem adds its reset here.
#pragma once

void ResetProcessState();
