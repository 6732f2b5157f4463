// Entry points: frame stores and the frame commands.
#include "tavrin/dl_frame_store.h"
#include "display/clip_line.h"
#include "display/frame_commands.h"
#include "display/frame_pickup.h"
#include "display/vfs.h"
#include "host/trace.h"

namespace {

RECT ToRect(const TvRect& r) { return {r.left, r.top, r.right, r.bottom}; }

} // namespace

TAVRIN_API int16_t dl_VFS_open_vfs(uint8_t** buffers, int16_t number, TvCanvas* wnd)
{
    TraceEntry("dl_VFS_open_vfs: %d", number);
    return static_cast<int16_t>(OpenFrameStore(buffers, number, wnd));
}

TAVRIN_API void dl_VFS_close_vfs(int16_t number)
{
    TraceEntry("dl_VFS_close_vfs: %d", number);
    VFS_close_vfs(number);
}

TAVRIN_API void dl_VFS_set_current_vfs(int16_t number)
{
    TraceEntry("dl_VFS_set_current_vfs: %d", number);
    VFS_set_current_vfs(number);
}

TAVRIN_API void dl_RedrawVFS(const TvRect* dest, DrawContext* dc, int32_t number)
{
    TraceEntry("dl_RedrawVFS: %d", number);
    if (dest) RedrawFrameStore(ToRect(*dest), dc, number);
}

TAVRIN_API int32_t dl_VFS_pickup_image(int32_t x, int32_t y, VFSPickUpType* out)
{
    TraceEntry("dl_VFS_pickup_image: %d %d", x, y);
    return PickUpImage(x, y, out);
}

TAVRIN_API int32_t dl_VFS_drop_image(const VFSPickUpType* in)
{
    TraceEntry("dl_VFS_drop_image");
    return DropImage(in);
}

TAVRIN_API void dl_SelectImageFromFS(int16_t x, int16_t y, int16_t button)
{
    TraceEntry("dl_SelectImageFromFS: %d %d %d", x, y, button);
    SelectImageFromFS(x, y, button);
}

TAVRIN_API void dl_ClearFrameStore(void)
{
    TraceEntry("dl_ClearFrameStore");
    ClearFrameStore();
}

TAVRIN_API void dl_LoadFrame(int16_t which)
{
    TraceEntry("dl_LoadFrame              ");
    LoadFrame(which);
}

TAVRIN_API void dl_PrintEditUpdateVFS(ImageHeaderType* item, int32_t redisplay)
{
    TraceEntry("dl_PrintEditUpdateVFS: %d", redisplay);
    PrintEditUpdateVFS(item, redisplay);
}

TAVRIN_API int32_t dl_clip_line_cohen_sutherlandI(int32_t* x1, int32_t* y1, int32_t* x2, int32_t* y2,
                                                  const TvRect* rect)
{
    TraceEntry("dl_clip_line_cohen_sutherlandI");
    if (!rect) return 0;
    return ClipLineCohenSutherland(x1, y1, x2, y2, ToRect(*rect));
}
