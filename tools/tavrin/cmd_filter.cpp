// tavrin filter IN OUT (--kernel NAME [--user K1,...] | --diff ANGLE): one filter command on the
// image of IN, the result saved as OUT (.tif, or .png for the picture of the result). Also the
// script's forms of the kernel table entry points, which pass the kernel as a text of numbers.
#include "command_line.h"
#include "items.h"
#include "picture.h"
#include "session.h"

#include <cstdio>
#include <cstring>
#include <map>
#include <sstream>
#include <vector>

namespace {

struct KernelChoice {
    void (*command)(int16_t);   // dl_Convolve3x3, dl_Convolve5x5 or dl_EdgeEnhance3x3; null: a median
    int16_t index;
    void (*median)(void);
};

const std::map<std::string, KernelChoice>& Kernels()
{
    static const std::map<std::string, KernelChoice> kernels = {
        {"low3", {dl_Convolve3x3, 1, nullptr}},     {"med3", {dl_Convolve3x3, 2, nullptr}},
        {"high3", {dl_Convolve3x3, 3, nullptr}},    {"hsmooth3", {dl_Convolve3x3, 4, nullptr}},
        {"vsmooth3", {dl_Convolve3x3, 5, nullptr}}, {"user1-3", {dl_Convolve3x3, 6, nullptr}},
        {"user2-3", {dl_Convolve3x3, 7, nullptr}},  {"low5", {dl_Convolve5x5, 1, nullptr}},
        {"med5", {dl_Convolve5x5, 2, nullptr}},     {"high5", {dl_Convolve5x5, 3, nullptr}},
        {"hsmooth5", {dl_Convolve5x5, 4, nullptr}}, {"vsmooth5", {dl_Convolve5x5, 5, nullptr}},
        {"user1-5", {dl_Convolve5x5, 6, nullptr}},  {"user2-5", {dl_Convolve5x5, 7, nullptr}},
        {"edge-v", {dl_EdgeEnhance3x3, 1, nullptr}}, {"edge-h", {dl_EdgeEnhance3x3, 2, nullptr}},
        {"edge-d1", {dl_EdgeEnhance3x3, 3, nullptr}}, {"edge-d2", {dl_EdgeEnhance3x3, 4, nullptr}},
        {"laplace", {dl_EdgeEnhance3x3, 5, nullptr}}, {"median5", {nullptr, 0, dl_ImageMedianFilter5}},
        {"median9", {nullptr, 0, dl_ImageMedianFilter9}},
    };
    return kernels;
}

// Whole numbers separated by commas; false when a word is not one.
bool ParseNumbers(const std::string& text, std::vector<int16_t>* out)
{
    std::stringstream in(text);
    std::string word;
    while (std::getline(in, word, ',')) {
        char* end = nullptr;
        const long v = std::strtol(word.c_str(), &end, 10);
        if (word.empty() || *end != '\0' || v < -32768 || v > 32767) return false;
        out->push_back(static_cast<int16_t>(v));
    }
    return true;
}

int Filter(const Args& args)
{
    CommandLine line = ParseCommandLine(args, {"--kernel", "--user", "--diff"}, {}, 2, 2);
    const std::string& out = line.words[1];
    const bool diff = !line.Value("--diff").empty();
    if (diff == !line.Value("--kernel").empty()) throw UsageError("filter needs one of --kernel, --diff");
    if (!IsImageResultPath(out))
        throw UsageError("the result goes to a .tif or .png file: '" + out + "'");
    KernelChoice choice{};
    if (!diff) {
        const auto it = Kernels().find(line.Value("--kernel"));
        if (it == Kernels().end()) {
            std::string names;
            for (const auto& [name, k] : Kernels()) names += " " + name;
            throw UsageError("unknown --kernel '" + line.Value("--kernel") + "'; one of:" + names);
        }
        choice = it->second;
    }
    std::vector<int16_t> user;
    if (!line.Value("--user").empty()) {
        const size_t count = choice.command == dl_Convolve5x5 ? 25 : 9;
        if (!choice.command || choice.command == dl_EdgeEnhance3x3 || choice.index < 6)
            throw UsageError("--user goes with a user kernel: user1-3 user2-3 user1-5 user2-5");
        if (!ParseNumbers(line.Value("--user"), &user) || user.size() != count)
            throw UsageError("--user takes " + std::to_string(count) + " whole numbers: '" + line.Value("--user") + "'");
    }
    int angle = 0;
    if (diff) {
        std::vector<int16_t> a;
        if (!ParseNumbers(line.Value("--diff"), &a) || a.size() != 1)
            throw UsageError("--diff takes an angle in whole degrees: '" + line.Value("--diff") + "'");
        angle = a[0];
    }

    const ImageHeaderType* source = OpenImageForCommand("filter", line.words[0]);
    if (!source) return 1;
    if (diff) {
        Answer answer{Answer::Number, static_cast<double>(angle), {}};
        Session().answers.push_back(answer);
        dl_DifferentiateImage();
    } else if (choice.median) {
        choice.median();
    } else {
        if (!user.empty()) {
            if (choice.command == dl_Convolve5x5)
                dl_Set5x5KernelParam(choice.index, user.data());
            else
                dl_Set3x3KernelParam(choice.index, user.data());
        }
        choice.command(choice.index);
    }
    return WriteImageResult(source, out);
}

// The kernel as "v1,v2,..." in a script's text buffer.
void KernelText(const int16_t* values, int count, char* text)
{
    size_t at = 0;
    text[0] = '\0';
    for (int i = 0; i < count; ++i)
        at += static_cast<size_t>(std::snprintf(text + at, 4096 - at, i ? ",%d" : "%d", values[i]));
}

// A kernel given as a script's text of numbers; missing numbers are 0, extra ones ignored.
std::vector<int16_t> KernelFromText(const char* text, size_t count)
{
    std::vector<int16_t> values;
    ParseNumbers(text ? text : "", &values);
    values.resize(count, 0);
    return values;
}

template <void (*Get)(int16_t, int16_t*), int Count>
void ScriptGet(int16_t index, char* text)
{
    int16_t values[Count] = {};
    Get(index, values);
    KernelText(values, Count, text);
}

} // namespace

int CommandFilter(const Args& args) { return RunCommand("filter", Filter, args); }

void ScriptGet3x3KernelParam(int16_t index, char* text) { ScriptGet<dl_Get3x3KernelParam, 9>(index, text); }
void ScriptGet5x5KernelParam(int16_t index, char* text) { ScriptGet<dl_Get5x5KernelParam, 25>(index, text); }
void ScriptGetEE3x3KernelParam(int16_t index, char* text) { ScriptGet<dl_GetEE3x3KernelParam, 9>(index, text); }
void ScriptSet3x3KernelParam(int16_t index, const char* text) { dl_Set3x3KernelParam(index, KernelFromText(text, 9).data()); }
void ScriptSet5x5KernelParam(int16_t index, const char* text) { dl_Set5x5KernelParam(index, KernelFromText(text, 25).data()); }
