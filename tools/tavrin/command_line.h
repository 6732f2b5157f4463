// The arguments of one command: words, options with a value (-o OUT) and flags (--json).
#pragma once

#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "commands.h"

// A command line that does not fit its command: exit status 2 with the message.
struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct CommandLine {
    std::vector<std::string> words;
    std::map<std::string, std::string> values;
    std::set<std::string> flags;
    bool Has(const std::string& flag) const { return flags.count(flag) != 0; }
    // The value of the option, or `fallback` when it was not given.
    std::string Value(const std::string& option, const std::string& fallback = {}) const;
    // The value of the option as a whole number from `lo` to `hi`.
    int Number(const std::string& option, int lo, int hi, int fallback) const;
};

// Splits the arguments; `valued` are the options that take a value, `flags` those that do
// not. Throws UsageError for an unknown option, a missing value or a wrong number of words.
CommandLine ParseCommandLine(const Args& args, const std::set<std::string>& valued,
                             const std::set<std::string>& flags, size_t minWords, size_t maxWords);

// Runs a command body, turning a UsageError into its message and exit status 2.
int RunCommand(const char* name, int (*body)(const Args&), const Args& args);
