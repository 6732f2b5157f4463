// tavrin render IN -o OUT.png [--mode 0-4] [--size N] [--table 0-7] [--full]: what a user's
// window shows of the item, as a picture.
#include "command_line.h"
#include "items.h"
#include "picture.h"

#include <cstdio>

namespace {

int Render(const Args& args)
{
    CommandLine line = ParseCommandLine(args, {"-o", "--mode", "--size", "--table"}, {"--full"}, 1, 1);
    const std::string out = line.Value("-o");
    if (out.empty()) throw UsageError("render needs -o OUT.png");
    ShowOptions show;
    show.mode = line.Number("--mode", 0, 4, 0);
    show.size = line.Number("--size", 0, 4096, -1);
    show.table = line.Number("--table", 0, 7, -1);
    show.full = line.Has("--full");
    if (!OpenItem(line.words[0])) return 1;
    if (!(dl_IsCurrentDataTypeImage() & TV_DATA_IMAGE_CLASS)) {
        std::fprintf(stderr, "tavrin render: '%s' holds no image\n", line.words[0].c_str());
        return 1;
    }
    ShowCurrentItem(show);
    if (!WriteCurrentPicture(out)) return 1;
    std::printf("%s\n", out.c_str());
    return 0;
}

} // namespace

int CommandRender(const Args& args) { return RunCommand("render", Render, args); }
