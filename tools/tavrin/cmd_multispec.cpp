// tavrin multispec A.spc B.spc ... [--primary N] [--shift I:X,Y] [--gain I:X,Y] -o OUT.png
//   [--load S.txt] [--save S.txt] [--export E.txt]: the spectra overlaid in one plot, each with
//   its shift and gain; the arrangement loaded from a settings file, and saved to one (after the
//   load when both are given); the marker values and the crossings of each curve exported.
#include "command_line.h"
#include "items.h"
#include "picture.h"

#include "analysis/multispec.h"
#include "tavrin/tavrin.h"

#include <cstdio>
#include <vector>

namespace {

// "I:X,Y": an item number from 1 and two reals.
void ApplyPair(CMultiSpecDisp& disp, const std::string& text, const char* option, bool gain)
{
    int i = 0;
    double x = 0, y = 0;
    char tail = 0;
    if (std::sscanf(text.c_str(), "%d:%lf,%lf%c", &i, &x, &y, &tail) != 3 || i < 1 || i > disp.ItemCount())
        throw UsageError(std::string(option) + " takes I:X,Y with I from 1 to " + std::to_string(disp.ItemCount()) +
                         ": '" + text + "'");
    MultiSpecParam_ItemType& item = disp.Items()[i - 1];
    if (gain)
        item.GainX = x, item.GainY = y;
    else
        item.ShiftX = x, item.ShiftY = y;
}

int MultiSpec(const Args& args)
{
    CommandLine line = ParseCommandLine(args, {"-o", "--primary", "--shift", "--gain", "--save", "--load", "--export"}, {}, 1, 64);
    const std::string out = line.Value("-o");
    if (out.size() < 5 || out.compare(out.size() - 4, 4, ".png") != 0) throw UsageError("multispec needs -o OUT.png");
    const int primary = line.Number("--primary", 1, static_cast<int>(line.words.size()), 1);
    std::vector<const ImageHeaderType*> spectra;
    for (const std::string& path : line.words) {
        const ImageHeaderType* item = OpenSpectrumForCommand("multispec", path);
        if (!item) return 1;
        spectra.push_back(item);
    }
    CMultiSpecDisp& disp = *dl_GetMultiSpecDisp();
    if (!line.Value("--load").empty()) {
        if (!disp.LoadMultiSpecData(line.Value("--load").c_str())) {
            std::fprintf(stderr, "tavrin multispec: '%s' could not be loaded\n", line.Value("--load").c_str());
            return 1;
        }
    } else {
        const int32_t id = static_cast<int32_t>(spectra[static_cast<size_t>(primary - 1)]->DataId);
        disp.Initialise(id, -1, -1);
        disp.Param().PrimaryID = id;
        for (int i = 0; i < disp.ItemCount(); ++i) disp.Items()[i].Selected = 1;
    }
    if (!line.Value("--shift").empty()) ApplyPair(disp, line.Value("--shift"), "--shift", false);
    if (!line.Value("--gain").empty()) ApplyPair(disp, line.Value("--gain"), "--gain", true);
    disp.MultiPlot(-1);
    if (!WriteCurrentPicture(out)) return 1;
    if (!line.Value("--save").empty() && !disp.SaveMultiSpecData(line.Value("--save").c_str())) {
        std::fprintf(stderr, "tavrin multispec: '%s' could not be saved\n", line.Value("--save").c_str());
        return 1;
    }
    if (!line.Value("--export").empty() && !disp.ExportMultiSpecData(line.Value("--export").c_str())) {
        std::fprintf(stderr, "tavrin multispec: '%s' could not be written\n", line.Value("--export").c_str());
        return 1;
    }
    std::printf("%s\n", out.c_str());
    return 0;
}

} // namespace

int CommandMultiSpec(const Args& args) { return RunCommand("multispec", MultiSpec, args); }
