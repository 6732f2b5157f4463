// The palette of the frame stores as the library last loaded it.
//
// Every pixel of a frame store is a colour index; the host turns indices into colours with
// the palette given through ap_SetPalette. In True-RGB mode the frame stores also keep a
// 24-bit layer, which the library writes itself: for that it keeps the low bytes of the
// palette it last sent, one byte table per colour.
#pragma once

#include <cstdint>

#include "tavrin/ap_callbacks.h"

// True-RGB mode: the frame stores carry a 24-bit layer beside the index layer. The host's
// start-up record decides it (bit 0 of HostData1).
extern bool TrueRGB;

// Red, green and blue of the palette last loaded, as bytes.
extern uint8_t PaletteRed[256];
extern uint8_t PaletteGreen[256];
extern uint8_t PaletteBlue[256];

// One plane of 256 entries between its two forms: u16 entries 0 to 255, and bytes (low byte).
void PlaneToBytes(const uint16_t plane[256], uint8_t bytes[256]);
void BytesToPlane(const uint8_t bytes[256], uint16_t plane[256]);

// Sends the three planes to the host and keeps their low bytes.
void LoadPalette(const uint16_t red[256], const uint16_t green[256], const uint16_t blue[256]);
// The same from byte planes (an image's own colour planes).
void LoadPaletteBytes(const uint8_t red[256], const uint8_t green[256], const uint8_t blue[256]);

// Sets TrueRGB from the host's start-up record.
void DecideTrueRGB(const wint_DLLInitialiseType& record);

void ResetPaletteState();
