// The commands of the mapping display dialog: showing the sheet, stepping through the images,
// the display block as the host exchanges it, descriptions and titles of images.
#include "display/frame_commands.h"
#include "host/ap_callbacks.h"
#include "host/entry.h"
#include "host/error_numbers.h"
#include "host/errors.h"
#include "host/log.h"
#include "mapping/cits_display.h"
#include "store/data_list.h"
#include "store/image_header.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace {

constexpr int kSelectionMode = 3;
constexpr int kEditMode = 1;
constexpr int kExplicitSlots = 64;
constexpr int kSettableSlots = 16;
constexpr size_t kDescriptionBytes = 40;

// The library is built for data sets, not for the scan mode of an instrument build.
constexpr int kDataSetSource = 1;

CITSDispBlockType BuiltInDefaultBlock()
{
    CITSDispBlockType d{};
    d.flags = 3;
    d.n = 16;
    d.mode = 0;
    d.select = 1;
    d.v_high = 10.0;
    for (int k = 0; k < kExplicitSlots; ++k) d.im_no[k] = -1;
    return d;
}

CITSDispBlockType g_defaultBlock = BuiltInDefaultBlock();

CITSHeaderType* CurrentSet() { return CurrentItem ? CurrentItem->CITSHeaderPtr : nullptr; }

void StepCurrent(int step, const char* logLine)
{
    ImageHeaderType* image = RequireCITSImage();
    if (!image) return;
    CITSHeaderType* set = image->CITSHeaderPtr;
    int ci = set->ci + step;
    if (ci >= set->ni) ci = 0;
    if (ci < 0) ci = set->ni - 1;
    set->ci = static_cast<int16_t>(ci);
    Log("%s", logLine);
    DisplayCurrentCITSImage();
}

} // namespace

CITSDispBlockType& DefaultCITSDispBlock() { return g_defaultBlock; }

void ResetDefaultCITSDispBlock() { g_defaultBlock = BuiltInDefaultBlock(); }

void ResetCITSDisplayState()
{
    ResetCITSPagedState();
    ResetCITSReplayState();
    ResetDefaultCITSDispBlock();
    InstallCITSDisplay();
}

void CITSDisplayCommand()
{
    ClearFrameStore();
    DisplayCurrentItem();
}

void CITSNextCommand() { StepCurrent(1, "Next SPS Mapping Image.\n"); }

void CITSPreviousCommand() { StepCurrent(-1, "Previous SPS Mapping Image.\n"); }

void CITSSetCurrentCommand(int n)
{
    if (CITSHeaderType* set = CurrentSet()) set->ci = static_cast<int16_t>(n - 1);
    DisplayCurrentCITSImage();
}

void CITSSelectCommand() { Ap.ap_OpenCITSDialog(kSelectionMode); }

void CITSEditCommand() { Ap.ap_OpenCITSDialog(kEditMode); }

void GetCITSDispParam(wint_CITSDispParamType* param)
{
    param->source = kDataSetSource;
    const CITSHeaderType* set = CurrentSet();
    if (!set) ProgramError("dl_GetCITSDispParam");
    const CITSDispBlockType& d = set ? set->disp : g_defaultBlock;
    param->mode = d.mode;
    param->labels = (d.flags & 2) ? ((d.flags & 4) ? 1 : 2) : 0;
    param->n = d.n;
    param->topography = d.flags & 1;
    param->select = d.select;
    for (int k = 0; k < kExplicitSlots; ++k) {
        const int no = d.im_no[k];
        param->voltage[k] = set && no >= 0 && no < set->ni ? CITSEntry(set, no)->voltage : 0.0f;
    }
}

void SetCITSDispParam(const wint_CITSDispParamType* param)
{
    CITSHeaderType* set = CurrentSet();
    if (!set) ProgramError("dl_GetCITSDispParam");
    CITSDispBlockType& d = set ? set->disp : g_defaultBlock;
    d.mode = static_cast<uint8_t>(param->mode);
    uint16_t flags = static_cast<uint16_t>(d.flags & ~7u);
    if (param->topography) flags |= 1;
    if (param->labels != 0) flags |= 2;
    if (param->labels == 1) flags |= 4;
    d.flags = flags;
    // A set keeps at least one frame, so that it stays valid in a file.
    int n = std::max<int>(param->n, 1);
    if (set) n = std::min<int>(n, set->ni);
    d.n = static_cast<int16_t>(n);
    if (param->select != 4 || kDataSetSource == 1) d.select = static_cast<uint8_t>(param->select);
    for (int k = 0; k < kExplicitSlots; ++k)
        d.im_no[k] = static_cast<int16_t>(set ? GetNearestCITSVoltage(param->voltage[k], set) : 0);
}

void CITSDispParamSetV(int slot)
{
    if (slot - 1 < 0 || slot - 1 >= kSettableSlots) {
        ProgramError("dl_pb_CITSDispParamSetV");
        slot = 1;
    }
    CITSHeaderType* set = CurrentSet();
    if (!set) {
        ProgramError("dl_pb_CITSDispParamSetV");
        return;
    }
    const int16_t saved = set->ci;
    Ap.ap_OpenCITSDialog(kSelectionMode);
    // The host's mode may have changed the item; the set of the current item takes the choice.
    if (CITSHeaderType* now = CurrentSet()) {
        now->disp.im_no[slot - 1] = now->ci;
        if (now == set) now->ci = saved;
    }
}

int CITSGetDesc(int n, char* out)
{
    const ImageHeaderType* image = CurrentItem;
    if (!image) {
        Error(ERR_NO_IMAGES);
        return 4;
    }
    const CITSHeaderType* set = image->CITSHeaderPtr;
    if (!set || n < 1 || n > set->ni) return 4;
    const CITSSweepScale scale = CITSSweepScaleOf(image);
    const double v = CITSEntry(set, n - 1)->voltage / scale.scale;
    std::snprintf(out, kDescriptionBytes, "%d: %.*f %s", n, CITSLabelDecimals(v), v, scale.unit);
    return set->ci == n - 1 ? 1 : 2;
}

void CITSEditTitle(int n)
{
    CITSHeaderType* set = CurrentSet();
    if (!set) return;
    const int16_t saved = set->ci;
    set->ci = static_cast<int16_t>(n - 1);
    if (set->ci < 0 || set->ci >= set->ni) {
        ProgramError("CITSTitle");
    } else {
        CITSImageEntryType* e = CITSEntry(set, set->ci);
        (void)EditTitleText(e->title, "SPS Mapping");
    }
    set->ci = saved;
}
