// tavrin fft IN OUT [--band space|time LO,HI] [--stop] [--circle CX,CY,RX,RY] [--zoom Z]
//   [--mask-open F] [--mask-save F] [--overlay F.png] [--apply] [--inverse] [--enhance N]:
// the forward transform of the image of IN, then the mask built from the options, then apply
// or the filtered inverse; OUT (.tif keeps the complex data, .png the picture) gets the spectrum
// or the result.
#include "command_line.h"
#include "items.h"
#include "picture.h"
#include "session.h"

#include "image/fft_mask.h"

#include <cstdio>
#include <sstream>
#include <vector>

namespace {

bool ParseReals(const std::string& text, size_t count, std::vector<double>* out)
{
    std::stringstream in(text);
    std::string word;
    while (std::getline(in, word, ',')) {
        char* end = nullptr;
        const double v = std::strtod(word.c_str(), &end);
        if (word.empty() || *end != '\0') return false;
        out->push_back(v);
    }
    return out->size() == count;
}

bool Failed() { return Session().errorReported; }

// "--band space 0.1,0.9" arrives as three arguments: the kind and the limits become one value.
Args JoinBand(const Args& args)
{
    Args joined;
    for (size_t i = 0; i < args.size(); ++i) {
        if (args[i] == "--band" && i + 2 < args.size() && (args[i + 1] == "space" || args[i + 1] == "time")) {
            joined.push_back(args[i]);
            joined.push_back(args[i + 1] + " " + args[i + 2]);
            i += 2;
        } else {
            joined.push_back(args[i]);
        }
    }
    return joined;
}

int Fft(const Args& args)
{
    CommandLine line = ParseCommandLine(
        JoinBand(args), {"--band", "--circle", "--zoom", "--mask-open", "--mask-save", "--overlay", "--enhance"},
        {"--stop", "--apply", "--inverse"}, 2, 2);
    const std::string& out = line.words[1];
    if (!IsImageResultPath(out)) throw UsageError("the result goes to a .tif or .png file: '" + out + "'");
    std::string bandKind;
    std::vector<double> band, circle;
    if (!line.Value("--band").empty()) {
        std::stringstream in(line.Value("--band"));
        std::string limits;
        in >> bandKind >> limits;
        if ((bandKind != "space" && bandKind != "time") || !ParseReals(limits, 2, &band))
            throw UsageError("--band takes 'space LO,HI' or 'time LO,HI': '" + line.Value("--band") + "'");
    }
    if (!line.Value("--circle").empty() && !ParseReals(line.Value("--circle"), 4, &circle))
        throw UsageError("--circle takes CX,CY,RX,RY: '" + line.Value("--circle") + "'");
    const int zoom = line.Number("--zoom", 1, 16, 1);
    const int enhance = line.Number("--enhance", 0, 8, 0);
    const bool wantsMask = !band.empty() || !circle.empty() || !line.Value("--mask-open").empty();

    const ImageHeaderType* source = OpenImageForCommand("fft", line.words[0]);
    if (!source) return 1;
    dl_ForwardFFT();
    if (dl_GetCurrentImagePtr() == source) return 1;

    wint_FFTWinParamType param;
    dl_GetFFTWinParam(&param);
    param.MaskZoom = static_cast<int16_t>(zoom);
    param.MaskPass = line.Has("--stop") ? 0 : 1;
    dl_SetFFTWinParam(&param);
    if (!line.Value("--mask-open").empty()) {
        dl_pb_FFTWin_Open(line.Value("--mask-open").c_str());
        if (!MaskExists()) return 1;
    }
    if (!band.empty()) {
        dl_GetFFTWinParam(&param);
        param.BandMode = bandKind == "time" ? 1 : 2;
        if (bandKind == "time") {
            param.TimeFreqLow = band[0];
            param.TimeFreqHigh = band[1];
        } else {
            param.SpaceFreqLow = band[0];
            param.SpaceFreqHigh = band[1];
        }
        dl_SetFFTWinParam(&param);
        dl_pb_FFTWin_Add();
        if (Failed()) return 1;
    }
    if (!circle.empty()) {
        const ImageHeaderType* spectrum = dl_GetCurrentImagePtr();
        if (!MaskExists() && !GetMaskMem(spectrum->nx, spectrum->ny)) return 1;
        if (AddMaskCircle(static_cast<int>(circle[0]), static_cast<int>(circle[1]), static_cast<int>(circle[2]),
                          static_cast<int>(circle[3]), zoom, line.Has("--stop") ? 0 : 255))
            return 1;
    }
    if (!line.Value("--overlay").empty()) {
        if (!wantsMask) throw UsageError("--overlay needs a mask: --band, --circle or --mask-open");
        // The spectrum at its own size, so that the overlay lies pixel on pixel over it.
        ShowOptions own;
        own.size = 0;
        ShowCurrentItem(own);
        ShowMask(true, true, zoom);
        if (!WriteCurrentPicture(line.Value("--overlay"))) return 1;
        std::printf("%s\n", line.Value("--overlay").c_str());
    }
    if (!line.Value("--mask-save").empty()) {
        dl_pb_FFTWin_Save(line.Value("--mask-save").c_str());
        if (Failed()) return 1;
    }
    if (line.Has("--apply")) dl_pb_FFTWin_Apply();
    for (int i = 0; i < enhance; ++i) dl_EnhanceFFTContrast();
    if (line.Has("--inverse")) dl_InverseFFT();
    if (Failed()) return 1;
    return WriteImageResult(source, out);
}

} // namespace

int CommandFft(const Args& args) { return RunCommand("fft", Fft, args); }
