// Any entry point by name, through the command-line host's script table: the arguments are
// the words of a script line, record fields its name=value words.
#include "bridge.h"
#include "script.h"
#include "script_call.h"

#include <pybind11/stl.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>

namespace {

std::string WithoutPrefix(const std::string& name) { return name.rfind("dl_", 0) == 0 ? name.substr(3) : name; }

bool IsHostCommand(const std::string& name)
{
    const auto& commands = HostCommandNames();
    return std::find(commands.begin(), commands.end(), name) != commands.end();
}

// A wrong word is a wrong value (ValueError); a wrong count or field, a wrong call (TypeError).
[[noreturn]] void Rethrow(const std::string& name, const ScriptError& e)
{
    const std::string what = e.what();
    const std::string message = name + ": " + what;
    if (what.rfind("not a number", 0) == 0 || what.rfind("no item with id", 0) == 0 || what.rfind("answer must", 0) == 0)
        throw std::invalid_argument(message);
    throw BadArgument(message);
}

// A host command's printed text.
std::string RunHostCommand(const std::string& name, const std::vector<std::pair<std::string, bool>>& words)
{
    std::vector<std::string> line = {name};
    std::unique_ptr<bool[]> quoted(new bool[words.size() + 1]());
    for (size_t i = 0; i < words.size(); ++i) {
        line.push_back(words[i].first);
        quoted[i + 1] = words[i].second;
    }
    char* text = nullptr;
    size_t length = 0;
    FILE* out = open_memstream(&text, &length);
    if (!out) throw std::runtime_error("no memory for the output of " + name);
    try {
        RunScriptHostCommand(line, quoted.get(), out);
    } catch (...) {
        std::fclose(out);
        std::free(text);
        throw;
    }
    std::fclose(out);
    std::string printed(text ? text : "", length);
    std::free(text);
    return printed;
}

} // namespace

std::vector<std::string> EntryNames()
{
    std::vector<std::string> names;
    for (const ScriptEntry& e : ScriptEntries()) names.emplace_back(e.name);
    return names;
}

std::vector<std::string> HostCommandNames() { return ScriptHostCommands(); }

py::tuple CallEntry(const std::string& fullName, const std::vector<std::pair<std::string, bool>>& words,
                    const std::vector<std::pair<std::string, std::string>>& fields)
{
    const std::string name = WithoutPrefix(fullName);
    try {
        if (const ScriptEntry* entry = FindScriptEntry(name)) {
            ScriptWords args;
            for (const auto& w : words) args.positional.push_back(w.first);
            args.fields = fields;
            ScriptResult result = entry->call(args);
            return py::make_tuple(result.returned, result.value, result.outputs);
        }
        if (IsHostCommand(name)) {
            if (!fields.empty()) throw BadArgument(name + ": takes no fields");
            return py::make_tuple(false, std::string(), std::vector<std::string>{RunHostCommand(name, words)});
        }
    } catch (const ScriptError& e) {
        Rethrow(name, e);
    }
    throw std::invalid_argument("no entry point '" + fullName + "'");
}
