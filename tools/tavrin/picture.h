// What a user's window shows, as a picture: the frame store's pixels through the palette, with
// the library's display list drawn over them.
#pragma once

#include <cstdint>
#include <string>

#include "session.h"

// The host's repaint: the bitmap (colour indices through the palette, or the 24-bit layer in
// True-RGB mode) copied into the frame store's window, then the display list over it.
void PaintFrameStore(HostFrameStore& fs);
// Paints the window of the frame store as the host's repaint does, and writes it as a PNG
// file. False when the picture could not be written.
bool WriteFrameStorePicture(HostFrameStore& fs, const std::string& path);
// The same for the current frame store; false, with the reason on standard error, when there
// is none or the picture could not be written.
bool WriteCurrentPicture(const std::string& path);
// The same for the frame store of that number.
bool WriteStorePicture(int16_t number, const std::string& path);
