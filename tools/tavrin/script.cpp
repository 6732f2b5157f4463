#include "script.h"
#include "pick.h"
#include "record_fields.h"
#include "item_info.h"
#include "picture.h"
#include "script_call.h"
#include "session.h"

#include <cstring>
#include <map>
#include <optional>
#include <set>
#include <sstream>

namespace {

// Splits a line into words: whitespace separates, double quotes group (with \" and \\ inside),
// and name=value stays one word.
std::vector<std::string> SplitWords(const std::string& line, bool* quoted)
{
    std::vector<std::string> words;
    size_t i = 0;
    while (i < line.size()) {
        while (i < line.size() && std::isspace(static_cast<unsigned char>(line[i]))) ++i;
        if (i >= line.size() || line[i] == '#') break;
        std::string word;
        bool inQuotes = false, wasQuoted = false;
        for (; i < line.size(); ++i) {
            char c = line[i];
            if (inQuotes) {
                if (c == '\\' && i + 1 < line.size()) word += line[++i];
                else if (c == '"') inQuotes = false;
                else word += c;
            } else if (c == '"') {
                inQuotes = wasQuoted = true;
            } else if (std::isspace(static_cast<unsigned char>(c))) {
                break;
            } else {
                word += c;
            }
        }
        if (inQuotes) throw ScriptError("unterminated quoted text");
        quoted[words.size() < 64 ? words.size() : 63] = wasQuoted;
        words.push_back(word);
    }
    return words;
}

} // namespace

Answer ParseAnswerWord(const std::string& word, bool quoted)
{
    if (!quoted) {
        if (word == "yes") return {Answer::Yes, 0, {}};
        if (word == "no") return {Answer::No, 0, {}};
        if (word == "cancel") return {Answer::Cancel, 0, {}};
        if (word == "ok") return {Answer::Ok, 0, {}};
        try {
            return {Answer::Number, ParseNumber(word), word};
        } catch (const ScriptError&) {
            throw ScriptError("answer must be yes, no, cancel, ok, a number or a quoted text: '" + word + "'");
        }
    }
    return {Answer::Text, 0, word};
}

namespace {

const std::map<std::string, const ScriptEntry*>& EntryIndex()
{
    static const std::map<std::string, const ScriptEntry*> index = [] {
        std::map<std::string, const ScriptEntry*> m;
        for (const ScriptEntry& e : ScriptEntries()) m[e.name] = &e;
        return m;
    }();
    return index;
}

} // namespace

const std::vector<std::string>& ScriptHostCommands()
{
    static const std::vector<std::string> commands = {"answer", "render", "info", "entries", "Error", "Log2Disk",
                                                      "OutputDebugString", "SaveWindow", "VFS_open_vfs",
                                                      "VFS_close_vfs", "VFS_set_current_vfs", "pick", "slider",
                                                      "text", "mesh", "meshinfo", "key"};
    return commands;
}

const ScriptEntry* FindScriptEntry(const std::string& name)
{
    auto found = EntryIndex().find(name);
    return found == EntryIndex().end() ? nullptr : found->second;
}

std::string ScriptResult::Text() const
{
    std::string text = returned ? "= " + value : std::string();
    for (const auto& o : outputs) text += (text.empty() ? "" : "\n") + o;
    return text;
}

// Host commands of a script that are not entry points of the library.
bool RunScriptHostCommand(const std::vector<std::string>& words, const bool* quoted, FILE* out)
{
    if (words.empty()) return false;
    const std::string name = words[0].rfind("dl_", 0) == 0 ? words[0].substr(3) : words[0];
    if (name == "answer") {
        if (words.size() < 2) throw ScriptError("answer needs a value");
        for (size_t i = 1; i < words.size(); ++i) Session().answers.push_back(ParseAnswerWord(words[i], quoted[i]));
        return true;
    }
    if (name == "render") {
        // render FILE: the current frame store; render N FILE: frame store N.
        if (words.size() != 2 && words.size() != 3) throw ScriptError("render takes [STORE] FILE");
        const std::string& file = words.back();
        const bool written = words.size() == 2
                                 ? WriteCurrentPicture(file)
                                 : WriteStorePicture(static_cast<int16_t>(ParseNumber(words[1])), file);
        if (!written) throw ScriptError("could not write '" + file + "'");
        std::fprintf(out, "render: %s\n", file.c_str());
        return true;
    }
    if (name == "pick") {
        if (!CurrentPickMode().active) throw ScriptError("pick: no selection is waiting for points");
        if (words.size() >= 3 && words[1].find(',') == std::string::npos) {
            // pick X Y [move|left|middle|right|shift]: one event at a frame position.
            const std::string button = words.size() > 3 ? words[3] : "left";
            static const std::set<std::string> buttons = {"move", "left", "middle", "right", "shift"};
            if (words.size() > 4 || !buttons.count(button))
                throw ScriptError("pick X Y takes one of move, left, middle, right, shift");
            const int answer = PickEvent(static_cast<int>(ParseNumber(words[1])), static_cast<int>(ParseNumber(words[2])), button);
            std::fprintf(out, "pick: %s\n", answer ? "done" : "going on");
            return true;
        }
        // pick X,Y ...: points in image pixels, each a move and a left click.
        std::vector<std::pair<int, int>> points;
        for (size_t i = 1; i < words.size(); ++i) {
            std::pair<int, int> p;
            if (!ParsePoint(words[i], &p)) throw ScriptError("pick takes points X,Y or X Y [button]: '" + words[i] + "'");
            points.push_back(p);
        }
        if (points.empty()) throw ScriptError("pick needs points");
        std::fprintf(out, "pick: %s\n", PickImagePoints(points) ? "done" : "going on");
        return true;
    }
    if (name == "slider") {
        // slider ID STATE V1 [V2 [V3]]: a move of the host's slider of that id.
        if (words.size() < 4 || words.size() > 6) throw ScriptError("slider takes ID STATE V1 [V2 [V3]]");
        const auto id = static_cast<int16_t>(ParseNumber(words[1]));
        const auto state = static_cast<int16_t>(ParseNumber(words[2]));
        float v[3] = {};
        for (size_t i = 3; i < words.size(); ++i) v[i - 3] = static_cast<float>(ParseNumber(words[i]));
        int answer = 0;
        if (words.size() == 4) answer = dl_Horz_Scroll_Bar1_Callback(id, state, v[0]);
        else if (words.size() == 5) answer = dl_Horz_Scroll_Bar2_Callback(id, state, v[0], v[1]);
        else answer = dl_Horz_Scroll_Bar3_Callback(id, state, v[0], v[1], v[2]);
        std::fprintf(out, "slider = %d\n", answer);
        return true;
    }
    if (name == "mesh") {
        // mesh PURPOSE X0,Y0 X1,Y1 X2,Y2 [cancel]: the mesh tool finished with these corners.
        if (words.size() != 5 && !(words.size() == 6 && words[5] == "cancel"))
            throw ScriptError("mesh takes PURPOSE X0,Y0 X1,Y1 X2,Y2 [cancel]");
        std::vector<std::pair<int, int>> points;
        for (size_t i = 2; i < 5; ++i) {
            std::pair<int, int> p;
            if (!ParsePoint(words[i], &p)) throw ScriptError("mesh takes points X,Y: '" + words[i] + "'");
            points.push_back(p);
        }
        RunMeshTool(static_cast<int>(ParseNumber(words[1])), points, words.size() == 6);
        std::fprintf(out, "mesh: %s\n", words.size() == 6 ? "cancelled" : "finished");
        return true;
    }
    if (name == "meshinfo") {
        // meshinfo FIELD=VALUE ...: a report of the mesh on the current frame store, printed
        // as the library corrected it.
        MeshInfoType info{};
        ScriptWords fields;
        for (size_t i = 1; i < words.size(); ++i) {
            const size_t eq = words[i].find('=');
            if (eq == std::string::npos || eq == 0) throw ScriptError("meshinfo takes FIELD=VALUE words: '" + words[i] + "'");
            fields.fields.emplace_back(words[i].substr(0, eq), words[i].substr(eq + 1));
        }
        ApplyFields(&info, sizeof info, FieldsOf<MeshInfoType>(), fields);
        dl_ApMeshInfo(&info, Session().currentFrameStore);
        std::fprintf(out, "meshinfo %s\n", RecordText(&info, sizeof info, FieldsOf<MeshInfoType>()).c_str());
        return true;
    }
    if (name == "key") {
        // key esc: Escape is held down during the next line's command.
        if (words.size() != 2 || words[1] != "esc") throw ScriptError("key takes esc");
        CurrentPickMode().escapeHeld = true;
        return true;
    }
    if (name == "info") {
        PrintItemInfo(out, words.size() > 1 && words[1] == "--json");
        return true;
    }
    if (name == "text") {
        // The parameter text panel as it stands, one line each.
        const auto& lines = Session().paramLines;
        std::fprintf(out, "text: %zu lines\n", lines.size());
        for (const std::string& line : lines) std::fprintf(out, "%s\n", line.c_str());
        return true;
    }
    if (name == "entries") {
        // Every name a script line can start with: the library's entry points, then the
        // host's own commands.
        for (const ScriptEntry& e : ScriptEntries()) std::fprintf(out, "%s\n", e.name);
        for (const std::string& c : ScriptHostCommands()) std::fprintf(out, "%s\n", c.c_str());
        return true;
    }
    if (name == "Error") {
        if (words.size() < 2 || words.size() > 3) throw ScriptError("Error needs a number and may take one text");
        auto number = static_cast<uint32_t>(ParseNumber(words[1]));
        if (words.size() == 3) dl_Error(number, words[2].c_str());
        else dl_Error(number);
        return true;
    }
    if (name == "Log2Disk" || name == "OutputDebugString") {
        if (words.size() != 2) throw ScriptError(name + " needs one text");
        if (name == "Log2Disk") dl_Log2Disk("%s", words[1].c_str());
        else dl_OutputDebugString("%s", words[1].c_str());
        return true;
    }
    if (name == "SaveWindow") {
        // The window's own bitmap is the host's to write (render); the library saves the
        // current image with its 3-D display mode.
        if (words.size() != 2) throw ScriptError("SaveWindow needs one file name");
        std::fprintf(out, "SaveWindow = %d\n", dl_SaveWindow(words[1].c_str(), nullptr, nullptr, 0, TV_SAVE_WINDOW_IMAGE));
        return true;
    }
    if (name == "VFS_open_vfs") {
        if (words.size() != 2) throw ScriptError("VFS_open_vfs needs a frame store number");
        bool opened = OpenHostFrameStore(static_cast<int16_t>(ParseNumber(words[1])));
        std::fprintf(out, "VFS_open_vfs = %d\n", opened ? 0 : 1);
        return true;
    }
    if (name == "VFS_close_vfs") {
        if (words.size() != 2) throw ScriptError("VFS_close_vfs needs a frame store number");
        CloseHostFrameStore(static_cast<int16_t>(ParseNumber(words[1])));
        return true;
    }
    if (name == "VFS_set_current_vfs") {
        if (words.size() != 2) throw ScriptError("VFS_set_current_vfs needs a frame store number");
        auto number = static_cast<int16_t>(ParseNumber(words[1]));
        dl_VFS_set_current_vfs(number);
        Session().currentFrameStore = number;
        return true;
    }
    return false;
}

namespace {

// Every "$ret" of a word becomes the word the last entry point answered.
void SubstituteReturn(std::string& word, const std::optional<std::string>& lastReturn)
{
    static const std::string kReturn = "$ret";
    for (size_t at = word.find(kReturn); at != std::string::npos; at = word.find(kReturn, at)) {
        if (!lastReturn) throw ScriptError("$ret: no entry point has answered a value yet");
        word.replace(at, kReturn.size(), *lastReturn);
        at += lastReturn->size();
    }
}

} // namespace

int RunScript(const std::string& text, const std::string& sourceName, FILE* out)
{
    std::istringstream lines(text);
    std::string line;
    int number = 0;
    std::optional<std::string> lastReturn;   // the word the last entry point answered, for $ret
    while (std::getline(lines, line)) {
        ++number;
        if (!line.empty() && line.back() == '\r') line.pop_back();
        try {
            bool quoted[64] = {};
            std::vector<std::string> words = SplitWords(line, quoted);
            if (words.empty()) continue;
            for (size_t i = 1; i < words.size() && i < 64; ++i)
                if (!quoted[i]) SubstituteReturn(words[i], lastReturn);
            // "dl_" may lead an entry point's name.
            const std::string name = words[0].rfind("dl_", 0) == 0 ? words[0].substr(3) : words[0];
            // A key held with "key" is let go after the next line.
            const bool keyLine = name == "key";
            struct KeyRelease {
                bool keep;
                ~KeyRelease()
                {
                    if (!keep) CurrentPickMode().escapeHeld = false;
                }
            } release{keyLine};
            if (RunScriptHostCommand(words, quoted, out)) continue;
            const ScriptEntry* found = FindScriptEntry(name);
            if (!found) throw ScriptError("unknown command '" + words[0] + "'");
            ScriptWords args;
            for (size_t i = 1; i < words.size(); ++i) {
                size_t eq = words[i].find('=');
                if (!quoted[i] && eq != std::string::npos && eq > 0)
                    args.fields.emplace_back(words[i].substr(0, eq), words[i].substr(eq + 1));
                else
                    args.positional.push_back(words[i]);
            }
            const ScriptResult answered = found->call(args);
            if (answered.returned) lastReturn = answered.value.substr(0, answered.value.find_first_of(" \n"));
            const std::string result = answered.Text();
            if (!result.empty()) std::fprintf(out, "%s %s\n", name.c_str(), result.c_str());
        } catch (const ScriptError& e) {
            std::fprintf(stderr, "tavrin: %s:%d: %s\n", sourceName.c_str(), number, e.what());
            return 2;
        }
    }
    return 0;
}
