// The commands of the command-line host. Each answers the exit status: 0 success, 1 when the
// command reported an error, 2 for a usage error.
#pragma once

#include <string>
#include <vector>

using Args = std::vector<std::string>;

int CommandInfo(const Args& args);
int CommandPixels(const Args& args);
int CommandConvert(const Args& args);
int CommandRender(const Args& args);
int CommandRun(const Args& args);
int CommandDemo(const Args& args);
int CommandGeom(const Args& args);

// Prints the usage text to the stream.
void PrintUsage(FILE* out);
