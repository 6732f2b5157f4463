// Fuzz target: measuring markers of any kind on images of 1 to 300 pixels a side. Input: nx
// and ny (two bytes each), the base mode and the current marker, then markers: a type byte
// (any of the five kinds or none), a point count of 0 to 50, that many points and a seed of
// any 16-bit value, and an allocation failure placed before the next step. Every marker set is
// drawn, measured and exported. Bit 6 of the base byte puts a mapping set behind the image
// (two more bytes: its image count and side, and whether its images decode logarithmically)
// and measures in spectroscopy mode; then every marker's spectrum also goes to a file.
// Checks: the marker count and every marker's points stay as set, the identity mask holds only
// marker numbers (and the label bit), counts are never negative, a profile item of a line
// marker has a width within its type, and the export either writes the file or answers 0.
#include "fuzz_support.h"
#include "analysis/measure.h"
#include "files/measure_spectra.h"
#include "mapping/cits.h"
#include "store/cits_memory.h"

#include <initializer_list>
#include <string>
#include <vector>

namespace {

using fuzzsupport::Check;

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzzsupport::StartOnce();
    if (size < 6) return 0;
    fuzzsupport::Reader in{data, size};
    const int nx = 1 + static_cast<int>(in.Word() % 300), ny = 1 + static_cast<int>(in.Word() % 300);
    const unsigned baseByte = in.Byte();
    const int current = static_cast<int>(in.Byte()) - 2;
    ImageHeaderType* source = fuzzsupport::NewImageItem(nullptr, nx, ny);
    source->ImageSizeX = static_cast<float>(nx) * 2.0f;
    source->ImageSizeY = static_cast<float>(ny) * 3.0f;
    source->Zhi = 10.0f;
    source->DataSource = baseByte & 0x80 ? 3 : 1;
    uint32_t state = static_cast<uint32_t>(size) * 2654435761u;
    auto next = [&state] {
        state = state * 1664525u + 1013904223u;
        return static_cast<uint16_t>(state >> 16);
    };
    for (int i = 0; i < nx * ny; ++i) source->PixData[i] = next();
    const bool spectroscopy = (baseByte & 0x40) != 0;
    if (spectroscopy) {
        const unsigned images = in.Byte(), side = in.Byte();
        const int ni = 1 + static_cast<int>(images % 6);
        const int cs = 1 + static_cast<int>(side % 40);
        CITSHeaderType* set = AllocateCITSDataSet(ni, static_cast<int16_t>(cs), static_cast<int16_t>(cs));
        Check(set != nullptr, "mapping set");
        for (int k = 0; k < ni; ++k) {
            CITSImageEntryType* e = CITSEntry(set, k);
            e->adc_gain = 1;
            e->i_divider = 1;
            e->voltage = -1.0f + 0.5f * static_cast<float>(k);
            e->z_low = -1.0f;
            e->z_high = 1.0f;
            e->data_type = images & 0x80 ? 8 : 4;
            uint16_t* pixels = CITSPixels(e);
            for (int i = 0; i < cs * cs; ++i) pixels[i] = next();
        }
        SetCITSBlock(source, set);
    }
    CurrentItem = source;

    CMeasure* ms = MeasureObject();
    static const int32_t kBases[5] = {TV_BASE_NONE, TV_BASE_ABOVE, TV_BASE_BELOW, TV_BASE_BOTH, 3};
    ms->BaseMode = kBases[(baseByte & 0x7f) % 5];
    ms->BaseHeight = static_cast<float>(baseByte & 0x0f);
    if (ms->MeasureInitialise(spectroscopy, nullptr) == 0) {
        static const int32_t kTypes[7] = {TV_MARKER_POINT, TV_MARKER_LINE, TV_MARKER_RECT, TV_MARKER_CIRCLE,
                                          TV_MARKER_POLYGON, 0, 3};
        std::vector<std::vector<POINTs>> set;
        int markers = 0;
        while (in.More() && markers < 12) {
            const int32_t type = kTypes[in.Byte() % 7];
            const int count = static_cast<int>(in.Byte() % 51);
            std::vector<POINTs> points(static_cast<size_t>(count));
            for (POINTs& p : points) {
                p.x = static_cast<int16_t>(in.SignedWord());
                p.y = static_cast<int16_t>(in.SignedWord());
            }
            const POINTs seed{static_cast<int16_t>(in.SignedWord()), static_cast<int16_t>(in.SignedWord())};
            const unsigned fail = in.Byte();
            if (fail >= 0xf0) FailAllocationsForTests(1, static_cast<int>(fail & 7));
            const int index = AddMeasureMarker(ms, type, points.data(), count, seed);
            FailAllocationsForTests(0);
            if (index >= 0) {
                set.push_back(points);
                ++markers;
            }
            if (fail >= 0xe0 && fail < 0xf0) FailAllocationsForTests(1, static_cast<int>(fail & 7));
            ms->CurrentMarker = current;
            ms->DisplayImageWithMarkers();
            FailAllocationsForTests(0);
        }
        Check(ms->NoOfMarkers == static_cast<int>(set.size()), "marker count");
        for (int i = 0; i < ms->NoOfMarkers; ++i) {
            const MeasureMarkerType& m = ms->Markers[i];
            Check(m.NoOfPoints == static_cast<int>(set[static_cast<size_t>(i)].size()), "points kept");
            for (int k = 0; k < m.NoOfPoints; ++k)
                Check(m.Points[k].x == set[static_cast<size_t>(i)][static_cast<size_t>(k)].x &&
                          m.Points[k].y == set[static_cast<size_t>(i)][static_cast<size_t>(k)].y,
                      "point values kept");
            Check(m.SpecCount >= 0, "no negative count");
        }
        for (size_t k = 0; k < static_cast<size_t>(nx) * static_cast<size_t>(ny); ++k) {
            const int id = ms->IDMask[k] & 0x7fff;
            Check(id <= ms->NoOfMarkers, "the identity mask names markers");
        }
        for (int c = 0; c < 3; ++c) Check(ms->Number[c] >= 0, "category counts");
        const std::string out = fuzzsupport::WorkDirectory() + "/measure.txt";
        const int written = ms->ExportToTXT(out.c_str());
        Check(written == 0 || written == 1, "export answer");
        const std::string stem = fuzzsupport::WorkDirectory() + "/measure";
        for (int i = 0; i < ms->NoOfMarkers; ++i) {
            const MeasureMarkerType& m = ms->Markers[i];
            if (m.Type == TV_MARKER_LINE) {
                const ImageHeaderType* item = ms->ExtractLine(i);
                Check(!item || (item->nx >= 4 && item->ny == 1), "profile item width");
            }
            if (spectroscopy && m.SpecY) ExportOneSpectrum(*ms, ms->SweepX, m.SpecY, i, stem.c_str(), i & 1, true);
        }
        if (spectroscopy && ms->AveragedY) ExportOneSpectrum(*ms, ms->SweepX, ms->AveragedY, -1, stem.c_str(), 0, true);
        ms->MeasureFinish();
    }
    ResetMeasureState();
    EraseAllItems();
    return 0;
}

extern "C" void TavrinFuzzSeeds(const char* directory)
{
    const std::string dir = directory;
    // nx - 1, ny - 1 (little-endian words), base byte, current marker + 2, then markers: type
    // index, count, points (x, y words), seed (x, y words), failure byte.
    auto word = [](int v) { return std::string{static_cast<char>(v & 0xff), static_cast<char>((v >> 8) & 0xff)}; };
    auto marker = [&](int type, std::initializer_list<int> xy, int sx, int sy, int fail) {
        std::string bytes{static_cast<char>(type), static_cast<char>(xy.size() / 2)};
        for (int v : xy) bytes += word(v);
        return bytes + word(sx) + word(sy) + static_cast<char>(fail);
    };
    auto head = [&](int nx, int ny, int base, int current) {
        return word(nx - 1) + word(ny - 1) + static_cast<char>(base) + static_cast<char>(current + 2);
    };
    fuzzsupport::WriteBytes(dir + "/seed_all_kinds", head(64, 48, 1, -1) + marker(0, {5, 5}, 0, 0, 0) +
                                                         marker(1, {2, 3, 40, 30}, 0, 0, 0) +
                                                         marker(2, {4, 4, 20, 4, 20, 20}, 0, 0, 0) +
                                                         marker(3, {30, 30, 36, 30}, 0, 0, 0) +
                                                         marker(4, {40, 5, 60, 5, 50, 20}, 50, 10, 0));
    fuzzsupport::WriteBytes(dir + "/seed_overlap_fail", head(32, 32, 3, 1) + marker(2, {2, 2, 12, 2, 12, 12}, 0, 0, 0) +
                                                            marker(3, {10, 10, 16, 10}, 0, 0, 0xe1) +
                                                            marker(0, {-5, 40}, 0, 0, 0xf0));
    fuzzsupport::WriteBytes(dir + "/seed_one_pixel", head(1, 1, 0x82, 0) + marker(4, {0, 0}, 0, 0, 0) +
                                                         marker(1, {-32768, -32768, 32767, 32767}, 0, 0, 0));
    // Spectroscopy: a set of 3 linear images of side 7 behind a 20 by 16 image.
    fuzzsupport::WriteBytes(dir + "/seed_spectra", head(20, 16, 0x41, -1) + std::string{3, 7} +
                                                       marker(3, {8, 8, 11, 8}, 0, 0, 0) +
                                                       marker(0, {3, 4}, 0, 0, 0) + marker(1, {1, 1, 18, 14}, 0, 0, 0) +
                                                       marker(2, {1, 1, 9, 1, 9, 9}, 0, 0, 0));
}
