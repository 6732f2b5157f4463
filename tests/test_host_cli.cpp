// End-to-end tests of the command-line host: each test runs the tavrin binary in the test's own
// home and data directories and checks its exit status, its output and the files it writes.
// Input files are made in this process with the library (the same code a user's host runs).
#include "test_host_binary_support.h"
#include "files/sample_data.h"
#include "display/default_tables.h"
#include "files/tiff_layout.h"
#include "files/tiff_write.h"
#include "mapping/cits.h"
#include "png_decoder.h"
#include "store/data_list.h"
#include "store/image_header.h"
#include "store/memory.h"
#include "store/units.h"
#include "test_tiff_support.h"

#include <cstring>
#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>
#include <string>

namespace {

namespace fs = std::filesystem;
using tifftest::Contains;

struct HostRun {
    int status = -1;
    std::string out;
    std::string err;
};

class HostCliTest : public HostBinaryTest {
protected:
    // Runs the binary with `input` as its standard input; its status and both outputs.
    HostRun Run(const std::string& arguments, const std::string& input = "")
    {
        HostRun run;
        run.status = RunHostWithInput(arguments, input);
        run.out = ReadFileBytes(data + "stdout.txt");
        run.err = ReadFileBytes(data + "stderr.txt");
        return run;
    }

    // The sample topography saved as a 16-bit image file in the data directory.
    std::string SaveTopography(const std::string& name)
    {
        ImageHeaderType* item = MakeSampleTopography(nullptr);
        EXPECT_NE(item, nullptr);
        EXPECT_EQ(saveTiffImage(item, Path(name).c_str(), 0), 0);
        return Path(name);
    }

    // A 256 by 256 image of four upright bands, 64 columns each, of codes 0x1000, 0x5000,
    // 0x9000 and 0xD000; saved in the data directory.
    std::string SaveBands(const std::string& name)
    {
        ImageHeaderType* item = tifftest::MakeImage(256, "Bands");
        EXPECT_NE(item, nullptr);
        for (int y = 0; y < 256; ++y)
            for (int x = 0; x < 256; ++x) item->PixData[y * 256 + x] = static_cast<uint16_t>(0x1000 + 0x4000 * (x / 64));
        EXPECT_EQ(saveTiffImage(item, Path(name).c_str(), 0), 0);
        return Path(name);
    }
};

TEST_F(HostCliTest, VersionPrintsTheStartUpStrings)
{
    HostRun run = Run("--version");
    EXPECT_EQ(run.status, 0);
    EXPECT_TRUE(Contains(run.out, "Tavrin Processing for Linux")) << run.out;
    EXPECT_TRUE(Contains(run.out, "Software Version 310")) << run.out;
}

TEST_F(HostCliTest, HelpNamesEveryCommandAndTheExitStatus)
{
    HostRun run = Run("--help");
    EXPECT_EQ(run.status, 0);
    for (const char* command : {"info FILE", "pixels FILE", "convert IN OUT", "render IN", "run SCRIPT", "demo"})
        EXPECT_TRUE(Contains(run.out, command)) << command;
    EXPECT_TRUE(Contains(run.out, "Exit status: 0 success, 1 a command reported an error, 2 a usage error."));
}

TEST_F(HostCliTest, AnUnknownCommandOrOptionIsAUsageError)
{
    HostRun run = Run("frobnicate");
    EXPECT_EQ(run.status, 2);
    EXPECT_TRUE(Contains(run.err, "tavrin: unknown command 'frobnicate'")) << run.err;
    run = Run("render x.tif -o x.png --mode 7");
    EXPECT_EQ(run.status, 2);
    EXPECT_TRUE(Contains(run.err, "--mode takes a whole number from 0 to 4: '7'")) << run.err;
    run = Run("info");
    EXPECT_EQ(run.status, 2);
    EXPECT_TRUE(Contains(run.err, "tavrin info: missing argument")) << run.err;
}

TEST_F(HostCliTest, InfoDescribesTheItem)
{
    SaveTopography("topo.tif");
    HostRun run = Run("info topo.tif");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_TRUE(Contains(run.out, "class:  I\n")) << run.out;
    EXPECT_TRUE(Contains(run.out, "title:  Topography(FW)\n")) << run.out;
    EXPECT_TRUE(Contains(run.out, "type:   Image(512):STM:Topography(FW)\n")) << run.out;
    EXPECT_TRUE(Contains(run.out, "size:   512 x 512 pixels, 500.0 x 500.0 nm\n")) << run.out;
}

TEST_F(HostCliTest, InfoJsonOfAFileWeWroteHasTheFieldsWeSet)
{
    ImageHeaderType* item = MakeSampleTopography(nullptr);
    ASSERT_NE(item, nullptr);
    item->BiasVoltage = 0.75f;
    item->TunnelCurrent = 1.25f;
    std::strcpy(item->Title, "Gold \xE9tched");   // a Latin-1 byte
    item->ImageSizeX = item->ImageSizeY = 250.0f;
    ASSERT_EQ(saveTiffImage(item, Path("set.tif").c_str(), 0), 0);

    HostRun run = Run("info set.tif --json");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out.rfind("{\"class\": \"I\", \"title\": \"Topography(FW)\", ", 0), 0u) << run.out;
    EXPECT_TRUE(Contains(run.out, "\"unit\": \"nm\"")) << run.out;
    EXPECT_TRUE(Contains(run.out, "\"BiasVoltage\": 0.75,")) << run.out;
    EXPECT_TRUE(Contains(run.out, "\"TunnelCurrent\": 1.25,")) << run.out;
    EXPECT_TRUE(Contains(run.out, "\"ImageSizeX\": 250,")) << run.out;
    EXPECT_TRUE(Contains(run.out, "\"nx\": 512, \"ny\": 512,")) << run.out;
    EXPECT_TRUE(Contains(run.out, "\"Title\": \"Gold \xC3\xA9tched\"")) << run.out;
    // The path as it was passed.
    EXPECT_TRUE(Contains(run.out, "\"FileName\": \"set.tif\"")) << run.out;
    EXPECT_EQ(run.out.back(), '\n');
}

TEST_F(HostCliTest, InfoJsonUnitIsTheUnitOfTheStoredValuesAtExponentZero)
{
    // The lattice spans some 0.04 nm: a display would show it in pm, the stored values are nm.
    ImageHeaderType* item = MakeSampleLattice(nullptr);
    ASSERT_NE(item, nullptr);
    ASSERT_EQ(saveTiffImage(item, Path("lattice.tif").c_str(), 0), 0);
    ASSERT_STREQ(GetImageUnitStr(item, -3, 0), "pm");
    HostRun run = Run("info lattice.tif --json");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_TRUE(Contains(run.out, "\"unit\": \"nm\", \"header\"")) << run.out;
}

TEST_F(HostCliTest, InfoOfAMissingFileReportsTheErrorAndExitsOne)
{
    HostRun run = Run("info missing.tif");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "tavrin: missing.tif: Unable to open file\ntavrin: missing.tif: not opened\n");
    EXPECT_TRUE(run.out.empty()) << run.out;
}

TEST_F(HostCliTest, PixelsWritesTheCodesRowZeroFirst)
{
    ImageHeaderType* item = MakeSampleTopography(nullptr);
    ASSERT_NE(item, nullptr);
    ASSERT_EQ(saveTiffImage(item, Path("topo.tif").c_str(), 0), 0);
    HostRun run = Run("pixels topo.tif -o codes.bin");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out, "codes.bin: 524288 bytes\n");
    std::string bytes = ReadFileBytes(Path("codes.bin"));
    ASSERT_EQ(bytes.size(), 512u * 512u * 2u);
    for (size_t at : {size_t{0}, size_t{1}, size_t{512}, size_t{777 * 3}, size_t{512 * 512 - 1}})
        EXPECT_EQ(tifftest::U16(bytes, at * 2), item->PixData[at]) << at;
}

TEST_F(HostCliTest, PixelsOfASpectrumAreTheYValuesThenTheXValues)
{
    ImageHeaderType* curve = MakeSampleIVCurve(nullptr);
    ASSERT_NE(curve, nullptr);
    CurrentItem = curve;
    ASSERT_EQ(dl_SaveData(TV_SAVE_SPECTRUM, Path("iv.spc").c_str(), 0, 0), 0);
    HostRun run = Run("pixels iv.spc -o samples.bin");
    EXPECT_EQ(run.status, 0) << run.err;
    std::string bytes = ReadFileBytes(Path("samples.bin"));
    ASSERT_EQ(bytes.size(), 256u * 8u);
    const float* y = SpecY(curve);
    const float* x = SpecX(curve);
    for (int i : {0, 100, 255}) {
        float fy, fx;
        std::memcpy(&fy, bytes.data() + i * 4, 4);
        std::memcpy(&fx, bytes.data() + 1024 + i * 4, 4);
        EXPECT_EQ(fy, y[i]) << i;
        EXPECT_EQ(fx, x[i]) << i;
    }
}

TEST_F(HostCliTest, ConvertRoundTripsByteForByte)
{
    // The file keeps the name it is loaded under, so that the record of the copy holds the
    // same FileName as the original's.
    ImageHeaderType* item = MakeSampleTopography(nullptr);
    ASSERT_NE(item, nullptr);
    std::strcpy(item->FileName, "t.tif");
    ASSERT_EQ(saveTiffImage(item, Path("t.tif").c_str(), 0), 0);
    fs::create_directories(Path("out"));
    HostRun run = Run("convert t.tif out/t.tif");
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out, "out/t.tif\n");
    const std::string a = ReadFileBytes(Path("t.tif")), b = ReadFileBytes(Path("out/t.tif"));
    ASSERT_EQ(a.size(), b.size());
    ASSERT_EQ(a.size(), TiffLayout::kHeaderBytes + 512u * 512u * 2u);
    // Only the save stamp (SavedDate and SavedTime of the record) may tell the two apart.
    const size_t dateAt = TiffLayout::kRecordOffset + offsetof(ImageHeaderType, SavedDate);
    const size_t timeAt = TiffLayout::kRecordOffset + offsetof(ImageHeaderType, SavedTime);
    for (size_t i = 0; i < a.size(); ++i) {
        const bool stamp = (i >= dateAt && i < dateAt + sizeof(DosDateType)) ||
                           (i >= timeAt && i < timeAt + sizeof(DosTimeType));
        if (!stamp) {
            ASSERT_EQ(a[i], b[i]) << "byte " << i;
        }
    }
}

TEST_F(HostCliTest, ConvertToAnEightBitFileKeepsTheHighBytes)
{
    SaveTopography("t.tif");
    HostRun run = Run("convert t.tif t8.tif --8bit");
    ASSERT_EQ(run.status, 0) << run.err;
    host.Start();
    dl_OpenSTMData(0, Path("t.tif").c_str());
    ImageHeaderType* sixteen = CurrentItem;
    dl_OpenSTMData(0, Path("t8.tif").c_str());
    ImageHeaderType* eight = CurrentItem;
    ASSERT_NE(sixteen, eight);
    ASSERT_EQ(eight->nx, 512);
    for (size_t at : {size_t{0}, size_t{1000}, size_t{512 * 512 - 1}})
        EXPECT_EQ(eight->PixData[at] >> 8, sixteen->PixData[at] >> 8) << at;
}

TEST_F(HostCliTest, ConvertToAnUnknownExtensionIsAUsageError)
{
    SaveTopography("a.tif");
    HostRun run = Run("convert a.tif a.xyz");
    EXPECT_EQ(run.status, 2);
    EXPECT_TRUE(Contains(run.err, "names no file type")) << run.err;
    EXPECT_FALSE(fs::exists(Path("a.xyz")));
}

TEST_F(HostCliTest, RenderWritesWhatTheWindowShows)
{
    SaveBands("bands.tif");
    // Grey table 0, the image at its own size: band level L shows as ramp entry 35 + L / 2,
    // whose grey is 2 * (L / 2).
    HostRun run = Run("render bands.tif -o bands.png --size 0 --table 0");
    ASSERT_EQ(run.status, 0) << run.err;
    png_check::DecodedPng png = png_check::DecodePngFile(fs::path(data), Path("bands.png"), 3);
    ASSERT_EQ(png.mode, "RGB");
    ASSERT_EQ(png.width, 512);
    ASSERT_EQ(png.height, 512);
    ASSERT_EQ(png.pixels.size(), 512u * 512u * 3u);
    auto pixel = [&](int x, int y) {
        const uint8_t* p = &png.pixels[(static_cast<size_t>(y) * 512 + x) * 3];
        return std::array<int, 3>{p[0], p[1], p[2]};
    };
    const int levels[4] = {0x10, 0x50, 0x90, 0xD0};
    for (int band = 0; band < 4; ++band) {
        const int grey = 2 * (levels[band] / 2);
        EXPECT_EQ(pixel(32 + 64 * band, 128), (std::array<int, 3>{grey, grey, grey})) << band;
    }
    // Outside the image the frame is clear: palette entry 0.
    uint8_t r, g, b;
    FixedColour(0, &r, &g, &b);
    EXPECT_EQ(pixel(400, 300), (std::array<int, 3>{r, g, b}));
}

TEST_F(HostCliTest, RenderOfASpectrumIsRefused)
{
    ImageHeaderType* curve = MakeSampleIVCurve(nullptr);
    ASSERT_NE(curve, nullptr);
    CurrentItem = curve;
    ASSERT_EQ(dl_SaveData(TV_SAVE_SPECTRUM, Path("iv.spc").c_str(), 0, 0), 0);
    HostRun run = Run("render iv.spc -o iv.png");
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(Contains(run.err, "holds no image")) << run.err;
    EXPECT_FALSE(fs::exists(Path("iv.png")));
}

TEST_F(HostCliTest, RunExecutesAScriptWithAnswers)
{
    SaveTopography("t.tif");
    WriteFileBytes(Path("script.txt"),
                   "# open, look, save under a new name, close everything\n"
                   "OpenSTMData 0 \"t.tif\"\n"
                   "info\n"
                   "GetDisplayParam\n"
                   "SetDisplayParam DispMode=2 ContourLevels=8\n"
                   "GetDisplayParam\n"
                   "SaveData 1 copy.tif 0 0\n"
                   "answer yes\n"
                   "EraseAllData\n"
                   "GetCurrentImagePtr\n");
    HostRun run = Run("run script.txt");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_TRUE(Contains(run.out, "OpenSTMData = 0\n")) << run.out;
    EXPECT_TRUE(Contains(run.out, "title:  Topography(FW)\n")) << run.out;
    EXPECT_TRUE(Contains(run.out, "GetDisplayParam ImageDisplaySize=512 wint_TextOverlay=0 DispMode=2 ContourLevels=8"))
        << run.out;
    EXPECT_TRUE(Contains(run.out, "SaveData = 0\n")) << run.out;
    EXPECT_TRUE(Contains(run.out, "GetCurrentImagePtr = null\n")) << run.out;
    EXPECT_TRUE(fs::exists(Path("copy.tif")));
}

TEST_F(HostCliTest, RunReadsStandardInputAndDeclinedQuestionsKeepTheData)
{
    SaveTopography("t.tif");
    HostRun run = Run("run -", "OpenSTMData 0 t.tif\nanswer no\nEraseAllData\nGetCurrentImagePtr\n");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_TRUE(Contains(run.out, "GetCurrentImagePtr = item ")) << run.out;
}

TEST_F(HostCliTest, AnUnansweredQuestionTakesItsDefaultAndIsPrinted)
{
    SaveTopography("t.tif");
    // "Close all data ?" defaults to No: the data stay, and the question goes to stderr.
    HostRun run = Run("run -", "OpenSTMData 0 t.tif\nEraseAllData\nGetCurrentImagePtr\n");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_TRUE(Contains(run.err, "Tavrin Processing: Close all data ?   [No]\n")) << run.err;
    EXPECT_TRUE(Contains(run.out, "GetCurrentImagePtr = item ")) << run.out;
    // --yes answers it, and nothing is printed.
    run = Run("--yes run -", "OpenSTMData 0 t.tif\nEraseAllData\nGetCurrentImagePtr\n");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_FALSE(Contains(run.err, "Close all data")) << run.err;
    EXPECT_TRUE(Contains(run.out, "GetCurrentImagePtr = null\n")) << run.out;
}

TEST_F(HostCliTest, VerbosePrintsTheLogLines)
{
    HostRun run = Run("-v run -", "Log2Disk \"a line of the log\"\n");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_TRUE(Contains(run.out, "SPM command log on ")) << run.out;
    EXPECT_TRUE(Contains(run.out, "a line of the log")) << run.out;
    run = Run("run -", "Log2Disk \"a line of the log\"\n");
    EXPECT_EQ(run.out, "");
}

TEST_F(HostCliTest, RunStopsAtABadLineAndNamesIt)
{
    WriteFileBytes(Path("bad.txt"), "GetRevisionNumber\n\nNoSuchEntry 1\nGetRevisionNumber\n");
    HostRun run = Run("run bad.txt");
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.out, "GetRevisionNumber = 700\n");
    EXPECT_TRUE(Contains(run.err, "tavrin: bad.txt:3: unknown command 'NoSuchEntry'\n")) << run.err;

    WriteFileBytes(Path("bad2.txt"), "SetDataItem one\n");
    run = Run("run bad2.txt");
    EXPECT_EQ(run.status, 2);
    EXPECT_TRUE(Contains(run.err, "tavrin: bad2.txt:1: not a number: 'one'\n")) << run.err;

    WriteFileBytes(Path("bad3.txt"), "GetRevisionNumber 5\n");
    run = Run("run bad3.txt");
    EXPECT_EQ(run.status, 2);
    EXPECT_TRUE(Contains(run.err, "tavrin: bad3.txt:1: too many arguments: '5'\n")) << run.err;

    WriteFileBytes(Path("bad4.txt"), "SetDisplayParam Colour=3\n");
    run = Run("run bad4.txt");
    EXPECT_EQ(run.status, 2);
    EXPECT_TRUE(Contains(run.err, "tavrin: bad4.txt:1: no field 'Colour' in this record\n")) << run.err;
}

TEST_F(HostCliTest, EveryEntryPointOfThePublicHeadersIsReachableFromAScript)
{
    HostRun run = Run("run -", "entries\n");
    ASSERT_EQ(run.status, 0) << run.err;
    std::set<std::string> names;
    std::istringstream lines(run.out);
    for (std::string line; std::getline(lines, line);) names.insert(line);
    // The host's start and end are not script lines.
    const std::set<std::string> hostLife = {"Initialise", "Finish", "SetPlatformTable"};
    const std::regex declaration(R"(TAVRIN_API[^;(]*\bdl_([A-Za-z0-9_]+)\s*\()");
    int declared = 0;
    for (const auto& header : fs::directory_iterator(fs::path(TAVRIN_SOURCE_DIR) / "include" / "tavrin")) {
        const std::string text = ReadFileBytes(header.path().string());
        for (std::sregex_iterator m(text.begin(), text.end(), declaration), end; m != end; ++m) {
            const std::string name = (*m)[1];
            ++declared;
            if (hostLife.count(name)) continue;
            EXPECT_TRUE(names.count(name)) << "dl_" << name << " in " << header.path();
        }
    }
    EXPECT_GT(declared, 80);
}

TEST_F(HostCliTest, ARunWhoseEntryPointReportsAnErrorExitsOne)
{
    HostRun run = Run("run -", "OpenSTMData 0 missing.tif\n");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "tavrin: Unable to open file\n");
}

TEST_F(HostCliTest, AnErrorTextPaddedToItsColumnIsPrintedWithoutTheBlanks)
{
    ImageHeaderType* curve = MakeSampleIVCurve(nullptr);
    ASSERT_NE(curve, nullptr);
    CurrentItem = curve;
    ASSERT_EQ(dl_SaveData(TV_SAVE_SPECTRUM, Path("iv.spc").c_str(), 0, 0), 0);
    // A spectrum has no TIFF form: the save gives its program error, padded to 70 columns.
    HostRun run = Run("convert iv.spc iv.tif");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "tavrin: iv.tif: Program error - SaveSTMData Spec 1\n");
}

TEST_F(HostCliTest, DemoFinishesAndItsFilesLoadAgain)
{
    HostRun run = Run("demo --out tour");
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_TRUE(Contains(run.out, "7 of 7 items loaded again with the data they were saved with.")) << run.out;
    for (const char* picture : {"topography-plain", "topography-shaded", "topography-contour", "topography-full",
                                "lattice-plain", "lattice-shaded"}) {
        const std::string path = Path(std::string("tour/") + picture + ".png");
        EXPECT_TRUE(Contains(run.out, "picture: tour/" + std::string(picture) + ".png\n")) << picture;
        png_check::DecodedPng png = png_check::DecodePngFile(fs::path(data), path, 3);
        EXPECT_EQ(png.mode, "RGB") << picture;
        EXPECT_EQ(png.width, 512) << picture;
        EXPECT_EQ(png.height, 512) << picture;
    }
    host.Start();
    const struct {
        const char* file;
        int nx;
    } files[] = {{"tour/topography.tif", SampleTopography::kSize},
                 {"tour/lattice.tif", SampleLattice::kSize},
                 {"tour/iv-curve.spc", SampleIVCurve::kPoints},
                 {"tour/force-curve.spc", SampleForceCurve::kPoints}};
    for (const auto& f : files) {
        ImageHeaderType* before = CurrentItem;
        dl_OpenSTMData(0, Path(f.file).c_str());
        ASSERT_NE(CurrentItem, before) << f.file;
        EXPECT_EQ(CurrentItem->nx, f.nx) << f.file;
    }
}

} // namespace

TEST_F(HostCliTest, GeomWritesTheResultAsAnImageFileWithItsHistory)
{
    SaveTopography("t.tif");
    HostRun run = Run("geom t.tif m.tif --op mirror-x");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out, "m.tif\n");
    run = Run("geom m.tif mm.tif --op mirror-x");
    EXPECT_EQ(run.status, 0) << run.err;
    // Mirrored twice: the codes of the source again, and two steps of history.
    EXPECT_EQ(Run("pixels t.tif -o a.bin").status, 0);
    EXPECT_EQ(Run("pixels mm.tif -o b.bin").status, 0);
    EXPECT_EQ(ReadFileBytes(Path("a.bin")), ReadFileBytes(Path("b.bin")));
    run = Run("info mm.tif");
    EXPECT_TRUE(Contains(run.out, "Processing :\n        Reflect in X axis\n        Reflect in X axis\n")) << run.out;
    run = Run("info mm.tif --json");
    EXPECT_TRUE(Contains(run.out, "\"history\": [\"Reflect in X axis\", \"Reflect in X axis\"]")) << run.out;
    run = Run("info t.tif --json");
    EXPECT_TRUE(Contains(run.out, "\"history\": []")) << run.out;
}

TEST_F(HostCliTest, GeomRotatesByThreePointsThroughThePickModeAndWritesAPicture)
{
    SaveTopography("t.tif");
    HostRun run = Run("-v geom t.tif r.tif --rotate 256,256,400,256,400,340");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_TRUE(Contains(run.out, "Rotate (256 256) (400 256) (400 340)")) << run.out;
    EXPECT_TRUE(Contains(Run("info r.tif").out, "        Rotate theta\n"));
    run = Run("geom t.tif r.png --rotate 256,256,400,256,400,340");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(ReadFileBytes(Path("r.png")).substr(1, 3), "PNG");
}

TEST_F(HostCliTest, GeomRefusalsAreErrorsAndWrongOptionsUsageErrors)
{
    SaveTopography("t.tif");
    HostRun run = Run("geom t.tif p.tif --op pad256");
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(Contains(run.err, "Image too large for this function")) << run.err;
    EXPECT_FALSE(fs::exists(Path("p.tif")));
    EXPECT_EQ(Run("geom t.tif p.tif --op spin").status, 2);
    EXPECT_EQ(Run("geom t.tif p.tif --op rot90 --translate 1,1,2,2").status, 2);
    EXPECT_EQ(Run("geom t.tif p.tif --rotate 1,2,3").status, 2);
    EXPECT_EQ(Run("geom t.tif p.bin --op rot90").status, 2);
}

TEST_F(HostCliTest, AScriptFinishesATranslationWithPickedPoints)
{
    SaveTopography("t.tif");
    WriteFileBytes(Path("script.txt"),
                   "OpenSTMData 0 \"t.tif\"\n"
                   "pb_DisplayImage\n"
                   "ImageTranslate\n"
                   "pick 10,10\n"
                   "pick 40,30\n"
                   "info\n"
                   "PreviousData1\n"
                   "info\n");
    HostRun run = Run("run script.txt");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_TRUE(Contains(run.out, "pick: going on\npick: done\n")) << run.out;
    EXPECT_TRUE(Contains(run.out, "Processing :\n        Translate\n")) << run.out;
    // One step back: the source, with no history.
    EXPECT_EQ(run.out.find("Processing :"), run.out.rfind("Processing :")) << run.out;
    EXPECT_TRUE(Contains(ReadLog(), "Translate image 'Au(111) terraces with clusters' by (30,20)"));
}

TEST_F(HostCliTest, AScriptPassesTheAnsweredWordOnAsRetAndRendersTheSecondStore)
{
    SaveTopography("t.tif");
    WriteFileBytes(Path("level.txt"),
                   "OpenSTMData 0 \"t.tif\"\n"
                   "pb_DisplayImage\n"
                   "GetSubtBckgrndParam 0\n"
                   "SetSubtBckgrndParam Method=8 DegreeX=1 DegreeY=1\n"
                   "SubtBackUpdateImageDisplay $ret\n"
                   "render 2 preview.png\n"
                   "render 1 image.png\n"
                   "GetSubtBckgrndParam 3\n"
                   "info\n");
    HostRun run = Run("run level.txt");
    ASSERT_EQ(run.status, 0) << run.err << run.out;
    EXPECT_TRUE(Contains(run.out, "render: preview.png\nrender: image.png\n")) << run.out;
    EXPECT_TRUE(fs::exists(Path("preview.png")));
    EXPECT_TRUE(fs::exists(Path("image.png")));
    EXPECT_NE(ReadFileBytes(Path("preview.png")), ReadFileBytes(Path("image.png")));
    // A $ret before any entry point answered, and a store that is not open, stop the script.
    WriteFileBytes(Path("early.txt"), "SubtBackUpdateImageDisplay $ret\n");
    HostRun early = Run("run early.txt");
    EXPECT_EQ(early.status, 2);
    EXPECT_TRUE(Contains(early.err, "$ret: no entry point has answered a value yet")) << early.err;
    WriteFileBytes(Path("closed.txt"), "render 7 x.png\n");
    HostRun closed = Run("run closed.txt");
    EXPECT_EQ(closed.status, 2);
    EXPECT_TRUE(Contains(closed.err, "frame store 7 is not open")) << closed.err;
}

TEST_F(HostCliTest, AScriptTurnsTheLatticeByThreePicksWithTheBandShownBeforeTheLastClick)
{
    ImageHeaderType* item = MakeSampleLattice(nullptr);
    ASSERT_NE(item, nullptr);
    ASSERT_EQ(saveTiffImage(item, Path("lattice.tif").c_str(), 0), 0);
    WriteFileBytes(Path("turn.txt"),
                   "OpenSTMData 0 \"lattice.tif\"\n"
                   "GetDisplayParam\n"
                   "SetDisplayParam ImageDisplaySize=512\n"
                   "pb_DisplayImage\n"
                   "RotateImageA\n"
                   "pick 256 256 move\n"
                   "pick 256 256 left\n"
                   "pick 256 256 move\n"
                   "pick 400 256 left\n"
                   "pick 400 256 move\n"
                   "pick 400 330 move\n"
                   "render band.png\n"
                   "pick 400 330 left\n"
                   "render turned.png\n"
                   "info\n");
    HostRun run = Run("run turn.txt");
    ASSERT_EQ(run.status, 0) << run.err << run.out;
    EXPECT_TRUE(Contains(run.out, "pick: done\n")) << run.out;
    EXPECT_TRUE(Contains(run.out, "        Rotate theta\n")) << run.out;
    EXPECT_TRUE(Contains(ReadLog(), "Rotate (128 128) (200 128) (200 165)")) << ReadLog();
    // The band (colour 22) runs along the first arm of the triangle, from (256, 256) to
    // (400, 256), before the last click; the turned picture has none of it.
    uint8_t r, g, b;
    FixedColour(22, &r, &g, &b);
    const std::array<int, 3> band{r, g, b};
    png_check::DecodedPng before = png_check::DecodePngFile(fs::path(data), Path("band.png"), 3);
    png_check::DecodedPng after = png_check::DecodePngFile(fs::path(data), Path("turned.png"), 3);
    ASSERT_EQ(before.pixels.size(), 512u * 512u * 3u);
    ASSERT_EQ(after.pixels.size(), 512u * 512u * 3u);
    auto pixel = [](const png_check::DecodedPng& png, int x, int y) {
        const uint8_t* p = &png.pixels[(static_cast<size_t>(y) * 512 + x) * 3];
        return std::array<int, 3>{p[0], p[1], p[2]};
    };
    for (int x = 260; x <= 396; x += 17) {
        EXPECT_EQ(pixel(before, x, 256), band) << x;
        EXPECT_NE(pixel(after, x, 256), band) << x;
    }
}

// An open during which the library reports something but which brings its item is an open.

TEST_F(HostCliTest, AnUnknownRevisionIsAWarningAndTheCommandsGoOn)
{
    ImageHeaderType* item = MakeSampleLattice(nullptr);
    ASSERT_NE(item, nullptr);
    item->RevNo = 650;
    ASSERT_EQ(saveTiffImage(item, Path("rev650.tif").c_str(), 0), 0);
    const std::string warning = "tavrin: rev650.tif: Program error - UpdateOldImageHeader 650\n";
    HostRun run = Run("info rev650.tif --json");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_TRUE(Contains(run.err, warning)) << run.err;
    EXPECT_TRUE(Contains(run.out, "\"RevNo\": 650")) << run.out;
    run = Run("pixels rev650.tif -o codes.bin");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(ReadFileBytes(Path("codes.bin")).size(), 256u * 256u * 2u);
    run = Run("convert rev650.tif copy.tif");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_TRUE(fs::exists(Path("copy.tif")));
    run = Run("--strict info rev650.tif");
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(Contains(run.err, warning)) << run.err;
    EXPECT_FALSE(run.out.empty());
}

TEST_F(HostCliTest, ADataSourceOutsideTheTablesIsAWarningAndTheCommandsGoOn)
{
    ImageHeaderType* item = MakeSampleLattice(nullptr);
    ASSERT_NE(item, nullptr);
    item->DataSource = 0;
    ASSERT_EQ(saveTiffImage(item, Path("source0.tif").c_str(), 0), 0);
    HostRun run = Run("info source0.tif --json");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_TRUE(Contains(run.err, "tavrin: source0.tif: Program error - GetImageUnitStr")) << run.err;
    run = Run("pixels source0.tif -o codes.bin");
    EXPECT_EQ(run.status, 0) << run.err;
    run = Run("convert source0.tif copy.tif");
    EXPECT_EQ(run.status, 0) << run.err;
    run = Run("render source0.tif -o s.png");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(Run("--strict info source0.tif").status, 1);
}

// ---- SPS Mapping sets ----

namespace {

// The f32 or u16 values behind the header of a .npy file, with the shape it declares.
template <typename T>
std::vector<T> NpyValues(const std::string& bytes, std::string* dict)
{
    if (bytes.size() < 10 || bytes.compare(0, 6, "\x93NUMPY") != 0) return {};
    const size_t length = static_cast<uint8_t>(bytes[8]) | static_cast<uint8_t>(bytes[9]) << 8;
    *dict = bytes.substr(10, length);
    std::vector<T> values((bytes.size() - 10 - length) / sizeof(T));
    std::memcpy(values.data(), bytes.data() + 10 + length, values.size() * sizeof(T));
    return values;
}

} // namespace

TEST_F(HostCliTest, MapInfoNamesTheSetOfEachSample)
{
    struct Sample {
        ImageHeaderType* (*make)(ImageHeaderType*);
        const char* name;
        const char* lines;
    };
    const Sample samples[] = {
        {MakeSampleIVMapping, "iv.tif",
         "mapping: I-V, SPS Mapping of 128 images of 64 x 64 pixels\nsweep:  -1 to 1 V\n"},
        {MakeSampleForceMappingWithStep, "fc.tif",
         "mapping: Force curve, SPS Mapping of 128 images of 64 x 64 pixels\nsweep:  0 to 100 nm\n"},
        {MakeSampleFVMapping, "fv.tif", "mapping: F-V, SPS Mapping of 81 images of 32 x 32 pixels\nsweep:  -2 to 2 V\n"},
    };
    for (const Sample& s : samples) {
        ImageHeaderType* item = s.make(nullptr);
        ASSERT_NE(item, nullptr);
        ASSERT_EQ(saveTiffImage(item, Path(s.name).c_str(), 0), 0);
        HostRun run = Run(std::string("map info ") + s.name);
        ASSERT_EQ(run.status, 0) << run.err;
        EXPECT_TRUE(Contains(run.out, s.lines)) << run.out;
        HostRun info = Run(std::string("info ") + s.name);
        ASSERT_EQ(info.status, 0) << info.err;
        EXPECT_TRUE(Contains(info.out, s.lines)) << info.out;
    }
    HostRun fc = Run("map info fc.tif");
    EXPECT_TRUE(Contains(fc.out, "hits:   64 x 64 threshold hit records\n")) << fc.out;
    HostRun iv = Run("map info iv.tif");
    EXPECT_TRUE(Contains(iv.out, "hits:   none\n")) << iv.out;
}

TEST_F(HostCliTest, MapInfoJsonHasTheHeaderTheDisplayBlockAndEveryImage)
{
    ImageHeaderType* item = MakeSampleFVMapping(nullptr);
    ASSERT_EQ(saveTiffImage(item, Path("fv.tif").c_str(), 0), 0);
    HostRun run = Run("map info fv.tif --json");
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_TRUE(Contains(run.out, "\"kind\": \"F-V\", \"MapType\": 60, \"sweep_unit\": \"V\", \"rev\": 700, \"ni\": 81, "
                                  "\"cx\": 32, \"cy\": 32, \"ci\": 0")) << run.out;
    EXPECT_TRUE(Contains(run.out, "\"disp\": {\"flags\": 7, \"n\": 2, \"mode\": 0, \"v_low\": 0, \"v_high\": 0, \"select\": 2"));
    EXPECT_TRUE(Contains(run.out, "{\"voltage\": -2, \"z_low\": ")) << run.out;
    EXPECT_TRUE(Contains(run.out, "\"data_type\": 16, \"title\": \"F at 2.000\"}]}")) << run.out;
    HostRun info = Run("info fv.tif --json");
    ASSERT_EQ(info.status, 0);
    EXPECT_TRUE(Contains(info.out, "\"mapping\": {\"kind\": \"F-V\"")) << info.out;
    HostRun plain = Run("map info " + SaveTopography("topo.tif"));
    EXPECT_EQ(plain.status, 1);
    EXPECT_TRUE(Contains(plain.err, "holds no SPS Mapping set")) << plain.err;
}

TEST_F(HostCliTest, MapCubeWritesTheSetAsANumpyArrayOfValuesOrCodes)
{
    ImageHeaderType* item = MakeSampleFVMapping(nullptr);
    ASSERT_EQ(saveTiffImage(item, Path("fv.tif").c_str(), 0), 0);
    HostRun run = Run("map cube fv.tif -o fv.npy");
    ASSERT_EQ(run.status, 0) << run.err;
    std::string dict;
    const std::vector<float> values = NpyValues<float>(ReadFileBytes(Path("fv.npy")), &dict);
    EXPECT_TRUE(Contains(dict, "{'descr': '<f4', 'fortran_order': False, 'shape': (81, 32, 32), }")) << dict;
    EXPECT_EQ((10 + dict.size()) % 64, 0u);
    ASSERT_EQ(values.size(), 81u * 32 * 32);
    const CITSHeaderType* set = item->CITSHeaderPtr;
    const float step = (CITSEntry(set, 0)->z_high - CITSEntry(set, 0)->z_low) / 65535.0f;
    for (int k : {0, 40, 80})
        for (int y : {0, 31})
            for (int x : {0, 17, 31})
                EXPECT_NEAR(values[(static_cast<size_t>(k) * 32 + y) * 32 + x], SampleFVMappingValue(x, y, k), step)
                    << k << " " << y << " " << x;
    HostRun codes = Run("map cube fv.tif -o fvc.npy --codes");
    ASSERT_EQ(codes.status, 0) << codes.err;
    const std::vector<uint16_t> raw = NpyValues<uint16_t>(ReadFileBytes(Path("fvc.npy")), &dict);
    EXPECT_TRUE(Contains(dict, "'descr': '<u2'"));
    ASSERT_EQ(raw.size(), 81u * 32 * 32);
    EXPECT_EQ(raw[5 * 1024 + 3 * 32 + 7], CITSPixels(CITSEntry(set, 5))[3 * 32 + 7]);
    EXPECT_EQ(Run("map cube fv.tif").status, 2);
    EXPECT_EQ(Run("map nothing fv.tif").status, 2);
}

TEST_F(HostCliTest, ScriptsReachTheMappingEntryPoints)
{
    ImageHeaderType* item = MakeSampleForceMapping(nullptr, false);
    ASSERT_EQ(saveTiffImage(item, Path("fc.tif").c_str(), 0), 0);
    HostRun run = Run("run -", "OpenSTMData 0 fc.tif\nIsFCMappingData\nIsFVMappingData\nGetCITSCurrentImageVoltages\n");
    ASSERT_EQ(run.status, 0) << run.err;
    std::string expected = "IsFCMappingData = 1\nIsFVMappingData = 0\nGetCITSCurrentImageVoltages = 128\n";
    for (int k = 0; k < 128; ++k) {
        char line[64];
        std::snprintf(line, sizeof line, "%.9g\n", static_cast<double>(static_cast<float>(SampleForceMappingZ(k))));
        expected += line;
    }
    EXPECT_TRUE(Contains(run.out, expected)) << run.out;
}
