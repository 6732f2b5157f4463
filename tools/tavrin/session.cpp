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
        std::fprintf(stderr, "tavrin: %s", text + 8);
        size_t n = std::strlen(text);
        if (n == 0 || text[n - 1] != '\n') std::fputc('\n', stderr);
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
    if (dl_Initialise(&table, &record) != 0) return false;
    g_session.started = true;
    dl_UserID((options.user.empty() ? SystemUser() : options.user).c_str());
    dl_RetriveConfigurationFromDisk();
    return true;
}

void EndSession()
{
    if (!g_session.started) return;
    g_session.answers.clear();
    g_session.answers.push_back(Answer{Answer::Ok, 0, {}});
    g_session.answers.push_back(Answer{Answer::No, 0, {}});
    dl_Finish();
    g_session.started = false;
    SetLogObserver(nullptr, nullptr);
}
