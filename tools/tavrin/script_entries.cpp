// The entry points a script reaches, one line each, family by family. Entry points that hand
// the host's own buffers or windows to the library (opening and closing frame stores, saving a
// window's bitmap) and those of a variable argument list (Error, Log2Disk, OutputDebugString)
// are host commands of the script instead; Initialise, Finish and SetPlatformTable belong to
// the host's start and end.
#include "commands.h"
#include "record_fields.h"
#include "script_call.h"

namespace {

ScriptResult ScriptGetCITSCurrentImageVoltages(ScriptWords& words)
{
    if (words.More()) throw ScriptError("too many arguments: '" + words.positional[words.next] + "'");
    std::vector<double> voltages(4096);
    const int32_t count = dl_GetCITSCurrentImageVoltages(voltages.data());
    ScriptResult result;
    result.returned = true;
    result.value = ResultText(count);
    for (int32_t k = 0; k < count; ++k) result.outputs.push_back(ResultText(voltages[static_cast<size_t>(k)]));
    return result;
}

} // namespace

const std::vector<ScriptEntry>& ScriptEntries()
{
    static const std::vector<ScriptEntry> entries = {
        // start and stop
        TAVRIN_ENTRY(dl_GetRevisionNumber),
        TAVRIN_ENTRY(dl_UserID),
        TAVRIN_ENTRY(dl_DeleteUserID),
        TAVRIN_ENTRY(dl_InitLogFileName),
        TAVRIN_ENTRY(dl_GetDataLogFileName),
        TAVRIN_ENTRY(dl_GetStartUpStrings),
        // settings
        TAVRIN_ENTRY(dl_StoreConfigurationToDisk),
        TAVRIN_ENTRY(dl_RetriveConfigurationFromDisk),
        TAVRIN_ENTRY(dl_UpgradeINIfilesFromOldSoftwareVersion),
        TAVRIN_ENTRY(dl_LoadSettingString),
        TAVRIN_ENTRY(dl_SaveSettingString),
        // files and data directories
        TAVRIN_ENTRY(dl_OpenSTMData),
        TAVRIN_ENTRY(dl_CanOpenFile),
        TAVRIN_ENTRY(dl_SaveData),
        TAVRIN_ENTRY(dl_pb_SaveDataAndRepeat),
        TAVRIN_ENTRY(dl_SelectDataForSaving),
        TAVRIN_ENTRY(dl_GetImageFileName),
        TAVRIN_ENTRY(dl_ReplayInitialise),
        TAVRIN_ENTRY(dl_ReplayDisplay),
        TAVRIN_ENTRY(dl_InitializeDataDirectoryName),
        TAVRIN_ENTRY(dl_SetDataDirectoryName),
        TAVRIN_ENTRY(dl_GetDataDirectoryName),
        TAVRIN_ENTRY(dl_GetInitFileName),
        TAVRIN_ENTRY(dl_GetUserFileName),
        TAVRIN_ENTRY(dl_GetColorDataDirectoryName),
        TAVRIN_ENTRY(dl_GetCantiDataDirectoryName),
        TAVRIN_ENTRY(dl_GetSpecExportParam),
        TAVRIN_ENTRY(dl_SetSpecExportParam),
        // data list
        TAVRIN_ENTRY(dl_GetCurrentImagePtr),
        TAVRIN_ENTRY(dl_SetCurrentImagePtr),
        TAVRIN_ENTRY(dl_GetDataDescriptor),
        TAVRIN_ENTRY(dl_SetDataItem),
        TAVRIN_ENTRY(dl_NextData1),
        TAVRIN_ENTRY(dl_PreviousData1),
        TAVRIN_ENTRY(dl_NextDataType1),
        TAVRIN_ENTRY(dl_PreviousDataType1),
        TAVRIN_ENTRY(dl_EraseDataNext),
        TAVRIN_ENTRY(dl_EraseDataPrevious),
        TAVRIN_ENTRY(dl_EraseAllData),
        TAVRIN_ENTRY(dl_EraseAllDataExceptCurrent),
        TAVRIN_ENTRY(dl_IsCurrentDataTypeImage),
        // units and number texts
        TAVRIN_ENTRY(dl_AreaUnits),
        TAVRIN_ENTRY(dl_AreDoublesEqual),
        TAVRIN_ENTRY(dl_AreFloatsEqual),
        TAVRIN_ENTRY(dl_Int2Str),
        TAVRIN_ENTRY(dl_Double2Str),
        TAVRIN_ENTRY(dl_Str2Int),
        TAVRIN_ENTRY(dl_Str2Double),
        // calibration
        TAVRIN_ENTRY(dl_GetCantiParam),
        TAVRIN_ENTRY(dl_SetCantiParam),
        TAVRIN_ENTRY(dl_SetDefaultCantiParam),
        TAVRIN_ENTRY(dl_GetSPMCalParam),
        TAVRIN_ENTRY(dl_SetSPMCalParam),
        // colour
        TAVRIN_ENTRY(dl_GetColourParam),
        TAVRIN_ENTRY(dl_SetColourParam),
        TAVRIN_ENTRY(dl_pb_ColourOpen),
        TAVRIN_ENTRY(dl_pb_ColourSave),
        TAVRIN_ENTRY(dl_pb_ColourSet),
        TAVRIN_ENTRY(dl_pb_ColourDefine),
        TAVRIN_ENTRY(dl_pb_Colour_CopyToImage),
        // display
        TAVRIN_ENTRY(dl_GetDisplayParam),
        TAVRIN_ENTRY(dl_SetDisplayParam),
        TAVRIN_ENTRY(dl_pb_DisplayImage),
        TAVRIN_ENTRY(dl_pb_DisplaySpec),
        TAVRIN_ENTRY(dl_DisplayData),
        TAVRIN_ENTRY(dl_FullDisplay),
        TAVRIN_ENTRY(dl_Get3DParam),
        TAVRIN_ENTRY(dl_Set3DParam),
        TAVRIN_ENTRY(dl_3D_SelectImage),
        // frame stores
        TAVRIN_ENTRY(dl_RedrawVFS),
        TAVRIN_ENTRY(dl_VFS_pickup_image),
        TAVRIN_ENTRY(dl_VFS_drop_image),
        TAVRIN_ENTRY(dl_SelectImageFromFS),
        TAVRIN_ENTRY(dl_ClearFrameStore),
        TAVRIN_ENTRY(dl_LoadFrame),
        TAVRIN_ENTRY(dl_PrintEditUpdateVFS),
        TAVRIN_ENTRY(dl_clip_line_cohen_sutherlandI),
        // geometry and pointing
        TAVRIN_ENTRY(dl_ImageMirrorX),
        TAVRIN_ENTRY(dl_ImageMirrorY),
        TAVRIN_ENTRY(dl_TransposeImage),
        TAVRIN_ENTRY(dl_RotateImage90),
        TAVRIN_ENTRY(dl_RotateImage180),
        TAVRIN_ENTRY(dl_RotateImage270),
        TAVRIN_ENTRY(dl_RotateImageA),
        TAVRIN_ENTRY(dl_ImageTranslate),
        TAVRIN_ENTRY(dl_PadTo256Points),
        TAVRIN_ENTRY(dl_PadTo512Points),
        TAVRIN_ENTRY(dl_Interpolate128),
        TAVRIN_ENTRY(dl_Interpolate256),
        TAVRIN_ENTRY(dl_Interpolate512),
        TAVRIN_ENTRY(dl_SelectPointInVFS_Callback),
        TAVRIN_ENTRY(dl_Horz_Scroll_Bar1_Callback),
        TAVRIN_ENTRY(dl_Horz_Scroll_Bar2_Callback),
        TAVRIN_ENTRY(dl_Horz_Scroll_Bar3_Callback),
        TAVRIN_ENTRY(dl_Horz_Vert_Scroll_Bar_Callback),
        TAVRIN_ENTRY(dl_Horz_Vert_Scroll_Bar1_Callback),
        TAVRIN_ENTRY(dl_Horz2_Vert_Scroll_Bar1_Callback),
        TAVRIN_ENTRY(dl_GetSelectItemCol),
        TAVRIN_ENTRY(dl_SetSelectItemCol),
        TAVRIN_ENTRY(dl_pb_SelectItemCol_Add),
        TAVRIN_ENTRY(dl_pb_SelectItemCol_Remove),
        TAVRIN_ENTRY(dl_pb_SelectItemCol_Pickup),
        TAVRIN_ENTRY(dl_GetPrintEditItem),
        // background
        TAVRIN_ENTRY(dl_GetSubtBckgrndParam),
        TAVRIN_ENTRY(dl_SetSubtBckgrndParam),
        TAVRIN_ENTRY(dl_SubtBackUpdateImageDisplay),
        TAVRIN_ENTRY(dl_pb_SubtBckgrnd),
        // filters; the kernel tables take and give their values as a text "v1,v2,..."
        TAVRIN_ENTRY(dl_Convolve3x3),
        TAVRIN_ENTRY(dl_Convolve5x5),
        TAVRIN_ENTRY(dl_EdgeEnhance3x3),
        MakeEntry("Get3x3KernelParam", ScriptGet3x3KernelParam),
        MakeEntry("Get5x5KernelParam", ScriptGet5x5KernelParam),
        MakeEntry("GetEE3x3KernelParam", ScriptGetEE3x3KernelParam),
        MakeEntry("Set3x3KernelParam", ScriptSet3x3KernelParam),
        MakeEntry("Set5x5KernelParam", ScriptSet5x5KernelParam),
        TAVRIN_ENTRY(dl_DifferentiateImage),
        TAVRIN_ENTRY(dl_ImageMedianFilter5),
        TAVRIN_ENTRY(dl_ImageMedianFilter9),
        // contrast, level table and image arithmetic
        TAVRIN_ENTRY(dl_AdjustLUT),
        TAVRIN_ENTRY(dl_SetWindow),
        TAVRIN_ENTRY(dl_HistEqualise),
        TAVRIN_ENTRY(dl_DisplayHistogram),
        TAVRIN_ENTRY(dl_DisplayImageLUT),
        TAVRIN_ENTRY(dl_LineariseImageLUT),
        TAVRIN_ENTRY(dl_MathLUT),
        TAVRIN_ENTRY(dl_FixImageZScale),
        TAVRIN_ENTRY(dl_SingleImageMath),
        TAVRIN_ENTRY(dl_DoubleImageMath),
        TAVRIN_ENTRY(dl_NormaliseImage),
        TAVRIN_ENTRY(dl_NormaliseSD),
        // plot and spectra
        TAVRIN_ENTRY(dl_GetPlotParam),
        TAVRIN_ENTRY(dl_SetPlotParam),
        TAVRIN_ENTRY(dl_CheckLogAxesX),
        TAVRIN_ENTRY(dl_CheckLogAxesY),
        TAVRIN_ENTRY(dl_CheckLogAxesXY),
        TAVRIN_ENTRY(dl_IsLapSpec),
        TAVRIN_ENTRY(dl_SmoothSpec),
        TAVRIN_ENTRY(dl_GetSmoothSpecParam),
        TAVRIN_ENTRY(dl_SetSmoothSpecParam),
        TAVRIN_ENTRY(dl_DiffSpec),
        TAVRIN_ENTRY(dl_GetDiffSpecParam),
        TAVRIN_ENTRY(dl_SetDiffSpecParam),
        TAVRIN_ENTRY(dl_SpecMathX),
        TAVRIN_ENTRY(dl_SpecMathY),
        TAVRIN_ENTRY(dl_DoubleSpecMath),
        TAVRIN_ENTRY(dl_RemoveDCBias),
        TAVRIN_ENTRY(dl_SeparateRampDirections),
        // frequency domain; mask circles come through pick like every selection
        TAVRIN_ENTRY(dl_ForwardFFT),
        TAVRIN_ENTRY(dl_InverseFFT),
        TAVRIN_ENTRY(dl_EnhanceFFTContrast),
        TAVRIN_ENTRY(dl_CloseFFTData1),
        TAVRIN_ENTRY(dl_DisplayFFTImage),
        TAVRIN_ENTRY(dl_GetFFTWinParam),
        TAVRIN_ENTRY(dl_SetFFTWinParam),
        TAVRIN_ENTRY(dl_pb_FFTWin_New),
        TAVRIN_ENTRY(dl_pb_FFTWin_Add),
        TAVRIN_ENTRY(dl_pb_FFTWin_Open),
        TAVRIN_ENTRY(dl_pb_FFTWin_Save),
        TAVRIN_ENTRY(dl_pb_FFTWin_Close),
        TAVRIN_ENTRY(dl_pb_FFTWin_Apply),
        // particles; pointer events as "ParticlePointer_Callback 18 X Y 1" (0 to 255 square).
        // The list row takes the C form of its entry point, the one of five texts.
        TAVRIN_ENTRY(dl_GetParticleParam),
        TAVRIN_ENTRY(dl_SetParticleParam),
        TAVRIN_ENTRY(dl_GetParticleSttsParam),
        TAVRIN_ENTRY(dl_SetParticleSttsParam),
        MakeEntry("ParticleSttsGetDesc",
                  static_cast<int32_t (*)(int16_t, char (*)[TV_PARTICLE_DESC_TEXT])>(dl_ParticleSttsGetDesc)),
        TAVRIN_ENTRY(dl_pb_ParticleSttsChoose),
        TAVRIN_ENTRY(dl_pb_DisplayParticleHist),
        TAVRIN_ENTRY(dl_ParticlePointer_Callback),
        TAVRIN_ENTRY(dl_ToggleConnectivity),
        TAVRIN_ENTRY(dl_GetConnectivity),
        TAVRIN_ENTRY(dl_ErodeBilevelImage),
        TAVRIN_ENTRY(dl_DilateBilevelImage),
        TAVRIN_ENTRY(dl_IsolateBilevelImage),
        TAVRIN_ENTRY(dl_ShootObjects),
        TAVRIN_ENTRY(dl_WriteObjectStatistics),
        TAVRIN_ENTRY(dl_GenerateBilevelImage),
        TAVRIN_ENTRY(dl_GetObjectStatistics),
        TAVRIN_ENTRY(dl_CompileObjectStatistics),
        TAVRIN_ENTRY(dl_StatisticsHistogram),
        // SPS Mapping; the voltages of the current set print one a line after "= N"
        TAVRIN_ENTRY(dl_IsFCMappingData),
        TAVRIN_ENTRY(dl_IsFVMappingData),
        ScriptEntry{"GetCITSCurrentImageVoltages", ScriptGetCITSCurrentImageVoltages},
        TAVRIN_ENTRY(dl_GetLMCantileverParam),
        TAVRIN_ENTRY(dl_SetLMCantileverParam),
        // the mesh tool, extract and replace, lattice average; the mesh's dialog through "mesh"
        TAVRIN_ENTRY(dl_GetMeshClass),
        TAVRIN_ENTRY(dl_ApMeshInfo),
        TAVRIN_ENTRY(dl_ExtractArea),
        TAVRIN_ENTRY(dl_ReplaceArea),
        TAVRIN_ENTRY(dl_LatticeAverage),
    };
    return entries;
}
