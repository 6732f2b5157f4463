// The particle statistics text: its heading and rows for each separator of the ".dat" export,
// the heading switch, detection order, and no file when there is nothing or the write fails.
#include "test_particle_support.h"

#include "files/spectrum_files.h"
#include "platform/files.h"
#include "store/units.h"

#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

std::string ReadFile(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

std::string Expected(char c, bool heading)
{
    const std::string s(1, c), sq = AreaUnits();
    std::string text;
    if (heading)
        text += "Number" + s + "X1" + s + "Y1" + s + "X2" + s + "Y2" + s + "Area/nm" + sq + s + "Area/pix" + s +
                "Perimeter/nm" + s + "Area/Perimeter" + sq + "\r\n";
    text += "1" + s + "1" + s + "1" + s + "2" + s + "2" + s + "4.000000E+02" + s + "4" + s + "3.000000E+01" + s +
            "4.444444E-01\r\n";
    text += "2" + s + "6" + s + "2" + s + "8" + s + "4" + s + "9.000000E+02" + s + "9" + s + "7.000000E+01" + s +
            "1.836735E-01\r\n";
    text += "3" + s + "0" + s + "4" + s + "0" + s + "4" + s + "1.000000E+02" + s + "1" + s + "0.000000E+00" + s +
            "0.000000E+00\r\n";
    return text;
}

TEST_F(ParticleTest, StatisticsFileHeadingAndRowsForEachSeparator)
{
    StartOn(kSquares, 4, 100.0f, 60.0f);
    const char separators[] = {' ', ',', '\t'};
    for (int separator = 0; separator < 3; ++separator) {
        SetSpecExportParam(SpecExportParam{0, separator});
        const std::string path = Path("stats" + std::to_string(separator) + ".txt");
        EXPECT_EQ(dl_WriteObjectStatistics(path.c_str()), 1);
        EXPECT_EQ(ReadFile(path), Expected(separators[separator], true)) << separator;
    }
    EXPECT_EQ(CountInLog("Write statistics for 3 particles to disk.\n"), 3);
}

TEST_F(ParticleTest, StatisticsFileWithoutHeadingWhenTheExportDropsIt)
{
    StartOn(kSquares, 4, 100.0f, 60.0f);
    SetSpecExportParam(SpecExportParam{1, 1});
    const std::string path = Path("bare.txt");
    EXPECT_EQ(dl_WriteObjectStatistics(path.c_str()), 1);
    EXPECT_EQ(ReadFile(path), Expected(',', false));
}

TEST_F(ParticleTest, StatisticsFileRowsStayInDetectionOrderWhenTheListIsSorted)
{
    StartOn(kSquares, 4, 100.0f, 60.0f);
    stts.SortKey = TV_PARTICLE_SORT_AREA;
    dl_SetParticleSttsParam(&stts);
    SetSpecExportParam(SpecExportParam{0, 0});
    const std::string path = Path("sorted.txt");
    EXPECT_EQ(dl_WriteObjectStatistics(path.c_str()), 1);
    EXPECT_EQ(ReadFile(path), Expected(' ', true));
}

TEST_F(ParticleTest, StatisticsFileFailedWriteGivesItsErrorAndLeavesNoFile)
{
    StartOn(kSquares, 4, 100.0f, 60.0f);
    const std::string path = Path("half.txt");
    SetFileWriteLimitForTests(40);
    EXPECT_EQ(dl_WriteObjectStatistics(path.c_str()), 0);
    SetFileWriteLimitForTests(-1);
    EXPECT_TRUE(ErrorShown("Error occurred on writing to output device"));
    EXPECT_FALSE(std::filesystem::exists(path));
    EXPECT_FALSE(LogHas("Write statistics for 3"));
}

TEST_F(ParticleTest, StatisticsFileThatCannotBeMadeReportsUnableToOpen)
{
    StartOn(kSquares, 4, 100.0f, 60.0f);
    EXPECT_EQ(dl_WriteObjectStatistics(Path("no/such/dir/s.txt").c_str()), 0);
    EXPECT_TRUE(ErrorShown("Unable to open file"));
}

TEST_F(ParticleTest, StatisticsFileWithNoObjectsIsOnlyALogLine)
{
    StartOn({"....", "....", "...."});
    const std::string path = Path("none.txt");
    EXPECT_EQ(dl_WriteObjectStatistics(path.c_str()), 1);
    EXPECT_FALSE(std::filesystem::exists(path));
    EXPECT_TRUE(LogHas("Write statistics for 0 particles to disk.\n"));
}

} // namespace
