// The colour bar beside the image in the frame store.
#pragma once

// Draws the colour bar again after a change of the colour table. The full display with its
// colour bar is drawn by the image rendering; until that exists there is no bar to redraw.
void RedrawColourBar();
