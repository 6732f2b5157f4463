// Files we write, opened by foreign TIFF readers: libtiff's tiffinfo and tiffdump, and
// Python's imaging library. Each must see nx by ny and exactly our pixel values.
#include "test_tiff_support.h"
#include "files/tiff_write.h"

#include <cctype>
#include <cstdio>
#include <unistd.h>
#include <sstream>

using namespace tifftest;

namespace {

struct RunResult {
    int status = -1;
    std::string output;
};

RunResult RunCommand(const std::string& command)
{
    RunResult result;
    FILE* pipe = popen((command + " 2>&1").c_str(), "r");
    if (!pipe) return result;
    char buffer[4096];
    size_t n;
    while ((n = fread(buffer, 1, sizeof buffer, pipe)) > 0) result.output.append(buffer, n);
    result.status = pclose(pipe);
    return result;
}

bool Executable(const char* path)
{
    return access(path, X_OK) == 0;
}

// Prints width, height, mode and then every pixel value, one a line, row 0 first.
const char* const kPilScript =
    "import sys\n"
    "from PIL import Image\n"
    "im = Image.open(sys.argv[1])\n"
    "im.load()\n"
    "print(im.size[0], im.size[1], im.mode)\n"
    "w, h = im.size\n"
    "for y in range(h):\n"
    "    print(' '.join(str(im.getpixel((x, y))) for x in range(w)))\n";

// The bytes of strip 0 as "tiffinfo -d" prints them, in hex pairs.
std::string StripBytes(const std::string& output)
{
    std::string bytes;
    const size_t at = output.find("Strip 0:");
    if (at == std::string::npos) return bytes;
    std::istringstream in(output.substr(at + 8));
    std::string pair;
    while (in >> pair) {
        if (pair.size() != 2 || !std::isxdigit(static_cast<unsigned char>(pair[0])) ||
            !std::isxdigit(static_cast<unsigned char>(pair[1])))
            break;
        bytes += static_cast<char>(std::stoi(pair, nullptr, 16));
    }
    return bytes;
}

// libtiff reads the 16-bit directory with warnings about its deliberate slot 16 (tag 0, not in
// ascending order) and no error; the warnings make tiffinfo end with status 1.
void ExpectOnlyTheSlot16Warnings(const RunResult& r)
{
    EXPECT_FALSE(Contains(r.output, "Error")) << r.output;
    if (r.status != 0) {
        EXPECT_TRUE(Contains(r.output, "Unknown field with tag 0 (0x0) encountered")) << r.output;
    }
}

} // namespace

class TiffForeignTest : public LibraryTest {
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        ASSERT_EQ(host.Start(), 0);
        ASSERT_TRUE(Executable("/usr/bin/tiffinfo")) << "libtiff-tools is needed (make test installs it)";
        ASSERT_TRUE(Executable("/usr/bin/tiffdump")) << "libtiff-tools is needed (make test installs it)";
        ASSERT_TRUE(Executable("/usr/bin/python3")) << "python3 with python3-pil is needed";
        image = MakeImage(64, "Foreign reader");
        ASSERT_NE(image, nullptr);
        WriteFileBytes(Path("read.py"), kPilScript);
    }

    // The pixel values PIL gives, in rows.
    std::vector<long> PilPixels(const std::string& file, std::string* head)
    {
        RunResult r = RunCommand("/usr/bin/python3 " + Path("read.py") + " " + file);
        EXPECT_EQ(r.status, 0) << r.output;
        std::istringstream in(r.output);
        std::getline(in, *head);
        std::vector<long> values;
        long v;
        while (in >> v) values.push_back(v);
        return values;
    }

    ImageHeaderType* image = nullptr;
};

TEST_F(TiffForeignTest, TiffinfoReadsTheSixteenBitFile)
{
    ASSERT_EQ(saveTiffImage(image, Path("g16.tif").c_str(), 0), 0);
    RunResult r = RunCommand("/usr/bin/tiffinfo -d " + Path("g16.tif"));
    ExpectOnlyTheSlot16Warnings(r);
    EXPECT_TRUE(Contains(r.output, "Image Width: 64 Image Length: 64")) << r.output;
    EXPECT_TRUE(Contains(r.output, "Bits/Sample: 16")) << r.output;
    EXPECT_TRUE(Contains(r.output, "Photometric Interpretation: min-is-black")) << r.output;
    EXPECT_TRUE(Contains(r.output, "ImageDescription: Foreign reader")) << r.output;
    EXPECT_TRUE(Contains(r.output, "Make: Tavrin 3.10. Ostwick Ltd")) << r.output;
    EXPECT_TRUE(Contains(r.output, "Model: Varo SPM")) << r.output;
    EXPECT_TRUE(Contains(r.output, "HostComputer: Windows 32-bit")) << r.output;
    const std::string strip = StripBytes(r.output);
    ASSERT_EQ(strip.size(), 64u * 64u * 2u) << r.output;
    EXPECT_EQ(std::memcmp(strip.data(), image->PixData, strip.size()), 0);
}

TEST_F(TiffForeignTest, TiffinfoReadsTheEightBitPaletteFile)
{
    ASSERT_EQ(saveTiffImage(image, Path("g8.tif").c_str(), 1), 0);
    RunResult r = RunCommand("/usr/bin/tiffinfo -d " + Path("g8.tif"));
    EXPECT_EQ(r.status, 0) << r.output;
    EXPECT_FALSE(Contains(r.output, "Warning")) << r.output;
    EXPECT_TRUE(Contains(r.output, "Image Width: 64 Image Length: 64")) << r.output;
    EXPECT_TRUE(Contains(r.output, "Bits/Sample: 8")) << r.output;
    EXPECT_TRUE(Contains(r.output, "Photometric Interpretation: palette color (RGB from colormap)")) << r.output;
    EXPECT_TRUE(Contains(r.output, "Color Map: (present)")) << r.output;
    const std::string strip = StripBytes(r.output);
    ASSERT_EQ(strip.size(), 64u * 64u) << r.output;
    for (size_t i = 0; i < strip.size(); ++i) ASSERT_EQ(static_cast<uint8_t>(strip[i]), image->PixData[i] >> 8) << i;
}

TEST_F(TiffForeignTest, TiffdumpListsTheDirectoryOfBothFiles)
{
    ASSERT_EQ(saveTiffImage(image, Path("d16.tif").c_str(), 0), 0);
    RunResult r16 = RunCommand("/usr/bin/tiffdump " + Path("d16.tif"));
    EXPECT_EQ(r16.status, 0) << r16.output;
    EXPECT_TRUE(Contains(r16.output, "Magic: 0x4949 <little-endian> Version: 0x2a")) << r16.output;
    EXPECT_TRUE(Contains(r16.output, "Directory 0: offset 6100")) << r16.output;
    EXPECT_TRUE(Contains(r16.output, "ImageWidth (256) LONG (4) 1<64>")) << r16.output;
    EXPECT_TRUE(Contains(r16.output, "ImageLength (257) LONG (4) 1<64>")) << r16.output;
    EXPECT_TRUE(Contains(r16.output, "StripOffsets (273) SHORT (3) 1<7124>")) << r16.output;
    EXPECT_TRUE(Contains(r16.output, "StripByteCounts (279) LONG (4) 1<8192>")) << r16.output;
    ASSERT_EQ(saveTiffImage(image, Path("d8.tif").c_str(), 1), 0);
    RunResult r8 = RunCommand("/usr/bin/tiffdump " + Path("d8.tif"));
    EXPECT_EQ(r8.status, 0) << r8.output;
    EXPECT_TRUE(Contains(r8.output, "ImageWidth (256) LONG (4) 1<64>")) << r8.output;
    EXPECT_TRUE(Contains(r8.output, "Colormap (320) SHORT (3) 768<")) << r8.output;
}

TEST_F(TiffForeignTest, PilGivesBackTheSixteenBitPixelsExactly)
{
    ASSERT_EQ(saveTiffImage(image, Path("p16.tif").c_str(), 0), 0);
    std::string head;
    std::vector<long> values = PilPixels(Path("p16.tif"), &head);
    EXPECT_EQ(head, "64 64 I;16");
    ASSERT_EQ(values.size(), 64u * 64u);
    for (size_t i = 0; i < values.size(); ++i) ASSERT_EQ(values[i], image->PixData[i]) << i;
}

TEST_F(TiffForeignTest, PilGivesBackTheHighBytesOfTheEightBitFile)
{
    ASSERT_EQ(saveTiffImage(image, Path("p8.tif").c_str(), 1), 0);
    std::string head;
    std::vector<long> values = PilPixels(Path("p8.tif"), &head);
    EXPECT_EQ(head, "64 64 P");
    ASSERT_EQ(values.size(), 64u * 64u);
    for (size_t i = 0; i < values.size(); ++i) ASSERT_EQ(values[i], image->PixData[i] >> 8) << i;
}

TEST_F(TiffForeignTest, ASixteenBitFileAfterAPaletteFileStillReadsInBothReaders)
{
    // Slot 16 then holds the earlier ColorMap entry.
    ASSERT_EQ(saveTiffImage(image, Path("first8.tif").c_str(), 1), 0);
    ASSERT_EQ(saveTiffImage(image, Path("then16.tif").c_str(), 0), 0);
    RunResult r = RunCommand("/usr/bin/tiffinfo " + Path("then16.tif"));
    EXPECT_FALSE(Contains(r.output, "Error")) << r.output;
    EXPECT_TRUE(Contains(r.output, "Image Width: 64 Image Length: 64")) << r.output;
    std::string head;
    std::vector<long> values = PilPixels(Path("then16.tif"), &head);
    EXPECT_EQ(head, "64 64 I;16");
    ASSERT_EQ(values.size(), 64u * 64u);
    for (size_t i = 0; i < values.size(); ++i) ASSERT_EQ(values[i], image->PixData[i]) << i;
}
