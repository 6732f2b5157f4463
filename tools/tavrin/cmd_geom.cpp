// tavrin geom IN OUT (--op NAME | --rotate X0,Y0,X1,Y1,X2,Y2 | --translate X0,Y0,X1,Y1): one
// geometry command on the image of IN, the result saved as OUT (.tif, or .png for the picture
// of the result). Points are image pixels; the host's pick mode reports them as clicks.
#include "command_line.h"
#include "items.h"
#include "picture.h"
#include "pick.h"
#include "session.h"

#include <cstdio>
#include <map>
#include <sstream>

namespace {

const std::map<std::string, void (*)(void)>& Operations()
{
    static const std::map<std::string, void (*)(void)> ops = {
        {"mirror-x", dl_ImageMirrorX},     {"mirror-y", dl_ImageMirrorY},     {"transpose", dl_TransposeImage},
        {"rot90", dl_RotateImage90},       {"rot180", dl_RotateImage180},     {"rot270", dl_RotateImage270},
        {"pad256", dl_PadTo256Points},     {"pad512", dl_PadTo512Points},     {"interp128", dl_Interpolate128},
        {"interp256", dl_Interpolate256},  {"interp512", dl_Interpolate512},
    };
    return ops;
}

std::vector<std::pair<int, int>> Points(const std::string& text, size_t count, const char* option)
{
    std::vector<int> numbers;
    std::stringstream in(text);
    std::string word;
    while (std::getline(in, word, ',')) {
        std::pair<int, int> p;
        if (!ParsePoint(word + ",0", &p)) throw UsageError(std::string(option) + " takes whole numbers: '" + text + "'");
        numbers.push_back(p.first);
    }
    if (numbers.size() != 2 * count)
        throw UsageError(std::string(option) + " takes " + std::to_string(2 * count) + " numbers: '" + text + "'");
    std::vector<std::pair<int, int>> points;
    for (size_t i = 0; i < count; ++i) points.push_back({numbers[2 * i], numbers[2 * i + 1]});
    return points;
}

int Geom(const Args& args)
{
    CommandLine line = ParseCommandLine(args, {"--op", "--rotate", "--translate"}, {}, 2, 2);
    const std::string& out = line.words[1];
    const int given = !line.Value("--op").empty() + !line.Value("--rotate").empty() + !line.Value("--translate").empty();
    if (given != 1) throw UsageError("geom needs one of --op, --rotate, --translate");
    if (!IsImageResultPath(out))
        throw UsageError("the result goes to a .tif or .png file: '" + out + "'");
    void (*op)(void) = nullptr;
    std::vector<std::pair<int, int>> points;
    if (!line.Value("--op").empty()) {
        const auto it = Operations().find(line.Value("--op"));
        if (it == Operations().end()) {
            std::string names;
            for (const auto& [name, fn] : Operations()) names += " " + name;
            throw UsageError("unknown --op '" + line.Value("--op") + "'; one of:" + names);
        }
        op = it->second;
    } else if (!line.Value("--rotate").empty()) {
        op = dl_RotateImageA;
        points = Points(line.Value("--rotate"), 3, "--rotate");
    } else {
        op = dl_ImageTranslate;
        points = Points(line.Value("--translate"), 2, "--translate");
    }

    const ImageHeaderType* source = OpenImageForCommand("geom", line.words[0]);
    if (!source) return 1;
    op();
    if (!points.empty() && !PickImagePoints(points)) {
        std::fprintf(stderr, "tavrin geom: the points were not taken\n");
        return 1;
    }
    return WriteImageResult(source, out);
}

} // namespace

int CommandGeom(const Args& args) { return RunCommand("geom", Geom, args); }
