// One image of a set shown large through the ordinary row display, and its text block.
#include "display/contents_grid.h"
#include "display/placement.h"
#include "display/vfs.h"
#include "host/error_numbers.h"
#include "host/errors.h"
#include "host/wait.h"
#include "mapping/cits_display.h"
#include "mapping/cits_label.h"
#include "settings/cantilever.h"
#include "store/data_list.h"
#include "store/image_header.h"
#include "store/units.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace {

constexpr int kRightColumn = 36;
constexpr int kTitleCentre = 27;
constexpr int kGeneralColumn = 8;

// The range line of an image by its data type; false for a type without one.
bool RangeLine(const CITSImageEntryType& e, char* out, size_t size)
{
    const double lo = e.z_low, hi = e.z_high;
    const wint_SPMCalType& cal = CantileverCalibration();
    switch (e.data_type) {
    case 1: std::snprintf(out, size, "Height %.2f : %.2f nm", lo, hi); return true;
    case 4: std::snprintf(out, size, "Linear I range %.2f : %.2f nA", lo, hi); return true;
    case 8: std::snprintf(out, size, "Log. I range %.2f : %.2f nA", lo, hi); return true;
    case 16:
    case 4096:
    case 0x20000:
        if (cal.ForceOn)
            std::snprintf(out, size, "Force  %.3f : %.3f %s", CalibratedForce(lo), CalibratedForce(hi), UnitsForce(0));
        else
            std::snprintf(out, size, "Force  %.3f : %.3f V", lo, hi);
        return true;
    case 32:
        if (cal.FrictionOn)
            std::snprintf(out, size, "Friction Force  %.3f : %.3f %s", CalibratedFriction(lo), CalibratedFriction(hi),
                          UnitsFriction(0));
        else
            std::snprintf(out, size, "Friction Force  %.3f : %.3f V", lo, hi);
        return true;
    case 128:
        if (cal.AmpOn)
            std::snprintf(out, size, "Amplitude %.3f : %.3f %s", CalibratedAmplitude(lo), CalibratedAmplitude(hi),
                          UnitsRMS(0));
        else
            std::snprintf(out, size, "Amplitude %.3f : %.3f V", lo, hi);
        return true;
    case 256: std::snprintf(out, size, "Frequency %.3f : %.3f V", lo, hi); return true;
    case 512: std::snprintf(out, size, "Phase  %.3f : %.3f V", lo, hi); return true;
    case 1024:
    case 2048: std::snprintf(out, size, "Ext. voltage  %.3f : %.3f V", lo, hi); return true;
    default: return false;
    }
}

// The image of the current item with a set and at least one image; the numbered error
// otherwise.
ImageHeaderType* CurrentMappingImage()
{
    ImageHeaderType* image = CurrentItem;
    if (!image || !CheckHeaderIsImageType(image)) {
        Error(ERR_NO_IMAGES);
        return nullptr;
    }
    if (!image->CITSHeaderPtr) {
        Error(ERR_NOT_MAPPING);
        return nullptr;
    }
    if (image->CITSHeaderPtr->ni < 1) {
        Error(ERR_NO_MAPPING_IMAGES);
        return nullptr;
    }
    return image;
}

} // namespace

ImageHeaderType* RequireCITSImage() { return CurrentMappingImage(); }

void CITSImageText(const ImageHeaderType* image)
{
    const CITSHeaderType* set = image ? image->CITSHeaderPtr : nullptr;
    if (!set || set->ci < 0 || set->ci >= set->ni) return;
    const CITSImageEntryType& e = *CITSEntry(set, set->ci);
    PrintAt(0, 0, "Topog. image no %d.", static_cast<int>(image->DataId));
    PrintAt(kRightColumn, 0, "SPS Mapping Image (%s) %.3f", GetCITSSweepUnit(image), static_cast<double>(e.voltage));

    char titles[2][96] = {};
    bool shown[2] = {image->Title[0] != '\0', e.title[0] != '\0'};
    std::snprintf(titles[0], sizeof titles[0], "Topog title: %.40s", image->Title);
    std::snprintf(titles[1], sizeof titles[1], "SPS Mapping. title: %.40s", e.title);
    size_t longest = 0;
    for (int i = 0; i < 2; ++i)
        if (shown[i]) longest = std::max(longest, std::strlen(titles[i]));
    const int titleColumn = kTitleCentre - static_cast<int>(longest) / 2;
    int line = 1;
    for (int i = 0; i < 2; ++i)
        if (shown[i]) PrintAt(titleColumn, ++line, "%s", titles[i]);
    if (shown[0] || shown[1]) ++line;

    if (image->SPMData) {
        if (image->ImageSizeX > 0 && image->ImageSizeY > 0) {
            ++line;
            char range[128];
            if (RangeLine(e, range, sizeof range)) PrintAt(0, line, "%s", range);
        }
        PrintAt(kRightColumn, line, "ImageSize %.1f x %.1f nm.", static_cast<double>(image->ImageSizeX),
                static_cast<double>(image->ImageSizeY));
        float low = 0.0f, high = 0.0f;
        GetCITSVoltageRange(set, &low, &high);
        ++line;
        PrintAt(0, line, "Z Range (%s) %.3f : %.3f.", GetCITSSweepUnit(image), static_cast<double>(low),
                static_cast<double>(high));
        PrintAt(kRightColumn, line, "Image number %d/%d.", set->ci + 1, static_cast<int>(set->ni));
        ++line;
        PrintAt(0, line, "Sample bias %.3f V.", static_cast<double>(e.voltage));
        if (image->ScanMode == 2)
            PrintAt(kRightColumn, line, "Sample current %.2f nA.", static_cast<double>(image->TunnelCurrent));
        else
            PrintAt(kRightColumn, line, "Sample reference %.2f V.", static_cast<double>(image->TunnelCurrent));
    }
    ++line;
    PrintAt(0, line, "No of pixels (%3d,%3d).", static_cast<int>(set->cx), static_cast<int>(set->cy));
    PrintAt(kRightColumn, line, "Filename : %.260s.", image->FileName);
    ++line;
    PrintAt(0, line, "Created on %02d-%02d-%02d at %02d:%02d:%02d ", image->CreatedDate.day, image->CreatedDate.month,
            image->CreatedDate.year, image->CreatedTime.hour, image->CreatedTime.minute, image->CreatedTime.second);
    PrintAt(kRightColumn, line, "Saved on %02d-%02d-%02d at %02d:%02d:%02d ", image->SavedDate.day,
            image->SavedDate.month, image->SavedDate.year, image->SavedTime.hour, image->SavedTime.minute,
            image->SavedTime.second);
    if (image->GeneralText[0][0] != '\0') {
        line += 2;
        PrintAt(0, line, "General : %.40s", image->GeneralText[0]);
        for (int i = 1; i < 5 && image->GeneralText[i][0] != '\0'; ++i)
            PrintAt(kGeneralColumn, ++line, "%.40s", image->GeneralText[i]);
    }
}

void DisplayCurrentCITSImage()
{
    ImageHeaderType* image = CurrentMappingImage();
    if (!image) return;
    CITSHeaderType* set = image->CITSHeaderPtr;
    if (set->ci < 0 || set->ci >= set->ni) set->ci = 0;
    const int32_t savedMode = FSState.DispMode;

    CITSImageText(image);
    PrepareImageDisplay(set->cx, set->cy, 0, nullptr);
    BeginBatch();
    for (int line = 0; line < set->cy; ++line) {
        const uint16_t* row = GetCITSImagePtr(set, set->ci, static_cast<uint32_t>(line));
        if (row) ShowDisplayRow(line, row);
    }
    FSState.DisplayBusy = 0;
    FinishImageDisplay(set->cx, set->cy);
    SetFSContents(image, 1);
    if (set->disp.flags & 2) {
        const CITSLabelStyle style = BeginCITSLabels(image, set->disp.flags);
        char text[48];
        std::snprintf(text, sizeof text, "%.3f V", static_cast<double>(CITSEntry(set, set->ci)->voltage));
        const RECT clip{FSState.ImageLeft, FSState.ImageTop, FSState.ImageRight, FSState.ImageBottom};
        DrawCITSLabelText(style, (FSState.ImageLeft + FSState.ImageRight) / 2, FSState.ImageTop + 8, clip, text);
        EndCITSLabels(style);
    }
    EndBatchAndShow(FSState.ImageLeft, FSState.ImageTop, FSState.ImageRight, FSState.ImageBottom);
    FSState.DispMode = savedMode;
}
