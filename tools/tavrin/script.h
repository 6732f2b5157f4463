// tavrin run: a script of one command a line.
//
//   NAME args...          an entry point without "dl_", with numbers, "quoted texts", bare
//                         words and name=value fields of a record argument
//   answer yes|no|cancel|ok|NUMBER|"TEXT"
//                         queues the answer of the next prompt
//   render OUT.png        writes the picture of the current frame store
//   info [--json]         prints the current item
//   entries               lists every name a line can start with
//   Error, Log2Disk, OutputDebugString, SaveWindow PATH, VFS_open_vfs N, VFS_close_vfs N,
//   VFS_set_current_vfs N the entry points that take a variable argument list or the host's
//                         own buffers, served by the host
//   # ...                 a comment
#pragma once

#include <cstdio>
#include <string>

// Runs the script text; answers the exit status (0, 1 when an entry point reported an error, 2
// when a line could not be run: the message names the line).
int RunScript(const std::string& text, const std::string& sourceName, FILE* out);
