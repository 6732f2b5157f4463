// Shared pieces of the region command tests: a started library with a frame store, coded
// images, the last history code, message boxes, and points picked as a host reports them.
#pragma once

#include "test_frame_support.h"

#include "tavrin/dl_mesh.h"
#include "tavrin/dl_selection.h"
#include "display/selection.h"
#include "image/lattice.h"
#include "image/regions.h"
#include "store/history.h"

#include <string>
#include <utility>
#include <vector>

class RegionTestBase : public FrameStoreTest {
protected:
    void SetUp() override
    {
        FrameStoreTest::SetUp();
        ASSERT_EQ(fs.Open(1), 0);
        host.ClearCalls();
    }
    static uint16_t Code(int x, int y) { return static_cast<uint16_t>((x * 613u + y * 1229u + x * y * 3u + 1) & 0xffff); }
    static uint16_t At(const ImageHeaderType* image, int x, int y)
    {
        return image->PixData[static_cast<size_t>(y) * image->nx + x];
    }
    ImageHeaderType* AddCoded(int nx, int ny, const char* title = "Scan")
    {
        ImageHeaderType* item = AddImage(nx, ny, Code, title);
        item->ImageSizeX = static_cast<float>(nx);
        item->ImageSizeY = static_cast<float>(ny);
        return item;
    }
    static int LastHistoryCode(const ImageHeaderType* item)
    {
        int n = 0;
        while (n < kProcessListLength && item->ProcessList[n]) ++n;
        return n ? item->ProcessList[n - 1] : 0;
    }
    bool ErrorShown(const std::string& text) const
    {
        for (const auto& box : host.messageBoxes)
            if (box.text == text) return true;
        return false;
    }
    // Points in image pixels, reported as a host does: a move, then a left click at the frame
    // position of the pixel within the image rectangle.
    static int PickPoints(int type, const std::vector<std::pair<int, int>>& points)
    {
        const int width = FSState.ImageRight - FSState.ImageLeft + 1;
        const int height = FSState.ImageBottom - FSState.ImageTop + 1;
        int answer = 0;
        for (const auto& p : points) {
            const auto x = static_cast<int16_t>(p.first * width / FSState.ImagePixelsX);
            const auto y = static_cast<int16_t>(p.second * height / FSState.ImagePixelsY);
            dl_SelectPointInVFS_Callback(static_cast<int16_t>(type), x, y, 0, 0);
            answer = dl_SelectPointInVFS_Callback(static_cast<int16_t>(type), x, y, TV_PICK_LEFT, 0);
        }
        return answer;
    }
    // Runs `command` with the n-th allocation failing for n = 0, 1, ... until it succeeds;
    // each failure must report a memory error and leave the list, the current item and the
    // live blocks as they were. Answers the number of failures seen.
    template <class Command>
    int FailEachAllocation(Command command)
    {
        ImageHeaderType* const current = CurrentItem;
        const int items = CountItems();
        const size_t blocks = LiveBlockCount();
        for (int skip = 0; skip < 32; ++skip) {
            host.messageBoxes.clear();
            FailAllocationsForTests(1, skip);
            command();
            FailAllocationsForTests(0);
            if (CountItems() != items) return skip;
            EXPECT_FALSE(host.messageBoxes.empty()) << skip;
            if (!host.messageBoxes.empty()) {
                EXPECT_NE(host.messageBoxes.back().text.find("Not enough memory"), std::string::npos) << skip;
            }
            EXPECT_EQ(CurrentItem, current) << skip;
            EXPECT_EQ(LiveBlockCount(), blocks) << skip;
        }
        ADD_FAILURE() << "the command never succeeded";
        return -1;
    }
    TestFrameStore fs;
};
