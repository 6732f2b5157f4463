#include "display/palette.h"
#include "host/ap_callbacks.h"

#include <cstring>

bool TrueRGB = false;
uint8_t PaletteRed[256];
uint8_t PaletteGreen[256];
uint8_t PaletteBlue[256];

void PlaneToBytes(const uint16_t plane[256], uint8_t bytes[256])
{
    for (int i = 0; i < 256; ++i) bytes[i] = static_cast<uint8_t>(plane[i]);
}

void BytesToPlane(const uint8_t bytes[256], uint16_t plane[256])
{
    for (int i = 0; i < 256; ++i) plane[i] = bytes[i];
}

void LoadPalette(const uint16_t red[256], const uint16_t green[256], const uint16_t blue[256])
{
    if (!red || !green || !blue) return;
    Ap.ap_SetPalette(red, green, blue);
    PlaneToBytes(red, PaletteRed);
    PlaneToBytes(green, PaletteGreen);
    PlaneToBytes(blue, PaletteBlue);
}

void LoadPaletteBytes(const uint8_t red[256], const uint8_t green[256], const uint8_t blue[256])
{
    if (!red || !green || !blue) return;
    uint16_t r[256], g[256], b[256];
    BytesToPlane(red, r);
    BytesToPlane(green, g);
    BytesToPlane(blue, b);
    LoadPalette(r, g, b);
}

void DecideTrueRGB(const wint_DLLInitialiseType& record)
{
    uint32_t flags = record.HostData1;
    TrueRGB = (flags & 1u) != 0;
}

void ResetPaletteState()
{
    TrueRGB = false;
    std::memset(PaletteRed, 0, sizeof PaletteRed);
    std::memset(PaletteGreen, 0, sizeof PaletteGreen);
    std::memset(PaletteBlue, 0, sizeof PaletteBlue);
}
