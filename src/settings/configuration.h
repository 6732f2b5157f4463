// Storing and retrieving the program's own state in the user settings file.
#pragma once

// Writes the revision keys and the stored parameter blocks.
void StoreConfiguration();
// Reads them back; a file without the revision keys is first written with the defaults.
void RetrieveConfiguration();

// The entry points' work: with the wait text "Storing configuration in file" shown.
void StoreConfigurationToDisk();
void RetrieveConfigurationFromDisk();
