#include "op_words.h"
#include "command_line.h"

#include <cstdlib>
#include <sstream>

std::vector<double> ParseReals(const std::string& text, size_t count, const char* option)
{
    std::vector<double> values;
    std::stringstream in(text);
    std::string word;
    while (std::getline(in, word, ',')) {
        char* end = nullptr;
        const double v = std::strtod(word.c_str(), &end);
        if (word.empty() || *end != '\0') throw UsageError(std::string(option) + " takes numbers: '" + text + "'");
        values.push_back(v);
    }
    if (values.size() != count)
        throw UsageError(std::string(option) + " takes " + std::to_string(count) + " numbers: '" + text + "'");
    return values;
}

OpWord SplitOpWord(const std::string& text)
{
    const size_t colon = text.find(':');
    if (colon == std::string::npos) return {text, {}};
    return {text.substr(0, colon), text.substr(colon + 1)};
}

ChosenOp ChooseOp(const std::string& word, const std::vector<OpChoice>& choices, const char* option)
{
    const OpWord w = SplitOpWord(word);
    std::string names;
    for (const OpChoice& c : choices) {
        names += std::string(" ") + c.name + (c.constant ? ":N" : "");
        if (w.name != c.name) continue;
        if (c.constant != !w.value.empty())
            throw UsageError(std::string(option) + " " + c.name + (c.constant ? " needs a constant (" + std::string(c.name) + ":N)" : " takes no constant"));
        if (c.constant) ParseReals(w.value, 1, option);
        return {c.op, w.value};
    }
    throw UsageError(std::string("unknown ") + option + " '" + word + "'; one of:" + names);
}
