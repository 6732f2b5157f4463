// tavrin region IN OUT (--magnify X1,Y1,X2,Y2 | --drift P0 P1 P2 | --trim P0 P1 P2 |
//                       --extract X1,Y1,X2,Y2): a region of the image of IN through the mesh
//   tool (magnify, drift, trim) or the extract selection, the result saved as OUT. P0 is a
//   corner of the parallelogram and P1, P2 its neighbours (X,Y each, as three words or one
//   word of six numbers).
// tavrin replace EXTRACT TARGET OUT: the rectangle of the extract EXTRACT put into TARGET.
// tavrin lattice IN OUT --origin X,Y --a X,Y --b X,Y [--no-repeat] [--cell CELL.png] [--json]:
//   the lattice average of the image of IN over the cell of vectors a - origin and
//   b - origin; OUT receives the repeated cell (with --no-repeat the averaged cell, .png).
#include "command_line.h"
#include "items.h"
#include "pick.h"
#include "session.h"

#include "image/lattice.h"
#include "platform/png_writer.h"

#include <cstdio>
#include <sstream>

namespace {

std::vector<int> Numbers(const std::string& text, const std::string& option)
{
    std::vector<int> numbers;
    std::stringstream in(text);
    std::string word;
    while (std::getline(in, word, ',')) {
        std::pair<int, int> p;
        if (!ParsePoint(word + ",0", &p)) throw UsageError(option + " takes whole numbers: '" + text + "'");
        numbers.push_back(p.first);
    }
    return numbers;
}

// `count` points from the option's value and, when it holds one point, the words after OUT.
std::vector<std::pair<int, int>> PointsOf(const CommandLine& line, const std::string& option, size_t count)
{
    std::string text = line.Value(option);
    if (Numbers(text, option).size() == 2)
        for (size_t w = 2; w < line.words.size(); ++w) text += "," + line.words[w];
    else if (line.words.size() > 2)
        throw UsageError("unexpected word '" + line.words[2] + "'");
    const std::vector<int> numbers = Numbers(text, option);
    if (numbers.size() != 2 * count)
        throw UsageError(option + " takes " + std::to_string(count) + " points X,Y: '" + text + "'");
    std::vector<std::pair<int, int>> points;
    for (size_t i = 0; i < count; ++i) points.push_back({numbers[2 * i], numbers[2 * i + 1]});
    return points;
}

void RunMesh(MeshHandleType purpose, const std::vector<std::pair<int, int>>& p) { RunMeshTool(purpose, p, false); }

void CheckResultPath(const std::string& out)
{
    if (!IsImageResultPath(out)) throw UsageError("the result goes to a .tif or .png file: '" + out + "'");
}

int Region(const Args& args)
{
    CommandLine line = ParseCommandLine(args, {"--magnify", "--drift", "--trim", "--extract"}, {}, 2, 4);
    const std::string out = line.words[1];
    CheckResultPath(out);
    int given = 0;
    for (const char* o : {"--magnify", "--drift", "--trim", "--extract"}) given += !line.Value(o).empty();
    if (given != 1) throw UsageError("region needs one of --magnify, --drift, --trim, --extract");
    std::vector<std::pair<int, int>> points;
    std::string option;
    if (!line.Value("--magnify").empty() || !line.Value("--extract").empty()) {
        option = line.Value("--magnify").empty() ? "--extract" : "--magnify";
        if (line.words.size() > 2) throw UsageError("unexpected word '" + line.words[2] + "'");
        points = PointsOf(line, option, 2);
    } else {
        option = line.Value("--drift").empty() ? "--trim" : "--drift";
        points = PointsOf(line, option, 3);
    }
    const ImageHeaderType* source = OpenImageForCommand("region", line.words[0]);
    if (!source) return 1;
    if (option == "--magnify") {
        // The rectangle as the mesh gives it: a corner and its two neighbours along the axes.
        RunMesh(TV_MESH_MAGNIFY, {points[0], {points[1].first, points[0].second}, {points[0].first, points[1].second}});
    } else if (option == "--drift") {
        RunMesh(TV_MESH_MAGNIFY, points);
    } else if (option == "--trim") {
        RunMesh(TV_MESH_TRIM, points);
    } else {
        dl_ExtractArea();
        if (!PickImagePoints(points)) {
            std::fprintf(stderr, "tavrin region: the points were not taken\n");
            return 1;
        }
    }
    return WriteImageResult(source, out);
}

int Replace(const Args& args)
{
    CommandLine line = ParseCommandLine(args, {}, {}, 3, 3);
    CheckResultPath(line.words[2]);
    // The target first: the head of the list, the first image offered.
    const ImageHeaderType* target = OpenImageForCommand("replace", line.words[1]);
    if (!target) return 1;
    const ImageHeaderType* extract = OpenImageForCommand("replace", line.words[0]);
    if (!extract) return 1;
    Session().answers.push_back(Answer{Answer::Number, 0, {}});
    dl_ReplaceArea();
    return WriteImageResult(extract, line.words[2]);
}

// The averaged cell as a grey picture, one pixel a point of its box.
bool WriteCellPicture(const LatticeResult& cell, const std::string& path)
{
    if (cell.codes.empty()) return false;
    std::vector<uint8_t> rgb(cell.codes.size() * 3);
    for (size_t i = 0; i < cell.codes.size(); ++i) rgb[3 * i] = rgb[3 * i + 1] = rgb[3 * i + 2] = static_cast<uint8_t>(cell.codes[i] >> 8);
    const PngImage image{cell.width, cell.height, kPngColourRgb, rgb.data(), static_cast<ptrdiff_t>(cell.width) * 3,
                         nullptr, 0, kPngAdaptiveFilter};
    return WritePng(path.c_str(), image) == 0;
}

bool EndsWith(const std::string& s, const std::string& tail)
{
    return s.size() >= tail.size() && s.compare(s.size() - tail.size(), tail.size(), tail) == 0;
}

int Lattice(const Args& args)
{
    CommandLine line = ParseCommandLine(args, {"--origin", "--a", "--b", "--cell"}, {"--no-repeat", "--json"}, 2, 2);
    const std::string out = line.words[1];
    const bool repeat = !line.Has("--no-repeat");
    if (repeat) CheckResultPath(out);
    else if (!EndsWith(out, ".png")) throw UsageError("with --no-repeat the averaged cell goes to a .png file: '" + out + "'");
    std::vector<std::pair<int, int>> points;
    for (const char* o : {"--origin", "--a", "--b"}) {
        if (line.Value(o).empty()) throw UsageError(std::string("lattice needs ") + o);
        const std::vector<int> n = Numbers(line.Value(o), o);
        if (n.size() != 2) throw UsageError(std::string(o) + " takes X,Y: '" + line.Value(o) + "'");
        points.push_back({n[0], n[1]});
    }
    const std::string cellPath = line.Value("--cell");
    if (!cellPath.empty() && !EndsWith(cellPath, ".png")) throw UsageError("--cell takes a .png file: '" + cellPath + "'");
    const ImageHeaderType* source = OpenImageForCommand("lattice", line.words[0]);
    if (!source) return 1;
    Session().answers.push_back(Answer{repeat ? Answer::Yes : Answer::No, 0, {}});
    RunMesh(TV_MESH_LATTICE, points);
    const LatticeResult& cell = LastLatticeResult();
    if (cell.codes.empty()) {
        std::fprintf(stderr, "tavrin lattice: no averaged cell\n");
        return 1;
    }
    if (!cellPath.empty() && !WriteCellPicture(cell, cellPath)) {
        std::fprintf(stderr, "tavrin lattice: could not write '%s'\n", cellPath.c_str());
        return 1;
    }
    if (line.Has("--json"))
        std::printf("{\"box\": {\"minX\": %d, \"minY\": %d, \"width\": %d, \"height\": %d}, \"cells\": %lld, "
                    "\"min\": %lld, \"max\": %lld}\n",
                    cell.minX, cell.minY, cell.width, cell.height, static_cast<long long>(cell.cells),
                    static_cast<long long>(cell.min), static_cast<long long>(cell.max));
    if (!repeat) {
        if (!WriteCellPicture(cell, out)) {
            std::fprintf(stderr, "tavrin lattice: could not write '%s'\n", out.c_str());
            return 1;
        }
        if (!line.Has("--json")) std::printf("%s\n", out.c_str());
        return 0;
    }
    return WriteImageResult(source, out);
}

} // namespace

int CommandRegion(const Args& args) { return RunCommand("region", Region, args); }
int CommandReplace(const Args& args) { return RunCommand("replace", Replace, args); }
int CommandLattice(const Args& args) { return RunCommand("lattice", Lattice, args); }
