// tavrin math IN OUT --op NAME[:C]: arithmetic on the codes of the image of IN.
// tavrin math2 A B OUT --op NAME: the images of A and B (same size and source) point by point.
// tavrin normalise IN OUT [--sd R]: the code range stretched to full scale, or R s.d. about the
// mean stretched over the levels. Results go to OUT (.tif, or .png for the picture).
#include "command_line.h"
#include "items.h"
#include "op_words.h"
#include "session.h"

#include <cstdio>

namespace {

const std::vector<OpChoice>& SingleOps()
{
    static const std::vector<OpChoice> ops = {{"invert", 1, false}, {"mul", 2, true}, {"div", 3, true},
                                              {"and", 4, true},     {"or", 5, true},  {"xor", 6, true},
                                              {"add", 7, true},     {"sub", 8, true}};
    return ops;
}

const std::vector<OpChoice>& DoubleOps()
{
    static const std::vector<OpChoice> ops = {{"add", 1, false}, {"sub", 2, false}, {"diff", 3, false},
                                              {"mul", 4, false}, {"div", 5, false}, {"and", 6, false},
                                              {"or", 7, false},  {"xor", 8, false}, {"min", 9, false},
                                              {"max", 10, false}};
    return ops;
}

void CheckResultPath(const std::string& out)
{
    if (!IsImageResultPath(out)) throw UsageError("the result goes to a .tif or .png file: '" + out + "'");
}

int Math(const Args& args)
{
    CommandLine line = ParseCommandLine(args, {"--op"}, {}, 2, 2);
    CheckResultPath(line.words[1]);
    if (line.Value("--op").empty()) throw UsageError("math needs --op");
    const ChosenOp op = ChooseOp(line.Value("--op"), SingleOps(), "--op");
    const ImageHeaderType* source = OpenImageForCommand("math", line.words[0]);
    if (!source) return 1;
    // Multiply and divide take a real constant as text, the others a whole number.
    if (op.op == 2 || op.op == 3) Session().answers.push_back(Answer{Answer::Text, 0, op.constant});
    if (op.op > 3) Session().answers.push_back(Answer{Answer::Number, ParseReals(op.constant, 1, "--op")[0], {}});
    dl_SingleImageMath(static_cast<int16_t>(op.op));
    return WriteImageResult(source, line.words[1]);
}

int Math2(const Args& args)
{
    CommandLine line = ParseCommandLine(args, {"--op"}, {}, 3, 3);
    CheckResultPath(line.words[2]);
    if (line.Value("--op").empty()) throw UsageError("math2 needs --op");
    const ChosenOp op = ChooseOp(line.Value("--op"), DoubleOps(), "--op");
    // B first, so that A is current and B the head of the list: the first image offered.
    const ImageHeaderType* second = OpenImageForCommand("math2", line.words[1]);
    if (!second) return 1;
    const ImageHeaderType* source = OpenImageForCommand("math2", line.words[0]);
    if (!source) return 1;
    if (second->nx != source->nx || second->ny != source->ny || second->DataSource != source->DataSource) {
        std::fprintf(stderr, "tavrin math2: '%s' and '%s' differ in size or data source\n", line.words[0].c_str(),
                     line.words[1].c_str());
        return 1;
    }
    Session().answers.push_back(Answer{Answer::Number, 0, {}});
    dl_DoubleImageMath(static_cast<int16_t>(op.op));
    return WriteImageResult(source, line.words[2]);
}

int Normalise(const Args& args)
{
    CommandLine line = ParseCommandLine(args, {"--sd"}, {}, 2, 2);
    CheckResultPath(line.words[1]);
    const std::string sd = line.Value("--sd");
    if (!sd.empty()) ParseReals(sd, 1, "--sd");
    const ImageHeaderType* source = OpenImageForCommand("normalise", line.words[0]);
    if (!source) return 1;
    if (sd.empty()) {
        dl_NormaliseImage();
    } else {
        Session().answers.push_back(Answer{Answer::Text, 0, sd});
        dl_NormaliseSD();
    }
    return WriteImageResult(source, line.words[1]);
}

} // namespace

int CommandMath(const Args& args) { return RunCommand("math", Math, args); }
int CommandMath2(const Args& args) { return RunCommand("math2", Math2, args); }
int CommandNormalise(const Args& args) { return RunCommand("normalise", Normalise, args); }
