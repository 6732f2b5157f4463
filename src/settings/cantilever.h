// The cantilever record: how force, friction and amplitude voltages become physical values.
//
// The record is kept in the user settings file under "Cantilever Parameters". The library holds
// one calibration in force (the record without its name); every conversion reads that copy.
#pragma once

#include "tavrin/dl_calibration.h"

inline constexpr const char* kCantileverKey = "Cantilever Parameters";

// The calibration in force.
const wint_SPMCalType& CantileverCalibration();
void SetCantileverCalibration(const wint_SPMCalType& calibration);
// The same through a caller's record; a null record is reported.
void GetSPMCalParam(wint_SPMCalType* calibration);
void SetSPMCalParam(const wint_SPMCalType* calibration);

// The defaults of a record. AmpC and AmpD keep what the record held.
void SetDefaultCantileverParam(wint_CantileverParamType* record);
// The stored record, or the defaults when none can be read; the calibration is not changed.
void GetCantileverParam(wint_CantileverParamType* record);
// Stores the record and makes its calibration the one in force.
void SetCantileverParam(const wint_CantileverParamType* record);

// The calibration part of a record, and back.
wint_SPMCalType CalibrationOf(const wint_CantileverParamType& record);
void PutCalibration(wint_CantileverParamType* record, const wint_SPMCalType& calibration);

// The settings store: the calibration in force is written under the key, keeping the stored
// name; reading sets the calibration in force from the stored record, if there is one.
void StoreCantileverSettings();
void RetrieveCantileverSettings();

// Back to the built-in calibration, with AmpC and AmpD 0.
void ResetCantileverState();
