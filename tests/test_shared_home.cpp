// Many processes sharing one home: hosts started at once each store their own settings key and
// render a picture; no key is lost, the settings file stays whole, and the shared log keeps the
// lines of every process, each line whole.
#include "support/test_host.h"
#include "files/tiff_write.h"
#include "host/log.h"
#include "platform/file_lock.h"
#include "platform/files.h"
#include "platform/settings_store.h"
#include "test_tiff_support.h"

#include <sys/wait.h>

#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

constexpr const char* kUser = "shared";
constexpr const char* kTerminated = "Program terminated normally.\r\n";

int Occurrences(const std::string& text, const std::string& part)
{
    int n = 0;
    for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size())) ++n;
    return n;
}

// The lines of a text whose lines end in CR LF; false when a line feed stands without its CR
// or the text does not end with a line end.
bool SplitCrLfLines(const std::string& text, std::vector<std::string>* lines)
{
    size_t start = 0;
    while (start < text.size()) {
        const size_t lf = text.find('\n', start);
        if (lf == std::string::npos || lf == start || text[lf - 1] != '\r') return false;
        lines->push_back(text.substr(start, lf - 1 - start));
        start = lf + 1;
    }
    return true;
}

} // namespace

class SharedHomeTest : public LibraryTest {
protected:
    // Starts `count` hosts at once in the data directory, host i running script i, and waits
    // for all of them; answers their exit statuses.
    std::vector<int> RunHostsAtOnce(const std::vector<std::string>& scripts)
    {
        std::ostringstream shell;
        shell << "cd '" << data << "' && export TAVRIN_HOME='" << home << "' TAVRIN_DATA='" << data << "'; ";
        for (size_t i = 0; i < scripts.size(); ++i) {
            const std::string n = std::to_string(i);
            WriteFileBytes(data + "script" + n + ".txt", scripts[i]);
            shell << "('" << TAVRIN_HOST_BINARY << "' --user " << kUser << " run script" << n << ".txt > out" << n
                  << ".txt 2> err" << n << ".txt; echo $? > status" << n << ".txt) & ";
        }
        shell << "wait";
        const int raw = std::system(shell.str().c_str());
        EXPECT_TRUE(WIFEXITED(raw) && WEXITSTATUS(raw) == 0);
        std::vector<int> statuses;
        for (size_t i = 0; i < scripts.size(); ++i) {
            const std::string text = ReadFileBytes(data + "status" + std::to_string(i) + ".txt");
            statuses.push_back(text.empty() ? -1 : std::atoi(text.c_str()));
        }
        return statuses;
    }

    std::string LogPath() const { return home + "TavrinProc310.log"; }
    std::string SettingsPath() const { return home + "INIT/TavrinProc310-" + std::string(kUser) + ".ini"; }
};

TEST_F(SharedHomeTest, TwentyHostsAtOnceLoseNoSettingAndNoLogLine)
{
    ImageHeaderType* image = tifftest::MakeImage(64, "Shared");
    ASSERT_NE(image, nullptr);
    ASSERT_EQ(saveTiffImage(image, Path("shared.tif").c_str(), 0), 0);

    constexpr int kHosts = 20;
    std::vector<std::string> scripts;
    for (int i = 0; i < kHosts; ++i) {
        const std::string n = std::to_string(i);
        scripts.push_back("SaveSettingString \"Host key " + n + "\" \"value of host " + n +
                          "\"\n"
                          "OpenSTMData 0 \"shared.tif\"\n"
                          "render picture" + n + ".png\n");
    }
    // This test process stands for a process that was already running when the hosts started,
    // so that every host appends to the log however the starts and ends of the hosts fall.
    // (A host that starts alone clears the log: see the next test.)
    FileLock running;
    ASSERT_TRUE(OpenLockFile(&running, LogLockFileName(LogPath())));
    ASSERT_TRUE(TakeFileLock(&running, LockKind::Shared, true));
    const std::vector<int> statuses = RunHostsAtOnce(scripts);
    CloseLockFile(&running);

    for (int i = 0; i < kHosts; ++i) {
        EXPECT_EQ(statuses[i], 0) << "host " << i << ": " << ReadFileBytes(data + "err" + std::to_string(i) + ".txt");
        EXPECT_TRUE(fs::exists(Path("picture" + std::to_string(i) + ".png"))) << i;
    }

    // Every key is there, once, and the file parses: sections and key lines only.
    const std::string settings = ReadFileBytes(SettingsPath());
    std::vector<std::string> lines;
    ASSERT_TRUE(SplitCrLfLines(settings, &lines));
    const std::regex settingsLine(R"(\[[^\]]+\]|[^=\[][^=]*=.*)");
    for (const std::string& line : lines) EXPECT_TRUE(std::regex_match(line, settingsLine)) << line;
    const std::string section = "Configuration-" + std::string(kUser) + "_ENG";
    for (int i = 0; i < kHosts; ++i) {
        const std::string n = std::to_string(i);
        char value[64];
        bool found = false;
        ProfileGetString(section, "Host key " + n, "", value, sizeof value, SettingsPath(), &found);
        EXPECT_TRUE(found) << "key of host " << i;
        EXPECT_EQ(std::string(value), "value of host " + n);
        EXPECT_EQ(Occurrences(settings, "Host key " + n + "="), 1);
    }
    char revision[16];
    ProfileGetString(section, "Revision", "", revision, sizeof revision, SettingsPath());
    EXPECT_STREQ(revision, "310");
    EXPECT_EQ(fs::exists(home + "INIT/.TavrinProc310-" + std::string(kUser) + ".ini.tavrin-save"), false);

    // The log: the end of every host, and every line whole.
    const std::string log = ReadFileBytes(LogPath());
    EXPECT_EQ(Occurrences(log, kTerminated), kHosts);
    lines.clear();
    ASSERT_TRUE(SplitCrLfLines(log, &lines)) << "a line without its CR LF";
    const std::regex logLine(R"(|\d\d:\d\d:\d\d\.\d\d\d>  (?:[^:>]|:(?!\d\d\.)|>(?! ))*|Program terminated normally\.|)"
                             R"(SPM command log on \d\d/\d\d/\d{4} at \d\d:\d\d:\d\d\.|Tavrin (?:Processing|Scanning) version - .*)");
    int stamped = 0;
    for (const std::string& line : lines) {
        EXPECT_TRUE(std::regex_match(line, logLine)) << "a broken line: '" << line << "'";
        if (!line.empty() && std::isdigit(static_cast<unsigned char>(line[0]))) ++stamped;
    }
    EXPECT_GE(stamped, kHosts * 4);
    EXPECT_EQ(Occurrences(log, "SPM command log on "), kHosts);
}

TEST_F(SharedHomeTest, AHostStartingAloneStartsTheLogAfreshAndOneStartingBesideAnotherAppends)
{
    WriteFileBytes(LogPath(), "a line of an earlier run\r\n");
    std::vector<int> statuses = RunHostsAtOnce({"GetRevisionNumber\n"});
    ASSERT_EQ(statuses[0], 0);
    std::string log = ReadFileBytes(LogPath());
    EXPECT_EQ(log.find("earlier run"), std::string::npos);
    EXPECT_EQ(Occurrences(log, kTerminated), 1);

    FileLock running;
    ASSERT_TRUE(OpenLockFile(&running, LogLockFileName(LogPath())));
    ASSERT_TRUE(TakeFileLock(&running, LockKind::Shared, true));
    statuses = RunHostsAtOnce({"GetRevisionNumber\n"});
    CloseLockFile(&running);
    ASSERT_EQ(statuses[0], 0);
    log = ReadFileBytes(LogPath());
    EXPECT_EQ(Occurrences(log, kTerminated), 2);
}

TEST_F(SharedHomeTest, TheLogIsClearedOnlyByAProcessThatFindsNobodyHoldingIt)
{
    // In this process: the first start clears the log and holds it shared; a second holder
    // (as another process would be) keeps a later start from clearing it.
    WriteFileBytes(LogPath(), "old\r\n");
    InitLogFileName();
    EXPECT_FALSE(fs::exists(LogPath()));
    WriteLogText("first\n");

    FileLock other;
    ASSERT_TRUE(OpenLockFile(&other, LogLockFileName(LogPath())));
    // The running holder's share lets another share in, but not clear.
    EXPECT_FALSE(TakeFileLock(&other, LockKind::Exclusive, false));
    ASSERT_TRUE(TakeFileLock(&other, LockKind::Shared, false));
    InitLogFileName();   // a new start while `other` holds the log
    WriteLogText("second\n");
    EXPECT_EQ(ReadFileBytes(LogPath()), "first\r\nsecond\r\n");

    CloseLockFile(&other);
    InitLogFileName();   // now nobody else holds it
    EXPECT_FALSE(fs::exists(LogPath()));
}

TEST_F(SharedHomeTest, SettingsChangesOfManyProcessesAtOnceAreAllKept)
{
    // Forked children of this process, each writing its own keys into one file.
    const std::string file = home + "INIT/many.ini";
    constexpr int kChildren = 8, kKeys = 10;
    std::vector<pid_t> children;
    for (int c = 0; c < kChildren; ++c) {
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            bool ok = true;
            for (int k = 0; k < kKeys; ++k)
                ok = ProfileWriteString("S", ("child" + std::to_string(c) + "_" + std::to_string(k)).c_str(),
                                        std::to_string(c * 100 + k).c_str(), file) && ok;
            ::_exit(ok ? 0 : 1);
        }
        children.push_back(child);
    }
    for (pid_t child : children) {
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    }
    for (int c = 0; c < kChildren; ++c) {
        for (int k = 0; k < kKeys; ++k) {
            char value[16];
            bool found = false;
            ProfileGetString("S", "child" + std::to_string(c) + "_" + std::to_string(k), "", value, sizeof value, file,
                             &found);
            EXPECT_TRUE(found) << c << " " << k;
            EXPECT_EQ(std::atoi(value), c * 100 + k);
        }
    }
    EXPECT_TRUE(fs::exists(SettingsLockFileName()));
}

TEST_F(SharedHomeTest, ChangesGatheredForOneFileAreWrittenOnceUnderTheLock)
{
    const std::string file = home + "INIT/gathered.ini";
    const std::string other = home + "INIT/other.ini";
    ProfileWriteString("S", "kept", "1", file);
    const long long before = FileWriteCallsForTests();
    ProfileBeginChanges(file);
    EXPECT_TRUE(ProfileWriteString("S", "a", "2", file));
    EXPECT_TRUE(ProfileWriteString("S", "b", "3", file));
    char value[8];
    EXPECT_EQ(ProfileGetString("S", "a", "", value, sizeof value, file), 1u);   // the copy is read
    EXPECT_STREQ(value, "2");
    EXPECT_FALSE(ReadFileBytes(file).find("a=2") != std::string::npos);       // not yet written
    // While the lock is held here, another process waits for it...
    FileLock stranger;
    ASSERT_TRUE(OpenLockFile(&stranger, SettingsLockFileName()));
    EXPECT_FALSE(TakeFileLock(&stranger, LockKind::Exclusive, false));
    // ...but a write of this process to another file goes straight through.
    EXPECT_TRUE(ProfileWriteString("T", "x", "4", other));
    EXPECT_TRUE(ProfileEndChanges());
    EXPECT_TRUE(TakeFileLock(&stranger, LockKind::Exclusive, false));
    CloseLockFile(&stranger);
    EXPECT_EQ(FileWriteCallsForTests() - before, 2);   // one write of each file
    EXPECT_EQ(ReadFileBytes(file), "[S]\r\nkept=1\r\na=2\r\nb=3\r\n");
    EXPECT_EQ(ReadFileBytes(other), "[T]\r\nx=4\r\n");
}
