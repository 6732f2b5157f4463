// tavrin run SCRIPT: the commands of a script file, or of standard input with "-".
#include "commands.h"
#include "script.h"

#include <fstream>
#include <iostream>
#include <sstream>

int CommandRun(const Args& args)
{
    if (args.size() != 1) {
        std::fprintf(stderr, "tavrin: run needs one script file (or - for standard input)\n");
        return 2;
    }
    std::ostringstream text;
    if (args[0] == "-") {
        text << std::cin.rdbuf();
    } else {
        std::ifstream in(args[0], std::ios::binary);
        if (!in) {
            std::fprintf(stderr, "tavrin: cannot read script '%s'\n", args[0].c_str());
            return 2;
        }
        text << in.rdbuf();
    }
    return RunScript(text.str(), args[0] == "-" ? "<stdin>" : args[0], stdout);
}
