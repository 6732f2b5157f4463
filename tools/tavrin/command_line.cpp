#include "command_line.h"

#include <cstdio>
#include <cstdlib>

std::string CommandLine::Value(const std::string& option, const std::string& fallback) const
{
    auto found = values.find(option);
    return found == values.end() ? fallback : found->second;
}

int CommandLine::Number(const std::string& option, int lo, int hi, int fallback) const
{
    auto found = values.find(option);
    if (found == values.end()) return fallback;
    char* end = nullptr;
    long v = std::strtol(found->second.c_str(), &end, 10);
    if (found->second.empty() || *end != '\0' || v < lo || v > hi)
        throw UsageError(option + " takes a whole number from " + std::to_string(lo) + " to " + std::to_string(hi) +
                         ": '" + found->second + "'");
    return static_cast<int>(v);
}

CommandLine ParseCommandLine(const Args& args, const std::set<std::string>& valued,
                             const std::set<std::string>& flags, size_t minWords, size_t maxWords)
{
    CommandLine line;
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        if (a.size() > 1 && a[0] == '-') {
            if (valued.count(a)) {
                if (i + 1 >= args.size()) throw UsageError(a + " needs a value");
                line.values[a] = args[++i];
            } else if (flags.count(a)) {
                line.flags.insert(a);
            } else {
                throw UsageError("unknown option '" + a + "'");
            }
        } else {
            line.words.push_back(a);
        }
    }
    if (line.words.size() < minWords) throw UsageError("missing argument");
    if (line.words.size() > maxWords) throw UsageError("too many arguments: '" + line.words[maxWords] + "'");
    return line;
}

int RunCommand(const char* name, int (*body)(const Args&), const Args& args)
{
    try {
        return body(args);
    } catch (const UsageError& e) {
        std::fprintf(stderr, "tavrin %s: %s\n", name, e.what());
        std::fprintf(stderr, "Try 'tavrin --help'.\n");
        return 2;
    }
}
