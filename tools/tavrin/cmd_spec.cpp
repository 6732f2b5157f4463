// tavrin spec IN OUT (--smooth N | --median N | --diff MODE[,N] | --math-x OP[,C] | --math-y
// OP[,C] | --dc | --split | --with B --op N | --zoom X1,X2[,Y1,Y2]): one command on the spectrum
// of IN, the result saved as OUT (.spc, .dat, or .png for its plot).
// tavrin spec IN OUT.txt --table [--delimiter D] [--no-header]: the text table of the spectrum.
#include "command_line.h"
#include "items.h"
#include "session.h"

#include "files/spectrum_files.h"
#include "spectro/spectrum_tools.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <vector>

namespace {

// The Y range of a zoom box given without one.
constexpr double kWholeRange = 1e30;

// "A[,B]": a whole number and an optional text behind the comma.
std::pair<int, std::string> NumberAndRest(const std::string& text, const char* option, int lo, int hi)
{
    const size_t comma = text.find(',');
    const std::string head = text.substr(0, comma);
    char* end = nullptr;
    const long n = std::strtol(head.c_str(), &end, 10);
    if (head.empty() || *end || n < lo || n > hi)
        throw UsageError(std::string(option) + " takes a number from " + std::to_string(lo) + " to " +
                         std::to_string(hi) + ": '" + text + "'");
    return {static_cast<int>(n), comma == std::string::npos ? std::string() : text.substr(comma + 1)};
}

int WholeNumber(const std::string& text, const char* option, int lo, int hi)
{
    const auto [n, rest] = NumberAndRest(text, option, lo, hi);
    if (!rest.empty()) throw UsageError(std::string(option) + " takes one number: '" + text + "'");
    return n;
}

// The position of `item` among the spectra of the data list, counted from the head, as the
// library's item selection counts them.
int SpectrumIndex(const ImageHeaderType* item)
{
    const ImageHeaderType* head = item;
    while (head->Prev) head = head->Prev;
    int index = 0;
    for (const ImageHeaderType* p = head; p && p != item; p = p->Next) index += p->ImType1 != 1;
    return index;
}

// Arithmetic on X or Y: the constant of operations 1 to 3 is the answer to the prompt.
void SpecMath(void (*entry)(uint16_t), const std::string& text, const char* option)
{
    const auto [op, constant] = NumberAndRest(text, option, 1, 8);
    if (op <= 3) {
        if (constant.empty()) throw UsageError(std::string(option) + " " + std::to_string(op) + " needs a constant: OP,C");
        Session().answers.push_back(Answer{Answer::Text, 0, constant});
    }
    entry(static_cast<uint16_t>(op));
}

// "X1,X2[,Y1,Y2]": the zoom box; without Y the whole range.
std::vector<double> ZoomBox(const std::string& text)
{
    std::vector<double> v;
    std::stringstream in(text);
    std::string part;
    while (std::getline(in, part, ',')) {
        char* end = nullptr;
        const double d = std::strtod(part.c_str(), &end);
        if (part.empty() || *end || !std::isfinite(d)) throw UsageError("--zoom takes X1,X2[,Y1,Y2]: '" + text + "'");
        v.push_back(d);
    }
    if (v.size() == 2) v.insert(v.end(), {-kWholeRange, kWholeRange});
    if (v.size() != 4) throw UsageError("--zoom takes X1,X2[,Y1,Y2]: '" + text + "'");
    return v;
}

// The text table of the spectrum.
int Table(const CommandLine& line)
{
    const int delimiter = line.Value("--delimiter").empty() ? 2 : WholeNumber(line.Value("--delimiter"), "--delimiter", 0, 2);
    const ImageHeaderType* source = OpenSpectrumForCommand("spec", line.words[0]);
    if (!source) return 1;
    if (WriteSpectrumText(source, line.words[1].c_str(), delimiter, line.Has("--no-header") ? 0 : 1) != 0) return 1;
    std::printf("%s\n", line.words[1].c_str());
    return 0;
}

int Spec(const Args& args)
{
    const std::set<std::string> valued = {"--smooth", "--median", "--diff", "--math-x", "--math-y", "--with", "--op",
                                          "--zoom", "--delimiter"};
    CommandLine line = ParseCommandLine(args, valued, {"--dc", "--split", "--table", "--no-header"}, 2, 2);
    const std::string& out = line.words[1];
    int given = line.Has("--dc") + line.Has("--split") + line.Has("--table") + !line.Value("--with").empty();
    for (const char* o : {"--smooth", "--median", "--diff", "--math-x", "--math-y", "--zoom"}) given += !line.Value(o).empty();
    if (given != 1)
        throw UsageError("spec needs one of --smooth, --median, --diff, --math-x, --math-y, --dc, --split, --with, --zoom, "
                         "--table");
    if (line.Has("--table")) return Table(line);
    if (line.Value("--with").empty() != line.Value("--op").empty()) throw UsageError("--with B and --op N go together");
    const wint_SaveFileType type = SaveTypeFor(out, false);
    const bool png = IsImageResultPath(out) && type != TV_SAVE_TIFF_16;
    if (!png && type != TV_SAVE_SPECTRUM && type != TV_SAVE_TABLE)
        throw UsageError("the result goes to a .spc, .dat or .png file: '" + out + "'");

    const ImageHeaderType* source = OpenSpectrumForCommand("spec", line.words[0]);
    if (!source) return 1;
    if (!line.Value("--smooth").empty() || !line.Value("--median").empty()) {
        const bool median = !line.Value("--median").empty();
        wint_SmoothSpecParamType p{median ? 2u : 1u,
                                   static_cast<int16_t>(WholeNumber(line.Value(median ? "--median" : "--smooth"),
                                                                    median ? "--median" : "--smooth", 1, 25))};
        dl_SetSmoothSpecParam(&p);
        dl_SmoothSpec();
    } else if (!line.Value("--diff").empty()) {
        const auto [mode, rest] = NumberAndRest(line.Value("--diff"), "--diff", 1, 4);
        wint_DiffSpecParamType p{static_cast<uint32_t>(mode),
                                 static_cast<int16_t>(rest.empty() ? 5 : WholeNumber(rest, "--diff", 5, 25))};
        dl_SetDiffSpecParam(&p);
        dl_DiffSpec();
    } else if (!line.Value("--math-x").empty()) {
        SpecMath(dl_SpecMathX, line.Value("--math-x"), "--math-x");
    } else if (!line.Value("--math-y").empty()) {
        SpecMath(dl_SpecMathY, line.Value("--math-y"), "--math-y");
    } else if (line.Has("--dc")) {
        dl_RemoveDCBias();
    } else if (line.Has("--split")) {
        dl_SeparateRampDirections();
    } else if (!line.Value("--zoom").empty()) {
        const std::vector<double> box = ZoomBox(line.Value("--zoom"));
        if (!ZoomSpectrum(const_cast<ImageHeaderType*>(source), box[0], box[1], box[2], box[3])) return 1;
    } else {
        const int op = WholeNumber(line.Value("--op"), "--op", 1, 6);
        const ImageHeaderType* second = OpenSpectrumForCommand("spec", line.Value("--with"));
        if (!second) return 1;
        dl_SetCurrentImagePtr(const_cast<ImageHeaderType*>(source));
        // The new item goes directly behind the source, before the second spectrum.
        Session().answers.push_back(Answer{Answer::Number, static_cast<double>(SpectrumIndex(second) + 1), {}});
        dl_DoubleSpecMath(static_cast<uint16_t>(op));
    }
    return WriteImageResult(source, out);
}

} // namespace

int CommandSpec(const Args& args) { return RunCommand("spec", Spec, args); }
