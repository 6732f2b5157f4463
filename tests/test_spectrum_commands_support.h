// Shared pieces of the spectrum and plot tests: a started library with a frame store, spectra
// made from given planes, and readers of the new items and of the display list.
#pragma once

#include "test_frame_support.h"

#include "display/cvfs.h"
#include "display/vfs.h"
#include "spectro/spectro.h"
#include "store/data_list.h"
#include "store/memory.h"
#include "store/history.h"
#include "tavrin/tavrin.h"

#include <cstring>
#include <string>
#include <vector>

class SpecTest : public FrameStoreTest {
protected:
    void SetUp() override
    {
        FrameStoreTest::SetUp();
        ASSERT_EQ(fs.Open(1), 0);
        host.ClearCalls();
    }

    // A spectrum of the given planes behind the current item, made current.
    static ImageHeaderType* AddCurve(const std::vector<float>& x, const std::vector<float>& y, const char* title = "curve",
                                     uint32_t imType1 = 2)
    {
        const int n = static_cast<int>(x.size());
        ImageHeaderType* item = AddSpectrum(n);
        if (!item) return nullptr;
        item->ImType1 = imType1;
        float* samples = reinterpret_cast<float*>(item->PixData);
        for (int i = 0; i < n; ++i) {
            samples[i] = y[static_cast<size_t>(i)];
            samples[n + i] = x[static_cast<size_t>(i)];
        }
        std::strncpy(item->Title, title, sizeof item->Title - 1);
        return item;
    }
    static std::vector<float> Ys(const ImageHeaderType* item)
    {
        const float* s = reinterpret_cast<const float*>(item->PixData);
        return std::vector<float>(s, s + item->nx);
    }
    static std::vector<float> Xs(const ImageHeaderType* item)
    {
        const float* s = reinterpret_cast<const float*>(item->PixData);
        return std::vector<float>(s + item->nx, s + 2 * item->nx);
    }
    static std::vector<float> Ramp(int n, float from, float step)
    {
        std::vector<float> v(static_cast<size_t>(n));
        for (int i = 0; i < n; ++i) v[static_cast<size_t>(i)] = from + step * static_cast<float>(i);
        return v;
    }
    // The last process code of an item.
    static int LastCode(const ImageHeaderType* item)
    {
        int last = 0;
        for (int i = 0; i < kProcessListLength && item->ProcessList[i]; ++i) last = item->ProcessList[i];
        return last;
    }
    bool LogHasError(const std::string& text) const { return LogHas("ERROR : " + text); }

    // Display list items of a kind (and, when given, a colour).
    static std::vector<CVfsItem> Items(uint32_t kind)
    {
        std::vector<CVfsItem> out;
        if (CVfs* vfs = CurrentVfs())
            for (const CVfsItem& item : vfs->Items)
                if (item.Kind == kind) out.push_back(item);
        return out;
    }
    static int CountLines(uint32_t colour)
    {
        int n = 0;
        for (const CVfsItem& item : Items(VFS_ITEM_LINE)) n += item.Colour == colour;
        return n;
    }
    static bool HasText(const std::string& text)
    {
        for (const CVfsItem& item : Items(VFS_ITEM_TEXT))
            if (item.Text == text) return true;
        return false;
    }

    TestFrameStore fs;
};
