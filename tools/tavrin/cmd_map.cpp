// tavrin map info FILE [--json]: the SPS Mapping set of a file.
// tavrin map cube FILE -o OUT.npy [--codes]: the set as a numpy array (ni, cy, cx) of f32
// physical values, or of the u16 codes with --codes.
#include "command_line.h"
#include "items.h"
#include "mapping/cits.h"
#include "mapping_info.h"

#include <cstdio>
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

const ImageHeaderType* OpenMapping(const std::string& path)
{
    const ImageHeaderType* item = OpenItem(path);
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

int Map(const Args& args)
{
    if (args.empty()) throw UsageError("map needs info or cube");
    const Args rest(args.begin() + 1, args.end());
    if (args[0] == "info") return Info(rest);
    if (args[0] == "cube") return Cube(rest);
    throw UsageError("map needs info or cube, not '" + args[0] + "'");
}

} // namespace

int CommandMap(const Args& args) { return RunCommand("map", Map, args); }
