#include "settings/cantilever.h"
#include "host/errors.h"
#include "settings/user_settings.h"

#include <cstring>

static_assert(offsetof(wint_CantileverParamType, ForceOn) + sizeof(wint_SPMCalType) ==
                  offsetof(wint_CantileverParamType, Reserved364),
              "the calibration is the record from ForceOn up to the reserved tail");

namespace {

constexpr size_t kCalibrationOffset = offsetof(wint_CantileverParamType, ForceOn);

wint_SPMCalType BuiltInCalibration()
{
    wint_CantileverParamType record;
    std::memset(&record, 0, sizeof record);
    SetDefaultCantileverParam(&record);
    return CalibrationOf(record);
}

wint_SPMCalType g_calibration = BuiltInCalibration();

// A whole stored record, or false when the key is missing or damaged.
bool ReadStoredRecord(wint_CantileverParamType* record)
{
    wint_CantileverParamType stored;
    if (!LoadSettingStruct(kCantileverKey, &stored, sizeof stored)) return false;
    std::memcpy(record, &stored, sizeof stored);
    return true;
}

} // namespace

const wint_SPMCalType& CantileverCalibration() { return g_calibration; }

void SetCantileverCalibration(const wint_SPMCalType& calibration) { g_calibration = calibration; }

void GetSPMCalParam(wint_SPMCalType* calibration)
{
    if (!calibration) {
        ProgramError("dl_GetSPMCalParam");
        return;
    }
    *calibration = g_calibration;
}

void SetSPMCalParam(const wint_SPMCalType* calibration)
{
    if (!calibration) {
        ProgramError("dl_SetSPMCalParam");
        return;
    }
    g_calibration = *calibration;
}

wint_SPMCalType CalibrationOf(const wint_CantileverParamType& record)
{
    wint_SPMCalType calibration;
    std::memcpy(&calibration, reinterpret_cast<const char*>(&record) + kCalibrationOffset, sizeof calibration);
    return calibration;
}

void PutCalibration(wint_CantileverParamType* record, const wint_SPMCalType& calibration)
{
    std::memcpy(reinterpret_cast<char*>(record) + kCalibrationOffset, &calibration, sizeof calibration);
}

void SetDefaultCantileverParam(wint_CantileverParamType* record)
{
    if (!record) {
        ProgramError("dl_SetDefaultCantiParam");
        return;
    }
    std::memset(record->Name, 0, sizeof record->Name);
    std::strcpy(record->Name, "No Name");
    record->ForceOn = 0;
    record->ForceK = 1.0;
    record->ForceSens = 1.0;
    record->ForceOffset = 2.0;
    record->FrictionOn = 0;
    record->FrictionOffset = 0.0;
    record->FrictionA = 1e-6;
    record->FrictionB = 0.001;
    record->FrictionC = 40.0;
    record->AmpOn = 0;
    record->AmpA = 1e-6;
    // The default routine has always written AmpB three times, 1.0, 20.0 and 3.0, and never
    // AmpC or AmpD: those keep the caller's values. The conversions take a 0 there as 1.
    record->AmpB = 1.0;
    record->AmpB = 20.0;
    record->AmpB = 3.0;
    record->ExtraOn = 0;
    record->ExtraValue = 8.0;
    std::memset(record->Reserved364, 0, sizeof record->Reserved364);
}

void GetCantileverParam(wint_CantileverParamType* record)
{
    if (!record) {
        ProgramError("dl_GetCantiParam");
        return;
    }
    if (!ReadStoredRecord(record)) SetDefaultCantileverParam(record);
}

void SetCantileverParam(const wint_CantileverParamType* record)
{
    if (!record) {
        ProgramError("dl_SetCantiParam");
        return;
    }
    SaveSettingStruct(kCantileverKey, record, sizeof *record);
    g_calibration = CalibrationOf(*record);
}

void StoreCantileverSettings()
{
    wint_CantileverParamType record;
    std::memset(&record, 0, sizeof record);
    if (!ReadStoredRecord(&record)) SetDefaultCantileverParam(&record);
    PutCalibration(&record, g_calibration);
    SaveSettingStruct(kCantileverKey, &record, sizeof record);
}

void RetrieveCantileverSettings()
{
    wint_CantileverParamType record;
    if (ReadStoredRecord(&record)) g_calibration = CalibrationOf(record);
}

void ResetCantileverState() { g_calibration = BuiltInCalibration(); }
