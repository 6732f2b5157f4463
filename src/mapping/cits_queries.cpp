#include "host/errors.h"
#include "mapping/cits.h"
#include "store/data_list.h"

#include <cstring>

int IsFCMappingData(const ImageHeaderType* image)
{
    return image && (image->MapType == 15 || image->MapType == 51) ? 1 : 0;
}

int IsFVMappingData(const ImageHeaderType* image) { return image && image->MapType == 60 ? 1 : 0; }

const char* CITSKindName(const ImageHeaderType* image)
{
    switch (image ? image->MapType : 0) {
    case 12: return "I-V";
    case 13: return "S-V";
    case 14: return "I-S";
    case 15:
    case 51: return "Force curve";
    case 16: return "Friction force curve";
    case 60: return "F-V";
    case 71: return "FFT analysis";
    default: return "SPS Mapping";
    }
}

int GetCITSCurrentImageVoltages(const ImageHeaderType* image, double* out)
{
    if (!image || !image->CITSHeaderPtr || !out) return 0;
    const CITSHeaderType* set = image->CITSHeaderPtr;
    for (int k = 0; k < set->ni; ++k) out[k] = CITSEntry(set, k)->voltage;
    return set->ni;
}

int GetLMCantileverParam(const ImageHeaderType* image, wint_LMCantileverImageParamType* param)
{
    if (!image || !param || image->LMCMode == 0 || image->DataSource != 4) return 0;
    const auto* block = reinterpret_cast<const uint8_t*>(image) + kLMCantileverParamOffset;
    if (block[0] == 0) return 0;
    std::memcpy(param->bytes, block, sizeof param->bytes);
    return 1;
}

void SetLMCantileverParam(ImageHeaderType* image, const wint_LMCantileverImageParamType* param)
{
    if (!image || !param) return;
    std::memcpy(reinterpret_cast<uint8_t*>(image) + kLMCantileverParamOffset, param->bytes, sizeof param->bytes);
}

void SetLMCantileverParamCommand(const wint_LMCantileverImageParamType* param)
{
    if (!CurrentItem || !param) return;
    SetLMCantileverParam(CurrentItem, param);
    DisplayCurrentItem();
}
