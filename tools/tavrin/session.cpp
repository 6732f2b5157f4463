#include "session.h"
#include "host/log.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <pwd.h>
#include <unistd.h>

namespace {

HostSession g_session;

// Log lines reach the host here: error lines go to standard error and mark the run as
// failed; with -v every line is printed.
void ObserveLog(const char* text, void*)
{
    if (std::strncmp(text, "ERROR : ", 8) == 0) {
        g_session.errorReported = true;
        // Texts padded to a column width ("Program error - %-70s") lose their blanks here.
        const char* message = text + 8;
        size_t n = std::strlen(message);
        while (n > 0 && (message[n - 1] == '\n' || message[n - 1] == ' ')) --n;
        if (g_session.workFile.empty())
            std::fprintf(stderr, "tavrin: %.*s\n", static_cast<int>(n), message);
        else
            std::fprintf(stderr, "tavrin: %s: %.*s\n", g_session.workFile.c_str(), static_cast<int>(n), message);
    }
    if (g_session.options.verbose) std::fputs(text, stdout);
}

std::string SystemUser()
{
    if (const char* u = std::getenv("USER"); u && *u) return u;
    if (const passwd* pw = getpwuid(getuid()); pw && pw->pw_name) return pw->pw_name;
    return "Admin";
}

} // namespace

HostSession& Session() { return g_session; }

bool TakeAnswer(Answer* answer)
{
    if (g_session.answers.empty()) return false;
    *answer = g_session.answers.front();
    g_session.answers.pop_front();
    return true;
}

bool StartSession(const HostOptions& options)
{
    g_session.options = options;
    SetLogObserver(ObserveLog, nullptr);
    TavrinPlatformTable platform = HostPlatformTable();
    dl_SetPlatformTable(&platform);
    dl_InitLogFileName();
    ApCallbackFunctionTableType table = HostCallbackTable();
    wint_DLLInitialiseType record{};
    std::snprintf(record.CmdLine, sizeof record.CmdLine, "tavrin");
    record.HostData1 = options.trueRgb ? 1u : 0u;
    if (dl_Initialise(&table, &record) != 0) return false;
    g_session.started = true;
    dl_UserID((options.user.empty() ? SystemUser() : options.user).c_str());
    dl_RetriveConfigurationFromDisk();
    return OpenHostFrameStore(kMainFrameStore);
}

HostFrameStore* FindHostFrameStore(int16_t number)
{
    for (auto& fs : g_session.frameStores)
        if (fs.number == number) return &fs;
    return nullptr;
}

bool OpenHostFrameStore(int16_t number, int clientWidth, int clientHeight)
{
    if (FindHostFrameStore(number)) return false;
    HostFrameStore fs;
    fs.number = number;
    fs.index.assign(512 * 512, 0);
    fs.rgb.assign(512 * 512 * 3, 0);
    fs.window = tv_canvas_create(clientWidth, clientHeight);
    if (!fs.window) return false;
    g_session.frameStores.push_back(std::move(fs));
    HostFrameStore& added = g_session.frameStores.back();
    uint8_t* buffers[2] = {added.index.data(), added.rgb.data()};
    if (dl_VFS_open_vfs(buffers, number, added.window) != 0) {
        tv_canvas_destroy(added.window);
        g_session.frameStores.pop_back();
        return false;
    }
    dl_VFS_set_current_vfs(number);
    g_session.currentFrameStore = number;
    return true;
}

void CloseHostFrameStore(int16_t number)
{
    auto& stores = g_session.frameStores;
    for (auto it = stores.begin(); it != stores.end(); ++it) {
        if (it->number != number) continue;
        dl_VFS_close_vfs(number);
        tv_canvas_destroy(it->window);
        stores.erase(it);
        return;
    }
}

void EndSession()
{
    if (!g_session.started) return;
    g_session.answers.clear();
    g_session.answers.push_back(Answer{Answer::Ok, 0, {}});
    g_session.answers.push_back(Answer{Answer::No, 0, {}});
    dl_Finish();
    while (!g_session.frameStores.empty()) CloseHostFrameStore(g_session.frameStores.back().number);
    g_session.started = false;
    SetLogObserver(nullptr, nullptr);
}
