// tavrin demo [--out DIR]: the tour of the built-in sample data. Makes the sample set, saves
// each item in the system's own file format, clears the data list, loads the files again,
// checks that every item came back with the same data (of a mapping also its set), and
// renders the images as a user's window shows them: plain, shaded, contour and the full
// display.
#include "command_line.h"
#include "files/sample_data.h"
#include "item_info.h"
#include "mapping/cits.h"
#include "items.h"
#include "picture.h"
#include "session.h"

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

namespace {

struct DemoItem {
    const char* name;                              // file name without extension
    ImageHeaderType* (*make)(ImageHeaderType*);
    bool image;
    std::string path;
    std::vector<unsigned char> data;               // the data block as made
    std::vector<std::string> pictures;
};

struct DemoPicture {
    const char* suffix;
    ShowOptions show;
};

const DemoPicture kTopographyPictures[] = {
    {"plain", {0, -1, -1, false}},
    {"shaded", {1, -1, -1, false}},
    {"contour", {2, -1, -1, false}},
    {"full", {0, -1, -1, true}},
};
const DemoPicture kLatticePictures[] = {
    {"plain", {0, -1, -1, false}},
    {"shaded", {1, -1, -1, false}},
};

void Append(std::vector<unsigned char>& data, const void* bytes, size_t count)
{
    const auto* p = static_cast<const unsigned char*>(bytes);
    data.insert(data.end(), p, p + count);
}

// The data block, and of an image with an SPS Mapping set the stored part of every entry, every
// plane and the hit records.
std::vector<unsigned char> DataOf(const ImageHeaderType* item)
{
    std::vector<unsigned char> data;
    if (item->PixData) Append(data, item->PixData, DataBlockBytes(item));
    const CITSHeaderType* set = item->CITSHeaderPtr;
    if (!set) return data;
    const size_t plane = static_cast<size_t>(set->cx) * static_cast<size_t>(set->cy) * 2;
    for (int k = 0; k < set->ni; ++k) {
        Append(data, CITSEntry(set, k), TAVRIN_CITS_ENTRY_STORED_BYTES);
        Append(data, CITSPixels(CITSEntry(set, k)), plane);
    }
    if (item->LMCHitDataPtr)
        Append(data, item->LMCHitDataPtr, static_cast<size_t>(item->LMCHitDataCx) * item->LMCHitDataCy * TAVRIN_LMC_HIT_BYTES);
    return data;
}

bool RenderPictures(DemoItem& item, const std::string& dir, const DemoPicture* pictures, size_t count)
{
    for (size_t i = 0; i < count; ++i) {
        ShowCurrentItem(pictures[i].show);
        std::string path = dir + "/" + item.name + "-" + pictures[i].suffix + ".png";
        if (!WriteCurrentPicture(path)) return false;
        item.pictures.push_back(path);
    }
    ShowCurrentItem(ShowOptions{});
    return true;
}

int Demo(const Args& args)
{
    CommandLine line = ParseCommandLine(args, {"--out"}, {}, 0, 0);
    const std::string dir = line.Value("--out", "tavrin-demo");
    std::error_code ec;
    std::filesystem::create_directories(dir, ec);
    if (ec) {
        std::fprintf(stderr, "tavrin demo: cannot make the directory '%s': %s\n", dir.c_str(), ec.message().c_str());
        return 1;
    }
    std::vector<DemoItem> items = {
        {"topography", MakeSampleTopography, true, {}, {}, {}},
        {"lattice", MakeSampleLattice, true, {}, {}, {}},
        {"iv-curve", MakeSampleIVCurve, false, {}, {}, {}},
        {"force-curve", MakeSampleForceCurve, false, {}, {}, {}},
        {"iv-mapping", MakeSampleIVMapping, true, {}, {}, {}},
        {"force-mapping", MakeSampleForceMappingWithStep, true, {}, {}, {}},
        {"fv-mapping", MakeSampleFVMapping, true, {}, {}, {}},
    };

    // Make and save.
    ImageHeaderType* last = dl_GetCurrentImagePtr();
    while (last && last->Next) last = last->Next;
    for (DemoItem& item : items) {
        ImageHeaderType* made = item.make(last);
        if (!made) return 1;
        last = made;
        item.data = DataOf(made);
        item.path = dir + "/" + item.name + (item.image ? ".tif" : ".spc");
        dl_SetCurrentImagePtr(made);
        if (!SaveCurrentItem(item.path, false)) {
            std::fprintf(stderr, "tavrin demo: cannot save '%s'\n", item.path.c_str());
            return 1;
        }
    }

    // Clear the data list (answering its question) and load the files again.
    Session().answers.push_back(Answer{Answer::Yes, 0, {}});
    dl_EraseAllData();
    Session().answers.clear();
    int same = 0;
    for (DemoItem& item : items) {
        ImageHeaderType* loaded = OpenItem(item.path);
        if (!loaded) return 1;
        if (DataOf(loaded) == item.data) ++same;
        else std::fprintf(stderr, "tavrin demo: '%s' did not load with the data it was saved with\n", item.path.c_str());
        if (item.image) {
            bool topography = std::strcmp(item.name, "topography") == 0;
            bool ok = topography ? RenderPictures(item, dir, kTopographyPictures, std::size(kTopographyPictures))
                                 : RenderPictures(item, dir, kLatticePictures, std::size(kLatticePictures));
            if (!ok) return 1;
        }
    }

    // The summary.
    std::printf("Tavrin Processing demo: the built-in sample data, saved, loaded again and rendered.\n\n");
    for (DemoItem& item : items) {
        ImageHeaderType* found = nullptr;
        for (ImageHeaderType* p = dl_GetCurrentImagePtr(); p; p = p->Prev) found = p;
        for (ImageHeaderType* p = found; p; p = p->Next)
            if (std::strcmp(p->FileName, item.path.c_str()) == 0) dl_SetCurrentImagePtr(p);
        std::printf("%s\n", item.path.c_str());
        PrintItemInfo(stdout, false);
        for (const std::string& picture : item.pictures) std::printf("picture: %s\n", picture.c_str());
        std::printf("\n");
    }
    std::printf("%d of %zu items loaded again with the data they were saved with.\n", same, items.size());
    std::printf("Sample truth: %d particles of radius %.0f nm on the topography; lattice constant %.3f nm.\n",
                SampleTopography::kParticleCount, SampleTopography::kParticleRadius,
                SampleLattice::kLatticeConstant);
    std::printf("Mapping truth: I = G (V + %.1f V^3) with G %.1f and %.1f nA/V; pull-off %.0f nN in the disc, %.0f nN "
                "outside; F = %.1f (V + V0)^2 %+.1f nN with V0 from %.1f to %.1f V.\n",
                SampleIVMapping::kCubic, SampleIVMapping::kConductanceA, SampleIVMapping::kConductanceB,
                SampleForceMapping::kStiffness * SampleForceMapping::kPullOffInside,
                SampleForceMapping::kStiffness * SampleForceMapping::kPullOffOutside, SampleFVMapping::kCurvature,
                SampleFVMapping::kOffset, SampleFVMapping::kV0Left, SampleFVMapping::kV0Right);
    return same == static_cast<int>(items.size()) ? 0 : 1;
}

} // namespace

int CommandDemo(const Args& args) { return RunCommand("demo", Demo, args); }
