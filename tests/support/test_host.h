// The recording test host: a full callback table and platform table whose every call is
// recorded with its arguments, and whose prompts answer from a script.
//
//   LibraryTest  - a fixture that gives each test a fresh library state, its own home and data
//                  directories, a fixed clock, and a TestHost registered as the platform.
//   host.Start() - dl_Initialise with the recording table (and an optional command line).
#pragma once

#include <gtest/gtest.h>

#include <filesystem>

#include <cstdint>
#include <deque>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "tavrin/tavrin.h"
#include "tavrin/canvas.h"

struct RecordedCall {
    std::string name;   // the slot name, e.g. "ap_UpdateVFS" or "MessageBox"
    std::string args;   // the arguments as text, e.g. "0 0 511 511"
};

struct MessageBoxCall {
    std::string text;
    std::string caption;
    uint32_t style;
    int32_t answer;
};

class TestHost {
public:
    TestHost();
    ~TestHost();
    static TestHost* Current();

    ApCallbackFunctionTableType Table() const;
    TavrinPlatformTable Platform();

    // dl_Initialise with this host's table; answers its result.
    int Start(const char* commandLine = "tavrin.exe");

    void Record(const std::string& name, const std::string& args);
    std::vector<RecordedCall> Calls(const std::string& name) const;
    int Count(const std::string& name) const;
    void ClearCalls();

    // Answers of the next message boxes (TV_IDYES ...); an empty queue answers the default
    // button.
    std::deque<int32_t> messageBoxAnswers;
    std::vector<MessageBoxCall> messageBoxes;
    // Answers of the value entries, in order: the text is parsed by the entry's type; a
    // missing answer is "cancelled" (0).
    std::deque<std::string> entryAnswers;
    // Answers of ap_SelectDataDialog; empty: -1 (cancel).
    std::deque<int16_t> selectAnswers;
    // Keys held down (virtual key codes) as the platform's key state answers them.
    std::set<int> keysDown;
    // Answers of ap_Poll; empty: 0.
    std::deque<int16_t> pollAnswers;
    // Pending Cancel of the progress dialog, answered by the next message pump.
    bool cancelPending = false;
    int progressBar = -1;
    std::string progressText1, progressText2;
    bool progressOpen = false;
    // Colour palette as last set through ap_SetPalette.
    uint16_t palette[3][256] = {};
    std::vector<std::string> debugOutput;

    std::vector<RecordedCall> calls;
};

class LibraryTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    // Fresh directories of this test.
    std::string home;     // $TAVRIN_HOME, with a trailing '/'
    std::string data;     // $TAVRIN_DATA, with a trailing '/'
    std::string Path(const std::string& name) const { return data + name; }
    std::string ReadLog() const;   // the text of the log file, "" when none

    TestHost host;

private:
    std::string savedCwd_;
    std::string root_;
};

// A frame store as a host keeps it: the index buffer, the 24-bit buffer (both 512 by 512,
// bottom-up) and a window canvas of a client size. The destructor closes it when it is open.
class TestFrameStore {
public:
    TestFrameStore() = default;
    ~TestFrameStore();
    TestFrameStore(const TestFrameStore&) = delete;
    TestFrameStore& operator=(const TestFrameStore&) = delete;

    // dl_VFS_open_vfs with both buffers and a new window; answers its result.
    int Open(int16_t number, int clientWidth = 512, int clientHeight = 512);
    void Close();

    // The index layer and the 24-bit layer at frame point (x, y), y from the top.
    uint8_t Index(int x, int y) const;
    uint32_t RGB(int x, int y) const;   // 0x00BBGGRR from the stored blue, green, red bytes
    // A repaint as the host does it: the index layer through the host's palette into the
    // window (frame pixels at window pixels 1:1), then dl_RedrawVFS over the frame.
    void Paint(const TestHost& host);
    // A window pixel as 0x00BBGGRR.
    uint32_t WindowPixel(int x, int y) const;

    std::vector<uint8_t> frame = std::vector<uint8_t>(512 * 512);
    std::vector<uint8_t> rgb = std::vector<uint8_t>(512 * 512 * 3);
    TvCanvas* window = nullptr;
    int16_t number = -1;
    bool open = false;
};

// Reads a whole file; empty when missing.
std::string ReadFileBytes(const std::string& path);
void WriteFileBytes(const std::string& path, const std::string& bytes);
