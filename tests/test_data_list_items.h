// Items for the data list tests: real list records with real pixel or sample blocks, and a
// snapshot of the list's links to show that a failure left the list as it was.
#pragma once

#include "support/test_host.h"
#include "host/text.h"
#include "store/data_list.h"
#include "store/image_header.h"
#include "store/memory.h"

#include <vector>

class DataListTest : public LibraryTest {
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        ASSERT_EQ(host.Start(), 0);
        host.ClearCalls();
        startBlocks = LiveBlockCount();
    }
    void TearDown() override
    {
        // A stand-in mapping set is never freed: let go of it before the list is emptied.
        for (ImageHeaderType* p = FirstItem; p; p = p->Next)
            if (p->CITSHeaderPtr == StandInMappingSet()) SetCITSBlock(p, nullptr);
        LibraryTest::TearDown();
    }

    // A square image of n by n codes behind `after` (the head when null), codes 0, 1, 2 ...
    static ImageHeaderType* AddImage(ImageHeaderType* after, int n = 16, const char* fileName = "",
                                     const char* title = "")
    {
        ImageHeaderType* item = AllocateListItem(after);
        if (!item) return nullptr;
        InitImageHeader(item, n, n);
        MemHandleType pair;
        if (!AllocateMem(static_cast<size_t>(n) * n, 2, &pair)) {
            UnlinkListItem(item);
            return nullptr;
        }
        item->PixHandle = pair.Handle;
        item->PixData = static_cast<uint16_t*>(pair.Ptr);
        for (int i = 0; i < n * n; ++i) item->PixData[i] = static_cast<uint16_t>(i);
        strncpy0(item->FileName, fileName, sizeof item->FileName);
        strncpy0(item->Title, title, sizeof item->Title);
        return item;
    }

    // A curve of `points` samples of class `imType` (2 spectrum, 3 profile ...) behind `after`.
    static ImageHeaderType* AddSpectrum(ImageHeaderType* after, int points = 8, uint32_t imType = 2,
                                        const char* fileName = "", const char* title = "")
    {
        ImageHeaderType* item = AllocateListItem(after);
        if (!item) return nullptr;
        float* samples = AllocSpecMem(points);
        if (!samples) {
            UnlinkListItem(item);
            return nullptr;
        }
        InitImageHeader(item, points, 1);
        item->ImType1 = imType;
        item->PixHandle = 1;
        item->PixData = reinterpret_cast<uint16_t*>(samples);
        for (int i = 0; i < points; ++i) {
            samples[i] = static_cast<float>(i * i);
            samples[points + i] = static_cast<float>(i);
        }
        strncpy0(item->FileName, fileName, sizeof item->FileName);
        strncpy0(item->Title, title, sizeof item->Title);
        return item;
    }

    // An address that stands for a mapping set: only ever compared, never read.
    static CITSHeaderType* StandInMappingSet()
    {
        alignas(16) static unsigned char bytes[16];
        return reinterpret_cast<CITSHeaderType*>(bytes);
    }

    // The items from the head, in order.
    static std::vector<ImageHeaderType*> Items()
    {
        std::vector<ImageHeaderType*> items;
        for (ImageHeaderType* p = FirstItem; p; p = p->Next) items.push_back(p);
        return items;
    }

    // Every link of the list, the head and the current item.
    struct Snapshot {
        std::vector<ImageHeaderType*> items, next, prev;
        ImageHeaderType* first;
        ImageHeaderType* current;
        bool operator==(const Snapshot&) const = default;
    };
    static Snapshot TakeSnapshot()
    {
        Snapshot s{{}, {}, {}, FirstItem, CurrentItem};
        for (ImageHeaderType* p = FirstItem; p; p = p->Next) {
            s.items.push_back(p);
            s.next.push_back(p->Next);
            s.prev.push_back(p->Prev);
        }
        return s;
    }

    std::vector<std::string> BoxTexts() const
    {
        std::vector<std::string> texts;
        for (const auto& box : host.messageBoxes) texts.push_back(box.text);
        return texts;
    }

    size_t startBlocks = 0;
};
