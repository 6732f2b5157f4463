#include "host/errors.h"
#include "mapping/cits.h"
#include "store/data_types.h"
#include "store/units.h"

#include <cmath>

namespace {

// Log current: the raw instrument code back from the pixel (integer arithmetic), the input
// voltage in volts (a 16-bit code over +-10 V, less the gain, plus the offset in mV), then four
// volts a decade with ten units at zero volts, over the range divider.
float LogCurrent(const CITSImageEntryType* entry, uint16_t raw)
{
    const int64_t span = static_cast<int64_t>(entry->raw_high) - entry->raw_low;
    const int64_t code = static_cast<int64_t>(raw) * span / 65535 + entry->raw_low;
    const double volts = (static_cast<double>(code) * 10000.0 / 32768.0 / entry->adc_gain + entry->adc_offset) / 1000.0;
    return static_cast<float>(std::pow(10.0, volts / 4.0 + 1.0) / entry->i_divider);
}

} // namespace

float CITSData2Current(const CITSImageEntryType* entry, uint16_t raw)
{
    if (!entry) {
        ProgramError("CITSData2Current");
        return 0.0f;
    }
    const uint32_t flag = entry->data_type;
    const DataTypeRow* row = FindDataType(flag);
    if (row && row->decoding == PixelDecoding::Linear) return LinearCodeValue(raw, entry->z_low, entry->z_high);
    if (row && row->decoding == PixelDecoding::Logarithmic) return LogCurrent(entry, raw);
    ProgramError("CITSData2Current %d", static_cast<int>(flag));
    return 0.0f;
}
