// The state of one run of the command-line host: its options, the answers waiting for the
// library's prompts, the frame stores it owns, and whether a command reported an error.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "tavrin/tavrin.h"

struct Answer {
    enum Kind { Yes, No, Cancel, Ok, Number, Text } kind;
    double number = 0;
    std::string text;
};

struct HostOptions {
    bool verbose = false;          // -v: print log lines as they are written
    int defaultAnswer = 0;         // TV_IDYES / TV_IDNO from --yes / --no, 0: each prompt's default
    std::string user;              // --user NAME, default the system login name
    bool trueRgb = false;          // --rgb: frame stores keep a 24-bit layer
    bool strict = false;           // --strict: any error the library reports fails the run
};

struct HostFrameStore {
    int16_t number = 0;
    std::vector<uint8_t> index;    // 512 x 512 colour indices, bottom-up rows
    std::vector<uint8_t> rgb;      // 512 x 512 x 3, blue, green, red
    TvCanvas* window = nullptr;    // the window: a canvas of its client size
};

constexpr int16_t kMainFrameStore = 1;

struct HostSession {
    HostOptions options;
    std::deque<Answer> answers;    // queued by `answer` lines of a script
    std::vector<HostFrameStore> frameStores;
    int16_t currentFrameStore = 0;
    uint16_t palette[3][256] = {};
    bool errorReported = false;    // a command reported an error: exit status 1
    // The file a command works on: the library's texts about it are warnings named by it, and
    // the command's own result decides the exit status (unless --strict).
    std::string workFile;
    bool started = false;
    std::vector<std::string> paramLines;   // the parameter text panel
    // A host that asks its user itself (the Python package): it answers each message box the
    // queue did not, given the box's default button, and is shown the boxes of one button.
    // Unset: --yes / --no, or the default button printed on standard error.
    std::function<int32_t(const char* text, const char* caption, uint32_t style, int32_t defaultButton)> ask;
};

HostSession& Session();

// Registers the callback and platform tables, starts the library, sets the user, opens the
// frame stores. Answers false when the library refused to start.
bool StartSession(const HostOptions& options);
// Ends the run with dl_Finish, answering its questions: exit, do not save settings.
void EndSession();

// Opens a frame store of this host (buffers and a window of the given client size) in the
// library, and makes it current; false when the library refused it.
bool OpenHostFrameStore(int16_t number, int clientWidth = 512, int clientHeight = 512);
void CloseHostFrameStore(int16_t number);
HostFrameStore* FindHostFrameStore(int16_t number);

// The next queued answer, if any.
bool TakeAnswer(Answer* answer);
// The button of a message box of that style that the answer names (yes is OK in a box of OK
// and Cancel, and so on; a number is the button's own id).
int32_t ButtonForAnswer(const Answer& answer, uint32_t style);

// The callback table of this host.
ApCallbackFunctionTableType HostCallbackTable();
TavrinPlatformTable HostPlatformTable();
