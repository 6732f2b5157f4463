// The frame of every image command: check the current item, make the result item behind it,
// fill the result row by row while the rows are drawn, note the command in the result's history,
// log it and make the result current. The source stays in the list untouched, so that the
// previous-data command steps back to it.
//
// A command supplies what differs: its wait text, history code and log line, the size of its
// rows on the screen, a header change, and the rows themselves. The steps, in order:
//   1. no current image                33536 "No images in memory"
//      a side not below the limit      33537 "Image too large for this function" (padding)
//   2. an FFT image (when refused)     33543
//   3. an SPS Mapping image (refused)  33555
//   4. the result item (CopyNewHEader, or a resized copy); on failure stop, reported there
//   5. the wait text                   6. the row display begun
//   7. the rows, each shown as soon as it is computed
//   8. the result current, its history code, the row display finished, the region registered
//      as the result's, the log line, the parameter text
//   9. the wait text ended
#pragma once

#include <cstdint>

#include "tavrin/image_header.h"

// How the result item is made.
enum class ResultShape {
    SameSize,   // a copy of the header with zeroed pixels of the source's size, stamped now
    Resized,    // a copy of the header with pixels of ImageCommand::nx by ny, the stamp kept
};

struct ImageCommand {
    const char* wait = nullptr;       // the wait text; null: none is shown
    int code = 0;                     // the history code added to the result
    bool refuseSpecial = true;        // FFT and SPS Mapping images are refused
    int below = 0;                    // both sides must be below this, else 33537 (0: any size)
    ResultShape shape = ResultShape::SameSize;
    int nx = 0, ny = 0;               // size of a Resized result
    int rowsWidth = 0, rowsHeight = 0;   // size the row display begins with; 0: the result's
    bool registerTwice = false;       // the region is registered again instead of the text
};

// Shows row `line` of the result as it stands now, `width` codes (0: the result's nx). Rows go
// to the screen in the order the command computes them.
void ShowCommandRow(const ImageHeaderType* result, int line, int width = 0);

// Steps 1 to 3: the current image when the command can work on it, else null after the report.
ImageHeaderType* CheckImageCommand(const ImageCommand& command);
// Step 4 for a checked source: the result item, or null (reported, list unchanged).
ImageHeaderType* MakeCommandResult(const ImageCommand& command, ImageHeaderType* source);
// Steps 5 and 6.
void BeginCommandRows(const ImageCommand& command, const ImageHeaderType* source, const ImageHeaderType* result);
// Steps 8 and 9 with the log text already formatted (null: the command logged earlier).
void FinishImageCommand(const ImageCommand& command, ImageHeaderType* result, const char* logText);
// The picture must be on the screen before the user points into it: it is shown unless it is
// already there as a plain image.
void ShowImageForPointing(ImageHeaderType* image);
// The log text of a command: `format` with the result's title as its first argument.
const char* CommandLogText(const char* format, ...) __attribute__((format(printf, 1, 2)));

// The whole frame. `fill(source, result)` computes the rows and shows each one with
// ShowCommandRow; it may change the result's header. The log line is `format` with the
// result's Title and then `args`. Answers the result, or null when the command stopped.
template <class Fill, class... Args>
ImageHeaderType* RunImageCommand(const ImageCommand& command, Fill&& fill, const char* format, Args... args)
{
    ImageHeaderType* source = CheckImageCommand(command);
    if (!source) return nullptr;
    ImageHeaderType* result = MakeCommandResult(command, source);
    if (!result) return nullptr;
    BeginCommandRows(command, source, result);
    fill(static_cast<const ImageHeaderType*>(source), result);
    FinishImageCommand(command, result, CommandLogText(format, result->Title, args...));
    return result;
}
