// What the host prints of an item.
#pragma once

#include <cstdio>

// Prints the current item: descriptor, class, title, type, size and physical range; or, with
// `json`, one JSON object with "class", "title", "type", "unit" and "header" (every named
// field of the stored record).
void PrintItemInfo(FILE* out, bool json);
