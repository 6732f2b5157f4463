// Helpers of the measuring tests: images with known heights in the data list, the measuring
// object opened on them, and markers set as the dialog sets them.
#pragma once

#include "test_frame_support.h"

#include "analysis/measure.h"
#include "analysis/profile.h"
#include "store/memory.h"

#include <cfloat>
#include <fstream>
#include <cmath>
#include <functional>
#include <vector>

class MeasureTest : public FrameStoreTest {
protected:
    void SetUp() override
    {
        FrameStoreTest::SetUp();
        ASSERT_EQ(main.Open(1), 0);
        host.ClearCalls();
        ms = MeasureObject();
    }
    void TearDown() override
    {
        ResetMeasureState();
        FrameStoreTest::TearDown();
    }

    // An image of nx by ny codes over sizeX by sizeY nm, heights Zlo to Zhi, made current.
    ImageHeaderType* Image(int nx, int ny, const std::function<uint16_t(int, int)>& code, float sizeX = 100.0f,
                           float sizeY = 100.0f, float zlo = 0.0f, float zhi = 65.535f, uint32_t source = 1)
    {
        ImageHeaderType* item = AddImage(nx, ny, code, "Measured");
        if (!item) return nullptr;
        item->ImageSizeX = sizeX;
        item->ImageSizeY = sizeY;
        item->Zlo = zlo;
        item->Zhi = zhi;
        item->DataSource = source;
        item->SPMData = 1;
        return item;
    }
    // The measure opened on the current image.
    void Open(bool spectroscopy = false) { ASSERT_EQ(ms->MeasureInitialise(spectroscopy, nullptr), 0); }

    int Add(int32_t type, std::vector<POINTs> points, POINTs seed = {0, 0})
    {
        return AddMeasureMarker(ms, type, points.data(), static_cast<int32_t>(points.size()), seed);
    }

    // Statistics of a mask or rectangle of the image by the object's rule.
    AreaStats Calc(const ImageHeaderType* image, const RECT* rect, const int16_t* mask)
    {
        AreaStats s;
        s.min = s.max = s.mean = s.rms = s.ra = s.area = s.surface = s.volume = -12345.0f;
        ms->MarkerAreaCalcs(nullptr, false, image, rect, mask, s.Outputs());
        return s;
    }

    TestFrameStore main;
    CMeasure* ms = nullptr;
};
