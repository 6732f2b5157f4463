// tavrin convert IN OUT [--8bit]: opens a file and saves its item in the format of OUT's
// extension.
#include "command_line.h"
#include "items.h"

#include <cstdio>

namespace {

int Convert(const Args& args)
{
    CommandLine line = ParseCommandLine(args, {}, {"--8bit"}, 2, 2);
    const std::string& out = line.words[1];
    if (SaveTypeFor(out, false) == 0)
        throw UsageError("the extension of '" + out + "' names no file type (.tif .bin .bft .asc .aft .spc .dat .hdr)");
    if (!OpenItem(line.words[0])) return 1;
    if (!SaveCurrentItem(out, line.Has("--8bit"))) return 1;
    std::printf("%s\n", out.c_str());
    return 0;
}

} // namespace

int CommandConvert(const Args& args) { return RunCommand("convert", Convert, args); }
