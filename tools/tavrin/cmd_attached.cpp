// tavrin attached IN -o OUT.png: the image with the places of its attached spectra marked and
// numbered, and the first of them plotted beside it.
#include "command_line.h"
#include "items.h"
#include "picture.h"

#include "tavrin/tavrin.h"

#include <cstdio>

namespace {

int Attached(const Args& args)
{
    CommandLine line = ParseCommandLine(args, {"-o"}, {}, 1, 1);
    const std::string out = line.Value("-o");
    if (out.size() < 5 || out.compare(out.size() - 4, 4, ".png") != 0) throw UsageError("attached needs -o OUT.png");
    const ImageHeaderType* image = OpenImageForCommand("attached", line.words[0]);
    if (!image) return 1;
    if (!image->SPSRefDataPtr || image->nSPSRefData <= 0) {
        std::fprintf(stderr, "tavrin attached: '%s' holds no attached spectra\n", line.words[0].c_str());
        return 1;
    }
    dl_ShowSPSSpectrum();
    if (!WriteCurrentPicture(out)) return 1;
    std::printf("%s: %d spectra\n", out.c_str(), static_cast<int>(image->nSPSRefData));
    return 0;
}

} // namespace

int CommandAttached(const Args& args) { return RunCommand("attached", Attached, args); }
