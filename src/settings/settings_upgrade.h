// Taking over the user settings of an older release.
#pragma once

// When the user file of this release has no "Revision" yet, looks for the file of an older
// release (TavrinProc300, 219, 218, 217, 216, 215), asks whether to copy it, and on yes copies
// it over the user file with this release's revision. Answers 1 if settings were copied.
int UpgradeINIfilesFromOldSoftwareVersion();
