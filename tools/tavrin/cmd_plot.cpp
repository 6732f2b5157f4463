// tavrin plot IN -o OUT.png [--log-x] [--log-y] [--grid] [--box] [--size WxH]: the plot of a
// spectrum, profile or histogram as the user's window shows it.
#include "command_line.h"
#include "items.h"
#include "picture.h"

#include <cstdio>

namespace {

constexpr int kMinPlotSize = 64;
constexpr int kMaxPlotSize = 512;

// "WxH" as two whole numbers from 64 to 512.
void ParsePlotSize(const std::string& text, wint_PlotParamType* param)
{
    int w = 0, h = 0;
    char tail = 0;
    if (std::sscanf(text.c_str(), "%dx%d%c", &w, &h, &tail) != 2 || w < kMinPlotSize || w > kMaxPlotSize ||
        h < kMinPlotSize || h > kMaxPlotSize)
        throw UsageError("--size takes WxH, each from 64 to 512: '" + text + "'");
    param->PlotWidth = w;
    param->PlotHeight = h;
}

int Plot(const Args& args)
{
    CommandLine line = ParseCommandLine(args, {"-o", "--size"}, {"--log-x", "--log-y", "--grid", "--box"}, 1, 1);
    const std::string out = line.Value("-o");
    if (out.size() < 5 || out.compare(out.size() - 4, 4, ".png") != 0) throw UsageError("plot needs -o OUT.png");
    wint_PlotParamType param;
    dl_GetPlotParam(&param);
    if (!line.Value("--size").empty()) ParsePlotSize(line.Value("--size"), &param);
    param.LogAxisX = line.Has("--log-x") ? 1 : 0;
    param.LogAxisY = line.Has("--log-y") ? 1 : 0;
    param.GridX = param.GridY = line.Has("--grid") ? 1 : 0;
    param.BoxAxes = line.Has("--box") ? 1 : 0;
    dl_SetPlotParam(&param);
    if (!OpenSpectrumForCommand("plot", line.words[0])) return 1;
    if (param.LogAxisX || param.LogAxisY) dl_CheckLogAxesXY();
    ShowCurrentItem(ShowOptions{});
    if (!WriteCurrentPicture(out)) return 1;
    std::printf("%s\n", out.c_str());
    return 0;
}

} // namespace

const ImageHeaderType* OpenSpectrumForCommand(const char* command, const std::string& path)
{
    const ImageHeaderType* item = OpenItem(path);
    if (!item) return nullptr;
    if (!(dl_IsCurrentDataTypeImage() & TV_DATA_SPECTRUM)) {
        std::fprintf(stderr, "tavrin %s: '%s' holds no spectrum\n", command, path.c_str());
        return nullptr;
    }
    return item;
}

int CommandPlot(const Args& args) { return RunCommand("plot", Plot, args); }
