// tavrin measure IN [markers] [options]: the Measure dialog driven from the command line. The
// image of IN is opened, the measuring object set on it (with its mapping set when spectra are
// asked for), the markers added in the order given, drawn and measured, and the summary table
// printed (with --json: the four columns and every marker). -o writes the picture of the image
// with its markers, --export the text table, --spectra the spectrum of every marker and the
// average under STEM.
//
// The same steps serve the script lines Measure.Initialise, Measure.Add, Measure.Display and
// Measure.Export.
#include "command_line.h"
#include "items.h"
#include "picture.h"
#include "session.h"

#include "analysis/measure.h"
#include "files/measure_spectra.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <sstream>

namespace {

// "A,B,C,...": whole numbers in the range of a marker point; `count` 0 takes any even count.
std::vector<POINTs> ParsePoints(const std::string& option, const std::string& text, size_t count)
{
    std::vector<long> values;
    std::stringstream in(text);
    std::string item;
    while (std::getline(in, item, ',')) {
        char* end = nullptr;
        const long v = std::strtol(item.c_str(), &end, 10);
        if (item.empty() || *end || v < -32768 || v > 32767)
            throw UsageError(option + " takes whole numbers separated by commas: '" + text + "'");
        values.push_back(v);
    }
    if (values.empty() || values.size() % 2 || (count && values.size() != 2 * count))
        throw UsageError(option + " takes " + (count ? std::to_string(2 * count) : std::string("pairs of")) +
                         " numbers: '" + text + "'");
    std::vector<POINTs> points;
    for (size_t i = 0; i < values.size(); i += 2)
        points.push_back(POINTs{static_cast<int16_t>(values[i]), static_cast<int16_t>(values[i + 1])});
    return points;
}

const std::map<std::string, int32_t>& Kinds()
{
    static const std::map<std::string, int32_t> kinds = {{"--point", TV_MARKER_POINT},
                                                         {"--line", TV_MARKER_LINE},
                                                         {"--rect", TV_MARKER_RECT},
                                                         {"--circle", TV_MARKER_CIRCLE},
                                                         {"--polygon", TV_MARKER_POLYGON}};
    return kinds;
}

size_t PointsOf(int32_t kind)
{
    switch (kind) {
    case TV_MARKER_POINT: return 1;
    case TV_MARKER_LINE: return 2;
    case TV_MARKER_RECT: return 3;
    case TV_MARKER_CIRCLE: return 2;
    default: return 0;
    }
}

const char* KindWord(int32_t kind)
{
    switch (kind) {
    case TV_MARKER_POINT: return "point";
    case TV_MARKER_LINE: return "line";
    case TV_MARKER_RECT: return "rect";
    case TV_MARKER_CIRCLE: return "circle";
    case TV_MARKER_POLYGON: return "polygon";
    default: return "none";
    }
}

void PrintNumber(float v)
{
    if (v == kNoStatistic || v == -kNoStatistic) std::printf("null");
    else std::printf("%.9g", static_cast<double>(v));
}

void PrintStatistics(const float v[8])
{
    static const char* names[8] = {"min", "mean", "max", "rms", "ra", "len_area", "surf_len_area", "vol_csa"};
    for (int k = 0; k < 8; ++k) {
        std::printf(", \"%s\": ", names[k]);
        PrintNumber(v[k]);
    }
}

void PrintJson(const CMeasure& ms)
{
    std::printf("{\n  \"columns\": [");
    for (int c = 0; c < 4; ++c) {
        const float v[8] = {ms.Min[c], ms.Mean[c], ms.Max[c], ms.RMS[c], ms.Ra[c], ms.LenArea[c], ms.SurfLenArea[c],
                            ms.VolCSA[c]};
        std::printf("%s\n    {\"name\": \"%s\", \"number\": %d", c ? "," : "", kMeasureRowNames[c], ms.Number[c]);
        PrintStatistics(v);
        std::printf("}");
    }
    std::printf("\n  ],\n  \"markers\": [");
    int shown = 0;
    for (int i = 0; i < ms.NoOfMarkers; ++i) {
        const MeasureMarkerType& m = ms.Markers[i];
        if (!ms.OnImage(m)) continue;
        std::printf("%s\n    {\"id\": %d, \"type\": \"%s\", \"points\": [", shown++ ? "," : "", m.ID, KindWord(m.Type));
        for (int k = 0; k < m.NoOfPoints; ++k) std::printf("%s[%d, %d]", k ? ", " : "", m.Points[k].x, m.Points[k].y);
        std::printf("], \"pixels\": %d", m.SpecCount);
        const float v[8] = {m.Min, m.Mean, m.Max, m.RMS, m.Ra, m.LenArea, m.SurfLenArea, m.VolCSA};
        PrintStatistics(v);
        std::printf("}");
    }
    std::printf("%s]\n}\n", shown ? "\n  " : "");
}

struct MarkerArg {
    int32_t kind;
    std::vector<POINTs> points;
    POINTs seed{0, 0};
};

int Measure(const Args& args)
{
    // Marker options repeat, so the line is read here in order.
    std::vector<MarkerArg> markers;
    std::vector<std::string> words;
    std::map<std::string, std::string> values;
    bool json = false, spc = false, dat = false;
    const std::vector<std::string> valued = {"--base", "--base-height", "-o", "--export", "--spectra"};
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        auto next = [&]() -> const std::string& {
            if (i + 1 >= args.size()) throw UsageError(a + " needs a value");
            return args[++i];
        };
        if (Kinds().count(a)) {
            const int32_t kind = Kinds().at(a);
            markers.push_back(MarkerArg{kind, ParsePoints(a, next(), PointsOf(kind))});
        } else if (a == "--seed") {
            if (markers.empty() || markers.back().kind != TV_MARKER_POLYGON)
                throw UsageError("--seed follows a --polygon");
            markers.back().seed = ParsePoints(a, next(), 1)[0];
        } else if (std::find(valued.begin(), valued.end(), a) != valued.end()) {
            values[a] = next();
        } else if (a == "--json") {
            json = true;
        } else if (a == "--spc") {
            spc = true;
        } else if (a == "--dat") {
            dat = true;
        } else if (!a.empty() && a[0] == '-') {
            throw UsageError("unknown option " + a);
        } else {
            words.push_back(a);
        }
    }
    if (words.size() != 1) throw UsageError("measure takes one input file");
    static const std::map<std::string, int32_t> bases = {
        {"none", TV_BASE_NONE}, {"above", TV_BASE_ABOVE}, {"below", TV_BASE_BELOW}, {"both", TV_BASE_BOTH}};
    const auto base = bases.find(values.count("--base") ? values["--base"] : "above");
    if (base == bases.end()) throw UsageError("--base is none, above, below or both");
    double baseHeight = 0;
    if (values.count("--base-height")) {
        char* end = nullptr;
        baseHeight = std::strtod(values["--base-height"].c_str(), &end);
        if (values["--base-height"].empty() || *end) throw UsageError("--base-height takes a number");
    }
    const bool spectra = values.count("--spectra") != 0;
    if (spectra && spc == dat) throw UsageError("--spectra STEM takes one of --spc or --dat");
    if ((spc || dat) && !spectra) throw UsageError("--spc and --dat go with --spectra STEM");
    for (const MarkerArg& m : markers)
        if (m.kind == TV_MARKER_POLYGON && m.points.size() < 1) throw UsageError("--polygon needs a point");

    if (!OpenImageForCommand("measure", words[0])) return 1;
    CMeasure* ms = dl_GetMeasureClass();
    // The base plane is set first: the whole-image volume of the opening run depends on it.
    ms->BaseMode = base->second;
    ms->BaseHeight = static_cast<float>(baseHeight);
    if (ms->MeasureInitialise(spectra, nullptr) != 0) {
        std::fprintf(stderr, "measure: %s\n", spectra ? "the image has no SPS Mapping set" : "cannot measure the image");
        return 1;
    }
    for (const MarkerArg& m : markers)
        if (AddMeasureMarker(ms, m.kind, m.points.data(), static_cast<int32_t>(m.points.size()), m.seed) < 0) return 1;
    ms->DisplayImageWithMarkers();
    if (json) {
        PrintJson(*ms);
    } else {
        std::string table;
        AppendMeasureSummary(*ms, table);
        std::fputs(table.c_str(), stdout);
    }
    bool ok = true;
    if (values.count("-o")) {
        ok = WriteCurrentPicture(values["-o"]) && ok;
        if (ok) std::printf("%s\n", values["-o"].c_str());
    }
    if (values.count("--export")) {
        const bool written = ms->ExportToTXT(values["--export"].c_str()) != 0;
        if (written) std::printf("%s\n", values["--export"].c_str());
        else std::fprintf(stderr, "measure: cannot write %s\n", values["--export"].c_str());
        ok = written && ok;
    }
    if (spectra) {
        const int type = dat ? 1 : 0;
        int files = 0;
        for (int i = 0; i < ms->NoOfMarkers; ++i)
            if (ms->OnImage(ms->Markers[i]))
                files += ExportOneSpectrum(*ms, ms->SweepX, ms->Markers[i].SpecY, i, values["--spectra"].c_str(), type, true);
        if (ms->SpectrumValid)
            files += ExportOneSpectrum(*ms, ms->SweepX, ms->AveragedY, -1, values["--spectra"].c_str(), type, true);
        std::printf("%d spectrum files\n", files);
    }
    ms->MeasureFinish();
    ClearMeasureMarkers(ms);
    return ok && !Session().errorReported ? 0 : 1;
}

std::vector<POINTs> ScriptPoints(const char* text)
{
    try {
        return ParsePoints("Measure.Add", text ? text : "", 0);
    } catch (const UsageError&) {
        return {};
    }
}

} // namespace

int CommandMeasure(const Args& args) { return RunCommand("measure", Measure, args); }

int32_t ScriptMeasureInitialise(int32_t spectroscopy)
{
    CMeasure* ms = dl_GetMeasureClass();
    ClearMeasureMarkers(ms);
    return ms->MeasureInitialise(spectroscopy != 0, nullptr);
}

int32_t ScriptMeasureAdd(int32_t type, const char* points, int32_t seedX, int32_t seedY)
{
    const std::vector<POINTs> p = ScriptPoints(points);
    if (p.empty()) return -1;
    return AddMeasureMarker(dl_GetMeasureClass(), type, p.data(), static_cast<int32_t>(p.size()),
                            POINTs{static_cast<int16_t>(seedX), static_cast<int16_t>(seedY)});
}

void ScriptMeasureDisplay() { dl_GetMeasureClass()->DisplayImageWithMarkers(); }

int32_t ScriptMeasureExport(const char* path) { return dl_GetMeasureClass()->ExportToTXT(path); }
