// What a user's window shows, as a picture: the frame store's pixels through the palette, with
// the library's display list drawn over them.
#pragma once

#include <string>

#include "session.h"

// Paints the window of the frame store as the host's repaint does, and writes it as a PNG
// file. False when the picture could not be written.
bool WriteFrameStorePicture(HostFrameStore& fs, const std::string& path);
