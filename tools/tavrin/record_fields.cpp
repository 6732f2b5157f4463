#include "record_fields.h"

#define F(m) TAVRIN_RECORD_FIELD(Record, m)
#define TABLE(T, label, ...)                                                      \
    template <>                                                                  \
    const RecordFields* FieldsOf<T>()                                            \
    {                                                                            \
        using Record = T;                                                        \
        static const RecordField fields[] = {__VA_ARGS__};                       \
        static const RecordFields table = {label, fields, sizeof fields / sizeof fields[0]}; \
        return &table;                                                           \
    }

TABLE(wint_ColourParamType, "ColourParam", F(ColourTableNo), F(ColourItem), F(ColourSource), F(RGBItemState1),
      F(RGBItemState2))

TABLE(wint_CantileverParamType, "CantileverParam", F(Name), F(ForceOn), F(ForceK), F(ForceSens), F(ForceOffset),
      F(FrictionOn), F(FrictionOffset), F(FrictionA), F(FrictionB), F(FrictionC), F(AmpOn), F(AmpA), F(AmpB),
      F(AmpC), F(AmpD), F(ExtraOn), F(ExtraValue))

TABLE(wint_SPMCalType, "SPMCal", F(ForceOn), F(ForceK), F(ForceSens), F(ForceOffset), F(FrictionOn),
      F(FrictionOffset), F(FrictionA), F(FrictionB), F(FrictionC), F(AmpOn), F(AmpA), F(AmpB), F(AmpC), F(AmpD),
      F(ExtraOn), F(ExtraValue))

TABLE(TvRect, "Rect", F(left), F(top), F(right), F(bottom))

TABLE(wint_StartUpStringType, "StartUpStrings", F(Text1), F(Text2), F(Text3))

TABLE(wint_SpecExportParamType, "SpecExportParam", F(NoHeading), F(Separator))

TABLE(wint_DisplayParamType, "DisplayParam", F(ImageDisplaySize), F(wint_TextOverlay), F(DispMode),
      F(ContourLevels), F(DisplayFactor), F(ScaleBarMode), F(CaptionColour), F(BarColour), F(ThirdColour),
      F(FullDisplayOn))

// plot and spectra; of each font the height (the stored height / 6)
#define FONT_HEIGHT(name, font) \
    RecordField { name, offsetof(Record, font) + offsetof(TvLogFont, lfHeight), 4, RecordField::I32 }
TABLE(wint_PlotParamType, "PlotParam", F(PlotWidth), F(PlotHeight), F(LogAxisX), F(LogAxisY), F(AutoAxes), F(GridX),
      F(GridY), F(BoxAxes), F(MinX), F(MinY), F(MaxX), F(MaxY), F(TickStepX), F(TickStepY),
      FONT_HEIGHT("TitleFontHeight", TitleFont), FONT_HEIGHT("AxisTitleFontHeight", AxisTitleFont),
      FONT_HEIGHT("NumberFontHeight", NumberFont), F(TitleColour), F(AxisTitleColour), F(NumberColour))
#undef FONT_HEIGHT

TABLE(wint_SmoothSpecParamType, "SmoothSpecParam", F(Mode), F(Points))

TABLE(wint_DiffSpecParamType, "DiffSpecParam", F(Mode), F(Points))

// The mask dialog: the control states one by one as MaskControls0 ... ImageControls5.
template <>
const RecordFields* FieldsOf<wint_FFTWinParamType>()
{
    using W = wint_FFTWinParamType;
#define STATE(array, i) RecordField{#array #i, offsetof(W, array) + (i) * 4, 4, RecordField::U32}
    static const RecordField fields[] = {
        TAVRIN_RECORD_FIELD(W, BandMode), STATE(MaskControls, 0), STATE(MaskControls, 1), STATE(MaskControls, 2),
        STATE(MaskControls, 3), STATE(MaskControls, 4), STATE(MaskControls, 5), TAVRIN_RECORD_FIELD(W, TimeFreqLow),
        TAVRIN_RECORD_FIELD(W, TimeFreqHigh), TAVRIN_RECORD_FIELD(W, SpaceFreqLow), TAVRIN_RECORD_FIELD(W, SpaceFreqHigh),
        TAVRIN_RECORD_FIELD(W, MaskPass), TAVRIN_RECORD_FIELD(W, MaskZoom), STATE(ImageControls, 0),
        STATE(ImageControls, 1), STATE(ImageControls, 2), STATE(ImageControls, 3), STATE(ImageControls, 4),
        STATE(ImageControls, 5),
    };
#undef STATE
    static const RecordFields table = {"FFTWinParam", fields, sizeof fields / sizeof fields[0]};
    return &table;
}

TABLE(C3DParam, "3DParam", F(DataId), F(nx), F(ny), F(SizeX), F(SizeY), F(Height), F(SizeUnit), F(HeightUnit))

// The item list: its count, the row a button acts on, and the first rows (a script shows and
// sets these; the record holds 2000).
template <>
const RecordFields* FieldsOf<wint_SelectItemCol>()
{
    using L = wint_SelectItemCol;
    constexpr size_t text = TV_SELECT_ITEM_TEXT;
#define ROW(i)                                                                                        \
    RecordField{"Row" #i, offsetof(L, Texts) + (i) * 3 * text, text, RecordField::Text},              \
        RecordField{"Title" #i, offsetof(L, Texts) + ((i) * 3 + 1) * text, text, RecordField::Text},  \
        RecordField{"Selected" #i, offsetof(L, Selected) + (i) * 4, 4, RecordField::I32},             \
        RecordField{"Colour" #i, offsetof(L, Colours) + (i) * 4, 4, RecordField::U32}
    static const RecordField fields[] = {
        RecordField{"Count", offsetof(L, Count), 4, RecordField::I32},
        RecordField{"Row", offsetof(L, Extra) + 4, 4, RecordField::I32},
        ROW(0), ROW(1), ROW(2), ROW(3),
    };
#undef ROW
    static const RecordFields table = {"SelectItemCol", fields, sizeof fields / sizeof fields[0]};
    return &table;
}

// background: the points as PlaneX1, PlaneY1 ... and RegionAX, RegionAY ... (0 to 511 square).
template <>
const RecordFields* FieldsOf<wint_SubtBckgrndParamType>()
{
    using B = wint_SubtBckgrndParamType;
#define POINT(name, array, i) RecordField{name, offsetof(B, array) + (i) * sizeof(int16_t), sizeof(int16_t), RecordField::I16}
    static const RecordField fields[] = {
        TAVRIN_RECORD_FIELD(B, Method), TAVRIN_RECORD_FIELD(B, DegreeX), TAVRIN_RECORD_FIELD(B, DegreeY),
        TAVRIN_RECORD_FIELD(B, PolyOrder),
        POINT("PlaneX1", PlanePoints, 0), POINT("PlaneY1", PlanePoints, 1), POINT("PlaneX2", PlanePoints, 2),
        POINT("PlaneY2", PlanePoints, 3), POINT("PlaneX3", PlanePoints, 4), POINT("PlaneY3", PlanePoints, 5),
        TAVRIN_RECORD_FIELD(B, UseRegion), TAVRIN_RECORD_FIELD(B, RegionOption),
        POINT("RegionAX", RegionPoints, 0), POINT("RegionAY", RegionPoints, 1), POINT("RegionBX", RegionPoints, 2),
        POINT("RegionBY", RegionPoints, 3), POINT("RegionCX", RegionPoints, 4), POINT("RegionCY", RegionPoints, 5),
        TAVRIN_RECORD_FIELD(B, UseThreshold), TAVRIN_RECORD_FIELD(B, LowThreshold),
        TAVRIN_RECORD_FIELD(B, HighThreshold), TAVRIN_RECORD_FIELD(B, ManualSlopeX),
        TAVRIN_RECORD_FIELD(B, ManualSlopeY), TAVRIN_RECORD_FIELD(B, ShowBackground),
    };
#undef POINT
    static const RecordFields table = {"SubtBckgrndParam", fields, sizeof fields / sizeof fields[0]};
    return &table;
}

// particles: the scalar fields, the button states one by one (Button1 ... Button9, More1 ...
// More3), the grey scale texts, the first histogram counts and the title; the views and the
// labels stay in the record.
template <>
const RecordFields* FieldsOf<wint_ParticleParamType>()
{
    using P = wint_ParticleParamType;
#define STATE(name, array, i) RecordField{name, offsetof(P, array) + (i) * 4, 4, RecordField::U32}
#define SCALE(name, i) RecordField{name, offsetof(P, ScaleTexts) + (i) * TV_PARTICLE_SCALE_TEXT, TV_PARTICLE_SCALE_TEXT, RecordField::Text}
    static const RecordField fields[] = {
        TAVRIN_RECORD_FIELD(P, Connectivity),
        STATE("Button1", ButtonStates, 0), STATE("Button2", ButtonStates, 1), STATE("Button3", ButtonStates, 2),
        STATE("Button4", ButtonStates, 3), STATE("Button5", ButtonStates, 4), STATE("Button6", ButtonStates, 5),
        STATE("Button7", ButtonStates, 6), STATE("Button8", ButtonStates, 7), STATE("Button9", ButtonStates, 8),
        TAVRIN_RECORD_FIELD(P, HistogramKind), TAVRIN_RECORD_FIELD(P, HistogramBins),
        STATE("More1", MoreStates, 0), STATE("More2", MoreStates, 1), STATE("More3", MoreStates, 2),
        TAVRIN_RECORD_FIELD(P, LowLevel), TAVRIN_RECORD_FIELD(P, HighLevel), TAVRIN_RECORD_FIELD(P, Initialise),
        SCALE("Scale1", 0), SCALE("Scale2", 1), SCALE("Scale3", 2), SCALE("Scale4", 3), SCALE("Scale5", 4),
        TAVRIN_RECORD_FIELD(P, ZLow), TAVRIN_RECORD_FIELD(P, ZHigh), TAVRIN_RECORD_FIELD(P, ZUnit),
        STATE("Count1", HistogramCounts, 0), STATE("Count2", HistogramCounts, 1), STATE("Count3", HistogramCounts, 2),
        STATE("Count4", HistogramCounts, 3),
        TAVRIN_RECORD_FIELD(P, HistogramTitle),
    };
#undef STATE
#undef SCALE
    static const RecordFields table = {"ParticleParam", fields, sizeof fields / sizeof fields[0]};
    return &table;
}

template <>
const RecordFields* FieldsOf<wint_ParticleSttsParamType>()
{
    using S = wint_ParticleSttsParamType;
#define LINE(name, i) RecordField{name, offsetof(S, SummaryLines) + (i) * TV_PARTICLE_SUMMARY_TEXT, TV_PARTICLE_SUMMARY_TEXT, RecordField::Text}
#define RECT(name, i) RecordField{name, offsetof(S, SelectedRect) + (i) * 4, 4, RecordField::I32}
    static const RecordField fields[] = {
        TAVRIN_RECORD_FIELD(S, SortKey), TAVRIN_RECORD_FIELD(S, FileName),
        LINE("Summary1", 0), LINE("Summary2", 1), LINE("Summary3", 2), LINE("Summary4", 3), LINE("Summary5", 4),
        RECT("SelectedLeft", 0), RECT("SelectedTop", 1), RECT("SelectedRight", 2), RECT("SelectedBottom", 3),
        TAVRIN_RECORD_FIELD(S, SelectedColour), TAVRIN_RECORD_FIELD(S, SelectedRow),
    };
#undef LINE
#undef RECT
    static const RecordFields table = {"ParticleSttsParam", fields, sizeof fields / sizeof fields[0]};
    return &table;
}

// The cantilever block of an LM image: the threshold fields it begins with, by their place in
// the image record (offset 3246 on); the rest of the 62 bytes is carried.
template <>
const RecordFields* FieldsOf<wint_LMCantileverImageParamType>()
{
    static const RecordField fields[] = {
        {"Threshold1On", 0, 1, RecordField::U8},  {"Threshold2On", 1, 1, RecordField::U8},
        {"Threshold1", 2, 8, RecordField::F64},   {"Threshold2", 10, 8, RecordField::F64},
        {"Threshold1Dir", 18, 4, RecordField::U32}, {"Threshold2Dir", 22, 4, RecordField::U32},
        {"SearchFrom", 26, 4, RecordField::U32},  {"SearchTo", 30, 4, RecordField::U32},
    };
    static const RecordFields table = {"LMCantileverParam", fields, sizeof fields / sizeof fields[0]};
    return &table;
}

// The display block of a mapping set: the sweep values of the 16 slots the host's dialog sets
// as voltage0 ... voltage15; the other slots are carried.
template <>
const RecordFields* FieldsOf<wint_CITSDispParamType>()
{
    using W = wint_CITSDispParamType;
#define SLOT(i) RecordField{"voltage" #i, offsetof(W, voltage) + (i) * 4, 4, RecordField::F32}
    static const RecordField fields[] = {
        TAVRIN_RECORD_FIELD(W, mode), TAVRIN_RECORD_FIELD(W, labels), TAVRIN_RECORD_FIELD(W, n),
        TAVRIN_RECORD_FIELD(W, topography), TAVRIN_RECORD_FIELD(W, select), TAVRIN_RECORD_FIELD(W, source),
        SLOT(0), SLOT(1), SLOT(2), SLOT(3), SLOT(4), SLOT(5), SLOT(6), SLOT(7),
        SLOT(8), SLOT(9), SLOT(10), SLOT(11), SLOT(12), SLOT(13), SLOT(14), SLOT(15),
    };
#undef SLOT
    static const RecordFields table = {"CITSDispParam", fields, sizeof fields / sizeof fields[0]};
    return &table;
}

// the mesh: the report and the parameters (points as P0X ... P2Y, the frame as FrameLeft ...)
TABLE(MeshInfoType, "MeshInfo", F(Word), F(Orientation), F(Angle), F(CentreX), F(CentreY), F(SpacingX),
      F(SpacingY), F(RightAngle), F(EqualSpacing))

#define POINT(name, array, i) RecordField{name, offsetof(Record, array) + (i) * sizeof(int16_t), sizeof(int16_t), RecordField::I16}
#define FRAME(name, side) RecordField{name, offsetof(Record, Frame) + offsetof(TvRect16, side), sizeof(int16_t), RecordField::I16}
TABLE(wint_MeshParamType, "MeshParam", F(Purpose), F(Options), F(Colour), POINT("P0X", P0, 0), POINT("P0Y", P0, 1),
      POINT("P1X", P1, 0), POINT("P1Y", P1, 1), POINT("P2X", P2, 0), POINT("P2Y", P2, 1), F(LockAngle), F(LockSize),
      F(LockShape), F(LockPlace), F(PixelsX), F(PixelsY), F(SizeX), F(SizeY), FRAME("FrameLeft", left),
      FRAME("FrameTop", top), FRAME("FrameRight", right), FRAME("FrameBottom", bottom))
#undef POINT
#undef FRAME

TABLE(wint_ElasticModulusType, "ElasticModulusParam", F(SmoothPoints), F(SlopeOutIn), F(SlopeInOut),
      F(ContactMethod), F(RampLimit), F(SpringConstant), F(TipRadius), F(PoissonRatio), F(ValidText1),
      F(ValidText2), F(ResultText), F(FCStatus), F(CalcStatus), F(Apply1Status), F(Apply2Status))
