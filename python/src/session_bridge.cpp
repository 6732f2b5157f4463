// Start and end of the package's session, the log lines and numbered errors it collects, and the
// policy that answers the library's questions.
#include "bridge.h"
#include "host/errors.h"
#include "host/log.h"
#include "script.h"
#include "script_values.h"
#include "session.h"

#include <pybind11/stl.h>

#include <deque>

namespace {

constexpr size_t kLogLinesKept = 10000;

std::deque<std::string> g_log;
std::vector<ReportedError> g_errors;
// None or a callable; never destroyed, so that no Python object is released after the
// interpreter has gone.
py::object& Policy()
{
    static auto* policy = new py::object();
    return *policy;
}

std::string g_partLine;   // the time stamp written before its text

// The log's texts joined into lines.
void ObserveLog(const char* text, void*)
{
    g_partLine += text;
    if (g_partLine.empty() || g_partLine.back() != '\n') return;
    while (!g_partLine.empty() && (g_partLine.back() == '\n' || g_partLine.back() == '\r')) g_partLine.pop_back();
    if (g_log.size() == kLogLinesKept) g_log.pop_front();
    g_log.push_back(std::move(g_partLine));
    g_partLine.clear();
}

void ObserveError(unsigned number, const char* text, void*)
{
    // Texts padded to a column width ("Program error - %-70s") lose their blanks.
    std::string message = text;
    while (!message.empty() && message.back() == ' ') message.pop_back();
    g_errors.push_back({number, std::move(message)});
}

const char* ButtonName(int32_t id)
{
    switch (id) {
    case TV_IDOK: return "ok";
    case TV_IDCANCEL: return "cancel";
    case TV_IDYES: return "yes";
    case TV_IDNO: return "no";
    default: return "?";
    }
}

py::tuple Buttons(uint32_t style, int32_t defaultButton)
{
    switch (style & TV_MB_TYPEMASK) {
    case TV_MB_OK: return py::make_tuple("ok");
    case TV_MB_OKCANCEL: return py::make_tuple("ok", "cancel");
    case TV_MB_YESNO: return py::make_tuple("yes", "no");
    case TV_MB_YESNOCANCEL: return py::make_tuple("yes", "no", "cancel");
    default: return py::make_tuple(ButtonName(defaultButton));
    }
}

// A box with one button is shown to the log; a question goes to the policy, whose answer
// None means the default button. A policy that raises is reported as unraisable and the
// default button taken: the library cannot be unwound in the middle of a command.
int32_t Ask(const char* text, const char* caption, uint32_t style, int32_t defaultButton)
{
    if ((style & TV_MB_TYPEMASK) == TV_MB_OK) {
        ObserveLog((std::string(caption) + ": " + text + "\n").c_str(), nullptr);
        return TV_IDOK;
    }
    if (!Policy() || Policy().is_none()) return defaultButton;
    try {
        py::object answer = Policy()(py::str(text), py::str(caption), Buttons(style, defaultButton),
                                     py::str(ButtonName(defaultButton)));
        if (answer.is_none()) return defaultButton;
        return ButtonForAnswer(AnswerFromPython(answer), style);
    } catch (py::error_already_set& e) {
        e.discard_as_unraisable("tavrin question policy");
    } catch (const std::exception& e) {
        PyErr_SetString(PyExc_ValueError, e.what());
        PyErr_WriteUnraisable(Policy().ptr());
    }
    return defaultButton;
}

} // namespace

Answer AnswerFromPython(const py::handle& value)
{
    if (py::isinstance<py::bool_>(value)) return value.cast<bool>() ? Answer{Answer::Yes, 0, {}} : Answer{Answer::No, 0, {}};
    if (py::isinstance<py::int_>(value) || py::isinstance<py::float_>(value)) {
        const double number = value.cast<double>();
        return {Answer::Number, number, py::str(value).cast<std::string>()};
    }
    if (py::isinstance<py::str>(value)) {
        const std::string word = value.cast<std::string>();
        for (const char* keyword : {"yes", "no", "cancel", "ok"})
            if (word == keyword) return ParseAnswerWord(word, false);
        // Any other text is a text answer (of a file dialog or a text entry).
        return ParseAnswerWord(word, true);
    }
    throw BadArgument("an answer is yes, no, ok, cancel, a number or a text, not " +
                      py::repr(value).cast<std::string>());
}

bool StartPackageSession(const std::string& user)
{
    HostOptions options;
    options.user = user;
    if (!StartSession(options)) return false;
    // The package keeps the log and the errors itself instead of printing them.
    SetLogObserver(ObserveLog, nullptr);
    SetErrorObserver(ObserveError, nullptr);
    Session().ask = Ask;
    return true;
}

void EndPackageSession()
{
    EndSession();
    SetErrorObserver(nullptr, nullptr);
    Session().ask = nullptr;
    Policy() = py::object();
}

std::vector<ReportedError> TakeReportedErrors()
{
    std::vector<ReportedError> taken;
    taken.swap(g_errors);
    return taken;
}

std::vector<std::string> LogLines() { return {g_log.begin(), g_log.end()}; }

void ClearLogLines() { g_log.clear(); }

void SetQuestionPolicy(py::object policy) { Policy() = std::move(policy); }

void QueueAnswers(const std::vector<py::object>& answers)
{
    std::vector<Answer> parsed;
    for (const auto& a : answers) parsed.push_back(AnswerFromPython(a));
    for (auto& a : parsed) Session().answers.push_back(std::move(a));
}

void ClearAnswers() { Session().answers.clear(); }
