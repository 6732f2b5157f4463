// Saves that never destroy the file they replace: the safe replace of the file layer, every
// writer failed at each of its writes in turn, a real file size limit in a child process, and
// saves of a large image killed at random moments.
#include "support/test_host.h"
#include "display/colour_file.h"
#include "files/save_commands.h"
#include "files/save_window.h"
#include "files/spectrum_files.h"
#include "files/tiff_write.h"
#include "platform/files.h"
#include "platform/png_writer.h"
#include "platform/safe_replace.h"
#include "platform/settings_store.h"
#include "settings/user_settings.h"
#include "store/data_list.h"
#include "store/memory.h"
#include "test_spectrum_support.h"
#include "test_tiff_support.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <random>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace {

namespace fs = std::filesystem;

std::set<std::string> NamesIn(const std::string& directory)
{
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(directory)) names.insert(entry.path().filename().string());
    return names;
}

int TemporaryFilesIn(const std::string& directory)
{
    int n = 0;
    for (const std::string& name : NamesIn(directory))
        if (name.size() > 12 && name.compare(name.size() - 12, 12, ".tavrin-save") == 0) ++n;
    return n;
}

// The whole of a file in one read (the large files of the kill test make a stream too slow).
std::string FileBytes(const std::string& path)
{
    std::string bytes;
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    struct stat st {};
    if (fd < 0) return bytes;
    if (::fstat(fd, &st) == 0) {
        bytes.resize(static_cast<size_t>(st.st_size));
        size_t done = 0;
        for (ssize_t got; done < bytes.size() && (got = ::read(fd, &bytes[done], bytes.size() - done)) > 0;)
            done += static_cast<size_t>(got);
        bytes.resize(done);
    }
    ::close(fd);
    return bytes;
}

mode_t ModeOf(const std::string& path)
{
    struct stat st {};
    EXPECT_EQ(::stat(path.c_str(), &st), 0) << path;
    return st.st_mode & 07777;
}

// One writer that can overwrite a file: saves to a path and answers true on success. `error`
// is the text its failed write shows ("" for writers that answer without a message), `closeError`
// the text of a failed rename.
struct Writer {
    std::string name;
    std::function<bool(const std::string&)> save;
    std::string error;
    std::string closeError;
};

constexpr const char* kDiskFull = "Not enough disk space";
constexpr const char* kClosing = "Error occurred on closing file";
constexpr const char* kWriting = "Error occurred on writing to output device";

} // namespace

class SafeSaveTest : public LibraryTest {
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        ASSERT_EQ(host.Start(), 0);
        host.ClearCalls();
    }

    std::string LastBox() const { return host.messageBoxes.empty() ? "" : host.messageBoxes.back().text; }

    // Fails `writer` at each of its writes in turn (every later write failing too, as on a disk
    // that has run full), then at the flush and at the rename, each time over an old file: the
    // save fails with the writer's error, the old file stays byte for byte, no temporary file
    // is left, and the data list is as it was. A save to a new name that fails leaves nothing.
    void CheckEveryFailureKeepsTheOldFile(const Writer& writer)
    {
        SCOPED_TRACE(writer.name);
        // A first save, over a copy of the old file (a settings change keeps what it finds),
        // counts the writes and tells what a good save makes.
        const std::string old = "the old " + writer.name + "\n" + std::string(3000, 'o');
        WriteFileBytes(Path("count-" + writer.name), old);
        const long long before = FileWriteCallsForTests();
        ASSERT_TRUE(writer.save(Path("count-" + writer.name)));
        const long long calls = FileWriteCallsForTests() - before;
        ASSERT_GT(calls, 0);
        const std::string made = ReadFileBytes(Path("count-" + writer.name));
        ASSERT_NE(made, old);

        const std::string target = Path(writer.name);
        WriteFileBytes(target, old);
        const std::set<std::string> names = NamesIn(data);
        const int items = CountItems();
        const ImageHeaderType* current = CurrentItem;
        const size_t blocks = LiveBlockCount();

        auto expectUnchanged = [&](const std::string& what, const std::string& error) {
            SCOPED_TRACE(what);
            if (!error.empty()) {
                ASSERT_EQ(host.messageBoxes.size(), 1u);
                EXPECT_EQ(LastBox(), error);
            } else {
                EXPECT_TRUE(host.messageBoxes.empty());
            }
            EXPECT_EQ(ReadFileBytes(target), old);
            EXPECT_EQ(NamesIn(data), names);
            EXPECT_EQ(CountItems(), items);
            EXPECT_EQ(CurrentItem, current);
            EXPECT_EQ(LiveBlockCount(), blocks);
            host.messageBoxes.clear();
        };

        for (long long k = 0; k < calls; ++k) {
            host.messageBoxes.clear();
            SetFileWriteFailureAtCallForTests(k);
            const bool saved = writer.save(target);
            SetFileWriteFailureAtCallForTests(-1);
            EXPECT_FALSE(saved) << "write " << k;
            expectUnchanged("write " + std::to_string(k) + " of " + std::to_string(calls), writer.error);
        }
        SetFileReplaceFaultForTests(ReplaceFault::Sync);
        EXPECT_FALSE(writer.save(target));
        SetFileReplaceFaultForTests(ReplaceFault::None);
        expectUnchanged("flush", writer.error.empty() ? "" : kDiskFull);
        SetFileReplaceFaultForTests(ReplaceFault::Rename);
        EXPECT_FALSE(writer.save(target));
        SetFileReplaceFaultForTests(ReplaceFault::None);
        expectUnchanged("rename", writer.closeError);

        // A new name: nothing at all is left.
        SetFileWriteFailureAtCallForTests(0);
        EXPECT_FALSE(writer.save(Path("new-" + writer.name)));
        SetFileWriteFailureAtCallForTests(-1);
        expectUnchanged("new name", writer.error);
        EXPECT_FALSE(fs::exists(Path("new-" + writer.name)));

        // And with nothing in the way the new file replaces the old one.
        ASSERT_TRUE(writer.save(target));
        EXPECT_EQ(ReadFileBytes(target), made);
        EXPECT_EQ(TemporaryFilesIn(data), 0);
    }
};

// ---- The routine itself ---------------------------------------------------------------------

TEST_F(SafeSaveTest, AReplaceKeepsTheModeOfTheFileItReplaces)
{
    const std::string path = Path("kept.bin");
    WriteFileBytes(path, "old");
    ASSERT_EQ(::chmod(path.c_str(), 0640), 0);
    ASSERT_EQ(FileReplaceWithBytes(path, "brand new", 9), ReplaceOutcome::Done);
    EXPECT_EQ(ReadFileBytes(path), "brand new");
    EXPECT_EQ(ModeOf(path), 0640u);
    ASSERT_EQ(::chmod(path.c_str(), 0604), 0);
    ASSERT_EQ(FileReplaceWithBytes(path, "again", 5), ReplaceOutcome::Done);
    EXPECT_EQ(ModeOf(path), 0604u);
    EXPECT_EQ(TemporaryFilesIn(data), 0);
}

TEST_F(SafeSaveTest, ANewFileTakesTheUsualModeUnderTheMask)
{
    const mode_t mask = ::umask(027);
    const ReplaceOutcome outcome = FileReplaceWithBytes(Path("fresh.bin"), "x", 1);
    ::umask(mask);
    ASSERT_EQ(outcome, ReplaceOutcome::Done);
    EXPECT_EQ(ModeOf(Path("fresh.bin")), 0640u);
}

TEST_F(SafeSaveTest, TheTemporaryFileLiesBesideTheTargetUntilTheCommit)
{
    FileReplace save;
    const FileHandle file = FileReplaceBegin(&save, Path("x.tif"));
    ASSERT_NE(file, kInvalidFile);
    EXPECT_EQ(save.temporary, Path(".x.tif.tavrin-save"));
    EXPECT_TRUE(fs::exists(save.temporary));
    EXPECT_EQ(FileWrite(file, "abc", 3), 3);
    EXPECT_FALSE(fs::exists(Path("x.tif")));
    EXPECT_EQ(FileReplaceCommit(&save), ReplaceOutcome::Done);
    EXPECT_EQ(ReadFileBytes(Path("x.tif")), "abc");
    EXPECT_EQ(NamesIn(data), std::set<std::string>{"x.tif"});
}

TEST_F(SafeSaveTest, AnAbandonedSaveLeavesTheOldFile)
{
    WriteFileBytes(Path("a.spc"), "old bytes");
    FileReplace save;
    const FileHandle file = FileReplaceBegin(&save, Path("a.spc"));
    ASSERT_NE(file, kInvalidFile);
    EXPECT_EQ(FileWrite(file, "new", 3), 3);
    FileReplaceAbandon(&save);
    EXPECT_EQ(ReadFileBytes(Path("a.spc")), "old bytes");
    EXPECT_EQ(NamesIn(data), std::set<std::string>{"a.spc"});
}

TEST_F(SafeSaveTest, AStrayTemporaryFileIsTakenOverByTheNextSaveOfThatName)
{
    WriteFileBytes(Path("s.tif"), "old");
    WriteFileBytes(Path(".s.tif.tavrin-save"), std::string(5000, 'k'));   // left by a killed save
    ASSERT_EQ(FileReplaceWithBytes(Path("s.tif"), "new", 3), ReplaceOutcome::Done);
    EXPECT_EQ(ReadFileBytes(Path("s.tif")), "new");
    EXPECT_EQ(NamesIn(data), std::set<std::string>{"s.tif"});
}

TEST_F(SafeSaveTest, ALinkIsFollowedAndTheFileItNamesIsReplaced)
{
    fs::create_directories(Path("real"));
    WriteFileBytes(Path("real/t.dat"), "old");
    fs::create_symlink(Path("real/t.dat"), Path("link.dat"));
    ASSERT_EQ(FileReplaceWithBytes(Path("link.dat"), "new", 3), ReplaceOutcome::Done);
    EXPECT_TRUE(fs::is_symlink(Path("link.dat")));
    EXPECT_EQ(ReadFileBytes(Path("real/t.dat")), "new");
    EXPECT_EQ(TemporaryFilesIn(Path("real")), 0);
}

TEST_F(SafeSaveTest, ADeviceIsWrittenInPlace)
{
    EXPECT_EQ(FileReplaceWithBytes("/dev/null", "abc", 3), ReplaceOutcome::Done);
}

TEST_F(SafeSaveTest, ADirectoryOrAMissingDirectoryCannotBeSavedTo)
{
    FileReplace save;
    fs::create_directories(Path("dir"));
    EXPECT_EQ(FileReplaceBegin(&save, Path("dir")), kInvalidFile);
    EXPECT_EQ(errno, EISDIR);
    EXPECT_EQ(FileReplaceBegin(&save, Path("no/such/dir/f.tif")), kInvalidFile);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(FileReplaceWithBytes(Path("no/such/f.tif"), "x", 1), ReplaceOutcome::OpenFailed);
    EXPECT_EQ(NamesIn(data), std::set<std::string>{"dir"});
}

TEST_F(SafeSaveTest, AFileProtectedAgainstWritingStaysProtected)
{
    if (::geteuid() == 0) GTEST_SKIP() << "the super-user may write any file";
    WriteFileBytes(Path("ro.tif"), "old");
    ASSERT_EQ(::chmod(Path("ro.tif").c_str(), 0444), 0);
    EXPECT_EQ(FileReplaceWithBytes(Path("ro.tif"), "new", 3), ReplaceOutcome::OpenFailed);
    EXPECT_EQ(ReadFileBytes(Path("ro.tif")), "old");
}

TEST_F(SafeSaveTest, AFailedFlushIsDiskFullAndAFailedRenameIsAFailure)
{
    WriteFileBytes(Path("f.bin"), "old");
    SetFileReplaceFaultForTests(ReplaceFault::Sync);
    EXPECT_EQ(FileReplaceWithBytes(Path("f.bin"), "new", 3), ReplaceOutcome::DiskFull);
    SetFileReplaceFaultForTests(ReplaceFault::Rename);
    EXPECT_EQ(FileReplaceWithBytes(Path("f.bin"), "new", 3), ReplaceOutcome::Failed);
    SetFileReplaceFaultForTests(ReplaceFault::None);
    SetFileWriteLimitForTests(1);
    EXPECT_EQ(FileReplaceWithBytes(Path("f.bin"), "new", 3), ReplaceOutcome::DiskFull);
    SetFileWriteLimitForTests(-1);
    EXPECT_EQ(ReadFileBytes(Path("f.bin")), "old");
    EXPECT_EQ(NamesIn(data), std::set<std::string>{"f.bin"});
}

TEST_F(SafeSaveTest, TheWriteFailureCountsCallsAndStaysOn)
{
    const FileHandle file = FileCreate(Path("calls.bin"));
    ASSERT_NE(file, kInvalidFile);
    const long long before = FileWriteCallsForTests();
    SetFileWriteFailureAtCallForTests(2);
    EXPECT_EQ(FileWrite(file, "ab", 2), 2);
    EXPECT_EQ(FileWrite(file, "cd", 2), 2);
    EXPECT_EQ(FileWrite(file, "ef", 2), 0);
    EXPECT_EQ(FileWrite(file, "gh", 2), 0);
    SetFileWriteFailureAtCallForTests(-1);
    EXPECT_EQ(FileWrite(file, "ij", 2), 2);
    EXPECT_EQ(FileWriteCallsForTests() - before, 5);
    FileClose(file);
    EXPECT_EQ(ReadFileBytes(Path("calls.bin")), "abcdij");
}

// ---- Every writer, failed at every write ----------------------------------------------------

TEST_F(SafeSaveTest, A16BitImageSaveNeverDestroysTheOldFile)
{
    ImageHeaderType* image = tifftest::MakeImage(32);
    ASSERT_NE(image, nullptr);
    CheckEveryFailureKeepsTheOldFile(
        {"i16.tif", [&](const std::string& p) { return saveTiffImage(image, p.c_str(), 0) == 0; }, kDiskFull, kClosing});
}

TEST_F(SafeSaveTest, An8BitImageSaveNeverDestroysTheOldFile)
{
    ImageHeaderType* image = tifftest::MakeImage(24);
    ASSERT_NE(image, nullptr);
    CheckEveryFailureKeepsTheOldFile(
        {"i8.tif", [&](const std::string& p) { return saveTiffImage(image, p.c_str(), 1) == 0; }, kDiskFull, kClosing});
}

TEST_F(SafeSaveTest, ASaveCommandThroughTheSaveTypesNeverDestroysTheOldFile)
{
    ASSERT_NE(tifftest::MakeImage(16), nullptr);
    CheckEveryFailureKeepsTheOldFile(
        {"cmd.tif", [](const std::string& p) { return SaveSTMData(SAVE_TIFF_16, p.c_str(), 0) == 0; }, kDiskFull,
         kClosing});
}

TEST_F(SafeSaveTest, ASpectrumFileSaveNeverDestroysTheOldFile)
{
    ImageHeaderType* spectrum = spectest::MakeSpectrumItem(300);
    ASSERT_NE(spectrum, nullptr);
    CheckEveryFailureKeepsTheOldFile(
        {"s.spc", [&](const std::string& p) { return SaveSpecFile(spectrum, p.c_str()) == 0; }, kDiskFull, kClosing});
}

TEST_F(SafeSaveTest, ASpectrumTableSaveNeverDestroysTheOldFile)
{
    ImageHeaderType* spectrum = spectest::MakeSpectrumItem(40);
    ASSERT_NE(spectrum, nullptr);
    CheckEveryFailureKeepsTheOldFile(
        {"s.dat", [&](const std::string& p) { return SaveSpecData(spectrum, p.c_str()) == 0; }, kWriting, kWriting});
}

TEST_F(SafeSaveTest, AWindowSaveNeverDestroysTheOldFile)
{
    std::vector<uint8_t> bitmap(5000);
    const uint32_t length = 4000;
    for (size_t i = 0; i < bitmap.size(); ++i) bitmap[i] = static_cast<uint8_t>(i * 7);
    std::memcpy(bitmap.data(), &length, sizeof length);
    CheckEveryFailureKeepsTheOldFile({"w.bmp",
                                      [&](const std::string& p) {
                                          const size_t boxes = host.messageBoxes.size();
                                          SaveWindow(p.c_str(), bitmap.data(), nullptr, 0, SAVE_WINDOW_BITMAP);
                                          return host.messageBoxes.size() == boxes;
                                      },
                                      kWriting, kWriting});
}

TEST_F(SafeSaveTest, AColourTableSaveNeverDestroysTheOldFile)
{
    wint_ColourParamType p{};
    p.ColourTableNo = 6;
    dl_SetColourParam(&p);
    CheckEveryFailureKeepsTheOldFile(
        {"t.lut", [](const std::string& path) { return SaveLUT(path.c_str()) == 0; }, kDiskFull, kClosing});
}

TEST_F(SafeSaveTest, APictureSaveNeverDestroysTheOldFile)
{
    std::vector<uint8_t> pixels(20 * 10 * 3);
    for (size_t i = 0; i < pixels.size(); ++i) pixels[i] = static_cast<uint8_t>(i * 13);
    const PngImage image{20, 10, kPngColourRgb, pixels.data(), 60, nullptr, 0, kPngAdaptiveFilter};
    CheckEveryFailureKeepsTheOldFile(
        {"p.png", [&](const std::string& path) { return WritePng(path.c_str(), image) == 0; }, "", ""});
}

TEST_F(SafeSaveTest, ASettingsChangeNeverDestroysTheSettingsFile)
{
    CheckEveryFailureKeepsTheOldFile({"user.ini",
                                      [](const std::string& path) {
                                          return ProfileWriteString("Section", "Key", "a value", path);
                                      },
                                      "", ""});
}

TEST_F(SafeSaveTest, ASettingsCopyNeverDestroysTheFileItReplaces)
{
    WriteFileBytes(Path("from.ini"), "[S]\r\nKey=copied\r\n");
    const std::string from = Path("from.ini");
    CheckEveryFailureKeepsTheOldFile(
        {"to.ini", [&](const std::string& path) { return ProfileCopyFile(from, path); }, "", ""});
}

// ---- A real limit: the file size limit of a child process -----------------------------------

namespace {

// Runs `save` in a child process whose files may not grow beyond `limit` bytes (the signal of
// a file grown too large ignored, so the write falls short as on a full disk). Answers the
// child's exit status and the text of the last message box it showed.
std::pair<int, std::string> SaveUnderFileSizeLimit(rlim_t limit, const std::function<int()>& save)
{
    int pipeEnds[2];
    if (::pipe(pipeEnds) != 0) return {-1, "no pipe"};
    const pid_t child = ::fork();
    if (child == 0) {
        ::close(pipeEnds[0]);
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit small{limit, limit};
        if (::setrlimit(RLIMIT_FSIZE, &small) != 0) ::_exit(3);
        const int result = save();
        const TestHost* host = TestHost::Current();
        const std::string text = host && !host->messageBoxes.empty() ? host->messageBoxes.back().text : "";
        if (::write(pipeEnds[1], text.data(), text.size()) < 0) ::_exit(4);
        ::_exit(result);
    }
    ::close(pipeEnds[1]);
    std::string text;
    char buffer[256];
    for (ssize_t got; (got = ::read(pipeEnds[0], buffer, sizeof buffer)) > 0;) text.append(buffer, static_cast<size_t>(got));
    ::close(pipeEnds[0]);
    int status = 0;
    ::waitpid(child, &status, 0);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, text};
}

} // namespace

TEST_F(SafeSaveTest, AFileSizeLimitBelowTheFileKeepsTheOldImageAndSpectrum)
{
    ImageHeaderType* image = tifftest::MakeImage(128);   // 7124 + 32768 bytes
    ASSERT_NE(image, nullptr);
    ImageHeaderType* spectrum = spectest::MakeSpectrumItem(4000);   // 6090 + 32000 bytes
    ASSERT_NE(spectrum, nullptr);
    WriteFileBytes(Path("old.tif"), std::string(9000, 'T'));
    WriteFileBytes(Path("old.spc"), std::string(7000, 'S'));
    const std::set<std::string> names = NamesIn(data);

    auto image_run = SaveUnderFileSizeLimit(20000, [&] { return saveTiffImage(image, Path("old.tif").c_str(), 0); });
    EXPECT_EQ(image_run.first, 1);
    EXPECT_EQ(image_run.second, kDiskFull);
    auto spectrum_run = SaveUnderFileSizeLimit(20000, [&] { return SaveSpecFile(spectrum, Path("old.spc").c_str()); });
    EXPECT_EQ(spectrum_run.first, 1);
    EXPECT_EQ(spectrum_run.second, kDiskFull);

    EXPECT_EQ(ReadFileBytes(Path("old.tif")), std::string(9000, 'T'));
    EXPECT_EQ(ReadFileBytes(Path("old.spc")), std::string(7000, 'S'));
    EXPECT_EQ(NamesIn(data), names);

    // Without the limit the same saves go through.
    auto free_run = SaveUnderFileSizeLimit(RLIM_INFINITY, [&] { return saveTiffImage(image, Path("old.tif").c_str(), 0); });
    EXPECT_EQ(free_run.first, 0);
    EXPECT_EQ(ReadFileBytes(Path("old.tif")).size(), 7124u + 32768u);
}

// ---- Killed at a random moment --------------------------------------------------------------

TEST_F(SafeSaveTest, ASaveOfALargeImageKilledAtAnyMomentLeavesTheOldOrTheNewFile)
{
    // Two 4096 by 4096 images of the same size; each round saves over a file the one it does not
    // hold, and a kill at a random moment of that save must leave one or the other, whole.
    ImageHeaderType* first = tifftest::MakeImage(4096, "First", 11);
    ASSERT_NE(first, nullptr);
    ImageHeaderType* second = tifftest::MakeImage(4096, "Second", 977);
    ASSERT_NE(second, nullptr);
    ImageHeaderType* images[2] = {first, second};
    std::string bytes[2];
    double saveSeconds = 0;
    for (int i = 0; i < 2; ++i) {
        const auto start = std::chrono::steady_clock::now();
        ASSERT_EQ(saveTiffImage(images[i], Path("ref.tif").c_str(), 0), 0);
        saveSeconds = std::max(saveSeconds, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
        bytes[i] = FileBytes(Path("ref.tif"));
    }
    ASSERT_EQ(bytes[0].size(), bytes[1].size());
    ASSERT_NE(bytes[0], bytes[1]);
    fs::remove(Path("ref.tif"));
    // Two files, saved and killed side by side, to keep the test short: ten rounds of two.
    constexpr int kFiles = 2;
    const std::string targets[kFiles] = {Path("big0.tif"), Path("big1.tif")};
    int holds[kFiles] = {0, 0};   // which image each file holds
    for (const std::string& target : targets) ASSERT_EQ(saveTiffImage(first, target.c_str(), 0), 0);

    constexpr int kKills = 20;
    const unsigned seed = 28;
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> moment(0.0, 1.2 * saveSeconds);
    int keptOld = 0, tookNew = 0;
    for (int round = 0; round < kKills / kFiles; ++round) {
        pid_t children[kFiles];
        double killAt[kFiles];
        for (int f = 0; f < kFiles; ++f) {
            int ready[2];
            ASSERT_EQ(::pipe(ready), 0);
            children[f] = ::fork();
            ASSERT_GE(children[f], 0);
            if (children[f] == 0) {
                ::close(ready[0]);
                if (::write(ready[1], "s", 1) != 1) ::_exit(2);
                ::_exit(saveTiffImage(images[1 - holds[f]], targets[f].c_str(), 0));
            }
            ::close(ready[1]);
            char started;
            ASSERT_EQ(::read(ready[0], &started, 1), 1);
            ::close(ready[0]);
            killAt[f] = moment(random);
        }
        // Each child is killed at its own moment, counted from its start.
        const auto start = std::chrono::steady_clock::now();
        const int firstKilled = killAt[0] <= killAt[1] ? 0 : 1;
        for (int f : {firstKilled, 1 - firstKilled}) {
            std::this_thread::sleep_until(start + std::chrono::duration<double>(killAt[f]));
            ::kill(children[f], SIGKILL);
        }
        for (int f = 0; f < kFiles; ++f) {
            int status = 0;
            ASSERT_EQ(::waitpid(children[f], &status, 0), children[f]);
            const int saving = 1 - holds[f];
            const std::string now = FileBytes(targets[f]);
            const bool isOld = now == bytes[holds[f]];
            const bool isNew = !isOld && now == bytes[saving];
            EXPECT_TRUE(isOld || isNew) << "round " << round << ", file " << f << ": " << now.size()
                                        << " bytes, neither the old file nor the new one";
            if (isNew) {
                ++tookNew;
                holds[f] = saving;
            } else if (isOld) {
                ++keptOld;
            }
        }
        EXPECT_LE(TemporaryFilesIn(data), kFiles) << "round " << round;   // one a name at most
    }
    std::printf("[ kill test ] %d saves of a 4096 x 4096 image killed at random moments within %.0f ms "
                "(seed %u): %d left the old file, %d the new one, none anything else\n",
                kKills, 1200 * saveSeconds, seed, keptOld, tookNew);
    EXPECT_EQ(keptOld + tookNew, kKills);

    // The next save of a name clears whatever temporary file a kill left.
    for (int f = 0; f < kFiles; ++f) {
        ASSERT_EQ(saveTiffImage(images[1 - holds[f]], targets[f].c_str(), 0), 0);
        EXPECT_EQ(FileBytes(targets[f]), bytes[1 - holds[f]]);
    }
    EXPECT_EQ(NamesIn(data), (std::set<std::string>{"big0.tif", "big1.tif"}));
}

TEST_F(SafeSaveTest, ProcessesSavingOneNameAtOnceTakeTurns)
{
    // Four processes save their own image under one name, again and again: whatever the
    // order, the file is always one image whole, and no temporary file is left.
    constexpr int kProcesses = 4, kSaves = 15;
    std::vector<ImageHeaderType*> images;
    std::set<std::string> wholeFiles;
    for (int p = 0; p < kProcesses; ++p) {
        images.push_back(tifftest::MakeImage(96, "Turn", static_cast<uint32_t>(100 + p)));
        ASSERT_NE(images.back(), nullptr);
        ASSERT_EQ(saveTiffImage(images.back(), Path("ref.tif").c_str(), 0), 0);
        wholeFiles.insert(FileBytes(Path("ref.tif")));
    }
    ASSERT_EQ(wholeFiles.size(), static_cast<size_t>(kProcesses));
    fs::remove(Path("ref.tif"));
    const std::string target = Path("turns.tif");
    for (int p = 0; p < kProcesses; ++p) {
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            int failures = 0;
            for (int i = 0; i < kSaves; ++i) failures += saveTiffImage(images[p], target.c_str(), 0);
            ::_exit(failures);
        }
    }
    // Meanwhile this process reads the name again and again: always a whole file (or none yet).
    int reads = 0, running = kProcesses;
    while (running > 0) {
        const std::string now = FileBytes(target);
        if (!now.empty()) {
            EXPECT_EQ(wholeFiles.count(now), 1u) << "read " << reads;
            ++reads;
        }
        int status = 0;
        const pid_t ended = ::waitpid(-1, &status, WNOHANG);
        if (ended > 0) {
            --running;
            EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
        }
    }
    std::printf("[ turns ] %d reads during %d saves, every one a whole file\n", reads, kProcesses * kSaves);
    EXPECT_EQ(wholeFiles.count(FileBytes(target)), 1u);
    EXPECT_EQ(NamesIn(data), std::set<std::string>{"turns.tif"});
}
