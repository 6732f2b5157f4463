// tavrin map info FILE [--json]: the SPS Mapping set of a file.
// tavrin map cube FILE -o OUT.npy [--codes]: the set as a numpy array (ni, cy, cx) of f32
// physical values, or of the u16 codes with --codes.
// tavrin map composite FILE -o OUT.png [--frame 0|64|128] [--n N] [--select 0-4] [--mode 0-4]
//     [--labels 0|1|2] [--topo]: the sheet of frames of the set.
// tavrin map slice FILE (--image K | --at V) -o OUT.png: one image of the set, large.
// tavrin map page FILE --page P [--size 64|128] -o OUT.png: a page of the paged browser.
// tavrin map replay FILE -o DIR: the rapid replay, one picture per image on one colour scale.
#include "command_line.h"
#include "items.h"
#include "mapping/cits.h"
#include "mapping/cits_display.h"
#include "mapping_info.h"
#include "picture.h"

#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

namespace {

// The header of a version 1.0 .npy file: magic, version, length, and the dictionary padded
// with spaces to a multiple of 64 bytes in all, ending in a newline.
std::string NpyHeader(const char* descr, int ni, int cy, int cx)
{
    std::string dict = std::string("{'descr': '") + descr + "', 'fortran_order': False, 'shape': (" + std::to_string(ni) +
                       ", " + std::to_string(cy) + ", " + std::to_string(cx) + "), }";
    const size_t fixed = 10;
    size_t total = fixed + dict.size() + 1;
    total = (total + 63) / 64 * 64;
    dict.append(total - fixed - dict.size() - 1, ' ');
    dict += '\n';
    std::string header = "\x93NUMPY";
    header += '\x01';
    header += '\x00';
    const auto length = static_cast<uint16_t>(dict.size());
    header += static_cast<char>(length & 0xFF);
    header += static_cast<char>(length >> 8);
    return header + dict;
}

ImageHeaderType* OpenMapping(const std::string& path)
{
    ImageHeaderType* item = OpenItem(path);
    if (!item) return nullptr;
    if (!item->CITSHeaderPtr) {
        std::fprintf(stderr, "tavrin map: '%s' holds no SPS Mapping set\n", path.c_str());
        return nullptr;
    }
    return item;
}

int Info(const Args& args)
{
    CommandLine line = ParseCommandLine(args, {}, {"--json"}, 1, 1);
    const ImageHeaderType* item = OpenMapping(line.words[0]);
    if (!item) return 1;
    if (line.Has("--json"))
        std::printf("%s\n", MappingJson(item).c_str());
    else
        PrintMappingInfo(stdout, item);
    return 0;
}

int Cube(const Args& args)
{
    CommandLine line = ParseCommandLine(args, {"-o"}, {"--codes"}, 1, 1);
    const std::string out = line.Value("-o");
    if (out.empty()) throw UsageError("map cube needs -o OUT.npy");
    const ImageHeaderType* item = OpenMapping(line.words[0]);
    if (!item) return 1;
    const bool codes = line.Has("--codes");
    std::vector<unsigned char> cube(CITSCubeBytes(item, codes));
    if (cube.empty() || !CITSCube(item, codes, cube.data())) {
        std::fprintf(stderr, "tavrin map: the set has no pixels\n");
        return 1;
    }
    const CITSHeaderType* set = item->CITSHeaderPtr;
    const std::string header = NpyHeader(codes ? "<u2" : "<f4", set->ni, set->cy, set->cx);
    FILE* f = std::fopen(out.c_str(), "wb");
    if (!f) {
        std::fprintf(stderr, "tavrin map: cannot create '%s'\n", out.c_str());
        return 1;
    }
    const bool written = std::fwrite(header.data(), 1, header.size(), f) == header.size() &&
                         std::fwrite(cube.data(), 1, cube.size(), f) == cube.size();
    if (std::fclose(f) != 0 || !written) {
        std::fprintf(stderr, "tavrin map: cannot write '%s'\n", out.c_str());
        return 1;
    }
    std::printf("%s: %d x %d x %d %s\n", out.c_str(), set->ni, set->cy, set->cx, codes ? "codes (u16)" : "values (f32)");
    return 0;
}

// Writes the current frame store and prints the name; 1 when it could not be written.
int WritePicture(const std::string& out)
{
    if (!WriteCurrentPicture(out)) return 1;
    std::printf("%s\n", out.c_str());
    return 0;
}

int Composite(const Args& args)
{
    CommandLine line =
        ParseCommandLine(args, {"-o", "--frame", "--n", "--select", "--mode", "--labels"}, {"--topo"}, 1, 1);
    const std::string out = line.Value("-o");
    if (out.empty()) throw UsageError("map composite needs -o OUT.png");
    const int frame = line.Number("--frame", 0, 128, 0);
    if (frame != 0 && frame != 64 && frame != 128) throw UsageError("--frame takes 0, 64 or 128");
    ImageHeaderType* item = OpenMapping(line.words[0]);
    if (!item) return 1;
    CITSDispBlockType& disp = item->CITSHeaderPtr->disp;
    disp.n = static_cast<int16_t>(line.Number("--n", 1, 1024, disp.n));
    disp.select = static_cast<uint8_t>(line.Number("--select", 0, 4, disp.select));
    disp.mode = static_cast<uint8_t>(line.Number("--mode", 0, 4, disp.mode));
    const int labels = line.Number("--labels", 0, 2, (disp.flags & 2) ? ((disp.flags & 4) ? 1 : 2) : 0);
    uint16_t flags = static_cast<uint16_t>(disp.flags & ~6u);
    if (labels != 0) flags |= 2;
    if (labels == 1) flags |= 4;
    if (line.Has("--topo")) flags |= 1;
    disp.flags = flags;
    dl_ClearFrameStore();
    DisplayCITSDataSet1(item, frame);
    return WritePicture(out);
}

int Slice(const Args& args)
{
    CommandLine line = ParseCommandLine(args, {"-o", "--image", "--at"}, {}, 1, 1);
    const std::string out = line.Value("-o");
    if (out.empty()) throw UsageError("map slice needs -o OUT.png");
    // The picture only: an image of the set as an image file of its own is not made here.
    if (std::filesystem::path(out).extension() != ".png") throw UsageError("map slice writes a picture: -o OUT.png");
    const bool byImage = !line.Value("--image").empty(), byValue = !line.Value("--at").empty();
    if (byImage == byValue) throw UsageError("map slice takes one of --image K or --at V");
    ImageHeaderType* item = OpenMapping(line.words[0]);
    if (!item) return 1;
    CITSHeaderType* set = item->CITSHeaderPtr;
    const int image = byImage ? line.Number("--image", 0, set->ni - 1, 0)
                              : GetNearestCITSVoltage(std::stof(line.Value("--at")), set);
    dl_ClearFrameStore();
    dl_pb_CITSSetCurrent(static_cast<int16_t>(image + 1));
    return WritePicture(out);
}

int Page(const Args& args)
{
    CommandLine line = ParseCommandLine(args, {"-o", "--page", "--size"}, {}, 1, 1);
    const std::string out = line.Value("-o");
    if (out.empty()) throw UsageError("map page needs -o OUT.png");
    const int size = line.Number("--size", 64, 128, 64);
    if (size != 64 && size != 128) throw UsageError("--size takes 64 or 128");
    const int page = line.Number("--page", 0, 4095, 0);
    if (!OpenMapping(line.words[0])) return 1;
    dl_ClearFrameStore();
    dl_CITSDisplayXxY(size);
    // Each click turns one page on, as the user's left button does.
    for (int p = 0; p < page && CITSPagedActive(); ++p) DoCITSDisplayXxY(1, 0, 0, 0);
    const int written = WritePicture(out);
    if (CITSPagedActive()) DoCITSDisplayXxY(4, 0, 0, 0);
    return written;
}

int Replay(const Args& args)
{
    CommandLine line = ParseCommandLine(args, {"-o"}, {}, 1, 1);
    const std::string dir = line.Value("-o");
    if (dir.empty()) throw UsageError("map replay needs -o DIR");
    ImageHeaderType* item = OpenMapping(line.words[0]);
    if (!item) return 1;
    std::error_code ec;
    std::filesystem::create_directories(dir, ec);
    if (ec) {
        std::fprintf(stderr, "tavrin map: cannot create '%s'\n", dir.c_str());
        return 1;
    }
    const CITSHeaderType* set = item->CITSHeaderPtr;
    CITSReplaySliderRecord record;
    bool nearest = false;
    CITSReplaySlider(item, &record, &nearest);
    dl_ClearFrameStore();
    dl_CITSRapidReplay();
    int failed = 0;
    for (int k = 0; k < set->ni; ++k) {
        // The slider value that shows image k: its sweep value, or its number from 1.
        const float value = nearest ? CITSEntry(set, k)->voltage : static_cast<float>(k + 1);
        dl_Horz_Scroll_Bar1_Callback(kCITSReplaySliderId, 0, value);
        char name[32];
        std::snprintf(name, sizeof name, "replay_%04d.png", k);
        failed |= WritePicture((std::filesystem::path(dir) / name).string());
    }
    dl_Horz_Scroll_Bar1_Callback(kCITSReplaySliderId, 1, nearest ? CITSEntry(set, set->ni - 1)->voltage
                                                                 : static_cast<float>(set->ni));
    return failed;
}

int Map(const Args& args)
{
    if (args.empty()) throw UsageError("map needs info, cube, composite, slice, page or replay");
    const Args rest(args.begin() + 1, args.end());
    if (args[0] == "info") return Info(rest);
    if (args[0] == "cube") return Cube(rest);
    if (args[0] == "composite") return Composite(rest);
    if (args[0] == "slice") return Slice(rest);
    if (args[0] == "page") return Page(rest);
    if (args[0] == "replay") return Replay(rest);
    throw UsageError("map needs info, cube, composite, slice, page or replay, not '" + args[0] + "'");
}

} // namespace

int CommandMap(const Args& args) { return RunCommand("map", Map, args); }
