// A typed call of an entry point from a script line: the argument types are deduced from the
// entry point's own signature, so that each entry point needs one line in the table.
#pragma once

#include <functional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "script_values.h"

// What a call gave: the entry point's result word (ResultText), when it has one, and what its
// buffer, number and record arguments hold afterwards.
struct ScriptResult {
    bool returned = false;
    std::string value;
    std::vector<std::string> outputs;
    // "= value" and the outputs, one a line: what a script prints (may be empty).
    std::string Text() const;
};

struct ScriptEntry {
    const char* name;   // without "dl_"
    std::function<ScriptResult(ScriptWords&)> call;
};

namespace script_detail {

template <typename R, typename... A, size_t... I>
ScriptResult Invoke(R (*fn)(A...), ScriptWords& words, std::index_sequence<I...>)
{
    // Arguments are made left to right (braced initialisation keeps the order).
    std::tuple<Arg<A>...> args{Arg<A>(words)...};
    if (words.More()) throw ScriptError("too many arguments: '" + words.positional[words.next] + "'");
    ScriptResult result;
    if constexpr (std::is_void_v<R>) {
        fn(std::get<I>(args).Get()...);
    } else {
        R value = fn(std::get<I>(args).Get()...);
        result.returned = true;
        result.value = ResultText(value);
    }
    (std::get<I>(args).After(result.outputs), ...);
    return result;
}

} // namespace script_detail

template <typename R, typename... A>
ScriptEntry MakeEntry(const char* name, R (*fn)(A...))
{
    return {name, [fn](ScriptWords& words) {
                return script_detail::Invoke(fn, words, std::index_sequence_for<A...>{});
            }};
}

// The table line of an entry point: its name without "dl_".
#define TAVRIN_ENTRY(fn) MakeEntry(&(#fn)[3], fn)

// Every entry point a script can call, in the order of the families.
const std::vector<ScriptEntry>& ScriptEntries();
// The entry point of that name (without "dl_"), or null.
const ScriptEntry* FindScriptEntry(const std::string& name);
