// tavrin demo: the tour of the built-in sample data.
#include "commands.h"
#include "session.h"

#include <cstdio>

int CommandDemo(const Args&)
{
    wint_StartUpStringType s;
    dl_GetStartUpStrings(&s);
    std::printf("%s\n%s\n%s", s.Text1, s.Text2, s.Text3);
    std::printf("Library started and stopped; revision %d.\n", dl_GetRevisionNumber());
    return 0;
}
