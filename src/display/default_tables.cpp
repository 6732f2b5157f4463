#include "display/default_tables.h"

#include <algorithm>
#include <cmath>

namespace {

const uint8_t kFixed[kFixedColours][3] = {
    {255, 255, 255}, {0, 0, 255},     {0, 255, 0},     {255, 255, 128}, {255, 0, 0},     {255, 255, 255},
    {0, 0, 0},       {255, 0, 0},     {0, 255, 0},     {0, 0, 255},     {255, 255, 0},   {0, 255, 255},
    {255, 0, 255},   {255, 170, 85},  {85, 255, 170},  {255, 255, 255}, {254, 0, 0},     {0, 255, 0},
    {0, 255, 255},   {255, 255, 255}, {255, 255, 255}, {0, 0, 0},       {255, 0, 0},     {0, 0, 255},
    {0, 0, 255},     {0, 0, 255},     {255, 0, 255},   {128, 128, 255}, {255, 255, 255}, {255, 255, 255},
    {192, 192, 192}, {0, 255, 255},   {0, 255, 255},
};

int Clamp255(double v) { return static_cast<int>(std::clamp(v, 0.0, 255.0)); }

// The ramp entry 35 + i of table `number`, i from 0 to 127.
void RampEntry(int number, int i, int rgb[3])
{
    switch (number) {
    case 0: rgb[0] = rgb[1] = rgb[2] = 2 * i; break;
    case 1: rgb[0] = rgb[1] = rgb[2] = 254 - 2 * i; break;
    case 2: rgb[0] = rgb[1] = rgb[2] = static_cast<int>(std::log(2.0 * i + 1) * 255.0 / std::log(256.0)); break;
    case 3: {
        double p = 0.000041 * i * i * i + 0.015469 * i * i - 0.637319 * i + 6.544594;
        rgb[0] = 2 * i;
        rgb[1] = Clamp255(p);
        rgb[2] = i < 99 ? 0 : std::min(255, (i - 98) * 255 / 29);
        break;
    }
    case 4: rgb[0] = 0; rgb[1] = 3 * i / 2; rgb[2] = 2 * i; break;
    case 5: rgb[0] = 2 * i; rgb[1] = 2 * i; rgb[2] = i / 2; break;
    case 6: rgb[0] = 2 * i; rgb[1] = i; rgb[2] = 0; break;
    default: rgb[0] = 2 * i; rgb[1] = 0; rgb[2] = i; break;
    }
}

} // namespace

void FixedColour(int index, uint8_t* red, uint8_t* green, uint8_t* blue)
{
    const uint8_t* c = (index >= 0 && index < kFixedColours) ? kFixed[index] : kFixed[6];
    *red = c[0];
    *green = c[1];
    *blue = c[2];
}

void BuildDefaultColourTable(int number, uint16_t red[256], uint16_t green[256], uint16_t blue[256])
{
    uint16_t* planes[3] = {red, green, blue};
    for (int i = 0; i < kPaletteSize; ++i)
        for (auto* plane : planes) plane[i] = 0;
    for (int i = 0; i < kFixedColours; ++i)
        for (int p = 0; p < 3; ++p) planes[p][i] = kFixed[i][p];
    for (int i = 0; i < kRampSteps; ++i) {
        int rgb[3];
        RampEntry(number, i, rgb);
        for (int p = 0; p < 3; ++p) planes[p][kRampFirst + i] = static_cast<uint16_t>(rgb[p]);
    }
    for (int k = 0; k < 32; ++k) {
        auto v = static_cast<uint16_t>(255 * k / 31);
        red[163 + k] = green[163 + k] = blue[163 + k] = v;
        red[195 + k] = v;
    }
}

void BuildDefaultColourTableBytes(int number, uint8_t red[256], uint8_t green[256], uint8_t blue[256])
{
    uint16_t r[256], g[256], b[256];
    BuildDefaultColourTable(number, r, g, b);
    for (int i = 0; i < kPaletteSize; ++i) {
        red[i] = static_cast<uint8_t>(r[i]);
        green[i] = static_cast<uint8_t>(g[i]);
        blue[i] = static_cast<uint8_t>(b[i]);
    }
}
