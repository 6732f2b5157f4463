// Fuzz target: the mesh tool and the region commands on an image of 1 to 300 points a side and
// any codes: any corner points, purposes and status bits through MeshFinish, any 65-byte
// report through dl_ApMeshInfo, the lattice average with any cell vectors (repeated or not,
// Escape held from any row), extract and replace, each with an allocation failure placed by
// the input. Every command must leave the source untouched, a failed one the list as it was,
// and no block alive once the results are erased.
#include "fuzz_support.h"
#include "analysis/mesh.h"
#include "image/lattice.h"
#include "image/regions.h"
#include "platform/platform_table.h"

#include <algorithm>
#include <vector>

namespace {

using fuzzsupport::Reader;

unsigned g_escapeAfter = 0;
unsigned g_escapeAsked = 0;
unsigned g_answer = 0;
int16_t KeyState(void*, int32_t key)
{
    if (key != TV_VK_ESCAPE || g_escapeAfter == 0) return 0;
    return ++g_escapeAsked >= g_escapeAfter ? static_cast<int16_t>(0x8000) : 0;
}
int32_t MessageBox(void*, const char*, const char*, uint32_t) { return g_answer; }

// After a command: the source first and untouched; every item behind it is read and erased.
void CheckAndErase(ImageHeaderType* source, const std::vector<uint16_t>& before)
{
    fuzzsupport::Check(FirstItem == source, "the source stays first");
    fuzzsupport::Check(std::equal(before.begin(), before.end(), source->PixData), "the source is untouched");
    while (ImageHeaderType* result = source->Next) {
        volatile uint32_t sum = 0;
        for (size_t i = 0; i < static_cast<size_t>(result->nx) * result->ny; ++i) sum = sum + result->PixData[i];
        EraseItem(result);
    }
    CurrentItem = source;
}

void Fail(unsigned failAt)
{
    if (failAt) FailAllocationsForTests(1, static_cast<int>((failAt - 1) % 6));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzzsupport::StartOnce();
    static TavrinPlatformTable platform = [] {
        TavrinPlatformTable p{};
        p.KeyState = KeyState;
        p.MessageBox = MessageBox;
        return p;
    }();
    Reader in{data, size};
    const int nx = 1 + static_cast<int>(in.Word() % 300), ny = 1 + static_cast<int>(in.Word() % 300);
    const unsigned failAt = in.Byte();
    const unsigned purpose = in.Byte();
    const unsigned status = in.Byte();
    g_escapeAfter = in.Byte();
    g_escapeAsked = 0;
    g_answer = (in.Byte() & 1) ? TV_IDYES : TV_IDNO;
    int16_t p[6];
    for (int16_t& v : p) v = static_cast<int16_t>(static_cast<int>(in.Word() % 1000) - 350);
    MeshInfoType report;
    for (size_t i = 0; i < sizeof report; ++i) reinterpret_cast<uint8_t*>(&report)[i] = static_cast<uint8_t>(in.Byte());

    SetPlatformTable(&platform);
    const size_t blocks = LiveBlockCount();
    ImageHeaderType* source = fuzzsupport::ImageOfTheRestOfTheInput(nx, ny, in);
    const std::vector<uint16_t> before(source->PixData, source->PixData + static_cast<size_t>(nx) * ny);

    // The mesh: its purpose from the input (any value), its corners, finished or cancelled.
    static const int kPurposes[] = {TV_MESH_MAGNIFY, TV_MESH_TRIM, TV_MESH_UNIT_CELL, TV_MESH_LATTICE, 0, 3};
    CMesh* mesh = GetMeshClass(kPurposes[purpose % 6]);
    wint_MeshParamType param{};
    mesh->MeshInitialise(&param);
    const int16_t corners[3][2] = {{p[0], p[1]}, {p[2], p[3]}, {p[4], p[5]}};
    std::memcpy(param.P0, corners[0], 4);
    std::memcpy(param.P1, corners[1], 4);
    std::memcpy(param.P2, corners[2], 4);
    mesh->CopyMeshParamFromDlg(&param);
    ApMeshInfo(&report, 1);
    Fail(failAt);
    mesh->MeshFinish((status & 0x80) != 0);
    FailAllocationsForTests(0);
    fuzzsupport::Check(mesh->Param.Purpose == 0, "the purpose is cleared");
    CheckAndErase(source, before);

    // The two halves of the mesh's region directly, with the points as given.
    Fail(failAt);
    DriftCorrect({p[0], p[1]}, {p[2], p[3]}, {p[4], p[5]});
    FailAllocationsForTests(0);
    CheckAndErase(source, before);
    Fail(failAt);
    MagnifyArea({p[0], p[1]}, {p[4], p[5]});
    FailAllocationsForTests(0);
    CheckAndErase(source, before);

    // The lattice average with the selection's status word.
    for (int i = 0; i < 3; ++i) {
        LatticePointsX[i] = p[2 * i];
        LatticePointsY[i] = p[2 * i + 1];
    }
    Fail(failAt);
    LatticeAverage(static_cast<int>(status & 7));
    FailAllocationsForTests(0);
    CheckAndErase(source, before);

    // Extract, then replace into the source.
    ExtractPointsX[0] = p[0], ExtractPointsY[0] = p[1];
    ExtractPointsX[1] = p[2], ExtractPointsY[1] = p[3];
    Fail(failAt);
    ExtractArea(static_cast<int>(status & 1));
    FailAllocationsForTests(0);
    if (source->Next) {
        CurrentItem = source->Next;
        Fail(failAt >> 4);
        ReplaceArea();
        FailAllocationsForTests(0);
    }
    CheckAndErase(source, before);

    EraseItem(source);
    ResetProcessState();
    fuzzsupport::Check(LiveBlockCount() == blocks, "every block is freed");
    return 0;
}

extern "C" void TavrinFuzzSeeds(const char* directory)
{
    const std::string dir = directory;
    auto seed = [&](const char* name, int nx, int ny, unsigned failAt, unsigned purpose, unsigned status,
                    unsigned escape, unsigned yes, std::vector<int> pts) {
        std::string bytes;
        auto word = [&](unsigned v) {
            bytes += static_cast<char>(v & 0xff);
            bytes += static_cast<char>(v >> 8);
        };
        word(static_cast<unsigned>(nx - 1));
        word(static_cast<unsigned>(ny - 1));
        for (unsigned b : {failAt, purpose, status, escape, yes}) bytes += static_cast<char>(b);
        for (int v : pts) word(static_cast<unsigned>(v + 350));
        MeshInfoType report{};
        report.SpacingX = 12.5;
        report.SpacingY = 3.0;
        report.EqualSpacing = 1;
        report.RightAngle = 1;
        bytes.append(reinterpret_cast<const char*>(&report), sizeof report);
        for (int i = 0; i < 97; ++i) word(static_cast<unsigned>(i * 2654435761u >> 16));
        fuzzsupport::WriteBytes(dir + "/" + name, bytes);
    };
    seed("seed_magnify", 200, 150, 0, 0, 1, 0, 1, {10, 10, 120, 10, 10, 90});
    seed("seed_drift", 256, 256, 0, 0, 1, 0, 1, {20, 20, 148, 20, 52, 148});
    seed("seed_trim", 64, 64, 0, 1, 1, 0, 1, {10, 10, 40, 20, 15, 50});
    seed("seed_lattice", 96, 96, 0, 3, 1, 0, 1, {0, 0, 8, 0, -3, 8});
    seed("seed_lattice_escape", 96, 96, 0, 3, 1, 14, 0, {5, 5, 13, 5, 5, 13});
    seed("seed_fail", 64, 64, 2, 0, 1, 0, 1, {3, 3, 40, 3, 3, 40});
    seed("seed_one", 1, 1, 0, 3, 1, 0, 1, {0, 0, 1, 0, 0, 1});
}
