// Shared pieces of the particle tests: grids drawn as text, and the dialog protocol as a host
// drives it - band page, statistics page - on an image of such a grid.
#pragma once

#include "test_frame_support.h"

#include "tavrin/dl_particles.h"
#include "image/particle_measure.h"
#include "image/particle_state.h"
#include "image/particles.h"

#include <memory>
#include <string>
#include <vector>

// Rows of '#' (object, 65535) and '.' (background, 0).
inline std::vector<uint16_t> GridOf(const std::vector<std::string>& rows)
{
    std::vector<uint16_t> codes;
    for (const std::string& row : rows)
        for (char c : row) codes.push_back(c == '#' ? kObjectCode : 0);
    return codes;
}

// Three objects: a 2 by 2 square, a 3 by 3 square and one pixel on the left edge.
inline const std::vector<std::string> kSquares = {
    "..........",
    ".##.......",
    ".##...###.",
    "......###.",
    "#.....###.",
    "..........",
};

class ParticleTest : public FrameStoreTest {
protected:
    void SetUp() override
    {
        FrameStoreTest::SetUp();
        ASSERT_EQ(main.Open(1), 0);
        host.ClearCalls();
    }

    // An image of the rows, `size` nm a side in x and `sizeY` in y, made current.
    ImageHeaderType* AddRows(const std::vector<std::string>& rows, float sizeX = 100.0f, float sizeY = 100.0f,
                             const char* title = "Grains")
    {
        const int nx = static_cast<int>(rows[0].size()), ny = static_cast<int>(rows.size());
        ImageHeaderType* item = AddImage(nx, ny, [&](int x, int y) {
            return rows[static_cast<size_t>(y)][static_cast<size_t>(x)] == '#' ? kObjectCode : uint16_t{0};
        }, title);
        item->ImageSizeX = sizeX;
        item->ImageSizeY = sizeY;
        return item;
    }

    // The band page opened on the current image with the band low..high and the connectivity,
    // then the statistics page opened: answers the bilevel item.
    ImageHeaderType* Start(int low = 128, int high = 255, int connectivity = 4)
    {
        auto p = std::make_unique<wint_ParticleParamType>();
        *p = {};
        p->Initialise = 1;
        dl_GetParticleParam(p.get());
        p->LowLevel = static_cast<uint32_t>(low);
        p->HighLevel = static_cast<uint32_t>(high);
        p->Connectivity = static_cast<int16_t>(connectivity);
        p->HistogramBins = 128;
        p->HistogramKind = TV_PARTICLE_HIST_AREA;
        dl_SetParticleParam(p.get());
        p->Initialise = 0;
        dl_GetParticleParam(p.get());
        dl_GetParticleSttsParam(&stts, 1, 0);
        return ParticleBilevelItem();
    }
    // The grid of rows, through the dialog: answers the bilevel item.
    ImageHeaderType* StartOn(const std::vector<std::string>& rows, int connectivity = 4, float sizeX = 100.0f,
                             float sizeY = 100.0f)
    {
        AddRows(rows, sizeX, sizeY);
        return Start(128, 255, connectivity);
    }


    TestFrameStore main;
    wint_ParticleSttsParamType stts{};
};
