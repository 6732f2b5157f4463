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
#include <string>
#include <vector>

#include "tavrin/tavrin.h"

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

// Reads a whole file; empty when missing.
std::string ReadFileBytes(const std::string& path);
void WriteFileBytes(const std::string& path, const std::string& bytes);
