// The commands on the bilevel item: erosion and dilation in place, the size filter, and the
// pointer commands that remove or choose one object.
#include "display/placement.h"
#include "host/ap_callbacks.h"
#include "host/entry.h"
#include "host/errors.h"
#include "host/log.h"
#include "host/wait.h"
#include "image/particle_morphology.h"
#include "image/particle_state.h"
#include "image/particles.h"
#include "store/history.h"
#include "store/memory.h"

#include <cstring>

namespace {

constexpr int kSizeEntryChars = 4;

size_t PixelCount(const ImageHeaderType* item)
{
    return static_cast<size_t>(item->nx) * static_cast<size_t>(item->ny);
}

// The bilevel item for a command: null after 33536 when there is none, or after 33559 when
// it is not bilevel.
ImageHeaderType* BilevelForCommand()
{
    ImageHeaderType* item = ParticleBilevelItem();
    if (!item) {
        Error(ERR_NO_IMAGES);
        return nullptr;
    }
    return IsBilevel(item, true) ? item : nullptr;
}

// A private copy of the item's codes, or null after 32769.
uint16_t* CopyCodes(const ImageHeaderType* item)
{
    auto* copy = static_cast<uint16_t*>(emalloc(PixelCount(item) * sizeof(uint16_t)));
    if (!copy) {
        Error(ERR_NO_MEMORY);
        return nullptr;
    }
    std::memcpy(copy, item->PixData, PixelCount(item) * sizeof(uint16_t));
    return copy;
}

void WriteBack(ImageHeaderType* item, uint16_t* copy)
{
    std::memcpy(item->PixData, copy, PixelCount(item) * sizeof(uint16_t));
    efree(copy);
}

// Erosion or dilation: the new codes are shown row by row (all but the first and last row),
// the statistics are taken of the codes as they still are, then the new codes replace them.
void Morph(bool dilate)
{
    ImageHeaderType* item = BilevelForCommand();
    if (!item) return;
    uint16_t* copy = static_cast<uint16_t*>(emalloc(PixelCount(item) * sizeof(uint16_t)));
    if (!copy) {
        Error(ERR_NO_MEMORY);
        return;
    }
    const int nx = item->nx, ny = item->ny;
    BeginRowDisplay(nx, ny, item);
    ap_SetHourGlass(true);
    ErodeOrDilate(item->PixData, copy, nx, ny, ParticleConnectivity(), dilate);
    for (int y = 1; y < ny - 1; ++y) ShowDisplayRow(y, copy + static_cast<size_t>(y) * static_cast<size_t>(nx));
    RefreshStatistics(item);
    ap_SetHourGlass(false);
    WriteBack(item, copy);
    AddImProc2List(item, dilate ? kDilateCode : kErodeCode);
    FinishRowDisplay(nx, ny);
    RegisterImageRegion(item);
    EndRowDisplay();
    ShowParameterText(item);
    Log("Dilate '%s'\n", item->Title);
}

// Handle 18: the object under the pointer is removed.
void ShootAt(ImageHeaderType* item, int x, int y)
{
    if (item->PixData[static_cast<size_t>(y) * static_cast<size_t>(item->nx) + x] != kObjectCode) {
        Error(ERR_NO_PARTICLES);
        return;
    }
    uint16_t* copy = CopyCodes(item);
    if (!copy) return;
    if (!FloodFill(copy, item->nx, item->ny, x, y, ParticleConnectivity(), 0, nullptr)) {
        efree(copy);
        return;
    }
    WriteBack(item, copy);
    DisplayImage(item, 0, 1);
    RefreshStatistics(item);
}

// Handle 26: the first object in detection order whose box holds the pointer is selected.
void ChooseAt(const ImageHeaderType* item, int x, int y)
{
    if (item->PixData[static_cast<size_t>(y) * static_cast<size_t>(item->nx) + x] != kObjectCode) {
        Error(ERR_NO_PARTICLES);
        return;
    }
    ParticleModule& m = Particles();
    for (int i = 0; i < m.stats.ObjectCount; ++i) {
        const ParticleObject& o = m.stats.Objects[i];
        if (x >= o.X1 && x <= o.X2 && y >= o.Y1 && y <= o.Y2) {
            m.selected = i;
            for (int row = 0; row < m.stats.ObjectCount; ++row)
                if (m.stats.Order[row] == i) m.stts.SelectedRow = static_cast<int16_t>(row + 1);
            MarkSelection();
            return;
        }
    }
    ProgramError("DoChooseObject - not found");
}

void AskForPointer(int handle, bool showFirst)
{
    ImageHeaderType* item = BilevelForCommand();
    if (!item) return;
    if (showFirst && !AnyImageOnDisplay()) DisplayImage(item, 0, 1);
    Ap.ap_ShowPanel(handle, 2);
}

} // namespace

void ErodeBilevelImage() { Morph(false); }
void DilateBilevelImage() { Morph(true); }

int32_t IsolateBilevelImage()
{
    ImageHeaderType* item = ParticleBilevelItem();
    if (!item) {
        Error(ERR_NO_IMAGES);
        return CurrentParticleStats().ObjectCount;
    }
    if (!IsBilevel(item, false)) return CurrentParticleStats().ObjectCount;
    uint16_t* copy = CopyCodes(item);
    if (!copy) return CurrentParticleStats().ObjectCount;
    int32_t smallest = 1;
    if (!EnterInteger(1, "Enter smallest particle size/pixels : ", kProductName, &smallest, kSizeEntryChars)) {
        efree(copy);
        return CurrentParticleStats().ObjectCount;
    }
    if (smallest < 1) {
        Error(ERR_INVALID_ENTRY);
        efree(copy);
        return CurrentParticleStats().ObjectCount;
    }
    MeasureFrame frame = ParticleFrame(item);
    const int removed = RemoveSmallObjects(copy, item->nx, item->ny, static_cast<uint32_t>(smallest), frame);
    if (removed < 0) {
        efree(copy);
        return CurrentParticleStats().ObjectCount;
    }
    WriteBack(item, copy);
    AddImProc2List(item, kIsolateCode);
    DisplayImage(item, 0, 1);
    Log("Isolate %u particles from '%s'\n", static_cast<unsigned>(removed), item->Title);
    RefreshStatistics(item);
    return CurrentParticleStats().ObjectCount;
}

void ShootObjects() { AskForPointer(TV_PARTICLE_SHOOT, false); }
void ChooseParticle() { AskForPointer(TV_PARTICLE_CHOOSE, true); }

int32_t ParticlePointerCallback(int32_t handle, int32_t x, int32_t y, int32_t status)
{
    ParticleModule& m = Particles();
    if (m.pointerDepth > 0) return 1;
    struct Depth {
        int& n;
        explicit Depth(int& count) : n(count) { ++n; }
        ~Depth() { --n; }
    } depth(m.pointerDepth);
    if (handle != TV_PARTICLE_SHOOT && handle != TV_PARTICLE_CHOOSE) {
        ProgramError("dl_ParticlePointer_Callback_handle=%d", handle);
        return 0;
    }
    if (!(status & 1)) return 1;
    ImageHeaderType* item = ParticleBilevelItem();
    if (!item || !IsBilevel(item, true)) {
        if (!item) Error(ERR_NO_IMAGES);
        return 0;
    }
    const int px = ViewToPixel(x, item->nx), py = ViewToPixel(y, item->ny);
    if (handle == TV_PARTICLE_SHOOT) ShootAt(item, px, py);
    else ChooseAt(item, px, py);
    return 0;
}
