// The commands of the command-line host. Each answers the exit status: 0 success, 1 when the
// command reported an error, 2 for a usage error.
#pragma once

#include <string>
#include <vector>

using Args = std::vector<std::string>;

int CommandDemo(const Args& args);

// Prints the usage text to the stream.
void PrintUsage(FILE* out);
