// tavrin: the command-line ProcessingHost.
#include "tavrin/tavrin.h"

#include <cstdio>
#include <cstring>

int main(int argc, char** argv)
{
    if (argc > 1 && std::strcmp(argv[1], "--version") == 0) {
        wint_StartUpStringType s;
        dl_GetStartUpStrings(&s);
        std::printf("%s\n%s\n%s", s.Text1, s.Text2, s.Text3);
        return 0;
    }
    std::fprintf(stderr, "usage: tavrin --version\n");
    return 2;
}
