// The source words of a mapping set's image entries, as the upgrade of old records sees them.
//
// Two upgrade steps recode the source word (`data_type`) of every image entry of a record's
// mapping set together with the record's own fields. The upgrade does not know the layout of a
// mapping set; the walker of the mapping module, installed from the start, hands each entry's
// word to the visitor. Without a walker, or for a record without a mapping set, there are no
// entries and the steps act on the record alone.
#pragma once

#include <cstdint>

#include "tavrin/image_header.h"

// Called once for each image entry; the word may be changed in place.
using MappingSourceVisitor = void (*)(uint32_t* sourceWord, void* context);
// Visits the image entries of record->CITSHeaderPtr, which is not null.
using MappingEntryWalker = void (*)(ImageHeaderType* record, MappingSourceVisitor visit, void* context);

// Installs the walker of the mapping module (null: none); answers the one it replaces.
MappingEntryWalker SetMappingEntryWalker(MappingEntryWalker walker);

// Hands the source word of each image entry of the record's mapping set to `visit`.
void ForEachMappingSourceWord(ImageHeaderType* record, MappingSourceVisitor visit, void* context);
