// tavrin: the command-line ProcessingHost of the Tavrin Processing library.
#include "commands.h"
#include "session.h"

#include <cstdio>
#include <cstring>
#include <map>

namespace {

struct Command {
    int (*run)(const Args&);
};

const std::map<std::string, Command>& CommandTable()
{
    static const std::map<std::string, Command> table = {
        {"demo", {CommandDemo}},
    };
    return table;
}

int PrintVersion()
{
    wint_StartUpStringType s;
    dl_GetStartUpStrings(&s);
    std::printf("%s\n%s\n%s", s.Text1, s.Text2, s.Text3);
    return 0;
}

} // namespace

void PrintUsage(FILE* out)
{
    std::fputs(
        "usage: tavrin [options] COMMAND [arguments]\n"
        "\n"
        "Commands:\n"
        "  demo [--out DIR]        make the built-in sample data, save, reload and render it\n"
        "\n"
        "Options:\n"
        "  -v                      print the log lines as they are written\n"
        "  --yes, --no             answer every question of the library so\n"
        "  --user NAME             the login name (default: the system user)\n"
        "  --version               print the start-up strings of the library\n"
        "  --help                  print this text\n"
        "\n"
        "Exit status: 0 success, 1 a command reported an error, 2 a usage error.\n",
        out);
}

int main(int argc, char** argv)
{
    HostOptions options;
    int i = 1;
    for (; i < argc && argv[i][0] == '-'; ++i) {
        std::string a = argv[i];
        if (a == "--version") return PrintVersion();
        if (a == "--help" || a == "-h") {
            PrintUsage(stdout);
            return 0;
        }
        if (a == "-v") options.verbose = true;
        else if (a == "--yes") options.defaultAnswer = TV_IDYES;
        else if (a == "--no") options.defaultAnswer = TV_IDNO;
        else if (a == "--user" && i + 1 < argc) options.user = argv[++i];
        else {
            std::fprintf(stderr, "tavrin: unknown option '%s'\n", argv[i]);
            PrintUsage(stderr);
            return 2;
        }
    }
    if (i >= argc) {
        PrintUsage(stderr);
        return 2;
    }
    auto found = CommandTable().find(argv[i]);
    if (found == CommandTable().end()) {
        std::fprintf(stderr, "tavrin: unknown command '%s'\n", argv[i]);
        PrintUsage(stderr);
        return 2;
    }
    Args args(argv + i + 1, argv + argc);
    if (!StartSession(options)) {
        std::fprintf(stderr, "tavrin: the library did not start\n");
        return 1;
    }
    int status = found->second.run(args);
    EndSession();
    if (status == 0 && Session().errorReported) status = 1;
    return status;
}
