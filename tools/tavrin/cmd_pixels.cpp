// tavrin pixels FILE -o OUT: the item's data block as it is in memory.
#include "command_line.h"
#include "items.h"
#include "platform/safe_replace.h"

#include <cstdio>

namespace {

int Pixels(const Args& args)
{
    CommandLine line = ParseCommandLine(args, {"-o"}, {}, 1, 1);
    const std::string out = line.Value("-o");
    if (out.empty()) throw UsageError("pixels needs -o OUT");
    ImageHeaderType* item = OpenItem(line.words[0]);
    if (!item) return 1;
    if (!item->PixData) {
        std::fprintf(stderr, "tavrin pixels: the item has no data block\n");
        return 1;
    }
    // Rows of an image from row 0; a spectrum's Y values, then its X values. Both are
    // little-endian in memory on this platform.
    const size_t bytes = DataBlockBytes(item);
    switch (FileReplaceWithBytes(out, item->PixData, bytes)) {
    case ReplaceOutcome::Done: break;
    case ReplaceOutcome::OpenFailed:
        std::fprintf(stderr, "tavrin pixels: cannot create '%s'\n", out.c_str());
        return 1;
    default:
        std::fprintf(stderr, "tavrin pixels: cannot write '%s'\n", out.c_str());
        return 1;
    }
    std::printf("%s: %zu bytes\n", out.c_str(), bytes);
    return 0;
}

} // namespace

int CommandPixels(const Args& args) { return RunCommand("pixels", Pixels, args); }
