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

TABLE(C3DParam, "3DParam", F(DataId), F(nx), F(ny), F(SizeX), F(SizeY), F(Height), F(SizeUnit), F(HeightUnit))
