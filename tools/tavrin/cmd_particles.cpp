// tavrin particles IN --band LO,HI [options]: the particle analysis of the image of IN driven as
// its two dialog pages do - the band page opened on the image, the band and connectivity set,
// the statistics page opened (which makes the bilevel image and measures it) - then erosion,
// dilation and the size filter in that order, the sort, and the summary lines printed (with
// --json: the summary and one object per particle, in list order). --stats writes the
// statistics text, --bilevel the bilevel image (.tif, or .png for its picture).
#include "command_line.h"
#include "items.h"
#include "picture.h"
#include "session.h"

#include "image/particles.h"

#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <sstream>

namespace {

const std::map<std::string, uint32_t>& SortKeys()
{
    static const std::map<std::string, uint32_t> keys = {{"none", TV_PARTICLE_SORT_NONE},
                                                         {"area", TV_PARTICLE_SORT_AREA},
                                                         {"perimeter", TV_PARTICLE_SORT_PERIMETER},
                                                         {"shape", TV_PARTICLE_SORT_SHAPE}};
    return keys;
}

// "LO,HI", two grey levels from 0 to 255.
void ParseBand(const std::string& text, uint32_t* low, uint32_t* high)
{
    std::stringstream in(text);
    std::string a, b, rest;
    if (!std::getline(in, a, ',') || !std::getline(in, b, ',') || std::getline(in, rest, ','))
        throw UsageError("--band takes two grey levels LO,HI: '" + text + "'");
    char* end = nullptr;
    const long lo = std::strtol(a.c_str(), &end, 10);
    const bool loOk = !a.empty() && !*end;
    const long hi = std::strtol(b.c_str(), &end, 10);
    if (!loOk || b.empty() || *end || lo < 0 || hi < 0 || lo > 255 || hi > 255 || lo > hi)
        throw UsageError("--band takes two grey levels from 0 to 255, LO not above HI: '" + text + "'");
    *low = static_cast<uint32_t>(lo);
    *high = static_cast<uint32_t>(hi);
}

void PrintJson(const wint_ParticleSttsParamType& stts)
{
    std::printf("{\n  \"summary\": [");
    for (int i = 0; i < 5; ++i) std::printf("%s\"%s\"", i ? ", " : "", stts.SummaryLines[i]);
    std::printf("],\n  \"objects\": [");
    const ParticleStats& stats = CurrentParticleStats();
    for (int row = 0; row < stats.ObjectCount; ++row) {
        const ParticleObject& o = stats.Objects[stats.Order[row]];
        std::printf("%s\n    {\"number\": %d, \"x1\": %d, \"y1\": %d, \"x2\": %d, \"y2\": %d, \"area\": %.9g, "
                    "\"pixels\": %u, \"perimeter\": %.9g, \"shape\": %.9g}",
                    row ? "," : "", stats.Order[row] + 1, o.X1, o.Y1, o.X2, o.Y2, o.Area, o.Pixels, o.Perimeter,
                    ParticleShape(o));
    }
    std::printf("%s]\n}\n", stats.ObjectCount ? "\n  " : "");
}

bool WriteBilevel(ImageHeaderType* bilevel, const std::string& path)
{
    ImageHeaderType* source = dl_GetCurrentImagePtr();
    dl_SetCurrentImagePtr(bilevel);
    bool ok;
    if (path.size() >= 4 && path.compare(path.size() - 4, 4, ".png") == 0) {
        ShowCurrentItem(ShowOptions{});
        ok = WriteCurrentPicture(path);
    } else {
        ok = SaveCurrentItem(path, false);
    }
    dl_SetCurrentImagePtr(source);
    if (ok) std::printf("%s\n", path.c_str());
    return ok;
}

int Particles(const Args& args)
{
    CommandLine line = ParseCommandLine(
        args, {"--band", "--connectivity", "--erode", "--dilate", "--isolate", "--sort", "--stats", "--bilevel"},
        {"--json"}, 1, 1);
    if (line.Value("--band").empty()) throw UsageError("--band LO,HI is needed");
    auto param = std::make_unique<wint_ParticleParamType>();
    uint32_t low = 0, high = 0;
    ParseBand(line.Value("--band"), &low, &high);
    const int connectivity = line.Number("--connectivity", 4, 8, 4);
    if (connectivity != 4 && connectivity != 8) throw UsageError("--connectivity is 4 or 8");
    const int erode = line.Number("--erode", 0, 1000, 0);
    const int dilate = line.Number("--dilate", 0, 1000, 0);
    const int isolate = line.Number("--isolate", 0, 9999, 0);
    const auto sort = SortKeys().find(line.Value("--sort", "none"));
    if (sort == SortKeys().end()) throw UsageError("--sort is none, area, perimeter or shape");
    const std::string bilevelPath = line.Value("--bilevel");
    if (!bilevelPath.empty() && !IsImageResultPath(bilevelPath))
        throw UsageError("the bilevel image goes to a .tif or .png file: '" + bilevelPath + "'");

    if (!OpenImageForCommand("particles", line.words[0])) return 1;
    param->Initialise = 1;
    dl_GetParticleParam(param.get());
    param->LowLevel = low;
    param->HighLevel = high;
    param->Connectivity = static_cast<int16_t>(connectivity);
    dl_SetParticleParam(param.get());
    dl_GetParticleParam(param.get());
    wint_ParticleSttsParamType stts{};
    dl_GetParticleSttsParam(&stts, 1, 0);
    ImageHeaderType* bilevel = ParticleBilevelItem();
    if (!bilevel) return 1;
    for (int i = 0; i < erode; ++i) dl_ErodeBilevelImage();
    for (int i = 0; i < dilate; ++i) dl_DilateBilevelImage();
    if (isolate > 0) {
        Session().answers.push_back(Answer{Answer::Number, static_cast<double>(isolate), {}});
        dl_IsolateBilevelImage();
    }
    stts.SortKey = sort->second;
    dl_SetParticleSttsParam(&stts);
    dl_GetParticleSttsParam(&stts, 0, 0);   // measured again after the last command
    if (line.Has("--json")) {
        PrintJson(stts);
    } else {
        for (const auto& text : stts.SummaryLines) std::printf("%s\n", text);
    }
    bool ok = true;
    if (!line.Value("--stats").empty()) {
        ok = dl_WriteObjectStatistics(line.Value("--stats").c_str()) == 1;
        if (ok) std::printf("%s\n", line.Value("--stats").c_str());
    }
    if (!bilevelPath.empty()) ok = WriteBilevel(bilevel, bilevelPath) && ok;
    dl_GetParticleSttsParam(&stts, 0, 1);
    return ok && !Session().errorReported ? 0 : 1;
}

} // namespace

int CommandParticles(const Args& args) { return RunCommand("particles", Particles, args); }
