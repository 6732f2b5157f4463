// Replays fuzz inputs through a target without libFuzzer: every regular file of every
// directory named on the command line goes through LLVMFuzzerTestOneInput. When the last
// directory is missing or empty, the target's seeds are written there first.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);
extern "C" void TavrinFuzzSeeds(const char* directory);

namespace fs = std::filesystem;

int main(int argc, char** argv)
{
    if (argc < 2) {
        std::fprintf(stderr, "usage: %s corpus-directory [seed-directory]\n", argv[0]);
        return 2;
    }
    if (argc >= 3) {
        const fs::path seeds = argv[2];
        std::error_code ec;
        if (!fs::exists(seeds, ec) || fs::is_empty(seeds, ec)) {
            fs::create_directories(seeds, ec);
            TavrinFuzzSeeds(seeds.c_str());
        }
    }
    size_t inputs = 0;
    for (int i = 1; i < argc; ++i) {
        std::error_code ec;
        if (!fs::is_directory(argv[i], ec)) continue;
        std::vector<fs::path> files;
        for (const auto& entry : fs::directory_iterator(argv[i], ec))
            if (entry.is_regular_file()) files.push_back(entry.path());
        std::sort(files.begin(), files.end());
        for (const fs::path& file : files) {
            std::ifstream in(file, std::ios::binary);
            std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
            LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
            ++inputs;
        }
    }
    std::printf("replayed %zu inputs\n", inputs);
    return inputs > 0 ? 0 : 1;
}
