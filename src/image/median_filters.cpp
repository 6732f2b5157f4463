#include "image/median_filters.h"
#include "host/wait.h"
#include "image/filter_frame.h"
#include "image/filter_rows.h"
#include "image/image_frame.h"

namespace {

struct MedianCommand {
    int points;
    const char* wait;
    const char* log;
    int code;
};

constexpr MedianCommand kMedian5 = {5, "Please wait while applying 5 point median filter",
                                    "Apply 5 point median filter to '%s'\n", 20};
constexpr MedianCommand kMedian9 = {9, "Please wait while applying 9 point median filter",
                                    "Apply 9 point median filter to '%s'\n", 21};

void RunMedian(const MedianCommand& command)
{
    ImageHeaderType* source = FilterSource();
    if (!source) return;
    ShowWait("%s", command.wait);
    const int points = command.points;
    ImageHeaderType* result = FilterResult(source, false, [points](const uint16_t* in, uint16_t* out, int nx, int ny) {
        MedianImage(in, out, nx, ny, points);
    });
    if (!result) return;
    FinishFilterCommand(result, CommandLogText(command.log, result->Title), command.code);
}

} // namespace

void ImageMedianFilter5() { RunMedian(kMedian5); }
void ImageMedianFilter9() { RunMedian(kMedian9); }
