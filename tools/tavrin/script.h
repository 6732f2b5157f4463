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
#include <vector>

#include "session.h"

// Runs the script text; answers the exit status (0, 1 when an entry point reported an error, 2
// when a line could not be run: the message names the line).
int RunScript(const std::string& text, const std::string& sourceName, FILE* out);

// The commands of a script line that are the host's own rather than entry points (answer,
// render, info, entries, Error, Log2Disk, ...), in the order `entries` lists them.
const std::vector<std::string>& ScriptHostCommands();
// Runs one such command; `words` start with its name, `quoted` tells which words were quoted.
// Answers false when the name is no host command; throws ScriptError for a wrong line.
bool RunScriptHostCommand(const std::vector<std::string>& words, const bool* quoted, FILE* out);
// The answer a word of an `answer` line names: yes, no, cancel, ok, a number, or (quoted) a text.
Answer ParseAnswerWord(const std::string& word, bool quoted);
