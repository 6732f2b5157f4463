#include "store/titles.h"
#include "host/errors.h"
#include "host/text.h"
#include "settings/cantilever.h"
#include "store/image_header.h"
#include "store/units.h"

#include <cstdio>
#include <cstring>

namespace {

constexpr int kTitleSize = 80;
char g_title[kTitleSize];

struct NamedValue {
    uint32_t value;
    const char* name;
};

const char* const kDataSourceNames[] = {
    nullptr,
    "Topography",
    "Linear Current",
    "Log Current",
    "LIA1(Aux1)",
    "LIA2(Aux2)",
    "CPD(Aux3)",
    "Voltage",
    "Force",
    "Force",
    "Friction Force",
    "Phase",
    "Magnetic",
    "Elasticity",
    "Viscosity",
    "FFM Friction",
    "Surface Potential",
    "Pre-scan",
    "Amplitude",
    "Frequency",
    "Capacitance Force",
    "Bias Voltage",
    "Numerical Calculation",
    "Suface Electrical Potential(Calc.)",
    "Adhesive Force(Calc.)",
    "Noise",
    "Threshold",
    "Elastic Modulus",
};

const NamedValue kAcqModeNames[] = {
    {1, "Line(1024)"},         {2, "Mirror Image"},        {3, "Image(512)"},
    {4, "Image(256)"},         {5, "Image(128)"},          {6, "Line(512)"},
    {7, "Line(256)"},          {8, "Line(128)"},           {9, "2 Inputs"},
    {10, "4 Inputs"},          {11, "SPS Mapping"},        {12, "I-V Curve"},
    {13, "S-V Curve"},         {14, "I-S Curve"},          {15, "Force Curve"},
    {16, "Friction Force Curve"}, {17, "Montage(128)"},    {18, "Montage(256)"},
    {19, "Single SPS"},        {20, "Prepare for SPS"},    {21, "Frequency Sweep"},
    {22, "Image(512)"},        {23, "VE-AFM"},             {24, "MFM(P-P)"},
    {25, "LM-FFM"},            {26, "SKPM"},               {27, "FFM"},
    {28, "Image(1024)"},       {29, "2 Inputs(512)"},      {30, "SCFM"},
    {31, "MFM(L-L)"},          {32, "Image(64)"},          {40, "Phase Shift"},
    {41, "Line Trace Measurement"}, {50, "Coarse Stage Scan"}, {52, "DPAT Measurement"},
    {60, "F-V Curve"},         {70, "Numerical Calculation"}, {71, "FFT Analysis Curve"},
};

const NamedValue kLMCModeNames[] = {
    {1, "LMC-Force Curve"},
    {2, "LMC-Frequency Sweep"},
    {4, "LMC-Amplitude Sweep"},
    {8, "LMC-FC Mapping"},
};

const NamedValue kMapTypeNames[] = {
    {12, "I-V Mapping(CITS)"},
    {13, "S-V Mapping"},
    {14, "I-S Mapping"},
    {15, "Force Curve Mapping"},
    {51, "Force Curve Mapping"},
    {16, "Friction Force Curve Mapping"},
    {60, "F-V Mapping"},
    {71, "FFT Analysis Mapping"},
};

template <size_t N>
const char* Lookup(const NamedValue (&table)[N], uint32_t value)
{
    for (const NamedValue& entry : table)
        if (entry.value == value) return entry.name;
    return "";
}

// The word of the title: the DataSource name with the choices that depend on the item.
const char* TitleWord(const ImageHeaderType* r)
{
    if (r->DataSource == 1)
        return r->ImType1 != IMTYPE_IMAGE && r->ImType1 != IMTYPE_PROFILE ? "Tip Displacement" : "Topography";
    if (r->DataSource == 4) return IsTwistForceItem(r) ? "Twist Force" : "LIA1(Aux1)";
    const char* name = DataSourceName(r->DataSource);
    return name ? name : "Unknown image type";
}

} // namespace

const char* DataSourceName(uint32_t dataSource)
{
    if (dataSource >= sizeof kDataSourceNames / sizeof kDataSourceNames[0]) return nullptr;
    return kDataSourceNames[dataSource];
}

const char* AcqModeName(const ImageHeaderType* r)
{
    if (!r) return "";
    switch (r->AcqMode) {
    case 11: return r->MapType == 51 ? "LMC-FC Mapping" : "SPS Mapping";
    case 24: return r->MFMFlag == 128 ? "MFM(L-L)" : "MFM(P-P)";
    case 51: return Lookup(kLMCModeNames, r->LMCMode);
    default: return Lookup(kAcqModeNames, r->AcqMode);
    }
}

const char* MapTypeName(uint32_t mapType) { return Lookup(kMapTypeNames, mapType); }

const char* GetScanModeStr(int scanMode, uint32_t afmMode)
{
    if (scanMode == 2) return "STM";
    if (scanMode != 1) return "";
    switch (afmMode) {
    case 1: return "AFM Contact";
    case 2: return "AFM AC";
    case 4: return "NC-AFM";
    case 8: return "AFM FMS";
    case 16: return "AFM Phase";
    default: return "";
    }
}

const char* GetBiasSelectStr(int n)
{
    switch (n) {
    case 0: return "";
    case 1: return "(Tip)";
    case 2: return "(Sample)";
    default: ProgramError("GetBiasSelectStr %d", n); return "";
    }
}

const char* GetImageTitleStr(const ImageHeaderType* r)
{
    g_title[0] = '\0';
    if (!r) {
        ProgramError("GetImageTitleStr");
        return g_title;
    }
    const char* word = TitleWord(r);
    switch (r->ImType1) {
    case IMTYPE_IMAGE:
    case IMTYPE_FREQUENCY_SWEEP: strncpy0(g_title, word, kTitleSize); break;
    case IMTYPE_SPECTRUM:
    case IMTYPE_SCAN_LINE:
    case IMTYPE_SCAN_LINE2:
        if (r->AcqMode == 15 && r->DataSource == 10)
            word = "Friction Force";
        else if (r->AcqMode == 16 && r->DataSource == 5)
            word = CantileverCalibration().FrictionOn ? "Friction Force" : "Aux2";
        strncpy0(g_title, word, kTitleSize);
        break;
    case IMTYPE_PROFILE:
        strncpy0(g_title, word, kTitleSize);
        strncat0(g_title, "Profile", kTitleSize);
        break;
    case IMTYPE_HISTOGRAM: strncpy0(g_title, "Grey level histogram", kTitleSize); break;
    case IMTYPE_PHASE_SHIFT: strncpy0(g_title, "RMS-DC(phase shift)", kTitleSize); break;
    default: ProgramError("GetImageTitleStr ImType1=%d", static_cast<int>(r->ImType1)); return g_title;
    }
    if (r->ScanDirection == 1) strncat0(g_title, "(FW)", kTitleSize);
    else if (r->ScanDirection == 2) strncat0(g_title, "(BW)", kTitleSize);
    return g_title;
}

void GetImageTypeStr(const ImageHeaderType* r, char* text, size_t size)
{
    if (!text || size == 0) {
        ProgramError("GetImageTypeStr");
        return;
    }
    text[0] = '\0';
    if (!r) {
        ProgramError("GetImageTypeStr");
        return;
    }
    const char* acquisition = AcqModeName(r);
    if (std::strcmp(acquisition, "Frequency Sweep") == 0 || std::strcmp(acquisition, "Phase Shift") == 0) {
        std::snprintf(text, size, "%s", acquisition);
        return;
    }
    const char* scanMode = GetScanModeStr(r->ScanMode, r->AFMMode);
    const char* fft = r->FFTData != 0 ? "FFT of " : "";
    const char* title = GetImageTitleStr(r);
    if (r->CITSHeader != 0)
        std::snprintf(text, size, "%s:%s:%s%s%s", acquisition, scanMode, fft, MapTypeName(r->MapType), title);
    else
        std::snprintf(text, size, "%s:%s:%s%s", acquisition, scanMode, fft, title);
}
