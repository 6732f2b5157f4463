// The spectra of the measuring markers as files.
#include "files/measure_spectra.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>

#include "files/spectrum_files.h"
#include "host/log.h"
#include "platform/files.h"
#include "platform/platform_table.h"
#include "store/image_header.h"
#include "store/memory.h"

namespace {

// The part of the file name that names the marker.
std::string NamePart(const CMeasure& measure, int32_t marker)
{
    if (marker < 0) return "_Average";
    const MeasureMarkerType& m = measure.Markers[marker];
    const POINTs* p = m.Points;
    const int n = p ? m.NoOfPoints : 0;
    char text[64];
    std::string out;
    auto pt = [&](int k) { return k < n ? p[k] : POINTs{0, 0}; };
    switch (m.Type) {
    case TV_MARKER_POINT:
        std::snprintf(text, sizeof text, "_Point(%d,%d)", pt(0).x, pt(0).y);
        return text;
    case TV_MARKER_LINE:
        std::snprintf(text, sizeof text, "_Line(%d,%d)-(%d,%d)", pt(0).x, pt(0).y, pt(1).x, pt(1).y);
        return text;
    case TV_MARKER_RECT:
        std::snprintf(text, sizeof text, "_Rect(%d,%d)(%d,%d)(%d,%d)", pt(0).x, pt(0).y, pt(1).x, pt(1).y, pt(2).x,
                      pt(2).y);
        return text;
    case TV_MARKER_CIRCLE:
        std::snprintf(text, sizeof text, "_Circle(%d,%d)-(%d,%d)", pt(0).x, pt(0).y, pt(1).x, pt(1).y);
        return text;
    case TV_MARKER_POLYGON:
        out = "_Polygon";
        for (int k = 0; k < n; ++k) {
            std::snprintf(text, sizeof text, "(%d,%d)", p[k].x, p[k].y);
            out += text;
        }
        return out;
    default:
        return "_Marker";
    }
}

bool Exists(const std::string& path)
{
    const FileHandle f = FileOpen(path, FileMode::Read);
    if (f == kInvalidFile) return false;
    FileClose(f);
    return true;
}

} // namespace

void MeasureSpectraPrompt(int count, bool average, char* text, size_t size)
{
    std::snprintf(text, size, "Extract %d spectr%s%s", count, count == 1 ? "um" : "a",
                  average ? ", and the Average spectrum." : ".");
}

int ExportOneSpectrum(CMeasure& measure, const float* x, const float* y, int32_t marker, const char* stem, int32_t type,
                      bool overwrite)
{
    const int ni = measure.SetImages();
    if (ni <= 0 || !x || !y || !measure.Image) return 0;
    if (marker >= 0 && (marker >= measure.NoOfMarkers || measure.Markers[marker].SpecCount == 0)) return 0;
    std::string name;
    try {
        name = std::string(stem ? stem : "") + NamePart(measure, marker);
    } catch (...) {
        return 0;
    }
    const std::string path = name + (type == 0 ? ".spc" : ".dat");
    if (!overwrite && Exists(path)) {
        const std::string question = type == 0 ? path + " exists. Overwrite ?" : name + ".dat exists. Overwrite ?";
        if (PlatformMessageBox(question.c_str(), "Export Spectra", TV_MB_YESNO | TV_MB_ICONQUESTION) != TV_IDYES)
            return 0;
    }
    ImageHeaderType* item = AllocateHeader();
    if (!item) return 0;
    float* samples = AllocSpecMem(ni);
    if (!samples) {
        FreeHeader(item);
        return 0;
    }
    std::memcpy(item, measure.Image, TAVRIN_HEADER_STORED_BYTES);
    item->FFTData = 0;
    item->CITSHeader = 0;
    item->SPSRefData = 0;
    item->LMCThresholdHitDataPtr = 0;
    item->nx = static_cast<int16_t>(ni);
    item->ny = 1;
    item->ImType1 = 2;
    std::snprintf(item->FileName, sizeof item->FileName, "%s", "Software generated");
    if (item->AcqMode == 51) item->LMCMode = 1;
    item->PixHandle = 1;
    item->PixData = reinterpret_cast<uint16_t*>(samples);
    int written = 0;
    if (measure.DifferentiateSPS(x, y, samples + ni, samples) == 0) {
        float lo = samples[0], hi = samples[0];
        for (int k = 0; k < ni; ++k) lo = std::min(lo, samples[k]), hi = std::max(hi, samples[k]);
        item->Zlo = lo;
        item->Zhi = hi;
        written = (type == 0 ? SaveSpecFile(item, path.c_str()) : SaveSpecData(item, path.c_str())) == 0 ? 1 : 0;
    }
    FreeSpecMem(samples);
    item->PixData = nullptr;
    FreeHeader(item);
    return written;
}

// The save dialog for the spectra of all markers and the average; answers the files written.
int CMeasure::ExportSpectra(const wint_MeasureParamType* p)
{
    (void)p;
    const int ni = SetImages();
    if (ni <= 0 || !SweepX) return 0;
    int count = 0;
    for (int i = 0; i < NoOfMarkers && Markers; ++i)
        if (OnImage(Markers[i]) && Markers[i].SpecCount > 0) ++count;
    const bool average = AveragedY && SpectrumValid;
    char prompt[128];
    MeasureSpectraPrompt(count, average, prompt, sizeof prompt);
    Log("%s\n", prompt);
    char path[260] = {};
    if (!PlatformFileDialog(false, "Spectrum(*.spc)|*.spc|XY Data(*.dat)|*.dat||", "spc",
                            "Export Spectra to Files - specfiy filename prefix", "", path, sizeof path))
        return 0;
    std::string stem = path;
    int type = 0;
    const size_t dot = stem.rfind('.');
    if (dot != std::string::npos && stem.find('/', dot) == std::string::npos) {
        type = stem.compare(dot, std::string::npos, ".dat") == 0 ? 1 : 0;
        stem.erase(dot);
    }
    int files = 0;
    for (int i = 0; i < NoOfMarkers && Markers; ++i)
        if (OnImage(Markers[i]) && Markers[i].SpecY)
            files += ExportOneSpectrum(*this, SweepX, Markers[i].SpecY, i, stem.c_str(), type, false);
    if (average) files += ExportOneSpectrum(*this, SweepX, AveragedY, -1, stem.c_str(), type, false);
    return files;
}
