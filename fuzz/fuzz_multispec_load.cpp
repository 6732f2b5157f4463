// Fuzz target: the settings file of the multi-spectra display as arbitrary text, loaded over a
// list of three spectra (one of them two-way) whose file names the text may name; the questions
// of bad lines answered OK or Cancel by the first byte. Whatever loads is plotted, saved and
// exported; every item must name a spectrum of the list, and at the end every block is freed.
#include "fuzz_support.h"
#include "analysis/multispec.h"
#include "display/vfs.h"
#include "platform/platform_table.h"
#include "store/memory.h"

#include <cstring>
#include <vector>

namespace {

int32_t g_answer = TV_IDOK;
int32_t Answer(void*, const char*, const char*, uint32_t) { return g_answer; }

ImageHeaderType* AddSpectrum(const char* file, const std::vector<float>& x, const std::vector<float>& y)
{
    const int n = static_cast<int>(x.size());
    ImageHeaderType* item = AllocateListItem(CurrentItem);
    fuzzsupport::Check(item != nullptr, "spectrum item");
    float* samples = AllocSpecMem(n);
    fuzzsupport::Check(samples != nullptr, "spectrum samples");
    InitImageHeader(item, n, 1);
    item->ImType1 = IMTYPE_SPECTRUM;
    item->AcqMode = 15;
    item->DataSource = 2;
    item->PixHandle = 1;
    item->PixData = reinterpret_cast<uint16_t*>(samples);
    for (int i = 0; i < n; ++i) samples[i] = y[static_cast<size_t>(i)], samples[n + i] = x[static_cast<size_t>(i)];
    std::snprintf(item->FileName, sizeof item->FileName, "%s", file);
    std::snprintf(item->Title, sizeof item->Title, "%s", file);
    CurrentItem = item;
    return item;
}

void AddSpectra()
{
    AddSpectrum("a.spc", {0, 1, 2, 3, 4, 5}, {0, 2, 4, 6, 8, 10});
    AddSpectrum("/data/b.spc", {0, 1, 2, 3, 4, 3, 2, 1, 0}, {0, 1, 2, 3, 4, 5, 6, 7, 8});
    AddSpectrum("C:\\data\\c", {5, 4, 3, 2}, {1, -1, 1, -1});
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzzsupport::StartOnce();
    std::vector<uint8_t> frame(512 * 512), rgb(512 * 512 * 3);
    uint8_t* buffers[2] = {frame.data(), rgb.data()};
    fuzzsupport::Check(OpenFrameStore(buffers, 1, nullptr) == 0, "frame store opens");
    const size_t blocks = LiveBlockCount();
    AddSpectra();
    g_answer = size && (data[0] & 1) ? TV_IDCANCEL : TV_IDOK;
    static TavrinPlatformTable table{};
    table.MessageBox = Answer;
    SetPlatformTable(&table);

    const std::string path = fuzzsupport::WorkDirectory() + "/settings.txt";
    fuzzsupport::WriteBytes(path, std::string(reinterpret_cast<const char*>(data), size));
    CMultiSpecDisp& disp = *MultiSpecDisp();
    disp.Reset();
    disp.LoadMultiSpecData(path.c_str());
    fuzzsupport::Check(disp.ItemCount() <= 4, "at most the items of the list");
    for (int i = 0; i < disp.ItemCount(); ++i)
        fuzzsupport::Check(FindItemById(static_cast<uint32_t>(disp.Items()[i].ID)) != nullptr, "items name spectra");
    disp.MultiPlot(-1);
    disp.SaveMultiSpecData((fuzzsupport::WorkDirectory() + "/saved.txt").c_str());
    disp.ExportMultiSpecData((fuzzsupport::WorkDirectory() + "/export.txt").c_str());
    disp.Reset();
    SetPlatformTable(nullptr);

    EraseAllItems();
    VFS_close_vfs(1);
    fuzzsupport::Check(LiveBlockCount() <= blocks, "every block is freed");
    ResetProcessState();
    return 0;
}

extern "C" void TavrinFuzzSeeds(const char* directory)
{
    const std::string dir = directory;
    fuzzsupport::StartOnce();
    std::vector<uint8_t> frame(512 * 512), rgb(512 * 512 * 3);
    uint8_t* buffers[2] = {frame.data(), rgb.data()};
    if (OpenFrameStore(buffers, 1, nullptr) != 0) return;
    AddSpectra();
    CMultiSpecDisp& disp = *MultiSpecDisp();
    disp.Reset();
    disp.Initialise(-1, -1, -1);
    for (int i = 0; i < disp.ItemCount(); ++i) disp.Items()[i].Selected = 1, disp.Items()[i].ShiftX = 0.25 * i;
    disp.Param().PrimaryID = disp.Items()[0].ID;
    disp.SaveMultiSpecData((dir + "/seed_saved.txt").c_str());
    disp.Reset();
    EraseAllItems();
    VFS_close_vfs(1);
    ResetProcessState();
    fuzzsupport::WriteBytes(dir + "/seed_mangled.txt", "\x02Tavrin Version 3.10(18)\n\nMatch Y units=x\nAxes y=1 2\n"
                                                       "Primary Index=1\nNumber of Spectra=2\n\n"
                                                       "Filename 1.0=a.spc\nSelected 1.0=1\n"
                                                       "Filename 2.2=/data/b.spc\nColour 2.2=99\n"
                                                       "Shifts and gains 2.2=1 2 3\n");
    fuzzsupport::WriteBytes(dir + "/seed_old.txt", "Tavrin Version 3.00(1)\nFilename 1.1=/data/b.spc\n");
}
