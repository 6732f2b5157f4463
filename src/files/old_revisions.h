// Old record revisions: a record read in the layout of an older release is brought to the
// present layout, revision 700, sub-revision 42.
//
// The upgrade is one chain of steps in the order the layout grew. A record enters the chain
// at the step for its RevNo (sometimes after a small action of its own) and runs every later
// step; each step moves, converts or fills what its release changed. A current record passes
// through with only LMCSweepType 0 made 1.
#pragma once

#include "tavrin/image_header.h"

// Upgrades the record in place and answers the factor by which a spectrum's Y values are to be
// divided: 0.1 for the oldest spectra whose Y values were in Angstrom, otherwise 1.0. An
// unknown RevNo reports "UpdateOldImageHeader %d", leaves the record as it is and answers 1.0.
float UpdateOldImageHeader(ImageHeaderType* record, int isSpectrum);
