// tavrin lut IN OUT (--contrast B,C,G | --threshold LO,HI [--transform] | --equalise | --linearise
// | --op NAME[:K]): one command on the level table of the image of IN, the result saved as OUT
// (.tif, or .png for its picture). The slider dialogues are run as a host runs them: opened,
// then accepted at the given values.
// tavrin histogram IN -o OUT.png|OUT.dat: the level histogram of the image as its plot or as a
// table.
#include "command_line.h"
#include "items.h"
#include "op_words.h"
#include "picture.h"
#include "session.h"


namespace {

constexpr int kContrastSliders = 500;
constexpr int kThresholdSliders = 201;
constexpr int kAccept = 1;

const std::vector<OpChoice>& TableOps()
{
    static const std::vector<OpChoice> ops = {{"invert", 1, false}, {"reverse", 2, false}, {"add", 3, true},
                                              {"and", 4, true},     {"or", 5, true},       {"xor", 6, true},
                                              {"mul", 7, true},     {"div", 8, true}};
    return ops;
}

bool IsIdentity(const ImageHeaderType* image)
{
    for (int i = 0; i < 256; ++i)
        if (image->ImageLUT[i] != i) return false;
    return true;
}

void Queue(Answer answer) { Session().answers.push_back(std::move(answer)); }

int Lut(const Args& args)
{
    CommandLine line =
        ParseCommandLine(args, {"--contrast", "--threshold", "--op"}, {"--equalise", "--linearise", "--transform"}, 2, 2);
    const std::string& out = line.words[1];
    const int given = !line.Value("--contrast").empty() + !line.Value("--threshold").empty() +
                      !line.Value("--op").empty() + line.Has("--equalise") + line.Has("--linearise");
    if (given != 1) throw UsageError("lut needs one of --contrast, --threshold, --equalise, --linearise, --op");
    if (line.Has("--transform") && line.Value("--threshold").empty()) throw UsageError("--transform goes with --threshold");
    if (!IsImageResultPath(out)) throw UsageError("the result goes to a .tif or .png file: '" + out + "'");
    std::vector<double> values;
    if (!line.Value("--contrast").empty()) values = ParseReals(line.Value("--contrast"), 3, "--contrast");
    if (!line.Value("--threshold").empty()) values = ParseReals(line.Value("--threshold"), 2, "--threshold");
    ChosenOp op{};
    if (!line.Value("--op").empty()) op = ChooseOp(line.Value("--op"), TableOps(), "--op");

    const ImageHeaderType* source = OpenImageForCommand("lut", line.words[0]);
    if (!source) return 1;
    if (!line.Value("--contrast").empty()) {
        dl_AdjustLUT();
        dl_Horz_Scroll_Bar3_Callback(kContrastSliders, kAccept, static_cast<float>(values[0]),
                                     static_cast<float>(values[1]), static_cast<float>(values[2]));
    } else if (!line.Value("--threshold").empty()) {
        // A changed table is transformed first, after a notice; then the question on the codes.
        if (!IsIdentity(source)) Queue(Answer{Answer::Ok, 0, {}});
        Queue(Answer{line.Has("--transform") ? Answer::Yes : Answer::No, 0, {}});
        dl_SetWindow();
        dl_Horz_Scroll_Bar2_Callback(kThresholdSliders, kAccept, static_cast<float>(values[0]),
                                     static_cast<float>(values[1]));
    } else if (line.Has("--equalise")) {
        dl_HistEqualise();
    } else if (line.Has("--linearise")) {
        dl_LineariseImageLUT();
    } else {
        // Integer constants are entered as numbers, real ones as text.
        if (op.op >= 3 && op.op <= 6) Queue(Answer{Answer::Number, ParseReals(op.constant, 1, "--op")[0], {}});
        if (op.op >= 7) Queue(Answer{Answer::Text, 0, op.constant});
        dl_MathLUT(static_cast<int16_t>(op.op));
    }
    return WriteImageResult(source, out);
}

bool EndsWith(const std::string& text, const char* tail)
{
    const std::string t(tail);
    return text.size() > t.size() && text.compare(text.size() - t.size(), t.size(), t) == 0;
}

int Histogram(const Args& args)
{
    CommandLine line = ParseCommandLine(args, {"-o"}, {}, 1, 1);
    const std::string out = line.Value("-o");
    if (!EndsWith(out, ".png") && !EndsWith(out, ".dat")) throw UsageError("histogram needs -o OUT.png or -o OUT.dat");
    const ImageHeaderType* source = OpenImageForCommand("histogram", line.words[0]);
    if (!source) return 1;
    dl_DisplayHistogram();
    // The plot item: its picture for .png, its table for .dat.
    return WriteImageResult(source, out);
}

} // namespace

int CommandLut(const Args& args) { return RunCommand("lut", Lut, args); }
int CommandHistogram(const Args& args) { return RunCommand("histogram", Histogram, args); }
