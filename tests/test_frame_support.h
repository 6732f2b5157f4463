// Shared pieces of the frame store tests: a started library, image and spectrum items with real
// pixel or sample blocks, and readers of the log's reports.
#pragma once

#include "support/test_host.h"
#include "display/contents_grid.h"
#include "display/cvfs.h"
#include "display/placement.h"
#include "display/vfs.h"
#include "host/text.h"
#include "store/data_list.h"
#include "store/history.h"
#include "store/image_header.h"
#include "store/memory.h"

#include <functional>
#include <string>
#include <vector>

class FrameStoreTest : public LibraryTest {
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        ASSERT_EQ(host.Start(), 0);
        host.ClearCalls();
    }

    // An image of nx by ny behind the current item (the head when none), made current; every
    // code from `code(x, y)`.
    static ImageHeaderType* AddImage(int nx, int ny, const std::function<uint16_t(int, int)>& code,
                                     const char* title = "")
    {
        ImageHeaderType* item = AllocateListItem(CurrentItem);
        if (!item) return nullptr;
        InitImageHeader(item, nx, ny);
        MemHandleType pair;
        if (!AllocateMem(static_cast<size_t>(nx) * ny, 2, &pair)) {
            UnlinkListItem(item);
            return nullptr;
        }
        item->PixHandle = pair.Handle;
        item->PixData = static_cast<uint16_t*>(pair.Ptr);
        for (int y = 0; y < ny; ++y)
            for (int x = 0; x < nx; ++x) item->PixData[static_cast<size_t>(y) * nx + x] = code(x, y);
        strncpy0(item->Title, title, sizeof item->Title);
        CurrentItem = item;
        return item;
    }
    // An image of one code everywhere.
    static ImageHeaderType* AddFlatImage(int n, uint16_t code)
    {
        return AddImage(n, n, [code](int, int) { return code; });
    }

    // A spectrum of `points` samples (Y = i * i, X = i), made current.
    static ImageHeaderType* AddSpectrum(int points)
    {
        ImageHeaderType* item = AllocateListItem(CurrentItem);
        if (!item) return nullptr;
        float* samples = AllocSpecMem(points);
        if (!samples) {
            UnlinkListItem(item);
            return nullptr;
        }
        InitImageHeader(item, points, 1);
        item->ImType1 = IMTYPE_SPECTRUM;
        item->PixHandle = 1;
        item->PixData = reinterpret_cast<uint16_t*>(samples);
        for (int i = 0; i < points; ++i) {
            samples[i] = static_cast<float>(i * i);
            samples[points + i] = static_cast<float>(i);
        }
        CurrentItem = item;
        return item;
    }

    // The log ends its lines with CR LF; texts here are written with LF alone.
    static std::string LogLines(const std::string& text)
    {
        std::string out;
        for (char c : text) {
            if (c == '\n') out += '\r';
            out += c;
        }
        return out;
    }
    bool LogHas(const std::string& text) const { return ReadLog().find(LogLines(text)) != std::string::npos; }
    // A program error with exactly this text (the log pads it with blanks).
    bool LogHasProgramError(const std::string& text) const
    {
        return LogHas("ERROR : Program error - " + text + " ");
    }
    int CountInLog(const std::string& text) const
    {
        const std::string log = ReadLog(), lines = LogLines(text);
        int n = 0;
        for (size_t at = log.find(lines); at != std::string::npos; at = log.find(lines, at + 1)) ++n;
        return n;
    }
    bool LogHasProgramErrors() const { return LogHas("Program error"); }

    // Every code of an image, row 0 first.
    static std::vector<uint16_t> Pixels(const ImageHeaderType* image)
    {
        return {image->PixData, image->PixData + static_cast<size_t>(image->nx) * image->ny};
    }
    // The code of the last step in an item's history (0 when it has none).
    static int LastHistoryCode(const ImageHeaderType* item)
    {
        int n = 0;
        while (n < kProcessListLength && item->ProcessList[n]) ++n;
        return n ? item->ProcessList[n - 1] : 0;
    }
    // A message box with exactly this text was shown.
    bool ErrorShown(const std::string& text) const
    {
        for (const auto& box : host.messageBoxes)
            if (box.text == text) return true;
        return false;
    }
};

// Colours of the palette layout as the window shows them (0x00BBGGRR).
constexpr uint32_t kWindowWhite = 0xffffff;
constexpr uint32_t kOutlineRed = 0x0000fe;     // index 16: 254, 0, 0
constexpr uint32_t kOutlineGreen = 0x00ff00;   // index 17: 0, 255, 0
