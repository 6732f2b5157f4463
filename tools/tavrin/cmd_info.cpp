// tavrin info FILE [--json]: what a file holds.
#include "command_line.h"
#include "item_info.h"
#include "items.h"

#include <cstdio>

namespace {

int Info(const Args& args)
{
    CommandLine line = ParseCommandLine(args, {}, {"--json"}, 1, 1);
    if (!OpenItem(line.words[0])) return 1;
    PrintItemInfo(stdout, line.Has("--json"));
    return 0;
}

} // namespace

int CommandInfo(const Args& args) { return RunCommand("info", Info, args); }
