#include "store/data_list_display.h"
#include "display/contents_grid.h"
#include "display/frame_commands.h"
#include "display/full_display.h"
#include "display/placement.h"
#include "display/vfs.h"
#include "host/ap_callbacks.h"
#include "store/data_list.h"
#include "store/image_header.h"

namespace {

DisplayRequestCounts g_requests;

} // namespace

const DisplayRequestCounts& DisplayRequests() { return g_requests; }

void DisplayCurrentItem()
{
    ++g_requests.shown;
    g_requests.lastShown = CurrentItem;
    DisplayData();
}

void ClearDisplay()
{
    ++g_requests.cleared;
    if (CurrentVFS)
        ClearFrameStore();
    else
        Ap.ap_ClearParamText();
}

void CloseFrameStoreCaches()
{
    // The frame stores keep no cached pictures of items: there is nothing to close.
    ++g_requests.cachesClosed;
}

void DropFrameStoreReferences(const ImageHeaderType* item)
{
    ++g_requests.referencesDropped;
    RemoveFromFS(item);
}

bool FrameStoreFilterAccepts(const ImageHeaderType* item) { return HeldByCurrentFrameStore(item); }

void ResetDisplayRequests() { g_requests = DisplayRequestCounts{}; }
