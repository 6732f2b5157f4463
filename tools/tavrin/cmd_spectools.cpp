// tavrin specfit IN --degree N [--json]: the polynomial of a spectrum with its statistics.
// tavrin specfft IN --window 1-5 [-o OUT.png] [--csv]: the magnitude spectrum under a window.
#include "command_line.h"
#include "items.h"
#include "picture.h"
#include "session.h"

#include "spectro/spectrum_tools.h"

#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

int NumberOption(const CommandLine& line, const char* option, int lo, int hi)
{
    const std::string text = line.Value(option);
    char* end = nullptr;
    const long n = std::strtol(text.c_str(), &end, 10);
    if (text.empty() || *end || n < lo || n > hi)
        throw UsageError(std::string(option) + " takes a number from " + std::to_string(lo) + " to " +
                         std::to_string(hi) + ": '" + text + "'");
    return static_cast<int>(n);
}

void PrintFit(const PolyRegressionStats& s, int degree, bool json)
{
    if (json) {
        std::printf("{\"degree\": %d, \"coefficients\": [", degree);
        for (int k = 0; k <= degree; ++k) std::printf("%s%.17g", k ? ", " : "", s.coefficients[k]);
        std::printf("], \"errors\": [");
        for (int k = 0; k <= degree; ++k) std::printf("%s%.17g", k ? ", " : "", s.errors[k]);
        std::printf("], \"stddev\": %.17g, \"r\": %.17g}\n", s.stddev, s.correlation);
        return;
    }
    for (int k = 0; k <= degree; ++k) std::printf("X%d %.9g +- %.3g\n", k, s.coefficients[k], s.errors[k]);
    std::printf("stddev %.9g\nr %.9g\n", s.stddev, s.correlation);
}

int SpecFit(const Args& args)
{
    CommandLine line = ParseCommandLine(args, {"--degree"}, {"--json"}, 1, 1);
    const int degree = NumberOption(line, "--degree", 1, 19);
    const ImageHeaderType* item = OpenSpectrumForCommand("specfit", line.words[0]);
    if (!item) return 1;
    SpecFitWork work{};
    if (!AllocateSpecFitWork(item->nx, &work)) return 1;
    PolyRegressionStats s;
    const int result = FitSpectrumPolynomial(item, degree, 0, work, &s);
    FreeSpecFitWork(&work);
    if (result != 0) {
        std::fprintf(stderr, "tavrin specfit: the fit of degree %d is singular\n", degree);
        return 1;
    }
    PrintFit(s, degree, line.Has("--json"));
    return 0;
}

int SpecFFT(const Args& args)
{
    CommandLine line = ParseCommandLine(args, {"--window", "-o"}, {"--csv"}, 1, 1);
    const int window = NumberOption(line, "--window", 1, 5);
    const std::string out = line.Value("-o");
    if (out.empty() && !line.Has("--csv")) throw UsageError("specfft needs -o OUT.png or --csv");
    if (!out.empty() && (out.size() < 5 || out.compare(out.size() - 4, 4, ".png") != 0))
        throw UsageError("specfft writes its plot to a .png file: '" + out + "'");
    const ImageHeaderType* item = OpenSpectrumForCommand("specfft", line.words[0]);
    if (!item) return 1;
    if (line.Has("--csv")) {
        std::vector<float> m(static_cast<size_t>(item->nx / 2 > 0 ? item->nx / 2 : 1));
        if (SpectrumMagnitudes(reinterpret_cast<const float*>(item->PixData), item->nx, window, m.data()) != 0)
            return 1;
        std::printf("k,magnitude\n");
        for (int k = 0; k < item->nx / 2; ++k) std::printf("%d,%.9g\n", k, static_cast<double>(m[static_cast<size_t>(k)]));
    }
    if (!out.empty()) {
        Session().errorReported = false;
        dl_ShowSpecFFT(static_cast<uint16_t>(window));
        if (Session().errorReported) return 1;
        if (!WriteCurrentPicture(out)) return 1;
        std::fprintf(line.Has("--csv") ? stderr : stdout, "%s\n", out.c_str());
    }
    return 0;
}

} // namespace

int CommandSpecFit(const Args& args) { return RunCommand("specfit", SpecFit, args); }
int CommandSpecFFT(const Args& args) { return RunCommand("specfft", SpecFFT, args); }
