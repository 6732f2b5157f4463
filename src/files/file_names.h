// File name helpers of the open and save commands: the extension of a name, and a path split
// into its directory and its name. Both separators, '\' and '/', count wherever a backslash
// does.
#pragma once

// The extension of `path`: a pointer to its last '.', or null when it has none. There is none
// when the path has no '.', when the last '.' stands in a directory part (a separator follows
// it somewhere), right behind a separator, or right behind another '.'.
const char* GetExtension(const char* path);

// Splits `path` at its last separator or colon: `directory` receives everything up to and
// including that character, `name` the rest. Either output may be null; each holds
// `size` bytes and is always terminated.
void SplitPath(char* directory, char* name, const char* path, int size);
