#include "files/mapping_entry_sources.h"
#include "mapping/cits.h"

namespace {

// The entries of a set as the mapping module lays them out.
MappingEntryWalker g_walker = WalkCITSEntrySourceWords;

} // namespace

MappingEntryWalker SetMappingEntryWalker(MappingEntryWalker walker)
{
    MappingEntryWalker previous = g_walker;
    g_walker = walker;
    return previous;
}

void ForEachMappingSourceWord(ImageHeaderType* record, MappingSourceVisitor visit, void* context)
{
    if (!record || !visit || !g_walker || !record->CITSHeader || !record->CITSHeaderPtr) return;
    g_walker(record, visit, context);
}
