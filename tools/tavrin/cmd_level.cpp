// tavrin level IN OUT --method NAME [options]: the background tool driven as its dialog does -
// opened on the image of IN, the record set, the preview drawn, then applied; the result saved
// as OUT (.tif, or .png for its picture). --preview writes the picture of the tool's second
// frame store (the corrected image), --background the same store with the background beside it.
#include "command_line.h"
#include "items.h"
#include "picture.h"
#include "session.h"

#include <cstdio>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <map>
#include <sstream>

namespace {

const std::map<std::string, uint32_t>& Methods()
{
    static const std::map<std::string, uint32_t> methods = {
        {"offsets", TV_SUBT_OFFSETS}, {"polyx", TV_SUBT_POLY_X},  {"polyy", TV_SUBT_POLY_Y},
        {"lines", TV_SUBT_LINES},     {"plane3", TV_SUBT_PLANE3}, {"poly", TV_SUBT_POLY_SURFACE},
        {"manual", TV_SUBT_MANUAL},
    };
    return methods;
}

// `count` whole numbers separated by commas, each from lo to hi.
std::vector<long> Numbers(const CommandLine& line, const std::string& option, size_t count, long lo, long hi)
{
    std::vector<long> numbers;
    const std::string text = line.Value(option);
    std::stringstream in(text);
    std::string word;
    while (std::getline(in, word, ',')) {
        char* end = nullptr;
        const long v = std::strtol(word.c_str(), &end, 10);
        if (word.empty() || *end || v < lo || v > hi)
            throw UsageError(option + " takes whole numbers from " + std::to_string(lo) + " to " + std::to_string(hi) +
                             ": '" + text + "'");
        numbers.push_back(v);
    }
    if (numbers.size() != count) throw UsageError(option + " takes " + std::to_string(count) + " numbers: '" + text + "'");
    return numbers;
}

void SetPoints(int16_t* points, const std::vector<long>& numbers)
{
    for (size_t i = 0; i < numbers.size(); ++i) points[i] = static_cast<int16_t>(numbers[i]);
}

// The second store's picture as the dialog shows it, with the background beside or not.
bool WritePreview(wint_SubtBckgrndParamType* p, int16_t showBackground, const std::string& path)
{
    p->ShowBackground = showBackground;
    dl_SubtBackUpdateImageDisplay(dl_SetSubtBckgrndParam(p) | TV_SUBT_RESULT);
    HostFrameStore* store = nullptr;
    for (auto& fs : Session().frameStores)
        if (fs.number != Session().currentFrameStore) store = &fs;
    if (!store) {
        std::fprintf(stderr, "tavrin level: the host has no second frame store\n");
        return false;
    }
    if (!WriteFrameStorePicture(*store, path)) return false;
    std::printf("%s\n", path.c_str());
    return true;
}

int Level(const Args& args)
{
    CommandLine line = ParseCommandLine(args,
                                        {"--method", "--degree", "--order", "--threshold", "--region", "--points",
                                         "--slope", "--preview", "--background"},
                                        {}, 2, 2);
    const std::string& out = line.words[1];
    if (!IsImageResultPath(out)) throw UsageError("the result goes to a .tif or .png file: '" + out + "'");
    const auto method = Methods().find(line.Value("--method"));
    if (method == Methods().end()) {
        std::string names;
        for (const auto& [name, value] : Methods()) names += " " + name;
        throw UsageError("--method '" + line.Value("--method") + "' is none of:" + names);
    }
    const ImageHeaderType* source = OpenImageForCommand("level", line.words[0]);
    if (!source) return 1;

    wint_SubtBckgrndParamType p;
    dl_GetSubtBckgrndParam(&p, TV_SUBT_OPEN);
    p.Method = method->second;
    if (!line.Value("--degree").empty()) {
        const auto d = Numbers(line, "--degree", 2, 0, 19);
        p.DegreeX = static_cast<int16_t>(d[0]);
        p.DegreeY = static_cast<int16_t>(d[1]);
    }
    p.PolyOrder = static_cast<int16_t>(line.Number("--order", 0, 29, p.PolyOrder));
    if (!line.Value("--threshold").empty()) {
        const auto t = Numbers(line, "--threshold", 2, 0, 65535);
        p.UseThreshold = 1;
        p.LowThreshold = static_cast<uint16_t>(t[0]);
        p.HighThreshold = static_cast<uint16_t>(t[1]);
    }
    if (!line.Value("--region").empty()) {
        int16_t region[6];
        SetPoints(region, Numbers(line, "--region", 6, 0, 511));
        std::memcpy(reinterpret_cast<char*>(&p) + offsetof(wint_SubtBckgrndParamType, RegionPoints), region, sizeof region);
        p.UseRegion = 1;
    }
    if (!line.Value("--points").empty()) {
        int16_t points[6];
        SetPoints(points, Numbers(line, "--points", 6, 0, 511));
        std::memcpy(reinterpret_cast<char*>(&p) + offsetof(wint_SubtBckgrndParamType, PlanePoints), points, sizeof points);
    }
    if (!line.Value("--slope").empty()) {
        const auto s = Numbers(line, "--slope", 2, -65535, 65535);
        p.ManualSlopeX = static_cast<int32_t>(s[0]);
        p.ManualSlopeY = static_cast<int32_t>(s[1]);
    }
    dl_SubtBackUpdateImageDisplay(dl_SetSubtBckgrndParam(&p));
    bool pictures = true;
    if (!line.Value("--preview").empty()) pictures = WritePreview(&p, 0, line.Value("--preview")) && pictures;
    if (!line.Value("--background").empty()) pictures = WritePreview(&p, 1, line.Value("--background")) && pictures;
    dl_GetSubtBckgrndParam(&p, TV_SUBT_APPLY);
    const int status = WriteImageResult(source, out);
    return pictures ? status : 1;
}

} // namespace

int CommandLevel(const Args& args) { return RunCommand("level", Level, args); }
