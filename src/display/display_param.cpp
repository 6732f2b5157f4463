#include "display/display_param.h"
#include "display/fonts.h"
#include "display/lut.h"
#include "display/placement.h"
#include "display/vfs.h"
#include "host/errors.h"
#include "host/text.h"
#include "settings/user_settings.h"

#include <cmath>
#include <cstring>

namespace {

constexpr int32_t kReadMarkerWord = 2;
constexpr float kDefaultLightAngle = 45.0f;
constexpr int32_t kDefaultAmbient = 64;
constexpr int32_t kDefaultDiffuse = 128;

// The stored block "Display Param".
#pragma pack(push, 1)
struct TAVRIN_PACKED DisplayParamStore {
    float LightPolar;             //   0
    float LightAzimuth;           //   4
    int32_t Ambient;              //   8
    int32_t Diffuse;              //  12
    int32_t ColourTableNo;        //  16
    int32_t ImageDisplaySize;     //  20
    int32_t TextOverlayOn;        //  24
    int32_t TextOverlayMode;      //  28
    int32_t DispMode;             //  32
    int16_t ContourLevels;        //  36
    float DisplayFactor;          //  38
    int32_t ScaleBarMode;         //  42
    int32_t FullDisplayOn;        //  46
    uint32_t ReservedParam1;      //  50
    int32_t LowerFrameEdge;       //  54
    char OverlayText[TV_OVERLAY_TEXTS][TV_OVERLAY_TEXT_CHARS];   //  58
    uint8_t PlotAndPrint[49];     // 213: the plot state and the print layout values
};
#pragma pack(pop)
static_assert(sizeof(DisplayParamStore) == kDisplayParamStoreBytes, "the stored display block is 262 bytes");
static_assert(offsetof(DisplayParamStore, OverlayText) == 58, "overlay texts at 58");

// The plot and print part of the block, carried from file to file until the plot window and
// the print layout fill it.
uint8_t g_plotAndPrint[sizeof(DisplayParamStore::PlotAndPrint)];

float LimitedDisplayFactor(float factor)
{
    if (!(factor >= kMinDisplayFactor)) return kMinDisplayFactor;   // NaN included
    return factor > kMaxDisplayFactor ? kMaxDisplayFactor : factor;
}

void CopyOverlayTexts(char (&to)[TV_OVERLAY_TEXTS][TV_OVERLAY_TEXT_CHARS],
                      const char (&from)[TV_OVERLAY_TEXTS][TV_OVERLAY_TEXT_CHARS])
{
    for (int i = 0; i < TV_OVERLAY_TEXTS; ++i) {
        std::memcpy(to[i], from[i], TV_OVERLAY_TEXT_CHARS);
        to[i][TV_OVERLAY_TEXT_CHARS - 1] = '\0';
    }
}

int32_t TextOverlayCode()
{
    if (!FSState.TextOverlayOn) return 0;
    return FSState.TextOverlayMode ? 2 : 1;
}

DisplaySettings DefaultSettings()
{
    DisplaySettings d{};
    d.ContourLevels = kDefaultContourLevels;
    d.DisplayFactor = kDefaultDisplayFactor;
    d.ScaleBarMode = SCALE_BAR_BOTH;
    d.ReservedParam1 = 1;
    d.FullDisplayOn = 0;
    d.LightPolar = kDefaultLightAngle;
    d.LightAzimuth = kDefaultLightAngle;
    d.Ambient = kDefaultAmbient;
    d.Diffuse = kDefaultDiffuse;
    return d;
}

// The block with the process-wide settings `d`; the frame store part and the plot and print
// part are the caller's.
DisplayParamStore StoreOf(const DisplaySettings& d)
{
    DisplayParamStore s{};
    s.LightPolar = d.LightPolar;
    s.LightAzimuth = d.LightAzimuth;
    s.Ambient = d.Ambient;
    s.Diffuse = d.Diffuse;
    s.ContourLevels = d.ContourLevels;
    s.DisplayFactor = d.DisplayFactor;
    s.ScaleBarMode = d.ScaleBarMode;
    s.FullDisplayOn = d.FullDisplayOn;
    s.ReservedParam1 = d.ReservedParam1;
    CopyOverlayTexts(s.OverlayText, d.OverlayText);
    return s;
}

DisplayParamStore DefaultStore()
{
    DisplayParamStore s = StoreOf(DefaultSettings());
    s.ColourTableNo = kDefaultColourTableNo;
    s.ImageDisplaySize = kFrameWidth;
    s.TextOverlayOn = 0;
    s.TextOverlayMode = 1;
    s.DispMode = 0;
    s.LowerFrameEdge = 1;
    return s;
}

DisplayParamStore CollectStore()
{
    DisplayParamStore s = StoreOf(Display);
    s.ColourTableNo = ColourTableNo;
    s.ImageDisplaySize = FSState.ImageDisplaySize;
    s.TextOverlayOn = FSState.TextOverlayOn;
    s.TextOverlayMode = FSState.TextOverlayMode;
    s.DispMode = FSState.DispMode;
    s.LowerFrameEdge = LowerFrameEdgeOn ? 1 : 0;
    std::memcpy(s.PlotAndPrint, g_plotAndPrint, sizeof g_plotAndPrint);
    return s;
}

void ApplyStore(const DisplayParamStore& s)
{
    Display.LightPolar = std::isfinite(s.LightPolar) ? s.LightPolar : kDefaultLightAngle;
    Display.LightAzimuth = std::isfinite(s.LightAzimuth) ? s.LightAzimuth : kDefaultLightAngle;
    Display.Ambient = s.Ambient;
    Display.Diffuse = s.Diffuse;
    ColourTableNo = ((s.ColourTableNo % N_OLUTS) + N_OLUTS) % N_OLUTS;
    // The frame store settings reach the frame store that is current; a frame store opened
    // later starts from its own opening state.
    if (CurrentVFS) {
        FSState.ImageDisplaySize = s.ImageDisplaySize;
        FSState.TextOverlayOn = s.TextOverlayOn ? 1 : 0;
        FSState.TextOverlayMode = s.TextOverlayMode ? 1 : 0;
        FSState.DispMode = s.DispMode >= 0 && s.DispMode < kDisplayModes ? s.DispMode : 0;
    }
    Display.ContourLevels = s.ContourLevels;
    Display.DisplayFactor = LimitedDisplayFactor(s.DisplayFactor);
    Display.ScaleBarMode = s.ScaleBarMode;
    Display.FullDisplayOn = s.FullDisplayOn;
    Display.ReservedParam1 = s.ReservedParam1;
    LowerFrameEdgeOn = s.LowerFrameEdge != 0;
    CopyOverlayTexts(Display.OverlayText, s.OverlayText);
    std::memcpy(g_plotAndPrint, s.PlotAndPrint, sizeof g_plotAndPrint);
}

} // namespace

// The font into the record's form; answers its colour.
uint32_t FontToRecord(const FontRecType& font, TvLogFont* out)
{
    static_assert(sizeof(TvLogFont) == sizeof(LOGFONT), "the two font descriptions agree");
    std::memcpy(out, &font.Font, sizeof *out);
    out->lfHeight = font.Font.lfHeight / kRecordFontHeightDivisor;
    out->lfFaceName[sizeof out->lfFaceName - 1] = '\0';
    return font.FontColour;
}

void FontFromRecord(FontRecType& font, const TvLogFont& in, uint32_t colour)
{
    std::memcpy(&font.Font, &in, sizeof font.Font);
    const int64_t height = int64_t{in.lfHeight} * kRecordFontHeightDivisor;
    font.Font.lfHeight = static_cast<int32_t>(height > INT32_MAX ? INT32_MAX : height < INT32_MIN ? INT32_MIN : height);
    font.Font.lfFaceName[sizeof font.Font.lfFaceName - 1] = '\0';
    font.FontColour = colour;
}

DisplaySettings Display = DefaultSettings();
bool AttachedSpectraMarksOn = false;
bool FullDisplaySuppressed = false;
bool DisplayTimingOn = false;

void GetDisplayParam(wint_DisplayParamType* param)
{
    if (!param) {
        ProgramError("dl_GetDisplayParam p=null");
        return;
    }
    if (FSState.DispMode < 0 || FSState.DispMode >= kDisplayModes)
        ProgramError("dl_GetDisplayParam DispMode=%d", static_cast<int>(FSState.DispMode));
    std::memset(param, 0, sizeof *param);
    param->ImageDisplaySize = FSState.ImageDisplaySize;
    param->wint_TextOverlay = TextOverlayCode();
    param->DispMode = FSState.DispMode;
    param->ReservedParam1 = Display.ReservedParam1;
    param->ReservedParam2 = 0.0f;
    param->Reserved20 = kReadMarkerWord;
    param->ContourLevels = Display.ContourLevels;
    param->DisplayFactor = Display.DisplayFactor;
    param->ScaleBarMode = Display.ScaleBarMode;
    param->Reserved34 = kReadMarkerWord;
    CopyOverlayTexts(param->OverlayText, Display.OverlayText);
    param->Reserved193 = kReadMarkerWord;
    param->CaptionColour = FontToRecord(NamedFont(FONT_CAPTION), &param->CaptionFont);
    param->BarColour = FontToRecord(NamedFont(FONT_BAR), &param->BarFont);
    param->ThirdColour = FontToRecord(NamedFont(FONT_THIRD), &param->ThirdFont);
    param->Reserved389 = 1;
    param->Reserved390 = 0;
    param->FullDisplayOn = Display.FullDisplayOn;
}

void SetDisplayParam(const wint_DisplayParamType* param)
{
    if (!param) {
        ProgramError("dl_SetDisplayParam p=null");
        return;
    }
    // Copied out first: the record is packed.
    const int32_t overlay = param->wint_TextOverlay;
    if (overlay < 0 || overlay > 2) {
        ProgramError("wint_TextOverlay");
        return;
    }
    int32_t mode = param->DispMode;
    if (mode < 0 || mode >= kDisplayModes) {
        ProgramError("dl_SetDisplayParam DispMode=%d", static_cast<int>(mode));
        mode = 0;
    }
    FSState.ImageDisplaySize = param->ImageDisplaySize;
    FSState.TextOverlayOn = overlay != 0 ? 1 : 0;
    FSState.TextOverlayMode = overlay == 2 ? 1 : 0;
    FSState.DispMode = mode;
    Display.ReservedParam1 = param->ReservedParam1;
    Display.ContourLevels = param->ContourLevels;
    Display.DisplayFactor = LimitedDisplayFactor(param->DisplayFactor);
    Display.ScaleBarMode = param->ScaleBarMode;
    CopyOverlayTexts(Display.OverlayText, param->OverlayText);
    FontFromRecord(NamedFont(FONT_CAPTION), param->CaptionFont, param->CaptionColour);
    FontFromRecord(NamedFont(FONT_BAR), param->BarFont, param->BarColour);
    FontFromRecord(NamedFont(FONT_THIRD), param->ThirdFont, param->ThirdColour);
    Display.FullDisplayOn = param->FullDisplayOn;
    AttachedSpectraMarksOn = true;
}

void StoreDisplaySettings()
{
    const DisplayParamStore store = CollectStore();
    SaveSettingStruct("Display Param", &store, sizeof store);
    SaveSettingStruct("Fonts", FontTable(), sizeof(FontRecType) * kFontCount);
}

void RetrieveDisplaySettings()
{
    DisplayParamStore store = DefaultStore();
    DisplayParamStore read{};
    if (LoadSettingStruct("Display Param", &read, sizeof read)) store = read;
    FontRecType fonts[kFontCount];
    if (LoadSettingStruct("Fonts", fonts, sizeof fonts)) {
        for (int i = 0; i < kFontCount; ++i) {
            fonts[i].Font.lfFaceName[sizeof fonts[i].Font.lfFaceName - 1] = '\0';
            FontTable()[i] = fonts[i];
        }
    } else {
        for (int i = 0; i < kFontCount; ++i)
            strncpy0(FontTable()[i].Font.lfFaceName, kDefaultFontFace, sizeof FontTable()[i].Font.lfFaceName);
    }
    ApplyStore(store);
}

void ResetDisplaySettings()
{
    Display = DefaultSettings();
    std::memset(g_plotAndPrint, 0, sizeof g_plotAndPrint);
    AttachedSpectraMarksOn = false;
    FullDisplaySuppressed = false;
    DisplayTimingOn = false;
}
