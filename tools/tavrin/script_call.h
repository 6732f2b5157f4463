// A typed call of an entry point from a script line: the argument types are deduced from the
// entry point's own signature, so that each entry point needs one line in the table.
#pragma once

#include <functional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "script_values.h"

struct ScriptEntry {
    const char* name;   // without "dl_"
    std::function<std::string(ScriptWords&)> call;   // answers the text to print, may be empty
};

namespace script_detail {

template <typename R, typename... A, size_t... I>
std::string Invoke(R (*fn)(A...), ScriptWords& words, std::index_sequence<I...>)
{
    // Arguments are made left to right (braced initialisation keeps the order).
    std::tuple<Arg<A>...> args{Arg<A>(words)...};
    if (words.More()) throw ScriptError("too many arguments: '" + words.positional[words.next] + "'");
    std::string text;
    if constexpr (std::is_void_v<R>) {
        fn(std::get<I>(args).Get()...);
    } else {
        R result = fn(std::get<I>(args).Get()...);
        text = "= " + ResultText(result);
    }
    std::vector<std::string> outputs;
    (std::get<I>(args).After(outputs), ...);
    for (const auto& o : outputs) text += (text.empty() ? "" : "\n") + o;
    return text;
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
