#include "store/data_list_display.h"
#include "store/data_list.h"

namespace {

DisplayRequestCounts g_requests;

} // namespace

const DisplayRequestCounts& DisplayRequests() { return g_requests; }

void DisplayCurrentItem()
{
    // The frame stores draw CurrentItem here at the placement cursor; until they exist, a
    // change of the current item is not drawn.
    ++g_requests.shown;
    g_requests.lastShown = CurrentItem;
}

void ClearDisplay()
{
    // The frame stores clear the current frame and its parameter text here.
    ++g_requests.cleared;
}

void CloseFrameStoreCaches()
{
    // The frame stores close their cached pictures here.
    ++g_requests.cachesClosed;
}

void DropFrameStoreReferences(const ImageHeaderType*)
{
    // The frame stores null the item in their working and saved contents grids here. With no
    // frame store open no grid holds an item.
    ++g_requests.referencesDropped;
}

bool FrameStoreFilterAccepts(const ImageHeaderType*)
{
    // The frame stores answer whether the item passes the filter of their contents. With no
    // frame store contents, no item passes.
    return false;
}

void ResetDisplayRequests() { g_requests = DisplayRequestCounts{}; }
