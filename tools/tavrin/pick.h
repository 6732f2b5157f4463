// The host's pick mode: the library asks for points with ap_SelectPointInVFS over a rectangle
// of the frame store, and the host answers with mouse events. A script or a command gives the
// points in image pixels; they are turned into positions within the rectangle and reported as
// a move and a left click each.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "tavrin/tavrin.h"

struct PickMode {
    bool active = false;
    int left = 0, top = 0, right = 0, bottom = 0;
    int type = 0;
    int cursor = 0;
    bool shiftHeld = false;   // for the platform's key state during one event
    bool escapeHeld = false;  // Escape held during the next command of a script (key esc)
};

// The pick mode the library asked for last (kept by the callback).
PickMode& CurrentPickMode();

// Reports the points; answers true when the library ended the selection with the last one.
// Without a pick mode nothing is sent and the answer is false.
bool PickImagePoints(const std::vector<std::pair<int, int>>& points);

// One raw event at frame position (x, y) from the corner of the pick rectangle: `button` is
// "move", "left", "middle", "right" or "shift" (left with Shift held). Answers the library's
// answer (non-zero: the selection ended); without a pick mode nothing is sent and -1 answered.
int PickEvent(int x, int y, const std::string& button);

// The mesh tool of that purpose on the current image: initialised, its corners P0, P1, P2
// (image pixels) set as the host's dialog sets them, and finished (or cancelled).
void RunMeshTool(int purpose, const std::vector<std::pair<int, int>>& points, bool cancelled);

// "X,Y" (image pixels) into a point; false when the text is no such pair.
bool ParsePoint(const std::string& text, std::pair<int, int>* point);
